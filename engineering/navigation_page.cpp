#include "engineering/navigation_page.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QSplitter>
#include <QStackedWidget>
#include <QTreeView>
#include <algorithm>

#include "host/base/log.h"

namespace gui::qce {

namespace {

constexpr int LeastCharacters = 10;  // of a name on the left, in a narrow window

}  // namespace

NavigationPage::NavigationPage(const QString& treeName, int treeStretch, int stackStretch,
                               QWidget* parent)
    : Widget(parent),
      tree_(new QTreeView),
      stack_(new QStackedWidget),
      splitter_(new QSplitter(Qt::Horizontal)) {
  tree_->setObjectName(treeName);
  tree_->setHeaderHidden(true);
  tree_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  tree_->setUniformRowHeights(true);
  tree_->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("费")) * LeastCharacters);
  splitter_->addWidget(tree_);
  splitter_->addWidget(stack_);
  splitter_->setHandleWidth(8);
  splitter_->setStretchFactor(0, treeStretch);
  splitter_->setStretchFactor(1, stackStretch);
  splitter_->setContentsMargins(0, 0, 0, 0);
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(splitter_);
}

NavigationPage::~NavigationPage() = default;

void NavigationPage::followTree() {
  disconnect(following_);
  if (tree_->selectionModel() == nullptr) return;
  // Not the current row: the focus alone makes a row current, and selects none.
  following_ = connect(tree_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
                       [this](const QItemSelection& selected) {
                         const QModelIndexList rows = selected.indexes();  // without disabled ones
                         if (!choosing_ && !rows.isEmpty()) navigationViewRowChanged(rows.first());
                       });
}

void NavigationPage::activate() {
  active_ = true;
  tree_->doItemsLayout();  // rows measured before the page was in a window know no style sheet
  QItemSelectionModel* selection = tree_->selectionModel();
  if (selection != nullptr && !selection->hasSelection()) {
    const QModelIndex first = tree_->model()->index(0, 0);
    if (first.isValid()) {
      choosing_ = true;  // the view on top is activated below, once
      selection->setCurrentIndex(first,
                                 QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
      choosing_ = false;
      showFirst(first);
    }
  }
  if (abst::BaseView* top = topView()) top->activate();
}

void NavigationPage::deactivate() {
  active_ = false;
  if (abst::BaseView* top = topView()) top->deactivate();
}

void NavigationPage::navigationViewRowChanged(const QModelIndex& index) {
  const std::string name =
      index.sibling(index.row(), 0).data(Qt::DisplayRole).toString().toStdString();
  abst::BaseView* next = subView(name);
  if (next == nullptr) return;
  if (abst::BaseView* top = topView()) top->deactivate();
  stack_->setCurrentWidget(views_.at(name));
  next->activate();
}

void NavigationPage::addSubView(abst::BaseView* view) {
  const auto* widget = dynamic_cast<QWidget*>(view);
  addSubView(widget != nullptr ? widget->windowTitle().toStdString() : std::string(), view);
}

void NavigationPage::addSubView(abst::SubDocTabView* view, const std::string& key) {
  addSubView(key.empty() && view != nullptr ? view->tabTitle() : key,
             static_cast<abst::BaseView*>(view));
}

void NavigationPage::addSubView(const std::string& name, abst::BaseView* view) {
  auto* widget = dynamic_cast<QWidget*>(view);
  if (widget == nullptr || subView(name) != nullptr) {
    base::LogError(widget == nullptr ? "a sub-view is no widget"
                                     : "there is a sub-view already under the name " + name);
    return;
  }
  stack_->addWidget(widget);
  views_[name] = widget;
}

abst::BaseView* NavigationPage::subView(const std::string& name) const {
  const auto found = views_.find(name);
  return found != views_.end() ? dynamic_cast<abst::BaseView*>(found->second.data()) : nullptr;
}

bool NavigationPage::removeSubView(abst::BaseView* view) {
  auto* widget = dynamic_cast<QWidget*>(view);
  const auto found = std::find_if(views_.begin(), views_.end(), [widget](const auto& entry) {
    return widget != nullptr && entry.second == widget;
  });
  if (found == views_.end()) return false;
  const bool shown = widget == stack_->currentWidget();
  if (shown && active_) view->deactivate();
  views_.erase(found);
  stack_->removeWidget(widget);
  if (shown && active_) {
    if (abst::BaseView* top = topView()) top->activate();
  }
  return true;
}

void NavigationPage::updateView() {
  tree_->viewport()->update();
  if (abst::BaseView* top = topView()) top->updateView();
}

abst::BaseView* NavigationPage::topView() const {
  return dynamic_cast<abst::BaseView*>(stack_->currentWidget());
}

}  // namespace gui::qce
