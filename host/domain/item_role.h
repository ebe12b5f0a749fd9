#pragma once

namespace domain {

// Roles that a toolkit-free host has to name when it is asked for a value or told to set one.
// The first group has the numbers of the toolkit's own roles; the second is the module's.
enum ItemRole : int {
  DisplayRole = 0,
  EditRole = 2,
  ToolTipRole = 3,
  FontRole = 6,
  TextAlignmentRole = 7,
  BackgroundRole = 8,
  ForegroundRole = 9,
  CheckStateRole = 10,

  /// The column's field type code (FieldType), 0 when the column has no field.
  FieldTypeRole = 137,
  /// The column's field key, empty when there is no such column.
  FieldKeyRole = 200,
  /// The texts that a cell takes, a vector of them, in the order in which they are offered; none
  /// for a cell that takes any text.
  ChoicesRole = 201,
};

}  // namespace domain
