#pragma once

#include <unordered_map>

#include "workbench/records/project.h"

namespace records {

/// What the bills of a project cost, excluding tax, as the project is when this is made. A bill is
/// the sum of its lines in all cost items, each rounded to 2 places.
class BillCosts {
 public:
  /// The project must outlive it.
  explicit BillCosts(const Project& project);

  costing::Decimal of(const Bill& bill) const;

 private:
  const Project& project_;
  std::unordered_map<const Bill*, costing::Decimal> booked_;  // in items that a booking has touched
};

}  // namespace records
