#include "pooling/association_bill_view.h"

#include <QAbstractItemModel>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

#include "framework/base_page.h"
#include "framework/delay.h"
#include "host/abst/qce/association_bill_controller.h"
#include "host/abst/qce/association_bill_right_filter_model.h"
#include "host/bwidgets/screen.h"
#include "host/bwidgets/search_box.h"
#include "host/domain/field_keys.h"
#include "host/gui/styled_item_delegate.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "host/proxy/element.h"
#include "host/proxy/qce/field_accessors.h"

namespace gui::qce {
namespace {

constexpr char Warning[] = "工料机未关联清单且消耗量不为零时，关联清单会保持消耗量不变";
// The quotation mark that is opened is not closed.
constexpr char Note[] =
    "注：归集到成本表示将关联的清单下的预算收入工料机和当前成本工料机进行匹配，便于进行收支对比\n"
    "    勾选“汇总统计后，关联的清单下会有一条汇总的专业分包项";

gui::TreeGridView* createTree(const char* name, QWidget* parent) {
  auto* tree = new gui::TreeGridView(parent);
  tree->setObjectName(name);
  tree->setItemDelegate(new gui::StyledItemDelegate(tree));
  return tree;
}

bool isEnter(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

}  // namespace

QCEAssociationBillViewImpl::QCEAssociationBillViewImpl(QWidget* parent) : Dialog(parent) {
  setWindowTitle("关联清单");
  resizeToScreen(0.76, 0.84);
  setMinimumSize(760, 520);

  itemsLabel_ = new QLabel(this);
  itemsLabel_->setObjectName("AssociationBill_items");
  itemsLabel_->setTextFormat(Qt::PlainText);
  itemsLabel_->setVisible(false);
  auto* warning = new QLabel(Warning, this);
  warning->setObjectName("AssociationBill_warning");
  warning->setStyleSheet("color:red");
  warning->setWordWrap(true);

  auto* splitter = new QSplitter(this);
  splitter->setHandleWidth(8);
  splitter->setChildrenCollapsible(false);
  splitter->addWidget(createLeftPane());
  splitter->addWidget(createRightPane());
  splitter->setStretchFactor(0, 20);
  splitter->setStretchFactor(1, 80);
  splitter->setSizes({2500, 8000});

  collectBox_ = new QCheckBox("关联清单后弹出归集到成本设置", this);
  collectBox_->setObjectName("AssociationBill_collect");
  unifyBox_ = new QCheckBox("汇总统计", this);
  unifyBox_->setObjectName("AssociationBill_unify");
  counts_ = new QLabel(this);
  counts_->setObjectName("AssociationBill_counts");
  auto* boxes = new QHBoxLayout;
  boxes->setSpacing(24);
  boxes->addWidget(collectBox_);
  boxes->addWidget(unifyBox_);
  boxes->addStretch();
  boxes->addWidget(counts_);

  auto* note = new QLabel(Note, this);
  note->setObjectName("AssociationBill_note");
  note->setTextFormat(Qt::PlainText);
  note->setWordWrap(true);

  QDialogButtonBox* buttons = createButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  disconnect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::accepted, this,
          &QCEAssociationBillViewImpl::confirmIfAllowed);
  buttons->button(QDialogButtonBox::Ok)->setToolTip("确定（Ctrl+Enter）");

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(10, 10, 10, 10);
  layout->addWidget(itemsLabel_);
  layout->addWidget(warning);
  layout->addWidget(splitter, 1);
  layout->addLayout(boxes);
  layout->addWidget(note);
  layout->addWidget(buttons);

