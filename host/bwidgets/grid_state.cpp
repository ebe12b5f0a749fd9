#include "host/bwidgets/grid_state.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QScrollBar>

#include "host/bwidgets/grid_rows.h"
#include "host/bwidgets/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "host/proxy/element.h"

namespace bwidgets {

std::optional<GridState::Id> GridState::idOf(const QModelIndex& index) const {
  const proxy::Element* element = grid_.elementAt(index);
  if (element == nullptr) return {};
  return element->id();
}

void GridState::collectExpanded(const QModelIndex& parent, int first, int last,
                                std::unordered_set<Id>& ids) const {
  const QAbstractItemModel* model = grid_.model();
  for (int row = first; row <= last; ++row) {
    const QModelIndex index = model->index(row, 0, parent);
    // A group whose rows are all filtered away is expanded, too.
    if (grid_.isExpanded(index)) {
      if (const std::optional<Id> id = idOf(index)) ids.insert(*id);
    }
    // Asked first since a filter model sets up a mapping for each index whose rows it counts.
    if (model->hasChildren(index)) collectExpanded(index, 0, model->rowCount(index) - 1, ids);
  }
}

void GridState::expandKnown(const QModelIndex& parent, int first, int last,
                            std::unordered_set<Id>& ids) {
  const QAbstractItemModel* model = grid_.model();
  for (int row = first; row <= last && !ids.empty(); ++row) {
    const QModelIndex index = model->index(row, 0, parent);
    const std::optional<Id> id = idOf(index);
    if (id && ids.erase(*id) > 0) grid_.setExpanded(index, true);
    if (model->hasChildren(index)) expandKnown(index, 0, model->rowCount(index) - 1, ids);
  }
}

void GridState::findRows(const QModelIndex& parent, std::unordered_map<Id, QModelIndex>& wanted,
                         std::size_t& missing) const {
  const QAbstractItemModel* model = grid_.model();
  const int rows = model->rowCount(parent);
  for (int row = 0; row < rows && missing > 0; ++row) {
    const QModelIndex index = model->index(row, 0, parent);
    if (const std::optional<Id> id = idOf(index)) {
      const auto found = wanted.find(*id);
      if (found != wanted.end() && !found->second.isValid()) {
        found->second = index;
        --missing;
      }
    }
    if (model->hasChildren(index)) findRows(index, wanted, missing);
  }
}

// ---------------------------------------------------------------------------------------------
// Reset

void GridState::save() {
  if (grid_.model() == nullptr || grid_.viewModel() == nullptr) return;
  const int rows = grid_.model()->rowCount(grid_.rootIndex());
  // A model that is emptied and then filled again keeps what was before the first of the two.
  if (rows == 0) return;

  Saved state;
  collectExpanded(grid_.rootIndex(), 0, rows - 1, state.expanded);
  for (const GridRow& row : selectedRows(grid_)) {
    if (const std::optional<Id> id = idOf(row.index)) state.selected.push_back({*id, row.selected});
  }
  const QModelIndex current = grid_.currentIndex();
  state.current = idOf(current);
  if (current.isValid()) {
    state.currentColumn = current.column();
    state.currentKey = grid_.viewModel()->getColumnName(current.column());
  }
  const QModelIndex top = grid_.indexAt(QPoint(0, 0));
  state.top = idOf(top);
  if (top.isValid()) state.topOffset = grid_.visualRect(top).top();
  state.horizontal = grid_.horizontalScrollBar()->value();
  state.vertical = grid_.verticalScrollBar()->value();
  saved_ = std::move(state);
}

void GridState::restore() {
  keepsTop_ = false;
  if (!saved_ || grid_.viewModel() == nullptr || grid_.model() == nullptr) return;
  const int rows = grid_.model()->rowCount(grid_.rootIndex());
  if (rows == 0) return;
  Saved state = std::move(*saved_);
  saved_.reset();

  std::unordered_set<Id> expanded = state.expanded;
  expandKnown(grid_.rootIndex(), 0, rows - 1, expanded);
  expandedAway_.insert(expanded.begin(), expanded.end());  // may come back with their rows

  std::unordered_map<Id, QModelIndex> wanted;
  for (const Selected& selected : state.selected) wanted[selected.id];
  if (state.current) wanted[*state.current];
  if (state.top) wanted[*state.top];
  std::size_t missing = wanted.size();
  findRows(grid_.rootIndex(), wanted, missing);

  QItemSelectionModel* selection = grid_.selectionModel();
  const int lastColumn = grid_.header()->count() - 1;
  if (state.current && wanted[*state.current].isValid()) {
    const QModelIndex row = wanted[*state.current];
    const int byKey =
        state.currentKey.empty() ? -1 : grid_.viewModel()->getColumnIndex(state.currentKey);
    const int column = byKey >= 0 && byKey <= lastColumn ? byKey : state.currentColumn;
    // Unlike the view's own way this neither scrolls nor expands.
    const bool scrolls = grid_.hasAutoScroll();
    grid_.setAutoScroll(false);
    selection->setCurrentIndex(row.sibling(row.row(), qMin(column, lastColumn)),
                               QItemSelectionModel::NoUpdate);
    grid_.setAutoScroll(scrolls);
  }
  QItemSelection ranges;
  for (const Selected& selected : state.selected) {
    const QModelIndex row = wanted[selected.id];
    if (!row.isValid()) continue;
    for (const auto& [left, right] : selected.columns) {
      if (left > lastColumn) continue;
      const QModelIndex from = row.sibling(row.row(), left);
      const QModelIndex to = row.sibling(row.row(), qMin(right, lastColumn));
      if (!ranges.isEmpty() && ranges.last().parent() == row.parent() &&
          ranges.last().bottom() + 1 == row.row() && ranges.last().left() == left &&
          ranges.last().right() == to.column()) {
        ranges.last() = QItemSelectionRange(ranges.last().topLeft(), to);
      } else {
        ranges.append(QItemSelectionRange(from, to));
      }
    }
  }
  selection->select(ranges, QItemSelectionModel::ClearAndSelect);

  grid_.executeDelayedItemsLayout();
  grid_.updateGeometries();
  grid_.horizontalScrollBar()->setValue(state.horizontal);
  const QModelIndex top = state.top ? wanted[*state.top] : QModelIndex();
  if (top.isValid() && isRowShown(grid_, top)) {
    scrollTo(top, state.topOffset);
  } else {
    grid_.verticalScrollBar()->setValue(state.vertical);
  }
}

// ---------------------------------------------------------------------------------------------
// Layout changes and rows that come and go

void GridState::keepTopRow() {
  if (keepsTop_) return;  // the layout of an earlier change is still due
  const QModelIndex top = grid_.indexAt(QPoint(0, 0));
  keepsTop_ = top.isValid();
  if (!keepsTop_) return;
  top_ = top;
  topOffset_ = grid_.visualRect(top).top();
}

void GridState::restoreTopRow() {
  if (!keepsTop_) return;
  keepsTop_ = false;
  const QModelIndex top = top_;
  top_ = QPersistentModelIndex();
  if (top.isValid() && isRowShown(grid_, top)) scrollTo(top, topOffset_);
}

void GridState::scrollTo(const QModelIndex& top, int offset) {
  QScrollBar* bar = grid_.verticalScrollBar();
  bar->setValue(bar->value() + grid_.visualRect(top).top() - offset);
}

void GridState::rowsAboutToBeRemoved(const QModelIndex& parent, int first, int last) {
  if (grid_.viewModel() != nullptr) collectExpanded(parent, first, last, expandedAway_);
}

void GridState::rowsInserted(const QModelIndex& parent, int first, int last) {
  if (!expandedAway_.empty()) expandKnown(parent, first, last, expandedAway_);
}

void GridState::forget() {
  saved_.reset();
  expandedAway_.clear();
  top_ = QPersistentModelIndex();
  keepsTop_ = false;
}

}  // namespace bwidgets
