#include "host/domain/qce/destructors/des_res_item_operator.h"

#include "host/domain/qce/destructors/des_res_item_keys.h"

namespace domain {

namespace keys {

const std::string BRIMarketTotalCost = "QCE_BRIMarketTotalCost";
const std::string BRILinkCB = "QCE_BRILinkCB";
const std::string BRIContract = "QCE_BRIContract";
const std::string BRIBillCount = "QCE_BRIBillCount";
const std::string BRIItemCount = "QCE_BRIItemCount";

}  // namespace keys

namespace qce::destructors {

DesResItemOperator::~DesResItemOperator() = default;
DesResItemGuideOperator::~DesResItemGuideOperator() = default;
DesResItemSummaryOperator::~DesResItemSummaryOperator() = default;
std::string DesResItemSummaryOperator::getEmptyReason() const {
  return {};
}

}  // namespace qce::destructors

}  // namespace domain
