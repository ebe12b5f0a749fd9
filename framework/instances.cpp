#include "framework/instances.h"

namespace gui {

template class TViewModel<abst::qce::QCEResItemModel>;
template class TFilterViewModel<abst::qce::QCEResItemFilterModel>;
template class TViewModel<abst::qce::QCENotionalPoolingModel>;
template class TFilterViewModel<abst::qce::QCENotionalPoolingFilterModel>;
template class TViewModel<abst::qce::QCEIndirectFeeLeftModel>;
template class TViewModel<abst::qce::QCEIndirectFeeRightModel>;
template class TViewModel<abst::qce::QCEAssociationBillLeftModel>;
template class TViewModel<abst::qce::QCEAssociationBillRightModel>;
template class TFilterViewModel<abst::qce::QCEAssociationBillRightFilterModel>;
template class TViewModel<abst::qce::QCEResItemBillModel>;
template class TFilterViewModel<abst::qce::QCEResItemBillFilterModel>;
template class TViewModel<abst::SubEngineeringModel>;
template class TFilterViewModel<abst::SubEngineeringFilterModel>;
template class TViewModel<abst::qce::QCEFeeSummaryNavigationModel>;
template class TViewModel<abst::qce::destructors::DesSetSubcontractModel>;
template class TViewModel<abst::qce::destructors::DesSetSubcontractCollectModel>;
template class TViewModel<abst::qce::destructors::DesSetSubcontractAssociationBillModel>;
template class TFilterViewModel<
    abst::qce::destructors::DesSetSubcontractAssociationBillFilterModel>;

}  // namespace gui
