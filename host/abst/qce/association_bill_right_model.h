#pragma once

#include <string>
#include <vector>

#include "host/abst/base_model.h"

namespace abst::qce {

/// The right tree of the bill association: sections with their bills and a check mark for each row.
/// The marks are the model's own; the host hears of them when it is told to associate.
class QCE_CONTRACT_EXPORT QCEAssociationBillRightModel : public BaseModel {
 public:
  ~QCEAssociationBillRightModel() override;

  /// The cost resource items that are associated. Resets the model; nothing is checked then.
  virtual void setBaseResItem(std::vector<proxy::Element*> items) = 0;
  /// Shows the bills of one sub-project; null shows none. Resets the model; nothing is checked
  /// then.
  virtual void setSubProject(proxy::Element* subProject) = 0;
  /// Reads the rows again and checks the bills that are associated with all of the items.
  virtual void resetModel() = 0;

  /// Checks one row, or takes its mark off. Checking the last child of a row checks that row too;
  /// taking off a mark takes off that of the parent. Rows below are left as they are. Announces the
  /// row alone, and nothing when it already was as requested.
  virtual void clickedStat(proxy::Element* element, bool checked) = 0;
  /// Takes all marks off.
  virtual void clearChecked() = 0;
  /// Whether the row is checked; with `deep` also whether any row below it is.
  virtual bool isSelected(proxy::Element* element, bool deep) const = 0;
  /// The row and all rows below it, each before those below it; empty for null.
  virtual std::vector<proxy::Element*> getBranch(proxy::Element* element) const = 0;

  // What the marks come to. Each appends to `out`.

  /// The checked bills, without sections.
  virtual void getAllChoosedBills(std::vector<proxy::Element*>& out) const = 0;
  /// The checked bills that are not yet associated with all of the items.
  virtual void getAssociationBills(std::vector<proxy::Element*>& out) const = 0;
  /// The unchecked bills that are associated with all of the items. A bill that only some of the
  /// items have is in neither list until it is checked.
  virtual void getCancelAssociationBills(std::vector<proxy::Element*>& out) const = 0;

  /// Has the host do both: associate the former bills and disassociate the latter, in one undo
  /// step. `unify` (汇总统计) is what the associations are to have. False when the host refused;
  /// the user has been told and nothing has changed.
  virtual bool associationBill(bool unify) = 0;
  /// Associates the bills of the checked sections alone. None is disassociated, and 汇总统计 is
  /// what the associated bills have.
  virtual bool associationGroup() = 0;
};

}  // namespace abst::qce
