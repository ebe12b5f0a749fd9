#include "workbench/controllers/open_project.h"

#include <utility>

namespace controllers {

std::unique_ptr<OpenProject> OpenProject::open(const QString& path, store::Failure& failure,
                                               const store::Progress& progress) {
  std::unique_ptr<store::ProjectFile> file = store::ProjectFile::open(path, failure, progress);
  if (!file) return nullptr;
  return std::unique_ptr<OpenProject>(new OpenProject(std::move(file)));
}

OpenProject::OpenProject(std::unique_ptr<store::ProjectFile> file)
    : file_(std::move(file)),
      undo_(std::make_unique<services::UndoHistory>(
          file_->project(), [this](const records::ChangeSet& changes,
                                   QString& message) { return file_->commit(changes, message); })),
      resItemTable_(operators::makeResItemTable()),
      resItemOperator_(std::make_unique<operators::ResItemOperator>(file_->project())),
      resItemController_(std::make_unique<ResItemController>(file_->project())),
      poolingController_(std::make_unique<NotionalPoolingController>(file_->project())),
      associationController_(std::make_unique<AssociationBillController>(
          file_->project(),
          [this](proxy::Element* item, const std::vector<proxy::Element*>& bills) {
            poolingController_->openPooling(item, bills, true);
          })),
      resItemBillOperator_(std::make_unique<operators::ResItemBillOperator>(file_->project())),
      resItemBillController_(std::make_unique<ResItemBillController>(
          file_->project(), *resItemBillOperator_, poolingController_.get())),
      subEngineeringTable_(operators::makeSubEngineeringTable()),
      subEngineeringOperator_(
          std::make_unique<operators::SubEngineeringOperator>(file_->project())),
      subEngineeringController_(
          std::make_unique<SubEngineeringController>(file_->project(), *subEngineeringOperator_)) {
  resItemController_->setPooling(poolingController_.get());
  resItemController_->setAssociation(associationController_.get());
}

}  // namespace controllers
