#pragma once

#include <QString>
#include <functional>

#include "host/abst/qce/new_project_controller.h"
#include "workbench/store/project_file.h"

namespace controllers {

/// Money that a source file declares against money read from it, as Chinese text; both empty for a
/// project without a source file.
struct SourceMoney {
  QString summary;  ///< one line
  QString details;  ///< a line for the project and each unit work
};

/// Makes project files from the answers of the new-project dialog.
class NewProjectController : public abst::qce::QCENewProjectController {
 public:
  /// Answers the path of the project file to write, having asked the user whether an existing file
  /// is to be replaced; empty when the user gave up. `proposal` is the project's name.
  using ChooseTarget = std::function<QString(const QString& proposal)>;
  /// Hears that a project file is there.
  using Created = std::function<void(const QString& path)>;

  NewProjectController(ChooseTarget chooseTarget, Created created);

  /// For the progress of reading and writing, 0 to 100; false cancels.
  void setProgress(store::Progress progress) { progress_ = std::move(progress); }

  /// Of the project made last.
  const SourceMoney& sourceMoney() const { return sourceMoney_; }

  std::string checkSource(const std::string& path, const std::string& type) const override;
  bool createProject(const abst::qce::QCENewProjectView& answers) override;

 protected:
  /// The user is about to be asked or told something: what shows the progress is to go. Further
  /// progress may follow.
  virtual void hideProgress() {}

 private:
  bool refuse(const QString& message);

  ChooseTarget chooseTarget_;
  Created created_;
  store::Progress progress_;
  SourceMoney sourceMoney_;
};

}  // namespace controllers
