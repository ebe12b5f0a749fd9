#include "host/bwidgets/grid_header.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <list>
#include <memory>

#include "host/abst/base_model.h"
#include "host/domain/display_table.h"
#include "host/gui/view_model.h"

namespace bwidgets {
namespace {

const QColor lineColor(0xc4, 0xcb, 0xd4);
const QColor topColor(0xf3, 0xf5, 0xf8);
const QColor captionColor(0xe6, 0xeb, 0xf2);
const QColor borderColor(0x8d, 0x9a, 0xab);

// Whether `column`, the answer of `source` for `key`, is that column. A model that filters columns
// may answer a neighbour for one that it does not show.
bool isColumnOf(const QAbstractItemModel& model, const gui::ViewModel& source,
                const std::string& key, int column) {
  if (column < 0 || column >= model.columnCount()) return false;
  if (model.index(0, column).isValid()) return source.getColumnName(column) == key;
  // Without rows it does not know its columns by name; a column that it leaves out has the same
  // answer as the one before.
  const auto* abstract = dynamic_cast<const abst::BaseModel*>(&model);
  const domain::DisplayTable* table = abstract != nullptr ? abstract->getDisplayTable() : nullptr;
  if (table == nullptr) return true;
  const domain::DisplayRow* header = table->getHeader();
  const domain::ColumnDescriptor* before = header->column(header->columnIndex(key) - 1);
  return before == nullptr || source.getColumnIndex(before->key) < column;
}

}  // namespace

GridHeader::GridHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setDefaultAlignment(Qt::AlignCenter);
  setStretchLastSection(false);
  setSectionsMovable(false);
  setHighlightSections(false);
  setMinimumSectionSize(24);
  setMouseTracking(true);
  viewport()->setMouseTracking(true);
}

void GridHeader::setFrozenCount(int count) {
  frozenCount_ = std::max(count, 0);
  viewport()->update();
}

std::vector<HeaderColumn> GridHeader::columns() const {
  std::vector<HeaderColumn> all(static_cast<std::size_t>(count()));
  for (int visual = 0; visual < count(); ++visual) {
    const int logical = logicalIndex(visual);
    all[static_cast<std::size_t>(visual)] = {isSectionHidden(logical) ? 0 : sectionSize(logical),
                                             groupOf(logical)};
  }
  return all;
}

int GridHeader::effectiveFrozenCount() const {
  if (frozenCount_ == 0) return 0;
  return frozenColumnsThatFit(columns(), frozenCount_, viewport()->width());
}

int GridHeader::frozenWidth() const {
  int width = 0;
  for (int visual = effectiveFrozenCount() - 1; visual >= 0; --visual) {
    width += sectionSize(logicalIndex(visual));  // 0 for a hidden one
  }
  return width;
}

bool GridHeader::isFrozen(int logicalIndex) const {
  const int visual = visualIndex(logicalIndex);
  return visual >= 0 && visual < effectiveFrozenCount();
}

int GridHeader::shownColumnAt(int x) const {
  const bool frozen = x >= 0 && x < frozenWidth();
  return logicalIndexAt(frozen ? x - offset() : x);
}

int GridHeader::shownPosition(int logicalIndex) const {
  const int position = sectionViewportPosition(logicalIndex);
  return isFrozen(logicalIndex) ? position + offset() : position;
}

int GridHeader::groupOf(int logicalIndex) const {
  const auto at = static_cast<std::size_t>(logicalIndex);
  return logicalIndex >= 0 && at < groups_.size() ? groups_[at] : -1;
}

void GridHeader::readGroups() {
  captions_.clear();
  groups_.assign(static_cast<std::size_t>(count()), -1);
  if (const auto* source = dynamic_cast<const gui::ViewModel*>(model())) {
    std::list<std::shared_ptr<gui::StGridHeadData>> found;
    source->getMultiHeaderData(found);
    for (const auto& group : found) {
      for (const std::string& key : group->columnKeys) {
        const int column = source->getColumnIndex(key);
        if (column >= count() || !isColumnOf(*model(), *source, key, column)) continue;
        groups_[static_cast<std::size_t>(column)] = captions_.size();
      }
      captions_ << QString::fromStdString(group->caption);
    }
  }
  emit geometriesChanged();
  viewport()->update();
}

std::vector<HeaderSpan> GridHeader::spans() const {
  return headerSpans(columns(), effectiveFrozenCount());
}

void GridHeader::setRoomAbove(int pixels) {
  if (pixels == roomAbove_) return;
  roomAbove_ = pixels;
  setViewportMargins(0, pixels, 0, 0);
  emit geometriesChanged();
}

