#include "workbench/records/project.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace records {
namespace {

ResourceItem& itemAt(const ResourceGroup& group, int row) {
  return *static_cast<ResourceItem*>(group.rows().at(row));
}

bool sortedByPlace(const ResourceGroup& group) {
  for (int row = 1; row < group.rows().size(); ++row) {
    if (itemAt(group, row - 1).position() > itemAt(group, row).position()) return false;
  }
  return true;
}

/// The row whose item has only to pass its lower neighbour for all to stand by their places; -1
/// when that is not all that is wrong.
int onlyInversion(const ResourceGroup& group) {
  int upper = -1;
  for (int row = 1; row < group.rows().size(); ++row) {
    if (itemAt(group, row - 1).position() < itemAt(group, row).position()) continue;
    if (upper >= 0) return -1;
    upper = row - 1;
  }
  if (upper < 0) return -1;
  const int high = itemAt(group, upper).position();
  const int low = itemAt(group, upper + 1).position();
  const bool above = upper == 0 || itemAt(group, upper - 1).position() < low;
  const bool below = upper + 2 >= group.rows().size() || high < itemAt(group, upper + 2).position();
  return above && below ? upper : -1;
}

}  // namespace

Observer::~Observer() = default;

Project::Project()
    : structure_(new Group), accounts_(new Group), feeGroups_(new Group), subProjects_(new Group) {}

Project::~Project() = default;

CostAccount* Project::findAccount(const std::string& text) const {
  const auto found = accountByText_.find(text);
  return found == accountByText_.end() ? nullptr : found->second;
}

ResourceGroup* Project::subProject(const StructureNode& unitWork) const {
  const auto found = bySubProject_.find(unitWork.id());
  return found == bySubProject_.end() ? nullptr : found->second.row.get();
}

ResourceGroup* Project::categoryGroup(const StructureNode& unitWork, Category category) const {
  const auto found = bySubProject_.find(unitWork.id());
  if (found == bySubProject_.end()) return nullptr;
  return found->second.categories[static_cast<std::size_t>(category)].get();
}

costing::Decimal Project::feeTotal() const {
  costing::Decimal total;
  const std::function<void(const RowList&)> add = [&](const RowList& rows) {
    for (int row = 0; row < rows.size(); ++row) {
      if (const auto* group = dynamic_cast<IndirectFeeGroup*>(rows.at(row))) {
        add(group->rows());
      } else {
        total += static_cast<IndirectFeeItem*>(rows.at(row))->amount;
      }
    }
  };
  add(feeGroups_->rows());
  return total;
}

FieldValue Project::value(const ResourceItem& item, ItemField field) const {
  switch (field) {
    case ItemField::Account:
      return item.account_;
    case ItemField::Code:
      return item.code_;
    case ItemField::Name:
      return item.name_;
    case ItemField::Spec:
      return item.spec_;
    case ItemField::Price:
      return item.price_;
    case ItemField::TaxRate:
      return item.taxRate_;
    case ItemField::OwnerSupplied:
      return item.ownerSupplied_;
    case ItemField::Provisional:
      return item.provisional_;
    case ItemField::PriceAdjustable:
      return item.priceAdjustable_;
    case ItemField::Associated:
      return item.associated_;
    case ItemField::Annotation:
      return item.annotation_;
    case ItemField::Quantity:
      return item.quantity_;
  }
  return false;
}

void Project::set(ResourceItem& item, ItemField field, const FieldValue& after) {
  const FieldValue before = value(item, field);
  if (before == after) return;
  record(SetField{scoped_refptr<ResourceItem>(&item), field, before, after});
}

void Project::add(StructureNode& unitWork, const ResourceItemData& data) {
  ResourceItemData placed = data;
  const ResourceGroup* group = categoryGroup(unitWork, data.category);
  if (group == nullptr) return;
  if (placed.position < 0) {
    placed.position = 0;
    for (int row = 0; row < group->rows().size(); ++row) {
      placed.position = std::max(placed.position, itemAt(*group, row).position() + 1);
    }
  }
  record(AddItem{makeItem(placed), &unitWork});
}

bool Project::remove(ResourceItem& item) {
  if (item.group() == nullptr || item.gathered()) return false;
  record(RemoveItem{scoped_refptr<ResourceItem>(&item), &item.group()->unitWork()});
  return true;
}

bool Project::moveUp(ResourceItem& item) {
  return item.group() != nullptr && swapWithNext(*item.group(), item.row() - 1);
}

bool Project::moveDown(ResourceItem& item) {
  return item.group() != nullptr && swapWithNext(*item.group(), item.row());
}

bool Project::swapWithNext(ResourceGroup& group, int upper) {
  if (upper < 0 || upper + 1 >= group.rows().size()) return false;
  Reposition change{&group, {}};
  const auto put = [&](int row, int after) {
    ResourceItem& item = itemAt(group, row);
    if (item.position() == after) return;
    change.places.push_back({scoped_refptr<ResourceItem>(&item), item.position(), after});
  };
  if (sortedByPlace(group)) {
    const int high = itemAt(group, upper + 1).position();
    const int low = itemAt(group, upper).position();
    put(upper, high);
    put(upper + 1, low);
  } else {
    // A view has sorted the group: what the user sees becomes the stored order.
    for (int row = 0; row < group.rows().size(); ++row) {
      put(row, row == upper ? row + 1 : row == upper + 1 ? row - 1 : row);
    }
  }
  record(std::move(change));
  return true;
}

