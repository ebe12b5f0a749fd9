#pragma once

#include "host/abst/base_model.h"

namespace abst::qce::destructors {

/// The bills of the project, and which of them are associated with the current subcontract entry.
class QCE_CONTRACT_EXPORT DesSetSubcontractAssociationBillModel : public BaseModel {
 public:
  ~DesSetSubcontractAssociationBillModel() override;

  /// Whether the bill in this row is associated with the current entry.
  virtual bool isAssociated(const proxy::Element* bill) const = 0;
  /// The current entry, or what is associated with it, is another one: announces all rows.
  virtual void refresh() = 0;
};

}  // namespace abst::qce::destructors
