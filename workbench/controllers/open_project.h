#pragma once

#include <memory>

#include "host/domain/display_table.h"
#include "workbench/controllers/association_bill_controller.h"
#include "workbench/controllers/notional_pooling_controller.h"
#include "workbench/controllers/res_item_bill_controller.h"
#include "workbench/controllers/res_item_controller.h"
#include "workbench/controllers/sub_engineering_controller.h"
#include "workbench/operators/res_item_bill_operator.h"
#include "workbench/operators/res_item_operator.h"
#include "workbench/operators/sub_engineering_operator.h"
#include "workbench/services/undo_history.h"
#include "workbench/store/project_file.h"

namespace controllers {

/// An open project with everything that its pages are bound to. Whoever opens it installs undo()
/// among the services, and takes pages and models away before it goes.
class OpenProject {
 public:
  /// Null when the file cannot be opened; `failure` then says why.
  static std::unique_ptr<OpenProject> open(const QString& path, store::Failure& failure,
                                           const store::Progress& progress = {});

  const QString& path() const { return file_->path(); }
  /// See store::ProjectFile::copyTo.
  bool saveCopy(const QString& path, store::Failure& failure) const {
    return file_->copyTo(path, failure);
  }
  records::Project& project() { return file_->project(); }
  const records::Facts& facts() { return project().facts; }
  /// Of the whole project, for the status bar.
  const costing::Totals& totals() { return project().totals(); }

  services::UndoHistory& undo() { return *undo_; }  ///< undo().stack() for the menus
  operators::ResItemOperator& resItemOperator() { return *resItemOperator_; }
  domain::DisplayTable& resItemTable() { return *resItemTable_; }
  ResItemController& resItemController() { return *resItemController_; }
  NotionalPoolingController& poolingController() { return *poolingController_; }
  AssociationBillController& associationController() { return *associationController_; }
  operators::SubEngineeringOperator& subEngineeringOperator() { return *subEngineeringOperator_; }
  domain::DisplayTable& subEngineeringTable() { return *subEngineeringTable_; }
  SubEngineeringController& subEngineeringController() { return *subEngineeringController_; }
  operators::ResItemBillOperator& resItemBillOperator() { return *resItemBillOperator_; }
  ResItemBillController& resItemBillController() { return *resItemBillController_; }

 private:
  explicit OpenProject(std::unique_ptr<store::ProjectFile> file);

  std::unique_ptr<store::ProjectFile> file_;
  std::unique_ptr<services::UndoHistory> undo_;
  std::unique_ptr<domain::DisplayTable> resItemTable_;
  std::unique_ptr<operators::ResItemOperator> resItemOperator_;
  std::unique_ptr<ResItemController> resItemController_;
  std::unique_ptr<NotionalPoolingController> poolingController_;
  std::unique_ptr<AssociationBillController> associationController_;
  std::unique_ptr<operators::ResItemBillOperator> resItemBillOperator_;
  std::unique_ptr<ResItemBillController> resItemBillController_;
  std::unique_ptr<domain::DisplayTable> subEngineeringTable_;
  std::unique_ptr<operators::SubEngineeringOperator> subEngineeringOperator_;
  std::unique_ptr<SubEngineeringController> subEngineeringController_;
};

}  // namespace controllers
