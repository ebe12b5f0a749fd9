#pragma once

#include <functional>
#include <string>

#include "contract_export.h"

namespace proxy {
class Element;
}

// What dialogs say about bills and cost resource items: short texts, UTF-8, asked of the host.
namespace proxy::qce {

/// The texts of a host's elements. A host installs its accessors once at start-up, next to its
/// services; one that is left empty answers nothing. Each is asked with an element of any kind and
/// answers an empty text for one that is not its own.
struct FieldAccessors {
  using Text = std::function<std::string(const Element& element)>;

  Text subEngBillCodeWithIndex;  ///< code of a bill (清单), with its running number
  Text subEngBillName;
  Text subEngBillUnit;
  Text gljItemCode;  ///< of a cost resource item (成本工料机)
  Text gljItemName;
};

/// Installs the accessors and returns those that were installed before.
QCE_CONTRACT_EXPORT FieldAccessors InstallFieldAccessors(FieldAccessors accessors);

// Empty for a null element and without an installed accessor.
QCE_CONTRACT_EXPORT std::string GetQCESubEngBillCodeWithIndex(const Element* bill);
QCE_CONTRACT_EXPORT std::string GetQCESubEngBillName(const Element* bill);
QCE_CONTRACT_EXPORT std::string GetQCESubEngBillUnit(const Element* bill);
QCE_CONTRACT_EXPORT std::string GetQCEGLJItemCode(const Element* item);
QCE_CONTRACT_EXPORT std::string GetQCEGLJItemName(const Element* item);

}  // namespace proxy::qce
