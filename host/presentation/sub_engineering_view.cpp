#include "host/presentation/sub_engineering_view.h"

#include <QAction>
#include <QComboBox>
#include <QFormLayout>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QSplitter>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "framework/commands.h"
#include "framework/delay.h"
#include "host/app/scoped_undo.h"
#include "host/app/services.h"
#include "host/bwidgets/dialog.h"
#include "host/bwidgets/grid_header.h"
#include "host/bwidgets/grid_sheet.h"
#include "host/domain/display_table.h"
#include "host/domain/field_keys.h"
#include "host/domain/sub_engineering_operator.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "host/presentation/column_menu.h"
#include "host/presentation/quantity_detail_dialog.h"
#include "host/presentation/sub_engineering_delegate.h"

namespace gui {
namespace {

int rowsBelow(const QAbstractItemModel& model, const QModelIndex& parent) {
  const int rows = model.rowCount(parent);
  int count = rows;
  for (int row = 0; row < rows; ++row) {
    const QModelIndex index = model.index(row, 0, parent);
    if (model.hasChildren(index)) count += rowsBelow(model, index);
  }
  return count;
}

}  // namespace

SubEngineeringViewImpl::SubEngineeringViewImpl(QWidget* parent) : BasePage(parent) {
  refreshTimer_ = makeDelay(this, 0, [this] {
    refreshActions();
    refreshStatus();
  });
}

SubEngineeringViewImpl::~SubEngineeringViewImpl() = default;

std::string SubEngineeringViewImpl::getSECodeKey() {
  return "SECode";
}
std::string SubEngineeringViewImpl::getSENameKey() {
  return "SEName";
}
std::string SubEngineeringViewImpl::getSEQuantityKey() {
  return "SEQuantity";
}
std::string SubEngineeringViewImpl::getSEUnitKey() {
  return "SEUnit";
}

// ---------------------------------------------------------------------------------------------
// Widgets

void SubEngineeringViewImpl::init() {
  treeGrid_ = createTableGridView();
  SubEngineeringDelegate* delegate = createSubEngineeringDelege();
  delegate->setParent(treeGrid_);
  treeGrid_->setItemDelegate(delegate);
  treeGrid_->setContextMenuPolicy(Qt::CustomContextMenu);
  treeGrid_->installEventFilter(this);
  connect(treeGrid_, &QWidget::customContextMenuRequested, this,
          &SubEngineeringViewImpl::showContextMenu);
  connect(treeGrid_, &gui::TreeGridView::deletePressed, this, [this] { keyDeleteAction(); });
  setGrid(treeGrid_, getSENameKey(), getSECodeKey());
  createActions();

  subProjectBox_ = new SubProjectBox(this);
  subProjectBox_->setObjectName("SubEngineering_subProject");
  connect(subProjectBox_, QOverload<int>::of(&QComboBox::activated), this,
          &SubEngineeringViewImpl::chooseSubProject);

  ColumnMenu::Columns columns;
  columns.table = [this] { return filter_ != nullptr ? filter_->getDisplayTable() : nullptr; };
  columns.isShown = [this](const domain::ColumnDescriptor& column) {
    return isColumnShown(column);
  };
  columns.show = [this](const std::string& key, bool shown) { showColumn(key, shown); };
  columns.fixed = {getSECodeKey(), getSENameKey()};
  auto* columnMenu = new ColumnMenu(std::move(columns), this);
  columnMenu->setObjectName("SubEngineering_columns");
  auto* columnButton = new QToolButton(this);
  columnButton->setText("列设置");
  columnButton->setToolTip("选择要显示的列");
  columnButton->setPopupMode(QToolButton::InstantPopup);
  columnButton->setMenu(columnMenu);
  columnButton->setAutoRaise(true);
  auto* findButton = new QToolButton(this);
  findButton->setText("查找");
  findButton->setToolTip("在表格中查找，可输入拼音首字母（Ctrl+F）");
  findButton->setAutoRaise(true);
  connect(findButton, &QToolButton::clicked, this, &SubEngineeringViewImpl::find);
  auto* exportButton = new QToolButton(this);
  exportButton->setText("导出Excel");
  exportButton->setToolTip("把表格按所见导出为电子表格（Ctrl+E）");
  exportButton->setAutoRaise(true);
  connect(exportButton, &QToolButton::clicked, this, [this] { exportExcel(); });

  // In a narrow window it keeps what does not fit behind an arrow.
  auto* toolBar = new QToolBar(this);
  toolBar->setToolButtonStyle(Qt::ToolButtonTextOnly);
  toolBar->addWidget(new QLabel(" 范围: ", toolBar));
  toolBar->addWidget(subProjectBox_);
  toolBar->addSeparator();
  toolBar->addAction(showResAction_);
  toolBar->addAction(detailAction_);
  toolBar->addAction(batchTypeAction_);
  fillToolBar(toolBar);
  toolBar->addWidget(columnButton);
  toolBar->addWidget(findButton);
  toolBar->addWidget(exportButton);

  splitter_ = new QSplitter(this);
  splitter_->setHandleWidth(8);
  splitter_->setChildrenCollapsible(false);
  splitter_->addWidget(treeGrid_);
  splitter_->setStretchFactor(0, 1);

  status_ = new QLabel(this);
  status_->setObjectName("SubEngineering_status");
  status_->setContentsMargins(6, 3, 6, 3);
  status_->setTextInteractionFlags(Qt::TextSelectableByMouse);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(toolBar);
  layout->addWidget(splitter_, 1);
  layout->addWidget(status_);
  refreshActions();
}

gui::TreeGridView* SubEngineeringViewImpl::createTableGridView() {
  return new gui::TreeGridView(this);
}

gui::SubEngineeringDelegate* SubEngineeringViewImpl::createSubEngineeringDelege() {
  return new gui::SubEngineeringDelegate(nullptr);
}

void SubEngineeringViewImpl::createActions() {
  showResAction_ =
      addCommand(this, "显示工料机", "显示或隐藏清单下的工料机", {QKeySequence("Ctrl+R")});
  showResAction_->setCheckable(true);
  showResAction_->setChecked(true);
  connect(showResAction_, &QAction::toggled, this, [this](bool show) {
    if (filter_ == nullptr) return;
    filter_->setShowRes(show);
    rowsChanged();
  });
  detailAction_ = addCommand(this, "工程量明细", "用多行计算式计算当前清单的成本工程量",
                             {QKeySequence("Ctrl+D")});
  connect(detailAction_, &QAction::triggered, this, [this] { showQuantityDetailDialog(); });
  batchTypeAction_ =
      addCommand(this, "批量设置类型", "为选中的清单设置同一个类型", {QKeySequence("Ctrl+T")});
  connect(batchTypeAction_, &QAction::triggered, this, &SubEngineeringViewImpl::batchSetType);
}

void SubEngineeringViewImpl::fillContextMenu(QMenu* menu) {
  menu->addAction("复制\tCtrl+C", treeGrid_, &gui::TreeGridView::copySelection);
  menu->addAction("粘贴\tCtrl+V", this, [this] { pasteCellContents(); });
  menu->addAction("清除内容\tDelete", this, [this] { keyDeleteAction(); });
  menu->addSeparator();
  menu->addAction(detailAction_);
  menu->addAction(batchTypeAction_);
  menu->addSeparator();
  menu->addAction(showResAction_);
  menu->addSeparator();
  menu->addAction("查找\tCtrl+F", this, &SubEngineeringViewImpl::find);
  menu->addAction("导出Excel\tCtrl+E", this, [this] { exportExcel(); });
  menu->addAction("全部展开", this, &SubEngineeringViewImpl::expandAll);
  menu->addAction("展开到清单", this, &SubEngineeringViewImpl::expandBills);
  menu->addAction("全部折叠", treeGrid_, &gui::TreeGridView::collapseAll);
}

void SubEngineeringViewImpl::showContextMenu(const QPoint& position) {
  auto* menu = new QMenu(this);
  menu->setObjectName("SubEngineering_contextMenu");
  menu->setAttribute(Qt::WA_DeleteOnClose);
  refreshActions();
  fillContextMenu(menu);
  menu->popup(treeGrid_->viewport()->mapToGlobal(position));
}

// ---------------------------------------------------------------------------------------------
// Life cycle

void SubEngineeringViewImpl::setModel(abst::BaseModel* model) {
  BasePage::setModel(model);
  filter_ = dynamic_cast<abst::SubEngineeringFilterModel*>(abstractModel());
  if (filter_ != nullptr) showResAction_->setChecked(filter_->isShowRes());
  if (treeGrid_->model() == nullptr) return;
  // The order of the bills is the tender's, and that of the file: it is not the view's to change.
  treeGrid_->gridHeader()->setSectionsClickable(false);
  treeGrid_->gridHeader()->setSortIndicatorShown(false);
  if (const auto* columns = dynamic_cast<const ViewModel*>(abstractModel())) {
    treeGrid_->setTreePosition(columns->getColumnIndex(getSENameKey()));
  }
  connect(treeGrid_->selectionModel(), &QItemSelectionModel::selectionChanged, refreshTimer_,
          QOverload<>::of(&QTimer::start));
  connect(treeGrid_->selectionModel(), &QItemSelectionModel::currentChanged, refreshTimer_,
          QOverload<>::of(&QTimer::start));
  refillSubProjects();
  expandBills();
  wasEmpty_ = treeGrid_->model()->rowCount() == 0;
  rowsChanged();
}

void SubEngineeringViewImpl::activate() {
  BasePage::activate();
  refillSubProjects();
  updateView();
}

void SubEngineeringViewImpl::updateView() {
  BasePage::updateView();
  refreshTimer_->start();
}

void SubEngineeringViewImpl::onModelReset() {
  if (wasEmpty_) expandBills();
  wasEmpty_ = treeGrid_->model()->rowCount() == 0;
  refillSubProjects();
  rowsChanged();
}

void SubEngineeringViewImpl::onDataChanged() {
  updateView();
}

void SubEngineeringViewImpl::updateColumnWidth() {
  treeGrid_->applyDefaultColumnWidths();
}

bool SubEngineeringViewImpl::updateTreeHeader() {
  const auto* columns = dynamic_cast<const ViewModel*>(treeGrid_->model());
  if (columns == nullptr) return false;
  treeGrid_->gridHeader()->readGroups();
  treeGrid_->setTreePosition(std::max(0, columns->getColumnIndex(getSENameKey())));
  updateColumnWidth();
  treeGrid_->gridHeader()->viewport()->update();
  return true;
}

// ---------------------------------------------------------------------------------------------
// What is shown

domain::SubEngineeringOperator* SubEngineeringViewImpl::subEngineeringOperator() const {
  return filter_ != nullptr ? dynamic_cast<domain::SubEngineeringOperator*>(filter_->getOperator())
                            : nullptr;
}

void SubEngineeringViewImpl::refillSubProjects() {
  const auto* op = subEngineeringOperator();
  const bool still =
      subProjectBox_->refill(op != nullptr ? op->getSubProjects() : SubProjectBox::SubProjects());
  if (!still) chooseSubProject();
}

void SubEngineeringViewImpl::chooseSubProject() {
  if (filter_ == nullptr) return;
  filter_->setSubProject(subProjectBox_->chosen());
  expandBills();
  rowsChanged();
}

void SubEngineeringViewImpl::showElements(const std::vector<proxy::Element*>& elements) {
  if (subProjectBox_->currentIndex() > 0) {
    subProjectBox_->setCurrentIndex(0);
    chooseSubProject();
  }
  treeGrid_->selectElements(elements);
  treeGrid_->setFocus();
}

bool SubEngineeringViewImpl::isColumnShown(const domain::ColumnDescriptor& column) const {
  const std::map<std::string, bool>& map = filter_->getFilterMap();
  if (map.empty()) return column.visible.value_or(true);
  const auto found = map.find(column.key);
  return found != map.end() && found->second;
}

void SubEngineeringViewImpl::showColumn(const std::string& key, bool show) {
  const domain::DisplayTable* table = filter_ != nullptr ? filter_->getDisplayTable() : nullptr;
  if (table == nullptr) return;
  std::map<std::string, bool> map = filter_->getFilterMap();
  if (map.empty()) {
    const domain::DisplayRow& header = *table->getHeader();
    for (int number = 0; number < header.columnCount(); ++number) {
      map[header.column(number)->key] = header.column(number)->visible.value_or(true);
    }
  }
  map[key] = show;
  filter_->setFilterMap(map);
  updateTreeHeader();
}

void SubEngineeringViewImpl::find() {
  treeGrid_->openSearchBox();
}

void SubEngineeringViewImpl::exportExcel() {
  bwidgets::exportSheet(*treeGrid_, exportName_.empty() ? tabTitle() : exportName_);
}

void SubEngineeringViewImpl::setExportExcelName(std::string name) {
  exportName_ = std::move(name);
}

void SubEngineeringViewImpl::expandAll() {
  treeGrid_->expandAll();
}

void SubEngineeringViewImpl::expandBills() {
  if (treeGrid_->model() == nullptr) return;
  treeGrid_->collapseAll();
  expandAboveResources({});
}

void SubEngineeringViewImpl::expandAboveResources(const QModelIndex& parent) {
  const QAbstractItemModel& model = *treeGrid_->model();
  const auto* bills = dynamic_cast<const abst::SubEngineeringBase*>(abstractModel());
  for (int row = 0; row < model.rowCount(parent); ++row) {
    const QModelIndex index = model.index(row, 0, parent);
    const QModelIndex first = model.index(0, 0, index);
    if (!first.isValid()) continue;
    if (bills != nullptr && bills->isResourceRow(treeGrid_->elementAt(first))) continue;
    treeGrid_->setExpanded(index, true);
    expandAboveResources(index);
  }
}

proxy::Element* SubEngineeringViewImpl::setCurrentIndexFromFind(proxy::Element* element) {
  if (element == nullptr) return nullptr;
  treeGrid_->selectElements({element});
  return treeGrid_->currentElement() == element ? element : nullptr;
}

// ---------------------------------------------------------------------------------------------
// Commands

void SubEngineeringViewImpl::keyDeleteAction() {
  treeGrid_->clearSelectedCells();
}

void SubEngineeringViewImpl::pasteCellContents() {
  treeGrid_->paste();
}

std::vector<QModelIndex> SubEngineeringViewImpl::selectedCellsOf(const std::string& key) const {
  std::vector<QModelIndex> cells;
  const ViewModel* columns = treeGrid_->viewModel();
  const int column = columns != nullptr ? columns->getColumnIndex(key) : -1;
  if (column < 0) return cells;
  for (proxy::Element* element : treeGrid_->selectedElements()) {
    const QModelIndex cell = columns->makeIndex(element, column);
    if (cell.flags().testFlag(Qt::ItemIsEditable)) cells.push_back(cell);
  }
  return cells;
}

bool SubEngineeringViewImpl::popUpPLSetZBType(std::string& type) const {
  const auto* op = subEngineeringOperator();
  if (op == nullptr) return false;
  bwidgets::Dialog dialog(const_cast<SubEngineeringViewImpl*>(this));
  dialog.setObjectName("BatchTypeDialog");
  dialog.setWindowTitle("批量设置类型");
  auto* box = new QComboBox(&dialog);
  box->setObjectName("BatchType_type");
  for (const std::string& name : op->getTypes()) box->addItem(QString::fromStdString(name));
  box->setCurrentIndex(std::max(0, box->findText(QString::fromStdString(type))));
  auto* form = new QFormLayout;
  form->addRow(QString("选中 %1 条清单，类型:").arg(selectedCellsOf(domain::keys::SEType).size()),
               box);
  auto* layout = new QVBoxLayout(&dialog);
  layout->addLayout(form);
  layout->addWidget(dialog.createButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel));
  dialog.setMinimumWidth(320);
  if (dialog.exec() != 1 || box->currentIndex() < 0) return false;
  type = box->currentText().toStdString();
  return true;
}

