#pragma once

#include <unordered_map>
#include <vector>

#include "workbench/records/project.h"

namespace records {

/// What a bill brings: its amount, where the source prices bills, else those of its resources.
costing::Decimal incomeOf(const Bill& bill);
/// What of the entry's amount each of its bills stands for, in their order. They add up to it.
std::vector<costing::Decimal> sharesOf(const Subcontract& entry);

/// What counts in the cost beside the subcontract that it is given to.
struct CountedBesides {
  std::vector<ResourceItem*> items;  ///< in the order of their ids
  costing::Decimal amount;           ///< yuan, excluding tax
};
/// The resource items that count in cost and in which lines of these bills cost something, and what
/// these lines cost, each rounded to 2 places. Other bills may use the items, too.
CountedBesides countedBesides(const Project& project, const std::vector<const Bill*>& bills);

/// What the bills of a project cost, excluding tax, as the project is when this is made. A bill is
/// the sum of its lines in all cost items, each rounded to 2 places, and of its shares of the
/// subcontract entries that it is assigned to.
class BillCosts {
 public:
  /// The project must outlive it.
  explicit BillCosts(const Project& project);

  costing::Decimal of(const Bill& bill) const;
  /// What of it are shares of subcontract entries. Those of all bills of an entry add up to its
  /// amount.
  costing::Decimal subcontracted(const Bill& bill) const;

 private:
  const Project& project_;
  std::unordered_map<const Bill*, costing::Decimal> booked_;  // in items that a booking has touched
  std::unordered_map<const Bill*, costing::Decimal> subcontracted_;
};

}  // namespace records
