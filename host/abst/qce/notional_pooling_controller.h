#pragma once

#include "contract_export.h"

namespace proxy {
class Element;
}

namespace abst::qce {

/// What the pooling dialog asks of the host. The host holds the dialog and its filter model, and
/// passes on to them.
class QCE_CONTRACT_EXPORT QCENotionalPoolingController {
 public:
  virtual ~QCENotionalPoolingController();

  /// The user chose a bill: the dialog names it, the filter shows its rows.
  virtual void setCurrentSubEngBill(proxy::Element* bill) = 0;
  /// Checks in the other bills what is checked in this one; null stands for the current one.
  virtual void usedToOtherBills(proxy::Element* bill) = 0;
  /// The user confirmed: pools what is checked.
  virtual void collectToQCEResItem() = 0;
};

}  // namespace abst::qce
