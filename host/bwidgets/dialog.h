#pragma once

#include <QDialog>
#include <QDialogButtonBox>

#include "host_widgets_export.h"

namespace bwidgets {

/// Base of the dialogs: no context-help button, Chinese button texts.
class QCE_HOST_WIDGETS_EXPORT Dialog : public QDialog {
  Q_OBJECT

 public:
  explicit Dialog(QWidget* parent = nullptr);
  ~Dialog() override;

  /// Takes these parts (0 to 1) of the screen without the taskbar.
  void resizeToScreen(double width, double height);

  /// Takes this size, but not more than the screen has or the window that the dialog stands over.
  void resizeOverWindow(const QSize& wanted);

  /// A button box of this dialog with Chinese texts, wired to accept() and reject(). The caller
  /// puts it into a layout.
  QDialogButtonBox* createButtonBox(QDialogButtonBox::StandardButtons buttons);
};

}  // namespace bwidgets
