#include "workbench/controllers/res_item_controller.h"

#include <utility>

#include "host/app/scoped_undo.h"
#include "workbench/controllers/association_bill_controller.h"
#include "workbench/controllers/notional_pooling_controller.h"

namespace controllers {

ResItemController::ResItemController(records::Project& project) : project_(project) {
  project_.addObserver(this);
}

ResItemController::~ResItemController() {
  project_.removeObserver(this);
}

std::vector<std::pair<std::string, proxy::Element*>> ResItemController::getSubProjects() const {
  std::vector<std::pair<std::string, proxy::Element*>> result;
  for (records::StructureNode* unitWork : project_.unitWorks()) {
    const auto* single = static_cast<const records::StructureNode*>(unitWork->parent());
    const bool several = project_.structure().size() > 1 && single != nullptr;
    result.emplace_back(several ? single->name + " / " + unitWork->name : unitWork->name, unitWork);
  }
  return result;
}

bool ResItemController::moveUp(proxy::Element* element) {
  auto* item = dynamic_cast<records::ResourceItem*>(element);
  if (item == nullptr) return false;
  const app::ScopedUndo undo("上移");
  return project_.moveUp(*item);
}

bool ResItemController::moveDown(proxy::Element* element) {
  auto* item = dynamic_cast<records::ResourceItem*>(element);
  if (item == nullptr) return false;
  const app::ScopedUndo undo("下移");
  return project_.moveDown(*item);
}

bool ResItemController::canCollectToCost(proxy::Element* item) const {
  return pooling_ != nullptr && NotionalPoolingController::canPoolInto(item);
}

void ResItemController::collectToCost(proxy::Element* item) {
  if (pooling_ != nullptr) pooling_->openPooling(item);
}

bool ResItemController::canAssociateBills(const std::vector<proxy::Element*>& items) const {
  return association_ != nullptr && !items.empty();
}

void ResItemController::associateBills(const std::vector<proxy::Element*>& items) {
  if (association_ != nullptr) association_->openAssociation(items);
}

void ResItemController::note(proxy::Element* element) {
  if (known_.insert(element).second) changed_.emplace_back(element);
}

void ResItemController::itemChanged(records::ResourceItem& item) {
  note(&item);
  if (item.group() == nullptr) return;
  note(item.group());
  note(project_.subProject(item.group()->unitWork()));
}

void ResItemController::bookingChanged(records::ResourceItem& /*item*/) {
  booked_ = true;
}

bool ResItemController::isShown(const proxy::Element* element) const {
  const proxy::ElementGroup* root = model_ != nullptr ? model_->getRoot() : nullptr;
  if (root == nullptr) return false;
  while (element->parent() != nullptr) element = element->parent();
  return root->member(element->row()) == element;
}

void ResItemController::aboutToInsert(records::ResourceGroup& parent, int row) {
  announced_ = isShown(&parent);
  if (announced_) model_->beginAddItem(parent.child(row), 1, &parent);
}

void ResItemController::inserted() {
  if (std::exchange(announced_, false)) model_->endAddItem();
}

void ResItemController::aboutToRemove(records::ResourceGroup& parent, int row) {
  announced_ = isShown(&parent);
  if (announced_) model_->beginDelItem(parent.child(row), 1, &parent);
}

void ResItemController::removed() {
  if (std::exchange(announced_, false)) model_->endDelItem();
}

void ResItemController::aboutToSwap(records::ResourceGroup& group, int upper) {
  announced_ = isShown(&group);
  if (announced_) model_->beginMoveUpItem(group.child(upper + 1), &group);
}

void ResItemController::swapped() {
  if (std::exchange(announced_, false)) model_->endMoveUpItem();
}

void ResItemController::rearranged(records::ResourceGroup& /*group*/) {
  rebuild_ = true;
}

void ResItemController::stepFinished() {
  // Handlers may edit in their turn, so that the lists are taken first.
  const auto changed = std::exchange(changed_, {});
  known_.clear();
  if (std::exchange(rebuild_, false) && model_ != nullptr) {
    model_->rebuildGroup();
  } else if (elementChanged_) {
    for (const scoped_refptr<proxy::Element>& element : changed) {
      if (model_ == nullptr || isShown(element.get())) elementChanged_(element.get());
    }
  }
  if (std::exchange(booked_, false) && bookingsChanged_) bookingsChanged_();
  if (totalsChanged_) totalsChanged_();
}

}  // namespace controllers
