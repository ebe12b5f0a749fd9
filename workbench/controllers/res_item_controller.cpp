#include "workbench/controllers/res_item_controller.h"

#include <QMessageBox>
#include <algorithm>
#include <set>
#include <utility>

#include "host/app/scoped_undo.h"
#include "host/app/services.h"
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

std::vector<std::string> ResItemController::getItemTypes() const {
  std::vector<std::string> types;
  types.reserve(records::CategoryCount);
  for (int i = 0; i < records::CategoryCount; ++i) {
    types.push_back(records::nameOf(static_cast<records::Category>(i)));
  }
  return types;
}

proxy::Element* ResItemController::insertItem(proxy::Element* at, const std::string& type) {
  records::StructureNode* unitWork = at != nullptr ? project_.unitWorkOf(*at) : nullptr;
  const std::vector<std::string> types = getItemTypes();
  const auto found = std::find(types.begin(), types.end(), type);
  if (unitWork == nullptr || found == types.end()) return nullptr;
  records::ResourceItemData item;
  item.category = static_cast<records::Category>(found - types.begin());
  const auto& accounts = project_.allAccounts();
  const auto account = std::find_if(accounts.begin(), accounts.end(), [&item](const auto* each) {
    return each->defaultFor == item.category;
  });
  if (account != accounts.end()) item.account = *account;
  item.code = freeCode(*unitWork, item.category);
  item.name = project_.texts.intern("新增" + type);
  if (item.category == records::Category::Labour) item.unit = project_.texts.intern("工日");
  if (item.category == records::Category::Machinery) item.unit = project_.texts.intern("台班");
  item.taxRate = item.category == records::Category::Labour ? 3 : 13;
  const app::ScopedUndo undo("新增" + type);
  return project_.add(*unitWork, item);
}

// "补充人工001" and so on, as supplements to a list of prices are numbered.
records::Text ResItemController::freeCode(const records::StructureNode& unitWork,
                                          records::Category category) {
  const records::RowList& rows = project_.categoryGroup(unitWork, category)->rows();
  std::set<std::string> taken;
  for (int row = 0; row < rows.size(); ++row) {
    taken.insert(static_cast<const records::ResourceItem*>(rows.at(row))->code().str());
  }
  std::string code;
  int number = 0;
  do {
    const std::string digits = std::to_string(++number);
    code = "补充" + records::nameOf(category) +
           std::string(digits.size() < 3 ? 3 - digits.size() : 0, '0') + digits;
  } while (taken.count(code) > 0);
  return project_.texts.intern(code);
}

bool ResItemController::canDeleteItems(const std::vector<proxy::Element*>& items) const {
  return !items.empty();
}

void ResItemController::deleteItems(const std::vector<proxy::Element*>& items) {
  std::vector<scoped_refptr<records::ResourceItem>> going;
  for (proxy::Element* element : items) {
    auto* item = dynamic_cast<records::ResourceItem*>(element);
    if (item == nullptr) continue;
    const bool booked = project_.bookings().isBooked(*item);
    if (item->gathered() || booked) {
      app::qce::GetQCEChannel()->message(
          "“" + item->code().str() + " " + item->name().str() +
              (item->gathered() ? "”由清单工料机汇总而来，不能删除；不需要时可把单价设为 0。"
                                : "”已归集工料机或关联清单，不能删除；请先取消归集和关联。") +
              "\n本次没有删除任何人材机。",
          QMessageBox::Ok);
      return;
    }
    going.emplace_back(item);
  }
  const app::ScopedUndo undo("删除人材机");
  for (const auto& item : going) project_.remove(*item);
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
