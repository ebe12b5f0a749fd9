#pragma once

#include <QString>

#include "workbench/exchange/spreadsheet_reader.h"

namespace bwidgets {
class TreeGridView;
}

namespace cli {

/// Holds a sheet that was read back against the grid that it was made of, cell by cell: what a
/// spreadsheet shows of each cell is what the grid shows of it. Rows below those of the grid (a
/// totals row) are not looked at. Answers the first difference in Chinese; empty when there is
/// none.
QString sheetDifference(const exchange::ReadSheet& sheet, const bwidgets::TreeGridView& grid);

/// What a spreadsheet shows of the cell.
QString shownText(const exchange::ReadCell& cell);

}  // namespace cli
