#include "host/bwidgets/cell_text.h"

#include <QLocale>
#include <QRegularExpression>
#include <cmath>

namespace bwidgets {

std::optional<QString> plainNumber(const QString& text) {
  QString plain = text.normalized(QString::NormalizationForm_KC).trimmed();
  static const QRegularExpression currency(QStringLiteral("^([-+]?)\\s*[¥￥$]\\s*"));
  plain.replace(currency, QStringLiteral("\\1"));
  if (plain.contains(QLatin1Char(','))) {
    static const QRegularExpression grouped(
        QStringLiteral("^[-+]?[0-9]{1,3}(,[0-9]{3})+(\\.[0-9]*)?$"));
    if (!grouped.match(plain).hasMatch()) return {};
    plain.remove(QLatin1Char(','));
  }
  bool ok = false;
  const double value = QLocale::c().toDouble(plain, &ok);
  if (!ok || !std::isfinite(value)) return {};
  return plain;
}

std::optional<bool> yesOrNo(const QString& text) {
  const QString word = text.trimmed().toLower();
  for (const char* yes : {"是", "√", "✓", "true", "1", "yes", "y"}) {
    if (word == QString::fromUtf8(yes)) return true;
  }
  for (const char* no : {"", "否", "×", "false", "0", "no", "n"}) {
    if (word == QString::fromUtf8(no)) return false;
  }
  return {};
}

std::vector<QStringList> parseBlock(const QString& text) {
  std::vector<QStringList> rows;
  QStringList row;
  QString cell;
  bool quoted = false;
  bool fresh = true;  // nothing of the current cell has been read
  const auto endCell = [&] {
    row << cell;
    cell.clear();
    fresh = true;
  };
  const auto endRow = [&] {
    endCell();
    rows.push_back(row);
    row.clear();
  };
  const int size = text.size();
  for (int i = 0; i < size; ++i) {
    const QChar c = text.at(i);
    if (quoted) {
      if (c != QLatin1Char('"')) {
        cell += c;
      } else if (i + 1 < size && text.at(i + 1) == QLatin1Char('"')) {
        cell += c;
        ++i;
      } else {
        quoted = false;
      }
    } else if (c == QLatin1Char('"') && fresh) {
      // A lone quote, as in an inch mark, is text: only one that is closed opens a quoted cell.
      quoted = text.indexOf(c, i + 1) >= 0;
      if (!quoted) cell += c;
      fresh = false;
    } else if (c == QLatin1Char('\t')) {
      endCell();
    } else if (c == QLatin1Char('\n') || c == QLatin1Char('\r')) {
      if (c == QLatin1Char('\r') && i + 1 < size && text.at(i + 1) == QLatin1Char('\n')) ++i;
      endRow();
    } else {
      cell += c;
      fresh = false;
    }
  }
  if (!fresh || !row.isEmpty() || !cell.isEmpty()) endRow();
  return rows;
}

QString formatBlock(const std::vector<QStringList>& rows) {
  QString text;
  for (std::size_t r = 0; r < rows.size(); ++r) {
    if (r > 0) text += QLatin1Char('\n');
    bool first = true;
    for (const QString& cell : rows[r]) {
      if (!first) text += QLatin1Char('\t');
      first = false;
      const bool quote = cell.startsWith(QLatin1Char('"')) || cell.contains(QLatin1Char('\t')) ||
                         cell.contains(QLatin1Char('\n')) || cell.contains(QLatin1Char('\r'));
      if (!quote) {
        text += cell;
        continue;
      }
      QString escaped = cell;
      escaped.replace(QLatin1String("\""), QLatin1String("\"\""));
      text += QLatin1Char('"') + escaped + QLatin1Char('"');
    }
  }
  return text;
}

}  // namespace bwidgets
