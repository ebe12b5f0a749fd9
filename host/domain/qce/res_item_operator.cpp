#include "host/domain/qce/res_item_operator.h"

namespace domain::qce {

QCEResItemOperator::~QCEResItemOperator() = default;

}  // namespace domain::qce
