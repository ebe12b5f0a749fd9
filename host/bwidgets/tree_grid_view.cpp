#include "host/bwidgets/tree_grid_view.h"

#include <QAbstractProxyModel>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QMetaMethod>
#include <QPaintEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "host/bwidgets/grid_clipboard.h"
#include "host/bwidgets/grid_header.h"
#include "host/bwidgets/grid_rows.h"
#include "host/bwidgets/grid_state.h"
#include "host/bwidgets/search_box.h"
#include "host/gui/styled_item_delegate.h"
#include "host/gui/view_model.h"
#include "host/proxy/element.h"

namespace bwidgets {
namespace {

constexpr int Indentation = 18;
const QColor lineColor(0xd5, 0xda, 0xe1);
const QColor borderColor(0x8d, 0x9a, 0xab);
const QColor currentRowTint(0x2f, 0x6f, 0xc9, 26);
const QColor currentFrame(0x2f, 0x6f, 0xc9);
const QColor idleFrame(0x8d, 0x9a, 0xab);

bool takesInput(const QModelIndex& cell) {
  const Qt::ItemFlags flags = cell.flags();
  return (flags & Qt::ItemIsEnabled) && (flags & (Qt::ItemIsEditable | Qt::ItemIsUserCheckable));
}

// Where typing goes on in the column of `from`: the nearest shown cell below or above that takes
// input. Grouping rows and what cannot be edited are passed over. Invalid when there is none.
QModelIndex nextInputInColumn(const QTreeView& view, const QModelIndex& from, int direction) {
  QModelIndex at = from;
  do {
    at = direction > 0 ? view.indexBelow(at) : view.indexAbove(at);
    if (at.isValid()) at = at.sibling(at.row(), from.column());
  } while (at.isValid() && !takesInput(at));
  return at;
}

// The same from cell to cell along the shown columns, and on through the rows.
QModelIndex nextInputInReading(const TreeGridView& view, const QModelIndex& from, int direction) {
  const std::vector<int> columns = view.visibleColumns();
  const auto count = static_cast<std::ptrdiff_t>(columns.size());
  std::ptrdiff_t at = std::find(columns.begin(), columns.end(), from.column()) - columns.begin();
  for (QModelIndex row = from; row.isValid();
       row = direction > 0 ? view.indexBelow(row) : view.indexAbove(row)) {
    for (at += direction; at >= 0 && at < count; at += direction) {
      const QModelIndex cell = row.sibling(row.row(), columns[static_cast<std::size_t>(at)]);
      if (takesInput(cell)) return cell;
    }
    at = direction > 0 ? -1 : count;
  }
  return {};
}

void makeCurrent(const QAbstractItemView& view, const QModelIndex& cell) {
  if (cell.isValid() && view.selectionModel() != nullptr) {
    view.selectionModel()->setCurrentIndex(cell, QItemSelectionModel::ClearAndSelect);
  }
}

}  // namespace

TreeGridView::TreeGridView(QWidget* parent)
    : QTreeView(parent), header_(new GridHeader(this)), state_(std::make_unique<GridState>(*this)) {
  setHeader(header_);
  setUniformRowHeights(true);
  setAlternatingRowColors(true);
  setAnimated(false);
  setIndentation(Indentation);
  setExpandsOnDoubleClick(false);  // decided in mouseDoubleClickEvent
  setSelectionMode(ExtendedSelection);
  setSelectionBehavior(SelectItems);
  setHorizontalScrollMode(ScrollPerPixel);
  setVerticalScrollMode(ScrollPerPixel);
  setEditTriggers(AnyKeyPressed | EditKeyPressed | DoubleClicked);
  setTabKeyNavigation(true);
  setTextElideMode(Qt::ElideRight);
  setItemDelegate(new gui::StyledItemDelegate(this));

  QPalette colors = palette();
  colors.setColor(QPalette::AlternateBase, QColor(0xf7, 0xf9, 0xfc));
  colors.setColor(QPalette::Highlight, QColor(0xcc, 0xe0, 0xfa));
  colors.setColor(QPalette::HighlightedText, QColor(0x10, 0x23, 0x3f));
  setPalette(colors);

  connect(header_, &QHeaderView::sectionResized, this, &TreeGridView::storeWidth);
  connect(header_, &QHeaderView::sectionMoved, viewport(), qOverload<>(&QWidget::update));
}

TreeGridView::~TreeGridView() {
  delete searchBox_;  // while it can still ask the grid
}

// ---------------------------------------------------------------------------------------------
// Model

void TreeGridView::setModel(QAbstractItemModel* model) {
  if (model == this->model()) return;
  for (const QMetaObject::Connection& connection : modelConnections_) disconnect(connection);
  modelConnections_.clear();
  state_->forget();
  anchor_ = QPersistentModelIndex();
  QItemSelectionModel* before = selectionModel();
  viewModel_ = dynamic_cast<gui::ViewModel*>(model);
  sampledRows_ = false;

  QTreeView::setModel(model);

  if (before != nullptr && before != selectionModel() && before->parent() == this) {
    before->deleteLater();
  }
  header_->readGroups();
  sizedColumns_ = header_->count();
  if (searchBox_ != nullptr) searchBox_->watchModel();
  emit currentElementChanged(currentElement());
}

// The state is restored after everyone else, the selection model above all, has heard of a change;
// so its connections come last.
void TreeGridView::setSelectionModel(QItemSelectionModel* selectionModel) {
  QTreeView::setSelectionModel(selectionModel);
  for (const QMetaObject::Connection& connection : modelConnections_) disconnect(connection);
  modelConnections_.clear();
  if (model() == nullptr) return;
  QAbstractItemModel* watched = model();
  GridState* state = state_.get();
  const auto keepRows = [state](const QModelIndex& parent, int first, int last) {
    state->rowsAboutToBeRemoved(parent, first, last);
  };
  const auto restoreRows = [state](const QModelIndex& parent, int first, int last) {
    state->rowsInserted(parent, first, last);
  };
  modelConnections_ = {
      connect(watched, &QAbstractItemModel::modelAboutToBeReset, this, [state] { state->save(); }),
      connect(watched, &QAbstractItemModel::modelReset, this, &TreeGridView::afterReset),
      connect(watched, &QAbstractItemModel::layoutAboutToBeChanged, this,
              [state] { state->keepTopRow(); }),
      connect(watched, &QAbstractItemModel::rowsAboutToBeRemoved, this, keepRows),
      connect(watched, &QAbstractItemModel::rowsInserted, this, restoreRows),
      connect(watched, &QAbstractItemModel::layoutChanged, this, &TreeGridView::afterLayoutChange),
      connect(watched, &QAbstractItemModel::columnsInserted, this,
              &TreeGridView::sizeInsertedColumns),
      connect(watched, &QAbstractItemModel::columnsRemoved, this,
              [this] { sizedColumns_ = header_->count(); }),
      connect(watched, &QAbstractItemModel::columnsInserted, header_, &GridHeader::readGroups),
      connect(watched, &QAbstractItemModel::columnsRemoved, header_, &GridHeader::readGroups),
  };
  // Rows that were moved by hand are no longer in the order of the arrow. A proxy tells of them as
  // of any change of layout, so the models below it are asked.
  for (const QAbstractItemModel* below = watched; below != nullptr;) {
    modelConnections_.push_back(
        connect(below, &QAbstractItemModel::rowsMoved, this, &TreeGridView::clearSortIndicator));
    const auto* proxy = qobject_cast<const QAbstractProxyModel*>(below);
    below = proxy != nullptr ? proxy->sourceModel() : nullptr;
  }
}

void TreeGridView::afterReset() {
  header_->readGroups();
  applyDefaultColumnWidths();
  state_->restore();
  clearSortIndicator();  // the rows stand as the model gives them
  if (!currentIndex().isValid()) emit currentElementChanged(nullptr);
}

void TreeGridView::doItemsLayout() {
  QTreeView::doItemsLayout();
  state_->restoreTopRow();
}

// ---------------------------------------------------------------------------------------------
// Columns

void TreeGridView::setFrozenColumnCount(int count) {
  header_->setFrozenCount(count);
  updateEditorGeometries();
  viewport()->update();
}

int TreeGridView::frozenColumnCount() const {
  return header_->frozenCount();
}

std::vector<int> TreeGridView::visibleColumns() const {
  std::vector<int> columns;
  for (int visual = 0; visual < header_->count(); ++visual) {
    const int column = header_->logicalIndex(visual);
    if (!header_->isSectionHidden(column)) columns.push_back(column);
  }
  return columns;
}

int TreeGridView::sampledWidth(int column) const {
  constexpr int sampledRowCount = 60;
  constexpr int narrowest = 56;
  constexpr int widest = 320;
  const QString title = model()->headerData(column, Qt::Horizontal).toString();
  int width = fontMetrics().horizontalAdvance(title) + 24;
  const QStyleOptionViewItem option = viewOptions();
  QModelIndex row = model()->index(0, column, rootIndex());
  for (int i = 0; i < sampledRowCount && row.isValid(); ++i, row = indexBelow(row)) {
    int cell = itemDelegate(row)->sizeHint(option, row).width() + 8;
    if (column == treePosition()) {
      for (QModelIndex at = row.sibling(row.row(), 0); at.isValid(); at = at.parent()) {
        cell += indentation();
      }
    }
    width = std::max(width, cell);
  }
  return std::clamp(width, narrowest * zoom_ / 100, widest * zoom_ / 100);
}

void TreeGridView::applyDefaultColumnWidths() {
  if (model() == nullptr) return;
  const QScopedValueRollback<bool> applying(applyingWidths_, true);
  const bool rows = model()->rowCount(rootIndex()) > 0;
  // Once sized by rows, a refresh does not make the columns jump.
  const bool sample = !sampledRows_ || header_->count() != sizedColumns_;
  for (int column = 0; column < header_->count(); ++column) {
    if (header_->isSectionHidden(column)) continue;
    if (!applyKeptWidth(column) && sample) header_->resizeSection(column, sampledWidth(column));
  }
  sampledRows_ = rows || !sample;
  sizedColumns_ = header_->count();
}

bool TreeGridView::applyKeptWidth(int column) {
  int width = 0;
  if (viewModel_ == nullptr || !viewModel_->getColumnWidth(column, width) || width <= 0) {
    return false;
  }
  header_->resizeSection(column, qRound(width * zoom_ / 100.0));
  return true;
}

void TreeGridView::sizeInsertedColumns(const QModelIndex& parent, int first, int last) {
  if (parent != rootIndex()) return;
  const QScopedValueRollback<bool> applying(applyingWidths_, true);
  for (int column = first; column <= last; ++column) {
    if (header_->isSectionHidden(column)) continue;
    if (!applyKeptWidth(column)) header_->resizeSection(column, sampledWidth(column));
  }
  sizedColumns_ = header_->count();
}

// A filter that starts anew may leave out other columns than before.
void TreeGridView::afterLayoutChange() {
  // A row that a filter takes away is left without a word from the selection.
  if (!currentIndex().isValid()) emit currentElementChanged(nullptr);
  if (header_->count() == sizedColumns_) return;
  header_->readGroups();
  applyDefaultColumnWidths();
}

void TreeGridView::storeWidth(int column, int oldWidth, int newWidth) {
  viewport()->update();
  if (rowsResizedToContents()) scheduleDelayedItemsLayout();
  if (applyingWidths_ || oldWidth == 0 || newWidth == 0 || viewModel_ == nullptr) return;
  viewModel_->setColumnWidth(column, qRound(newWidth * 100.0 / zoom_));
}

void TreeGridView::applyHeaderSettings() {
  header_->setSectionsClickable(true);
  header_->setSortIndicatorShown(true);
  // Nothing is sorted before the user says so.
  header_->setSortIndicator(-1, Qt::AscendingOrder);
  connect(header_, &QHeaderView::sortIndicatorChanged, this,
          qOverload<int, Qt::SortOrder>(&QTreeView::sortByColumn), Qt::UniqueConnection);
}

void TreeGridView::clearSortIndicator() {
  const QSignalBlocker quiet(header_);
  header_->setSortIndicator(-1, Qt::AscendingOrder);
  header_->viewport()->update();
}

void TreeGridView::setRowsResizedToContents(bool on) {
  if (on == rowsResizedToContents()) return;
  setUniformRowHeights(!on);
  setWordWrap(on);
  scheduleDelayedItemsLayout();
}

void TreeGridView::setZoom(int percent) {
  percent = std::clamp(percent, 50, 300);
  if (percent == zoom_) return;
  if (zoom_ == 100) plainFont_ = font();
  const double factor = static_cast<double>(percent) / zoom_;
  zoom_ = percent;
  QFont scaled = plainFont_;
  if (scaled.pointSizeF() > 0) {
    scaled.setPointSizeF(plainFont_.pointSizeF() * percent / 100.0);
  } else {
    scaled.setPixelSize(std::max(1, qRound(plainFont_.pixelSize() * percent / 100.0)));
  }
  setFont(scaled);
  header_->setFont(scaled);
  if (searchBox_ != nullptr) searchBox_->setFont(plainFont_);
  setIndentation(qRound(Indentation * percent / 100.0));
  {
    const QScopedValueRollback<bool> applying(applyingWidths_, true);
    for (int column = 0; column < header_->count(); ++column) {
      if (header_->isSectionHidden(column)) continue;
      int width = 0;
      const bool kept = viewModel_ != nullptr && viewModel_->getColumnWidth(column, width);
      header_->resizeSection(column, kept ? qRound(width * percent / 100.0)
                                          : qRound(header_->sectionSize(column) * factor));
    }
  }
  scheduleDelayedItemsLayout();
  emit zoomChanged(percent);
}

// ---------------------------------------------------------------------------------------------
// Geometry. Frozen columns are shown as if the header stood at its start.

QRect TreeGridView::visualRect(const QModelIndex& index) const {
  QRect rect = QTreeView::visualRect(index);
  if (rect.isValid() && header_->isFrozen(index.column())) rect.translate(header_->offset(), 0);
  return rect;
}

QRect TreeGridView::cellRect(const QModelIndex& index) const {
  QRect rect = visualRect(index);
  if (rect.isValid()) {
    rect.setLeft(header_->shownPosition(index.column()));
  }
  return rect;
}

QModelIndex TreeGridView::indexAt(const QPoint& point) const {
  const bool frozen = point.x() >= 0 && point.x() < header_->frozenWidth();
  return QTreeView::indexAt(frozen ? point - QPoint(header_->offset(), 0) : point);
}

QRect TreeGridView::decorationRect(const QModelIndex& index) const {
  if (!index.isValid() || !itemsExpandable()) return {};
  const QModelIndex row = index.sibling(index.row(), 0);
  if (!model()->hasChildren(row)) return {};
  if (!rootIsDecorated() && row.parent() == rootIndex()) return {};
  const QRect content = visualRect(row.sibling(row.row(), treePosition()));
  return {content.left() - indentation(), content.top(), indentation(), content.height()};
}

QRegion TreeGridView::visualRegionForSelection(const QItemSelection& selection) const {
  if (header_->frozenWidth() == 0 || header_->offset() == 0) {
    return QTreeView::visualRegionForSelection(selection);
  }
  return selection.isEmpty() ? QRegion() : QRegion(viewport()->rect());
}

void TreeGridView::scrollContentsBy(int dx, int dy) {
  QTreeView::scrollContentsBy(dx, dy);
  // The scrolled picture has carried the frozen columns along.
  if (dx != 0 && header_->frozenCount() > 0) {
    updateEditorGeometries();
    viewport()->update();
    header_->viewport()->update();
  }
  if (dx != 0 && header_->hasGroups()) header_->viewport()->update();
}

void TreeGridView::scrollTo(const QModelIndex& index, ScrollHint hint) {
  const int before = horizontalScrollBar()->value();
  QTreeView::scrollTo(index, hint);
  const int border = header_->frozenWidth();
  if (border == 0 || !index.isValid()) return;
  int value = before;
  if (!header_->isFrozen(index.column())) {
    const int left = header_->sectionPosition(index.column());
    const int right = left + header_->sectionSize(index.column());
    const int room = viewport()->width();
    if (left - value < border) {
      value = left - border;
    } else if (right - value > room) {
      value = std::min(left - border, right - room);
    }
  }
  horizontalScrollBar()->setValue(value);
}

void TreeGridView::updateEditorGeometries() {
  QTreeView::updateEditorGeometries();
  // An editor of a scrolled column disappears beneath the frozen ones like its cell.
  QWidget* editor = state() == EditingState ? indexWidget(currentIndex()) : nullptr;
  if (editor == nullptr) return;
  const int hidden = header_->isFrozen(currentIndex().column())
                         ? 0
                         : header_->frozenWidth() - editor->geometry().left();
  if (hidden <= 0) {
    editor->clearMask();
  } else {
    editor->setMask(QRegion(editor->rect().adjusted(hidden, 0, 0, 0)));
  }
}

void TreeGridView::resizeEvent(QResizeEvent* event) {
  QTreeView::resizeEvent(event);
  header_->viewport()->update();  // fewer or more columns may stay in place
  if (searchBox_ != nullptr) searchBox_->place();
}

// ---------------------------------------------------------------------------------------------
// Painting

void TreeGridView::setEmptyText(const QString& text) {
  emptyText_ = text;
  viewport()->update();
}

void TreeGridView::paintEvent(QPaintEvent* event) {
  executeDelayedItemsLayout();
  const int border = header_->frozenWidth();
  const int offset = header_->offset();
  if (border == 0 || offset == 0) {
    QTreeView::paintEvent(event);
  } else {
    const QRect strip(0, 0, border, viewport()->height());
    const QRegion rest = event->region().subtracted(strip);
    if (!rest.isEmpty()) {
      QPaintEvent scrolled(rest);
      QTreeView::paintEvent(&scrolled);
    }
    // One rectangle: for several the base class paints whole rows from the scrolled start.
    const QRect frozen = event->region().boundingRect().intersected(strip);
    if (!frozen.isEmpty()) {
      QPainter painter(viewport());
      painter.setClipRect(frozen);
      painter.fillRect(frozen, palette().brush(QPalette::Base));
      painter.translate(offset, 0);
      drawTree(&painter, frozen.translated(-offset, 0));
    }
  }
  QPainter painter(viewport());
  if (!emptyText_.isEmpty() && model() != nullptr && model()->rowCount(rootIndex()) == 0) {
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(24, 24, -24, -24),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, emptyText_);
  } else if (border > 0) {
    painter.setPen(borderColor);
    painter.drawLine(border - 1, 0, border - 1, viewport()->height());
  }
}

