#pragma once

#include <string>

namespace operators {

/// Tells the user why something is not done. Always false, for `return refuse(…);`.
bool refuse(const std::string& message);

}  // namespace operators
