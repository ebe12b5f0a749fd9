#include "host/domain/qce/association_bill_left_operator.h"
#include "host/domain/qce/association_bill_right_operator.h"

namespace domain::qce {

QCEAssociationBillLeftOperator::~QCEAssociationBillLeftOperator() = default;
QCEAssociationBillRightOperator::~QCEAssociationBillRightOperator() = default;

bool QCEAssociationBillRightOperator::isUnified() const {
  return false;
}

std::optional<int> QCEAssociationBillRightOperator::getPrecision(const proxy::Element* /*row*/,
                                                                 const std::string& /*key*/) const {
  return {};
}

}  // namespace domain::qce