void TreeGridView::drawBranches(QPainter* painter, const QRect& rect,
                                const QModelIndex& index) const {
  // The room of the arrows belongs to its cell: without this a coloured row would have a hole.
  const QVariant background = index.sibling(index.row(), treePosition()).data(Qt::BackgroundRole);
  if (background.isValid() && !selectionModel()->isSelected(index)) {
    painter->fillRect(rect, background.canConvert<QBrush>() ? background.value<QBrush>()
                                                            : QBrush(background.value<QColor>()));
  }
  QTreeView::drawBranches(painter, rect, index);
}

void TreeGridView::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
  QTreeView::drawRow(painter, option, index);

  // Positions are those of the scrolled header; paintEvent shifts the painter for frozen columns.
  const QRect row = option.rect;
  const int left = columnViewportPosition(header_->logicalIndex(0));
  const int right = left + header_->length() - 1;
  const QModelIndex current = currentIndex();
  const bool isCurrent =
      current.isValid() && current.row() == index.row() && current.parent() == index.parent();
  if (isCurrent) {
    painter->fillRect(QRect(left, row.top(), right - left + 1, row.height()), currentRowTint);
  }
  QVector<QLine> lines{QLine(left, row.bottom(), right, row.bottom())};
  int x = left - 1;
  for (int visual = 0; visual < header_->count(); ++visual) {
    const int size = header_->sectionSize(header_->logicalIndex(visual));
    if (size == 0) continue;
    x += size;
    lines << QLine(x, row.top(), x, row.bottom());
  }
  painter->setPen(lineColor);
  painter->drawLines(lines);

  if (isCurrent && !header_->isSectionHidden(current.column())) {
    const QRect cell(columnViewportPosition(current.column()), row.top(),
                     header_->sectionSize(current.column()), row.height());
    const bool active = hasFocus() || state() == EditingState;
    painter->setPen(
        QPen(active ? currentFrame : idleFrame, 2, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(cell.adjusted(1, 1, -1, -1));
  }
}

// ---------------------------------------------------------------------------------------------
// Elements

proxy::Element* TreeGridView::elementAt(const QModelIndex& index) const {
  return viewModel_ != nullptr && index.isValid() ? viewModel_->getInternalData(index) : nullptr;
}

proxy::Element* TreeGridView::currentElement() const {
  return elementAt(currentIndex());
}

std::vector<proxy::Element*> TreeGridView::selectedElements() const {
  std::vector<proxy::Element*> elements;
  for (const GridRow& row : selectedRows(*this)) {
    if (proxy::Element* element = elementAt(row.index)) elements.push_back(element);
  }
  return elements;
}

QModelIndexList TreeGridView::selectedCells() const {
  QModelIndexList cells;
  const std::vector<int> columns = visibleColumns();
  for (const GridRow& row : selectedRows(*this)) {
    for (const int column : columns) {
      if (row.isSelected(column)) cells << row.index.sibling(row.index.row(), column);
    }
  }
  return cells;
}

void TreeGridView::selectElements(const std::vector<proxy::Element*>& elements) {
  if (viewModel_ == nullptr || selectionModel() == nullptr) return;
  const int lastColumn = header_->count() - 1;
  QItemSelection selection;
  QModelIndex first;
  for (proxy::Element* element : elements) {
    const QModelIndex index = viewModel_->makeIndex(element, 0);
    if (!index.isValid()) continue;
    for (QModelIndex above = index.parent(); above.isValid(); above = above.parent()) {
      if (!isExpanded(above)) expand(above);
    }
    if (!first.isValid()) first = index;
    const QModelIndex end = index.sibling(index.row(), lastColumn);
    if (!selection.isEmpty() && selection.last().parent() == index.parent() &&
        selection.last().bottom() + 1 == index.row()) {
      selection.last() = QItemSelectionRange(selection.last().topLeft(), end);
    } else {
      selection.append(QItemSelectionRange(index, end));
    }
  }
  if (first.isValid()) {
    const std::vector<int> columns = visibleColumns();
    const bool keep =
        currentIndex().isValid() && !header_->isSectionHidden(currentIndex().column());
    const int column = keep ? currentIndex().column() : columns.empty() ? 0 : columns.front();
    selectionModel()->setCurrentIndex(first.sibling(first.row(), column),
                                      QItemSelectionModel::NoUpdate);
  }
  selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void TreeGridView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTreeView::currentChanged(current, previous);
  if (!extending_ && !holdsAnchor_) anchor_ = current;
  const bool sameRow = current.isValid() && previous.isValid() && current.row() == previous.row() &&
                       current.parent() == previous.parent();
  if (sameRow) return;
  viewport()->update();  // the tint of the current row
  emit currentElementChanged(elementAt(current));
}

// ---------------------------------------------------------------------------------------------
// Selection

QModelIndex TreeGridView::lastRow() const {
  QModelIndex last = model()->index(model()->rowCount(rootIndex()) - 1, 0, rootIndex());
  while (last.isValid() && isExpanded(last) && model()->hasChildren(last)) {
    last = model()->index(model()->rowCount(last) - 1, 0, last);
  }
  return last;
}

QItemSelection TreeGridView::block(const QModelIndex& from, const QModelIndex& to) const {
  QModelIndex top = from.sibling(from.row(), 0);
  QModelIndex bottom = to.sibling(to.row(), 0);
  if (rowPath(bottom) < rowPath(top)) std::swap(top, bottom);
  const int firstVisual =
      std::min(header_->visualIndex(from.column()), header_->visualIndex(to.column()));
  const int lastVisual =
      std::max(header_->visualIndex(from.column()), header_->visualIndex(to.column()));

  // Runs of neighbouring rows and of columns that are neighbours in the model, too.
  std::vector<std::pair<int, int>> columnRuns;
  std::vector<int> columns;
  for (int visual = firstVisual; visual <= lastVisual; ++visual) {
    const int column = header_->logicalIndex(visual);
    if (!header_->isSectionHidden(column)) columns.push_back(column);
  }
  std::sort(columns.begin(), columns.end());
  for (const int column : columns) {
    if (!columnRuns.empty() && columnRuns.back().second + 1 == column) {
      columnRuns.back().second = column;
    } else {
      columnRuns.emplace_back(column, column);
    }
  }
  QItemSelection selection;
  const auto addRows = [&](const QModelIndex& first, const QModelIndex& last) {
    for (const auto& [left, right] : columnRuns) {
      selection.append(
          QItemSelectionRange(first.sibling(first.row(), left), last.sibling(last.row(), right)));
    }
  };
  QModelIndex first = top;
  QModelIndex last = top;
  while (last != bottom) {
    const QModelIndex next = indexBelow(last);
    if (!next.isValid()) break;
    if (next.parent() != last.parent() || next.row() != last.row() + 1) {
      addRows(first, last);
      first = next;
    }
    last = next;
  }
  addRows(first, last);
  return selection;
}

// The base class asks with rectangles, which cannot name a cell that lies beneath the frozen
// columns; and it refuses a block that starts or ends in a disabled cell.
void TreeGridView::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) {
  if (selectionModel() == nullptr) return;
  QModelIndex target = currentIndex();
  if (!extending_) {
    QPoint at = rect.bottomRight();  // the second corner, where the mouse is
    const QRect area = viewport()->rect();
    at.setX(std::clamp(at.x(), area.left(), std::min(area.right(), header_->length() - 1)));
    at.setY(std::clamp(at.y(), area.top(), area.bottom()));
    target = indexAt(at);
    if (!target.isValid() && at.y() > area.top()) {
      // Below the last row: its cell in the column under the mouse.
      const QModelIndex last = lastRow();
      const int column = header_->shownColumnAt(at.x());
      if (last.isValid() && column >= 0 && (command & QItemSelectionModel::Current)) {
        target = last.sibling(last.row(), column);
      }
    }
  }
  if (!target.isValid()) {
    if (command & QItemSelectionModel::Clear) selectionModel()->clearSelection();
    return;
  }
  if (!(command & QItemSelectionModel::Current) || !anchor_.isValid()) anchor_ = target;
  selectionModel()->select(block(anchor_, target), command);
}

