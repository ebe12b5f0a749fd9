#pragma once

// The bridge's instances of this folder's resource-item models; see framework/instances.h.

#include "framework/filter_view_model.h"
#include "framework/view_model.h"
#include "host/abst/qce/destructors/des_res_item_model.h"
#include "host/abst/qce/destructors/des_res_item_summary.h"
#include "qce_export.h"

namespace gui {

extern template class QCE_EXPORT TViewModel<abst::qce::destructors::DesResItemModel>;
extern template class QCE_EXPORT TFilterViewModel<abst::qce::destructors::DesResItemFilterModel>;
extern template class QCE_EXPORT TViewModel<abst::qce::destructors::DesResItemSummaryGuideModel>;
extern template class QCE_EXPORT TViewModel<abst::qce::destructors::DesResItemSummaryTableModel>;
extern template class QCE_EXPORT
    TFilterViewModel<abst::qce::destructors::DesResItemSummaryTableFilterModel>;

}  // namespace gui
