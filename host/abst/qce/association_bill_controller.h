#pragma once

#include "contract_export.h"

namespace abst::qce {

/// What the bill association dialog asks of the host.
class QCE_CONTRACT_EXPORT QCEAssociationBillController {
 public:
  virtual ~QCEAssociationBillController();

  /// The user confirmed: associates and disassociates as the right model says (see
  /// QCEAssociationBillRightModel::associationBill). False leaves the dialog open with everything
  /// checked as it was; the host has told the user why, or the user thought better of it.
  virtual bool associate(bool unify) = 0;
  /// After a confirmed dialog, when the user asked for it: pools from the associated bills into the
  /// cost resource item.
  virtual void collectToCost() = 0;
};

}  // namespace abst::qce
