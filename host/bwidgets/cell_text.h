#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "host_widgets_export.h"

// Texts that go between cells, editors and the clipboard.
namespace bwidgets {

/// The number that a user means by `text`, as plain digits with "." as the decimal point: without
/// blanks and thousands separators (which must stand between groups of three), full-width digits
/// made narrow, a leading currency sign dropped. Nothing for what is not a finite number.
QCE_HOST_WIDGETS_EXPORT std::optional<QString> plainNumber(const QString& text);

/// Yes or no as a user writes it: 是 否 √ × true false 1 0, and empty for no; nothing otherwise.
QCE_HOST_WIDGETS_EXPORT std::optional<bool> yesOrNo(const QString& text);

/// Rows of cells as a spreadsheet puts them on the clipboard: cells parted by tabs, rows by line
/// breaks; a cell that contains either or starts with a quote is in quotes, its quotes doubled.
/// The line break after the last row does not start a row.
QCE_HOST_WIDGETS_EXPORT std::vector<QStringList> parseBlock(const QString& text);

/// The reverse; no line break after the last row.
QCE_HOST_WIDGETS_EXPORT QString formatBlock(const std::vector<QStringList>& rows);

}  // namespace bwidgets
