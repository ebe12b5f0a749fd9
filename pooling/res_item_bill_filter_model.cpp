#include "pooling/res_item_bill_filter_model.h"

#include <utility>

#include "host/domain/field_keys.h"

namespace gui::qce {

void QCEResItemBillFilterModelImpl::setBaseResItem(proxy::Element* item) {
  if (auto* model = getRealModel()) model->setBaseResItem(item);
}

void QCEResItemBillFilterModelImpl::setSubProject(proxy::Element* subProject) {
  if (auto* model = getRealModel()) model->setSubProject(subProject);
}

void QCEResItemBillFilterModelImpl::setTableName(std::string name) {
  if (auto* model = getRealModel()) model->setTableName(std::move(name));
}

bool QCEResItemBillFilterModelImpl::setCoefficient(std::vector<proxy::Element*> bills,
                                                   double coefficient, bool multiply) {
  auto* model = getRealModel();
  return model != nullptr && model->setCoefficient(std::move(bills), coefficient, multiply);
}

bool QCEResItemBillFilterModelImpl::setAdjustedContent(std::vector<proxy::Element*> bills,
                                                       std::string content) {
  auto* model = getRealModel();
  return model != nullptr && model->setAdjustedContent(std::move(bills), std::move(content));
}

bool QCEResItemBillFilterModelImpl::setExcludeTaxPrice(proxy::Element* bill, double price) {
  auto* model = getRealModel();
  return model != nullptr && model->setExcludeTaxPrice(bill, price);
}

bool QCEResItemBillFilterModelImpl::setExcludeTaxPriceExpr(proxy::Element* bill,
                                                           const std::string& expression) {
  auto* model = getRealModel();
  return model != nullptr && model->setExcludeTaxPriceExpr(bill, expression);
}

bool QCEResItemBillFilterModelImpl::disassociateBill(std::vector<proxy::Element*> bills) {
  auto* model = getRealModel();
  return model != nullptr && model->disassociateBill(std::move(bills));
}

void QCEResItemBillFilterModelImpl::cleanUpResources() {
  if (auto* model = getRealModel()) model->cleanUpResources();
}

void QCEResItemBillFilterModelImpl::setAssociatedOnly(bool on) {
  if (std::exchange(associatedOnly_, on) != on) invalidate();
}

bool QCEResItemBillFilterModelImpl::filterAcceptsRow(proxy::Element* row) const {
  const domain::Operator* op = getOperator();
  if (!associatedOnly_ || row == nullptr || op == nullptr) return true;
  domain::Value value;
  if (!op->getValue(row, domain::keys::BRIAssociation, domain::DisplayRole, value)) return false;
  const auto* mark = std::get_if<std::string>(&value);
  return mark != nullptr && *mark == "√";
}

bool QCEResItemBillFilterModelImpl::isContent(int sourceColumn) const {
  const domain::DisplayTable* table = getDisplayTable();
  const domain::ColumnDescriptor* column =
      table != nullptr ? table->getHeader()->column(sourceColumn) : nullptr;
  return column != nullptr && column->key == domain::keys::SEContent;
}

bool QCEResItemBillFilterModelImpl::lessThan(const QModelIndex& left,
                                             const QModelIndex& right) const {
  if (left.column() == right.column() && isContent(left.column())) {
    return displayedNumber(left) < displayedNumber(right);
  }
  return TFilterViewModel::lessThan(left, right);
}

gui::SortInputs::Reader QCEResItemBillFilterModelImpl::sortReader(int sourceColumn) const {
  return isContent(sourceColumn) ? gui::readDisplayedNumber : bridgeReader(sourceColumn);
}

}  // namespace gui::qce
