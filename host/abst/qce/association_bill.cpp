#include "host/abst/qce/association_bill_controller.h"
#include "host/abst/qce/association_bill_left_model.h"
#include "host/abst/qce/association_bill_right_filter_model.h"

namespace abst::qce {

QCEAssociationBillController::~QCEAssociationBillController() = default;
QCEAssociationBillLeftModel::~QCEAssociationBillLeftModel() = default;
QCEAssociationBillRightModel::~QCEAssociationBillRightModel() = default;
QCEAssociationBillRightFilterModel::~QCEAssociationBillRightFilterModel() = default;

}  // namespace abst::qce
