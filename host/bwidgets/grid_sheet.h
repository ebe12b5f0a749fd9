#pragma once

#include <string>

#include "host/app/spreadsheet.h"
#include "host_widgets_export.h"

namespace bwidgets {

class TreeGridView;

/// The grid as its user sees it, as a table for a spreadsheet named `name` (UTF-8): the visible
/// columns in their visual order with their widths, both levels of the header, the columns that
/// stay in place, and all rows that the model has and the grid does not hide, in their order, those
/// below folded rows included.
///
/// A cell that shows a number is a number: the one that the model gives for editing, with as many
/// places as are shown. A check box is a flag, an empty cell is empty, everything else the text
/// that is shown. Alignment, bold type and colours are those that the model asks for.
QCE_HOST_WIDGETS_EXPORT app::Sheet makeSheet(const TreeGridView& grid, const std::string& name);

/// Lets the host save the grid as a spreadsheet, with `name` for both the sheet and the proposed
/// file. False when the user cancelled or it could not be written; the host has told why.
QCE_HOST_WIDGETS_EXPORT bool exportSheet(const TreeGridView& grid, const std::string& name);

}  // namespace bwidgets