// ---------------------------------------------------------------------------------------------
// Mouse. QTreeView finds branch marks by the scrolled header alone, so they are handled here and
// its handlers are passed over.

void TreeGridView::mousePressEvent(QMouseEvent* event) {
  const QModelIndex at = indexAt(event->pos());
  pressedDecoration_ =
      event->button() == Qt::LeftButton && decorationRect(at).contains(event->pos());
  if (pressedDecoration_) {
    const QModelIndex row = at.sibling(at.row(), 0);
    setExpanded(row, !isExpanded(row));
    return;
  }
  const QScopedValueRollback<bool> holding(holdsAnchor_, true);
  if (at.isValid() && !isCellEnabled(at) && selectionModel() != nullptr) {
    // A greyed cell can be pointed at and its row acted on, only not edited.
    const QItemSelectionModel::SelectionFlags command = selectionCommand(at, event);
    selectionModel()->setCurrentIndex(at, QItemSelectionModel::NoUpdate);
    setSelection(QRect(event->pos(), QSize(1, 1)), command);
    return;
  }
  QAbstractItemView::mousePressEvent(event);  // NOLINT(bugprone-parent-virtual-call)
}

void TreeGridView::mouseMoveEvent(QMouseEvent* event) {
  if (pressedDecoration_ && event->buttons() != Qt::NoButton) return;
  const QScopedValueRollback<bool> holding(holdsAnchor_, true);
  QAbstractItemView::mouseMoveEvent(event);  // NOLINT(bugprone-parent-virtual-call)
}

