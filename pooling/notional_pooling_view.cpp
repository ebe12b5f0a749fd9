#include "pooling/notional_pooling_view.h"

#include <QAbstractItemModel>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <string>

#include "framework/base_page.h"
#include "host/bwidgets/screen.h"
#include "host/domain/field_keys.h"
#include "host/gui/styled_item_delegate.h"
#include "host/gui/tree_grid_view.h"
#include "host/proxy/qce/field_accessors.h"

namespace gui::qce {
namespace {

constexpr char Note[] =
    "注：\n 1.预算工料机中已归集或关联到成本的数据不显示（部分归集到成本的工料机仅显示剩余可归集数"
    "量）\n2.默认归集数量为当前清单未归集的预算工料机，支持修改预算工材机的数量，且数量最多不能超过"
    "未归集到成本的部分\n3.应用到其它清单会勾选与当前清单已勾选的工料机相同项，但如需归集部分数量工"
    "料机需去其它清单手动修改归集数量";

// A bill that is reached with the keyboard is chosen as one that is clicked.
class BillList : public QListWidget {
 public:
  using QListWidget::QListWidget;

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    QListWidgetItem* before = currentItem();
    QListWidget::keyPressEvent(event);
    QListWidgetItem* now = currentItem();
    if (now != nullptr && now != before) emit itemClicked(now);
  }
};

std::string billText(const proxy::Element* bill, const char* separator) {
  return proxy::qce::GetQCESubEngBillCodeWithIndex(bill) + separator +
         proxy::qce::GetQCESubEngBillName(bill) + separator +
         proxy::qce::GetQCESubEngBillUnit(bill);
}

}  // namespace

QCENotionalPoolingViewImpl::QCENotionalPoolingViewImpl(QWidget* parent) : Dialog(parent) {
  setWindowTitle("选择归集到成本的预算收入工料机");
  setMinimumSize(static_cast<int>(0.6 * bwidgets::Screen::getNoIncludeTaskbartWidget()),
                 static_cast<int>(0.7 * bwidgets::Screen::getNoIncludeTaskbartHeight()));

  currentBillLabel_ = new QLabel(this);
  currentBillLabel_->setObjectName("NotionalPooling_currentBill");
  currentItemLabel_ = new QLabel(this);
  currentItemLabel_->setObjectName("NotionalPooling_currentItem");
  for (QLabel* label : {currentBillLabel_, currentItemLabel_}) {
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    label->setTextFormat(Qt::PlainText);
  }
  otherBillsButton_ = new QPushButton("应用到其他清单", this);
  otherBillsButton_->setObjectName("NotionalPooling_otherBills");
  otherBillsButton_->setAutoDefault(false);

  billList_ = new BillList(this);
  billList_->setObjectName("NotionalPooling_bills");
  billList_->setWindowTitle("关联清单");
  billList_->setMaximumWidth(300);
  billList_->setUniformItemSizes(true);
  billList_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

  tree_ = new gui::TreeGridView(this);
  tree_->setObjectName("NotionalPooling_tree");
  tree_->setWindowTitle("清单预算工料机");
  tree_->setTreePosition(1);
  tree_->setItemDelegate(new gui::StyledItemDelegate(this));
  tree_->setMinimumWidth(650);

  auto* note = new QLabel(Note, this);
  note->setObjectName("NotionalPooling_note");
  note->setTextFormat(Qt::PlainText);
  note->setWordWrap(true);

  auto* buttons = new QDialogButtonBox(this);
  for (QPushButton* button : {buttons->addButton("确定", QDialogButtonBox::YesRole),
                              buttons->addButton("取消", QDialogButtonBox::NoRole)}) {
    button->setAutoDefault(false);
  }

  auto* itemRow = new QHBoxLayout;
  itemRow->addWidget(currentItemLabel_, 1);
  itemRow->addWidget(otherBillsButton_, 0, Qt::AlignRight);
  auto* current = new QVBoxLayout;
  current->addWidget(currentBillLabel_);
  current->addLayout(itemRow);
  auto* panes = new QHBoxLayout;
  panes->addWidget(billList_);
  panes->addWidget(tree_, 1);
  auto* layout = new QVBoxLayout(this);
  layout->setMargin(10);
  layout->addLayout(current);
  layout->addLayout(panes, 1);
  layout->addWidget(note);
  layout->addWidget(buttons);

  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(billList_, &QListWidget::itemClicked, this, &QCENotionalPoolingViewImpl::billItemChanged);
  connect(otherBillsButton_, &QPushButton::clicked, this,
          &QCENotionalPoolingViewImpl::useToOtherBills);

  // On a small screen the minimum is less than the panes need, and would win over it.
  resize(sizeHint().expandedTo(minimumSize()));
}

