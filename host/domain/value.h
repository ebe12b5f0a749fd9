#pragma once

#include <string>
#include <variant>
#include <vector>

#include "host/base/color.h"
#include "host/base/font.h"
#include "host/base/object.h"

namespace domain {

/// What models and operators exchange about one cell and role. Texts are UTF-8. The order of the
/// alternatives is part of the contract.
using Value = std::variant<std::monostate, bool, int, double, std::string, base::Color, base::Font,
                           scoped_refptr<base::Object>, std::vector<std::string>>;

}  // namespace domain
