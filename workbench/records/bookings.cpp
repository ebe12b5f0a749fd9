#include "workbench/records/bookings.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace records {

using costing::Decimal;

namespace {

const LineTerms& said(const Bookings::Terms& terms) {
  static const LineTerms defaults;
  return terms ? *terms : defaults;
}

// Part of a budget item stays with its home: what is not pooled, and one without any quantity.
bool staysHome(const Decimal& quantity, const Decimal& pooled) {
  return pooled.isZero() || pooled != quantity;
}

Decimal costQuantity(const Bill& bill, const LineTerms& terms, const Decimal& budgetQuantity) {
  const Decimal base =
      terms.content
          ? costing::consumption(bill.quantityForCost(), *terms.content)
          : costing::scaledQuantity(budgetQuantity, bill.quantityForCost(), bill.quantity.value());
  return costing::adjustedQuantity(base, terms.coefficient);
}

}  // namespace

Bill& billOf(const BudgetItem& item) {
  return *static_cast<Bill*>(item.parent());
}

Decimal quantityOf(const BudgetItem& item) {
  return costing::consumption(billOf(item).quantity.value(), item.content.value());
}

StructureNode* unitWorkOf(const proxy::Element& element) {
  for (const proxy::Element* at = &element; at != nullptr; at = at->parent()) {
    if (const auto* group = dynamic_cast<const ResourceGroup*>(at)) return &group->unitWork();
    const auto* node = dynamic_cast<const StructureNode*>(at);
    if (node != nullptr && node->kind == StructureKind::UnitWork) {
      return const_cast<StructureNode*>(node);
    }
  }
  return nullptr;
}

// What lies where

const Bookings::Index& Bookings::indexOf(const ResourceItem& item) const {
  static const Index none;
  StructureNode* unitWork = unitWorkOf(item);
  if (unitWork == nullptr) return none;
  const auto [found, isNew] = indexes_.try_emplace(unitWork);
  Index& index = found->second;
  if (!isNew) return index;
  const std::function<void(const RowList&)> add = [&](const RowList& rows) {
    for (int row = 0; row < rows.size(); ++row) {
      const auto* bill = dynamic_cast<Bill*>(rows.at(row));
      if (bill == nullptr) {
        add(static_cast<Branch*>(rows.at(row))->rows());
        continue;
      }
      index.order.emplace(bill, static_cast<int>(index.order.size()));
      for (int below = 0; below < bill->rows().size(); ++below) {
        auto* budgetItem = static_cast<BudgetItem*>(bill->rows().at(below));
        if (budgetItem->resourceItem == nullptr) continue;
        index.homes[budgetItem->resourceItem].push_back(budgetItem);
      }
    }
  };
  add(unitWork->rows());
  return index;
}

const std::vector<BudgetItem*>& Bookings::homesOf(const ResourceItem& item) const {
  static const std::vector<BudgetItem*> none;
  if (!item.gathered()) return none;
  const Index& index = indexOf(item);
  const auto found = index.homes.find(&item);
  return found == index.homes.end() ? none : found->second;
}

void Bookings::sortByOrder(const ResourceItem& item, std::vector<Bill*>& bills) const {
  const Index& index = indexOf(item);
  const auto place = [&](const Bill* bill) {
    const auto found = index.order.find(bill);
    return found == index.order.end() ? 0 : found->second;
  };
  std::sort(bills.begin(), bills.end(),
            [&](const Bill* a, const Bill* b) { return place(a) < place(b); });
}

const Bookings::Side* Bookings::find(const ResourceItem& item) const {
  if (sides_.empty()) return nullptr;
  const auto found = sides_.find(const_cast<ResourceItem*>(&item));
  return found == sides_.end() ? nullptr : &found->second;
}

Bookings::Side& Bookings::side(ResourceItem& item) {
  const auto found = sides_.find(&item);
  if (found != sides_.end()) return found->second;
  Side fresh;
  if (!item.gathered()) fresh.sums.own = item.quantity().value();
  for (const BudgetItem* budgetItem : homesOf(item)) fresh.sums.lines += quantityOf(*budgetItem);
  return sides_.emplace(&item, std::move(fresh)).first->second;
}

