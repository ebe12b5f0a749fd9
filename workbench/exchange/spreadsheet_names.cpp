#include "workbench/exchange/spreadsheet_names.h"

#include <QRegularExpression>

namespace exchange {
namespace {

constexpr int LongestSheetName = 31;  // UTF-16 units
constexpr int LongestFileName = 80;   // with its suffix well within the 255 bytes of file systems

QString cut(QString text, int length) {
  if (text.size() <= length) return text;
  if (text.at(length - 1).isHighSurrogate()) --length;
  return text.left(length).trimmed();
}

QString sheetName(QString name) {
  static const QRegularExpression forbidden(QStringLiteral("[\\[\\]:*?/\\\\\\x00-\\x1f]"));
  static const QRegularExpression edges(QStringLiteral("^[\\s']+|[\\s']+$"));
  name.replace(forbidden, QStringLiteral("_")).remove(edges);
  // The one name that spreadsheet programs keep for themselves.
  if (name.compare(QLatin1String("History"), Qt::CaseInsensitive) == 0) name += QLatin1Char('_');
  name = cut(name, LongestSheetName).remove(edges);
  return name.isEmpty() ? QStringLiteral("表") : name;
}

}  // namespace

QString spreadsheetFileName(const QString& name) {
  static const QRegularExpression forbidden(QStringLiteral("[\\\\/:*?\"<>|\\x00-\\x1f\\x7f]"));
  static const QRegularExpression edges(QStringLiteral("^[\\s.]+|[\\s.]+$"));
  static const QRegularExpression device(QStringLiteral("^(CON|PRN|AUX|NUL|(COM|LPT)[1-9])(\\.|$)"),
                                         QRegularExpression::CaseInsensitiveOption);
  QString file = name;
  if (file.endsWith(QLatin1String(".xlsx"), Qt::CaseInsensitive)) file.chop(5);
  file.replace(forbidden, QStringLiteral("_")).remove(edges);
  file = cut(file, LongestFileName).remove(edges);
  if (file.isEmpty()) file = QStringLiteral("导出");
  if (device.match(file).hasMatch()) file.prepend(QLatin1Char('_'));
  return file + QStringLiteral(".xlsx");
}

QStringList sheetNames(const QStringList& names) {
  QStringList made;
  for (const QString& wanted : names) {
    const QString plain = sheetName(wanted);
    QString name = plain;
    for (int number = 2; made.contains(name, Qt::CaseInsensitive); ++number) {
      const QString suffix = QStringLiteral(" (%1)").arg(number);
      name = cut(plain, LongestSheetName - suffix.size()) + suffix;
    }
    made << name;
  }
  return made;
}

}  // namespace exchange
