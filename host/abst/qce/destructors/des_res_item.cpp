#include "host/abst/qce/destructors/des_res_item_controller.h"
#include "host/abst/qce/destructors/des_res_item_model.h"
#include "host/abst/qce/destructors/des_res_item_summary.h"

namespace abst::qce::destructors {

DesResItemController::~DesResItemController() = default;
std::string DesResItemController::getClosedReason(proxy::Element* /*item*/) const {
  return {};
}
bool DesResItemController::canCollect(const Items& /*items*/) const {
  return true;
}
CollectionEffect DesResItemController::getCollectionEffect(
    const Items& /*items*/, const CollectionSetting& /*setting*/) const {
  return {};
}
void DesResItemController::showItemPage(proxy::Element* /*current*/) {}
void DesResItemController::insertItem(proxy::Element* /*current*/) {}
void DesResItemController::deleteItems(const Items& /*items*/) {}

DesResItemBase::~DesResItemBase() = default;
DesResItemModel::~DesResItemModel() = default;
DesResItemFilterModel::~DesResItemFilterModel() = default;
DesResItemSummaryGuideModel::~DesResItemSummaryGuideModel() = default;
DesResItemSummaryTableBase::~DesResItemSummaryTableBase() = default;
DesResItemSummaryTableModel::~DesResItemSummaryTableModel() = default;
DesResItemSummaryTableFilterModel::~DesResItemSummaryTableFilterModel() = default;

}  // namespace abst::qce::destructors
