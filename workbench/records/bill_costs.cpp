#include "workbench/records/bill_costs.h"

namespace records {

using costing::Decimal;

BillCosts::BillCosts(const Project& project) : project_(project) {
  for (const ResourceItem* item : project_.bookings().touchedItems()) {
    for (const BillLine& line : project_.linesOf(*item)) booked_[line.bill] += line.excludedAmount;
  }
}

Decimal BillCosts::of(const Bill& bill) const {
  const auto found = booked_.find(&bill);
  Decimal cost = found != booked_.end() ? found->second : Decimal();
  const RowList& rows = bill.rows();
  for (int row = 0; row < rows.size(); ++row) {
    const auto& line = *static_cast<const BudgetItem*>(rows.at(row));
    const ResourceItem* home = line.resourceItem;
    if (home == nullptr || !home->counts() || project_.bookings().sumsOf(*home) != nullptr)
      continue;
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
      cost += costing::excludedTaxAmount(bill.quantity.value() * content, home->price().value());
    }
  }
  return cost;
}

}  // namespace records
