#pragma once

#include <cstdint>

namespace base {

/// An opaque colour of three 8-bit channels.
struct Color {
  std::uint8_t r = 0;
  std::uint8_t g = 0;
  std::uint8_t b = 0;

  friend bool operator==(const Color& a, const Color& b) {
    return a.r == b.r && a.g == b.g && a.b == b.b;
  }
};

}  // namespace base
