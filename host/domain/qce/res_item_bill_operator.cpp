#include "host/domain/qce/res_item_bill_operator.h"

namespace domain::qce {

QCEResItemBillOperator::~QCEResItemBillOperator() = default;

}  // namespace domain::qce