QSize GridHeader::sizeHint() const {
  QSize size = QHeaderView::sizeHint();
  const int row = fontMetrics().height() + 8;
  size.setHeight(roomAbove_ + (hasGroups() ? 2 * row : std::max(size.height(), row + 2)));
  return size;
}

int GridHeader::captionHeight() const {
  return hasGroups() ? viewport()->height() / 2 : 0;
}

void GridHeader::paintEvent(QPaintEvent* event) {
  if (count() == 0) {
    QHeaderView::paintEvent(event);
    return;
  }
  const int height = viewport()->height();
  QPainter painter(viewport());
  painter.fillRect(viewport()->rect(), topColor);
  painter.setPen(lineColor);
  painter.drawLine(0, height - 1, viewport()->width(), height - 1);
  const int border = frozenWidth();
  for (const bool frozen : {false, true}) {
    if (frozen && border == 0) break;
    const QRect part(frozen ? 0 : border, 0, frozen ? border : viewport()->width() - border,
                     height);
    painter.save();
    painter.setClipRect(part);
    for (int visual = 0; visual < count(); ++visual) {
      const int logical = logicalIndex(visual);
      if (isSectionHidden(logical) || isFrozen(logical) != frozen) continue;
      const QRect rect(shownPosition(logical), 0, sectionSize(logical), height);
      if (!rect.intersects(part)) continue;
      painter.save();
      paintSection(&painter, rect, logical);
      painter.restore();
    }
    paintCaptions(painter, frozen);
    painter.restore();
  }
  if (border > 0) {
    painter.setPen(borderColor);
    painter.drawLine(border - 1, 0, border - 1, height);
  }
}

void GridHeader::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const {
  QRect cell = rect;
  if (groupOf(logicalIndex) >= 0) cell.setTop(captionHeight());
  QStyleOptionHeader option;
  initStyleOption(&option);
  painter->fillRect(cell, topColor);

  const bool sorted = isSortIndicatorShown() && sortIndicatorSection() == logicalIndex;
  QRect textRect = cell.adjusted(4, 0, -4, 0);
  if (sorted) {
    const int mark = 7;
    textRect.setRight(textRect.right() - mark - 3);
    const qreal x = cell.right() - mark - 3;
    const qreal y = cell.center().y() + 0.5;
    const qreal up = sortIndicatorOrder() == Qt::AscendingOrder ? -1 : 1;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(QColor(0x2f, 0x6f, 0xc9));
    const QPointF triangle[] = {
        {x, y - 2.5 * up}, {x + mark, y - 2.5 * up}, {x + mark / 2.0, y + 2.5 * up}};
    painter->drawPolygon(triangle, 3);
    painter->restore();
  }
  const QString title =
      model()->headerData(logicalIndex, Qt::Horizontal, Qt::DisplayRole).toString();
  painter->setFont(font());
  painter->setPen(
      palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText));
  painter->drawText(textRect, Qt::AlignCenter | Qt::TextSingleLine,
                    fontMetrics().elidedText(title, Qt::ElideRight, textRect.width()));
  painter->setPen(lineColor);
  painter->drawLine(cell.right(), cell.top(), cell.right(), cell.bottom());
  painter->drawLine(cell.left(), cell.bottom(), cell.right(), cell.bottom());
}

void GridHeader::paintCaptions(QPainter& painter, bool frozen) const {
  if (!hasGroups()) return;
  const int border = frozenWidth();
  const QRect visible(frozen ? 0 : border, 0, frozen ? border : viewport()->width() - border,
                      captionHeight());
  for (const HeaderSpan& span : spans()) {
    if ((span.last < effectiveFrozenCount()) != frozen) continue;
    const QRect rect(span.left - (frozen ? 0 : offset()), 0, span.width, captionHeight());
    if (!rect.intersects(visible)) continue;
    painter.fillRect(rect, captionColor);
    painter.setPen(lineColor);
    painter.drawLine(rect.right(), 0, rect.right(), rect.bottom());
    painter.drawLine(rect.left(), rect.bottom(), rect.right(), rect.bottom());
    // A caption stays readable while its columns scroll past the border.
    const QString caption = captions_.at(span.group);
    QRect textRect = rect.intersected(visible).adjusted(4, 0, -4, 0);
    if (textRect.width() < fontMetrics().horizontalAdvance(caption)) {
      textRect = rect.adjusted(4, 0, -4, 0);
    }
    painter.setPen(palette().color(QPalette::ButtonText));
    painter.drawText(textRect, Qt::AlignCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(caption, Qt::ElideRight, textRect.width()));
  }
}

