#include "workbench/exchange/source_attributes.h"

#include <algorithm>

namespace exchange {

using costing::Decimal;

namespace {

constexpr int LabelCharacters = 40;
constexpr int MostAttributes = 32;  // one bit each in taken_

}  // namespace

QString clipped(const QString& value) {
  return value.size() <= LabelCharacters ? value : value.left(LabelCharacters) + QChar(0x2026);
}

Attributes::Attributes(const QXmlStreamReader& xml, const ElementName& element, qint64 line,
                       qint64 column)
    : attributes_(xml.attributes()), element_(element), line_(line), column_(column) {
  if (attributes_.size() > MostAttributes) {
    throw Refusal{line_, column_, QStringLiteral("%1：属性过多，请检查文件是否损坏").arg(where())};
  }
}

QString Attributes::where() const {
  QString where = QString::fromUtf8(element_.noun);
  for (const char* name : {"code", "name"}) {
    const QString value = attributes_.value(QLatin1String(name)).toString().simplified();
    if (!value.isEmpty()) where += QStringLiteral("“%1”").arg(clipped(value));
  }
  return where;
}

void Attributes::refuse(const char* name, const char* noun, const QString& what) const {
  throw Refusal{line_, column_,
                QStringLiteral("%1的%2（%3）%4")
                    .arg(where(), QString::fromUtf8(noun), QLatin1String(name), what)};
}

const QXmlStreamAttribute* Attributes::take(const char* name, const char* noun, bool required) {
  for (int i = 0; i < attributes_.size(); ++i) {
    if (attributes_[i].qualifiedName() == QLatin1String(name)) {
      taken_ |= 1U << static_cast<unsigned>(i);
      return &attributes_[i];
    }
  }
  if (required) refuse(name, noun, QStringLiteral("缺失：请补上该属性"));
  return nullptr;
}

std::string Attributes::id() {
  std::string id = string("id", "编号", RequiredCode);
  const bool plain = std::all_of(id.begin(), id.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' ||
           c == '_' || c == '.';
  });
  if (!plain) {
    refuse("id", "编号",
           QStringLiteral("“%1”含有不允许的字符：只能用字母、数字、点、横线和下划线")
               .arg(clipped(QString::fromStdString(id))));
  }
  return id;
}

std::string Attributes::string(const char* name, const char* noun, const TextRule& rule) {
  const QXmlStreamAttribute* attribute = take(name, noun, rule.required);
  if (!attribute) return {};
  const QStringRef value = attribute->value();
  if (value.size() > rule.maximum) {
    refuse(name, noun,
           QStringLiteral("有 %1 个字符，超过 %2 个的上限：请缩短")
               .arg(value.size())
               .arg(rule.maximum));
  }
  bool blank = true;
  for (const QChar c : value) {
    if (c.unicode() < 0x20 && !(rule.lines && c == QLatin1Char('\n'))) {
      refuse(name, noun, QStringLiteral("含有换行或控制字符：请删除"));
    }
    blank = blank && c.isSpace();
  }
  if (rule.required && blank) refuse(name, noun, QStringLiteral("为空：请填写"));
  const QByteArray utf8 = value.toUtf8();
  return std::string(utf8.constData(), static_cast<std::size_t>(utf8.size()));
}

std::optional<Decimal> Attributes::number(const char* name, const char* noun,
                                          const NumberRule& rule, bool required) {
  const QXmlStreamAttribute* attribute = take(name, noun, required);
  if (!attribute) return {};
  const QStringRef value = attribute->value();
  const auto fault = [&](const QString& what) {
    refuse(name, noun, QStringLiteral("“%1”%2").arg(clipped(value.toString()), what));
  };
  if (value.isEmpty()) refuse(name, noun, QStringLiteral("为空：请填写数值"));

  std::array<char, 48> digits{};
  std::size_t size = 0;
  int whole = 0;
  int places = -1;  // -1 before the point
  bool leading = true;
  for (const QChar c : value) {
    const ushort u = c.unicode();
    const bool digit = u >= '0' && u <= '9';
    if (!digit && !(u == '.' && places < 0 && size > 0)) {
      if (u == '-' && size == 0) fault(QStringLiteral("是负数：请改为不小于 0 的数"));
      if ((u == 'e' || u == 'E') && size > 0) {
        fault(QStringLiteral("用了科学计数法：请写成普通小数"));
      }
      if (u == ',') fault(QStringLiteral("含有千位分隔符：请去掉"));
      fault(QStringLiteral("不是数字：请写成普通小数，例如 12.50"));
    }
    if (u == '.') {
      places = 0;
    } else if (places >= 0) {
      ++places;
    } else {
      leading = leading && u == '0';
      if (!leading) ++whole;
    }
    if (whole > rule.wholeDigits || size == digits.size()) {
      fault(QStringLiteral("过大或过长：必须小于 %1").arg(QLatin1String(rule.limit)));
    }
    digits[size++] = static_cast<char>(u);
  }
  if (places == 0) fault(QStringLiteral("不是数字：小数点后没有数字"));
  if (places > rule.places) {
    fault(QStringLiteral("的小数超过 %1 位：请取舍到 %1 位").arg(rule.places));
  }
  std::optional<Decimal> number = Decimal::parse({digits.data(), size});
  if (!number) fault(QStringLiteral("不是数字：请写成普通小数，例如 12.50"));
  return number;
}

bool Attributes::flag(const char* name, const char* noun) {
  const QXmlStreamAttribute* attribute = take(name, noun, false);
  if (!attribute || attribute->value() == QLatin1String("false")) return false;
  if (attribute->value() != QLatin1String("true")) {
    refuse(name, noun,
           QStringLiteral("“%1”不可识别：只能是 true 或 false")
               .arg(clipped(attribute->value().toString())));
  }
  return true;
}

void Attributes::forbid(const char* name, const char* noun) {
  if (take(name, noun, false)) {
    refuse(name, noun, QStringLiteral("不该出现：这一类文件不携带它，请去掉或改用正确的文件类型"));
  }
}

void Attributes::finish() const {
  for (int i = 0; i < attributes_.size(); ++i) {
    if (!(taken_ >> static_cast<unsigned>(i) & 1U)) {
      throw Refusal{line_, column_,
                    QStringLiteral("%1含有不认识的属性“%2”：请去掉")
                        .arg(where(), clipped(attributes_[i].qualifiedName().toString()))};
    }
  }
}

}  // namespace exchange
