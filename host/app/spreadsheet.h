#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "contract_export.h"
#include "host/base/color.h"

// Tables on their way into a spreadsheet. Texts are UTF-8; columns count from 0 and from the left.
namespace app {

enum class SheetAlignment {
  Automatic,  ///< numbers to the right, flags in the middle, texts to the left
  Left,
  Center,
  Right
};

/// One cell as a user sees it, with what stands behind it.
struct SheetCell {
  /// Nothing, a flag, a number that is not rounded to what is shown of it, or a text. A text stays
  /// one, whatever it begins with.
  std::variant<std::monostate, bool, double, std::string> value;
  int places = 0;  ///< digits after the point that a number is shown with
  SheetAlignment alignment = SheetAlignment::Automatic;
  bool bold = false;
  std::optional<base::Color> background;
  std::optional<base::Color> foreground;
};

struct SheetRow {
  std::vector<SheetCell> cells;  ///< by column; missing ones are empty
  int level = 0;                 ///< depth in the tree, 0 for a top-level row
  bool collapsed = false;        ///< the deeper rows that follow are folded away
};

struct SheetColumn {
  std::string key;         ///< field key; empty when there is none
  std::string title;       ///< lower (or only) level of the header
  int width = 80;          ///< pixels at 100 % zoom
  bool thousands = false;  ///< group the digits of its numbers in threes
};

/// A caption of the upper level of the header, over the columns `first` to `last`. Groups do not
/// overlap; a column without one has its title over both levels.
struct SheetGroup {
  std::string caption;
  int first = 0;
  int last = 0;
};

/// One table.
struct Sheet {
  std::string name;  ///< of the sheet; what a sheet's name must not hold is the host's to replace
  std::vector<SheetColumn> columns;
  std::vector<SheetGroup> groups;  ///< empty: the header has one level
  int frozenColumns = 0;           ///< leading columns that stay in place
  int treeColumn = -1;             ///< whose texts are indented by their row's level; -1 for none
  bool wrapTexts = false;          ///< rows grow with their texts
  std::vector<SheetRow> rows;
  std::optional<SheetRow> totals;  ///< stands below the rows and is set off from them
};

/// Gives `sheet` a totals row: below each column with one of `keys` the sum of what its leaf rows
/// (those without deeper rows below them) show, rounded as they are; and `caption` in its tree
/// column, or in the first one. Keys that the sheet does not have are left out; without any of them
/// there is no totals row.
QCE_CONTRACT_EXPORT void AddTotals(Sheet& sheet, const std::string& caption,
                                   const std::vector<std::string>& keys);

}  // namespace app
