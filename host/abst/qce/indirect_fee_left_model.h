#pragma once

#include "host/abst/base_model.h"

namespace abst::qce {

/// The tree of fee groups on the left of the indirect fee page. Groups without groups below them
/// are those whose items can be shown.
class QCE_CONTRACT_EXPORT QCEIndirectFeeLeftModel : public BaseModel {
 public:
  ~QCEIndirectFeeLeftModel() override;
};

}  // namespace abst::qce
