#include "framework/base_page.h"

#include <QAbstractItemModel>
#include <QStackedWidget>
#include <QTabWidget>
#include <algorithm>
#include <utility>

#include "host/abst/base_model.h"
#include "host/base/log.h"
#include "host/bwidgets/search_box.h"
#include "host/bwidgets/tree_grid_view.h"
#include "host/gui/view_model.h"

namespace gui {

int frozenColumnCount(const ViewModel& model, const std::string& firstKey,
                      const std::string& secondKey) {
  int column = model.getColumnIndex(firstKey);
  if (column <= -1) column = model.getColumnIndex(secondKey);
  return std::max(column + 1, 0);
}

QAbstractItemModel* showInGrid(bwidgets::TreeGridView* grid, abst::BaseModel* model,
                               const std::string& firstKey, const std::string& secondKey) {
  auto* items = dynamic_cast<QAbstractItemModel*>(model);
  if (items == nullptr || grid == nullptr) {
    base::LogError("a page was given a model that it cannot show");
    return nullptr;
  }
  grid->setModel(items);
  grid->applyDefaultColumnWidths();
  grid->applyHeaderSettings();
  grid->initSearchBox();
  if (const auto* viewModel = dynamic_cast<const ViewModel*>(model)) {
    grid->setFrozenColumnCount(frozenColumnCount(*viewModel, firstKey, secondKey));
  }
  return items;
}

BasePage::BasePage(QWidget* parent) : Widget(parent) {}
// An editor that is open commits while the grid goes, when there is no page left to hear of it.
BasePage::~BasePage() {
  for (const QMetaObject::Connection& connection : connections_) disconnect(connection);
}

void BasePage::setModel(abst::BaseModel* model) {
  QAbstractItemModel* items = showInGrid(grid_, model, firstKey_, secondKey_);
  if (items == nullptr) return;
  for (const QMetaObject::Connection& connection : connections_) disconnect(connection);
  model_ = model;
  if (popup_ == nullptr) setPopup(grid_->searchBox());
  connections_ = connectModel(items);
}

void BasePage::activate() {
  active_ = true;
}

void BasePage::deactivate() {
  active_ = false;
  if (popup_ != nullptr) popup_->hide();
  for (int i = 0; i < pageCount(); ++i) {
    if (auto* view = dynamic_cast<abst::BaseView*>(page(i))) view->deactivate();
  }
}

void BasePage::addSubView(abst::BaseView* view) {
  const auto* widget = dynamic_cast<QWidget*>(view);
  addPage(view, {}, widget != nullptr ? widget->windowTitle() : QString());
}

void BasePage::addSubView(const std::string& key, abst::BaseView* view) {
  addPage(view, key, QString::fromStdString(key));
}

void BasePage::addSubView(abst::SubDocTabView* view, const std::string& key) {
  addPage(view, key, view != nullptr ? QString::fromStdString(view->tabTitle()) : QString());
}

void BasePage::addPage(abst::BaseView* view, const std::string& key, const QString& title) {
  auto* widget = dynamic_cast<QWidget*>(view);
  if (widget == nullptr || (tabs_ == nullptr && stack_ == nullptr)) {
    base::LogError("a sub-view is no widget, or the page has no place for sub-views");
    return;
  }
  if (getSubView(key) != nullptr) {
    base::LogError("there is a sub-view already under the key " + key);
    return;
  }
  if (tabs_ != nullptr) {
    tabs_->addTab(widget, title);
  } else {
    stack_->addWidget(widget);
  }
  if (!key.empty()) keyed_[key] = widget;
}

abst::BaseView* BasePage::getSubView(const std::string& key) const {
  const auto found = keyed_.find(key);
  return found != keyed_.end() ? dynamic_cast<abst::BaseView*>(found->second.data()) : nullptr;
}

void BasePage::updateView() {
  if (grid_ != nullptr) grid_->viewport()->update();
}

std::string BasePage::tabTitle() const {
  return windowTitle().toStdString();
}

void BasePage::setGrid(bwidgets::TreeGridView* grid, std::string firstKey, std::string secondKey) {
  grid_ = grid;
  firstKey_ = std::move(firstKey);
  secondKey_ = std::move(secondKey);
}

void BasePage::setPopup(QWidget* popup) {
  popup_ = popup;
}

void BasePage::setSubPages(QTabWidget* pages) {
  tabs_ = pages;
}

void BasePage::setSubPages(QStackedWidget* pages) {
  stack_ = pages;
}

int BasePage::pageCount() const {
  if (tabs_ != nullptr) return tabs_->count();
  return stack_ != nullptr ? stack_->count() : 0;
}

QWidget* BasePage::page(int number) const {
  return tabs_ != nullptr ? tabs_->widget(number) : stack_->widget(number);
}

std::array<QMetaObject::Connection, 2> BasePage::connectModel(QAbstractItemModel* model) {
  return {connect(model, &QAbstractItemModel::modelReset, this, &BasePage::onModelReset),
          connect(model, &QAbstractItemModel::dataChanged, this, &BasePage::onDataChanged)};
}

void BasePage::onModelReset() {
  updateView();
}

void BasePage::onDataChanged() {
  updateView();
}

}  // namespace gui
