#include "host/bwidgets/search_box.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <QToolButton>
#include <algorithm>

#include "host/bwidgets/grid_header.h"
#include "host/bwidgets/tree_grid_view.h"

namespace bwidgets {

SearchBox::SearchBox(TreeGridView* grid)
    : QFrame(grid),
      grid_(grid),
      edit_(new QLineEdit(this)),
      count_(new QLabel(this)),
      previous_(new QToolButton(this)),
      next_(new QToolButton(this)),
      typing_(new QTimer(this)),
      recount_(new QTimer(this)) {
  setObjectName(QStringLiteral("SearchBox"));
  setFrameShape(QFrame::StyledPanel);
  setAutoFillBackground(true);
  edit_->setPlaceholderText(QString::fromUtf8("查找，可输入拼音首字母"));
  edit_->setMinimumWidth(190);
  edit_->installEventFilter(this);
  count_->setMinimumWidth(56);
  count_->setAlignment(Qt::AlignCenter);
  auto* close = new QToolButton(this);
  previous_->setText(QString::fromUtf8("▲"));
  previous_->setToolTip(QString::fromUtf8("上一个（Shift+F3）"));
  next_->setText(QString::fromUtf8("▼"));
  next_->setToolTip(QString::fromUtf8("下一个（F3）"));
  close->setText(QString::fromUtf8("✕"));
  close->setToolTip(QString::fromUtf8("关闭（Esc）"));
  for (QToolButton* button : {previous_, next_, close}) {
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
  }
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(4, 3, 4, 3);
  layout->setSpacing(2);
  layout->addWidget(edit_);
  layout->addWidget(count_);
  layout->addWidget(previous_);
  layout->addWidget(next_);
  layout->addWidget(close);

  typing_->setSingleShot(true);
  typing_->setInterval(150);
  recount_->setSingleShot(true);
  recount_->setInterval(150);
  connect(edit_, &QLineEdit::textChanged, typing_, qOverload<>(&QTimer::start));
  connect(typing_, &QTimer::timeout, this, &SearchBox::wishChanged);
  connect(recount_, &QTimer::timeout, this, &SearchBox::showCount);
  connect(previous_, &QToolButton::clicked, this, &SearchBox::findPrevious);
  connect(next_, &QToolButton::clicked, this, &SearchBox::findNext);
  connect(close, &QToolButton::clicked, this, &QWidget::hide);
  hide();
}

void SearchBox::watchModel() {
  for (const QMetaObject::Connection& connection : connections_) disconnect(connection);
  connections_.clear();
  markStale();
  QAbstractItemModel* model = grid_->model();
  if (model == nullptr) return;
  const auto stale = [this] { markStale(); };
  connections_ = {
      connect(model, &QAbstractItemModel::dataChanged, this, stale),
      connect(model, &QAbstractItemModel::layoutAboutToBeChanged, this, stale),
      connect(model, &QAbstractItemModel::layoutChanged, this, stale),
      connect(model, &QAbstractItemModel::rowsInserted, this, stale),
      connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this, stale),
      connect(model, &QAbstractItemModel::rowsRemoved, this, stale),
      connect(model, &QAbstractItemModel::rowsMoved, this, stale),
      connect(model, &QAbstractItemModel::columnsInserted, this, stale),
      connect(model, &QAbstractItemModel::columnsRemoved, this, stale),
      connect(model, &QAbstractItemModel::columnsMoved, this, stale),
      connect(model, &QAbstractItemModel::modelAboutToBeReset, this, stale),
      connect(model, &QAbstractItemModel::modelReset, this, stale),
      connect(grid_->selectionModel(), &QItemSelectionModel::currentChanged, this,
              [this] {
                if (isVisible()) recount_->start();
              }),
  };
}

void SearchBox::markStale() {
  matches_.clear();
  stale_ = true;
  if (isVisible()) recount_->start();
}

void SearchBox::open() {
  place();
  show();
  raise();
  edit_->setFocus(Qt::ShortcutFocusReason);
  edit_->selectAll();
}

void SearchBox::place() {
  adjustSize();
  const QRect area = grid_->gridHeader()->geometry();
  move(std::max(area.left(), area.right() - width() + 1), area.top());
}

void SearchBox::showEvent(QShowEvent* event) {
  QFrame::showEvent(event);
  const QModelIndex current = grid_->currentIndex();
  const bool inSight = grid_->viewport()->rect().intersects(grid_->visualRect(current));
  grid_->gridHeader()->setRoomAbove(height());
  if (inSight) grid_->scrollTo(current);  // the rows have gone down
  showCount();
  grid_->viewport()->update();
}

void SearchBox::hideEvent(QHideEvent* event) {
  QFrame::hideEvent(event);
  typing_->stop();  // what was typed last is searched for when the user asks again
  grid_->gridHeader()->setRoomAbove(0);
  grid_->viewport()->update();  // the marks go
  if (!event->spontaneous() && grid_->isVisible()) grid_->setFocus(Qt::OtherFocusReason);
}

