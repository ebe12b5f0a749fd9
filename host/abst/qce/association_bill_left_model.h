#pragma once

#include "host/abst/base_model.h"

namespace abst::qce {

/// The left tree of the bill association: the sections of one sub-project.
class QCE_CONTRACT_EXPORT QCEAssociationBillLeftModel : public BaseModel {
 public:
  ~QCEAssociationBillLeftModel() override;

  /// Shows the sections of one sub-project; null shows none.
  virtual void setSubProject(proxy::Element* subProject) = 0;
  /// Reads the rows again.
  virtual void resetModel() = 0;
};

}  // namespace abst::qce
