#pragma once

#include <string>
#include <vector>

#include "host/abst/qce/notional_pooling_model.h"

namespace abst::qce {

/// Which rows of a QCENotionalPoolingModel are shown: those of one bill.
class QCE_CONTRACT_EXPORT QCENotionalPoolingFilterModel : public BaseModel {
 public:
  using SourceModel = QCENotionalPoolingModel;

  ~QCENotionalPoolingFilterModel() override;

  // As in the model.
  virtual void setSubEngineerBills(std::vector<proxy::Element*>& bills) = 0;
  virtual void setCurrentQCEGLJItem(proxy::Element* item) = 0;
  virtual std::string getCurrentQCEResItemType() = 0;
  virtual void collectToQCEResItem() = 0;
  virtual void usedToOtherBills(proxy::Element* bill) = 0;
  virtual void cleanUpResources() = 0;

  /// Shows the rows of this bill alone; null shows all.
  virtual void setCurrentSubEngBill(proxy::Element* bill) = 0;
};

}  // namespace abst::qce