void TreeGridView::mouseReleaseEvent(QMouseEvent* event) {
  if (pressedDecoration_) {
    pressedDecoration_ = false;
    return;
  }
  QAbstractItemView::mouseReleaseEvent(event);  // NOLINT(bugprone-parent-virtual-call)
}

void TreeGridView::mouseDoubleClickEvent(QMouseEvent* event) {
  const QModelIndex at = indexAt(event->pos());
  if (decorationRect(at).contains(event->pos())) {
    mousePressEvent(event);  // the second click of two quick ones
    return;
  }
  const QPersistentModelIndex row = at.isValid() ? at.sibling(at.row(), 0) : QModelIndex();
  const bool plain =
      at.isValid() && !(model()->flags(at) & (Qt::ItemIsEditable | Qt::ItemIsUserCheckable));
  QAbstractItemView::mouseDoubleClickEvent(event);  // NOLINT(bugprone-parent-virtual-call)
  if (plain && row.isValid() && itemsExpandable() && event->button() == Qt::LeftButton &&
      state() != EditingState && model()->hasChildren(row)) {
    setExpanded(row, !isExpanded(row));
  }
}

void TreeGridView::wheelEvent(QWheelEvent* event) {
  if (event->modifiers() & Qt::ControlModifier) {
    const int steps = event->angleDelta().y();
    if (steps != 0) setZoom(zoom_ + (steps > 0 ? 10 : -10));
    event->accept();
    return;
  }
  QTreeView::wheelEvent(event);
}

