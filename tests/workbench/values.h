#pragma once

#include <QString>

#include "workbench/costing/decimal.h"
#include "workbench/records/bill_line.h"

namespace tests {

inline costing::Decimal dec(const char* text) {
  return costing::Decimal::parse(text).value();
}

/// What a rule says against `attempt`; empty when it is allowed.
template <class Attempt>
QString refusal(const Attempt& attempt) {
  try {
    attempt();
  } catch (const records::Refusal& refused) {
    return QString::fromUtf8(refused.what());
  }
  return {};
}

}  // namespace tests
