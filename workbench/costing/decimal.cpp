#include "workbench/costing/decimal.h"

#include <algorithm>
#include <array>
#include <boost/multiprecision/cpp_int.hpp>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <stdexcept>

namespace costing {
namespace {

__extension__ using Int128 = __int128;
using Wide = boost::multiprecision::int256_t;

constexpr std::array<std::int64_t, Decimal::Places + 1> Powers = {
    1,        10,        100,        1000,        10000,        100000,       1000000,
    10000000, 100000000, 1000000000, 10000000000, 100000000000, 1000000000000};

constexpr std::int64_t Scale = Powers[Decimal::Places];
constexpr Int128 Limit = Int128(Scale) * Scale * Scale;  // 10^24, in units

std::int64_t power(int exponent) {
  return Powers[static_cast<std::size_t>(exponent)];
}

// Half away from zero; `divisor` is positive.
template <class Integer>
Integer divideRounded(const Integer& value, const Integer& divisor) {
  const Integer half = divisor / 2;
  return value < 0 ? Integer((value - half) / divisor) : Integer((value + half) / divisor);
}

// The units of a quotient of wide numbers.
Int128 narrowed(const Wide& wide) {
  if (wide >= Wide(Limit) || wide <= Wide(-Limit)) {
    throw std::overflow_error("decimal out of range");
  }
  return wide.convert_to<Int128>();
}

// Whether `units` has at most 6 decimals and 12 digits before them: the product of two such
// numbers has at most 12 decimals and fits.
bool isShort(Int128 units) {
  constexpr Int128 bound = Int128(Scale) * Scale;
  return units < bound && units > -bound && units % power(6) == 0;
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

Decimal::Decimal(int value) : units_(Units(value) * Scale) {}

Decimal::Decimal(FromUnits /*tag*/, Units units) : units_(units) {
  if (units >= Limit || units <= -Limit) throw std::overflow_error("decimal out of range");
}

std::optional<Decimal> Decimal::parse(std::string_view text) {
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  Units units = 0;
  int digits = 0;
  int places = -1;  // -1 before the point
  for (const char c : text) {
    if (c == '.' && places < 0 && digits > 0) {
      places = 0;
      continue;
    }
    if (!isDigit(c)) return {};
    if (places >= 0 && ++places > Places) return {};
    if (++digits > 24 + Places) return {};
    units = units * 10 + (c - '0');
  }
  if (digits == 0 || places == 0) return {};
  const std::int64_t missing = power(Places - (places < 0 ? 0 : places));
  if (units >= Limit / missing) return {};
  units *= missing;
  return Decimal(FromUnits(), negative ? -units : units);
}

std::optional<Decimal> Decimal::fromDouble(double value) {
  if (!std::isfinite(value) || std::fabs(value) >= 1e24) return {};
  std::array<char, 400> text;
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed).ptr;
  std::string_view view(text.data(), static_cast<std::size_t>(end - text.data()));
  const auto point = view.find('.');
  bool up = false;
  if (point != std::string_view::npos && view.size() - point - 1 > Places) {
    up = view[point + 1 + Places] >= '5';
    view = view.substr(0, point + 1 + Places);
  }
  std::optional<Decimal> result = parse(view);
  if (result && up) result->units_ += value < 0 ? -1 : 1;
  return result;
}

std::string Decimal::toString(int places) const {
  places = std::clamp(places, 0, Places);
  Units rest = rounded(places).units_;
  const bool negative = rest < 0;
  if (negative) rest = -rest;
  rest /= power(Places - places);
  std::array<char, 48> text;
  char* const end = text.data() + text.size();
  char* at = end;
  const auto put = [&at, &rest] {
    *--at = static_cast<char>('0' + static_cast<int>(rest % 10));
    rest /= 10;
  };
  for (int i = 0; i < places; ++i) put();
  if (places > 0) *--at = '.';
  do {
    put();
  } while (rest != 0);
  if (negative) *--at = '-';
  return std::string(at, end);
}

std::string Decimal::toString() const {
  std::string text = toString(Places);
  text.resize(text.find_last_not_of('0') + 1);  // the point at the latest
  if (text.back() == '.') text.pop_back();
  return text;
}

Decimal Decimal::fromDigits(std::int64_t digits, int places) {
  // At most 19 digits and 12 zeros: in range.
  return Decimal(FromUnits(), Units(digits) * power(Places - std::clamp(places, 0, Places)));
}

namespace {

// Drops `Zeros` zeros at the end where there are so many; the divisor is known to the compiler.
template <int Zeros, class Integer>
void dropZeros(Integer& digits, int& places) {
  constexpr std::int64_t divisor = Powers[Zeros];
  if (Zeros > places || digits % divisor != 0) return;
  digits /= divisor;
  places -= Zeros;
}

bool fitsInt64(Int128 value) {
  return value <= std::numeric_limits<std::int64_t>::max() &&
         value >= std::numeric_limits<std::int64_t>::min();
}

}  // namespace

std::optional<std::int64_t> Decimal::significantDigits(int& places) const {
  // By halves, and in 64 bits as soon as they suffice: much cheaper. Amounts do after the first.
  places = Places;
  Units units = units_;
  if (!fitsInt64(units)) dropZeros<8>(units, places);
  if (!fitsInt64(units)) {
    dropZeros<4>(units, places);
    dropZeros<2>(units, places);
    dropZeros<1>(units, places);
    if (!fitsInt64(units)) return {};
  }
  auto digits = static_cast<std::int64_t>(units);
  dropZeros<8>(digits, places);
  dropZeros<4>(digits, places);
  dropZeros<2>(digits, places);
  dropZeros<1>(digits, places);
  return digits;
}

double Decimal::toDouble() const {
  int places = 0;
  const std::optional<std::int64_t> digits = significantDigits(places);
  if (digits && std::llabs(*digits) < (std::int64_t(1) << 53)) {
    // Both are exact as doubles, so that the quotient is the nearest double to the decimal.
    return static_cast<double>(*digits) / static_cast<double>(power(places));
  }
  const std::string text = toString();
  double value = 0.0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

Decimal Decimal::rounded(int places) const {
  if (places < 0 || places >= Places) return *this;
  const Units step = power(Places - places);
  return Decimal(FromUnits(), divideRounded(units_, step) * step);
}

Decimal& Decimal::operator+=(const Decimal& other) {
  return *this = Decimal(FromUnits(), units_ + other.units_);
}

Decimal& Decimal::operator-=(const Decimal& other) {
  return *this = Decimal(FromUnits(), units_ - other.units_);
}

Decimal operator*(const Decimal& a, const Decimal& b) {
  if (isShort(a.units_) && isShort(b.units_)) {
    return Decimal(Decimal::FromUnits(), (a.units_ / power(6)) * (b.units_ / power(6)));
  }
  return Decimal(Decimal::FromUnits(),
                 narrowed(divideRounded(Wide(Wide(a.units_) * Wide(b.units_)), Wide(Scale))));
}

Decimal operator/(const Decimal& a, const Decimal& b) {
  if (b.isZero()) throw std::overflow_error("decimal division by zero");
  // A divisor as short as the 100 of a rate leaves room for the scaled numerator.
  if (isShort(a.units_)) {
    Int128 numerator = a.units_ / power(6) * Scale;
    Int128 divisor = b.units_;
    if (divisor % power(6) == 0) {
      divisor /= power(6);
      if (divisor < 0) {
        numerator = -numerator;
        divisor = -divisor;
      }
      return Decimal(Decimal::FromUnits(), divideRounded(numerator, divisor));
    }
  }
  Wide numerator = Wide(a.units_) * Wide(Scale);
  Wide divisor = Wide(b.units_);
  if (divisor < 0) {
    numerator = -numerator;
    divisor = -divisor;
  }
  return Decimal(Decimal::FromUnits(), narrowed(divideRounded(numerator, divisor)));
}

Decimal Decimal::operator-() const {
  return Decimal() - *this;
}

}  // namespace costing
