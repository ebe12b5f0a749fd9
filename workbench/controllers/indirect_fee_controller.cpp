#include "workbench/controllers/indirect_fee_controller.h"

#include "host/app/scoped_undo.h"
#include "workbench/operators/refusal.h"

namespace controllers {

IndirectFeeController::IndirectFeeController(records::Project& project,
                                             operators::IndirectFeeRightOperator& items)
    : project_(project), items_(items) {
  project_.addObserver(this);
}

IndirectFeeController::~IndirectFeeController() {
  project_.removeObserver(this);
}

bool IndirectFeeController::canAddItem(proxy::Element* group) const {
  return operators::IndirectFeeLeftOperator::groupOf(group) != nullptr && group->childCount() == 0;
}

proxy::Element* IndirectFeeController::addItem(proxy::Element* group) {
  auto* into = operators::IndirectFeeLeftOperator::groupOf(group);
  if (into == nullptr) return nullptr;
  scoped_refptr<records::IndirectFeeItem> item;
  try {
    const app::ScopedUndo undo("新增间接费");
    records::FeeData data;
    data.name = "新增费用";
    item.reset(&project_.addFee(*into, data));
  } catch (const records::Refusal& refusal) {
    operators::refuse(refusal.what());
    return nullptr;
  }
  // Gone again where it could not be stored.
  return item->parent() != nullptr ? items_.rowOf(*item) : nullptr;
}

bool IndirectFeeController::canRemoveItems(const std::vector<proxy::Element*>& items) const {
  return !items.empty();
}

bool IndirectFeeController::removeItems(const std::vector<proxy::Element*>& items) {
  std::vector<scoped_refptr<records::IndirectFeeItem>> fees;
  for (const proxy::Element* row : items) {
    if (auto* item = operators::IndirectFeeRightOperator::itemOf(row)) fees.emplace_back(item);
  }
  const app::ScopedUndo undo("删除间接费");
  try {
    for (const auto& fee : fees) project_.removeFee(*fee);
  } catch (const records::Refusal& refusal) {
    app::GetUndoService()->abandonScope();
    operators::refuse(refusal.what());
    return false;
  }
  return !fees.empty();
}

void IndirectFeeController::aboutToInsertFee(records::IndirectFeeGroup& group, int row) {
  row_ = &group == items_.group() ? row : -1;
  if (row_ >= 0 && model_ != nullptr) {
    model_->beginAddItem(items_.getRoot()->member(row), 1, nullptr);
  }
}

void IndirectFeeController::feeInserted() {
  if (row_ < 0) return;
  items_.insertRow(row_);
  if (model_ != nullptr) model_->endAddItem();
}

void IndirectFeeController::aboutToRemoveFee(records::IndirectFeeGroup& group, int row) {
  row_ = &group == items_.group() ? row : -1;
  if (row_ < 0) return;
  if (model_ != nullptr) model_->beginDelItem(items_.getRoot()->member(row), 1, nullptr);
  items_.removeRow(row);
}

void IndirectFeeController::feeRemoved() {
  if (row_ >= 0 && model_ != nullptr) model_->endDelItem();
}

void IndirectFeeController::stepFinished() {
  if (figuresChanged_) figuresChanged_();
}

}  // namespace controllers
