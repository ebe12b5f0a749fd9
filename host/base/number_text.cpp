#include "host/base/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace base {
namespace {

// digits[0..count) with the decimal point after `point` of them; `point` may lie outside.
struct Decimal {
  std::array<char, 24> digits;
  int count = 0;
  int point = 0;
  bool negative = false;
};

Decimal shortestDecimal(double value) {
  std::array<char, 40> text;
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::scientific)
          .ptr;
  Decimal d;
  const char* at = text.data();
  if (*at == '-') {
    d.negative = true;
    ++at;
  }
  for (; at != end && *at != 'e'; ++at) {
    if (*at != '.') d.digits[static_cast<std::size_t>(d.count++)] = *at;
  }
  int exponent = 0;
  ++at;
  if (*at == '+') ++at;
  std::from_chars(at, end, exponent);
  d.point = exponent + 1;
  return d;
}

void roundHalfUp(Decimal& d, int precision) {
  const int keep = d.point + precision;
  if (keep >= d.count) return;
  if (keep < 0) {
    d.count = 0;
    return;
  }
  const bool up = d.digits[static_cast<std::size_t>(keep)] >= '5';
  d.count = keep;
  if (!up) return;
  int i = keep - 1;
  while (i >= 0 && d.digits[static_cast<std::size_t>(i)] == '9') {
    d.digits[static_cast<std::size_t>(i)] = '0';
    --i;
  }
  if (i >= 0) {
    ++d.digits[static_cast<std::size_t>(i)];
    return;
  }
  // 9.99 became 10.0: one more digit before the point.
  std::copy_backward(d.digits.begin(), d.digits.begin() + d.count, d.digits.begin() + d.count + 1);
  d.digits[0] = '1';
  ++d.count;
  ++d.point;
}

// `units` of 10^-precision as text.
void appendUnits(std::string& out, std::uint64_t units, int precision, bool negative, bool strip,
                 bool group) {
  std::array<char, 40> buffer;
  char* const end = buffer.data() + buffer.size();
  char* at = end;
  int decimals = precision;
  const bool zero = units == 0;
  if (strip) {
    while (decimals > 0 && units % 10 == 0) {
      units /= 10;
      --decimals;
    }
  }
  for (int i = 0; i < decimals; ++i, units /= 10) *--at = static_cast<char>('0' + units % 10);
  if (decimals > 0) *--at = '.';
  // Three digits for each division of the long number.
  while (units >= 1000) {
    auto three = static_cast<std::uint32_t>(units % 1000);
    units /= 1000;
    for (int i = 0; i < 3; ++i, three /= 10) *--at = static_cast<char>('0' + three % 10);
    if (group) *--at = ',';
  }
  auto rest = static_cast<std::uint32_t>(units);
  do {
    *--at = static_cast<char>('0' + rest % 10);
    rest /= 10;
  } while (rest != 0);
  if (negative && !zero) *--at = '-';
  out.append(at, static_cast<std::size_t>(end - at));
}

// The common case without the shortest decimal: few enough digits that the product with a power of
// ten tells on which side of a half the value lies. Too close to a half, the digits decide.
std::optional<std::uint64_t> clearUnits(double magnitude, int precision) {
  static constexpr std::array<double, 7> powers = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};
  if (precision >= static_cast<int>(powers.size())) return {};
  const double scaled = magnitude * powers[static_cast<std::size_t>(precision)];
  if (!(scaled < 1e13)) return {};  // the product is off by less than a hundredth
  const auto units = static_cast<std::uint64_t>(scaled);
  const double rest = scaled - static_cast<double>(units);
  if (std::fabs(rest - 0.5) < 1e-2) return {};
  return units + (rest > 0.5 ? 1 : 0);
}

void appendDigits(std::string& out, double value, std::optional<int> precision, bool strip,
                  bool group) {
  Decimal d = shortestDecimal(value);
  if (precision) {
    precision = std::max(*precision, 0);
    roundHalfUp(d, *precision);
  }
  const bool zero =
      std::all_of(d.digits.begin(), d.digits.begin() + d.count, [](char c) { return c == '0'; });
  if (zero) d.count = 0;
  if (strip) {
    while (d.count > std::max(d.point, 0) && d.digits[static_cast<std::size_t>(d.count - 1)] == '0')
      --d.count;
  }
  int decimals = d.count == 0 ? 0 : std::max(d.count - d.point, 0);
  if (precision && !strip) decimals = *precision;
  const auto digit = [&d](int position) {
    return position >= 0 && position < d.count ? d.digits[static_cast<std::size_t>(position)] : '0';
  };

  const int whole = d.count == 0 ? 0 : std::max(d.point, 0);
  const int length = whole + whole / 3 + decimals + 3;
  out.reserve(out.size() + static_cast<std::size_t>(length));
  if (d.negative && !zero) out += '-';
  if (whole == 0) out += '0';
  for (int i = 0; i < whole; ++i) {
    if (group && i > 0 && (whole - i) % 3 == 0) out += ',';
    out += digit(i);
  }
  if (decimals > 0) {
    out += '.';
    for (int i = 0; i < decimals; ++i) out += d.count == 0 ? '0' : digit(d.point + i);
  }
}

std::string text(double value, std::optional<int> precision, bool strip, bool group) {
  std::string out;
  AppendNumber(out, value, precision, strip, group);
  return out;
}

}  // namespace

std::string ToPlainString(double value, std::optional<int> precision) {
  return text(value, precision, false, false);
}

std::string ToPlainStringWithStripTrailingZeros(double value, std::optional<int> precision) {
  return text(value, precision, true, false);
}

std::string ToThousandthsString(double value, std::optional<int> precision) {
  return text(value, precision, false, true);
}

std::string ToThousandthsStringWithStripTrailingZeros(double value, std::optional<int> precision) {
  return text(value, precision, true, true);
}

void AppendNumber(std::string& out, double value, std::optional<int> precision,
                  bool stripTrailingZeros, bool thousandths) {
  if (!std::isfinite(value)) return;
  if (precision) {
    const int places = std::max(*precision, 0);
    if (const auto units = clearUnits(std::fabs(value), places)) {
      appendUnits(out, *units, places, value < 0, stripTrailingZeros, thousandths);
      return;
    }
  }
  appendDigits(out, value, precision, stripTrailingZeros, thousandths);
}

double ParseNumberPrefix(const std::string& text) {
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at != end && (*at == ' ' || (*at >= '\t' && *at <= '\r'))) ++at;
  if (at != end && *at == '+') {
    ++at;
    if (at != end && *at == '-') return 0.0;  // one sign only
  }
  double value = 0.0;
  const auto result = std::from_chars(at, end, value);
  return result.ec == std::errc() ? value : 0.0;
}

}  // namespace base
