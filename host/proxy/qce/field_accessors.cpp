#include "host/proxy/qce/field_accessors.h"

#include <utility>

namespace proxy::qce {
namespace {

FieldAccessors& installed() {
  static FieldAccessors accessors;
  return accessors;
}

std::string ask(const FieldAccessors::Text& accessor, const Element* element) {
  return accessor && element != nullptr ? accessor(*element) : std::string();
}

}  // namespace

FieldAccessors InstallFieldAccessors(FieldAccessors accessors) {
  return std::exchange(installed(), std::move(accessors));
}

std::string GetQCESubEngBillCodeWithIndex(const Element* bill) {
  return ask(installed().subEngBillCodeWithIndex, bill);
}
std::string GetQCESubEngBillName(const Element* bill) {
  return ask(installed().subEngBillName, bill);
}
std::string GetQCESubEngBillUnit(const Element* bill) {
  return ask(installed().subEngBillUnit, bill);
}
std::string GetQCEGLJItemCode(const Element* item) {
  return ask(installed().gljItemCode, item);
}
std::string GetQCEGLJItemName(const Element* item) {
  return ask(installed().gljItemName, item);
}

}  // namespace proxy::qce
