#pragma once

#include <optional>
#include <string>

namespace domain {

/// Type codes of DataField::type.
enum FieldType : int { StringField = 0, BoolField = 1, IntegerField = 2, FloatingPointField = 3 };

/// The definition of one field: how its values are named, converted and shown.
struct DataField {
  std::string displayName;       ///< default header text, UTF-8
  int type = StringField;        ///< a FieldType; other codes cannot be edited
  std::optional<int> precision;  ///< digits after the decimal point
  std::optional<bool> stripTrailingZeros;
  std::optional<bool> zeroShowsEmpty;
  bool thousandsSeparators = false;  ///< group digits in threes
};

}  // namespace domain
