#pragma once

#include <string>

namespace operators {

/// Tells the user why something is not done. Always false, for `return refuse(…);`.
bool refuse(const std::string& message);

/// Tells the user what to look at in what was done.
void notify(const std::string& message);

}  // namespace operators
