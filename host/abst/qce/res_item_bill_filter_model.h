#pragma once

#include "host/abst/qce/res_item_bill_model.h"

namespace abst::qce {

/// Which rows of a QCEResItemBillModel are shown. Every operation of the model is passed on to it.
class QCE_CONTRACT_EXPORT QCEResItemBillFilterModel : public QCEResItemBillBase {
 public:
  using SourceModel = QCEResItemBillModel;

  ~QCEResItemBillFilterModel() override;

  /// Leaves out the bills that the item is not associated with. Filters at once.
  virtual void setAssociatedOnly(bool on) = 0;
  virtual bool isAssociatedOnly() const = 0;
};

}  // namespace abst::qce
