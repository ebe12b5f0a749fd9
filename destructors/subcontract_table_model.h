#pragma once

#include "framework/instances.h"
#include "qce_export.h"

namespace gui::qce::destructors {

/// The subcontract entries as an item model.
///
/// An edited metering method is announced a second time, with an empty role list, inside the undo
/// step of the edit: what the host then does to the entry belongs to the edit.
class QCE_EXPORT DesSetSubcontractTableModelImpl
    : public gui::TViewModel<abst::qce::destructors::DesSetSubcontractModel> {
 public:
  DesSetSubcontractTableModelImpl() = default;

  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
};

}  // namespace gui::qce::destructors
