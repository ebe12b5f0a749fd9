#pragma once

#include <string>
#include <vector>

#include "host/abst/base_model.h"

namespace abst::qce {

/// What the model of a resource item's bills and the filter over it have in common. The batch
/// operations write all rows that they are given or none, as one undo step; false: nothing was
/// written, and where the host refused, it has told the user why.
class QCE_CONTRACT_EXPORT QCEResItemBillBase : public BaseModel {
 public:
  ~QCEResItemBillBase() override;

  /// Shows the bills of this cost resource item; null, or a row that is no item, shows none.
  virtual void setBaseResItem(proxy::Element* item) = 0;
  /// Shows the bills at and below one node of the project's structure alone; null shows all.
  virtual void setSubProject(proxy::Element* subProject) = 0;
  /// Selects the display table among those that the operator has.
  virtual void setTableName(std::string name) = 0;

  /// Multiplies the coefficients of the rows by `coefficient`, or divides them by it.
  virtual bool setCoefficient(std::vector<proxy::Element*> bills, double coefficient,
                              bool multiply) = 0;
  /// Sets the actual content per unit of the bill, a number or an expression; an empty text goes
  /// back to the content of the budget.
  virtual bool setAdjustedContent(std::vector<proxy::Element*> bills, std::string content) = 0;
  /// Sets the subcontract cost price excluding tax, yuan per unit of the bill.
  virtual bool setExcludeTaxPrice(proxy::Element* bill, double price) = 0;
  /// The same price as an expression, which is kept; an empty one takes the price away.
  virtual bool setExcludeTaxPriceExpr(proxy::Element* bill, const std::string& expression) = 0;
  /// Takes away the association of the rows with the base resource item.
  virtual bool disassociateBill(std::vector<proxy::Element*> bills) = 0;

  /// Lets go of the base resource item, the sub-project and all rows.
  virtual void cleanUpResources() = 0;
};

/// The bills in which a cost resource item is used or with which it is associated.
class QCE_CONTRACT_EXPORT QCEResItemBillModel : public QCEResItemBillBase {
 public:
  ~QCEResItemBillModel() override;
};

}  // namespace abst::qce
