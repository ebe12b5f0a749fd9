#pragma once

#include <string>
#include <vector>

#include "framework/instances.h"
#include "qce_export.h"

namespace gui::qce {

/// Which bills of a cost resource item the pane shows: all, or those that the item is associated
/// with. Everything else is passed on to the model.
class QCE_EXPORT QCEResItemBillFilterModelImpl
    : public gui::TFilterViewModel<abst::qce::QCEResItemBillFilterModel> {
 public:
  using TFilterViewModel::TFilterViewModel;

  void setBaseResItem(proxy::Element* item) override;
  void setSubProject(proxy::Element* subProject) override;
  void setTableName(std::string name) override;
  bool setCoefficient(std::vector<proxy::Element*> bills, double coefficient,
                      bool multiply) override;
  bool setAdjustedContent(std::vector<proxy::Element*> bills, std::string content) override;
  bool setExcludeTaxPrice(proxy::Element* bill, double price) override;
  bool setExcludeTaxPriceExpr(proxy::Element* bill, const std::string& expression) override;
  bool disassociateBill(std::vector<proxy::Element*> bills) override;
  void cleanUpResources() override;

  void setAssociatedOnly(bool on) override;
  bool isAssociatedOnly() const override { return associatedOnly_; }

 protected:
  using TFilterViewModel::filterAcceptsRow;

  bool filterAcceptsRow(proxy::Element* row) const override;
  /// Contents, which are texts, compare as the numbers that they show.
  bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;
  gui::SortInputs::Reader sortReader(int sourceColumn) const override;

 private:
  abst::qce::QCEResItemBillModel* getRealModel() const { return getSource(); }
  bool isContent(int sourceColumn) const;

  bool associatedOnly_ = false;
};

}  // namespace gui::qce
