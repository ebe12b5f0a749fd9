#include "engineering/indirect_fee_left_model.h"

namespace gui::qce {

Qt::ItemFlags QCEIndirectFeeLeftModelImpl::flags(const QModelIndex& index) const {
  const Qt::ItemFlags flags = TViewModel::flags(index);
  const proxy::Element* group = getInternalData(index);
  return group != nullptr && group->childCount() > 0 ? flags & ~Qt::ItemIsEnabled : flags;
}

}  // namespace gui::qce
