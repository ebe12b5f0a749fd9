#pragma once

#include <QString>

#include "host/bwidgets/dialog.h"

class QLineEdit;
class QRadioButton;

namespace gui::qce {

/// Asks for the factor of a batch. A factor of zero is refused and the dialog stays open.
class CoefficientDialog : public bwidgets::Dialog {
  Q_OBJECT

 public:
  explicit CoefficientDialog(QWidget* parent = nullptr);

  /// What the dialog starts with, all of the number selected.
  void start(double coefficient, bool multiplies);

  double coefficient() const;
  /// True: multiply. False: divide.
  bool multiplies() const;

  void accept() override;

 private:
  QRadioButton* multiply_;
  QRadioButton* divide_;
  QLineEdit* edit_;
};

/// Asks for one line: a number or an expression.
class TermDialog : public bwidgets::Dialog {
  Q_OBJECT

 public:
  /// `text` is what the line starts with, all of it selected; `hint` stands in the empty line.
  TermDialog(const QString& title, const QString& label, const QString& text, const QString& hint,
             QWidget* parent = nullptr);

  QString text() const;

 private:
  QLineEdit* edit_;
};

}  // namespace gui::qce
