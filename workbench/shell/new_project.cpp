#include "workbench/shell/new_project.h"

#include <memory>

#include "project/dialog.h"
#include "workbench/records/project_templates.h"
#include "workbench/shell/file_chooser.h"
#include "workbench/shell/progress.h"

namespace shell {

namespace {

/// The host's controller with a progress dialog while it reads and while it writes.
class Controller : public controllers::NewProjectController {
 public:
  Controller(QWidget* dialog, FileChooser& chooser, const QString& directory, QString& made)
      : NewProjectController(
            [dialog, &chooser, directory](const QString& name) {
              return chooser.projectToWrite(dialog,
                                            QStringLiteral("%1/%2.qcp").arg(directory, name));
            },
            [&made](const QString& path) { made = path; }) {
    setProgress([this, dialog](int percent) {
      if (!progress_)
        progress_ = std::make_unique<Progress>(dialog, QStringLiteral("正在新建工程…"));
      return progress_->step(percent, 100);
    });
  }

  bool createProject(const abst::qce::QCENewProjectView& answers) override {
    const bool created = NewProjectController::createProject(answers);
    hideProgress();  // after a refusal the new-project dialog stays
    return created;
  }

 protected:
  void hideProgress() override { progress_.reset(); }

 private:
  std::unique_ptr<Progress> progress_;
};

}  // namespace

NewProjectResult runNewProject(QWidget* window, FileChooser& chooser, const QString& directory) {
  gui::qce::QCENewProjectViewImpl dialog(window);
  QString made;
  Controller controller(&dialog, chooser, directory, made);
  dialog.setController(&controller);
  dialog.setProjectTemplates(records::projectTemplates());
  if (dialog.exec() != 1) return {};
  return {made, controller.sourceMoney()};
}

}  // namespace shell
