#include "workbench/costing/decimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace costing {
namespace {

using Wide = boost::multiprecision::int256_t;

Wide powerOfTen(int exponent) {
  Wide power = 1;
  for (int i = 0; i < exponent; ++i) power *= 10;
  return power;
}

const Wide& scale() {
  static const Wide value = powerOfTen(Decimal::Places);
  return value;
}

const Wide& limit() {
  static const Wide value = powerOfTen(24 + Decimal::Places);
  return value;
}

// Half away from zero; `divisor` is positive.
Wide divideRounded(const Wide& value, const Wide& divisor) {
  const Wide half = divisor / 2;
  return value < 0 ? Wide((value - half) / divisor) : Wide((value + half) / divisor);
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

Decimal::Decimal(int value) : units_(Units(value) * Units(scale())) {}

Decimal::Decimal(const Wide& wide) {
  if (wide >= limit() || wide <= -limit()) throw std::overflow_error("decimal out of range");
  units_ = Units(wide);
}

std::optional<Decimal> Decimal::parse(std::string_view text) {
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  Wide units = 0;
  int digits = 0;
  int places = -1;  // -1 before the point
  for (const char c : text) {
    if (c == '.' && places < 0 && digits > 0) {
      places = 0;
      continue;
    }
    if (!isDigit(c)) return {};
    if (places >= 0 && ++places > Places) return {};
    units = units * 10 + (c - '0');
    if (++digits > 24 + Places) return {};
  }
  if (digits == 0 || places == 0) return {};
  units *= powerOfTen(Places - (places < 0 ? 0 : places));
  if (units >= limit()) return {};
  return Decimal(negative ? Wide(-units) : units);
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
  const Decimal shown = rounded(places);
  std::string text = Units(boost::multiprecision::abs(shown.units_)).str();
  if (text.size() <= Places) text.insert(0, Places + 1 - text.size(), '0');
  text.insert(text.size() - Places, ".");
  text.resize(text.size() - static_cast<std::size_t>(Places - places));
  if (places == 0) text.pop_back();
  if (shown.units_ < 0) text.insert(0, "-");
  return text;
}

std::string Decimal::toString() const {
  std::string text = toString(Places);
  text.resize(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

Decimal Decimal::fromDigits(std::int64_t digits, int places) {
  // At most 19 digits and 12 zeros: in range.
  Decimal result;
  result.units_ = Units(digits) * Units(powerOfTen(Places - std::clamp(places, 0, Places)));
  return result;
}

std::optional<std::int64_t> Decimal::significantDigits(int& places) const {
  Units digits = units_;
  places = Places;
  while (places > 0 && digits % 10 == 0) {
    digits /= 10;
    --places;
  }
  if (digits > std::numeric_limits<std::int64_t>::max() ||
      digits < std::numeric_limits<std::int64_t>::min()) {
    return {};
  }
  return digits.convert_to<std::int64_t>();
}

double Decimal::toDouble() const {
  const std::string text = toString();
  double value = 0.0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

Decimal Decimal::rounded(int places) const {
  if (places < 0 || places >= Places) return *this;
  const Wide step = powerOfTen(Places - places);
  return Decimal(Wide(divideRounded(Wide(units_), step) * step));
}

Decimal& Decimal::operator+=(const Decimal& other) {
  return *this = Decimal(Wide(Wide(units_) + Wide(other.units_)));
}

Decimal& Decimal::operator-=(const Decimal& other) {
  return *this = Decimal(Wide(Wide(units_) - Wide(other.units_)));
}

Decimal operator*(const Decimal& a, const Decimal& b) {
  return Decimal(divideRounded(Wide(a.units_) * Wide(b.units_), scale()));
}

Decimal operator/(const Decimal& a, const Decimal& b) {
  if (b.isZero()) throw std::overflow_error("decimal division by zero");
  Wide numerator = Wide(a.units_) * scale();
  Wide divisor = Wide(b.units_);
  if (divisor < 0) {
    numerator = -numerator;
    divisor = -divisor;
  }
  return Decimal(divideRounded(numerator, divisor));
}

Decimal Decimal::operator-() const {
  return Decimal() - *this;
}

}  // namespace costing