// ---------------------------------------------------------------------------------------------
// Keyboard

bool TreeGridView::isCellEnabled(const QModelIndex& index) const {
  return index.isValid() && (model()->flags(index) & Qt::ItemIsEnabled);
}

// `count` rows on, over enabled cells of the same column; as far as it goes when there are fewer.
QModelIndex TreeGridView::nextRow(const QModelIndex& from, int direction, int count) const {
  QModelIndex reached;
  QModelIndex at = from;
  for (int left = count; left > 0;) {
    at = direction > 0 ? indexBelow(at) : indexAbove(at);
    if (!at.isValid()) break;
    at = at.sibling(at.row(), from.column());
    if (!isCellEnabled(at)) continue;
    reached = at;
    --left;
  }
  return reached;
}

// The first enabled cell in the row of `from`, counting shown columns from `visible` on.
QModelIndex TreeGridView::columnInRow(const QModelIndex& from, int visible, int direction) const {
  const std::vector<int> columns = visibleColumns();
  for (int i = visible; i >= 0 && i < static_cast<int>(columns.size()); i += direction) {
    const QModelIndex cell = from.sibling(from.row(), columns[static_cast<std::size_t>(i)]);
    if (isCellEnabled(cell)) return cell;
  }
  return {};
}

QModelIndex TreeGridView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
  if (model() == nullptr || header_->count() == 0) return {};
  executeDelayedItemsLayout();
  const std::vector<int> columns = visibleColumns();
  if (columns.empty()) return {};
  const int lastVisible = static_cast<int>(columns.size()) - 1;
  const QModelIndex current = currentIndex();
  const QModelIndex top = model()->index(0, columns.front(), rootIndex());
  if (!current.isValid()) {
    const QModelIndex first = columnInRow(top, 0, 1);
    return first.isValid() || !top.isValid() ? first : nextRow(top, 1, 1);
  }
  const auto found = std::find(columns.begin(), columns.end(), current.column());
  const int visible = found == columns.end() ? 0 : static_cast<int>(found - columns.begin());
  const bool control = modifiers & Qt::ControlModifier;
  const int rowHeight = std::max(1, visualRect(current).height());
  const int page = std::max(1, viewport()->height() / rowHeight - 1);
  const auto orCurrent = [&current](const QModelIndex& index) {
    return index.isValid() ? index : current;
  };

  switch (action) {
    case MoveUp:
      return orCurrent(nextRow(current, -1, 1));
    case MoveDown:
      return orCurrent(nextRow(current, 1, 1));
    case MovePageUp:
      return orCurrent(nextRow(current, -1, page));
    case MovePageDown:
      return orCurrent(nextRow(current, 1, page));
    case MoveLeft:
      return orCurrent(columnInRow(current, control ? 0 : visible - 1, control ? 1 : -1));
    case MoveRight:
      return orCurrent(columnInRow(current, control ? lastVisible : visible + 1, control ? -1 : 1));
    case MoveHome:
    case MoveEnd: {
      const bool home = action == MoveHome;
      if (!control) return orCurrent(columnInRow(current, home ? 0 : lastVisible, home ? 1 : -1));
      QModelIndex edge = home ? top : lastRow();
      edge = edge.sibling(edge.row(), current.column());
      return isCellEnabled(edge) ? edge : orCurrent(nextRow(edge, home ? 1 : -1, 1));
    }
    case MoveNext:
    case MovePrevious: {
      const int step = action == MoveNext ? 1 : -1;
      QModelIndex cell = columnInRow(current, visible + step, step);
      for (QModelIndex row = current; !cell.isValid();) {
        row = step > 0 ? indexBelow(row) : indexAbove(row);
        if (!row.isValid()) return current;
        cell = columnInRow(row, step > 0 ? 0 : lastVisible, step);
      }
      return cell;
    }
  }
  return {};
}

