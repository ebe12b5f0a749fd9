#pragma once

#include <optional>
#include <string>
#include <vector>

#include "framework/instances.h"
#include "qce_export.h"

namespace domain::qce {
class QCEResItemBillOperator;
}

namespace gui::qce {

/// The bills of a cost resource item as an item model. Rows, figures and the batch operations are
/// those of the domain::qce::QCEResItemBillOperator that the model was given; with an operator of
/// another kind the operations do nothing.
///
/// The actual content and the subcontract price take a number or an expression. What else an edit
/// changes (quantities, amounts, other rows) is the host's to announce.
class QCE_EXPORT QCEResItemBillModelImpl : public gui::TViewModel<abst::qce::QCEResItemBillModel> {
 public:
  QCEResItemBillModelImpl() = default;

  void setBaseResItem(proxy::Element* item) override;
  void setSubProject(proxy::Element* subProject) override;
  /// The title of the bill's unit price follows the kind of the table, also where the columns
  /// stay the same.
  void setTableName(std::string name) override;
  bool setCoefficient(std::vector<proxy::Element*> bills, double coefficient,
                      bool multiply) override;
  bool setAdjustedContent(std::vector<proxy::Element*> bills, std::string content) override;
  bool setExcludeTaxPrice(proxy::Element* bill, double price) override;
  bool setExcludeTaxPriceExpr(proxy::Element* bill, const std::string& expression) override;
  bool disassociateBill(std::vector<proxy::Element*> bills) override;
  void cleanUpResources() override;

  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;

 protected:
  /// Plain digits, without thousands separators: `precision` places, else the field's, else as
  /// many as the number has.
  std::string formatDoubleValue(const domain::DataField* field, double value,
                                std::optional<int> precision) const;

 private:
  domain::qce::QCEResItemBillOperator* getBillOperator() const;
  QVariant budgetData(const proxy::Element* row, const domain::ColumnDescriptor& column,
                      const QModelIndex& index, int role) const;

  std::string tableName_;
};

}  // namespace gui::qce
