#pragma once

#include <QModelIndex>
#include <utility>
#include <vector>

class QTreeView;

namespace bwidgets {

/// The rows above an index and its own, from the top level down; compares in the order in which a
/// tree shows its rows.
std::vector<int> rowPath(const QModelIndex& index);

/// Whether a tree shows the row: it is not hidden and everything above it is expanded.
bool isRowShown(const QTreeView& view, const QModelIndex& row);

/// A shown row and which of its columns are selected.
struct GridRow {
  QModelIndex index;                          ///< its cell in column 0
  std::vector<std::pair<int, int>> selected;  ///< runs of columns, first and last

  bool isSelected(int column) const;
};

/// The shown rows with a selected cell, from top to bottom. Disabled cells count like others.
std::vector<GridRow> selectedRows(const QTreeView& view);

}  // namespace bwidgets
