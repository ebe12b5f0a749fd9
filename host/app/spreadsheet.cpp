#include "host/app/spreadsheet.h"

#include <algorithm>
#include <cmath>

#include "host/base/number_text.h"

namespace app {
namespace {

/// What is shown of a number, as a whole number of its last place; so that the sum of the shown
/// lines is the shown sum.
long double shownUnits(double value, int places) {
  const double shown = base::ParseNumberPrefix(base::ToPlainString(value, places));
  return std::round(static_cast<long double>(shown) * std::pow(10.0L, places));
}

bool isLeaf(const std::vector<SheetRow>& rows, std::size_t row) {
  return row + 1 == rows.size() || rows[row + 1].level <= rows[row].level;
}

/// The sum of the numbers that the leaf rows show in `column`, with the most places of any.
SheetCell sumOf(const std::vector<SheetRow>& rows, std::size_t column) {
  const auto numberIn = [column](const SheetRow& row) {
    return column < row.cells.size() ? std::get_if<double>(&row.cells[column].value) : nullptr;
  };
  SheetCell sum;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (isLeaf(rows, row) && numberIn(rows[row]) != nullptr) {
      sum.places = std::max(sum.places, rows[row].cells[column].places);
    }
  }
  const long double unit = std::pow(10.0L, sum.places);
  long double units = 0;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    const double* number = isLeaf(rows, row) ? numberIn(rows[row]) : nullptr;
    if (number == nullptr) continue;
    const int places = rows[row].cells[column].places;
    units += shownUnits(*number, places) * std::pow(10.0L, sum.places - places);
  }
  sum.value = static_cast<double>(units / unit);
  return sum;
}

}  // namespace

void AddTotals(Sheet& sheet, const std::string& caption, const std::vector<std::string>& keys) {
  SheetRow totals;
  totals.cells.resize(sheet.columns.size());
  bool any = false;
  for (std::size_t column = 0; column < sheet.columns.size(); ++column) {
    const std::string& key = sheet.columns[column].key;
    if (std::find(keys.begin(), keys.end(), key) == keys.end()) continue;
    totals.cells[column] = sumOf(sheet.rows, column);
    any = true;
  }
  if (!any) return;
  const auto captioned = static_cast<std::size_t>(std::max(sheet.treeColumn, 0));
  if (captioned < totals.cells.size() &&
      std::holds_alternative<std::monostate>(totals.cells[captioned].value)) {
    totals.cells[captioned].value = caption;
  }
  sheet.totals = std::move(totals);
}

}  // namespace app
