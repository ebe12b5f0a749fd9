#include "workbench/costing/rules.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace costing {
namespace {

constexpr std::array<std::string_view, 24> CountedUnits = {
    "个", "台", "套", "根", "件", "只", "组",   "樘", "块", "座", "副", "项",
    "把", "支", "片", "张", "条", "株", "系统", "站", "处", "部", "口", "棵"};

Decimal withTax(const Decimal& taxRate) {
  return Decimal(1) + taxRate / 100;
}

}  // namespace

int quantityPlaces(std::string_view unit) {
  const bool counted =
      std::find(CountedUnits.begin(), CountedUnits.end(), unit) != CountedUnits.end();
  return counted ? 2 : MaxQuantityPlaces;
}

Decimal storedQuantity(const Decimal& quantity, std::string_view unit) {
  return quantity.rounded(quantityPlaces(unit));
}

Decimal consumption(const Decimal& billQuantity, const Decimal& content) {
  return billQuantity * content;
}

Decimal scaledQuantity(const Decimal& quantity, const Decimal& costQuantity,
                       const Decimal& tenderQuantity) {
  if (tenderQuantity.isZero() || costQuantity == tenderQuantity) return quantity;
  return quantity * costQuantity / tenderQuantity;
}

Decimal adjustedQuantity(const Decimal& quantity, const Decimal& coefficient) {
  return quantity * coefficient;
}

Decimal shareUpTo(const Decimal& amount, const Decimal& quantity, const Decimal& part) {
  // The last share takes the rest, whatever a tiny quantity would lose in the product.
  if (part == quantity) return amount;
  if (quantity.isZero()) return {};
  return (amount * part / quantity).rounded(MoneyPlaces);
}

Decimal budgetAmount(const Decimal& billQuantity, const Decimal& content, const Decimal& price) {
  return (consumption(billQuantity, content) * price).rounded(MoneyPlaces);
}

Decimal includedTaxPrice(const Decimal& price, const Decimal& taxRate) {
  return price * withTax(taxRate);
}

double includedTaxPriceShown(PackedDecimal price, PackedDecimal taxRate) {
  // digits × (100 + rate), while the product is exact as a double and so are the powers of ten.
  constexpr double exact = 9007199254740992.0;  // 2^53
  double hundred = 100;
  for (int i = 0; i < taxRate.places(); ++i) hundred *= 10;
  double divisor = hundred;
  for (int i = 0; i < price.places(); ++i) divisor *= 10;
  const double product =
      static_cast<double>(price.digits()) * (hundred + static_cast<double>(taxRate.digits()));
  if (std::fabs(product) < exact && divisor < 1e16) return product / divisor;
  return includedTaxPrice(price.value(), taxRate.value()).toDouble();
}

Decimal excludedTaxAmount(const Decimal& quantity, const Decimal& price) {
  return (quantity * price).rounded(MoneyPlaces);
}

Decimal unitPrice(const Decimal& amount, const Decimal& quantity) {
  return (amount / quantity).rounded(UnitPricePlaces);
}

Decimal includedTaxAmount(const Decimal& quantity, const Decimal& price, const Decimal& taxRate) {
  return (quantity * price * withTax(taxRate)).rounded(MoneyPlaces);
}

Decimal feeByRate(const Decimal& base, const Decimal& rate) {
  return (base * rate / 100).rounded(MoneyPlaces);
}

Totals& Totals::operator+=(const Totals& other) {
  budget += other.budget;
  excluded += other.excluded;
  included += other.included;
  return *this;
}

Totals& Totals::operator-=(const Totals& other) {
  budget -= other.budget;
  excluded -= other.excluded;
  included -= other.included;
  return *this;
}

}  // namespace costing
