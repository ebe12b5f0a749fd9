#pragma once

#include "framework/instances.h"
#include "qce_export.h"

namespace gui::qce::destructors {

/// The bills of the project as an item model; those that are associated with the current
/// subcontract entry have a light green ground where the host gives none. What is associated is
/// answered by the domain::qce::destructors::DesSetSubcontractBillOperator that the model was
/// given; nothing with an operator of another kind.
class QCE_EXPORT DesSetSubcontractAssociationBillModelImpl
    : public gui::TViewModel<abst::qce::destructors::DesSetSubcontractAssociationBillModel> {
 public:
  DesSetSubcontractAssociationBillModelImpl() = default;

  bool isAssociated(const proxy::Element* bill) const override;
  void refresh() override;

  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
};

}  // namespace gui::qce::destructors
