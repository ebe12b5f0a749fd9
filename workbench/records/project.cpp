#include "workbench/records/project.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

#include "workbench/records/labels.h"

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
    : structure_(new Group),
      accounts_(new Group),
      feeGroups_(new Group),
      subcontracts_(new Group),
      subProjects_(new Group) {}

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
    case ItemField::Annotation:
      return item.annotation_;
    case ItemField::Quantity:
      return item.quantity_;
    case ItemField::Linked:
      return item.linked_;
    case ItemField::Unit:
      return item.unit_;
  }
  return false;
}

void Project::set(ResourceItem& item, ItemField field, const FieldValue& after) {
  const FieldValue before = value(item, field);
  if (before == after) return;
  if (field == ItemField::Quantity && bookings_.quantityFollows(item)) {
    throw Refusal(label(item) +
                  "的数量由清单汇总而来，不能直接修改；请修改所在清单的实际含量或系数。");
  }
  if (field == ItemField::Linked) return setLinked({&item}, std::get<bool>(after));
  if (field == ItemField::Unit && item.gathered()) {
    throw Refusal(label(item) + "由清单工料机汇总而来，单位不能修改；请新增一项人材机。");
  }
  record(SetField{scoped_refptr<ResourceItem>(&item), field, before, after});
}

ResourceItem* Project::add(StructureNode& unitWork, const ResourceItemData& data) {
  ResourceItemData placed = data;
  const ResourceGroup* group = categoryGroup(unitWork, data.category);
  if (group == nullptr) return nullptr;
  if (placed.position < 0) {
    placed.position = 0;
    for (int row = 0; row < group->rows().size(); ++row) {
      placed.position = std::max(placed.position, itemAt(*group, row).position() + 1);
    }
  }
  const scoped_refptr<ResourceItem> item = makeItem(placed);
  record(AddItem{item, &unitWork});
  return item.get();
}

