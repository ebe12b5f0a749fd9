#pragma once

#include <vector>

#include "contract_export.h"

namespace proxy {
class Element;
}

namespace abst::qce {

/// The host side of what the indirect fee page does beyond cells. Groups are elements of the left
/// model, items those of the right one. The host announces the rows that come and go.
class QCE_CONTRACT_EXPORT QCEIndirectFeeController {
 public:
  virtual ~QCEIndirectFeeController();

  virtual bool canAddItem(proxy::Element* group) const = 0;
  /// Appends a fee item to the group, in one undo step, and answers its element; null where that
  /// cannot be, after telling the user why.
  virtual proxy::Element* addItem(proxy::Element* group) = 0;
  virtual bool canRemoveItems(const std::vector<proxy::Element*>& items) const = 0;
  /// Removes the items in one undo step, all or none; false after telling the user why.
  virtual bool removeItems(const std::vector<proxy::Element*>& items) = 0;
};

}  // namespace abst::qce