void SubEngineeringViewImpl::batchSetType() {
  const std::vector<QModelIndex> cells = selectedCellsOf(domain::keys::SEType);
  if (cells.empty()) return;
  std::string type = cells.front().data(Qt::EditRole).toString().toStdString();
  if (!popUpPLSetZBType(type)) return;
  QString refused;
  {
    app::ScopedUndo undo("批量设置类型");
    for (const QModelIndex& cell : cells) {
      if (treeGrid_->model()->setData(cell, QString::fromStdString(type), Qt::EditRole)) continue;
      refused = cellText(treeGrid_->elementAt(cell), getSENameKey());
      undo.abandon();
      break;
    }
  }
  updateView();
  if (refused.isEmpty()) return;
  const QString text = QString("“%1”的类型不能修改，本次批量设置已全部取消。").arg(refused);
  app::qce::GetQCEChannel()->message(text.toStdString(), QMessageBox::Ok);
}

QString SubEngineeringViewImpl::cellText(proxy::Element* element, const std::string& key) const {
  const ViewModel* columns = treeGrid_->viewModel();
  const int column = columns != nullptr ? columns->getColumnIndex(key) : -1;
  return column >= 0 ? columns->makeIndex(element, column).data().toString() : QString();
}

bool SubEngineeringViewImpl::getQuantityDetailDialogState() const {
  return detailDialog_ != nullptr && detailDialog_->isVisible();
}