QCENotionalPoolingViewImpl::~QCENotionalPoolingViewImpl() = default;

void QCENotionalPoolingViewImpl::setController(
    abst::qce::QCENotionalPoolingController* controller) {
  controller_ = controller;
}

void QCENotionalPoolingViewImpl::setModel(abst::BaseModel* model) {
  QAbstractItemModel* items =
      gui::showInGrid(tree_, model, domain::keys::NPName, domain::keys::NPCode);
  if (items == nullptr) return;
  for (const QMetaObject::Connection& connection : connections_) disconnect(connection);
  model_ = dynamic_cast<abst::qce::QCENotionalPoolingFilterModel*>(model);
  connections_ = {connect(items, &QAbstractItemModel::modelReset, this,
                          &QCENotionalPoolingViewImpl::updateView),
                  connect(items, &QAbstractItemModel::dataChanged, this,
                          &QCENotionalPoolingViewImpl::updateView)};
  initDefaultWidth();
}

void QCENotionalPoolingViewImpl::initDefaultWidth() {
  tree_->applyDefaultColumnWidths();
}

void QCENotionalPoolingViewImpl::updateView() {
  tree_->viewport()->update();
}

void QCENotionalPoolingViewImpl::cleanUpResources() {
  bills_.clear();
  billList_->clear();
  currentBillLabel_->clear();
  currentItemLabel_->clear();
  if (model_ != nullptr) model_->cleanUpResources();
}

void QCENotionalPoolingViewImpl::setAssociatedBills(std::vector<proxy::Element*>& bills) {
  for (proxy::Element* bill : bills) {
    auto* item = new QListWidgetItem(QString::fromStdString(billText(bill, "  ")));
    item->setToolTip(item->text());
    billList_->insertItem(billList_->count(), item);
    bills_.emplace(item, bill);
  }
}

void QCENotionalPoolingViewImpl::setCurrentAssociatedBill(proxy::Element* bill) {
  currentBillLabel_->setText(QString::fromStdString("当前清单：" + billText(bill, "/")));
}

void QCENotionalPoolingViewImpl::setCurrentQCEGLJItem(proxy::Element* item) {
  if (model_ != nullptr) model_->setCurrentQCEGLJItem(item);
  currentItemLabel_->setText(QString::fromStdString("当前成本工料机：" +
                                                    proxy::qce::GetQCEGLJItemCode(item) + "/" +
                                                    proxy::qce::GetQCEGLJItemName(item)));
}

void QCENotionalPoolingViewImpl::billItemChanged(QListWidgetItem* listItem) {
  const auto found = bills_.find(listItem);
  if (found == bills_.end() || !found->second) return;
  if (controller_ != nullptr) controller_->setCurrentSubEngBill(found->second.get());
  tree_->expandAll();
}

void QCENotionalPoolingViewImpl::useToOtherBills() {
  if (controller_ != nullptr) controller_->usedToOtherBills(nullptr);
}

void QCENotionalPoolingViewImpl::showDialog(bool withBills) {
  billList_->setVisible(withBills);
  otherBillsButton_->setVisible(withBills);
  currentBillLabel_->setVisible(!withBills);
  if (withBills) {
    billList_->setCurrentRow(0);
    billItemChanged(billList_->currentItem());
  } else {
    tree_->expandAll();
  }
  // Wide enough for the quantity to pool, at the far end of the columns, where the screen has room.
  const int list = withBills ? billList_->maximumWidth() : 0;
  const int room =
      bwidgets::Screen::fraction(bwidgets::Screen::availableSize(this), 0.95, 1).width();
  resize(std::max(width(), std::min(room, list + tree_->header()->length() + 60)), height());
  tree_->setFocus();
  if (exec() == 1 && controller_ != nullptr) controller_->collectToQCEResItem();
}

// Return ends here when a cell's editor has taken it, too: it must not press a button.
void QCENotionalPoolingViewImpl::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (auto* button = qobject_cast<QPushButton*>(focusWidget())) button->click();
      event->accept();
      return;
    case Qt::Key_Space:
      event->accept();
      return;
    default:
      Dialog::keyPressEvent(event);
  }
}

}  // namespace gui::qce
