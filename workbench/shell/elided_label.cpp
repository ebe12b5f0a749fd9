#include "workbench/shell/elided_label.h"

#include <QPainter>
#include <QStyle>

namespace shell {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
}

QSize ElidedLabel::minimumSizeHint() const {
  return {0, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
  style()->drawItemText(&painter, contentsRect(), Qt::AlignVCenter | Qt::AlignLeft, palette(),
                        isEnabled(), shown, foregroundRole());
}

}  // namespace shell