void SubEngineeringViewImpl::showQuantityDetailDialog() {
  if (getQuantityDetailDialogState()) {
    detailDialog_->raise();
    return;
  }
  auto* op = subEngineeringOperator();
  const scoped_refptr<proxy::Element> bill(treeGrid_->currentElement());
  domain::QuantityLines lines;
  if (op == nullptr || !bill || !op->getQuantityDetail(bill.get(), lines)) return;
  // A quantity that is calculated already is gone on with.
  const QString expression = cellText(bill.get(), domain::keys::SECalcExpr).trimmed();
  if (lines.empty() && !expression.isEmpty()) lines.push_back({{}, expression.toStdString()});
  const QString title =
      cellText(bill.get(), getSECodeKey()) + " " + cellText(bill.get(), getSENameKey());
  // The operator is asked for anew each time: the page may get another model meanwhile.
  const auto evaluate = [this, bill](const std::string& text, double& value, std::string& error) {
    const auto* now = subEngineeringOperator();
    return now != nullptr && now->evaluate(bill.get(), text, value, error);
  };
  const auto apply = [this, bill](const domain::QuantityLines& made) {
    auto* now = subEngineeringOperator();
    const app::ScopedUndo undo("工程量明细");
    return now != nullptr && now->setQuantityDetail(bill.get(), made);
  };
  detailDialog_ = new QuantityDetailDialog(title.trimmed(), cellText(bill.get(), getSEUnitKey()),
                                           lines, evaluate, apply, this);
  detailDialog_->setAttribute(Qt::WA_DeleteOnClose);
  detailDialog_->open();
}

