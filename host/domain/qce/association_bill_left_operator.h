#pragma once

#include "host/domain/operator.h"

namespace domain::qce {

/// The host side of the left tree of the bill association: a sub-project and its sections.
class QCE_CONTRACT_EXPORT QCEAssociationBillLeftOperator : public Operator {
 public:
  ~QCEAssociationBillLeftOperator() override;

  /// Leads to the sections of one sub-project; null to none. Changes the rows: the caller resets
  /// its model around the call.
  virtual void setSubProject(proxy::Element* subProject) = 0;
  /// Reads the rows again. Changes them, as setSubProject does.
  virtual void reload() = 0;
};

}  // namespace domain::qce
