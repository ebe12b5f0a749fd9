#pragma once

#include "contract_export.h"

namespace abst::qce {

/// What the bill association dialog asks of the host.
class QCE_CONTRACT_EXPORT QCEAssociationBillController {
 public:
  virtual ~QCEAssociationBillController();

  /// The user is about to confirm: true when what is checked may be associated as it stands. The
  /// host may ask the user here; false leaves the dialog open with everything checked as it was.
  virtual bool mayAssociate() = 0;
  /// The user confirmed: associates and disassociates as the right model says (see
  /// QCEAssociationBillRightModel::associationBill). The dialog closes in any case; after false,
  /// which the host has told the user the reason for, as one that was cancelled.
  virtual bool associate(bool unify) = 0;
  /// After a confirmed dialog, when the user asked for it: pools from the associated bills into the
  /// cost resource item.
  virtual void collectToCost() = 0;
};

}  // namespace abst::qce
