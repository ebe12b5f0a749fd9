#pragma once

#include "contract_export.h"
#include "host/abst/base_model.h"

namespace abst::qce {

/// The names of the fee summaries, a row each. It has no operator of the host's behind it.
class QCE_CONTRACT_EXPORT QCEFeeSummaryNavigationModel : public abst::BaseModel {
 public:
  ~QCEFeeSummaryNavigationModel() override;
};

}  // namespace abst::qce
