#include "workbench/controllers/sub_engineering_controller.h"

#include <algorithm>
#include <utility>

namespace controllers {

SubEngineeringController::SubEngineeringController(records::Project& project,
                                                   operators::SubEngineeringOperator& op)
    : project_(project), op_(op) {
  project_.addObserver(this);
}

SubEngineeringController::~SubEngineeringController() {
  project_.removeObserver(this);
}

void SubEngineeringController::amountsChanged() {
  any_ = true;
  op_.forgetAmounts();  // a cell may be read before the step is over
}

void SubEngineeringController::itemChanged(records::ResourceItem& /*item*/) {
  amountsChanged();
}

void SubEngineeringController::billChanged(records::Bill& bill) {
  amountsChanged();
  bills_.push_back(&bill);
}

void SubEngineeringController::subcontractChanged(records::Subcontract& /*entry*/) {
  amountsChanged();
}

void SubEngineeringController::subcontractInserted() {
  amountsChanged();
}

void SubEngineeringController::subcontractRemoved() {
  amountsChanged();
}

void SubEngineeringController::stepFinished() {
  if (!std::exchange(any_, false)) return;
  // Handlers may edit in their turn, so that the list is taken first.
  std::vector<proxy::Element*> bills = std::exchange(bills_, {});
  std::sort(bills.begin(), bills.end());
  bills.erase(std::unique(bills.begin(), bills.end()), bills.end());
  if (changed_) changed_(bills);
}

}  // namespace controllers
