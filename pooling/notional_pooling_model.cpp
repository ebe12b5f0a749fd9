#include "pooling/notional_pooling_model.h"

#include <QMessageBox>
#include <utility>

#include "host/app/services.h"
#include "host/domain/field_keys.h"
#include "host/domain/qce/notional_pooling_operator.h"

namespace gui::qce {

namespace keys = domain::keys;

QCENotionalPoolingModelImpl::QCENotionalPoolingModelImpl()
    : follower_(this, this, [this](const gui::RowFollower::Place& place) {
        gui::RowFollower::follow(checked_, place);
        gui::RowFollower::follow(quantities_, place);
      }) {}

domain::qce::QCENotionalPoolingOperator* QCENotionalPoolingModelImpl::getNPOperator() const {
  return dynamic_cast<domain::qce::QCENotionalPoolingOperator*>(getOperator());
}

// ---------------------------------------------------------------------------------------------
// Cells

bool QCENotionalPoolingModelImpl::hasKey(const QModelIndex& index, const std::string& key) const {
  const domain::DisplayRow* header = getHeader();
  const domain::ColumnDescriptor* column =
      header != nullptr ? header->column(index.column()) : nullptr;
  return column != nullptr && column->key == key;
}

QVariant QCENotionalPoolingModelImpl::data(const QModelIndex& index, int role) const {
  if (role == Qt::CheckStateRole && hasKey(index, keys::NPChoose)) {
    return static_cast<int>(checked_.count(index) != 0 ? Qt::Checked : Qt::Unchecked);
  }
  if ((role == Qt::DisplayRole || role == Qt::EditRole) && !quantities_.empty() &&
      hasKey(index, keys::NPCollectionAmount)) {
    const auto typed = quantities_.find(index);
    if (typed != quantities_.end()) return typed->second;
  }
  return TViewModel::data(index, role);
}

bool QCENotionalPoolingModelImpl::setData(const QModelIndex& index, const QVariant& value,
                                          int role) {
  proxy::Element* element = index.isValid() ? getInternalData(index) : nullptr;
  if (element == nullptr) return false;
  if (role == Qt::CheckStateRole && hasKey(index, keys::NPChoose)) {
    clickedStat(element, value.toBool());
    return true;
  }
  if (role == Qt::EditRole && hasKey(index, keys::NPCollectionAmount)) {
    return setQuantity(index, value);
  }
  return false;
}

bool QCENotionalPoolingModelImpl::setQuantity(const QModelIndex& index, const QVariant& value) {
  const auto* op = getNPOperator();
  if (op == nullptr) return false;
  const double entered = value.toDouble();
  const double maximum = op->getMaxCollectionAmount(getInternalData(index));
  // The quotient refuses a negative quantity as well, and takes 0 whatever can be pooled.
  if (!(maximum / entered >= 1.0)) {
    app::qce::GetQCEChannel()->message("超过最大可归集数量，请重新输入！", QMessageBox::Ok);
    return false;
  }
  quantities_[index] = value;
  emit dataChanged(index, index, {Qt::DisplayRole, Qt::EditRole});
  return true;
}

void QCENotionalPoolingModelImpl::clickedStat(proxy::Element* element, bool checked) {
  const int column = getColumnIndex(keys::NPChoose);
  if (element != nullptr && column >= 0) click(element, checked, column);
}

void QCENotionalPoolingModelImpl::click(proxy::Element* element, bool checked, int column) {
  const int children = element->childCount();
  for (int row = 0; row < children; ++row) click(element->child(row), checked, column);
  const QModelIndex index = makeIndex(element, column);
  const bool changed = checked ? checked_.insert(index).second : checked_.erase(index) != 0;
  if (changed) emit dataChanged(index, index, {Qt::CheckStateRole});
}

// ---------------------------------------------------------------------------------------------
// Commands

void QCENotionalPoolingModelImpl::setSubEngineerBills(std::vector<proxy::Element*>& bills) {
  beginResetModel();
  if (auto* op = getNPOperator()) op->setSubEngineerBills(bills);
  endResetModel();
}

void QCENotionalPoolingModelImpl::setCurrentQCEGLJItem(proxy::Element* item) {
  if (auto* op = getNPOperator()) op->setCurrentQCEGLJItem(item);
}

std::string QCENotionalPoolingModelImpl::getCurrentQCEResItemType() {
  const auto* op = getNPOperator();
  return op != nullptr ? op->getCurrentQCEResItemType() : std::string();
}

void QCENotionalPoolingModelImpl::getClickedElement(std::map<proxy::Element*, double>& quantities) {
  const int column = getColumnIndex(keys::NPCollectionAmount);
  for (const QModelIndex& index : checked_) {
    const QVariant shown = data(index.sibling(index.row(), column), Qt::DisplayRole);
    quantities[getInternalData(index)] = shown.toDouble();
  }
}

void QCENotionalPoolingModelImpl::collectToQCEResItem() {
  std::map<proxy::Element*, double> quantities;
  getClickedElement(quantities);
  auto* op = getNPOperator();
  if (!quantities.empty() && op != nullptr) op->collectToQCEResItem(quantities);
}

void QCENotionalPoolingModelImpl::usedToOtherBills(proxy::Element* bill) {
  const auto* op = getNPOperator();
  if (bill == nullptr || op == nullptr) return;
  // Checking adds to the set that is walked.
  std::vector<proxy::Element*> same;
  for (const QModelIndex& index : checked_) {
    const proxy::Element* row = getInternalData(index);
    const proxy::Element* owner = op->getOwningBill(row);
    if (owner == nullptr || owner->id() != bill->id()) continue;
    const std::vector<proxy::Element*> found = op->getSameRowsOfOtherBills(row);
    same.insert(same.end(), found.begin(), found.end());
  }
  const int column = getColumnIndex(keys::NPChoose);
  if (column < 0) return;
  for (proxy::Element* row : same) {
    setData(makeIndex(row, column), static_cast<int>(Qt::Checked), Qt::CheckStateRole);
  }
}

void QCENotionalPoolingModelImpl::cleanUpResources() {
  // Announced, since views may still be there.
  const std::set<QModelIndex> checked = std::exchange(checked_, {});
  for (const QModelIndex& index : checked) emit dataChanged(index, index, {Qt::CheckStateRole});
  const std::map<QModelIndex, QVariant> quantities = std::exchange(quantities_, {});
  for (const auto& typed : quantities) {
    emit dataChanged(typed.first, typed.first, {Qt::DisplayRole, Qt::EditRole});
  }
}

}  // namespace gui::qce
