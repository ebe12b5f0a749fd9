#pragma once

#include <functional>
#include <vector>

#include "workbench/operators/sub_engineering_operator.h"
#include "workbench/records/project.h"

namespace controllers {

/// The way back from changed records to the page of bills: amounts follow from bills, cost items,
/// bookings and subcontracts.
class SubEngineeringController : private records::Observer {
 public:
  /// Both must outlive the controller.
  SubEngineeringController(records::Project& project, operators::SubEngineeringOperator& op);
  ~SubEngineeringController() override;
  SubEngineeringController(const SubEngineeringController&) = delete;
  SubEngineeringController& operator=(const SubEngineeringController&) = delete;

  /// Called at the end of each edit, undo and redo that changed what the page shows, with the bills
  /// that were edited, each once; amounts of any row may be other ones.
  void setChanged(std::function<void(const std::vector<proxy::Element*>& bills)> callback) {
    changed_ = std::move(callback);
  }

 private:
  void itemChanged(records::ResourceItem& item) override;
  void billChanged(records::Bill& bill) override;
  void subcontractChanged(records::Subcontract& entry) override;
  void subcontractInserted() override;
  void subcontractRemoved() override;
  void stepFinished() override;

  void amountsChanged();

  records::Project& project_;
  operators::SubEngineeringOperator& op_;
  std::function<void(const std::vector<proxy::Element*>&)> changed_;
  std::vector<proxy::Element*> bills_;
  bool any_ = false;
};

}  // namespace controllers
