#pragma once

#include <vector>

// How a table comes onto pages: plain arithmetic, in whatever unit of length the caller uses.
namespace exchange {

struct ColumnNeed {
  double least = 0;    ///< below this the column cannot be read
  double natural = 0;  ///< what its longest text takes on one line; not below `least`
};

/// The widths of columns that fill `room` together. What is left above the least widths is shared
/// evenly, no column taking more than its natural one; what is left then goes to the column `wide`.
/// Where not even the least widths fit, all shrink alike.
std::vector<double> columnWidths(const std::vector<ColumnNeed>& needs, double room, int wide);

struct PrintedRow {
  double height = 0;
  int level = 0;  ///< depth in the tree
};

/// The rows that the pages begin with, the first one (0) included; one page even without rows.
/// `firstRoom` is for the rows of the first page, `room` for those of each other one.
///
/// A row does not end a page when rows below it in the tree follow, and the last row does not
/// begin one, so that neither a heading nor a total stands apart from what it belongs to; save
/// where the page would hold nothing else. A row that is higher than a page has one to itself.
std::vector<int> pageBreaks(const std::vector<PrintedRow>& rows, double firstRoom, double room);

/// Where the last page, which begins with `first`, can be cut so that its last rows go over to a
/// new one, to stand there above what follows the table: the row that the new page begins with, or
/// -1 where there is none. They take at most `room`; at least 3 go over, and none without the
/// heading that it stands right below.
int carryOver(const std::vector<PrintedRow>& rows, int first, double room);

}  // namespace exchange