bool Project::remove(ResourceItem& item) {
  if (item.group() == nullptr || item.gathered() || bookings_.isBooked(item)) {
    return false;
  }
  const scoped_refptr<ResourceItem> kept(&item);
  ChangeSet changes;
  if (item.subcontract() != nullptr) {
    changes.emplace_back(
        SetCollection{kept, scoped_refptr<Subcontract>(item.subcontract()), nullptr});
  }
  changes.emplace_back(RemoveItem{kept, &item.group()->unitWork()});
  recordAll(std::move(changes));
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

void Project::setTaxation(const Taxation& taxation) {
  if (taxation == this->taxation()) return;
  const std::string problem = problemOf(taxation);
  if (!problem.empty()) throw Refusal(problem);
  record(SetTaxation{this->taxation(), taxation});
}

ChangeSet Project::takeRecorded() {
  return std::exchange(recorded_, {});
}

void Project::record(Change change) {
  perform(change, Direction::Forward);
  recorded_.push_back(std::move(change));
}

void Project::recordAll(ChangeSet changes) {
  std::size_t done = 0;
  try {
    for (; done < changes.size(); ++done) perform(changes[done], Direction::Forward);
  } catch (...) {
    while (done > 0) perform(changes[--done], Direction::Backward);
    throw;
  }
  std::move(changes.begin(), changes.end(), std::back_inserter(recorded_));
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
  feeCache_.clear();
  if (const auto* set = std::get_if<SetField>(&change)) {
    write(*set->item, set->field, forward ? set->after : set->before);
  } else if (const auto* added = std::get_if<AddItem>(&change)) {
    forward ? link(*added->unitWork, added->item) : unlink(*added->item);
  } else if (const auto* removed = std::get_if<RemoveItem>(&change)) {
    forward ? unlink(*removed->item) : link(*removed->unitWork, removed->item);
  } else if (const auto* pooling = std::get_if<SetPooling>(&change)) {
    write(*pooling, forward ? pooling->after : pooling->before);
  } else if (const auto* terms = std::get_if<SetTerms>(&change)) {
    write(*terms, forward ? terms->after : terms->before);
  } else if (const auto* bill = std::get_if<SetBill>(&change)) {
    write(*bill->bill, forward ? bill->after : bill->before);
  } else if (const auto* fee = std::get_if<SetFee>(&change)) {
    write(*fee->item, forward ? fee->after : fee->before);
  } else if (const auto* addedFee = std::get_if<AddFee>(&change)) {
    forward ? link(*addedFee->group, addedFee->row, addedFee->item) : unlink(addedFee->item);
  } else if (const auto* removedFee = std::get_if<RemoveFee>(&change)) {
    forward ? unlink(removedFee->item)
            : link(*removedFee->group, removedFee->row, removedFee->item);
  } else if (const auto* collection = std::get_if<SetCollection>(&change)) {
    write(*collection->item, (forward ? collection->after : collection->before).get());
  } else if (const auto* entry = std::get_if<SetSubcontract>(&change)) {
    write(*entry->entry, forward ? entry->after : entry->before);
  } else if (const auto* addedEntry = std::get_if<AddSubcontract>(&change)) {
    forward ? link(addedEntry->row, addedEntry->entry) : unlink(addedEntry->entry);
  } else if (const auto* removedEntry = std::get_if<RemoveSubcontract>(&change)) {
    forward ? unlink(removedEntry->entry) : link(removedEntry->row, removedEntry->entry);
  } else if (const auto* moved = std::get_if<MoveSubcontract>(&change)) {
    forward ? move(moved->from, moved->to) : move(moved->to, moved->from);
  } else if (const auto* assigned = std::get_if<AssignBill>(&change)) {
    forward ? link(*assigned->entry, assigned->row, assigned->bill)
            : unlink(*assigned->entry, assigned->bill);
  } else if (const auto* unassigned = std::get_if<UnassignBill>(&change)) {
    forward ? unlink(*unassigned->entry, unassigned->bill)
            : link(*unassigned->entry, unassigned->row, unassigned->bill);
  } else if (const auto* taxed = std::get_if<SetTaxation>(&change)) {
    const Taxation& next = forward ? taxed->after : taxed->before;
    facts.taxMethod = next.method;
    facts.taxRate = next.rate;
  } else {
    place(std::get<Reposition>(change), direction);
  }
  feeCache_.clear();  // observers may have asked meanwhile
}

void Project::write(ResourceItem& item, ItemField field, const FieldValue& value) {
  const costing::Totals before = item.totals();
  const auto money = [&](costing::PackedDecimal& target) {
    const costing::PackedDecimal old = target;
    const auto put = [&](costing::PackedDecimal number) {
      target = number;
      if (field == ItemField::TaxRate) bookings_.reprice(item);
      setAmounts(item);
    };
    try {
      put(std::get<costing::PackedDecimal>(value));
    } catch (...) {
      put(old);
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
    case ItemField::Annotation:
      item.annotation_ = std::get<Text>(value);
      break;
    case ItemField::Quantity:
      money(item.quantity_);
      if (bookings_.sumsOf(item) != nullptr) {
        bookings_.setOwnQuantity(item, item.quantity_.value());
      }
      break;
    case ItemField::Linked:
      countWaiting(item, -1);
      item.linked_ = std::get<bool>(value);
      countWaiting(item, 1);
      setAmounts(item);
      break;
    case ItemField::Unit:
      item.unit_ = std::get<Text>(value);
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
  item->position_ = data.position;
  item->linked_ = data.linked;
  setAmounts(*item);
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
  countWaiting(*item, 1);
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
  countWaiting(item, -1);
  for (Observer* observer : observers_) observer->itemChanged(item);
  remove(group, item.row());
  bookings_.forget(item);
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
  line({"tax", facts.taxMethod, facts.taxRate.toString()});
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
        line({std::to_string(item->id()),
              std::to_string(item->position()),
              item->account() != nullptr ? item->account()->label : "",
              item->code().str(),
              item->name().str(),
              item->spec().str(),
              item->unit().str(),
              item->quantity().value().toString(),
              bookings_.ownQuantity(*item).toString(),
              item->price().value().toString(),
              item->taxRate().value().toString(),
              item->budgetAmount().value().toString(2),
              item->excludedAmount().value().toString(2),
              item->includedAmount().value().toString(2),
              item->ownerSupplied() ? "1" : "0",
              item->provisional() ? "1" : "0",
              item->priceAdjustable() ? "1" : "0",
              item->associated() ? "1" : "0",
              item->annotation().str(),
              item->linked() ? "1" : "0",
              item->subcontract() != nullptr ? std::to_string(item->subcontract()->id()) : ""});
        for (const Bill* bill : bookings_.billsWithTerms(*item)) {
          const LineTerms& terms = *bookings_.termsOf(*item, *bill);
          line({"bill", std::to_string(bill->id()), terms.associated ? "1" : "0",
                terms.summary ? "1" : "0", terms.summaryUnit.str(), terms.coefficient.toString(),
                terms.content ? terms.content->toString() : "",
                terms.price ? terms.price->toString() : "", terms.priceExpression.str()});
        }
      }
    }
  }
  const std::function<void(const RowList&)> bills = [&](const RowList& rows) {
    for (int row = 0; row < rows.size(); ++row) {
      const auto* bill = dynamic_cast<Bill*>(rows.at(row));
      if (bill == nullptr) {
        bills(static_cast<Branch*>(rows.at(row))->rows());
        continue;
      }
      line({"bill", std::to_string(bill->id()), bill->code.str(), bill->name.str(),
            bill->features.str(), bill->unit.str(), bill->type.str(), bill->remark.str(),
            bill->account != nullptr ? bill->account->label : "", bill->quantity.value().toString(),
            bill->expression.str(),
            bill->costQuantity ? bill->costQuantity->value().toString() : ""});
      for (const Subcontract* entry : subcontractsOf(*bill)) {
        line({"given to", std::to_string(entry->id())});
      }
      for (const QuantityLine& quantity : bill->quantityLines) {
        line({"quantity", quantity.remark.str(), quantity.expression.str()});
      }
    }
  };
  bills(structure_->rows());
  for (const BudgetItem* budgetItem : bookings_.pooledItems()) {
    for (const Bookings::Pooling& pooling : bookings_.poolingsOf(*budgetItem)) {
      line({"pooling", std::to_string(budgetItem->id()), std::to_string(pooling.into->id()),
            pooling.quantity.toString()});
    }
  }
  forEachFee(feeGroups_->rows(), [&](const IndirectFeeItem& fee) {
    const auto number = [](const std::optional<costing::Decimal>& value) {
      return value ? value->toString() : std::string();
    };
    line({"fee", std::to_string(fee.id()), std::to_string(fee.parent()->id()),
          std::to_string(fee.row()), fee.code, fee.name, fee.basis,
          fee.account != nullptr ? fee.account->label : "", number(fee.base), number(fee.rate),
          fee.amount.toString(2)});
    if (fee.cost) {
      line({"cost", fee.cost->base, number(fee.cost->rate), fee.cost->amount.toString(2),
            figures(fee).amount.toString(2)});
    }
  });
  for (int row = 0; row < subcontracts_->size(); ++row) {
    const auto& entry = *static_cast<const Subcontract*>(subcontracts_->rows().at(row));
    line({"subcontract",
          std::to_string(entry.id()),
          entry.code.str(),
          entry.name.str(),
          entry.features.str(),
          entry.unit.str(),
          entry.contractType.str(),
          nameOf(entry.metering),
          entry.attachment.str(),
          entry.contentQuota.str(),
          entry.priceExpiryDate.str(),
          entry.applicableArea.str(),
          entry.remark.str(),
          entry.price.toString(),
          entry.taxRate.toString(),
          entry.quantity.toString(),
          entry.account != nullptr ? entry.account->label : "",
          entry.quantityNow().toString(),
          entry.amount().toString(2),
          entry.includedAmount().toString(2)});
    for (int i = 0; i < entry.rows().size(); ++i) {
      line({"of bill", std::to_string(entry.billAt(i).id()),
            std::to_string(entry.billAt(i).bill.id())});
    }
    for (const ResourceItem* item : collectedItems(entry)) {
      line({"collected", std::to_string(item->id())});
    }
  }
  line({"waiting", std::to_string(itemsWaiting_)});
  return out;
}

