#include "resitem/view.h"

#include <QAbstractItemModel>
#include <QAction>
#include <QActionGroup>
#include <QFrame>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolBar>
#include <QToolButton>
#include <algorithm>

#include "framework/cell_value.h"
#include "framework/commands.h"
#include "framework/delay.h"
#include "framework/des_filter_view.h"
#include "host/abst/qce/res_item_bill_view.h"
#include "host/app/services.h"
#include "host/app/spreadsheet.h"
#include "host/base/number_text.h"
#include "host/bwidgets/grid_sheet.h"
#include "host/domain/field_keys.h"
#include "host/domain/qce/res_item_operator.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "host/presentation/input_dialog.h"
#include "resitem/comment_dialog.h"
#include "resitem/item_figures.h"
#include "resitem/legend.h"

namespace gui::qce {
namespace {

constexpr char PaneShownSetting[] = "QCE_ResItem_paneShown";
constexpr char PaneHeightSetting[] = "QCE_ResItem_paneHeight";
constexpr int PaneHeight = 240;  // pixels at first
constexpr int MinPaneHeight = 110;

enum AssociationChoice { ShowAll, ShowAssociated, ShowUnassociated };

QAction* addChoiceAction(QActionGroup* group, const QString& text, const QString& toolTip,
                         int value) {
  auto* action = new QAction(text, group);
  action->setCheckable(true);
  action->setToolTip(toolTip);
  action->setData(value);
  return action;
}

QFrame* createSeparator(QWidget* parent) {
  auto* line = new QFrame(parent);
  line->setFrameShape(QFrame::VLine);
  line->setFrameShadow(QFrame::Sunken);
  return line;
}

}  // namespace

QCEResItemViewImpl::QCEResItemViewImpl(QWidget* parent) : ResItemViewImpl(parent) {
  setWindowTitle("人材机");
  refreshTimer_ = gui::makeDelay(this, 0, [this] {
    refreshActions();
    refreshStatus();
  });
  createActions();
  init();
  refreshActions();
}

QCEResItemViewImpl::~QCEResItemViewImpl() = default;

void QCEResItemViewImpl::setController(abst::qce::QCEResItemController* controller) {
  controller_ = controller;
  insertMenu_->clear();
  if (controller_ != nullptr) {
    for (const std::string& type : controller_->getItemTypes()) {
      insertMenu_->addAction(QString::fromStdString(type), this,
                             [this, type] { insertItemOf(type); });
    }
  }
  refillSubProjects();
}

// ---------------------------------------------------------------------------------------------
// Widgets

void QCEResItemViewImpl::createActions() {
  using Page = QCEResItemViewImpl;
  batchPriceAction_ =
      gui::addCommand(this, "批量设置不含税单价", "把同一个不含税单价写入所有选中的人材机",
                      {QKeySequence("Ctrl+B")}, &Page::batchSetExcludeTaxPrice);
  editCommentAction_ = gui::addCommand(this, "编辑批注", "查看或修改当前人材机的批注",
                                       {QKeySequence("Shift+F2")}, &Page::editComment);
  deleteCommentAction_ =
      gui::addCommand(this, "删除批注", "删除选中人材机的批注", {}, &Page::deleteComment);
  poolingAction_ =
      gui::addCommand(this, "归集到成本", "把清单下的预算收入工料机归集到当前成本工料机",
                      {QKeySequence("Ctrl+G")}, &Page::collectToCost);
  associationAction_ = gui::addCommand(this, "关联清单", "选择选中的成本工料机所关联的清单",
                                       {QKeySequence("Ctrl+L")}, &Page::associateBills);
  paneAction_ = new QAction("清单明细", this);
  paneAction_->setCheckable(true);
  paneAction_->setVisible(false);  // until there is a pane
  paneAction_->setShortcut(QKeySequence("Ctrl+D"));
  paneAction_->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  paneAction_->setToolTip("在下方显示或隐藏当前人材机的清单（Ctrl+D）");
  connect(paneAction_, &QAction::toggled, this, &Page::showPane);
  addAction(paneAction_);
  insertAction_ = gui::addCommand(this, "新增", "在当前人材机所在的工程中新增一项同类的人材机",
                                  {QKeySequence(Qt::Key_Insert)}, &Page::insertItem);
  insertMenu_ = new QMenu("新增", this);
  deleteAction_ = gui::addCommand(this, "删除", "删除选中的人材机（由清单汇总而来的不能删除）",
                                  {QKeySequence("Ctrl+Delete")}, &Page::deleteItem);
  moveUpAction_ =
      gui::addCommand(this, "上移", "把选中的行上移一行", {QKeySequence("Alt+Up")}, &Page::moveUp);
  moveDownAction_ = gui::addCommand(this, "下移", "把选中的行下移一行", {QKeySequence("Alt+Down")},
                                    &Page::moveDown);
  regroupAction_ = gui::addCommand(this, "刷新分组", "重新生成分组，恢复排序前的顺序",
                                   {QKeySequence("F5")}, &Page::regroup);

  conditionAction_ = gui::addCommand(
      this, "条件过滤", "显示或隐藏条件面板，按成本科目、编码、名称、规格型号、单位过滤",
      {QKeySequence("Ctrl+Shift+F")});

  flags_ = new QActionGroup(this);
  addChoiceAction(flags_, "全部", "不按标志过滤", domain::qce::FilterAll)->setChecked(true);
  addChoiceAction(flags_, "甲供", "只显示甲供的人材机", domain::qce::FilterProvidedByJia);
  addChoiceAction(flags_, "暂估", "只显示暂估价的人材机", domain::qce::FilterProvisional);
  addChoiceAction(flags_, "可调价", "只显示可调价的人材机", domain::qce::FilterPriceAdjustable);
  connect(flags_, &QActionGroup::triggered, this,
          [this](const QAction* action) { setFlag(action->data().toInt()); });

  associations_ = new QActionGroup(this);
  addChoiceAction(associations_, "全部", "不按关联过滤", ShowAll)->setChecked(true);
  addChoiceAction(associations_, "已关联", "只显示已关联清单的人材机", ShowAssociated);
  addChoiceAction(associations_, "未关联", "只显示未关联清单的人材机", ShowUnassociated);
  connect(associations_, &QActionGroup::triggered, this,
          [this](const QAction* action) { setAssociation(action->data().toInt()); });
}

void QCEResItemViewImpl::addChoice(QBoxLayout* toolBar, const QString& label, QActionGroup* group) {
  toolBar->addWidget(new QLabel(label, this));
  auto* segments = new QHBoxLayout;
  segments->setSpacing(0);
  for (QAction* action : group->actions()) {
    auto* button = new QToolButton(this);
    button->setDefaultAction(action);
    segments->addWidget(button);
  }
  toolBar->addLayout(segments);
}

void QCEResItemViewImpl::fillToolBar(QBoxLayout* toolBar) {
  subProjectBox_ = new gui::SubProjectBox(this);
  subProjectBox_->setObjectName("ResItem_subProject");
  connect(subProjectBox_, QOverload<int>::of(&QComboBox::activated), this,
          &QCEResItemViewImpl::chooseSubProject);
  refillSubProjects();

  toolBar->addWidget(new QLabel("范围:", this));
  toolBar->addWidget(subProjectBox_);
  toolBar->addWidget(createSeparator(this));
  addChoice(toolBar, "标志:", flags_);
  toolBar->addWidget(createSeparator(this));
  addChoice(toolBar, "关联:", associations_);
  toolBar->addWidget(createSeparator(this));
  // In a narrow window it keeps what does not fit behind an arrow.
  auto* commands = new QToolBar(this);
  for (QAction* action :
       {conditionAction_, poolingAction_, associationAction_, paneAction_, insertAction_,
        deleteAction_, batchPriceAction_, editCommentAction_, moveUpAction_, moveDownAction_}) {
    commands->addAction(action);
  }
  auto* insertButton = qobject_cast<QToolButton*>(commands->widgetForAction(insertAction_));
  insertButton->setMenu(insertMenu_);
  insertButton->setPopupMode(QToolButton::MenuButtonPopup);
  QAction* findAction = commands->addAction("查找", this, &QCEResItemViewImpl::find);
  findAction->setToolTip("在表格中查找，可输入拼音首字母（Ctrl+F）");
  QAction* exportAction = commands->addAction("导出Excel", this, &QCEResItemViewImpl::exportExcel);
  exportAction->setToolTip("把表格按现在的样子导出为 Excel 文件（Ctrl+E）");
  toolBar->addWidget(commands);
}

QWidget* QCEResItemViewImpl::createContent(gui::TreeGridView* grid) {
  conditions_ = new destructors::DesFilterView(destructors::DesFilterView::ResItem, this);
  conditions_->setSwitch(conditionAction_, grid);
  connect(conditions_->startButton(), &QPushButton::clicked, this,
          &QCEResItemViewImpl::startFilter);
  connect(conditions_->cancelButton(), &QPushButton::clicked, this,
          &QCEResItemViewImpl::cancelFilter);
  grid->installEventFilter(this);
  grid->setEmptyText("没有符合条件的人材机。请放宽范围、标志、关联或条件过滤。");

  auto* splitter = new QSplitter(this);
  splitter->setHandleWidth(8);
  splitter->setChildrenCollapsible(false);
  splitter->addWidget(grid);
  splitter->addWidget(conditions_);
  splitter->setStretchFactor(0, 1);
  splitter->setStretchFactor(1, 0);

  subViews_ = new QStackedWidget(this);
  subViews_->setMinimumHeight(MinPaneHeight);
  subViews_->hide();
  setSubPages(subViews_);
  panes_ = new QSplitter(Qt::Vertical, this);
  panes_->setHandleWidth(8);
  panes_->setChildrenCollapsible(false);
  panes_->addWidget(splitter);
  panes_->addWidget(subViews_);
  subViews_->raise();  // last among the children, as it is in the page
  panes_->setStretchFactor(0, 1);
  panes_->setStretchFactor(1, 0);
  return panes_;
}

QWidget* QCEResItemViewImpl::createFooter() {
  auto* footer = new QWidget(this);
  status_ = new QLabel(footer);
  status_->setObjectName("ResItem_status");
  status_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* layout = new QHBoxLayout(footer);
  layout->setContentsMargins(6, 3, 6, 3);
  layout->addWidget(status_, 1);
  layout->addWidget(new ResItemLegend(footer));
  return footer;
}

void QCEResItemViewImpl::fillContextMenu(QMenu* menu) {
  refreshActions();
  treeGrid()->addEditActions(menu);
  menu->addSeparator();
  menu->addAction(poolingAction_);
  menu->addAction(associationAction_);
  menu->addAction(paneAction_);
  menu->addSeparator();
  menu->addMenu(insertMenu_);
  menu->addAction(deleteAction_);
  menu->addSeparator();
  menu->addAction(batchPriceAction_);
  menu->addAction(editCommentAction_);
  menu->addAction(deleteCommentAction_);
  menu->addSeparator();
  menu->addAction(moveUpAction_);
  menu->addAction(moveDownAction_);
  menu->addSeparator();
  QMenu* flagMenu = menu->addMenu("标志过滤");
  flagMenu->addActions(flags_->actions());
  QMenu* associationMenu = menu->addMenu("关联过滤");
  associationMenu->addActions(associations_->actions());
  menu->addAction(conditionAction_);
  menu->addSeparator();
  ResItemViewImpl::fillContextMenu(menu);
  menu->addAction(regroupAction_);
}

// ---------------------------------------------------------------------------------------------
// Life cycle

void QCEResItemViewImpl::setModel(abst::BaseModel* model) {
  ResItemViewImpl::setModel(model);
  filter_ = dynamic_cast<abst::qce::QCEResItemFilterModel*>(abstractModel());
  commands_ = ResItemCommands(filter_);
  if (!commands_.isValid()) return;

  const auto* columns = dynamic_cast<const gui::ViewModel*>(abstractModel());
  treeGrid()->setTreePosition(columns->getColumnIndex(domain::keys::BRIName));
  connect(treeGrid()->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &QCEResItemViewImpl::refreshLater);
  connect(treeGrid()->selectionModel(), &QItemSelectionModel::currentChanged, this,
          &QCEResItemViewImpl::refreshLater);
  refreshLater();
}

void QCEResItemViewImpl::activate() {
  ResItemViewImpl::activate();
  refillSubProjects();
  if (auto* pane = dynamic_cast<abst::BaseView*>(subViews_->currentWidget())) pane->activate();
  if (filter_ == nullptr) return;
  filter_->invalidate();
  updateView();
}

void QCEResItemViewImpl::deactivate() {
  keepPaneHeight();
  ResItemViewImpl::deactivate();
}

void QCEResItemViewImpl::addSubView(const std::string& key, abst::BaseView* view) {
  const int before = subViews_->count();
  ResItemViewImpl::addSubView(key, view);
  if (subViews_->count() == before) return;
  if (auto* bills = dynamic_cast<abst::qce::QCEResItemBillView*>(view)) {
    connect(treeGrid(), &bwidgets::TreeGridView::currentElementChanged,
            dynamic_cast<QWidget*>(view),
            [bills](proxy::Element* item) { bills->setBaseResItem(item); });
    bills->setBaseResItem(treeGrid()->currentElement());
  }
  paneAction_->setVisible(true);
  paneAction_->setChecked(app::GetGlobalConfig()->getValue(PaneShownSetting) != "0");
}

void QCEResItemViewImpl::updateView() {
  ResItemViewImpl::updateView();
  refreshLater();
}

// Where rows cannot move any further, the keys that move them must not walk through the grid.
bool QCEResItemViewImpl::eventFilter(QObject* watched, QEvent* event) {
  if (watched == treeGrid() && event->type() == QEvent::KeyPress) {
    const auto* press = static_cast<QKeyEvent*>(event);
    const bool vertical = press->key() == Qt::Key_Up || press->key() == Qt::Key_Down;
    if (vertical && press->modifiers().testFlag(Qt::AltModifier)) return true;
  }
  return ResItemViewImpl::eventFilter(watched, event);
}

// ---------------------------------------------------------------------------------------------
// What is shown

void QCEResItemViewImpl::refillSubProjects() {
  const bool still = subProjectBox_->refill(
      controller_ != nullptr ? controller_->getSubProjects() : gui::SubProjectBox::SubProjects());
  if (!still) chooseSubProject();
}

void QCEResItemViewImpl::chooseSubProject() {
  if (filter_ == nullptr) return;
  filter_->setSubProject(subProjectBox_->chosen());
  expandAll();
}

void QCEResItemViewImpl::showItems(proxy::Element* subProject, const std::string& account,
                                   const std::vector<proxy::Element*>& selected) {
  if (filter_ == nullptr) return;
  for (QActionGroup* group : {flags_, associations_}) {
    if (!group->actions().first()->isChecked()) group->actions().first()->trigger();
  }
  conditions_->resetConditions();
  conditions_->setCbkm(account);
  account.empty() ? cancelFilter() : startFilter();
  conditionAction_->setChecked(!account.empty());
  subProjectBox_->choose(subProject);
  chooseSubProject();
  treeGrid()->selectElements(selected);
  treeGrid()->setFocus();
  refreshLater();
}

void QCEResItemViewImpl::setFlag(int filterType) {
  if (auto* op = resItemOperator()) op->setFilterType(filterType);
  applyFilters();
}

void QCEResItemViewImpl::setAssociation(int choice) {
  if (filter_ == nullptr) return;
  filter_->setShowAll(choice == ShowAll);
  filter_->setShowAssociation(choice == ShowAssociated);
  applyFilters();
}

void QCEResItemViewImpl::applyFilters() {
  if (filter_ == nullptr) return;
  filter_->invalidate();
  expandAll();
  treeGrid()->scrollTo(treeGrid()->currentIndex());
  refreshLater();
}

void QCEResItemViewImpl::showPane(bool show) {
  if (!show) keepPaneHeight();
  subViews_->setVisible(show);
  app::GetGlobalConfig()->setValue(PaneShownSetting, show ? "1" : "0");
  if (!show) return;
  const std::string kept = app::GetGlobalConfig()->getValue(PaneHeightSetting).value_or("");
  const int wanted = QString::fromStdString(kept).toInt();
  const int height = wanted > 0 ? wanted : PaneHeight;
  panes_->setSizes({std::max(panes_->height() - panes_->handleWidth() - height, 1), height});
}

void QCEResItemViewImpl::keepPaneHeight() const {
  if (!subViews_->isVisible()) return;
  app::GetGlobalConfig()->setValue(PaneHeightSetting, std::to_string(subViews_->height()));
}

void QCEResItemViewImpl::startFilter() {
  if (filter_ == nullptr) return;
  conditions_->apply(*filter_, true);
  expandAll();
  refreshLater();
}

void QCEResItemViewImpl::cancelFilter() {
  if (filter_ == nullptr) return;
  conditions_->apply(*filter_, false);
  expandAll();
  treeGrid()->scrollTo(treeGrid()->currentIndex());
  refreshLater();
}

// ---------------------------------------------------------------------------------------------
// Commands

ResItemCommands::Items QCEResItemViewImpl::selectedItems() const {
  ResItemCommands::Items items;
  std::string comment;
  for (proxy::Element* element : treeGrid()->selectedElements()) {
    // Grouping rows carry no annotation, and no price either.
    if (filter_ != nullptr && filter_->getComment(element, comment)) items.push_back(element);
  }
  return items;
}

void QCEResItemViewImpl::batchSetExcludeTaxPrice() {
  const ResItemCommands::Items items = selectedItems();
  if (items.empty() || !commands_.isValid()) return;
  double price = 0.0;
  domain::Value value;
  if (filter_->getOperator()->getValue(items.front(), domain::keys::BRIExcludedTaxFee,
                                       domain::EditRole, value)) {
    price = gui::toNumber(value).value_or(0.0);
  }
  CInputDialog dialog("批量设置不含税单价",
                      QString("选中 %1 项，不含税单价（元）:").arg(items.size()), price, {}, this);
  if (dialog.exec() != 1) return;
  report(commands_.setExcludeTaxPrice(items, dialog.getValue()));
}

void QCEResItemViewImpl::editComment() {
  proxy::Element* item = treeGrid()->currentElement();
  std::string comment;
  if (item == nullptr || filter_ == nullptr || !filter_->getComment(item, comment)) return;
  CommentDialog dialog(commands_.describe(item), comment, this);
  if (dialog.exec() != 1 || dialog.comment() == comment) return;
  report(commands_.setComment({item}, dialog.comment()));
}

void QCEResItemViewImpl::deleteComment() {
  const ResItemCommands::Items items = selectedItems();
  if (items.empty() || !commands_.isValid()) return;
  report(commands_.setComment(items, {}));
}

void QCEResItemViewImpl::collectToCost() {
  proxy::Element* item = treeGrid()->currentElement();
  if (controller_ == nullptr || item == nullptr) return;
  controller_->collectToCost(item);
  updateView();
}

void QCEResItemViewImpl::associateBills() {
  const ResItemCommands::Items items = selectedItems();
  if (controller_ == nullptr || items.empty()) return;
  controller_->associateBills(items);
  updateView();
}

// Where no row says which sub-project is meant, the range does; else the user is asked.
proxy::Element* QCEResItemViewImpl::placeForItem() {
  if (proxy::Element* current = treeGrid()->currentElement()) return current;
  const int chosen = subProjectBox_->currentIndex();
  if (chosen > 0) return subProjectBox_->chosen();
  QStringList names;
  for (int i = 1; i < subProjectBox_->count(); ++i) names << subProjectBox_->itemText(i);
  if (names.size() == 1) return subProjectBox_->subProjectAt(1);
  if (names.isEmpty()) return nullptr;
  QInputDialog dialog(this);
  dialog.setWindowTitle("新增人材机");
  dialog.setLabelText("新增到哪个单位工程:");
  dialog.setComboBoxItems(names);
  dialog.setOkButtonText("确定");
  dialog.setCancelButtonText("取消");
  if (dialog.exec() != 1) return nullptr;
  return subProjectBox_->subProjectAt(names.indexOf(dialog.textValue()) + 1);
}

void QCEResItemViewImpl::insertItem() {
  if (controller_ == nullptr) return;
  const std::vector<std::string> types = controller_->getItemTypes();
  if (types.empty()) return;
  domain::Value value;
  proxy::Element* current = treeGrid()->currentElement();
  std::string type = types.front();
  if (current != nullptr && filter_ != nullptr &&
      filter_->getOperator()->getValue(current, domain::keys::BRIType, domain::DisplayRole,
                                       value)) {
    const auto* own = std::get_if<std::string>(&value);
    if (own != nullptr && std::find(types.begin(), types.end(), *own) != types.end()) type = *own;
  }
  insertItemOf(type);
}

void QCEResItemViewImpl::insertItemOf(const std::string& type) {
  if (controller_ == nullptr || !commands_.isValid()) return;
  proxy::Element* at = placeForItem();
  const scoped_refptr<proxy::Element> item(at != nullptr ? controller_->insertItem(at, type)
                                                         : nullptr);
  if (item == nullptr) return;
  updateView();
  treeGrid()->selectElements({item.get()});
  if (treeGrid()->currentElement() != item.get()) {
    app::qce::GetQCEChannel()->message(
        "新增的人材机不符合当前的过滤条件，暂时不显示。请放宽范围、标志、关联或条件过滤。",
        QMessageBox::Ok);
    return;
  }
  const auto* columns = dynamic_cast<const gui::ViewModel*>(abstractModel());
  const QModelIndex current = treeGrid()->currentIndex();
  const QModelIndex name =
      current.sibling(current.row(), columns->getColumnIndex(domain::keys::BRIName));
  treeGrid()->setCurrentIndex(name);
  treeGrid()->edit(name);
}

void QCEResItemViewImpl::deleteItem() {
  const ResItemCommands::Items items = selectedItems();
  if (controller_ == nullptr || !controller_->canDeleteItems(items)) return;
  controller_->deleteItems(items);
  updateView();
  // The row that has moved up is the next one to be worked on.
  proxy::Element* next = treeGrid()->currentElement();
  if (next != nullptr && selectedItems().empty()) treeGrid()->selectElements({next});
}

void QCEResItemViewImpl::moveUp() {
  move(true);
}

void QCEResItemViewImpl::moveDown() {
  move(false);
}

void QCEResItemViewImpl::move(bool up) {
  const ResItemCommands::Items items = selectedItems();
  if (controller_ == nullptr || !commands_.isValid() || !commands_.canMove(items, up)) return;
  report(commands_.move(items, up, *controller_));
  treeGrid()->scrollTo(treeGrid()->currentIndex());
}

void QCEResItemViewImpl::exportExcel() {
  namespace keys = domain::keys;
  app::Sheet sheet = bwidgets::makeSheet(*treeGrid(), tabTitle());
  app::AddTotals(
      sheet, "合计",
      {keys::BRIBudgetTotalCost, keys::BRIExcludedTaxTotalCost, keys::BRIIncludedTaxTotalCost});
  app::GetSpreadsheets()->save(tabTitle(), {sheet});
}

void QCEResItemViewImpl::regroup() {
  if (filter_ == nullptr) return;
  filter_->rebuildGroup();
  treeGrid()->clearSortIndicator();
}

void QCEResItemViewImpl::report(const std::string& refusal) {
  updateView();
  if (!refusal.empty()) app::qce::GetQCEChannel()->message(refusal, QMessageBox::Ok);
}

// ---------------------------------------------------------------------------------------------
// State

domain::qce::QCEResItemOperator* QCEResItemViewImpl::resItemOperator() const {
  return filter_ != nullptr ? dynamic_cast<domain::qce::QCEResItemOperator*>(filter_->getOperator())
                            : nullptr;
}

// Selections and edits come in bursts; what follows from them is worked out once.
void QCEResItemViewImpl::refreshLater() {
  if (!refreshTimer_->isActive()) refreshTimer_->start();
}

void QCEResItemViewImpl::refreshActions() {
  const ResItemCommands::Items items = selectedItems();
  const bool movable = controller_ != nullptr && commands_.isValid();
  proxy::Element* current = treeGrid()->currentElement();
  bool commentable = false;
  bool annotated = false;
  if (filter_ != nullptr) {
    std::string text;
    commentable = current != nullptr && filter_->getComment(current, text);
    annotated = std::any_of(items.begin(), items.end(), [this, &text](proxy::Element* item) {
      return filter_->getComment(item, text) && !text.empty();
    });
  }
  insertAction_->setEnabled(movable && !insertMenu_->isEmpty());
  insertMenu_->setEnabled(insertAction_->isEnabled());
  deleteAction_->setEnabled(controller_ != nullptr && controller_->canDeleteItems(items));
  batchPriceAction_->setEnabled(!items.empty());
  editCommentAction_->setEnabled(commentable);
  deleteCommentAction_->setEnabled(annotated);
  poolingAction_->setEnabled(controller_ != nullptr && current != nullptr &&
                             controller_->canCollectToCost(current));
  associationAction_->setEnabled(controller_ != nullptr && controller_->canAssociateBills(items));
  moveUpAction_->setEnabled(movable && commands_.canMove(items, true));
  moveDownAction_->setEnabled(movable && commands_.canMove(items, false));
  regroupAction_->setEnabled(filter_ != nullptr);
}

void QCEResItemViewImpl::refreshStatus() {
  if (!commands_.isValid() || filter_->getOperator() == nullptr) {
    status_->clear();
    return;
  }
  const auto* model = dynamic_cast<const QAbstractItemModel*>(abstractModel());
  const auto* view = dynamic_cast<const gui::ViewModel*>(abstractModel());
  const ResItemCommands::Items items = selectedItems();
  const double sum = sumOfAmounts(*filter_->getOperator(), items);
  std::string comment;
  const auto isItem = [&](proxy::Element* element) {  // groups cannot carry an annotation
    return filter_->getComment(element, comment);
  };
  status_->setText(QString("显示 %1 项，共 %2 项%3　　已选 %4 项　　不含税合价 %5 元")
                       .arg(shownItemCount(*model, *view, isItem))
                       .arg(itemCount(filter_->getRoot(), isItem))
                       .arg(conditions_->isOn() ? "（条件过滤中）" : "")
                       .arg(items.size())
                       .arg(QString::fromStdString(base::ToThousandthsString(sum, 2))));
}

}  // namespace gui::qce
