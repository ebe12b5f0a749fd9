#pragma once

#include "framework/instances.h"
#include "qce_export.h"

namespace gui::qce {

/// The sections of one sub-project as an item model, to choose the bills of one section from. What
/// goes beyond a cell is passed on to the domain::qce::QCEAssociationBillLeftOperator that the
/// model was given. Nothing can be edited.
class QCE_EXPORT QCEAssociationBillLeftModelImpl
    : public gui::TViewModel<abst::qce::QCEAssociationBillLeftModel> {
 public:
  QCEAssociationBillLeftModelImpl() = default;

  void setSubProject(proxy::Element* subProject) override;
  void resetModel() override;

  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
};

}  // namespace gui::qce