bool GridHeader::isOverFrozen(int x) const {
  if (offset() == 0 || x < 0) return false;
  const int border = frozenWidth();
  // The grip of the last frozen column reaches beyond the border.
  return border > 0 &&
         x < border + style()->pixelMetric(QStyle::PM_HeaderGripMargin, nullptr, this);
}

bool GridHeader::isOnCaption(const QPoint& at) const {
  if (at.y() >= captionHeight()) return false;
  const int column = shownColumnAt(at.x());
  if (column < 0 || groupOf(column) < 0) return false;
  const int grip = style()->pixelMetric(QStyle::PM_HeaderGripMargin, nullptr, this);
  const int inside = at.x() - shownPosition(column);
  return inside > grip && inside < sectionSize(column) - grip;
}

// The frozen column whose right border is at `x`, while the others are scrolled; -1 for none.
int GridHeader::frozenHandleAt(int x) const {
  if (!isOverFrozen(x)) return -1;
  const int grip = style()->pixelMetric(QStyle::PM_HeaderGripMargin, nullptr, this);
  for (int visual = effectiveFrozenCount() - 1; visual >= 0; --visual) {
    const int column = logicalIndex(visual);
    if (isSectionHidden(column) || sectionResizeMode(column) != Interactive) continue;
    if (std::abs(x - (shownPosition(column) + sectionSize(column))) <= grip) return column;
  }
  return -1;
}

// The base class knows scrolled columns alone: over the frozen ones it gets a click as if the
// header stood at its start. It refuses to drag there, so their borders are dragged here.
template <class Handler>
void GridHeader::handleMouse(QMouseEvent* event, Handler handler) {
  const bool ends = event->type() == QEvent::MouseButtonRelease;
  const bool shift = ends ? pressedFrozen_ : isOverFrozen(event->pos().x());
  if (event->type() == QEvent::MouseButtonPress) pressedFrozen_ = shift;
  if (!shift) {
    handler(event);
    return;
  }
  QMouseEvent shifted(event->type(), event->localPos() - QPointF(offset(), 0), event->windowPos(),
                      event->screenPos(), event->button(), event->buttons(), event->modifiers(),
                      event->source());
  handler(&shifted);
  event->setAccepted(shifted.isAccepted());
}

void GridHeader::mousePressEvent(QMouseEvent* event) {
  const int handle = frozenHandleAt(event->pos().x());
  if (handle >= 0 && event->button() == Qt::LeftButton) {
    resized_ = handle;
    resizeStart_ = event->pos().x();
    resizeSize_ = sectionSize(handle);
    return;
  }
  if (isOnCaption(event->pos())) return;  // a caption is no column that could be sorted by
  handleMouse(event, [this](QMouseEvent* e) { QHeaderView::mousePressEvent(e); });
}

void GridHeader::mouseMoveEvent(QMouseEvent* event) {
  if (resized_ >= 0) {
    const int size = resizeSize_ + event->pos().x() - resizeStart_;
    resizeSection(resized_, std::clamp(size, minimumSectionSize(), maximumSectionSize()));
    return;
  }
  if (event->buttons() == Qt::NoButton && isOverFrozen(event->pos().x())) {
    if (frozenHandleAt(event->pos().x()) >= 0) {
      setCursor(Qt::SplitHCursor);
    } else {
      unsetCursor();
    }
    return;
  }
  QHeaderView::mouseMoveEvent(event);
}

void GridHeader::mouseReleaseEvent(QMouseEvent* event) {
  if (resized_ >= 0) {
    resized_ = -1;
    return;
  }
  handleMouse(event, [this](QMouseEvent* e) { QHeaderView::mouseReleaseEvent(e); });
}

void GridHeader::mouseDoubleClickEvent(QMouseEvent* event) {
  const int handle = frozenHandleAt(event->pos().x());
  if (handle >= 0) {
    emit sectionHandleDoubleClicked(handle);
    return;
  }
  if (isOnCaption(event->pos())) return;
  handleMouse(event, [this](QMouseEvent* e) { QHeaderView::mouseDoubleClickEvent(e); });
}

bool GridHeader::viewportEvent(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QHeaderView::viewportEvent(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  const int column = shownColumnAt(help->pos().x());
  if (column < 0) return true;
  const int group = help->pos().y() < captionHeight() ? groupOf(column) : -1;
  QString text = group >= 0
                     ? captions_.at(group)
                     : model()->headerData(column, Qt::Horizontal, Qt::ToolTipRole).toString();
  if (text.isEmpty()) {
    const QString title = model()->headerData(column, Qt::Horizontal).toString();
    if (fontMetrics().horizontalAdvance(title) > sectionSize(column) - 8) text = title;
  }
  QToolTip::showText(help->globalPos(), text, this);
  return true;
}

}  // namespace bwidgets
