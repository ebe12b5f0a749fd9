#pragma once

#include <QString>

class QWidget;

namespace shell {

class FileChooser;

/// Leads from the new-project dialog to a project file: the dialog, where to save (proposed in
/// `directory`), reading and writing under a progress dialog. Answers the path of the project file,
/// empty when there is none.
QString runNewProject(QWidget* window, FileChooser& chooser, const QString& directory);

}  // namespace shell
