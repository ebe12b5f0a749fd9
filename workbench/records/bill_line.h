#pragma once

#include <optional>
#include <stdexcept>

#include "workbench/records/elements.h"

namespace records {

/// A booking that the rules do not allow; what() is Chinese, names the place and the cure.
class Refusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What an estimator says about one bill in one cost resource item; the defaults are not stored.
struct LineTerms {
  bool associated = false;
  bool summary = false;                     ///< 汇总统计: one summarised 专业分包 entry
  Text summaryUnit;                         ///< that the entry is let in; empty: the bill's
  costing::Decimal coefficient{1};          ///< factor on the quantity, never 0
  std::optional<costing::Decimal> content;  ///< actual content (实际含量) per unit of the bill
  /// Subcontract cost price excluding tax (分包不含税成本单价), yuan per unit of the bill, not
  /// negative.
  std::optional<costing::Decimal> price;
  Text priceExpression;  ///< what the price was entered as; empty for a plain number

  friend bool operator==(const LineTerms& a, const LineTerms& b) {
    return a.associated == b.associated && a.summary == b.summary &&
           a.summaryUnit == b.summaryUnit && a.coefficient == b.coefficient &&
           a.content == b.content && a.price == b.price && a.priceExpression == b.priceExpression;
  }
  friend bool operator!=(const LineTerms& a, const LineTerms& b) { return !(a == b); }
};

/// A bill as a cost resource item sees it. Quantities are exact, amounts have 2 places.
struct BillLine {
  Bill* bill = nullptr;
  LineTerms terms;
  costing::Decimal budgetQuantity;  ///< of the bill's budget items, as far as they count here
  costing::Decimal costQuantity;
  costing::Decimal budgetAmount;                    ///< revenue, excluding tax
  costing::Decimal excludedAmount, includedAmount;  ///< cost; 0 in an item that does not count
};

}  // namespace records
