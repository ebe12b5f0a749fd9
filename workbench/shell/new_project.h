#pragma once

#include <QString>

#include "workbench/controllers/new_project_controller.h"

class QWidget;

namespace shell {

class FileChooser;

struct NewProjectResult {
  QString path;  ///< of the project file; empty when there is none
  controllers::SourceMoney money;
};

/// Leads from the new-project dialog to a project file: the dialog, where to save (proposed in
/// `directory`), reading and writing under a progress dialog.
NewProjectResult runNewProject(QWidget* window, FileChooser& chooser, const QString& directory);

}  // namespace shell
