#include "host/abst/qce/indirect_fee_controller.h"
#include "host/abst/qce/indirect_fee_left_model.h"
#include "host/abst/qce/indirect_fee_right_model.h"

namespace abst::qce {

QCEIndirectFeeController::~QCEIndirectFeeController() = default;
QCEIndirectFeeLeftModel::~QCEIndirectFeeLeftModel() = default;
QCEIndirectFeeRightModel::~QCEIndirectFeeRightModel() = default;

}  // namespace abst::qce
