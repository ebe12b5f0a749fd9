#pragma once

#include <string>
#include <vector>

#include "host/abst/qce/association_bill_right_model.h"

namespace abst::qce {

/// Which rows of a QCEAssociationBillRightModel are shown. Narrowing never changes a check mark.
class QCE_CONTRACT_EXPORT QCEAssociationBillRightFilterModel : public BaseModel {
 public:
  using SourceModel = QCEAssociationBillRightModel;

  ~QCEAssociationBillRightFilterModel() override;

  // As in QCEAssociationBillRightModel.
  virtual void setBaseResItem(std::vector<proxy::Element*> items) = 0;
  virtual void setSubProject(proxy::Element* subProject) = 0;
  virtual void resetModel() = 0;
  virtual void clickedStat(proxy::Element* element, bool checked) = 0;
  virtual void clearChecked() = 0;
  virtual bool isSelected(proxy::Element* element, bool deep) const = 0;
  virtual std::vector<proxy::Element*> getBranch(proxy::Element* element) const = 0;
  virtual void getAllChoosedBills(std::vector<proxy::Element*>& out) const = 0;
  virtual void getAssociationBills(std::vector<proxy::Element*>& out) const = 0;
  virtual void getCancelAssociationBills(std::vector<proxy::Element*>& out) const = 0;
  virtual bool associationBill(bool unify) = 0;
  virtual bool associationGroup() = 0;

  /// Keeps the bills that the host finds `text` (UTF-8) in; empty keeps all.
  virtual void filterType(std::string text) = 0;
  /// True keeps checked rows only, and those above them.
  virtual void filterType(bool onlySelected) = 0;
  /// Keeps the bills of one section, a row of the left tree; null keeps all.
  virtual void setSection(proxy::Element* section) = 0;
};

}  // namespace abst::qce
