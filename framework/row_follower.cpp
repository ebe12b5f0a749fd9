#include "framework/row_follower.h"

#include "host/gui/view_model.h"

namespace gui {

RowFollower::RowFollower(QAbstractItemModel* model, const ViewModel* view, const Update& update) {
  const auto follow = [view, update] {
    update([view](const QModelIndex& index) {
      return view->makeIndex(view->getInternalData(index), index.column());
    });
  };
  const auto forget = [update] { update([](const QModelIndex&) { return QModelIndex(); }); };
  const auto drop = [update](const QModelIndex& parent, int first, int last) {
    update([&](const QModelIndex& index) {
      // Rows are told by their cell in column 0, as parents are.
      for (QModelIndex at = index.sibling(index.row(), 0); at.isValid(); at = at.parent()) {
        if (at.row() >= first && at.row() <= last && at.parent() == parent) return QModelIndex();
      }
      return index;
    });
  };
  QObject::connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, model, drop);
  QObject::connect(model, &QAbstractItemModel::rowsInserted, model, follow);
  QObject::connect(model, &QAbstractItemModel::rowsRemoved, model, follow);
  QObject::connect(model, &QAbstractItemModel::rowsMoved, model, follow);
  QObject::connect(model, &QAbstractItemModel::layoutChanged, model, follow);
  // The elements may be gone before the reset is over.
  QObject::connect(model, &QAbstractItemModel::modelAboutToBeReset, model, forget);
}

void RowFollower::follow(std::set<QModelIndex>& kept, const Place& place) {
  std::set<QModelIndex> after;
  for (const QModelIndex& index : kept) {
    const QModelIndex now = place(index);
    if (now.isValid()) after.insert(after.end(), now);
  }
  kept = std::move(after);
}

}  // namespace gui
