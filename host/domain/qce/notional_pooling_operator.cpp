#include "host/domain/qce/notional_pooling_operator.h"

namespace domain::qce {

QCENotionalPoolingOperator::~QCENotionalPoolingOperator() = default;

}  // namespace domain::qce
