#pragma once

// The instances of the bridge templates that the module's own pages use are compiled once, in the
// library. A host that includes this header does not compile them again.

#include "framework/filter_view_model.h"
#include "framework/view_model.h"
#include "host/abst/qce/association_bill_left_model.h"
#include "host/abst/qce/association_bill_right_filter_model.h"
#include "host/abst/qce/destructors/des_set_subcontract_association_bill_filter_model.h"
#include "host/abst/qce/destructors/des_set_subcontract_collect_model.h"
#include "host/abst/qce/destructors/des_set_subcontract_model.h"
#include "host/abst/qce/fee_summary_navigation_model.h"
#include "host/abst/qce/indirect_fee_left_model.h"
#include "host/abst/qce/indirect_fee_right_model.h"
#include "host/abst/qce/notional_pooling_filter_model.h"
#include "host/abst/qce/notional_pooling_model.h"
#include "host/abst/qce/res_item_bill_filter_model.h"
#include "host/abst/qce/res_item_bill_model.h"
#include "host/abst/qce/res_item_filter_model.h"
#include "host/abst/qce/res_item_model.h"
#include "host/abst/sub_engineering_filter_model.h"
#include "host/abst/sub_engineering_model.h"

namespace gui {

extern template class QCE_EXPORT TViewModel<abst::qce::QCEResItemModel>;
extern template class QCE_EXPORT TFilterViewModel<abst::qce::QCEResItemFilterModel>;
extern template class QCE_EXPORT TViewModel<abst::qce::QCENotionalPoolingModel>;
extern template class QCE_EXPORT TFilterViewModel<abst::qce::QCENotionalPoolingFilterModel>;
extern template class QCE_EXPORT TViewModel<abst::qce::QCEIndirectFeeLeftModel>;
extern template class QCE_EXPORT TViewModel<abst::qce::QCEIndirectFeeRightModel>;
extern template class QCE_EXPORT TViewModel<abst::qce::QCEAssociationBillLeftModel>;
extern template class QCE_EXPORT TViewModel<abst::qce::QCEAssociationBillRightModel>;
extern template class QCE_EXPORT TFilterViewModel<abst::qce::QCEAssociationBillRightFilterModel>;
extern template class QCE_EXPORT TViewModel<abst::qce::QCEResItemBillModel>;
extern template class QCE_EXPORT TFilterViewModel<abst::qce::QCEResItemBillFilterModel>;
extern template class QCE_EXPORT TViewModel<abst::SubEngineeringModel>;
extern template class QCE_EXPORT TFilterViewModel<abst::SubEngineeringFilterModel>;
extern template class QCE_EXPORT TViewModel<abst::qce::QCEFeeSummaryNavigationModel>;
extern template class QCE_EXPORT TViewModel<abst::qce::destructors::DesSetSubcontractModel>;
extern template class QCE_EXPORT TViewModel<abst::qce::destructors::DesSetSubcontractCollectModel>;
extern template class QCE_EXPORT
    TViewModel<abst::qce::destructors::DesSetSubcontractAssociationBillModel>;
extern template class QCE_EXPORT
    TFilterViewModel<abst::qce::destructors::DesSetSubcontractAssociationBillFilterModel>;

}  // namespace gui
