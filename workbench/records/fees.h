#pragma once

#include <optional>
#include <string>
#include <unordered_map>

#include "workbench/costing/expression.h"
#include "workbench/records/elements.h"

namespace records {

/// What an indirect fee costs now, in yuan and per cent.
struct FeeFigures {
  std::optional<costing::Decimal> base, rate;
  costing::Decimal amount;
  /// Why the base has no value (Chinese); empty: it has one or there is none. The amount is 0 then.
  std::string problem;
};

using FeeCache = std::unordered_map<const IndirectFeeItem*, FeeFigures>;

template <class Visit>
void forEachFee(const RowList& rows, const Visit& visit) {
  for (int row = 0; row < rows.size(); ++row) {
    if (auto* item = dynamic_cast<IndirectFeeItem*>(rows.at(row))) {
      visit(*item);
    } else {
      forEachFee(static_cast<Branch*>(rows.at(row))->rows(), visit);
    }
  }
}

}  // namespace records
