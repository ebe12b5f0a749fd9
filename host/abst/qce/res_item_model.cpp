#include "host/abst/qce/res_item_model.h"

#include "host/abst/qce/res_item_filter_model.h"

namespace abst::qce {

QCEResItemModel::~QCEResItemModel() = default;
QCEResItemFilterModel::~QCEResItemFilterModel() = default;

}  // namespace abst::qce
