#pragma once

#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
#include <memory>

#include "benchmarks/rows.h"

namespace bench {

/// The yardstick: the same rows in a QStandardItemModel behind a QSortFilterProxyModel, as one
/// would write it first.
class Stock {
 public:
  explicit Stock(const Rows& rows);

  QSortFilterProxyModel& proxy() { return proxy_; }
  QStyledItemDelegate& delegate() { return *delegate_; }

 private:
  QStandardItemModel model_;
  QSortFilterProxyModel proxy_;
  std::unique_ptr<QStyledItemDelegate> delegate_;
};

}  // namespace bench