Bookings::Line Bookings::lineOf(const ResourceItem& item, const Bill& bill) const {
  if (const Side* side = find(item)) {
    const auto found = side->lines.find(const_cast<Bill*>(&bill));
    if (found != side->lines.end()) return found->second;
  }
  Line fresh;
  for (int row = 0; row < bill.rows().size(); ++row) {
    const auto& budgetItem = *static_cast<BudgetItem*>(bill.rows().at(row));
    if (budgetItem.resourceItem != &item) continue;
    fresh.budgetQuantity += quantityOf(budgetItem);
    ++fresh.uses;
  }
  return fresh;
}

Bookings::Line& Bookings::line(ResourceItem& item, Bill& bill) {
  Side& owner = side(item);
  const auto found = owner.lines.find(&bill);
  if (found != owner.lines.end()) return found->second;
  return owner.lines.emplace(&bill, lineOf(item, bill)).first->second;
}

// What is booked

const std::vector<Bookings::Pooling>& Bookings::poolingsOf(const BudgetItem& item) const {
  static const std::vector<Pooling> none;
  const auto found = poolings_.find(&item);
  return found == poolings_.end() ? none : found->second;
}

Decimal Bookings::pooled(const BudgetItem& item) const {
  Decimal sum;
  for (const Pooling& pooling : poolingsOf(item)) sum += pooling.quantity;
  return sum;
}

Decimal Bookings::pooled(const BudgetItem& item, const ResourceItem& into) const {
  for (const Pooling& pooling : poolingsOf(item)) {
    if (pooling.into == &into) return pooling.quantity;
  }
  return {};
}

std::vector<Bookings::Share> Bookings::sharesOf(const BudgetItem& item) const {
  const Decimal quantity = quantityOf(item);
  const Decimal amount = item.amount.value();
  std::vector<Share> shares;
  if (item.resourceItem != nullptr) shares.push_back({item.resourceItem, amount});
  Decimal cumulative;
  Decimal given;
  for (const Pooling& pooling : poolingsOf(item)) {
    cumulative += pooling.quantity;
    const Decimal upTo = costing::shareUpTo(amount, quantity, cumulative);
    const Decimal money = upTo - given;
    given = upTo;
    if (pooling.into == item.resourceItem) {
      shares.front().money += money;
    } else {
      shares.push_back({pooling.into, money});
    }
  }
  if (item.resourceItem != nullptr) shares.front().money -= given;
  return shares;
}

bool Bookings::isBooked(const ResourceItem& item) const {
  const Sums* sums = sumsOf(item);
  return sums != nullptr && (sums->poolings > 0 || sums->terms > 0);
}

bool Bookings::isAssociated(const ResourceItem& item) const {
  const Sums* sums = sumsOf(item);
  return sums != nullptr && (sums->poolings > 0 || sums->associated > 0);
}

bool Bookings::quantityFollows(const ResourceItem& item) const {
  const Sums* sums = sumsOf(item);
  return item.gathered() || (sums != nullptr && (sums->poolings > 0 || sums->contents > 0));
}

Decimal Bookings::ownQuantity(const ResourceItem& item) const {
  const Side* side = find(item);
  if (side != nullptr) return side->sums.own;
  return item.gathered() ? Decimal() : item.quantity().value();
}

const Bookings::Sums* Bookings::sumsOf(const ResourceItem& item) const {
  const Side* side = find(item);
  return side != nullptr ? &side->sums : nullptr;
}

bool Bookings::hasLine(const ResourceItem& item, const Bill& bill) const {
  return lineOf(item, bill).exists();
}

Bookings::Terms Bookings::termsOf(const ResourceItem& item, const Bill& bill) const {
  const Side* side = find(item);
  if (side == nullptr) return nullptr;
  const auto found = side->lines.find(const_cast<Bill*>(&bill));
  return found == side->lines.end() ? nullptr : found->second.terms;
}

