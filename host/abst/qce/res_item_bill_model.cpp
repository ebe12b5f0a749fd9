#include "host/abst/qce/res_item_bill_model.h"

#include "host/abst/qce/res_item_bill_filter_model.h"
#include "host/abst/qce/res_item_bill_view.h"

namespace abst::qce {

QCEResItemBillBase::~QCEResItemBillBase() = default;
QCEResItemBillModel::~QCEResItemBillModel() = default;
QCEResItemBillFilterModel::~QCEResItemBillFilterModel() = default;
QCEResItemBillView::~QCEResItemBillView() = default;
QCEResItemBillController::~QCEResItemBillController() = default;

void QCEResItemBillController::collect(proxy::Element* /*item*/,
                                       const std::vector<proxy::Element*>& /*bills*/) {}

bool QCEResItemBillController::canCollect() const {
  return false;
}

void QCEResItemBillController::withdraw(const std::vector<proxy::Element*>& /*bills*/) {}

bool QCEResItemBillController::canWithdraw(const std::vector<proxy::Element*>& /*bills*/) const {
  return false;
}

}  // namespace abst::qce
