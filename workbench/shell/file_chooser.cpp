#include "workbench/shell/file_chooser.h"

#include <QDir>
#include <QFileDialog>

namespace shell {

namespace {

const QString& filter() {
  static const QString text = QStringLiteral("成本测算工程(*.qcp)");
  return text;
}

}  // namespace

FileChooser::~FileChooser() = default;

QString FileChooser::projectToOpen(QWidget* parent, const QString& directory) {
  return QFileDialog::getOpenFileName(parent, QStringLiteral("打开工程"), directory, filter());
}

QString FileChooser::projectToWrite(QWidget* parent, const QString& suggestion) {
  QDir().mkpath(QFileInfo(suggestion).path());
  QFileDialog dialog(parent, QStringLiteral("保存工程"), QFileInfo(suggestion).path(), filter());
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(QStringLiteral("qcp"));
  dialog.selectFile(QFileInfo(suggestion).fileName());
  if (dialog.exec() != QDialog::Accepted) return {};
  return dialog.selectedFiles().value(0);
}

}  // namespace shell
