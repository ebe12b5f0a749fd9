#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/domain/display_table.h"
#include "host/domain/qce/res_item_bill_operator.h"
#include "workbench/records/project.h"

namespace operators {

/// The bill lines of one cost resource item. Refusals are told through app::qce::GetQCEChannel()
/// and name the bill.
class ResItemBillOperator : public domain::qce::QCEResItemBillOperator {
 public:
  /// The tables that getTable knows: for an ordinary item, and for one with a line that is
  /// summarised as a subcontract.
  static const std::string OrdinaryTable, SubcontractTable;

  explicit ResItemBillOperator(records::Project& project);
  ~ResItemBillOperator() override;

  /// The table in which the item's lines are shown; the ordinary one for what is no item.
  std::string tableNameOf(const proxy::Element* item) const;
  records::ResourceItem* baseItem() const { return item_.get(); }
  /// Reads the figures of the rows again. False, with nothing read, when the item has other lines
  /// than there are rows, or another table: the model has to be reset then.
  bool refresh();
  /// The bills of rows, in the order of the rows.
  std::vector<records::Bill*> billsOf(const std::vector<proxy::Element*>& rows) const;
  /// How many of these bills have something pooled into the item.
  int pooledCount(const std::vector<records::Bill*>& bills) const;
  /// Gives back what is pooled from the bills of the rows, as one undo step. They stay associated
  /// and keep their terms. False when that was refused; the user has been told.
  bool withdraw(const std::vector<proxy::Element*>& rows);

  proxy::ElementGroup* getRoot() override;
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;
  bool setValue(proxy::Element* element, const std::string& key, const domain::Value& value,
                int role) override;
  bool isEnabled(const proxy::Element* element, const std::string& key) const override;
  bool isEditable(const proxy::Element* element, const std::string& key) const override;

  void setBaseResItem(proxy::Element* item) override;
  void setSubProject(proxy::Element* subProject) override;
  domain::DisplayTable* getTable(const std::string& name) override;
  int getTableKind(const std::string& name) const override;
  bool isOrdinaryBill(const proxy::Element* row) const override;
  /// A line that costs more than its budget.
  std::string getColorText(const proxy::Element* row) const override;

  bool setCoefficient(const std::vector<proxy::Element*>& rows, double coefficient,
                      bool multiply) override;
  bool setAdjustedContent(const std::vector<proxy::Element*>& rows,
                          const std::string& content) override;
  bool setExcludeTaxPrice(proxy::Element* row, double price) override;
  bool setExcludeTaxPriceExpr(proxy::Element* row, const std::string& expression) override;
  /// Asks first when poolings would go back.
  bool disassociateBill(const std::vector<proxy::Element*>& rows) override;

 private:
  class Row;
  using Rows = std::vector<proxy::Element*>;

  static const Row* rowOf(const proxy::Element* element);
  bool display(const Row& row, int column, domain::Value& out) const;
  bool isShown(const records::Bill& bill) const;
  bool isSubcontracted(const records::ResourceItem& item) const;
  std::vector<records::BillLine> lines() const;
  void rebuild();
  /// Changes the terms of the rows, all or none; `what` names the field in refusals. The change
  /// throws records::Refusal for a value that cannot be.
  bool change(const Rows& rows, const std::string& what,
              const std::function<void(records::LineTerms&)>& to);

  records::Project& project_;
  std::unique_ptr<domain::DisplayTable> ordinary_, subcontract_;
  scoped_refptr<records::ResourceItem> item_;
  const proxy::Element* subProject_ = nullptr;
  scoped_refptr<records::Group> root_;
  bool subcontracted_ = false;  // the item's table is the subcontract's
};

}  // namespace operators
