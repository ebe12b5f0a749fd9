#pragma once

#include <string>
#include <utility>
#include <vector>

#include "contract_export.h"

namespace proxy {
class Element;
}

namespace abst::qce {

/// What the resource-item page asks of the host beyond its model.
class QCE_CONTRACT_EXPORT QCEResItemController {
 public:
  virtual ~QCEResItemController();

  /// The sub-projects that the page can be narrowed to: name (UTF-8) and element, in order.
  virtual std::vector<std::pair<std::string, proxy::Element*>> getSubProjects() const = 0;
  /// Moves an item one row up or down among its siblings; false when it cannot move.
  virtual bool moveUp(proxy::Element* item) = 0;
  virtual bool moveDown(proxy::Element* item) = 0;

  /// The types of item (人工, 材料, ...) that insertItem can make; empty, the default: none.
  virtual std::vector<std::string> getItemTypes() const;
  /// Makes an item of the type in the sub-project that `at` is or belongs to; null where that is
  /// not possible.
  virtual proxy::Element* insertItem(proxy::Element* at, const std::string& type);
  /// Whether the items can be deleted.
  virtual bool canDeleteItems(const std::vector<proxy::Element*>& items) const;
  /// Deletes all of them, or none and tells the user why.
  virtual void deleteItems(const std::vector<proxy::Element*>& items);

  /// Whether budget resource items can be pooled into `item`.
  virtual bool canCollectToCost(proxy::Element* item) const;
  /// Asks the user what to pool into `item`, and books it; returns when that is done. By default
  /// nothing happens.
  virtual void collectToCost(proxy::Element* item);

  /// Whether bills can be associated with these items.
  virtual bool canAssociateBills(const std::vector<proxy::Element*>& items) const;
  /// Asks the user which bills to associate with the items, and does it; returns when that is done.
  /// By default nothing happens.
  virtual void associateBills(const std::vector<proxy::Element*>& items);
};

}  // namespace abst::qce
