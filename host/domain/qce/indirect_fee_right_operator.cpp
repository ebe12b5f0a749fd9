#include "host/domain/qce/indirect_fee_right_operator.h"

namespace domain::qce {

QCEIndirectFeeRightOperator::~QCEIndirectFeeRightOperator() = default;

std::string QCEIndirectFeeRightOperator::formatHeader(const std::string& caption,
                                                      const std::string& name) const {
  return caption.empty() ? name : caption + " " + name;
}

}  // namespace domain::qce
