#pragma once

#include <utility>

#include "workbench/shell/file_chooser.h"

namespace cli {

/// Stands for the file dialogs: answers the path that it was given.
class GivenFile : public shell::FileChooser {
 public:
  explicit GivenFile(QString path) : path_(std::move(path)) {}
  QString projectToOpen(QWidget*, const QString&) override { return path_; }
  QString projectToWrite(QWidget*, const QString&) override { return path_; }
  QString spreadsheetToWrite(QWidget*, const QString&) override { return path_; }
  QString folderToWrite(QWidget*, const QString&) override { return path_; }

 private:
  QString path_;
};

}  // namespace cli