std::vector<BillLine> Bookings::linesOf(const ResourceItem& item) const {
  // Those of the home come in the order of the bills; the others have to find their place.
  std::vector<Bill*> bills;
  for (const BudgetItem* budgetItem : homesOf(item)) {
    if (bills.empty() || bills.back() != &billOf(*budgetItem))
      bills.push_back(&billOf(*budgetItem));
  }
  if (const Side* side = find(item)) {
    for (const auto& [bill, line] : side->lines) bills.push_back(bill);
    sortByOrder(item, bills);
    bills.erase(std::unique(bills.begin(), bills.end()), bills.end());
  }

  std::vector<BillLine> result;
  result.reserve(bills.size());
  for (Bill* bill : bills) {
    const Line line = lineOf(item, *bill);
    if (!line.exists()) continue;
    BillLine& out = result.emplace_back();
    out.bill = bill;
    out.terms = said(line.terms);
    out.budgetQuantity = line.budgetQuantity;
    out.costQuantity = costQuantity(*bill, out.terms, line.budgetQuantity);
    for (int row = 0; row < bill->rows().size(); ++row) {
      const auto& budgetItem = *static_cast<BudgetItem*>(bill->rows().at(row));
      if (poolingsOf(budgetItem).empty()) {
        if (budgetItem.resourceItem == &item) out.budgetAmount += budgetItem.amount.value();
        continue;
      }
      for (const Share& share : sharesOf(budgetItem)) {
        if (share.item == &item) out.budgetAmount += share.money;
      }
    }
    if (!item.counts()) continue;
    const Decimal quantity = out.terms.price ? bill->quantityForCost() : out.costQuantity;
    const Decimal price = out.terms.price.value_or(item.price().value());
    out.excludedAmount = costing::excludedTaxAmount(quantity, price);
    out.includedAmount = costing::includedTaxAmount(quantity, price, item.taxRate().value());
  }
  return result;
}

std::vector<Bill*> Bookings::billsWithTerms(const ResourceItem& item) const {
  std::vector<Bill*> bills;
  if (const Side* side = find(item)) {
    for (const auto& [bill, line] : side->lines) {
      if (line.terms) bills.push_back(bill);
    }
    sortByOrder(item, bills);
  }
  return bills;
}

std::vector<const BudgetItem*> Bookings::pooledItems() const {
  std::vector<const BudgetItem*> items;
  items.reserve(poolings_.size());
  for (const auto& [item, list] : poolings_) items.push_back(item);
  std::sort(items.begin(), items.end(),
            [](const BudgetItem* a, const BudgetItem* b) { return a->id() < b->id(); });
  return items;
}

std::vector<ResourceItem*> Bookings::touchedItems() const {
  std::vector<ResourceItem*> items;
  items.reserve(sides_.size());
  for (const auto& [item, side] : sides_) items.push_back(item);
  return items;
}

// Changes

/// A line as it is to be, with the sums of its item then: computed before anything is written.
struct Bookings::Edit {
  Edit(const ResourceItem& item, Side& ofSide, const Bill& bill, Line& at, Line becomes)
      : side(ofSide), target(at), next(std::move(becomes)), sums(ofSide.sums) {
    count(sums, item, bill, target, -1);
    count(sums, item, bill, next, 1);
  }
  void commit() noexcept {
    side.sums = sums;
    target = std::move(next);
  }

  /// Adds (sign 1) or takes off (-1) what the line stands for.
  static void count(Sums& sums, const ResourceItem& item, const Bill& bill, const Line& line,
                    int sign) {
    const LineTerms& terms = said(line.terms);
    sums.terms += line.terms ? sign : 0;
    sums.associated += terms.associated ? sign : 0;
    sums.contents += terms.content ? sign : 0;
    if (!line.exists()) return;
    const auto add = [sign](Decimal& sum, const Decimal& part) {
      sign > 0 ? sum += part : sum -= part;
    };
    const Decimal quantity = costQuantity(bill, terms, line.budgetQuantity);
    add(sums.lines, quantity);
    if (!terms.price) return;
    const Decimal billQuantity = bill.quantityForCost();
    add(sums.priced, quantity);
    add(sums.pricedExcluded, costing::excludedTaxAmount(billQuantity, *terms.price));
    add(sums.pricedIncluded,
        costing::includedTaxAmount(billQuantity, *terms.price, item.taxRate().value()));
  }

  Side& side;
  Line& target;
  Line next;
  Sums sums;
};

