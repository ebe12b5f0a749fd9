#include "host/abst/qce/destructors/des_set_subcontract_association_bill_filter_model.h"
#include "host/abst/qce/destructors/des_set_subcontract_collect_model.h"
#include "host/abst/qce/destructors/des_set_subcontract_model.h"
#include "host/abst/qce/destructors/des_set_subcontract_view.h"

namespace abst::qce::destructors {

DesSetSubcontractModel::~DesSetSubcontractModel() = default;
DesSetSubcontractCollectModel::~DesSetSubcontractCollectModel() = default;
DesSetSubcontractAssociationBillModel::~DesSetSubcontractAssociationBillModel() = default;
DesSetSubcontractAssociationBillFilterModel::~DesSetSubcontractAssociationBillFilterModel() =
    default;
DesSetSubcontractView::~DesSetSubcontractView() = default;

}  // namespace abst::qce::destructors
