#include "host/presentation/res_item_view.h"

#include <QActionGroup>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "host/abst/base_model.h"
#include "host/app/services.h"
#include "host/bwidgets/grid_header.h"
#include "host/bwidgets/grid_sheet.h"
#include "host/domain/field_keys.h"
#include "host/gui/styled_item_delegate.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "host/presentation/column_menu.h"
#include "host/presentation/res_item_filter_model.h"

namespace gui {

ResItemViewImpl::ResItemViewImpl(QWidget* parent) : BasePage(parent) {}
ResItemViewImpl::~ResItemViewImpl() = default;

void ResItemViewImpl::init() {
  treeGrid_ = createTableGridView();
  treeGrid_->setItemDelegate(createDelegate());
  treeGrid_->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(treeGrid_, &QWidget::customContextMenuRequested, this, &ResItemViewImpl::showContextMenu);
  connect(treeGrid_, &bwidgets::TreeGridView::currentElementChanged, this,
          [this] { onCurrentRowChanged(); });
  setGrid(treeGrid_, domain::keys::BRIName, domain::keys::BRICode);
  createColumnMenu();

  auto* toolBar = new QHBoxLayout;
  toolBar->setContentsMargins(6, 4, 6, 4);
  toolBar->setSpacing(4);
  if (hasTextFilter()) toolBar->addWidget(createTextFilter());
  fillToolBar(toolBar);
  toolBar->addStretch();

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addLayout(toolBar);
  layout->addWidget(createContent(treeGrid_), 1);
  if (QWidget* footer = createFooter()) layout->addWidget(footer);
}

gui::TreeGridView* ResItemViewImpl::createTableGridView() {
  return new gui::TreeGridView(this);
}

gui::StyledItemDelegate* ResItemViewImpl::createDelegate() {
  return new gui::StyledItemDelegate(treeGrid_);
}

QWidget* ResItemViewImpl::createContent(gui::TreeGridView* grid) {
  return grid;
}

void ResItemViewImpl::setModel(abst::BaseModel* model) {
  BasePage::setModel(model);
  textFilter_ = dynamic_cast<ResItemTextFilter*>(abstractModel());
  if (textFilter_ != nullptr) hideKeptColumns();
  if (abstractModel() == nullptr) return;
  wasEmpty_ = treeGrid_->model()->rowCount() == 0;
  expandAll();
}

// The grid keeps open what was open; a model that was empty had nothing to keep.
void ResItemViewImpl::onModelReset() {
  if (wasEmpty_) expandAll();
  wasEmpty_ = treeGrid_->model()->rowCount() == 0;
  updateView();
}

// ---------------------------------------------------------------------------------------------
// Columns

void ResItemViewImpl::createColumnMenu() {
  ColumnMenu::Columns columns;
  columns.table = [this] {
    return textFilter_ != nullptr ? abstractModel()->getDisplayTable() : nullptr;
  };
  columns.isShown = [this](const domain::ColumnDescriptor& column) {
    return column.visible.value_or(true) && textFilter_->blackList().count(column.key) == 0;
  };
  columns.show = [this](const std::string& key, bool show) { showColumn(key, show); };
  columns.fixed = {domain::keys::BRICode, domain::keys::BRIName};
  columnMenu_ = new ColumnMenu(std::move(columns), this);
  columnMenu_->setObjectName("ResItem_columns");
  treeGrid_->gridHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(treeGrid_->gridHeader(), &QWidget::customContextMenuRequested, this,
          [this](const QPoint& at) {
            columnMenu_->popup(treeGrid_->gridHeader()->viewport()->mapToGlobal(at));
          });
}

void ResItemViewImpl::hideKeptColumns() {
  const QString kept =
      QString::fromStdString(app::GetGlobalConfig()->getValue(columnSetting()).value_or(""));
  std::set<std::string> keys;
  for (const QString& key : kept.split(',', Qt::SkipEmptyParts)) keys.insert(key.toStdString());
  hideColumns(keys);
}

void ResItemViewImpl::showColumn(const std::string& key, bool show) {
  if (textFilter_ == nullptr) return;
  std::set<std::string> keys = textFilter_->blackList();
  if (show) {
    keys.erase(key);
  } else {
    keys.insert(key);
  }
  hideColumns(keys);
  QStringList kept;
  for (const std::string& each : keys) kept << QString::fromStdString(each);
  app::GetGlobalConfig()->setValue(columnSetting(), kept.join(',').toStdString());
}

void ResItemViewImpl::hideColumns(const std::set<std::string>& keys) {
  if (keys == textFilter_->blackList()) return;
  textFilter_->blackListOfColumn(keys);
  const auto* columns = dynamic_cast<const ViewModel*>(abstractModel());
  if (columns == nullptr) return;
  treeGrid_->gridHeader()->readGroups();
  treeGrid_->setTreePosition(std::max(0, columns->getColumnIndex(domain::keys::BRIName)));
  treeGrid_->setFrozenColumnCount(
      frozenColumnCount(*columns, domain::keys::BRIName, domain::keys::BRICode));
  treeGrid_->applyDefaultColumnWidths();
}

std::string ResItemViewImpl::columnSetting() const {
  const domain::DisplayTable* table = abstractModel()->getDisplayTable();
  return table != nullptr ? table->name() + "_hiddenColumns" : std::string();
}

// ---------------------------------------------------------------------------------------------
// Filter

QWidget* ResItemViewImpl::createTextFilter() {
  auto* box = new QWidget(this);
  auto* menu = new QMenu(box);
  types_ = new QActionGroup(menu);
  for (const char* type : {"人工", "材料", "机械", "主材", "设备", "所有"}) {
    QAction* action = menu->addAction(type);
    action->setCheckable(true);
    types_->addAction(action);
  }
  types_->actions().last()->setChecked(true);
  menu->setActiveAction(types_->actions().last());
  connect(types_, &QActionGroup::triggered, this, &ResItemViewImpl::applyTextFilter);

  auto* typeButton = new QPushButton("筛选条件", box);
  typeButton->setObjectName("ResItem_filterRCJButton");
  typeButton->setMenu(menu);
  typeButton->setStyleSheet(
      "QPushButton::menu-indicator:image{subcontrol-origin: margin;subcontrol-position: right "
      "center;margin-right: 5px;}");
  textEdit_ = new QLineEdit(box);
  textEdit_->setObjectName("ResItem_filterText");
  textEdit_->setPlaceholderText("输入内容");
  textEdit_->setClearButtonEnabled(true);
  connect(textEdit_, &QLineEdit::returnPressed, this, &ResItemViewImpl::applyTextFilter);
  connect(textEdit_, &QLineEdit::textChanged, this, [this](const QString& text) {
    if (text.isEmpty()) applyTextFilter();
  });
  auto* filterButton = new QPushButton("过滤", box);
  filterButton->setFlat(true);
  filterButton->setFixedWidth(40);
  connect(filterButton, &QPushButton::clicked, this, &ResItemViewImpl::applyTextFilter);

  auto* layout = new QHBoxLayout(box);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(typeButton);
  layout->addWidget(textEdit_);
  layout->addWidget(filterButton);
  return box;
}

void ResItemViewImpl::applyTextFilter() {
  if (textFilter_ != nullptr) {
    textFilter_->filterType(types_->checkedAction()->text().toStdString());
    textFilter_->filter(textEdit_->text().toStdString());
  }
  expandAll();
  updateView();  // also what is selected may be less
}

bool ResItemViewImpl::isTextFiltered() const {
  return !textEdit_->text().isEmpty() || types_->checkedAction() != types_->actions().last();
}

void ResItemViewImpl::clearTextFilter() {
  const QSignalBlocker blocker(textEdit_);
  textEdit_->clear();
  types_->actions().last()->setChecked(true);
  if (textFilter_ == nullptr) return;
  textFilter_->filterType({});
  textFilter_->filter({});
  updateView();
}

void ResItemViewImpl::find() {
  treeGrid_->openSearchBox();
}

void ResItemViewImpl::exportExcel() {
  bwidgets::exportSheet(*treeGrid_, tabTitle());
}

void ResItemViewImpl::expandAll() {
  treeGrid_->expandAll();
}

void ResItemViewImpl::collapseAll() {
  treeGrid_->collapseAll();
}

void ResItemViewImpl::fillContextMenu(QMenu* menu) {
  menu->addAction("查找\tCtrl+F", this, &ResItemViewImpl::find);
  menu->addAction("导出Excel\tCtrl+E", this, &ResItemViewImpl::exportExcel);
  menu->addAction("全部展开", this, &ResItemViewImpl::expandAll);
  menu->addAction("全部折叠", this, &ResItemViewImpl::collapseAll);
  menu->addMenu(columnMenu_);
}

void ResItemViewImpl::showContextMenu(const QPoint& position) {
  auto* menu = new QMenu(this);
  menu->setObjectName("ResItem_contextMenu");
  menu->setAttribute(Qt::WA_DeleteOnClose);
  fillContextMenu(menu);
  menu->popup(treeGrid_->viewport()->mapToGlobal(position));
}

// Keys and not shortcuts: a main window may have commands of its own under the same keys.
void ResItemViewImpl::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Find)) {
    find();
    return;
  }
  if (event->key() == Qt::Key_E && event->modifiers() == Qt::ControlModifier) {
    exportExcel();
    return;
  }
  BasePage::keyPressEvent(event);
}

}  // namespace gui
