#include "destructors/res_item_view.h"

#include <QAbstractItemModel>
#include <QAction>
#include <QActionGroup>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSplitter>
#include <QToolButton>
#include <algorithm>
#include <cmath>

#include "destructors/collection_dialog.h"
#include "destructors/cost_account_dialog.h"
#include "destructors/source_bill_view.h"
#include "framework/cell_value.h"
#include "framework/commands.h"
#include "framework/delay.h"
#include "framework/des_filter_view.h"
#include "host/app/services.h"
#include "host/app/spreadsheet.h"
#include "host/base/number_text.h"
#include "host/bwidgets/flow_layout.h"
#include "host/bwidgets/grid_sheet.h"
#include "host/domain/field_keys.h"
#include "host/domain/operator.h"
#include "host/domain/qce/destructors/des_res_item_keys.h"
#include "host/gui/styled_item_delegate.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "host/presentation/res_item_filter_model.h"
#include "host/proxy/element.h"

namespace gui::qce::destructors {

namespace keys = domain::keys;

DesResItemViewImpl::DesResItemViewImpl(QWidget* parent) : ResItemViewImpl(parent) {
  setWindowTitle("人材机归集");
  timer_ = gui::makeDelay(this, RefreshDelay, &DesResItemViewImpl::onTimeOut);
  statusTimer_ = gui::makeDelay(this, 0, &DesResItemViewImpl::refreshStatus);
  init();
}

DesResItemViewImpl::~DesResItemViewImpl() = default;

void DesResItemViewImpl::setController(Controller* controller) {
  controller_ = controller;
  onStateChanged(localBox_->checkState());
}

// ---------------------------------------------------------------------------------------------
// Widgets

void DesResItemViewImpl::init() {
  using Page = DesResItemViewImpl;
  linkAction_ = addCommand("关联到成本", "把选中的人材机关联到成本，其费用计入成本", "Ctrl+L",
                           &Page::batchLinkCB);
  unlinkAction_ = addCommand("取消关联到成本", "取消选中的人材机与成本的关联，其费用不再计入成本",
                             "Ctrl+Shift+L", &Page::unBatchLinkCB);
  accountAction_ = addCommand("设置成本科目", "选择选中的人材机的成本科目", "Ctrl+K",
                              &Page::batchSetCostAccount);
  setContractAction_ = addCommand("设置归集", "把选中的人材机归集到一条分包，由分包计入成本",
                                  "Ctrl+G", &Page::onBtnSetContractPush);
  cancelContractAction_ = addCommand("取消归集", "取消选中的人材机的归集，恢复归集前的计价",
                                     "Ctrl+Shift+G", &Page::onBtnCancelContractPush);
  sourceAction_ =
      addCommand("查看来源", "转到当前人材机所来自的清单", "Ctrl+J", &Page::onFindSource);
  itemPageAction_ = addCommand("到人材机页添加", "转到人材机页的当前人材机处，在那里添加人材机",
                               "Ctrl+Shift+I", &Page::showItemPage);
  regroupAction_ = addCommand("恢复原顺序", "恢复排序前的顺序", "F5", &Page::regroup);
  groupedAction_ = gui::addCommand(this, "按工程和类别分组", "按工程和类别分组，或列为一张清单",
                                   {QKeySequence("Ctrl+Shift+D")});
  groupedAction_->setCheckable(true);
  groupedAction_->setChecked(true);
  connect(groupedAction_, &QAction::triggered, this, &Page::setGrouped);
  conditionAction_ = gui::addCommand(this, "条件过滤", "按成本科目、编码、名称、规格型号、单位过滤",
                                     {QKeySequence("Ctrl+Shift+F")});
  ResItemViewImpl::init();
}

QAction* DesResItemViewImpl::addCommand(const QString& text, const QString& toolTip,
                                        const QString& keys, void (DesResItemViewImpl::*slot)()) {
  QAction* action = gui::addCommand(this, text, toolTip, {QKeySequence(keys)}, slot);
  action->setData(action->toolTip());  // what it says while it can be used
  return action;
}

QPushButton* DesResItemViewImpl::addButton(QLayout* toolBar, QAction* action, const QString& name) {
  auto* button = new QPushButton(action->text(), this);
  button->setObjectName(name);
  button->setToolTip(action->toolTip());
  connect(button, &QPushButton::clicked, action, &QAction::trigger);
  connect(action, &QAction::changed, button, [button, action] {
    button->setEnabled(action->isEnabled());
    button->setToolTip(action->toolTip());
  });
  toolBar->addWidget(button);
  return button;
}

gui::StyledItemDelegate* DesResItemViewImpl::createDelegate() {
  return new gui::StyledItemDelegate(treeGrid());
}

void DesResItemViewImpl::fillToolBar(QBoxLayout* toolBar) {
  const std::pair<const char*, void (DesResItemViewImpl::*)()> hidden[] = {
      {"插入", &DesResItemViewImpl::insertItem},
      {"删除", &DesResItemViewImpl::deleteItem},
      {"查询", &DesResItemViewImpl::searchRCJ}};
  int place = 0;
  for (const auto& [text, slot] : hidden) {
    auto* button = new QToolButton(this);
    button->setText(text);
    button->setAutoRaise(true);
    button->setFixedWidth(30);
    button->hide();
    connect(button, &QToolButton::clicked, this, slot);
    toolBar->insertWidget(place++, button);
  }
  // In a narrow window the commands take two rows, and the text filter stays beside the first.
  toolBar->itemAt(place)->setAlignment(Qt::AlignTop);
  auto* commands = new bwidgets::FlowLayout;
  toolBar->addLayout(commands, 1);
  addButton(commands, accountAction_, "ResItem_setCostAccount");
  localBox_ = new QCheckBox("成本科目设置仅对当前起作用", this);
  localBox_->setStyleSheet("color: rgb(241, 70, 62)");
  localBox_->setToolTip("勾选后，设置成本科目只写入当前行，不写入其他选中的行");
  connect(localBox_, &QCheckBox::stateChanged, this, &DesResItemViewImpl::onStateChanged);
  commands->addWidget(localBox_);
  addButton(commands, linkAction_, "ResItem_setLinkCB");
  addButton(commands, unlinkAction_, "ResItem_setUnLinkCB");
  addButton(commands, setContractAction_, "ResItem_setContract");
  addButton(commands, cancelContractAction_, "ResItem_cancelContract");
  addButton(commands, sourceAction_, "ResItem_findSource");
}

QWidget* DesResItemViewImpl::createContent(gui::TreeGridView* grid) {
  grid->setEmptyText("没有符合条件的人材机。请放宽筛选条件，清空过滤的文字，或取消条件过滤。");
  conditions_ = new DesFilterView(DesFilterView::ResItem, this);
  conditions_->setSwitch(conditionAction_, grid);
  connect(conditions_->startButton(), &QPushButton::clicked, this,
          &DesResItemViewImpl::startFilter);
  connect(conditions_->cancelButton(), &QPushButton::clicked, this,
          &DesResItemViewImpl::cancelFilter);
  auto* splitter = new QSplitter(this);
  splitter->setHandleWidth(8);
  splitter->setChildrenCollapsible(false);
  splitter->addWidget(grid);
  splitter->addWidget(conditions_);
  splitter->setStretchFactor(0, 1);
  return splitter;
}

QWidget* DesResItemViewImpl::createFooter() {
  auto* footer = new QWidget(this);
  status_ = new QLabel(footer);
  status_->setObjectName("DesResItem_status");
  currentBill_ = new QLabel(footer);
  currentBill_->setObjectName("DesResItem_currentBill");
  for (QLabel* label : {status_, currentBill_}) {
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  }
  // Long figures and names must not keep the window from being made narrow.
  status_->setMinimumWidth(1);
  currentBill_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  currentBill_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  auto* conditionButton = new QToolButton(footer);
  conditionButton->setObjectName("ResItem_conditions");
  conditionButton->setDefaultAction(conditionAction_);
  auto* layout = new QHBoxLayout(footer);
  layout->setContentsMargins(6, 3, 6, 3);
  layout->addWidget(conditionButton);
  layout->addWidget(status_);
  layout->addWidget(currentBill_, 1);
  return footer;
}

void DesResItemViewImpl::fillContextMenu(QMenu* menu) {
  treeGrid()->addEditActions(menu);
  menu->addSeparator();
  menu->addActions({accountAction_, linkAction_, unlinkAction_});
  menu->addSeparator();
  menu->addActions({setContractAction_, cancelContractAction_, sourceAction_});
  menu->addSeparator();
  menu->addAction(itemPageAction_);
  menu->addSeparator();
  ResItemViewImpl::fillContextMenu(menu);
  menu->addActions({conditionAction_, groupedAction_, regroupAction_});
}

// ---------------------------------------------------------------------------------------------
// Conditions

void DesResItemViewImpl::startFilter() {
  filterByConditions(true);
}

void DesResItemViewImpl::cancelFilter() {
  filterByConditions(false);
}

void DesResItemViewImpl::filterByConditions(bool on) {
  if (model_ == nullptr) return;
  conditions_->apply(*model_, on);
  expandAll();
  if (!on) treeGrid()->scrollTo(treeGrid()->currentIndex());
  refreshStatusLater();
}

// ---------------------------------------------------------------------------------------------
// Life cycle

void DesResItemViewImpl::setModel(abst::BaseModel* model) {
  ResItemViewImpl::setModel(model);
  model_ = dynamic_cast<abst::qce::destructors::DesResItemFilterModel*>(abstractModel());
  if (model_ == nullptr || getViewModel() == nullptr) return;
  treeGrid()->setTreePosition(getViewModel()->getColumnIndex(keys::BRIName));
  treeGrid()->setRootIsDecorated(model_->isGrouped());
  groupedAction_->setChecked(model_->isGrouped());
  connect(treeGrid()->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &DesResItemViewImpl::refreshStatusLater);
  refreshStatusLater();
}

gui::ViewModel* DesResItemViewImpl::getViewModel() const {
  return dynamic_cast<gui::ViewModel*>(abstractModel());
}

void DesResItemViewImpl::activate() {
  ResItemViewImpl::activate();
  updateView();
  onCurrentRowChanged();
}

void DesResItemViewImpl::deactivate() {
  timer_->stop();
  ResItemViewImpl::deactivate();
}

void DesResItemViewImpl::showEvent(QShowEvent* event) {
  ResItemViewImpl::showEvent(event);
  onCurrentRowChanged();
}

void DesResItemViewImpl::updateView() {
  ResItemViewImpl::updateView();
  refreshStatusLater();
}

void DesResItemViewImpl::onModelReset() {
  ResItemViewImpl::onModelReset();
  refreshActions();  // the grid tells of the current row itself
}

void DesResItemViewImpl::onDataChanged() {
  updateView();
  refreshActions();  // the current row may have been closed or opened
}

// ---------------------------------------------------------------------------------------------
// Current row

void DesResItemViewImpl::onCurrentRowChanged() {
  ResItemViewImpl::onCurrentRowChanged();
  if (controller_ == nullptr || !isSeen()) return;
  refreshActions();
  controller_->setCurrentItem(treeGrid()->currentElement());
  timer_->start();
}

void DesResItemViewImpl::refreshActions() {
  if (controller_ == nullptr || !isSeen()) return;
  proxy::Element* current = treeGrid()->currentElement();
  const bool closed = current != nullptr && controller_->isClosed(current);
  const QString reason =
      closed ? QString::fromStdString(controller_->getClosedReason(current)) : QString();
  for (QAction* action : {linkAction_, unlinkAction_, setContractAction_}) {
    action->setToolTip(reason.isEmpty() ? action->data().toString() : reason);
    action->setEnabled(!closed);
  }
}

void DesResItemViewImpl::onTimeOut() {
  if (controller_ == nullptr || !isSeen()) return;
  proxy::Element* current = treeGrid()->currentElement();
  const bool item = model_ != nullptr && model_->isItem(current);
  const QString caption =
      DesSourceBillView::caption(item ? controller_->getSourceBills(current)
                                      : std::vector<abst::qce::destructors::SourceBill>());
  currentBill_->setText(caption);
  currentBill_->setToolTip(caption);
  emit refreshed(current);
}

void DesResItemViewImpl::onSubEngineeringChange() {
  updateView();
  timer_->start();
}

// ---------------------------------------------------------------------------------------------
// Commands

DesResItemViewImpl::Controller::Items DesResItemViewImpl::selectedItems() const {
  Controller::Items items;
  for (proxy::Element* element : treeGrid()->selectedElements()) {
    if (model_ != nullptr && model_->isItem(element)) items.push_back(element);
  }
  return items;
}

bool DesResItemViewImpl::requireItems(const Controller::Items& items) const {
  if (!items.empty()) return true;
  app::qce::GetQCEChannel()->message("没有选中人材机，请先在表格中选择要处理的人材机。",
                                     QMessageBox::Ok);
  return false;
}

void DesResItemViewImpl::batchLinkCB() {
  const Controller::Items items = selectedItems();
  if (controller_ == nullptr || !requireItems(items)) return;
  controller_->linkToCost(items);
  treeGrid()->update();
  updateView();
}

void DesResItemViewImpl::unBatchLinkCB() {
  const Controller::Items items = selectedItems();
  if (controller_ == nullptr || !requireItems(items)) return;
  controller_->unlinkFromCost(items);
  updateView();
}

bool DesResItemViewImpl::isSetCostAccountToLocal() const {
  return localBox_->isChecked();
}

void DesResItemViewImpl::onStateChanged(int state) {
  if (controller_ != nullptr) controller_->setCostAccountToLocal(state == Qt::Checked);
}

void DesResItemViewImpl::batchSetCostAccount() {
  if (controller_ == nullptr || model_ == nullptr) return;
  Controller::Items items = selectedItems();
  proxy::Element* current = treeGrid()->currentElement();
  if (isSetCostAccountToLocal()) {
    items.clear();
    if (model_->isItem(current)) items.push_back(current);
  }
  if (!requireItems(items)) return;
  controller_->setCurrentItem(current);
  const QString caption =
      isSetCostAccountToLocal()
          ? QString("仅对当前的人材机“%1 %2”设置成本科目:")
                .arg(textOf(current, keys::BRICode), textOf(current, keys::BRIName))
          : QString("为选中的 %1 项人材机设置成本科目:").arg(items.size());
  DesCostAccountDialog dialog(caption, controller_->getCostAccounts(),
                              controller_->getCostAccount(items.front()), this);
  if (dialog.exec() != 1) return;
  controller_->setCostAccount(items, dialog.account());
  updateView();
}

void DesResItemViewImpl::onBtnSetContractPush() {
  popupSetContract();
}

void DesResItemViewImpl::popupSetContract() {
  const Controller::Items items = selectedItems();
  if (controller_ == nullptr || !requireItems(items) || !controller_->canCollect(items)) return;
  proxy::Element* current = treeGrid()->currentElement();
  const bool among = std::find(items.begin(), items.end(), current) != items.end();
  DesCollectionDialog::Offer offer;
  offer.items = items.size();
  offer.targets = controller_->getCollectionTargets(items);
  offer.accounts = controller_->getCostAccounts();
  offer.bills = controller_->getSourceBills(among ? current : items.front());
  offer.effect = [this, &items](const DesCollectionDialog::Setting& setting) {
    return controller_->getCollectionEffect(items, setting);
  };
  DesCollectionDialog dialog(
      std::move(offer),
      [this, &items](const DesCollectionDialog::Setting& setting) {
        return controller_->setCollection(items, setting);
      },
      this);
  dialog.exec();
  updateView();
}

void DesResItemViewImpl::onBtnCancelContractPush() {
  const Controller::Items items = selectedItems();
  if (controller_ == nullptr || !requireItems(items)) return;
  controller_->cancelCollection(items);
  updateView();
}

void DesResItemViewImpl::onFindSource() {
  proxy::Element* current = treeGrid()->currentElement();
  if (controller_ == nullptr || model_ == nullptr) return;
  if (requireItems(model_->isItem(current) ? Controller::Items{current} : Controller::Items{})) {
    controller_->findSource(current);
  }
}

void DesResItemViewImpl::showItemPage() {
  if (controller_ != nullptr) controller_->showItemPage(treeGrid()->currentElement());
}

QString DesResItemViewImpl::textOf(const proxy::Element* item, const std::string& key) const {
  domain::Value value;
  const domain::Operator* op = model_->getOperator();
  if (op == nullptr || !op->getValue(item, key, domain::DisplayRole, value)) return {};
  const auto* text = std::get_if<std::string>(&value);
  return text != nullptr ? QString::fromStdString(*text) : QString();
}

void DesResItemViewImpl::insertItem() {
  if (controller_ != nullptr) controller_->insertItem(treeGrid()->currentElement());
}

void DesResItemViewImpl::deleteItem() {
  const Controller::Items items = selectedItems();
  if (controller_ != nullptr && requireItems(items)) controller_->deleteItems(items);
}

void DesResItemViewImpl::searchRCJ() {
  find();
}

void DesResItemViewImpl::exportExcel() {
  app::Sheet sheet = bwidgets::makeSheet(*treeGrid(), tabTitle());
  app::AddTotals(
      sheet, "合计",
      {keys::BRIBudgetTotalCost, keys::BRIMarketTotalCost, keys::BRIExcludedTaxTotalCost});
  app::GetSpreadsheets()->save(tabTitle(), {sheet});
}

void DesResItemViewImpl::setGrouped(bool grouped) {
  if (model_ == nullptr) return;
  model_->setGrouped(grouped);
  treeGrid()->setRootIsDecorated(grouped);
  expandAll();
}

void DesResItemViewImpl::regroup() {
  if (model_ == nullptr) return;
  model_->rebuildGroup();
}

void DesResItemViewImpl::showItems(const std::vector<proxy::Element*>& items) {
  clearTextFilter();
  if (conditions_->isOn()) cancelFilter();
  treeGrid()->selectElements(items);
  treeGrid()->setFocus();
}

// ---------------------------------------------------------------------------------------------
// Status line

// Selections and edits come in bursts; what follows from them is worked out once.
void DesResItemViewImpl::refreshStatusLater() {
  if (!statusTimer_->isActive()) statusTimer_->start();
}

void DesResItemViewImpl::refreshStatus() {
  const domain::Operator* op = model_ != nullptr ? model_->getOperator() : nullptr;
  if (op == nullptr) {
    status_->clear();
    return;
  }
  const Controller::Items items = selectedItems();
  double market = 0.0;
  double counted = 0.0;
  domain::Value value;
  for (const proxy::Element* item : items) {
    for (auto& [key, sum] :
         {std::pair<const std::string*, double*>{&keys::BRIMarketTotalCost, &market},
          {&keys::BRIExcludedTaxTotalCost, &counted}}) {
      if (op->getValue(item, *key, domain::EditRole, value)) {
        *sum += std::llround(gui::toNumber(value).value_or(0.0) * 100.0);
      }
    }
  }
  const auto money = [](double cents) {
    return QString::fromStdString(base::ToThousandthsString(cents / 100.0, 2));
  };
  // In the colour of the rows that wait.
  const int waiting = model_->getItemWaitForCollectNum();
  const QString note = QString("待归集：%1 项").arg(waiting);
  QString filters;
  if (isTextFiltered()) filters += "（筛选中）";
  if (conditions_->isOn()) filters += "（条件过滤中）";
  status_->setText(QString("<span style=\"white-space:pre\">%5%1　　已选 %2 项　　"
                           "不含税合价 %3 元，计入成本 %4 元</span>")
                       .arg(waiting == 0 ? note : "<b style=\"color:#b06000\">" + note + "</b>")
                       .arg(items.size())
                       .arg(money(market), money(counted), filters));
}

}  // namespace gui::qce::destructors
