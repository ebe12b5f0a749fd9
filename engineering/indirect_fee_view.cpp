#include "engineering/indirect_fee_view.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenu>
#include <QMouseEvent>
#include <QSplitter>

#include "host/abst/qce/indirect_fee_controller.h"
#include "host/abst/qce/indirect_fee_left_model.h"
#include "host/abst/qce/indirect_fee_right_model.h"
#include "host/app/services.h"
#include "host/app/spreadsheet.h"
#include "host/base/log.h"
#include "host/bwidgets/grid_header.h"
#include "host/bwidgets/grid_sheet.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/styled_item_delegate.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "host/proxy/element.h"

namespace gui::qce {

namespace {

constexpr int FirstSizedColumn = 2;
constexpr int ColumnMargin = 20;

QModelIndex firstEnabled(const QAbstractItemModel& model, const QModelIndex& parent = {}) {
  for (int row = 0; row < model.rowCount(parent); ++row) {
    const QModelIndex index = model.index(row, 0, parent);
    if (model.flags(index).testFlag(Qt::ItemIsEnabled)) return index;
    const QModelIndex below = firstEnabled(model, index);
    if (below.isValid()) return below;
  }
  return {};
}

}  // namespace

QCEIndirectFeeViewImpl::QCEIndirectFeeViewImpl(QWidget* parent) : BasePage(parent) {
  setWindowTitle("间接费");
  splitter_ = new QSplitter(Qt::Horizontal, this);
  splitter_->setHandleWidth(8);
  splitter_->setContentsMargins(0, 0, 0, 0);
  splitter_->setChildrenCollapsible(false);
  leftTree_ = new gui::TreeGridView(splitter_);
  leftTree_->setObjectName("QCEIndirectFeeTreeView");
  leftTree_->setItemDelegate(new gui::StyledItemDelegate(leftTree_));
  leftTree_->setSelectionBehavior(QAbstractItemView::SelectRows);
  leftTree_->setMinimumWidth(345);
  leftTree_->viewport()->installEventFilter(this);
  leftTree_->setEmptyText("工程没有间接费");
  rightTable_ = new bwidgets::TableView(splitter_);
  rightTable_->setObjectName("QCEIndirectFeeTableView");
  rightTable_->setEmptyText("请在左侧选择费用组");
  rightTable_->setContextMenuPolicy(Qt::CustomContextMenu);
  splitter_->addWidget(leftTree_);
  splitter_->addWidget(rightTable_);
  splitter_->setStretchFactor(0, 20);
  splitter_->setStretchFactor(1, 80);
  splitter_->setSizes({1000, 8000});
  auto* layout = new QHBoxLayout(this);
  layout->setMargin(0);
  layout->addWidget(splitter_);

  setGrid(rightTable_, domain::keys::IFName, domain::keys::IFCode);
  createActions();
  connect(rightTable_, &QWidget::customContextMenuRequested, this,
          &QCEIndirectFeeViewImpl::showContextMenu);
  connect(leftTree_, &gui::TreeGridView::currentElementChanged, this,
          &QCEIndirectFeeViewImpl::onLeftCurrentRowChanged);
}

QCEIndirectFeeViewImpl::~QCEIndirectFeeViewImpl() = default;

void QCEIndirectFeeViewImpl::createActions() {
  const auto add = [this](const char* text, const QKeySequence& keys,
                          void (QCEIndirectFeeViewImpl::*slot)()) {
    auto* action = new QAction(text, this);
    action->setShortcut(keys);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(action, &QAction::triggered, this, slot);
    addAction(action);
    return action;
  };
  addAction_ = add("新增费用项", QKeySequence(Qt::Key_Insert), &QCEIndirectFeeViewImpl::addItem);
  removeAction_ = add("删除费用项", QKeySequence(int(Qt::CTRL) | Qt::Key_Delete),
                      &QCEIndirectFeeViewImpl::removeItems);
  // Hosts export the current page with a key of their own.
  exportAction_ = add("导出到表格", {}, &QCEIndirectFeeViewImpl::exportExcel);
  refreshActions();
}

void QCEIndirectFeeViewImpl::setModel(abst::BaseModel* model) {
  BasePage::setModel(model);
  rightModel_ = dynamic_cast<abst::qce::QCEIndirectFeeRightModel*>(abstractModel());
  if (abstractModel() == nullptr) return;
  // Fee items stand in the order in which they are calculated.
  rightTable_->header()->setSectionsClickable(false);
  rightTable_->header()->setSortIndicatorShown(false);
  connect(rightTable_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &QCEIndirectFeeViewImpl::refreshActions);
  onLeftCurrentRowChanged();
}

void QCEIndirectFeeViewImpl::setLeftModel(abst::qce::QCEIndirectFeeLeftModel* model) {
  auto* items = dynamic_cast<QAbstractItemModel*>(model);
  if (items == nullptr) {
    base::LogError("the indirect fee page was given a left model that it cannot show");
    return;
  }
  leftModel_ = model;
  leftTree_->setModel(items);
  leftTree_->applyDefaultColumnWidths();
  leftTree_->header()->setStretchLastSection(true);
  leftTree_->expandAll();
}

void QCEIndirectFeeViewImpl::setController(abst::qce::QCEIndirectFeeController* controller) {
  controller_ = controller;
  refreshActions();
}

void QCEIndirectFeeViewImpl::activate() {
  BasePage::activate();
  if (leftTree_->model() != nullptr && !leftTree_->currentIndex().isValid()) {
    leftTree_->setCurrentIndex(firstEnabled(*leftTree_->model()));
  }
}

void QCEIndirectFeeViewImpl::updateView() {
  BasePage::updateView();
  leftTree_->viewport()->update();
}

void QCEIndirectFeeViewImpl::onLeftCurrentRowChanged() {
  if (rightModel_ == nullptr) return;
  const QModelIndex current = leftTree_->currentIndex();
  rightModel_->setCaption(current.sibling(current.row(), 0).data().toString().toStdString());
  rightModel_->setParentElement(leftTree_->currentElement());
  const int columns = rightTable_->model()->columnCount();
  for (int column = FirstSizedColumn; column < columns; ++column) sizeColumn(column);
  rightTable_->viewport()->update();
  refreshActions();
}

// A hidden column has no width to widen; it is sized when it is shown.
void QCEIndirectFeeViewImpl::sizeColumn(int column) {
  if (rightTable_->isColumnHidden(column)) return;
  rightTable_->resizeColumnToContents(column);
  rightTable_->setColumnWidth(column, rightTable_->columnWidth(column) + ColumnMargin);
}

void QCEIndirectFeeViewImpl::hideColumns(const std::set<std::string>& keys) {
  const QAbstractItemModel* model = rightTable_->model();
  if (model == nullptr) return;
  for (int column = 0; column < model->columnCount(); ++column) {
    if (!rightTable_->isColumnHidden(column)) continue;
    rightTable_->setColumnHidden(column, false);
    if (column >= FirstSizedColumn) sizeColumn(column);
  }
  const auto* columns = rightTable_->viewModel();
  if (columns == nullptr) return;
  for (const std::string& key : keys) {
    const int column = columns->getColumnIndex(key);
    if (column >= 0) rightTable_->setColumnHidden(column, true);
  }
}

std::vector<proxy::Element*> QCEIndirectFeeViewImpl::getRightTableSelectedElement() const {
  return rightTable_->selectedElements();
}

void QCEIndirectFeeViewImpl::exportExcel() {
  const QModelIndex current = leftTree_->currentIndex();
  const QString name = current.sibling(current.row(), 0).data().toString();
  const std::string file = name.isEmpty() ? "间接费用" : name.toStdString();
  app::Sheet sheet = bwidgets::makeSheet(*rightTable_, file);
  app::AddTotals(
      sheet, "合计",
      {domain::keys::IFBudgetAmount, domain::keys::IFCostAmount, domain::keys::IFDifference});
  app::GetSpreadsheets()->save(file, {sheet});
}

void QCEIndirectFeeViewImpl::addItem() {
  proxy::Element* group = leftTree_->currentElement();
  if (controller_ == nullptr || !controller_->canAddItem(group)) return;
  proxy::Element* item = controller_->addItem(group);
  rightTable_->setFocus();
  if (item == nullptr) return;
  rightTable_->selectElements({item});
  // It is to be named first.
  const auto* columns = rightTable_->viewModel();
  const QModelIndex name = columns->makeIndex(item, columns->getColumnIndex(domain::keys::IFName));
  if (name.isValid()) rightTable_->setCurrentIndex(name);
}

void QCEIndirectFeeViewImpl::removeItems() {
  const std::vector<proxy::Element*> items = getRightTableSelectedElement();
  if (controller_ != nullptr && controller_->canRemoveItems(items)) controller_->removeItems(items);
}

void QCEIndirectFeeViewImpl::onModelReset() {
  BasePage::onModelReset();
  refreshActions();
}

// What follows from an edit stands in other cells, and in the sums on the left.
void QCEIndirectFeeViewImpl::onDataChanged() {
  updateView();
  refreshActions();
}

bool QCEIndirectFeeViewImpl::eventFilter(QObject* watched, QEvent* event) {
  const bool pressed = event->type() == QEvent::MouseButtonPress;
  if (watched == leftTree_->viewport() &&
      (pressed || event->type() == QEvent::MouseButtonDblClick)) {
    const QModelIndex index = leftTree_->indexAt(static_cast<QMouseEvent*>(event)->pos());
    if (index.isValid() && !index.flags().testFlag(Qt::ItemIsEnabled)) {
      const QModelIndex row = index.sibling(index.row(), 0);
      if (pressed) leftTree_->setExpanded(row, !leftTree_->isExpanded(row));
      return true;
    }
  }
  return BasePage::eventFilter(watched, event);
}

void QCEIndirectFeeViewImpl::refreshActions() {
  addAction_->setEnabled(controller_ != nullptr &&
                         controller_->canAddItem(leftTree_->currentElement()));
  removeAction_->setEnabled(controller_ != nullptr && rightTable_->model() != nullptr &&
                            controller_->canRemoveItems(getRightTableSelectedElement()));
  exportAction_->setEnabled(rightTable_->model() != nullptr);
}

void QCEIndirectFeeViewImpl::showContextMenu(const QPoint& at) {
  QMenu menu(this);
  menu.addActions({addAction_, removeAction_});
  menu.addSeparator();
  rightTable_->addEditActions(&menu);
  menu.addSeparator();
  menu.addAction(exportAction_);
  menu.exec(rightTable_->viewport()->mapToGlobal(at));
}

}  // namespace gui::qce
