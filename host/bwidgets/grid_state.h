#pragma once

#include <QPersistentModelIndex>
#include <QString>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

class QAbstractItemModel;

namespace bwidgets {

class TreeGridView;

/// What the user sees of a grid beyond its data: expansion, selection, current cell and scroll
/// position. Kept over resets by the ids of the elements, since a host may build them anew; kept
/// over layout changes by Qt itself but for the scroll position.
class GridState {
 public:
  explicit GridState(TreeGridView& grid) : grid_(grid) {}

  /// Before and after a reset.
  void save();
  void restore();
  /// Before a layout change, and after the view has laid out its rows.
  void keepTopRow();
  void restoreTopRow();
  /// Rows that go and come back, as with filters, come back expanded.
  void rowsAboutToBeRemoved(const QModelIndex& parent, int first, int last);
  void rowsInserted(const QModelIndex& parent, int first, int last);
  /// The model is another one.
  void forget();

 private:
  using Id = std::int64_t;
  struct Selected {
    Id id;
    std::vector<std::pair<int, int>> columns;
  };
  struct Saved {
    std::unordered_set<Id> expanded;
    std::vector<Selected> selected;
    std::optional<Id> current;
    int currentColumn = 0;
    std::string currentKey;
    std::optional<Id> top;
    int topOffset = 0;
    int horizontal = 0;
    int vertical = 0;
  };

  std::optional<Id> idOf(const QModelIndex& index) const;
  void collectExpanded(const QModelIndex& parent, int first, int last,
                       std::unordered_set<Id>& ids) const;
  void expandKnown(const QModelIndex& parent, int first, int last, std::unordered_set<Id>& ids);
  void findRows(const QModelIndex& parent, std::unordered_map<Id, QModelIndex>& wanted,
                std::size_t& missing) const;
  void scrollTo(const QModelIndex& top, int offset);

  TreeGridView& grid_;
  std::optional<Saved> saved_;
  std::unordered_set<Id> expandedAway_;  // of rows that are gone for now
  QPersistentModelIndex top_;
  int topOffset_ = 0;
  bool keepsTop_ = false;
};

}  // namespace bwidgets
