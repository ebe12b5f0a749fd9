#include "workbench/shell/file_chooser.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QUrl>

namespace shell {

namespace {

const QString& filter() {
  static const QString text = QStringLiteral("成本测算工程(*.qcp)");
  return text;
}

QString fileToWrite(QWidget* parent, const QString& title, const QString& suggestion,
                    const QString& kind) {
  const QFileInfo proposed(suggestion);
  QDir().mkpath(proposed.path());
  QFileDialog dialog(parent, title, proposed.path(), kind);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(proposed.suffix());
  dialog.selectFile(proposed.fileName());
  if (dialog.exec() != QDialog::Accepted) return {};
  return dialog.selectedFiles().value(0);
}

}  // namespace

FileChooser::~FileChooser() = default;

QString FileChooser::projectToOpen(QWidget* parent, const QString& directory) {
  return QFileDialog::getOpenFileName(parent, QStringLiteral("打开工程"), directory, filter());
}

QString FileChooser::projectToWrite(QWidget* parent, const QString& suggestion) {
  return fileToWrite(parent, QStringLiteral("保存工程"), suggestion, filter());
}

QString FileChooser::spreadsheetToWrite(QWidget* parent, const QString& suggestion) {
  return fileToWrite(parent, QStringLiteral("导出Excel"), suggestion,
                     QStringLiteral("Excel 工作簿(*.xlsx)"));
}

QString FileChooser::folderToWrite(QWidget* parent, const QString& suggestion) {
  return QFileDialog::getExistingDirectory(parent, QStringLiteral("选择存放报表的文件夹"),
                                           suggestion);
}

bool FileChooser::showFolder(const QString& path) {
  return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

}  // namespace shell
