#include "host/base/object.h"

namespace base {

Object::~Object() = default;

}  // namespace base
