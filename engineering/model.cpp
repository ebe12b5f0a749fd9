#include "engineering/model.h"

#include <QColor>

namespace gui::qce {

QCESubEngineeringModelImpl::QCESubEngineeringModelImpl(QObject* parent)
    : gui::SubEngineeringModelImpl(parent) {}

QVariant QCESubEngineeringModelImpl::data(const QModelIndex& index, int role) const {
  QVariant value = gui::SubEngineeringModelImpl::data(index, role);
  if (role == Qt::ForegroundRole && !value.isValid() && isResourceRow(getInternalData(index))) {
    return QColor(0x5f, 0x6b, 0x7a);
  }
  return value;
}

}  // namespace gui::qce
