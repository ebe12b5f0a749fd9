#pragma once

#include <string_view>

#include "workbench/costing/decimal.h"
#include "workbench/costing/packed_decimal.h"

/// Every cost rule of the workbench. Money is in yuan, rates are per cent, rounding is half up
/// (away from zero). What a line shows is rounded first and added afterwards, so that the sum of
/// the lines is the total below them. docs/costing.md works through an example.
namespace costing {

constexpr int MoneyPlaces = 2;      ///< amounts
constexpr int UnitPricePlaces = 2;  ///< unit prices as they are shown; inputs are kept unrounded
constexpr int MaxQuantityPlaces = 4;

/// Digits after the point of a quantity in `unit` (UTF-8): 2 for what is counted in pieces (个, 台,
/// 套, ...), 4 for everything else.
int quantityPlaces(std::string_view unit);

/// A quantity as it is stored: rounded to the places of its unit.
Decimal storedQuantity(const Decimal& quantity, std::string_view unit);

/// What one bill uses of a resource: bill quantity × content, unrounded.
Decimal consumption(const Decimal& billQuantity, const Decimal& content);

/// A quantity of a bill's budget as the bill's cost quantity scales it: quantity × cost quantity ÷
/// tender quantity, unrounded; the quantity itself where the tender quantity is 0.
Decimal scaledQuantity(const Decimal& quantity, const Decimal& costQuantity,
                       const Decimal& tenderQuantity);

/// What a bill line costs: its quantity × coefficient, unrounded.
Decimal adjustedQuantity(const Decimal& quantity, const Decimal& coefficient);

/// Revenue of the first `part` of a quantity: amount × part / quantity, rounded to 2 places. The
/// differences along growing parts are shares that add up to the amount.
Decimal shareUpTo(const Decimal& amount, const Decimal& quantity, const Decimal& part);

/// Revenue of a budget line: bill quantity × content × price, rounded to 2 places.
Decimal budgetAmount(const Decimal& billQuantity, const Decimal& content, const Decimal& price);

/// Unit price including tax: price × (1 + rate / 100), unrounded.
Decimal includedTaxPrice(const Decimal& price, const Decimal& taxRate);

/// The same as the nearest double, for showing it cell after cell.
double includedTaxPriceShown(PackedDecimal price, PackedDecimal taxRate);

/// quantity × price, rounded to 2 places.
Decimal excludedTaxAmount(const Decimal& quantity, const Decimal& price);

/// The unit price of a lump sum: amount / quantity, rounded to 2 places. The quantity is not 0.
Decimal unitPrice(const Decimal& amount, const Decimal& quantity);

/// quantity × price × (1 + rate / 100), rounded to 2 places; the unit price in it is not rounded.
Decimal includedTaxAmount(const Decimal& quantity, const Decimal& price, const Decimal& taxRate);

/// An indirect fee: base × rate / 100, rounded to 2 places.
Decimal feeByRate(const Decimal& base, const Decimal& rate);

/// Sums of lines that were rounded before they were added.
struct Totals {
  Decimal budget;    ///< revenue, excluding tax
  Decimal excluded;  ///< cost excluding tax
  Decimal included;  ///< cost including tax

  Totals& operator+=(const Totals& other);
  Totals& operator-=(const Totals& other);
  friend bool operator==(const Totals& a, const Totals& b) {
    return a.budget == b.budget && a.excluded == b.excluded && a.included == b.included;
  }
  friend bool operator!=(const Totals& a, const Totals& b) { return !(a == b); }
};

}  // namespace costing