void TreeGridView::moveCurrent(CursorAction action) {
  makeCurrent(*this, moveCursor(action, Qt::NoModifier));
}

bool TreeGridView::handleKey(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) {
    copySelection();
    return true;
  }
  if (event->matches(QKeySequence::Paste)) {
    paste();
    return true;
  }
  if (searchBox_ != nullptr) {
    if (event->matches(QKeySequence::Find)) {
      openSearchBox();
      return true;
    }
    if (event->key() == Qt::Key_F3) {
      event->modifiers() & Qt::ShiftModifier ? searchBox_->findPrevious() : searchBox_->findNext();
      return true;
    }
    if (event->key() == Qt::Key_Escape && searchBox_->isVisible()) {
      searchBox_->hide();
      return true;
    }
  }
  const QModelIndex current = currentIndex();
  const QModelIndex row = current.sibling(current.row(), 0);
  const bool alt = event->modifiers() & Qt::AltModifier;
  const bool typed =
      current.isValid() && isCellEnabled(current) && (model()->flags(current) & Qt::ItemIsEditable);
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: {
      const bool up = event->modifiers() & Qt::ShiftModifier;
      if (takesInput(current)) {
        makeCurrent(*this, nextInputInColumn(*this, current, up ? -1 : 1));
      } else {
        moveCurrent(up ? MoveUp : MoveDown);
      }
      return true;
    }
    case Qt::Key_Delete:
      if (isSignalConnected(QMetaMethod::fromSignal(&TreeGridView::deletePressed))) {
        emit deletePressed();
      } else {
        clearSelectedCells();
      }
      return true;
    case Qt::Key_Right:
    case Qt::Key_Left:
      if (!alt || !current.isValid()) return false;
      setExpanded(row, event->key() == Qt::Key_Right);
      return true;
    case Qt::Key_Plus:
    case Qt::Key_Minus:
      if (typed || !current.isValid()) return false;
      setExpanded(row, event->key() == Qt::Key_Plus);
      return true;
    case Qt::Key_Asterisk:
      if (typed || !current.isValid()) return false;
      expandRecursively(row);
      return true;
    default:
      return false;
  }
}

