#include "destructors/subcontract_association_bill_model.h"

#include <QColor>

#include "host/domain/qce/destructors/des_set_subcontract_operator.h"

namespace gui::qce::destructors {

bool DesSetSubcontractAssociationBillModelImpl::isAssociated(const proxy::Element* bill) const {
  const auto* op =
      dynamic_cast<const domain::qce::destructors::DesSetSubcontractBillOperator*>(getOperator());
  return op != nullptr && bill != nullptr && op->isAssociated(bill);
}

void DesSetSubcontractAssociationBillModelImpl::refresh() {
  const int rows = rowCount();
  if (rows > 0) emit dataChanged(index(0, 0), index(rows - 1, columnCount() - 1));
}

QVariant DesSetSubcontractAssociationBillModelImpl::data(const QModelIndex& index, int role) const {
  QVariant plain = TViewModel::data(index, role);
  if (role != Qt::BackgroundRole || plain.isValid() || !isAssociated(getInternalData(index))) {
    return plain;
  }
  return QColor(229, 243, 225);
}

}  // namespace gui::qce::destructors
