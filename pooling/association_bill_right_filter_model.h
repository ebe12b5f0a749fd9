#pragma once

#include <string>
#include <vector>

#include "framework/instances.h"
#include "host/proxy/element.h"
#include "qce_export.h"

namespace domain::qce {
class QCEAssociationBillRightOperator;
}

namespace gui::qce {

/// Which bills of the association are shown: those of one section, those that hold a text, those
/// that are checked; in any combination. Each setter filters again at once. A section stays while a
/// bill below it is shown.
///
/// Checking a section here checks the bills that are shown below it, and no others.
class QCE_EXPORT QCEAssociationBillRightFilterModelImpl
    : public gui::TFilterViewModel<abst::qce::QCEAssociationBillRightFilterModel> {
 public:
  explicit QCEAssociationBillRightFilterModelImpl(abst::qce::QCEAssociationBillRightModel* source);

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

  void filterType(std::string text) override;
  void filterType(bool onlySelected) override;
  void setSection(proxy::Element* section) override;

  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

 protected:
  using Base = gui::TFilterViewModel<abst::qce::QCEAssociationBillRightFilterModel>;
  using Base::filterAcceptsColumn;
  using Base::filterAcceptsRow;

  bool filterAcceptsRow(proxy::Element* element) const override;
  /// All columns but those that the display table hides.
  bool filterAcceptsColumn(int sourceColumn) const override;

 private:
  const domain::qce::QCEAssociationBillRightOperator* getRightOperator() const;
  void marksChanged();
  bool setRData(const QModelIndex& section, const QVariant& value);
  void collectShownBills(const QModelIndex& parent, std::vector<proxy::Element*>& out) const;

  std::string text_;
  bool onlySelected_ = false;
  scoped_refptr<proxy::Element> section_;
};

}  // namespace gui::qce
