#pragma once

#include <QAbstractItemModel>
#include <functional>
#include <map>
#include <set>
#include <utility>

#include "qce_export.h"

namespace gui {

class ViewModel;

/// Keeps sets and maps that are keyed by indexes of a model true to their rows: an index follows
/// its element when rows are inserted, removed, moved or sorted, and goes with its row or with a
/// reset. An index never outlives its row.
///
/// Make it in the constructor of the model, so that it hears of a change before any view or proxy.
class QCE_EXPORT RowFollower {
 public:
  /// Where an index that was kept now stands; invalid when its row is gone or about to go.
  using Place = std::function<QModelIndex(const QModelIndex&)>;
  /// Puts every kept index in its place; see the functions below.
  using Update = std::function<void(const Place&)>;

  /// `model` is a gui::ViewModel too.
  RowFollower(QAbstractItemModel* model, const ViewModel* view, const Update& update);

  static void follow(std::set<QModelIndex>& kept, const Place& place);
  template <class Value>
  static void follow(std::map<QModelIndex, Value>& kept, const Place& place) {
    std::map<QModelIndex, Value> after;
    for (auto& [index, value] : kept) {
      const QModelIndex now = place(index);
      if (now.isValid()) after.emplace_hint(after.end(), now, std::move(value));
    }
    kept = std::move(after);
  }
};

}  // namespace gui
