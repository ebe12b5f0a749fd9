#pragma once

#include "framework/instances.h"
#include "qce_export.h"

namespace gui::qce {

/// The fee groups as an item model. A group with groups below it is not enabled: it cannot be
/// chosen.
class QCE_EXPORT QCEIndirectFeeLeftModelImpl
    : public gui::TViewModel<abst::qce::QCEIndirectFeeLeftModel> {
 public:
  QCEIndirectFeeLeftModelImpl() = default;

  Qt::ItemFlags flags(const QModelIndex& index) const override;
};

}  // namespace gui::qce
