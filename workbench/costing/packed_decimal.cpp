#include "workbench/costing/packed_decimal.h"

#include <array>
#include <cstdlib>
#include <stdexcept>

namespace costing {
namespace {

constexpr int PlaceValues = 16;
constexpr std::int64_t MaxDigits = (std::int64_t(1) << 59) - 1;

constexpr std::array<std::int64_t, Decimal::Places + 1> Powers = {
    1,        10,        100,        1000,        10000,        100000,       1000000,
    10000000, 100000000, 1000000000, 10000000000, 100000000000, 1000000000000};

}  // namespace

PackedDecimal::PackedDecimal(const Decimal& value) {
  int places = 0;
  const std::optional<std::int64_t> digits = value.significantDigits(places);
  if (!digits || std::llabs(*digits) > MaxDigits) {
    throw std::overflow_error("decimal has too many digits");
  }
  bits_ = *digits * PlaceValues + places;
}

Decimal PackedDecimal::value() const {
  const std::int64_t places = bits_ & (PlaceValues - 1);
  return Decimal::fromDigits((bits_ - places) / PlaceValues, static_cast<int>(places));
}

double PackedDecimal::toDouble() const {
  const std::int64_t places = bits_ & (PlaceValues - 1);
  const std::int64_t digits = (bits_ - places) / PlaceValues;
  // Both are exact as doubles, so that the quotient is the nearest double to the decimal.
  if (std::llabs(digits) < (std::int64_t(1) << 53)) {
    return static_cast<double>(digits) /
           static_cast<double>(Powers[static_cast<std::size_t>(places)]);
  }
  return value().toDouble();
}

}  // namespace costing
