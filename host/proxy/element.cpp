#include "host/proxy/element.h"

namespace proxy {

Element::~Element() = default;
ElementGroup::~ElementGroup() = default;

}  // namespace proxy
