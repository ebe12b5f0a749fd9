#pragma once

#include <string>
#include <vector>

#include "host/abst/base_model.h"

namespace abst::qce {

/// The choice of budget resource items to pool into a cost resource item: which rows are checked,
/// and how much of each.
class QCE_CONTRACT_EXPORT QCENotionalPoolingModel : public BaseModel {
 public:
  ~QCENotionalPoolingModel() override;

  /// Shows the budget resource items of these bills. Forgets what was checked and typed.
  virtual void setSubEngineerBills(std::vector<proxy::Element*>& bills) = 0;
  virtual void setCurrentQCEGLJItem(proxy::Element* item) = 0;
  /// Empty without a host behind the model.
  virtual std::string getCurrentQCEResItemType() = 0;
  /// Hands the checked rows and their quantities to the host; nothing where none is checked.
  virtual void collectToQCEResItem() = 0;
  /// Checks, in the other bills, what is checked in this one. Quantities are not copied.
  virtual void usedToOtherBills(proxy::Element* bill) = 0;
  /// Forgets what was checked and typed.
  virtual void cleanUpResources() = 0;
};

}  // namespace abst::qce
