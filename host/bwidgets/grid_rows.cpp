#include "host/bwidgets/grid_rows.h"

#include <QTreeView>
#include <algorithm>

namespace bwidgets {

std::vector<int> rowPath(const QModelIndex& index) {
  std::vector<int> path;
  for (QModelIndex at = index; at.isValid(); at = at.parent()) path.push_back(at.row());
  std::reverse(path.begin(), path.end());
  return path;
}

bool isRowShown(const QTreeView& view, const QModelIndex& row) {
  for (QModelIndex at = row; at.isValid() && at != view.rootIndex(); at = at.parent()) {
    if (view.isRowHidden(at.row(), at.parent())) return false;
    const QModelIndex above = at.parent();
    if (above.isValid() && above != view.rootIndex() && !view.isExpanded(above)) return false;
  }
  return row.isValid();
}

bool GridRow::isSelected(int column) const {
  return std::any_of(selected.begin(), selected.end(), [column](const std::pair<int, int>& run) {
    return run.first <= column && column <= run.second;
  });
}

std::vector<GridRow> selectedRows(const QTreeView& view) {
  if (view.selectionModel() == nullptr) return {};
  std::vector<std::pair<std::vector<int>, GridRow>> found;
  for (const QItemSelectionRange& range : view.selectionModel()->selection()) {
    if (!range.isValid()) continue;
    const QModelIndex parent = range.parent();
    if (parent.isValid() && (!view.isExpanded(parent) || !isRowShown(view, parent))) continue;
    std::vector<int> path = rowPath(parent);
    path.push_back(0);
    for (int row = range.top(); row <= range.bottom(); ++row) {
      if (view.isRowHidden(row, parent)) continue;
      path.back() = row;
      found.push_back(
          {path, {view.model()->index(row, 0, parent), {{range.left(), range.right()}}}});
    }
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<GridRow> rows;
  rows.reserve(found.size());
  for (auto& [path, row] : found) {
    if (!rows.empty() && rows.back().index == row.index) {
      rows.back().selected.push_back(row.selected.front());
    } else {
      rows.push_back(std::move(row));
    }
  }
  return rows;
}

}  // namespace bwidgets
