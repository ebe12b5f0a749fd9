#include "host/proxy/element.h"

namespace proxy {

Element::~Element() = default;
ElementGroup::~ElementGroup() = default;

bool ElementGroup::arrange(const Arrange& /*arrange*/) {
  return false;
}

}  // namespace proxy