ChangeSet Project::takeRecorded() {
  return std::exchange(recorded_, {});
}

void Project::record(Change change) {
  perform(change, Direction::Forward);
  recorded_.push_back(std::move(change));
}

void Project::apply(const ChangeSet& changes, Direction direction) {
  if (direction == Direction::Forward) {
    for (const Change& change : changes) perform(change, direction);
  } else {
    for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
      perform(*change, direction);
    }
  }
}

void Project::finishStep() {
  for (Observer* observer : std::vector<Observer*>(observers_)) observer->stepFinished();
}

void Project::perform(const Change& change, Direction direction) {
  const bool forward = direction == Direction::Forward;
  if (const auto* set = std::get_if<SetField>(&change)) {
    write(*set->item, set->field, forward ? set->after : set->before);
  } else if (const auto* added = std::get_if<AddItem>(&change)) {
    forward ? link(*added->unitWork, added->item) : unlink(*added->item);
  } else if (const auto* removed = std::get_if<RemoveItem>(&change)) {
    forward ? unlink(*removed->item) : link(*removed->unitWork, removed->item);
  } else {
    place(std::get<Reposition>(change), direction);
  }
}

void Project::write(ResourceItem& item, ItemField field, const FieldValue& value) {
  const costing::Totals before = item.totals();
  const auto money = [&](costing::PackedDecimal& target) {
    const costing::PackedDecimal old = target;
    target = std::get<costing::PackedDecimal>(value);
    try {
      item.recompute();
    } catch (...) {
      target = old;
      item.recompute();
      throw;
    }
  };
  switch (field) {
    case ItemField::Account:
      item.account_ = std::get<CostAccount*>(value);
      break;
    case ItemField::Code:
      item.code_ = std::get<Text>(value);
      break;
    case ItemField::Name:
      item.name_ = std::get<Text>(value);
      break;
    case ItemField::Spec:
      item.spec_ = std::get<Text>(value);
      break;
    case ItemField::Price:
      money(item.price_);
      break;
    case ItemField::TaxRate:
      money(item.taxRate_);
      break;
    case ItemField::OwnerSupplied:
      item.ownerSupplied_ = std::get<bool>(value);
      break;
    case ItemField::Provisional:
      item.provisional_ = std::get<bool>(value);
      break;
    case ItemField::PriceAdjustable:
      item.priceAdjustable_ = std::get<bool>(value);
      break;
    case ItemField::Associated:
      item.associated_ = std::get<bool>(value);
      break;
    case ItemField::Annotation:
      item.annotation_ = std::get<Text>(value);
      break;
    case ItemField::Quantity:
      money(item.quantity_);
      break;
  }
  if (item.group() != nullptr) count(*item.group(), before, item.totals());
  for (Observer* observer : observers_) observer->itemChanged(item);
}

void Project::count(ResourceGroup& group, const costing::Totals& before,
                    const costing::Totals& after) {
  if (before == after) return;
  const bool fresh = before == costing::Totals();  // a new item, as when a file is filled
  const auto move = [&](costing::Totals& totals) {
    if (!fresh) totals -= before;
    totals += after;
  };
  move(group.totals_);
  move(subProject(group.unitWork())->totals_);
  move(totals_);
}

scoped_refptr<ResourceItem> Project::makeItem(const ResourceItemData& data) {
  scoped_refptr<ResourceItem> item(new ResourceItem(data.id != 0 ? data.id : newId()));
  item->account_ = data.account;
  item->category_ = data.category;
  item->code_ = data.code;
  item->name_ = data.name;
  item->spec_ = data.spec;
  item->unit_ = data.unit;
  item->annotation_ = data.annotation;
  item->quantity_ = data.quantity;
  item->price_ = data.price;
  item->taxRate_ = data.taxRate;
  item->budgetAmount_ = data.budgetAmount;
  item->ownerSupplied_ = data.ownerSupplied;
  item->provisional_ = data.provisional;
  item->priceAdjustable_ = data.priceAdjustable;
  item->associated_ = data.associated;
  item->position_ = data.position;
  item->recompute();
  return item;
}

void Project::link(const StructureNode& unitWork, const scoped_refptr<ResourceItem>& item) {
  SubProject& subProject = bySubProject_.at(unitWork.id());
  const auto slot = static_cast<std::size_t>(item->category_);
  ResourceGroup& group = *subProject.categories[slot];
  const auto insert = [&](ResourceGroup& parent, int row, const scoped_refptr<Record>& record) {
    for (Observer* observer : observers_) observer->aboutToInsert(parent, row);
    parent.rows().insert(row, record);
    for (Observer* observer : observers_) observer->inserted();
  };
  if (group.rows().size() == 0) {
    int row = 0;
    for (std::size_t i = 0; i < slot; ++i) {
      if (subProject.categories[i]->rows().size() > 0) ++row;
    }
    insert(*subProject.row, row, subProject.categories[slot]);
  }
  // By its place among rows that stand by theirs; anywhere else there is no better row than the
  // last.
  int row = group.rows().size();
  while (row > 0 && itemAt(group, row - 1).position() > item->position_) --row;
  insert(group, row, item);
  count(group, {}, item->totals());
  ++itemCount_;
  for (Observer* observer : observers_) observer->itemChanged(*item);
}