  // Checking a section changes many rows; they are counted once.
  countTimer_ = gui::makeDelay(this, 0, &QCEAssociationBillViewImpl::refreshCounts);
}

QCEAssociationBillViewImpl::~QCEAssociationBillViewImpl() = default;

QWidget* QCEAssociationBillViewImpl::createLeftPane() {
  leftTree_ = createTree("AssociationBill_left", this);
  leftTree_->setMinimumWidth(160);
  leftTree_->header()->setStretchLastSection(true);
  connect(leftTree_, &gui::TreeGridView::currentElementChanged, this,
          &QCEAssociationBillViewImpl::onLeftCurrentRowChanged);
  return leftTree_;
}

QWidget* QCEAssociationBillViewImpl::createRightPane() {
  auto* pane = new QWidget(this);
  filterEdit_ = new QLineEdit(pane);
  filterEdit_->setObjectName("AssociationBill_filter");
  filterEdit_->setPlaceholderText("输入编码、名称、项目特征或拼音首字母，按回车过滤");
  filterEdit_->setClearButtonEnabled(true);
  connect(filterEdit_, &QLineEdit::returnPressed, this, &QCEAssociationBillViewImpl::filter);
  connect(filterEdit_, &QLineEdit::textChanged, this, [this](const QString& text) {
    if (text.isEmpty()) filter();
  });
  auto* filterButton = new QPushButton("过滤", pane);
  filterButton->setObjectName("AssociationBill_filterButton");
  filterButton->setAutoDefault(false);
  connect(filterButton, &QPushButton::clicked, this, &QCEAssociationBillViewImpl::filter);
  onlySelectedBox_ = new QCheckBox("仅显示选中项", pane);
  onlySelectedBox_->setObjectName("AssociationBill_onlySelected");
  connect(onlySelectedBox_, &QCheckBox::toggled, this, &QCEAssociationBillViewImpl::showSelection);

  rightTree_ = createTree("AssociationBill_right", pane);
  rightTree_->setMinimumWidth(360);
  rightTree_->setContextMenuPolicy(Qt::CustomContextMenu);
  rightTree_->installEventFilter(this);
  connect(rightTree_, &QWidget::customContextMenuRequested, this,
          &QCEAssociationBillViewImpl::showContextMenu);
  connect(rightTree_, &gui::TreeGridView::currentElementChanged, this,
          &QCEAssociationBillViewImpl::onRightCurrentRowChanged);

  features_ = new QPlainTextEdit(pane);
  features_->setObjectName("AssociationBill_features");
  features_->setReadOnly(true);
  features_->setTabChangesFocus(true);
  features_->setPlaceholderText("当前清单的项目特征");
  features_->setFixedHeight(fontMetrics().lineSpacing() * 3 + 12);

  auto* filterRow = new QHBoxLayout;
  filterRow->addWidget(filterEdit_, 1);
  filterRow->addWidget(filterButton);
  filterRow->addSpacing(12);
  filterRow->addWidget(onlySelectedBox_);
  auto* layout = new QVBoxLayout(pane);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(filterRow);
  layout->addWidget(rightTree_, 1);
  layout->addWidget(features_);
  return pane;
}

// ---------------------------------------------------------------------------------------------
// Life cycle

void QCEAssociationBillViewImpl::setController(
    abst::qce::QCEAssociationBillController* controller) {
  controller_ = controller;
}

void QCEAssociationBillViewImpl::setModel(abst::BaseModel* model) {
  QAbstractItemModel* items = gui::showInGrid(leftTree_, model, {}, {});
  if (items == nullptr) return;
  for (const QMetaObject::Connection& connection : leftConnections_) disconnect(connection);
  leftConnections_ = {connect(items, &QAbstractItemModel::modelReset, this,
                              [this] {
                                leftTree_->expandAll();
                                onLeftCurrentRowChanged();
                              }),
                      connect(items, &QAbstractItemModel::dataChanged, this,
                              [this] { leftTree_->viewport()->update(); })};
  initDefaultWidth();
}

void QCEAssociationBillViewImpl::setRightModel(abst::BaseModel* model) {
  QAbstractItemModel* items =
      gui::showInGrid(rightTree_, model, domain::keys::SEName, domain::keys::SECode);
  if (items == nullptr) return;
  for (const QMetaObject::Connection& connection : rightConnections_) disconnect(connection);
  rightModel_ = dynamic_cast<abst::qce::QCEAssociationBillRightFilterModel*>(model);
  rightConnections_ = {connect(items, &QAbstractItemModel::modelReset, this,
                               [this] {
                                 rightTree_->expandAll();
                                 updateView();
                               }),
                       connect(items, &QAbstractItemModel::dataChanged, this,
                               &QCEAssociationBillViewImpl::updateView),
                       // Where checked rows alone are shown, one that is not any more goes.
                       connect(items, &QAbstractItemModel::rowsRemoved, this,
                               &QCEAssociationBillViewImpl::updateView)};
  initDefaultWidth();
  updateView();
}

void QCEAssociationBillViewImpl::initDefaultWidth() {
  if (leftTree_->model() != nullptr) leftTree_->applyDefaultColumnWidths();
  if (rightTree_->model() != nullptr) rightTree_->applyDefaultColumnWidths();
}

void QCEAssociationBillViewImpl::activate() {
  updateView();
}

void QCEAssociationBillViewImpl::deactivate() {
  for (gui::TreeGridView* tree : {leftTree_, rightTree_}) {
    if (tree->searchBox() != nullptr) tree->searchBox()->hide();
  }
}

// The mark of a row may change that of the row above, which is not announced on its own.
void QCEAssociationBillViewImpl::updateView() {
  rightTree_->viewport()->update();
  if (!countTimer_->isActive()) countTimer_->start();
}

void QCEAssociationBillViewImpl::setCurrentItems(const std::vector<proxy::Element*>& items) {
  itemsLabel_->setVisible(!items.empty());
  if (items.empty()) return;
  QString text = QString("当前成本工料机：%1/%2")
                     .arg(QString::fromStdString(proxy::qce::GetQCEGLJItemCode(items.front())),
                          QString::fromStdString(proxy::qce::GetQCEGLJItemName(items.front())));
  if (items.size() > 1) text += QString(" 等 %1 项").arg(items.size());
  itemsLabel_->setText(text);
}

void QCEAssociationBillViewImpl::show() {
  initFilterState();
  leftTree_->expandAll();
  rightTree_->expandAll();
  refreshCounts();
  rightTree_->setFocus();
  if (exec() == 1 && needCollectToQCERes() && controller_ != nullptr) {
    controller_->collectToCost();
  }
}

void QCEAssociationBillViewImpl::confirm() {
  const bool associated = controller_ == nullptr || controller_->associate(getUnifyFBChecked());
  done(associated ? Accepted : Rejected);
}

void QCEAssociationBillViewImpl::confirmIfAllowed() {
  if (controller_ == nullptr || controller_->mayAssociate()) confirm();
}

// ---------------------------------------------------------------------------------------------
// What is shown

void QCEAssociationBillViewImpl::initFilterState() {
  filterEdit_->clear();
  onlySelectedBox_->setChecked(false);
  filter();
  showSelection(false);
  const QAbstractItemModel* sections = leftTree_->model();
  if (sections != nullptr) leftTree_->setCurrentIndex(sections->index(0, 0));
  const QAbstractItemModel* bills = rightTree_->model();
  if (bills != nullptr) rightTree_->setCurrentIndex(bills->index(0, 0));
}

void QCEAssociationBillViewImpl::filter() {
  if (rightModel_ != nullptr) rightModel_->filterType(filterEdit_->text().toStdString());
  rightTree_->expandAll();
}

void QCEAssociationBillViewImpl::showSelection(bool on) {
  if (rightModel_ != nullptr) rightModel_->filterType(on);
  rightTree_->expandAll();
}

proxy::Element* QCEAssociationBillViewImpl::getLeftCurrentElemment() const {
  return leftTree_->currentElement();
}

proxy::Element* QCEAssociationBillViewImpl::getRightCurrentElemment() const {
  return rightTree_->currentElement();
}

void QCEAssociationBillViewImpl::onLeftCurrentRowChanged() {
  if (rightModel_ == nullptr) return;
  rightModel_->setSection(getLeftCurrentElemment());
  rightTree_->expandAll();
}

// A cell shows the first line of the features at most.
void QCEAssociationBillViewImpl::onRightCurrentRowChanged() {
  QString text;
  const gui::ViewModel* columns = rightTree_->viewModel();
  if (columns != nullptr && getRightCurrentElemment() != nullptr) {
    const int column = columns->getColumnIndex(domain::keys::SEProjFeatures);
    const QModelIndex current = rightTree_->currentIndex();
    if (column >= 0) text = current.sibling(current.row(), column).data().toString();
  }
  features_->setPlainText(text);
}

void QCEAssociationBillViewImpl::refreshCounts() {
  if (rightModel_ == nullptr) {
    counts_->clear();
    return;
  }
  std::vector<proxy::Element*> checked;
  std::vector<proxy::Element*> added;
  std::vector<proxy::Element*> cancelled;
  rightModel_->getAllChoosedBills(checked);
  rightModel_->getAssociationBills(added);
  rightModel_->getCancelAssociationBills(cancelled);
  counts_->setText(QString("已勾选 %1 条清单：新关联 %2 条，取消关联 %3 条")
                       .arg(checked.size())
                       .arg(added.size())
                       .arg(cancelled.size()));
}

// ---------------------------------------------------------------------------------------------
// Options

bool QCEAssociationBillViewImpl::getUnifyFBChecked() const {
  return unifyBox_ != nullptr && unifyBox_->checkState() == Qt::Checked;
}

void QCEAssociationBillViewImpl::setUnifyFBChecked(bool checked) {
  unifyBox_->setChecked(checked);
}

void QCEAssociationBillViewImpl::setUnifyFBEnable(bool enable) {
  unifyBox_->setEnabled(enable);
}

void QCEAssociationBillViewImpl::setUnifyFBVisible(bool visible) {
  unifyBox_->setVisible(visible);
}

void QCEAssociationBillViewImpl::setCollectedHidden(bool hidden) {
  collectBox_->setChecked(false);
  collectBox_->setHidden(hidden);
}

bool QCEAssociationBillViewImpl::needCollectToQCERes() const {
  return collectBox_->isChecked();
}

// ---------------------------------------------------------------------------------------------
// Marks

void QCEAssociationBillViewImpl::checkSelected(bool checked) {
  QAbstractItemModel* items = rightTree_->model();
  const gui::ViewModel* columns = rightTree_->viewModel();
  if (items == nullptr || columns == nullptr) return;
  for (proxy::Element* element : rightTree_->selectedElements()) {
    // A row may have gone with its mark, or with that of a section.
    const QModelIndex box = columns->makeIndex(element, 0);
    if (box.isValid()) items->setData(box, checked, Qt::CheckStateRole);
  }
}

void QCEAssociationBillViewImpl::toggleSelected() {
  const QModelIndex current = rightTree_->currentIndex();
  if (!current.isValid()) return;
  const QModelIndex box = current.sibling(current.row(), 0);
  checkSelected(box.data(Qt::CheckStateRole).toInt() != Qt::Checked);
}

void QCEAssociationBillViewImpl::showContextMenu(const QPoint& position) {
  auto* menu = new QMenu(this);
  menu->setObjectName("AssociationBill_menu");
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->addAction("勾选选中的行", this, [this] { checkSelected(true); });
  menu->addAction("取消勾选选中的行", this, [this] { checkSelected(false); });
  menu->addAction("取消全部勾选", this, [this] {
    if (rightModel_ != nullptr) rightModel_->clearChecked();
  });
  menu->addSeparator();
  menu->addAction("复制\tCtrl+C", rightTree_, &gui::TreeGridView::copySelection);
  menu->addAction("查找\tCtrl+F", rightTree_, &gui::TreeGridView::openSearchBox);
  menu->addAction("全部展开", rightTree_, &QTreeView::expandAll);
  menu->addAction("全部折叠", rightTree_, &QTreeView::collapseAll);
  menu->popup(rightTree_->viewport()->mapToGlobal(position));
}

// ---------------------------------------------------------------------------------------------
// Keys

// Whatever column is current, Space is for the check box of the row.
bool QCEAssociationBillViewImpl::eventFilter(QObject* watched, QEvent* event) {
  if (watched == rightTree_ && event->type() == QEvent::KeyPress) {
    const auto* press = static_cast<QKeyEvent*>(event);
    if (isEnter(*press) && press->modifiers().testFlag(Qt::ControlModifier)) {
      confirmIfAllowed();
      return true;
    }
    if (press->key() == Qt::Key_Space) {
      toggleSelected();
      return true;
    }
  }
  return Dialog::eventFilter(watched, event);
}

// What a line edit or a tree leaves of these keys must not press the default button.
void QCEAssociationBillViewImpl::keyPressEvent(QKeyEvent* event) {
  if (isEnter(*event)) {
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
      confirmIfAllowed();
    } else if (auto* button = qobject_cast<QPushButton*>(focusWidget())) {
      button->click();
    }
    event->accept();
    return;
  }
  if (event->key() == Qt::Key_Space) {
    event->accept();
    return;
  }
  Dialog::keyPressEvent(event);
}

}  // namespace gui::qce
