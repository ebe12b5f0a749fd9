#pragma once

#include "host/base/color.h"

/// The marks by which resource items are told apart at a glance, in one place: the operator answers
/// them through the background and foreground roles, and the page's legend shows the same.
namespace domain::qce::marks {

/// Background of an item that the owner supplies (甲供).
inline constexpr base::Color ProvidedByJia{255, 239, 204};
/// Text of an item with a provisional price (暂估).
inline constexpr base::Color Provisional{192, 57, 43};
/// Background of the name cell of an item with an annotation (批注).
inline constexpr base::Color Annotated{217, 234, 211};

/// Text of an item whose cost counts nowhere or in a subcontract: its cost amounts are 0.
inline constexpr base::Color NotCounted{140, 146, 154};

}  // namespace domain::qce::marks
