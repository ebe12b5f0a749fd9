#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "framework/instances.h"
#include "framework/row_follower.h"
#include "qce_export.h"

namespace domain::qce {
class QCEAssociationBillRightOperator;
}

namespace gui::qce {

/// The bills that can be associated with cost resource items, below their sections, as an item
/// model with a check box in column 0 of each row. What is associated and what the marks lead to is
/// the affair of the domain::qce::QCEAssociationBillRightOperator that the model was given.
///
/// The marks are kept by index. A reset takes all of them off (only resetModel() then checks what
/// is associated); when rows come, go, move or are sorted, each mark stays with its element.
///
/// Setting the check state of a cell checks the row and all rows below it, and then each row above
/// whose children are all checked; clearing it is the reverse. Other edits are refused.
class QCE_EXPORT QCEAssociationBillRightModelImpl
    : public gui::TViewModel<abst::qce::QCEAssociationBillRightModel> {
 public:
  QCEAssociationBillRightModelImpl();

  void setBaseResItem(std::vector<proxy::Element*> items) override;
  void setSubProject(proxy::Element* subProject) override;
  void resetModel() override;
  void clickedStat(proxy::Element* element, bool checked) override;
  void clearChecked() override;
  bool isSelected(proxy::Element* element, bool deep) const override;
  std::vector<proxy::Element*> getBranch(proxy::Element* element) const override;
  void getAllChoosedBills(std::vector<proxy::Element*>& out) const override;
  void getAssociationBills(std::vector<proxy::Element*>& out) const override;
  void getCancelAssociationBills(std::vector<proxy::Element*>& out) const override;
  bool associationBill(bool unify) override;
  bool associationGroup() override;

  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
  bool showValueOnFailToGetFloatValue(const std::string& fieldKey) const override;

 protected:
  /// As formatDouble, with `precision` digits after the point where that is given.
  std::string formatDoubleValue(const domain::DataField* field, double value,
                                std::optional<int> precision) const;

 private:
  domain::qce::QCEAssociationBillRightOperator* getRightOperator() const;
  bool checkParentState(const QModelIndex& parent) const;
  /// Each before those below it.
  std::vector<proxy::Element*> allRows() const;

  std::set<QModelIndex> checked_;
  gui::RowFollower follower_;
};

}  // namespace gui::qce