bool SubEngineeringViewImpl::useDetailCalc(std::map<std::string, bool>& fields) {
  const auto* op = subEngineeringOperator();
  const proxy::Element* bill = treeGrid_->currentElement();
  domain::QuantityLines lines;
  const bool detailed =
      op != nullptr && bill != nullptr && op->getQuantityDetail(bill, lines) && !lines.empty();
  if (fields.empty()) fields[getSEQuantityKey()] = false;
  bool any = false;
  for (auto& [key, used] : fields) {
    used = detailed && key == getSEQuantityKey();
    any = any || used;
  }
  return any;
}

// ---------------------------------------------------------------------------------------------
// State

void SubEngineeringViewImpl::rowsChanged() {
  shownRows_ = -1;
  updateView();
}

void SubEngineeringViewImpl::refreshActions() {
  const auto* op = subEngineeringOperator();
  domain::QuantityLines lines;
  proxy::Element* current = treeGrid_->currentElement();
  detailAction_->setEnabled(op != nullptr && current != nullptr &&
                            op->getQuantityDetail(current, lines));
  batchTypeAction_->setEnabled(!selectedCellsOf(domain::keys::SEType).empty());
}

void SubEngineeringViewImpl::refreshStatus() {
  if (treeGrid_->model() == nullptr) {
    status_->clear();
    return;
  }
  // Only what changes the rows makes them be counted again: there may be very many.
  if (shownRows_ < 0) shownRows_ = rowsBelow(*treeGrid_->model(), {});
  status_->setText(QString("显示 %1 行%2　　已选 %3 行")
                       .arg(shownRows_)
                       .arg(statusNote())
                       .arg(treeGrid_->selectedElements().size()));
}

// Keys and not shortcuts: a main window may have commands of its own under the same keys.
void SubEngineeringViewImpl::keyPressEvent(QKeyEvent* event) {
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

// The grid would paste by itself; the page has the say.
bool SubEngineeringViewImpl::eventFilter(QObject* watched, QEvent* event) {
  if (watched == treeGrid_ && event->type() == QEvent::KeyPress &&
      static_cast<QKeyEvent*>(event)->matches(QKeySequence::Paste)) {
    pasteCellContents();
    return true;
  }
  return BasePage::eventFilter(watched, event);
}

}  // namespace gui
