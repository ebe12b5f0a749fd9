#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/costing/decimal.h"

namespace costing {

/// An expression that has no value; what() is Chinese and says what is wrong and where.
class ExpressionError : public std::runtime_error {
 public:
  ExpressionError(const std::string& message, int column)
      : std::runtime_error(message), column_(column) {}
  /// The character that is wrong, counted from 1; 0 where no single one is.
  int column() const { return column_; }

 private:
  int column_;
};

/// The value of a calculation as an estimator writes it (UTF-8): numbers, + - * / ^, brackets, a
/// percent sign behind a number, and the functions min, max, abs and round(value, places). The
/// full-width signs of a Chinese keyboard count as the plain ones, × ÷ － as * / -.
///
/// Computed in binary floating point and turned into the shortest decimal of the result, rounded to
/// 12 places: exact to 15 digits, which prices and contents do not exceed. A step that divides by
/// zero or has no finite result ends the calculation, whatever would follow.
/// @throws ExpressionError
Decimal evaluate(std::string_view text);

/// Names (UTF-8, two characters or more, none the beginning of another) and what they stand for.
using Variables = std::vector<std::pair<std::string, Decimal>>;
/// As above; the names can be used like numbers.
Decimal evaluate(std::string_view text, const Variables& variables);

}  // namespace costing
