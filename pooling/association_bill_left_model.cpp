#include "pooling/association_bill_left_model.h"

#include "host/domain/qce/association_bill_left_operator.h"

namespace gui::qce {

using Operator = domain::qce::QCEAssociationBillLeftOperator;

void QCEAssociationBillLeftModelImpl::setSubProject(proxy::Element* subProject) {
  beginResetModel();
  if (auto* op = dynamic_cast<Operator*>(getOperator())) op->setSubProject(subProject);
  endResetModel();
}

void QCEAssociationBillLeftModelImpl::resetModel() {
  beginResetModel();
  if (auto* op = dynamic_cast<Operator*>(getOperator())) op->reload();
  endResetModel();
}

// The tree is narrow: what a cell says stands in its tool tip, too.
QVariant QCEAssociationBillLeftModelImpl::data(const QModelIndex& index, int role) const {
  const QVariant value = TViewModel::data(index, role);
  return role == Qt::ToolTipRole && !value.isValid() ? TViewModel::data(index, Qt::DisplayRole)
                                                     : value;
}

bool QCEAssociationBillLeftModelImpl::setData(const QModelIndex& /*index*/,
                                              const QVariant& /*value*/, int /*role*/) {
  return false;
}

}  // namespace gui::qce
