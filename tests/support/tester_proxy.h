#pragma once

#include <QIdentityProxyModel>

class QAbstractItemModelTester;

namespace tests {

/// Shows a model as it is, but for two answers in which the module's models differ on purpose from
/// what QAbstractItemModelTester takes for granted: only a parent in column 0 has children, and
/// the invalid index has no flags. Rows, moves, resets, layout and header changes pass untouched.
class TesterProxy : public QIdentityProxyModel {
  Q_OBJECT

 public:
  explicit TesterProxy(QObject* parent = nullptr) : QIdentityProxyModel(parent) {}

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  bool hasChildren(const QModelIndex& parent = {}) const override;
  bool canFetchMore(const QModelIndex& parent) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
};

/// Watches `model` from now on: a fatal QAbstractItemModelTester on a TesterProxy over it. Both
/// belong to the model. Call it before the first row exists.
QAbstractItemModelTester* attachTester(QAbstractItemModel* model);

}  // namespace tests