bool SearchBox::eventFilter(QObject* watched, QEvent* event) {
  if (watched != edit_ || event->type() != QEvent::KeyPress) {
    return QFrame::eventFilter(watched, event);
  }
  const auto* key = static_cast<QKeyEvent*>(event);
  const bool back = key->modifiers() & Qt::ShiftModifier;
  switch (key->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F3:
      back ? findPrevious() : findNext();
      return true;
    case Qt::Key_Escape:
      hide();
      return true;
    case Qt::Key_Up:
      findPrevious();
      return true;
    case Qt::Key_Down:
      findNext();
      return true;
    default:
      return QFrame::eventFilter(watched, event);
  }
}

// ---------------------------------------------------------------------------------------------
// Finding

// Visits the rows in the order of the tree until `visit` answers false.
template <class Visit>
bool SearchBox::walk(const QModelIndex& parent, Visit visit) const {
  const QAbstractItemModel* model = grid_->model();
  const int rows = model->rowCount(parent);
  for (int row = 0; row < rows; ++row) {
    const QModelIndex index = model->index(row, 0, parent);
    if (grid_->isRowHidden(row, parent)) continue;
    if (!visit(index)) return false;
    if (model->hasChildren(index) && !walk(index, visit)) return false;
  }
  return true;
}

void SearchBox::collect() {
  if (!stale_) return;
  stale_ = false;
  matches_.clear();
  if (grid_->model() == nullptr || matcher_.isEmpty()) return;
  const std::vector<int> columns = grid_->visibleColumns();
  walk(grid_->rootIndex(), [&](const QModelIndex& row) {
    for (const int column : columns) {
      const QModelIndex cell = row.sibling(row.row(), column);
      if (matcher_.matches(cell.data().toString())) matches_.push_back(cell);
    }
    return true;
  });
}

// The number of the first match that does not lie before the cell.
int SearchBox::firstAtOrAfter(const QModelIndex& current) const {
  if (!current.isValid()) return 0;
  const auto found = std::find(matches_.begin(), matches_.end(), current);
  if (found != matches_.end()) return static_cast<int>(found - matches_.begin());
  const std::vector<int> columns = grid_->visibleColumns();
  const auto visual = [&columns](int column) {
    return std::find(columns.begin(), columns.end(), column) - columns.begin();
  };
  std::size_t passed = 0;
  walk(grid_->rootIndex(), [&](const QModelIndex& row) {
    const bool here = row.row() == current.row() && row.parent() == current.parent();
    while (passed < matches_.size() && matches_[passed].row() == row.row() &&
           matches_[passed].parent() == row.parent()) {
      if (here && visual(matches_[passed].column()) >= visual(current.column())) return false;
      ++passed;
    }
    return !here && passed < matches_.size();
  });
  return static_cast<int>(passed);
}

void SearchBox::find(bool forward, bool stay) {
  collect();
  const int count = static_cast<int>(matches_.size());
  if (count > 0) {
    const QModelIndex current = grid_->currentIndex();
    int at = firstAtOrAfter(current);
    const bool on = at < count && matches_[static_cast<std::size_t>(at)] == current;
    if (on && !stay) at += forward ? 1 : -1;
    if (!on && !forward) --at;
    at = (at + count) % count;
    const QModelIndex hit = matches_[static_cast<std::size_t>(at)];
    grid_->selectionModel()->setCurrentIndex(hit, QItemSelectionModel::ClearAndSelect);
    grid_->scrollTo(hit);  // expands what is above it
  }
  showCount();
}

void SearchBox::wishChanged() {
  typing_->stop();
  const TextMatcher wished(edit_->text());
  if (wished.wish() == matcher_.wish()) return;
  matcher_ = wished;
  markStale();
  grid_->viewport()->update();
  if (matcher_.isEmpty()) {
    showCount();
  } else {
    find(true, true);
  }
}

void SearchBox::findNext() {
  const QString before = matcher_.wish();
  wishChanged();
  if (matcher_.wish() == before) find(true, false);
}

void SearchBox::findPrevious() {
  const QString before = matcher_.wish();
  wishChanged();
  if (matcher_.wish() == before) find(false, false);
}

int SearchBox::matchCount() {
  collect();
  return static_cast<int>(matches_.size());
}

int SearchBox::currentMatch() {
  collect();
  const auto found = std::find(matches_.begin(), matches_.end(), grid_->currentIndex());
  return found == matches_.end() ? 0 : static_cast<int>(found - matches_.begin()) + 1;
}

void SearchBox::showCount() {
  recount_->stop();
  QString text;
  if (!matcher_.isEmpty()) {
    text = QStringLiteral("%1/%2").arg(currentMatch()).arg(matchCount());
  }
  count_->setText(text);
  const bool none = !matcher_.isEmpty() && matches_.empty();
  QPalette colors = edit_->palette();
  colors.setColor(QPalette::Text,
                  none ? QColor(0xc0, 0x20, 0x20) : palette().color(QPalette::Text));
  edit_->setPalette(colors);
  previous_->setEnabled(!matches_.empty());
  next_->setEnabled(!matches_.empty());
}

}  // namespace bwidgets
