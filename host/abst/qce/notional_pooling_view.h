#pragma once

#include <vector>

#include "host/abst/base_view.h"

namespace proxy {
class Element;
}

namespace abst::qce {

/// The pooling dialog as a host drives it: given its model, its bills and its cost resource item,
/// then shown.
class QCE_CONTRACT_EXPORT QCENotionalPoolingView : public BaseView {
 public:
  ~QCENotionalPoolingView() override;

  /// Appends the bills to the list, in this order.
  virtual void setAssociatedBills(std::vector<proxy::Element*>& bills) = 0;
  /// Names the bill whose rows are shown.
  virtual void setCurrentAssociatedBill(proxy::Element* bill) = 0;
  virtual void setCurrentQCEGLJItem(proxy::Element* item) = 0;
  /// Asks the user. With the list of bills, the first one is shown; without, all rows are.
  virtual void showDialog(bool withBills) = 0;
  /// Forgets the bills, and what was checked and typed.
  virtual void cleanUpResources() = 0;
};

}  // namespace abst::qce
