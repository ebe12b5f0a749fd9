#pragma once

#include "host/bwidgets/dialog.h"
#include "qce_export.h"

class QLineEdit;

namespace gui {

/// Asks for one number. exec() answers 1 when the user confirmed a number within the bounds; what
/// is none, or lies outside, is refused with a message and the dialog stays open.
class QCE_EXPORT CInputDialog : public bwidgets::Dialog {
  Q_OBJECT

 public:
  struct Bounds {
    double minimum = 0.0;
    double maximum = 999999999.99;
    int decimals = 2;  ///< digits after the point that are accepted
  };

  /// `title` and `label` are shown; `value` is what the box starts with, all of it selected.
  CInputDialog(const QString& title, const QString& label, double value, const Bounds& bounds,
               QWidget* parent = nullptr);
  ~CInputDialog() override;

  /// The number in the box; 0 when it is none.
  double getValue() const;

  void accept() override;

 private:
  Bounds bounds_;
  QLineEdit* edit_ = nullptr;
};

}  // namespace gui
