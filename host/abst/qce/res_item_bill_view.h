#pragma once

#include <string>
#include <utility>
#include <vector>

#include "contract_export.h"

namespace proxy {
class Element;
}

namespace abst::qce {

/// The pane of a resource item's bills, as the page above it sees it: a sub-view (abst::BaseView)
/// that follows the page's current item.
class QCE_CONTRACT_EXPORT QCEResItemBillView {
 public:
  virtual ~QCEResItemBillView();

  /// The pane's item is another one; null for none. A hidden pane and one that is told of many
  /// items in a row asks for no rows before it is seen at rest.
  virtual void setBaseResItem(proxy::Element* item) = 0;
};

/// What the pane asks of the host beyond its model.
class QCE_CONTRACT_EXPORT QCEResItemBillController {
 public:
  virtual ~QCEResItemBillController();

  /// The name of the table in which the bills of `item` are shown.
  virtual std::string getTableName(const proxy::Element* item) const = 0;
  /// Code and name of the item for the pane's title; empty for what is no resource item.
  virtual std::string getItemName(const proxy::Element* item) const = 0;
  /// Opens pooling for the item and the bills of these rows. Nothing by default.
  virtual void collect(proxy::Element* item, const std::vector<proxy::Element*>& bills);
  virtual bool canCollect() const;
  /// Gives back what is pooled from the bills of these rows into the pane's item, in one undo step;
  /// the bills stay associated. Nothing by default.
  virtual void withdraw(const std::vector<proxy::Element*>& bills);
  /// Whether there is anything to give back. False by default.
  virtual bool canWithdraw(const std::vector<proxy::Element*>& bills) const;
};

}  // namespace abst::qce
