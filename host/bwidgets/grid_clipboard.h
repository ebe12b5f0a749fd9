#pragma once

#include <QModelIndex>
#include <QString>

#include "host_widgets_export.h"

// What a grid does with blocks of cells. Refusals are shown through the host's channel.
namespace bwidgets {

class TreeGridView;

/// The text of a cell for a spreadsheet: as displayed, but numbers without thousands separators
/// and check marks as √ or nothing.
QCE_HOST_WIDGETS_EXPORT QString clipboardText(const QModelIndex& cell);

/// Writes what a user typed or pasted, by the kind of the cell; false when the cell cannot be
/// edited, the text does not fit its field, or the model refuses. Nothing is written then.
QCE_HOST_WIDGETS_EXPORT bool writeCell(const QModelIndex& cell, const QString& text);

/// Puts the block around the selected cells of the shown columns on the clipboard.
void copyToClipboard(const TreeGridView& grid);
void pasteFromClipboard(TreeGridView& grid);
void clearCells(TreeGridView& grid);

}  // namespace bwidgets
