#include "pooling/notional_pooling_filter_model.h"

#include "host/domain/qce/notional_pooling_operator.h"

namespace gui::qce {

QCENotionalPoolingFilterModelImpl::QCENotionalPoolingFilterModelImpl(
    abst::qce::QCENotionalPoolingModel* source)
    : TFilterViewModel(source) {}

void QCENotionalPoolingFilterModelImpl::setSubEngineerBills(std::vector<proxy::Element*>& bills) {
  if (getSource() != nullptr) getSource()->setSubEngineerBills(bills);
}

void QCENotionalPoolingFilterModelImpl::setCurrentQCEGLJItem(proxy::Element* item) {
  if (getSource() != nullptr) getSource()->setCurrentQCEGLJItem(item);
}

std::string QCENotionalPoolingFilterModelImpl::getCurrentQCEResItemType() {
  return getSource() != nullptr ? getSource()->getCurrentQCEResItemType() : std::string();
}

void QCENotionalPoolingFilterModelImpl::collectToQCEResItem() {
  if (getSource() != nullptr) getSource()->collectToQCEResItem();
}

void QCENotionalPoolingFilterModelImpl::usedToOtherBills(proxy::Element* bill) {
  if (getSource() != nullptr) getSource()->usedToOtherBills(bill);
}

void QCENotionalPoolingFilterModelImpl::cleanUpResources() {
  if (getSource() != nullptr) getSource()->cleanUpResources();
  setCurrentSubEngBill(nullptr);
}

void QCENotionalPoolingFilterModelImpl::setCurrentSubEngBill(proxy::Element* bill) {
  if (currentBill_.get() == bill) return;
  currentBill_.reset(bill);
  invalidateFilter();
}

bool QCENotionalPoolingFilterModelImpl::filterAcceptsRow(proxy::Element* row) const {
  if (!currentBill_) return true;
  const domain::Operator* op = getOperator();
  if (op == nullptr || row == nullptr) return false;
  // Asked of every row of every bill: the cast is looked for once for a type.
  if (operatorType_ == nullptr || *operatorType_ != typeid(*op)) {
    if (dynamic_cast<const domain::qce::QCENotionalPoolingOperator*>(op) == nullptr) return false;
    operatorType_ = &typeid(*op);
  }
  const proxy::Element* owner =
      static_cast<const domain::qce::QCENotionalPoolingOperator*>(op)->getOwningBill(row);
  return owner != nullptr && owner->id() == currentBill_->id();
}

}  // namespace gui::qce