void Project::unlink(ResourceItem& item) {
  const scoped_refptr<ResourceItem> alive(&item);
  ResourceGroup& group = *item.group();
  const auto remove = [&](ResourceGroup& parent, int row) {
    for (Observer* observer : observers_) observer->aboutToRemove(parent, row);
    parent.rows().take(row);
    for (Observer* observer : observers_) observer->removed();
  };
  count(group, item.totals(), {});
  --itemCount_;
  for (Observer* observer : observers_) observer->itemChanged(item);
  remove(group, item.row());
  if (group.rows().size() == 0) remove(*subProject(group.unitWork()), group.row());
}

void Project::place(const Reposition& change, Direction direction) {
  for (const Reposition::Place& place : change.places) {
    place.item->position_ = direction == Direction::Forward ? place.after : place.before;
  }
  ResourceGroup& group = *change.group;
  const int upper = onlyInversion(group);
  if (upper >= 0) {
    for (Observer* observer : observers_) observer->aboutToSwap(group, upper);
    group.rows().swap(upper, upper + 1);
    for (Observer* observer : observers_) observer->swapped();
  } else if (!sortedByPlace(group)) {
    for (Observer* observer : observers_) observer->rearranged(group);
  }
}

void Project::arrange() {
  const auto byPlace = [](proxy::Element* a, proxy::Element* b) {
    return static_cast<ResourceItem*>(a)->position() < static_cast<ResourceItem*>(b)->position();
  };
  const auto inFileOrder = [](proxy::Element* a, proxy::Element* b) {
    const auto* left = static_cast<ResourceGroup*>(a);
    const auto* right = static_cast<ResourceGroup*>(b);
    return std::make_pair(left->unitWork().id(), left->category()) <
           std::make_pair(right->unitWork().id(), right->category());
  };
  for (const auto& [id, subProject] : bySubProject_) {
    subProject.row->rows().reorderFlat(inFileOrder);
    for (const auto& category : subProject.categories) {
      if (!sortedByPlace(*category)) category->rows().reorderFlat(byPlace);
    }
  }
  std::unordered_map<const StructureNode*, int> order;
  for (std::size_t i = 0; i < unitWorks_.size(); ++i) order[unitWorks_[i]] = static_cast<int>(i);
  subProjects_->rows().reorderFlat([&](proxy::Element* a, proxy::Element* b) {
    return order[&static_cast<ResourceGroup*>(a)->unitWork()] <
           order[&static_cast<ResourceGroup*>(b)->unitWork()];
  });
}

std::string Project::dump() const {
  std::string out;
  const auto line = [&out](std::initializer_list<std::string> cells) {
    for (const std::string& cell : cells) out += cell + '|';
    out += '\n';
  };
  const auto money = [&](const std::string& name, const costing::Totals& totals) {
    line({name, totals.budget.toString(2), totals.excluded.toString(2),
          totals.included.toString(2)});
  };
  money("project", totals_);
  for (const StructureNode* unitWork : unitWorks_) {
    money("sub-project " + unitWork->code, subProject(*unitWork)->totals());
    for (int i = 0; i < CategoryCount; ++i) {
      const ResourceGroup* group = categoryGroup(*unitWork, static_cast<Category>(i));
      money(nameOf(static_cast<Category>(i)), group->totals());
      std::vector<const ResourceItem*> items;
      items.reserve(static_cast<std::size_t>(group->rows().size()));
      for (int row = 0; row < group->rows().size(); ++row) items.push_back(&itemAt(*group, row));
      std::sort(items.begin(), items.end(), [](const ResourceItem* a, const ResourceItem* b) {
        return a->position() < b->position();
      });
      for (const ResourceItem* item : items) {
        line({std::to_string(item->id()), std::to_string(item->position()),
              item->account() != nullptr ? item->account()->label : "", item->code().str(),
              item->name().str(), item->spec().str(), item->unit().str(),
              item->quantity().value().toString(), item->price().value().toString(),
              item->taxRate().value().toString(), item->budgetAmount().value().toString(2),
              item->excludedAmount().value().toString(2),
              item->includedAmount().value().toString(2), item->ownerSupplied() ? "1" : "0",
              item->provisional() ? "1" : "0", item->priceAdjustable() ? "1" : "0",
              item->associated() ? "1" : "0", item->annotation().str()});
      }
    }
  }
  return out;
}

void Project::addObserver(Observer* observer) {
  observers_.push_back(observer);
}

void Project::removeObserver(Observer* observer) {
  observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
}

}  // namespace records
