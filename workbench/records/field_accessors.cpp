#include "workbench/records/field_accessors.h"

#include "workbench/records/elements.h"

namespace records {
namespace {

template <class Get>
proxy::qce::FieldAccessors::Text textOf(Get get) {
  return [get](const proxy::Element& element) -> std::string { return get(element).str(); };
}

proxy::qce::FieldAccessors::Text billText(Text Bill::*field) {
  return textOf([field](const proxy::Element& element) {
    const auto* bill = dynamic_cast<const Bill*>(&element);
    return bill != nullptr ? bill->*field : Text();
  });
}

proxy::qce::FieldAccessors::Text itemText(Text (ResourceItem::*get)() const) {
  return textOf([get](const proxy::Element& element) {
    const auto* item = dynamic_cast<const ResourceItem*>(&element);
    return item != nullptr ? (item->*get)() : Text();
  });
}

}  // namespace

proxy::qce::FieldAccessors fieldAccessors() {
  proxy::qce::FieldAccessors accessors;
  accessors.subEngBillCodeWithIndex = billText(&Bill::code);
  accessors.subEngBillName = billText(&Bill::name);
  accessors.subEngBillUnit = billText(&Bill::unit);
  accessors.gljItemCode = itemText(&ResourceItem::code);
  accessors.gljItemName = itemText(&ResourceItem::name);
  return accessors;
}

}  // namespace records
