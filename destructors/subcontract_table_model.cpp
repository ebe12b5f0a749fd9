#include "destructors/subcontract_table_model.h"

#include "host/domain/field_keys.h"

namespace gui::qce::destructors {

bool DesSetSubcontractTableModelImpl::setData(const QModelIndex& index, const QVariant& value,
                                              int role) {
  const app::ScopedUndo undo((std::string()));
  if (!TViewModel::setData(index, value, role)) return false;
  if (getFieldName(index.column()) == domain::keys::BRIMeteringMethod) {
    emit dataChanged(index, index, {});
  }
  return true;
}

}  // namespace gui::qce::destructors
