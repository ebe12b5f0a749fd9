#pragma once

#include <string>
#include <vector>

#include "host/domain/operator.h"

namespace domain {
class DisplayTable;
}

namespace domain::qce {

/// What getTableKind answers for tables that are shown differently.
enum ResItemBillTableKind : int { OrdinaryBillTable = 1, SubcontractBillTable = 4 };

/// The host side of the pane of a resource item's bills. A row stands for one bill, with what that
/// bill uses of the item and the terms on which it does.
///
/// Fields that a row answers beyond the shown texts: the role 2 (edit) of the subcontract price is
/// the expression that it was given as, if any; the role 3 (tool tip) of the content is the
/// budget's.
class QCE_CONTRACT_EXPORT QCEResItemBillOperator : public Operator {
 public:
  ~QCEResItemBillOperator() override;

  /// Changes the rows that getRoot leads to: the caller resets its model around the call.
  virtual void setBaseResItem(proxy::Element* item) = 0;
  virtual void setSubProject(proxy::Element* subProject) = 0;

  /// The table of this name, not owned by the caller; null for an unknown one.
  virtual DisplayTable* getTable(const std::string& name) = 0;
  /// A ResItemBillTableKind or another number; 0 for an unknown name.
  virtual int getTableKind(const std::string& name) const = 0;

  /// The per-row test of the flags. True: a bill with its own unit, whose subcontract price is
  /// typed. False: the summarised entry of a subcontract (专业分包), whose unit is typed instead.
  virtual bool isOrdinaryBill(const proxy::Element* row) const = 0;
  /// Background of the row's budget price, "#RRGGBB" or "RRGGBB"; empty for none.
  virtual std::string getColorText(const proxy::Element* row) const = 0;

  // Batches: all rows or none, inside the undo scope of the caller or their own. False: nothing was
  // written, and the user was told which bill refused and the cure.

  virtual bool setCoefficient(const std::vector<proxy::Element*>& rows, double coefficient,
                              bool multiply) = 0;
  virtual bool setAdjustedContent(const std::vector<proxy::Element*>& rows,
                                  const std::string& content) = 0;
  /// Yuan per unit of the bill, excluding tax.
  virtual bool setExcludeTaxPrice(proxy::Element* row, double price) = 0;
  virtual bool setExcludeTaxPriceExpr(proxy::Element* row, const std::string& expression) = 0;
  virtual bool disassociateBill(const std::vector<proxy::Element*>& rows) = 0;
};

}  // namespace domain::qce
