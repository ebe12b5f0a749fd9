#pragma once

#include <cstdint>

#include "workbench/costing/decimal.h"

namespace costing {

/// A Decimal in eight bytes, for records that exist by the million: up to 17 significant digits,
/// exact. Putting one in that does not fit throws std::overflow_error.
class PackedDecimal {
 public:
  PackedDecimal() = default;
  PackedDecimal(const Decimal& value);  // NOLINT(google-explicit-constructor): a storage form

  Decimal value() const;
  double toDouble() const;
  /// The value is digits() × 10^-places().
  std::int64_t digits() const { return (bits_ - places()) / 16; }
  int places() const { return static_cast<int>(bits_ & 15); }

  friend bool operator==(PackedDecimal a, PackedDecimal b) { return a.bits_ == b.bits_; }
  friend bool operator!=(PackedDecimal a, PackedDecimal b) { return a.bits_ != b.bits_; }

 private:
  std::int64_t bits_ = 0;  // significant digits × 16 + digits after the point, in lowest terms
};

}  // namespace costing
