#include "host/abst/qce/new_project_controller.h"
#include "host/abst/qce/res_item_controller.h"

namespace abst::qce {

QCENewProjectView::~QCENewProjectView() = default;

std::string QCENewProjectView::getCostPlanName() const {
  return {};
}

std::string QCENewProjectView::getProjectTemplate() const {
  return {};
}

QCENewProjectController::~QCENewProjectController() = default;
QCEResItemController::~QCEResItemController() = default;

std::vector<std::string> QCEResItemController::getItemTypes() const {
  return {};
}

proxy::Element* QCEResItemController::insertItem(proxy::Element* /*at*/,
                                                 const std::string& /*type*/) {
  return nullptr;
}

bool QCEResItemController::canDeleteItems(const std::vector<proxy::Element*>& /*items*/) const {
  return false;
}

void QCEResItemController::deleteItems(const std::vector<proxy::Element*>& /*items*/) {}

bool QCEResItemController::canCollectToCost(proxy::Element* /*item*/) const {
  return false;
}

void QCEResItemController::collectToCost(proxy::Element* /*item*/) {}

bool QCEResItemController::canAssociateBills(const std::vector<proxy::Element*>& /*items*/) const {
  return false;
}

void QCEResItemController::associateBills(const std::vector<proxy::Element*>& /*items*/) {}

}  // namespace abst::qce
