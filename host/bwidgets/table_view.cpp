#include "host/bwidgets/table_view.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>

#include "host/bwidgets/grid_header.h"

namespace bwidgets {

TableView::TableView(QWidget* parent) : TreeGridView(parent), numbers_(new QWidget(this)) {
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setIndentation(0);
  numbers_->setObjectName(QStringLiteral("rowNumbers"));
  numbers_->installEventFilter(this);
}

void TableView::setModel(QAbstractItemModel* model) {
  TreeGridView::setModel(model);
  updateGeometries();
}

void TableView::setRowNumbersShown(bool on) {
  shown_ = on;
  updateGeometries();
}

int TableView::rowNumberWidth() const {
  if (!shown_) return 0;
  const int rows = model() != nullptr ? model()->rowCount(rootIndex()) : 0;
  const int digits = std::max(3, static_cast<int>(QString::number(rows).size()));
  return fontMetrics().horizontalAdvance(QLatin1Char('0')) * digits + 14;
}

// The base class leaves room for the header above alone, and does so each time.
void TableView::updateGeometries() {
  if (updating_) return;
  const QScopedValueRollback<bool> updating(updating_, true);
  TreeGridView::updateGeometries();
  const int width = rowNumberWidth();
  numbers_->setVisible(width > 0);
  if (width == 0) return;
  const int top = viewportMargins().top();
  setViewportMargins(width, top, 0, 0);
  const QRect area = viewport()->geometry();
  header()->setGeometry(area.left(), area.top() - top, area.width(), top);
  numbers_->setGeometry(area.left() - width, area.top() - top, width, area.height() + top);
  horizontalScrollBar()->setPageStep(area.width());
  horizontalScrollBar()->setRange(0, std::max(0, header()->length() - area.width()));
  numbers_->update();
}

void TableView::scrollContentsBy(int dx, int dy) {
  TreeGridView::scrollContentsBy(dx, dy);
  if (dy != 0) numbers_->update();
}

void TableView::paintEvent(QPaintEvent* event) {
  TreeGridView::paintEvent(event);
  // Rows that came or went may need more digits or less.
  if (rowNumberWidth() != paintedWidth_) {
    paintedWidth_ = rowNumberWidth();
    QMetaObject::invokeMethod(this, "updateGeometries", Qt::QueuedConnection);
  }
  numbers_->update();
}

void TableView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  TreeGridView::currentChanged(current, previous);
  numbers_->update();
}

void TableView::paintRowNumbers() {
  QPainter painter(numbers_);
  painter.setFont(font());
  const QRect all = numbers_->rect();
  const int top = viewportMargins().top();
  painter.fillRect(all, QColor(0xf3, 0xf5, 0xf8));
  const QColor line(0xc4, 0xcb, 0xd4);
  painter.setPen(line);
  painter.drawLine(all.right(), 0, all.right(), all.bottom());
  painter.drawLine(0, top - 1, all.right(), top - 1);
  if (model() == nullptr) return;
  painter.setClipRect(all.adjusted(0, top, 0, 0));
  for (QModelIndex row = rowAt(0); row.isValid(); row = indexBelow(row)) {
    const QRect cell = visualRect(row);
    if (cell.top() > viewport()->height()) break;
    const QRect place(0, cell.top() + top, all.width() - 1, cell.height());
    if (row.row() == currentIndex().row()) painter.fillRect(place, QColor(0xd9, 0xe6, 0xf7));
    painter.setPen(palette().color(QPalette::ButtonText));
    const QVariant number = model()->headerData(row.row(), Qt::Vertical, Qt::DisplayRole);
    painter.drawText(place.adjusted(4, 0, -5, 0), Qt::AlignRight | Qt::AlignVCenter,
                     number.isValid() ? number.toString() : QString::number(row.row() + 1));
    painter.setPen(line);
    painter.drawLine(0, place.bottom(), place.right(), place.bottom());
  }
}

QModelIndex TableView::rowAt(int y) const {
  const std::vector<int> columns = visibleColumns();
  if (columns.empty()) return {};
  const QModelIndex hit = indexAt(QPoint(0, y));
  return hit.isValid() ? hit.sibling(hit.row(), columns.front()) : QModelIndex();
}

void TableView::selectRow(int y, Qt::KeyboardModifiers modifiers, bool extend) {
  const QModelIndex row = rowAt(y);
  if (!row.isValid() || selectionModel() == nullptr) return;
  if (!extend || !firstNumbered_.isValid()) firstNumbered_ = row;
  const int first = std::min(firstNumbered_.row(), row.row());
  const int last = std::max(firstNumbered_.row(), row.row());
  const QItemSelection rows(model()->index(first, 0, rootIndex()),
                            model()->index(last, header()->count() - 1, rootIndex()));
  selectionModel()->setCurrentIndex(row, QItemSelectionModel::NoUpdate);
  selectionModel()->select(rows, modifiers & Qt::ControlModifier
                                     ? QItemSelectionModel::Select
                                     : QItemSelectionModel::ClearAndSelect);
}

bool TableView::eventFilter(QObject* watched, QEvent* event) {
  if (watched != numbers_) return TreeGridView::eventFilter(watched, event);
  if (event->type() == QEvent::Paint) {
    paintRowNumbers();
    return true;
  }
  if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseMove) {
    const auto* mouse = static_cast<QMouseEvent*>(event);
    if (!(mouse->buttons() & Qt::LeftButton)) return false;
    const int y = mouse->pos().y() - viewportMargins().top();
    const bool press = event->type() == QEvent::MouseButtonPress;
    if (press) setFocus(Qt::MouseFocusReason);
    if (press && y < 0) {
      selectAll();
    } else {
      selectRow(y, mouse->modifiers(), !press || (mouse->modifiers() & Qt::ShiftModifier));
    }
    return true;
  }
  if (event->type() == QEvent::MouseButtonRelease) return true;
  if (event->type() == QEvent::Wheel) return viewportEvent(event);
  return false;
}

}  // namespace bwidgets
