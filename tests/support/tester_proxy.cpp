#include "tests/support/tester_proxy.h"

#include <QAbstractItemModelTester>

namespace tests {

QModelIndex TesterProxy::index(int row, int column, const QModelIndex& parent) const {
  return parent.column() > 0 ? QModelIndex() : QIdentityProxyModel::index(row, column, parent);
}

int TesterProxy::rowCount(const QModelIndex& parent) const {
  return parent.column() > 0 ? 0 : QIdentityProxyModel::rowCount(parent);
}

int TesterProxy::columnCount(const QModelIndex& parent) const {
  return parent.column() > 0 ? 0 : QIdentityProxyModel::columnCount(parent);
}

bool TesterProxy::hasChildren(const QModelIndex& parent) const {
  return parent.column() <= 0 && QIdentityProxyModel::hasChildren(parent);
}

bool TesterProxy::canFetchMore(const QModelIndex& parent) const {
  return parent.column() <= 0 && QIdentityProxyModel::canFetchMore(parent);
}

Qt::ItemFlags TesterProxy::flags(const QModelIndex& index) const {
  return index.isValid() ? QIdentityProxyModel::flags(index) : Qt::NoItemFlags;
}

QAbstractItemModelTester* attachTester(QAbstractItemModel* model) {
  auto* watched = new TesterProxy(model);
  watched->setSourceModel(model);
  return new QAbstractItemModelTester(
      watched, QAbstractItemModelTester::FailureReportingMode::Fatal, watched);
}

}  // namespace tests
