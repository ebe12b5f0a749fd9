#include "framework/cell_value.h"

#include <QColor>
#include <QFont>
#include <QStringList>
#include <array>
#include <cmath>
#include <cstdio>

#include "host/base/number_text.h"

namespace gui {
namespace {

struct ToQVariant {
  QVariant operator()(std::monostate) const { return {}; }
  QVariant operator()(bool value) const { return value; }
  QVariant operator()(int value) const { return value; }
  QVariant operator()(double value) const { return value; }
  QVariant operator()(const std::string& value) const { return textCell(value); }
  QVariant operator()(const base::Color& value) const { return QColor(value.r, value.g, value.b); }
  QVariant operator()(const base::Font& value) const {
    QFont font;
    font.setWeight(value.bold ? QFont::Bold : QFont::Normal);
    font.setFamily(QString::fromStdString(value.family));
    return font;
  }
  QVariant operator()(const scoped_refptr<base::Object>& value) const {
    return QVariant::fromValue(value);
  }
  QVariant operator()(const std::vector<std::string>& value) const {
    QStringList texts;
    texts.reserve(static_cast<int>(value.size()));
    for (const std::string& text : value) texts << QString::fromStdString(text);
    return texts;
  }
};

// A variant of a text copies it, at the price of two atomic operations; this one takes it over.
QVariant moved(QString&& text) {
  QVariant cell(QVariant::String);
  static_cast<QString*>(cell.data())->swap(text);
  return cell;
}

// printf's "%f": six decimals.
std::string sixDecimals(double value) {
  std::array<char, 400> text;
  const int size = std::snprintf(text.data(), text.size(), "%f", value);
  return std::string(text.data(), static_cast<std::size_t>(size));
}

// Whether the text with `precision` decimals reads back as a double of the same decimal: true up to
// 15 digits. Grouping that double then groups the same digits.
bool isReadBackExactly(double value, int precision) {
  return precision >= 0 && precision <= 4 && std::fabs(value) < 1e11;
}

}  // namespace

QVariant toQVariant(const domain::Value& value) {
  return std::visit(ToQVariant(), value);
}

QVariant numberText(const domain::DataField& field, double value) {
  // One cell after the other, on one thread: the room of the last text serves the next.
  static std::string text;
  text.clear();
  if (field.precision &&
      (!field.thousandsSeparators || isReadBackExactly(value, *field.precision))) {
    base::AppendNumber(text, value, field.precision, field.stripTrailingZeros.value_or(false),
                       field.thousandsSeparators);
  } else {
    text = formatNumber(field, value);
  }
  return moved(QString::fromLatin1(text.data(), static_cast<int>(text.size())));
}

QVariant textCell(const std::string& text) {
  return moved(QString::fromUtf8(text.data(), static_cast<int>(text.size())));
}

std::string formatNumber(const domain::DataField& field, double value) {
  const bool strip = field.stripTrailingZeros.value_or(false);
  std::string text;
  if (field.precision) {
    text = strip ? base::ToPlainStringWithStripTrailingZeros(value, field.precision)
                 : base::ToPlainString(value, field.precision);
  } else if (field.stripTrailingZeros) {
    // Without a precision a strip setting strips whatever it says.
    text = base::ToPlainStringWithStripTrailingZeros(value);
  } else {
    text = sixDecimals(value);
  }
  if (!field.thousandsSeparators) return text;

  // The groups are made of the text as it is shown so far, so that both forms round alike.
  const double shown = base::ParseNumberPrefix(text);
  return strip ? base::ToThousandthsStringWithStripTrailingZeros(shown, field.precision)
               : base::ToThousandthsString(shown, field.precision);
}

int toCheckState(const QVariant& value) {
  if (value.userType() == QMetaType::Bool) return value.toBool() ? Qt::Checked : Qt::Unchecked;
  const int state = value.toInt();
  return state >= Qt::Unchecked && state <= Qt::Checked ? state : Qt::Unchecked;
}

std::optional<double> toNumber(const domain::Value& value) {
  if (const auto* number = std::get_if<double>(&value)) return *number;
  bool ok = false;
  const double number = toQVariant(value).toDouble(&ok);
  return ok ? std::optional<double>(number) : std::nullopt;
}

std::optional<domain::Value> toFieldValue(int type, const QVariant& value) {
  bool ok = false;
  switch (type) {
    case domain::StringField:
      return domain::Value(value.toString().toStdString());
    case domain::BoolField:
      return domain::Value(value.toBool());
    case domain::IntegerField: {
      const int number = value.toInt(&ok);
      return ok ? domain::Value(number) : domain::Value();
    }
    case domain::FloatingPointField: {
      const double number = value.toDouble(&ok);
      return ok ? domain::Value(number) : domain::Value();
    }
    default:
      return std::nullopt;
  }
}

}  // namespace gui
