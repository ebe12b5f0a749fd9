#include "resitem/model.h"

#include "host/domain/field_keys.h"
#include "host/domain/qce/res_item_operator.h"

namespace gui::qce {

domain::qce::QCEResItemOperator* QCEResItemModelImpl::getResItemOperator() const {
  return dynamic_cast<domain::qce::QCEResItemOperator*>(getOperator());
}

void QCEResItemModelImpl::setSubProject(proxy::Element* subProject) {
  auto* op = getResItemOperator();
  if (op == nullptr) return;
  beginResetModel();
  op->setSubProject(subProject);
  endResetModel();
}

void QCEResItemModelImpl::rebuildGroup() {
  auto* op = getResItemOperator();
  if (op == nullptr) return;
  beginResetModel();
  op->rebuildGroup();
  endResetModel();
}

std::string QCEResItemModelImpl::getHeadName(int column) const {
  return getDataField(column) != nullptr ? getFieldName(column) : std::string();
}

bool QCEResItemModelImpl::getComment(proxy::Element* item, std::string& out) const {
  const auto* op = getResItemOperator();
  return op != nullptr && item != nullptr && op->getComment(item, out);
}

bool QCEResItemModelImpl::setComment(proxy::Element* item, const std::string& comment) {
  auto* op = getResItemOperator();
  return op != nullptr && item != nullptr && op->setComment(item, comment);
}

void QCEResItemModelImpl::setExcludeTaxPrice(proxy::Element* item, double price) {
  const int column = getColumnIndex(domain::keys::BRIExcludedTaxFee);
  if (column >= 0) setData(makeIndex(item, column), price, Qt::EditRole);
}

bool QCEResItemModelImpl::setData(const QModelIndex& index, const QVariant& value, int role) {
  const bool written = TViewModel::setData(index, value, role);
  const std::string key = getHeadName(index.column());
  if (key == domain::keys::CostAccount || key == domain::keys::BRIExcludedTaxFee) return written;
  if (index.isValid()) emit dataChanged(index, index);
  return written;
}

}  // namespace gui::qce
