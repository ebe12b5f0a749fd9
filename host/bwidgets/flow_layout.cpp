#include "host/bwidgets/flow_layout.h"

#include <algorithm>

namespace bwidgets {

FlowLayout::FlowLayout(QWidget* parent) : QLayout(parent) {
  setContentsMargins(0, 0, 0, 0);
  setSpacing(4);
}

FlowLayout::~FlowLayout() {
  qDeleteAll(items_);
}

void FlowLayout::addItem(QLayoutItem* item) {
  items_.append(item);
}

QLayoutItem* FlowLayout::itemAt(int index) const {
  return items_.value(index);
}

QLayoutItem* FlowLayout::takeAt(int index) {
  return index >= 0 && index < items_.size() ? items_.takeAt(index) : nullptr;
}

int FlowLayout::heightForWidth(int width) const {
  return layOut(QRect(0, 0, width, 0), false);
}

QSize FlowLayout::sizeHint() const {
  QSize size(0, 0);
  for (const QLayoutItem* item : items_) {
    if (item->isEmpty()) continue;
    const QSize hint = item->sizeHint();
    const int gap = size.isEmpty() ? 0 : spacing();
    size = QSize(size.width() + gap + hint.width(), std::max(size.height(), hint.height()));
  }
  const QMargins margins = contentsMargins();
  return size + QSize(margins.left() + margins.right(), margins.top() + margins.bottom());
}

QSize FlowLayout::minimumSize() const {
  QSize size(0, 0);
  for (const QLayoutItem* item : items_) {
    if (!item->isEmpty()) size = size.expandedTo(item->sizeHint());
  }
  const QMargins margins = contentsMargins();
  return size + QSize(margins.left() + margins.right(), margins.top() + margins.bottom());
}

void FlowLayout::setGeometry(const QRect& area) {
  QLayout::setGeometry(area);
  layOut(area, true);
}

int FlowLayout::layOut(const QRect& area, bool place) const {
  const QRect room = area.marginsRemoved(contentsMargins());
  QPoint at = room.topLeft();
  int height = 0;  // of the row
  QList<QLayoutItem*> row;
  const auto finishRow = [&] {
    for (QLayoutItem* item : place ? row : QList<QLayoutItem*>()) {
      QRect where = item->geometry();
      where.moveTop(at.y() + (height - where.height()) / 2);
      item->setGeometry(where);
    }
    row.clear();
  };
  for (QLayoutItem* item : items_) {
    if (item->isEmpty()) continue;
    const QSize size = item->sizeHint();
    if (!row.isEmpty() && at.x() + size.width() > room.right() + 1) {
      finishRow();
      at = QPoint(room.left(), at.y() + height + spacing());
      height = 0;
    }
    if (place) item->setGeometry(QRect(at, size));
    row.append(item);
    height = std::max(height, size.height());
    at.rx() += size.width() + spacing();
  }
  finishRow();
  return at.y() + height - room.top() + contentsMargins().top() + contentsMargins().bottom();
}

}  // namespace bwidgets
