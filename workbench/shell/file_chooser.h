#pragma once

#include <QString>

class QWidget;

namespace shell {

/// Asks the user for files, and shows where they are. Replaceable where no person answers.
class FileChooser {
 public:
  virtual ~FileChooser();
  /// An existing project file; empty when cancelled.
  virtual QString projectToOpen(QWidget* parent, const QString& directory);
  /// Where a project is to be written; empty when cancelled. Overwriting has been confirmed.
  virtual QString projectToWrite(QWidget* parent, const QString& suggestion);
  /// Where a spreadsheet is to be written; empty when cancelled. Overwriting has been confirmed.
  virtual QString spreadsheetToWrite(QWidget* parent, const QString& suggestion);
  /// A folder to write files into; empty when cancelled.
  virtual QString folderToWrite(QWidget* parent, const QString& suggestion);
  /// Shows a folder in the system's file manager; false where that cannot be.
  virtual bool showFolder(const QString& path);
};

}  // namespace shell
