#pragma once

#include <QLabel>

namespace shell {

/// A line of plain text that gives way: where there is no room for all of it, it ends in "…" and is
/// read whole in a tool tip.
class ElidedLabel : public QLabel {
  Q_OBJECT

 public:
  explicit ElidedLabel(QWidget* parent = nullptr);
  QSize minimumSizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace shell
