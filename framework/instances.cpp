#include "framework/instances.h"

namespace gui {

template class TViewModel<abst::qce::QCEResItemModel>;
template class TFilterViewModel<abst::qce::QCEResItemFilterModel>;

}  // namespace gui
