#pragma once

#include <boost/multiprecision/cpp_int.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace costing {

/// An exact decimal number with up to 12 digits after the point and 24 before it: money,
/// quantities, rates. Sums and differences are exact; products and quotients are rounded half away
/// from zero to 12 places. A result out of range throws std::overflow_error, as does a division
/// by zero.
class Decimal {
 public:
  static constexpr int Places = 12;

  Decimal() = default;
  Decimal(int value);  // NOLINT(google-explicit-constructor): 0 and 100 read well in formulas

  /// Reads "-12.50": an optional sign, digits, an optional point with digits, nothing else. Empty
  /// for any other text and for more digits than fit.
  static std::optional<Decimal> parse(std::string_view text);
  /// The decimal shown by the shortest text that reads back as `value`, rounded to 12 places;
  /// empty for infinities, NaN and values out of range.
  static std::optional<Decimal> fromDouble(double value);

  /// Plain text without trailing zeros: "12.5", "-0.03", "0".
  std::string toString() const;
  /// Text with exactly `places` (0 to 12) digits after the point, rounded half away from zero.
  std::string toString(int places) const;
  double toDouble() const;

  /// digits × 10^-places, for places from 0 to 12.
  static Decimal fromDigits(std::int64_t digits, int places);
  /// The value as digits and the least number of `places` (0 to 12); empty when the digits do not
  /// fit.
  std::optional<std::int64_t> significantDigits(int& places) const;

  /// Rounded half away from zero to `places` (0 to 12) digits after the point.
  Decimal rounded(int places) const;
  bool isZero() const { return units_ == 0; }
  bool isNegative() const { return units_ < 0; }

  Decimal& operator+=(const Decimal& other);
  Decimal& operator-=(const Decimal& other);
  friend Decimal operator+(Decimal a, const Decimal& b) { return a += b; }
  friend Decimal operator-(Decimal a, const Decimal& b) { return a -= b; }
  friend Decimal operator*(const Decimal& a, const Decimal& b);
  friend Decimal operator/(const Decimal& a, const Decimal& b);
  Decimal operator-() const;

  friend bool operator==(const Decimal& a, const Decimal& b) { return a.units_ == b.units_; }
  friend bool operator!=(const Decimal& a, const Decimal& b) { return a.units_ != b.units_; }
  friend bool operator<(const Decimal& a, const Decimal& b) { return a.units_ < b.units_; }
  friend bool operator>(const Decimal& a, const Decimal& b) { return b < a; }
  friend bool operator<=(const Decimal& a, const Decimal& b) { return !(b < a); }
  friend bool operator>=(const Decimal& a, const Decimal& b) { return !(a < b); }

 private:
  // Of 10^-12. The compiler's own type: sums and most products are a few instructions; what does
  // not fit is computed in a wider one.
  __extension__ using Units = __int128;
  struct FromUnits {};
  Decimal(FromUnits /*tag*/, Units units);

  Units units_ = 0;
};

}  // namespace costing
