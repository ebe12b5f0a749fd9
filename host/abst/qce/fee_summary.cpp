#include "host/abst/qce/fee_summary_navigation_model.h"

namespace abst::qce {

QCEFeeSummaryNavigationModel::~QCEFeeSummaryNavigationModel() = default;

}  // namespace abst::qce
