#pragma once

#include "host/presentation/sub_engineering_model.h"
#include "qce_export.h"

namespace gui::qce {

/// The sub-engineering tree of a cost project as an item model. Resource rows are shown paler than
/// the bills that they belong to, unless the host gives them a colour.
class QCE_EXPORT QCESubEngineeringModelImpl : public gui::SubEngineeringModelImpl {
 public:
  explicit QCESubEngineeringModelImpl(QObject* parent = nullptr);

  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
};

}  // namespace gui::qce
