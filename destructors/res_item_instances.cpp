#include "destructors/res_item_instances.h"

namespace gui {

template class TViewModel<abst::qce::destructors::DesResItemModel>;
template class TFilterViewModel<abst::qce::destructors::DesResItemFilterModel>;
template class TViewModel<abst::qce::destructors::DesResItemSummaryGuideModel>;
template class TViewModel<abst::qce::destructors::DesResItemSummaryTableModel>;
template class TFilterViewModel<abst::qce::destructors::DesResItemSummaryTableFilterModel>;

}  // namespace gui
