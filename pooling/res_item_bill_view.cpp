#include "pooling/res_item_bill_view.h"

#include <QAbstractItemModel>
#include <QAction>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "framework/cell_value.h"
#include "framework/commands.h"
#include "framework/delay.h"
#include "host/app/scoped_undo.h"
#include "host/app/services.h"
#include "host/base/number_text.h"
#include "host/domain/field_keys.h"
#include "host/domain/operator.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "host/presentation/input_dialog.h"
#include "pooling/res_item_bill_delegate.h"
#include "pooling/res_item_bill_dialogs.h"

namespace gui::qce {
namespace {

namespace keys = domain::keys;

constexpr int FollowDelay = 120;  // ms at rest before the rows of another item are asked for
constexpr char HiddenColumnsSetting[] = "QCE_ResItemBill_hiddenColumns";
constexpr char PriceTitle[] = "批量设置分包不含税成本单价";
constexpr char NoItem[] = "请在上方选择一项人材机，这里显示使用它的清单";

QString money(double value) {
  return QString::fromStdString(base::ToThousandthsString(value, 2));
}

}  // namespace

QCEResItemBillViewImpl::QCEResItemBillViewImpl(QWidget* parent) : BasePage(parent) {
  setWindowTitle("清单明细");
  auto* grid = new gui::TreeGridView(this);
  grid->setObjectName("ResItemBill_grid");
  grid->setRootIsDecorated(false);
  grid->setContextMenuPolicy(Qt::CustomContextMenu);
  delegate_ = new QCEResItemBillDelegate(grid);
  grid->setItemDelegate(delegate_);
  connect(grid, &QWidget::customContextMenuRequested, this,
          &QCEResItemBillViewImpl::onCustomContextMenuRequested);
  connect(grid, &bwidgets::TreeGridView::deletePressed, this,
          &QCEResItemBillViewImpl::keyDeleteAction);
  setGrid(grid, keys::SEName, keys::SECode);

  followTimer_ = gui::makeDelay(this, FollowDelay, &QCEResItemBillViewImpl::follow);
  refreshTimer_ = gui::makeDelay(this, 0, &QCEResItemBillViewImpl::refresh);

  status_ = new QLabel(this);
  status_->setObjectName("ResItemBill_status");
  status_->setContentsMargins(6, 3, 6, 3);
  status_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(createToolBar());
  layout->addWidget(grid, 1);
  layout->addWidget(status_);
  refresh();
}

QCEResItemBillViewImpl::~QCEResItemBillViewImpl() = default;

void QCEResItemBillViewImpl::setController(abst::qce::QCEResItemBillController* controller) {
  controller_ = controller;
  refreshLater();
}

// ---------------------------------------------------------------------------------------------
// Widgets

QWidget* QCEResItemBillViewImpl::createToolBar() {
  using Pane = QCEResItemBillViewImpl;
  coefficientAction_ = gui::addCommand(this, "批量系数", "把选中清单的系数都乘以或除以同一个数",
                                       {QKeySequence("F6")}, &Pane::batchSetCoefficient);
  contentAction_ = gui::addCommand(this, "批量含量", "把同一个实际含量写入选中的清单，可输入计算式",
                                   {QKeySequence("F7")}, &Pane::batchSetContent);
  priceAction_ = gui::addCommand(this, "批量分包单价", "把同一个分包不含税成本单价写入选中的清单",
                                 {QKeySequence("F8")}, &Pane::batchSetPrice);
  expressionAction_ =
      gui::addCommand(this, "分包单价计算式", "用计算式给出选中清单的分包不含税成本单价",
                      {QKeySequence("Shift+F8")}, &Pane::batchSetPriceExpression);
  disassociateAction_ =
      gui::addCommand(this, "取消关联", "取消选中清单与当前人材机的关联，已归集的数量退回",
                      {QKeySequence("Shift+Delete")}, &Pane::disassociate);
  collectAction_ = gui::addCommand(
      this, "归集到成本", "从选中的清单中选择预算工料机，归集到当前人材机", {}, &Pane::collect);
  withdrawAction_ = gui::addCommand(
      this, "取消归集", "退回选中清单已归集到当前人材机的数量，清单仍保持关联和各项设置", {},
      &Pane::withdraw);
  resizeAction_ = new QAction("行高适应内容", this);
  resizeAction_->setCheckable(true);
  connect(resizeAction_, &QAction::toggled, this, &Pane::resizeRowsToContents);

  auto* bar = new QWidget(this);
  auto* layout = new QHBoxLayout(bar);
  layout->setContentsMargins(6, 2, 6, 2);
  layout->setSpacing(4);
  title_ = new QLabel(bar);
  title_->setObjectName("ResItemBill_title");
  title_->setTextFormat(Qt::PlainText);
  title_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  layout->addWidget(title_, 1);
  associatedOnly_ = new QCheckBox("仅显示已关联", bar);
  associatedOnly_->setObjectName("ResItemBill_associatedOnly");
  associatedOnly_->setToolTip("只显示与当前人材机关联的清单");
  connect(associatedOnly_, &QCheckBox::toggled, this, [this](bool on) {
    if (filter_ != nullptr) filter_->setAssociatedOnly(on);
    refreshLater();
  });
  layout->addWidget(associatedOnly_);
  for (QAction* action : {coefficientAction_, contentAction_, priceAction_, disassociateAction_,
                          collectAction_, withdrawAction_}) {
    auto* button = new QToolButton(bar);
    button->setDefaultAction(action);
    button->setAutoRaise(true);
    layout->addWidget(button);
  }
  return bar;
}

void QCEResItemBillViewImpl::onCustomContextMenuRequested(const QPoint& position) const {
  auto* menu = new QMenu(grid());
  menu->setObjectName("ResItemBill_contextMenu");
  menu->setAttribute(Qt::WA_DeleteOnClose);
  grid()->addEditActions(menu);
  menu->addSeparator();
  menu->addAction(coefficientAction_);
  menu->addAction(contentAction_);
  menu->addAction(priceAction_);
  menu->addAction(expressionAction_);
  menu->addSeparator();
  menu->addAction(disassociateAction_);
  menu->addAction(collectAction_);
  menu->addAction(withdrawAction_);
  menu->addSeparator();
  menu->addAction(resizeAction_);
  fillColumnMenu(menu->addMenu("显示列"));
  menu->popup(grid()->viewport()->mapToGlobal(position));
}

void QCEResItemBillViewImpl::fillColumnMenu(QMenu* menu) const {
  auto* self = const_cast<QCEResItemBillViewImpl*>(this);
  const QAbstractItemModel* model = grid()->model();
  const auto* view = grid()->viewModel();
  if (model == nullptr || view == nullptr) return;
  for (int column = 0; column < model->columnCount(); ++column) {
    const std::string key = view->getColumnName(column);
    const QString title = model->headerData(column, Qt::Horizontal).toString();
    if (key.empty() || key == keys::SECode || key == keys::SEName) continue;  // they say which bill
    QAction* action = menu->addAction(title);
    action->setCheckable(true);
    action->setChecked(!grid()->isColumnHidden(column));
    connect(action, &QAction::toggled, self, [self, key](bool shown) {
      shown ? self->showBillViewColumn(key) : self->hideBillViewColumn(key);
      self->saveHiddenColumns();
    });
  }
}

// ---------------------------------------------------------------------------------------------
// Life cycle

void QCEResItemBillViewImpl::setModel(abst::BaseModel* model) {
  BasePage::setModel(model);
  filter_ = dynamic_cast<abst::qce::QCEResItemBillFilterModel*>(abstractModel());
  if (filter_ == nullptr) return;
  connect(grid()->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &QCEResItemBillViewImpl::refreshLater);
  connect(grid()->selectionModel(), &QItemSelectionModel::currentChanged, this,
          &QCEResItemBillViewImpl::refreshLater);
  loadHiddenColumns();
  refreshLater();
}

void QCEResItemBillViewImpl::activate() {
  BasePage::activate();
  if (isVisible() && stale_) followTimer_->start(0);
}

void QCEResItemBillViewImpl::setBaseResItem(proxy::Element* item) {
  item_.reset(item);
  stale_ = true;
  if (isVisible()) followTimer_->start(FollowDelay);
}

void QCEResItemBillViewImpl::reload() {
  stale_ = true;
  follow();
}

void QCEResItemBillViewImpl::showEvent(QShowEvent* event) {
  BasePage::showEvent(event);
  if (stale_) followTimer_->start(0);
}

void QCEResItemBillViewImpl::follow() {
  if (!isVisible() || filter_ == nullptr) return;  // the next showEvent asks again
  stale_ = false;
  const std::string name = controller_ != nullptr ? controller_->getItemName(item_.get()) : "";
  shouldShow_ = item_ != nullptr && (controller_ == nullptr || !name.empty());
  proxy::Element* item = shouldShow_ ? item_.get() : nullptr;
  if (item != nullptr && controller_ != nullptr) {
    filter_->setTableName(controller_->getTableName(item));
  }
  filter_->setBaseResItem(item);
  const QString text = item != nullptr ? "清单明细：" + QString::fromStdString(name) : NoItem;
  title_->setText(text);
  title_->setToolTip(text);
}

void QCEResItemBillViewImpl::updateView() {
  BasePage::updateView();
  refreshLater();
}

void QCEResItemBillViewImpl::onModelReset() {
  for (const std::string& key : hidden_) setColumnHidden(key, true);
  updateView();
}

// ---------------------------------------------------------------------------------------------
// Columns and rows

proxy::Element* QCEResItemBillViewImpl::getCurrentElemment() const {
  return grid()->currentElement();
}

std::vector<proxy::Element*> QCEResItemBillViewImpl::getSelectedElements() const {
  return grid()->selectedElements();
}

void QCEResItemBillViewImpl::setColumnHidden(const std::string& key, bool hidden) {
  const gui::ViewModel* view = grid()->viewModel();
  const int column = view != nullptr ? view->getColumnIndex(key) : -1;
  if (column < 0) return;
  grid()->setColumnHidden(column, hidden);
}

void QCEResItemBillViewImpl::hideBillViewColumn(std::string key) {
  setColumnHidden(key, true);
  hidden_.insert(std::move(key));
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the pair to the one above
void QCEResItemBillViewImpl::showBillViewColumn(std::string key) {
  setColumnHidden(key, false);
  hidden_.erase(key);
}

void QCEResItemBillViewImpl::loadHiddenColumns() {
  const std::string kept = app::GetGlobalConfig()->getValue(HiddenColumnsSetting).value_or("");
  for (const QString& key : QString::fromStdString(kept).split(',', Qt::SkipEmptyParts)) {
    hideBillViewColumn(key.toStdString());
  }
}

void QCEResItemBillViewImpl::saveHiddenColumns() const {
  QStringList keys;
  for (const std::string& key : hidden_) keys << QString::fromStdString(key);
  app::GetGlobalConfig()->setValue(HiddenColumnsSetting, keys.join(',').toStdString());
}

void QCEResItemBillViewImpl::initDefaultWidth() {
  grid()->applyDefaultColumnWidths();
}

bool QCEResItemBillViewImpl::isResize() const {
  return delegate_->resizeState();
}

void QCEResItemBillViewImpl::resizeRowsToContents(bool on) {
  delegate_->setResizeState(on);
  grid()->setRowsResizedToContents(on);
  resizeAction_->setChecked(on);
}

// ---------------------------------------------------------------------------------------------
// Asking

bool QCEResItemBillViewImpl::getCoefficientToSet(double& coefficient, bool& multiply) {
  CoefficientDialog dialog(this);
  if (const auto refused = std::exchange(refusedFactor_, {})) {
    dialog.start(refused->first, refused->second);
  }
  if (dialog.exec() != 1) return false;
  coefficient = dialog.coefficient();
  multiply = dialog.multiplies();
  return true;
}

bool QCEResItemBillViewImpl::getAdjustedContentToSet(double current, std::string& content) {
  const QString start =
      QString::fromStdString(content.empty() ? base::ToPlainString(current) : content);
  TermDialog dialog("批量设置实际含量", "实际含量：", start, "留空则恢复预算含量", this);
  if (dialog.exec() != 1) return false;
  content = dialog.text().toStdString();
  return true;
}

bool QCEResItemBillViewImpl::getExcludeTaxPrice(double& price) const {
  CInputDialog dialog(PriceTitle, "分包不含税成本单价（元）:", price, {},
                      const_cast<QCEResItemBillViewImpl*>(this));
  if (dialog.exec() != 1) return false;
  price = dialog.getValue();
  return true;
}

bool QCEResItemBillViewImpl::getExcludeTaxPriceExpr(std::string& expression) const {
  TermDialog dialog(PriceTitle, "计算式：", QString::fromStdString(expression),
                    "如 (120+35)*1.03，留空则取消分包单价",
                    const_cast<QCEResItemBillViewImpl*>(this));
  if (dialog.exec() != 1) return false;
  expression = dialog.text().toStdString();
  return true;
}

// ---------------------------------------------------------------------------------------------
// Commands

std::string QCEResItemBillViewImpl::fieldText(const proxy::Element* bill,
                                              const std::string& key) const {
  domain::Value value;
  const domain::Operator* op = filter_ != nullptr ? filter_->getOperator() : nullptr;
  if (bill == nullptr || op == nullptr || !op->getValue(bill, key, domain::EditRole, value)) {
    return {};
  }
  if (const auto* number = std::get_if<double>(&value)) return base::ToPlainString(*number);
  return toQVariant(value).toString().toStdString();
}

bool QCEResItemBillViewImpl::runOnSelected(const char* name,
                                           const std::function<bool(const Items&)>& write) {
  const Items bills = getSelectedElements();
  app::ScopedUndo undo(name);
  if (write(bills)) return true;
  undo.abandon();
  return false;
}

void QCEResItemBillViewImpl::batchSetCoefficient() {
  double coefficient = 1.0;
  bool multiply = true;
  while (coefficientAction_->isEnabled() && getCoefficientToSet(coefficient, multiply)) {
    const auto write = [&](const Items& bills) {
      return filter_->setCoefficient(bills, coefficient, multiply);
    };
    if (runOnSelected("批量设置系数", write)) return;
    refusedFactor_ = {coefficient, multiply};
  }
}

void QCEResItemBillViewImpl::batchSetContent() {
  const Items bills = getSelectedElements();
  if (bills.empty() || filter_ == nullptr) return;
  std::string content = fieldText(bills.front(), keys::SEContent);
  const double budget =
      QString::fromStdString(fieldText(bills.front(), keys::SEBudgetContent)).toDouble();
  while (getAdjustedContentToSet(budget, content)) {
    const auto write = [&](const Items& rows) {
      return filter_->setAdjustedContent(rows, content);
    };
    if (runOnSelected("批量设置实际含量", write)) return;
  }
}

void QCEResItemBillViewImpl::batchSetPrice() {
  const Items bills = getSelectedElements();
  if (bills.empty() || filter_ == nullptr) return;
  double price =
      grid()->model() != nullptr
          ? QString::fromStdString(fieldText(bills.front(), keys::RIExcludedTaxFee)).toDouble()
          : 0.0;
  while (getExcludeTaxPrice(price)) {
    const auto write = [&](const Items& rows) {
      return std::all_of(rows.begin(), rows.end(), [&](proxy::Element* bill) {
        return filter_->setExcludeTaxPrice(bill, price);
      });
    };
    if (runOnSelected(PriceTitle, write)) return;
  }
}

void QCEResItemBillViewImpl::batchSetPriceExpression() {
  const Items bills = getSelectedElements();
  if (bills.empty() || filter_ == nullptr) return;
  std::string expression = fieldText(bills.front(), keys::RIExcludedTaxFee);
  while (getExcludeTaxPriceExpr(expression)) {
    const auto write = [&](const Items& rows) {
      return std::all_of(rows.begin(), rows.end(), [&](proxy::Element* bill) {
        return filter_->setExcludeTaxPriceExpr(bill, expression);
      });
    };
    if (runOnSelected(PriceTitle, write)) return;
  }
}

void QCEResItemBillViewImpl::disassociate() {
  if (filter_ == nullptr || getSelectedElements().empty()) return;
  runOnSelected("取消关联",
                [this](const Items& bills) { return filter_->disassociateBill(bills); });
}

void QCEResItemBillViewImpl::collect() {
  const Items bills = getSelectedElements();
  if (controller_ != nullptr && item_ && !bills.empty()) controller_->collect(item_.get(), bills);
}

void QCEResItemBillViewImpl::withdraw() {
  if (controller_ != nullptr) controller_->withdraw(getSelectedElements());
}

void QCEResItemBillViewImpl::keyDeleteAction() {
  const QModelIndexList cells = grid()->selectedCells();
  const bool editable = std::any_of(cells.begin(), cells.end(), [](const QModelIndex& cell) {
    return (cell.flags() & Qt::ItemIsEditable) != 0;
  });
  editable ? grid()->clearSelectedCells() : disassociate();
}

void QCEResItemBillViewImpl::rightCopyCellContents() {
  grid()->copySelection();
}

void QCEResItemBillViewImpl::rightPasteCellContents() {
  grid()->paste();
}

// ---------------------------------------------------------------------------------------------
// State of the commands, figures

void QCEResItemBillViewImpl::refreshLater() {
  if (!refreshTimer_->isActive()) refreshTimer_->start();
}

void QCEResItemBillViewImpl::refresh() {
  const Items bills = filter_ != nullptr ? getSelectedElements() : Items();
  for (QAction* action : {coefficientAction_, contentAction_, priceAction_, expressionAction_}) {
    action->setEnabled(!bills.empty());
  }
  disassociateAction_->setEnabled(std::any_of(
      bills.begin(), bills.end(),
      [this](const proxy::Element* bill) { return fieldText(bill, keys::BRIAssociation) == "√"; }));
  collectAction_->setEnabled(!bills.empty() && controller_ != nullptr && controller_->canCollect());
  withdrawAction_->setEnabled(controller_ != nullptr && controller_->canWithdraw(bills));
  if (title_->text().isEmpty()) title_->setText(NoItem);
  if (filter_ == nullptr || !shouldShow_) {
    status_->clear();
    return;
  }
  // Of the selected rows, or of all while one alone is selected.
  const QAbstractItemModel* model = grid()->model();
  const bool some = bills.size() > 1;
  std::int64_t budget = 0;
  std::int64_t cost = 0;
  const domain::Operator* op = filter_->getOperator();
  const auto add = [&](const proxy::Element* bill) {
    domain::Value value;
    for (const auto& [key, sum] : {std::pair(&keys::BRIExcludedTaxTotalCost, &budget),
                                   std::pair(&keys::RIExcludedTaxTotalCost, &cost)}) {
      if (op != nullptr && op->getValue(bill, *key, domain::EditRole, value)) {
        *sum += std::llround(toNumber(value).value_or(0.0) * 100.0);
      }
    }
  };
  const int rows = model->rowCount();
  if (some) {
    for (const proxy::Element* bill : bills) add(bill);
  } else {
    for (int row = 0; row < rows; ++row) add(grid()->elementAt(model->index(row, 0)));
  }
  status_->setText(
      QString("共 %1 条清单　　已选 %2 条　　%3预算不含税合价 %4 元　　成本不含税合价 %5 元")
          .arg(rows)
          .arg(bills.size())
          .arg(some ? "已选清单" : "")
          .arg(money(static_cast<double>(budget) / 100.0),
               money(static_cast<double>(cost) / 100.0)));
}

}  // namespace gui::qce
