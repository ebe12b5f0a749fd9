#include "workbench/shell/page_stack.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QSplitter>
#include <QStackedWidget>
#include <algorithm>

#include "host/abst/base_view.h"
#include "host/bwidgets/tree_grid_view.h"

namespace shell {

namespace {

constexpr int kListWidth = 132;  // pixels at first
constexpr int kListMargin = 34;  // what the list has beside icon and text

}  // namespace

PageStack::PageStack(QWidget* parent)
    : QWidget(parent),
      list_(new QListWidget),
      stack_(new QStackedWidget),
      splitter_(new QSplitter(Qt::Horizontal)) {
  list_->setObjectName(QStringLiteral("pageList"));
  list_->setIconSize(QSize(18, 18));
  list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  splitter_->addWidget(list_);
  splitter_->addWidget(stack_);
  splitter_->setHandleWidth(8);
  splitter_->setStretchFactor(0, 0);
  splitter_->setStretchFactor(1, 1);
  splitter_->setChildrenCollapsible(false);
  splitter_->setSizes({kListWidth, 8000});
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(splitter_);
  connect(list_, &QListWidget::currentRowChanged, this, &PageStack::goTo);
  // A click asks for the page, so that its keys are next; the arrow keys walk on through the list.
  connect(list_, &QListWidget::itemClicked, this, [this] {
    if (current_ < 0) return;
    for (auto* grid : currentWidget()->findChildren<bwidgets::TreeGridView*>()) {
      if (!grid->isVisible()) continue;
      grid->setFocus();
      return;
    }
  });
}

PageStack::~PageStack() {
  clear();
}

void PageStack::addPage(const QString& key, const QString& title, const QIcon& icon,
                        QWidget* widget, abst::BaseView* view) {
  const QSignalBlocker blocker(list_);  // a first item becomes current by itself
  pages_.push_back({key, widget, view});
  stack_->addWidget(widget);
  auto* item = new QListWidgetItem(icon, title, list_);
  item->setSizeHint(QSize(0, list_->fontMetrics().height() + 18));
  item->setToolTip(title);
  // However narrow the window is, the names of the pages are read whole.
  const int needed =
      list_->fontMetrics().horizontalAdvance(title) + list_->iconSize().width() + kListMargin;
  list_->setMinimumWidth(std::max(list_->minimumWidth(), needed));
  if (current_ < 0) list_->setCurrentRow(-1);
}

void PageStack::clear() {
  goTo(-1);
  const QSignalBlocker blocker(list_);
  list_->clear();
  for (const Page& page : pages_) {
    stack_->removeWidget(page.widget);
    delete page.widget;
  }
  pages_.clear();
}

void PageStack::goTo(int number) {
  if (number == current_) return;
  if (current_ >= 0) pages_[static_cast<std::size_t>(current_)].view->deactivate();
  current_ = number;
  if (current_ >= 0) {
    const Page& page = pages_[static_cast<std::size_t>(current_)];
    stack_->setCurrentWidget(page.widget);
    page.view->activate();
  }
  emit currentPageChanged(currentPage());
}

bool PageStack::setCurrentPage(const QString& key) {
  for (std::size_t i = 0; i < pages_.size(); ++i) {
    if (pages_[i].key != key) continue;
    list_->setCurrentRow(static_cast<int>(i));
    return true;
  }
  return false;
}

QString PageStack::currentPage() const {
  return current_ >= 0 ? pages_[static_cast<std::size_t>(current_)].key : QString();
}

QStringList PageStack::pages() const {
  QStringList keys;
  for (const Page& page : pages_) keys << page.key;
  return keys;
}

QWidget* PageStack::currentWidget() const {
  return current_ >= 0 ? pages_[static_cast<std::size_t>(current_)].widget : nullptr;
}

abst::BaseView* PageStack::currentView() const {
  return current_ >= 0 ? pages_[static_cast<std::size_t>(current_)].view : nullptr;
}

QByteArray PageStack::saveLayout() const {
  return splitter_->saveState();
}

void PageStack::restoreLayout(const QByteArray& layout) {
  splitter_->restoreState(layout);
}

}  // namespace shell