// Bills

namespace {

const costing::Decimal MostQuantity(1000000000);

// The value of one calculation; `place` says where it stands.
costing::Decimal valueOf(Text expression, const costing::Variables& variables,
                         const std::string& place) {
  try {
    return costing::evaluate(expression.str(), variables);
  } catch (const costing::ExpressionError& error) {
    throw Refusal(place + "“" + expression.str() + "”：" + error.what());
  }
}

}  // namespace

costing::Variables Project::variablesFor(const Bill& bill) const {
  return {{"工程量", bill.quantity.value()}, {"建筑面积", facts.buildingArea}};
}

std::optional<costing::PackedDecimal> Project::costQuantityOf(const Bill& bill,
                                                              const BillData& data) const {
  const costing::Variables variables = variablesFor(bill);
  const std::string place = label(bill) + "的成本工程量";
  costing::Decimal sum;
  bool any = false;
  if (!data.expression.empty()) {
    sum = valueOf(data.expression, variables, place + "计算式");
    any = true;
  }
  for (std::size_t i = 0; i < data.quantityLines.size(); ++i) {
    const Text expression = data.quantityLines[i].expression;
    if (expression.empty()) continue;
    const std::string line = place + "明细第 " + std::to_string(i + 1) + " 行";
    sum += valueOf(expression, variables, line);
    any = true;
  }
  if (!any) return {};
  const costing::Decimal quantity = costing::storedQuantity(sum, data.unit.str());
  if (quantity.isNegative() || quantity > MostQuantity) {
    throw Refusal(place + "应在 0 到 1,000,000,000 之间，计算结果为 " + quantity.toString() +
                  "；请修改计算式。");
  }
  return costing::PackedDecimal(quantity);
}

