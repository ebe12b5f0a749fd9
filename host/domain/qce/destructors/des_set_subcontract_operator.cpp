#include "host/domain/qce/destructors/des_set_subcontract_operator.h"

namespace domain::qce::destructors {

DesSetSubcontractBillOperator::~DesSetSubcontractBillOperator() = default;

}  // namespace domain::qce::destructors
