#pragma once

#include "host/abst/base_model.h"

namespace abst::qce::destructors {

/// The collection tree: subcontract entries, below each the bills that it gathers. A top-level row
/// has the id of the entry's row in the table of entries.
class QCE_CONTRACT_EXPORT DesSetSubcontractCollectModel : public BaseModel {
 public:
  ~DesSetSubcontractCollectModel() override;
};

}  // namespace abst::qce::destructors
