#pragma once

#include "host/abst/base_model.h"

namespace abst::qce::destructors {

/// The table of subcontract entries (分包条目), one row each.
class QCE_CONTRACT_EXPORT DesSetSubcontractModel : public BaseModel {
 public:
  ~DesSetSubcontractModel() override;
};

}  // namespace abst::qce::destructors