void TreeGridView::keyPressEvent(QKeyEvent* event) {
  // A key that an open editor did not want, such as Return, is not for the grid either.
  if (state() == EditingState && !hasFocus()) {
    event->ignore();
    return;
  }
  if (handleKey(event)) {
    event->accept();
    return;
  }
  // What is typed on a cell that cannot be edited must not lead to a row that begins with it: the
  // next key would write there.
  const bool prints = !event->text().isEmpty() && event->text().at(0).isPrint() &&
                      !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
  if (prints && event->key() != Qt::Key_Space &&
      !(model() != nullptr && model()->flags(currentIndex()) & Qt::ItemIsEditable)) {
    event->accept();
    return;
  }
  const QScopedValueRollback<bool> extending(extending_,
                                             event->modifiers().testFlag(Qt::ShiftModifier));
  if (extending_ && !anchor_.isValid()) anchor_ = currentIndex();
  // Not QTreeView's, which collapses the row when a negative number is typed.
  QAbstractItemView::keyPressEvent(event);  // NOLINT(bugprone-parent-virtual-call)
}

void TreeGridView::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
  // Typing goes on in the cell that was refused, not in the one below it.
  if (editor != nullptr && editor->property(RefusedProperty).toBool()) {
    hint = QAbstractItemDelegate::NoHint;
  }
  switch (hint) {
    case QAbstractItemDelegate::EditNextItem:
    case QAbstractItemDelegate::EditPreviousItem:
      QTreeView::closeEditor(editor, QAbstractItemDelegate::NoHint);
      makeCurrent(*this, nextInputInReading(*this, currentIndex(),
                                            hint == QAbstractItemDelegate::EditNextItem ? 1 : -1));
      break;
    case QAbstractItemDelegate::SubmitModelCache:  // Return
      QTreeView::closeEditor(editor, hint);
      makeCurrent(*this, nextInputInColumn(*this, currentIndex(), 1));
      break;
    default:
      QTreeView::closeEditor(editor, hint);
      break;
  }
}

// ---------------------------------------------------------------------------------------------
// Search and clipboard

void TreeGridView::initSearchBox() {
  if (searchBox_ != nullptr) return;
  searchBox_ = new SearchBox(this);
  if (zoom_ != 100) searchBox_->setFont(plainFont_);
  searchBox_->watchModel();
}

void TreeGridView::openSearchBox() {
  if (searchBox_ != nullptr) searchBox_->open();
}

void TreeGridView::addEditActions(QMenu* menu) {
  menu->addAction(QString::fromUtf8("复制\tCtrl+C"), this, &TreeGridView::copySelection);
  menu->addAction(QString::fromUtf8("粘贴\tCtrl+V"), this, &TreeGridView::paste);
  menu->addAction(QString::fromUtf8("清除内容\tDelete"), this, [this] {
    if (isSignalConnected(QMetaMethod::fromSignal(&TreeGridView::deletePressed))) {
      emit deletePressed();
    } else {
      clearSelectedCells();
    }
  });
}

void TreeGridView::copySelection() {
  copyToClipboard(*this);
}

void TreeGridView::paste() {
  pasteFromClipboard(*this);
}

void TreeGridView::clearSelectedCells() {
  clearCells(*this);
}

}  // namespace bwidgets