void Project::set(Bill& bill, BillData data) {
  if (data.code.empty()) throw Refusal(label(bill) + "的编码不能为空，请重新输入。");
  if (data.name.empty()) throw Refusal(label(bill) + "的名称不能为空，请重新输入。");
  data.costQuantity = costQuantityOf(bill, data);
  if (data == bill.data()) return;
  requireAssignable(bill, data);
  record(SetBill{&bill, bill.data(), std::move(data)});
}

void Project::write(Bill& bill, const BillData& data) {
  std::vector<std::pair<ResourceItem*, costing::Totals>> touched;
  const std::optional<costing::PackedDecimal> before = bill.costQuantity;
  if (before != data.costQuantity) {
    for (ResourceItem* item : bookings_.itemsOf(bill)) touched.emplace_back(item, item->totals());
    bookings_.setCostQuantity(bill, data.costQuantity);
    try {
      for (const auto& [item, totals] : touched) refresh(*item, totals.budget);
    } catch (...) {
      bookings_.setCostQuantity(bill, before);
      for (const auto& [item, totals] : touched) refresh(*item, totals.budget);
      throw;
    }
  }
  bill.data() = data;
  for (const auto& [item, totals] : touched) tell(*item, totals);
  for (Observer* observer : observers_) observer->billChanged(bill);
  if (before == data.costQuantity) return;
  for (Subcontract* entry : subcontractsOf(bill)) {
    for (Observer* observer : observers_) observer->subcontractChanged(*entry);
  }
}

// Booking

namespace {

/// Own quantity and that of lines together. Without lines it is what was entered, unrounded.
costing::Decimal stored(const ResourceItem& item, const costing::Decimal& own,
                        const costing::Decimal& lines) {
  return lines.isZero() ? own : costing::storedQuantity(own + lines, item.unit().str());
}

std::shared_ptr<const LineTerms> shared(const LineTerms& terms) {
  return terms == LineTerms() ? nullptr : std::make_shared<const LineTerms>(terms);
}

}  // namespace

std::pair<costing::Decimal, costing::Decimal> Project::amountsOf(const ResourceItem& item) const {
  costing::Decimal quantity = item.quantity_.value();
  costing::Decimal excluded;
  costing::Decimal included;
  if (const Bookings::Sums* sums = bookings_.sumsOf(item)) {
    // Lines with a price of their own bring their own money.
    if (!sums->priced.isZero()) quantity = stored(item, sums->own, sums->lines - sums->priced);
    excluded = sums->pricedExcluded;
    included = sums->pricedIncluded;
  }
  const costing::Decimal price = item.price_.value();
  excluded += costing::excludedTaxAmount(quantity, price);
  included += costing::includedTaxAmount(quantity, price, item.taxRate_.value());
  return {excluded, included};
}

