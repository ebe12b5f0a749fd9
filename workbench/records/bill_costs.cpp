#include "workbench/records/bill_costs.h"

#include <algorithm>
#include <unordered_set>

namespace records {

using costing::Decimal;

namespace {

/// Tells `hear` of each line that the bill has in an item that counts and that no booking has
/// touched.
template <class Hear>
void forUntouchedLines(const Project& project, const Bill& bill, const Hear& hear) {
  const RowList& rows = bill.rows();
  for (int row = 0; row < rows.size(); ++row) {
    const auto& line = *static_cast<const BudgetItem*>(rows.at(row));
    ResourceItem* home = line.resourceItem;
    if (home == nullptr || !home->counts() || project.bookings().sumsOf(*home) != nullptr) continue;
    Decimal content = line.content.value();
    bool first = true;
    for (int other = 0; other < rows.size() && first; ++other) {
      if (other == row) continue;
      const auto& same = *static_cast<const BudgetItem*>(rows.at(other));
      if (same.resourceItem != home) continue;
      first = other > row;
      content += same.content.value();
    }
    // A resource that a bill names twice is one line of it.
    if (first) {
      hear(*home,
           costing::excludedTaxAmount(bill.quantity.value() * content, home->price().value()));
    }
  }
}

}  // namespace

Decimal incomeOf(const Bill& bill) {
  if (bill.amount) return bill.amount->value();
  Decimal sum;
  for (int row = 0; row < bill.rows().size(); ++row) {
    const auto& item = *static_cast<const BudgetItem*>(bill.rows().at(row));
    if (item.resourceItem != nullptr) sum += item.amount.value();
  }
  return sum;
}

std::vector<Decimal> sharesOf(const Subcontract& entry) {
  const int count = entry.rows().size();
  std::vector<Decimal> weights;
  weights.reserve(static_cast<std::size_t>(count));
  const bool byQuantity = entry.metering == MeteringMethod::ByBills;
  Decimal whole;
  for (int row = 0; row < count; ++row) {
    const Bill& bill = entry.billAt(row).bill;
    weights.push_back(byQuantity ? bill.quantityForCost() : incomeOf(bill));
    whole += weights.back();
  }
  if (!byQuantity && whole.isZero()) {
    weights.assign(weights.size(), 1);
    whole = count;
  }
  const Decimal amount = entry.amount();
  std::vector<Decimal> shares;
  shares.reserve(weights.size());
  Decimal upTo;
  Decimal given;
  for (int row = 0; row < count; ++row) {
    upTo += weights[static_cast<std::size_t>(row)];
    const bool last = row + 1 == count;
    const Decimal until = last         ? amount
                          : byQuantity ? costing::excludedTaxAmount(upTo, entry.price)
                                       : costing::shareUpTo(amount, whole, upTo);
    shares.push_back(until - given);
    given = until;
  }
  return shares;
}

CountedBesides countedBesides(const Project& project, const std::vector<const Bill*>& bills) {
  CountedBesides found;
  const auto add = [&found](ResourceItem& item, const Decimal& amount) {
    if (amount.isZero()) return;
    found.items.push_back(&item);
    found.amount += amount;
  };
  const std::unordered_set<const Bill*> wanted(bills.begin(), bills.end());
  if (wanted.empty()) return found;
  for (const Bill* bill : wanted) forUntouchedLines(project, *bill, add);
  for (ResourceItem* item : project.bookings().touchedItems()) {
    if (!item->counts()) continue;
    for (const BillLine& line : project.linesOf(*item)) {
      if (wanted.count(line.bill) > 0) add(*item, line.excludedAmount);
    }
  }
  std::sort(found.items.begin(), found.items.end(),
            [](const ResourceItem* a, const ResourceItem* b) { return a->id() < b->id(); });
  found.items.erase(std::unique(found.items.begin(), found.items.end()), found.items.end());
  return found;
}

BillCosts::BillCosts(const Project& project) : project_(project) {
  for (const ResourceItem* item : project_.bookings().touchedItems()) {
    for (const BillLine& line : project_.linesOf(*item)) booked_[line.bill] += line.excludedAmount;
  }
  const RowList& entries = project_.subcontracts().rows();
  for (int row = 0; row < entries.size(); ++row) {
    const auto& entry = *static_cast<const Subcontract*>(entries.at(row));
    const std::vector<Decimal> shares = sharesOf(entry);
    for (std::size_t i = 0; i < shares.size(); ++i) {
      subcontracted_[&entry.billAt(static_cast<int>(i)).bill] += shares[i];
    }
  }
}

Decimal BillCosts::subcontracted(const Bill& bill) const {
  const auto found = subcontracted_.find(&bill);
  return found != subcontracted_.end() ? found->second : Decimal();
}

Decimal BillCosts::of(const Bill& bill) const {
  const auto found = booked_.find(&bill);
  Decimal cost = subcontracted(bill);
  if (found != booked_.end()) cost += found->second;
  forUntouchedLines(project_, bill,
                    [&cost](const ResourceItem&, const Decimal& amount) { cost += amount; });
  return cost;
}

}  // namespace records
