#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/domain/operator.h"

namespace domain::qce {

/// The host side of pooling (归集): budget resource items of bills, of which quantities are booked
/// into one cost resource item. Rows that have nothing left to pool are left out. A quantity is in
/// the row's own unit.
class QCE_CONTRACT_EXPORT QCENotionalPoolingOperator : public Operator {
 public:
  ~QCENotionalPoolingOperator() override;

  /// The bills whose budget resource items are the rows. Changes the rows: the caller resets its
  /// model around the call.
  virtual void setSubEngineerBills(std::vector<proxy::Element*>& bills) = 0;
  /// The cost resource item that is pooled into; null for none.
  virtual void setCurrentQCEGLJItem(proxy::Element* item) = 0;
  /// The type of that item (人工, 材料, ...); empty without one.
  virtual std::string getCurrentQCEResItemType() const = 0;

  /// How much of the row can be pooled; at least what the row shows by default. 0 for a row that
  /// is no budget resource item.
  virtual double getMaxCollectionAmount(const proxy::Element* row) const = 0;
  /// Books the quantities, all or none, as one undo step. Elements that are no budget resource item
  /// and zero quantities book nothing. A refusal has been told to the user.
  virtual void collectToQCEResItem(const std::map<proxy::Element*, double>& quantities) = 0;

  /// The rows of other bills of the same sub-engineering that hold the same resource item.
  virtual std::vector<proxy::Element*> getSameRowsOfOtherBills(const proxy::Element* row) const = 0;
  /// The bill that owns the row; null for none. It has the id of the bill that was set.
  virtual const proxy::Element* getOwningBill(const proxy::Element* row) const = 0;
};

}  // namespace domain::qce
