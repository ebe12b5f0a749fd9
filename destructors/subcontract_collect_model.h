#pragma once

#include "framework/instances.h"
#include "qce_export.h"

namespace gui::qce::destructors {

/// The subcontract entries with the bills that they gather, as an item model.
class QCE_EXPORT DesSetSubcontractCollectModelImpl
    : public gui::TViewModel<abst::qce::destructors::DesSetSubcontractCollectModel> {
 public:
  DesSetSubcontractCollectModelImpl() = default;
};

}  // namespace gui::qce::destructors
