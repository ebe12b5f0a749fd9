#pragma once

#include <QString>
#include <QStringList>

namespace exchange {

/// `name` as a file name on any system, with the suffix ".xlsx": forbidden characters become "_",
/// a name without anything left becomes "导出", a long one is cut.
QString spreadsheetFileName(const QString& name);

/// `names` as the names of the sheets of one file, in order: at most 31 characters, none of those
/// that are forbidden, no two alike in any case; a name that is taken gets a number.
QStringList sheetNames(const QStringList& names);

}  // namespace exchange
