#pragma once

#include <string>

#include "workbench/costing/decimal.h"

namespace records {

/// The methods of taxation that a project knows, by their names.
namespace tax_methods {
extern const std::string General;     ///< 一般计税
extern const std::string Simplified;  ///< 简易计税
extern const std::string Own;         ///< 自定税率: a rate that the user has set
}  // namespace tax_methods

/// How a project is taxed.
struct Taxation {
  std::string method;     ///< empty: as the fee template has it
  costing::Decimal rate;  ///< per cent, 0 to 100, at most 4 places

  friend bool operator==(const Taxation& a, const Taxation& b) {
    return a.method == b.method && a.rate == b.rate;
  }
  friend bool operator!=(const Taxation& a, const Taxation& b) { return !(a == b); }
};

/// Why a project cannot be taxed like this (Chinese, with the cure); empty when it can.
std::string problemOf(const Taxation& taxation);

}  // namespace records