void Project::setAmounts(ResourceItem& item) const {
  // Also of an item that does not count, so that it can count at any time.
  const auto [excluded, included] = amountsOf(item);
  const costing::PackedDecimal checkedExcluded = excluded;
  const costing::PackedDecimal checkedIncluded = included;
  const bool counts = item.counts();
  item.excludedAmount_ = counts ? checkedExcluded : costing::PackedDecimal();
  item.includedAmount_ = counts ? checkedIncluded : costing::PackedDecimal();
}

void Project::refresh(ResourceItem& item, const costing::Decimal& budgetAmount) {
  const Bookings::Sums& sums = *bookings_.sumsOf(item);
  item.quantity_ = stored(item, sums.own, sums.lines);
  item.budgetAmount_ = budgetAmount;
  item.associated_ = bookings_.isAssociated(item);
  setAmounts(item);
}

void Project::tell(ResourceItem& item, const costing::Totals& before) {
  if (item.group() != nullptr) count(*item.group(), before, item.totals());
  for (Observer* observer : observers_) {
    observer->itemChanged(item);
    observer->bookingChanged(item);
  }
}

void Project::write(const SetPooling& change, const costing::Decimal& quantity) {
  struct Touched {
    ResourceItem* item;
    costing::Totals before;
    costing::Decimal budget;
  };
  std::vector<Touched> touched;
  const auto add = [&](ResourceItem* item, const costing::Decimal& money) {
    const auto known = std::find_if(touched.begin(), touched.end(),
                                    [item](const Touched& one) { return one.item == item; });
    if (known != touched.end()) {
      known->budget += money;
    } else {
      touched.push_back({item, item->totals(), item->totals().budget + money});
    }
  };
  // Cents may move between all items that have a share.
  BudgetItem& budgetItem = *change.budgetItem;
  const costing::Decimal before = bookings_.pooled(budgetItem, *change.into);
  for (const Bookings::Share& share : bookings_.sharesOf(budgetItem)) add(share.item, -share.money);
  bookings_.setPooling(budgetItem, *change.into, quantity);
  try {
    for (const Bookings::Share& share : bookings_.sharesOf(budgetItem)) {
      add(share.item, share.money);
    }
    for (const Touched& one : touched) refresh(*one.item, one.budget);
  } catch (...) {
    bookings_.setPooling(budgetItem, *change.into, before);
    for (const Touched& one : touched) refresh(*one.item, one.before.budget);
    throw;
  }
  for (const Touched& one : touched) tell(*one.item, one.before);
}

void Project::write(const SetTerms& change, const Bookings::Terms& terms) {
  ResourceItem& item = *change.item;
  const Bookings::Terms old = bookings_.termsOf(item, *change.bill);
  const costing::Totals before = item.totals();
  bookings_.setTerms(item, *change.bill, terms);
  try {
    refresh(item, before.budget);
  } catch (...) {
    bookings_.setTerms(item, *change.bill, old);
    refresh(item, before.budget);
    throw;
  }
  tell(item, before);
}

bool Project::sameResource(const BudgetItem& a, const BudgetItem& b) const {
  return a.category == b.category && a.name == b.name && a.spec == b.spec && a.unit == b.unit;
}

void Project::requireSameUnitWork(const ResourceItem& item, const Bill& bill) const {
  const StructureNode* unitWork = unitWorkOf(item);
  if (unitWork != nullptr && unitWork == unitWorkOf(bill)) return;
  throw Refusal(label(bill) + "与成本" + label(item) +
                "不在同一单位工程，不能归集或关联；请选择同一单位工程的清单。");
}

