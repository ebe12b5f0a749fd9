#include "workbench/controllers/res_item_bill_controller.h"

#include <utility>

#include "workbench/controllers/notional_pooling_controller.h"

namespace controllers {

ResItemBillController::ResItemBillController(records::Project& project,
                                             operators::ResItemBillOperator& rows,
                                             NotionalPoolingController* pooling)
    : project_(project), rows_(rows), pooling_(pooling) {
  project_.addObserver(this);
}

ResItemBillController::~ResItemBillController() {
  project_.removeObserver(this);
}

std::string ResItemBillController::getTableName(const proxy::Element* item) const {
  return rows_.tableNameOf(item);
}

std::string ResItemBillController::getItemName(const proxy::Element* element) const {
  const auto* item = dynamic_cast<const records::ResourceItem*>(element);
  if (item == nullptr || item->group() == nullptr) return {};
  std::string text = item->code().str() + " " + item->name().str();
  if (!item->spec().empty()) text += " " + item->spec().str();
  return item->unit().empty() ? text : text + "（" + item->unit().str() + "）";
}

void ResItemBillController::collect(proxy::Element* item,
                                    const std::vector<proxy::Element*>& rows) {
  const std::vector<records::Bill*> bills = rows_.billsOf(rows);
  if (pooling_ == nullptr || bills.empty()) return;
  pooling_->openPooling(item, std::vector<proxy::Element*>(bills.begin(), bills.end()),
                        bills.size() > 1);
}

void ResItemBillController::itemChanged(records::ResourceItem& item) {
  if (&item == rows_.baseItem()) concerned_ = true;
}

void ResItemBillController::bookingChanged(records::ResourceItem& item) {
  if (&item == rows_.baseItem()) concerned_ = true;
}

void ResItemBillController::stepFinished() {
  if (std::exchange(concerned_, false) && rowsChanged_) rowsChanged_();
}

}  // namespace controllers
