#include "host/abst/qce/notional_pooling_controller.h"
#include "host/abst/qce/notional_pooling_filter_model.h"
#include "host/abst/qce/notional_pooling_model.h"
#include "host/abst/qce/notional_pooling_view.h"

namespace abst::qce {

QCENotionalPoolingModel::~QCENotionalPoolingModel() = default;
QCENotionalPoolingFilterModel::~QCENotionalPoolingFilterModel() = default;
QCENotionalPoolingView::~QCENotionalPoolingView() = default;
QCENotionalPoolingController::~QCENotionalPoolingController() = default;

}  // namespace abst::qce
