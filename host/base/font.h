#pragma once

#include <string>

namespace base {

/// A font wish: weight and family (UTF-8; empty leaves the family to the toolkit).
struct Font {
  bool bold = false;
  std::string family;

  friend bool operator==(const Font& a, const Font& b) {
    return a.bold == b.bold && a.family == b.family;
  }
};

}  // namespace base