void Bookings::setPooling(BudgetItem& item, ResourceItem& into, const Decimal& quantity) {
  Bill& bill = billOf(item);
  const Decimal whole = quantityOf(item);
  const Decimal pooledBefore = pooled(item);
  const Decimal before = pooled(item, into);
  const Decimal moved = quantity - before;
  ResourceItem* home = item.resourceItem;
  const auto one = [](bool is) { return is ? 1 : 0; };
  const auto giveFromHome = [&](Line& line) {
    line.budgetQuantity -= moved;
    line.uses += one(staysHome(whole, pooledBefore + moved)) - one(staysHome(whole, pooledBefore));
  };

  // All that may fail comes before the first write.
  Side& target = side(into);
  Line& targetLine = line(into, bill);
  Line next = targetLine;
  next.budgetQuantity += moved;
  next.uses += one(!quantity.isZero()) - one(!before.isZero());
  if (home == &into) giveFromHome(next);
  std::vector<Edit> edits;
  edits.reserve(2);
  edits.emplace_back(into, target, bill, targetLine, std::move(next));
  if (home != nullptr && home != &into) {
    Line& homeLine = line(*home, bill);
    Line left = homeLine;
    giveFromHome(left);
    edits.emplace_back(*home, side(*home), bill, homeLine, std::move(left));
  }

  std::vector<Pooling>& list = poolings_[&item];
  const auto at = std::lower_bound(
      list.begin(), list.end(), into.id(),
      [](const Pooling& pooling, std::int64_t id) { return pooling.into->id() < id; });
  const bool known = at != list.end() && at->into == &into;
  if (!quantity.isZero()) {
    if (known) {
      at->quantity = quantity;
    } else {
      list.insert(at, {&into, quantity});
    }
  } else if (known) {
    list.erase(at);
  }
  if (list.empty()) poolings_.erase(&item);
  edits.front().sums.poolings += one(!quantity.isZero()) - one(!before.isZero());
  for (Edit& edit : edits) edit.commit();
}

void Bookings::setTerms(ResourceItem& item, Bill& bill, const Terms& terms) {
  Line& target = line(item, bill);
  Line next = target;
  next.terms = terms;
  Edit(item, side(item), bill, target, std::move(next)).commit();
}

std::vector<ResourceItem*> Bookings::itemsOf(const Bill& bill) const {
  std::vector<ResourceItem*> items;
  for (int row = 0; row < bill.rows().size(); ++row) {
    auto* home = static_cast<BudgetItem*>(bill.rows().at(row))->resourceItem;
    if (home != nullptr) items.push_back(home);
  }
  for (const auto& [item, side] : sides_) {
    if (side.lines.count(const_cast<Bill*>(&bill)) != 0) items.push_back(item);
  }
  std::sort(items.begin(), items.end(),
            [](const ResourceItem* a, const ResourceItem* b) { return a->id() < b->id(); });
  items.erase(std::unique(items.begin(), items.end()), items.end());
  return items;
}

// From here on each of the items keeps a line for the bill: sums that are made anew know of no cost
// quantity but the tender's.
void Bookings::setCostQuantity(Bill& bill, const std::optional<costing::PackedDecimal>& quantity) {
  struct Touched {
    ResourceItem* item;
    Side& side;
    const Line& line;
    Sums sums;
  };
  std::vector<Touched> touched;
  for (ResourceItem* item : itemsOf(bill)) {
    Side& owner = side(*item);
    touched.push_back({item, owner, line(*item, bill), owner.sums});
    Edit::count(touched.back().sums, *item, bill, touched.back().line, -1);
  }
  const std::optional<costing::PackedDecimal> before = bill.costQuantity;
  bill.costQuantity = quantity;
  try {
    for (Touched& one : touched) Edit::count(one.sums, *one.item, bill, one.line, 1);
  } catch (...) {
    bill.costQuantity = before;
    throw;
  }
  for (const Touched& one : touched) one.side.sums = one.sums;
}

void Bookings::reprice(ResourceItem& item) {
  const auto found = sides_.find(&item);
  if (found == sides_.end()) return;
  Sums& sums = found->second.sums;
  Decimal included;
  for (const auto& [bill, line] : found->second.lines) {
    if (!line.exists() || !said(line.terms).price) continue;
    included += costing::includedTaxAmount(bill->quantityForCost(), *line.terms->price,
                                           item.taxRate().value());
  }
  sums.pricedIncluded = included;
}

void Bookings::setOwnQuantity(ResourceItem& item, const Decimal& quantity) {
  side(item).sums.own = quantity;
}

}  // namespace records