void Project::pool(BudgetItem& item, ResourceItem& into, const costing::Decimal& quantity) {
  Bill& bill = billOf(item);
  requireSameUnitWork(into, bill);
  const costing::Decimal left = remaining(item);
  if (quantity.isNegative() || quantity > left) {
    const std::string unit = item.unit.empty() ? "" : " " + item.unit.str();
    throw Refusal(label(bill) + "的预算工料机“" + item.code.str() + " " + item.name.str() +
                  "”剩余可归集数量为 " + left.toString() + unit + "，不能归集 " +
                  quantity.toString() + unit + "；请输入 0 到剩余数量之间的数量。");
  }
  if (quantity.isZero()) return;
  ChangeSet changes;
  LineTerms terms = this->terms(into, bill);
  if (!terms.associated) {
    terms.associated = true;
    changes.emplace_back(SetTerms{scoped_refptr<ResourceItem>(&into), &bill,
                                  bookings_.termsOf(into, bill), shared(terms)});
  }
  const costing::Decimal before = pooled(item, into);
  changes.emplace_back(
      SetPooling{&item, scoped_refptr<ResourceItem>(&into), before, before + quantity});
  recordAll(std::move(changes));
}

void Project::withdraw(BudgetItem& item, ResourceItem& from) {
  const costing::Decimal before = pooled(item, from);
  if (before.isZero()) return;
  record(SetPooling{&item, scoped_refptr<ResourceItem>(&from), before, {}});
}

void Project::associate(ResourceItem& item, Bill& bill, bool summary) {
  LineTerms next = terms(item, bill);
  next.associated = true;
  next.summary = summary;
  setTerms(item, bill, next);
}

void Project::disassociate(ResourceItem& item, Bill& bill) {
  const scoped_refptr<ResourceItem> kept(&item);
  ChangeSet changes;
  for (int row = 0; row < bill.rows().size(); ++row) {
    auto* budgetItem = static_cast<BudgetItem*>(bill.rows().at(row));
    const costing::Decimal before = pooled(*budgetItem, item);
    if (!before.isZero()) changes.emplace_back(SetPooling{budgetItem, kept, before, {}});
  }
  if (const Bookings::Terms before = bookings_.termsOf(item, bill)) {
    changes.emplace_back(SetTerms{kept, &bill, before, nullptr});
  }
  recordAll(std::move(changes));
}

LineTerms Project::terms(const ResourceItem& item, const Bill& bill) const {
  const Bookings::Terms stored = bookings_.termsOf(item, bill);
  return stored && bookings_.hasLine(item, bill) ? *stored : LineTerms();
}

void Project::setTerms(ResourceItem& item, Bill& bill, const LineTerms& terms) {
  requireSameUnitWork(item, bill);
  const std::string place = label(bill) + "在成本" + label(item) + "中的";
  if (terms.coefficient.isZero()) {
    throw Refusal(place + "系数不能设置为零；请输入不为零的系数。");
  }
  if (terms.price && terms.price->isNegative()) {
    throw Refusal(place + "分包不含税成本单价不能为负数；请输入不小于 0 的单价。");
  }
  if (!terms.associated) {
    for (int row = 0; row < bill.rows().size(); ++row) {
      if (pooled(*static_cast<BudgetItem*>(bill.rows().at(row)), item).isZero()) continue;
      throw Refusal(place + "归集尚未取消；请用“取消关联”一并退回已归集的数量。");
    }
    if (terms != LineTerms() && !bookings_.hasLine(item, bill)) {
      throw Refusal(label(bill) + "未关联成本" + label(item) + "；请先关联清单，再修改其设置。");
    }
  }
  const Bookings::Terms before = bookings_.termsOf(item, bill);
  Bookings::Terms after = shared(terms);
  if (before == after || (before && after && *before == *after)) return;
  record(SetTerms{scoped_refptr<ResourceItem>(&item), &bill, before, std::move(after)});
}

std::vector<Bill*> Project::associatedBills(const ResourceItem& item) const {
  std::vector<Bill*> bills = bookings_.billsWithTerms(item);
  bills.erase(
      std::remove_if(bills.begin(), bills.end(),
                     [&](const Bill* bill) { return !bookings_.termsOf(item, *bill)->associated; }),
      bills.end());
  return bills;
}

void Project::addObserver(Observer* observer) {
  observers_.push_back(observer);
}

void Project::removeObserver(Observer* observer) {
  observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
}

}  // namespace records
