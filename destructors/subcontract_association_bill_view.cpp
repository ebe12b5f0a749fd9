#include "destructors/subcontract_association_bill_view.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QVBoxLayout>

#include "destructors/subcontract_commands.h"
#include "host/abst/qce/destructors/des_set_subcontract_association_bill_filter_model.h"
#include "host/abst/qce/destructors/des_set_subcontract_view.h"
#include "host/bwidgets/grid_sheet.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/styled_item_delegate.h"

namespace gui::qce::destructors {

namespace {

constexpr char NoBill[] = "没有选中清单。请先在清单表中选择一条或几条清单。";

}  // namespace

DesSetSubcontractAssociationBillViewImpl::DesSetSubcontractAssociationBillViewImpl(QWidget* parent)
    : BasePage(parent) {
  using View = DesSetSubcontractAssociationBillViewImpl;
  setWindowTitle("清单");
  caption_ = new QLabel(this);
  caption_->setObjectName("DesSetSubcontract_caption");
  caption_->setTextFormat(Qt::PlainText);
  caption_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  associatedOnly_ = new QCheckBox("仅显示已关联", this);
  associatedOnly_->setObjectName("DesSetSubcontract_associatedOnly");
  connect(associatedOnly_, &QCheckBox::toggled, this, [this](bool on) {
    if (filter_ != nullptr) filter_->setAssociatedOnly(on);
  });
  filterEdit_ = new QLineEdit(this);
  filterEdit_->setObjectName("DesSetSubcontract_filter");
  filterEdit_->setPlaceholderText("按编码、名称、项目特征或拼音首字母过滤");
  filterEdit_->setClearButtonEnabled(true);
  filterEdit_->setMinimumWidth(160);
  connect(filterEdit_, &QLineEdit::textChanged, this, [this](const QString& text) {
    if (filter_ != nullptr) filter_->setText(text.trimmed().toStdString());
  });
  auto* top = new QHBoxLayout;
  top->setContentsMargins(6, 0, 6, 0);
  top->addWidget(caption_, 1);
  top->addWidget(associatedOnly_);
  top->addWidget(filterEdit_);

  table_ = new bwidgets::TableView(this);
  table_->setObjectName("DesSetSubcontract_bills");
  table_->setItemDelegate(new gui::StyledItemDelegate(table_));
  table_->setContextMenuPolicy(Qt::CustomContextMenu);
  table_->setEmptyText("没有符合条件的清单");
  connect(table_, &QWidget::customContextMenuRequested, this, &View::showContextMenu);
  connect(table_, &QAbstractItemView::doubleClicked, this, &View::toggle);
  setGrid(table_, domain::keys::SEName, domain::keys::SECode);
  createActions();

  auto* layout = new QVBoxLayout(this);
  layout->setMargin(0);
  layout->addLayout(top);
  layout->addWidget(table_, 1);
}

DesSetSubcontractAssociationBillViewImpl::~DesSetSubcontractAssociationBillViewImpl() = default;

void DesSetSubcontractAssociationBillViewImpl::createActions() {
  using View = DesSetSubcontractAssociationBillViewImpl;
  associateAction_ = addCommand(this, "关联", "把选中的清单归入当前分包（双击或空格键切换）", {},
                                &View::associate);
  disassociateAction_ =
      addCommand(this, "取消关联", "把选中的清单从当前分包中移除（双击或空格键切换）", {},
                 &View::disassociate);
  // Blanks can be typed into the filter.
  QAction* toggleAction =
      addCommand(this, "切换关联", {}, {QKeySequence(Qt::Key_Space)}, &View::toggle);
  removeAction(toggleAction);
  toggleAction->setShortcutContext(Qt::WidgetShortcut);
  table_->addAction(toggleAction);
}

void DesSetSubcontractAssociationBillViewImpl::setModel(abst::BaseModel* model) {
  BasePage::setModel(model);
  filter_ = dynamic_cast<abst::qce::destructors::DesSetSubcontractAssociationBillFilterModel*>(
      abstractModel());
}

void DesSetSubcontractAssociationBillViewImpl::setAbstractView(
    abst::qce::destructors::DesSetSubcontractView* view) {
  view_ = view;
}

void DesSetSubcontractAssociationBillViewImpl::refresh(const QString& entry) {
  caption_->setText(entry.isEmpty() ? "请在上方选择一条分包" : "关联到分包：" + entry);
  caption_->setToolTip(caption_->text());
  if (filter_ != nullptr) filter_->refresh();
}

// ---------------------------------------------------------------------------------------------
// Commands

std::vector<proxy::Element*> DesSetSubcontractAssociationBillViewImpl::selected(
    bool associated) const {
  std::vector<proxy::Element*> bills;
  for (proxy::Element* bill : table_->selectedElements()) {
    if (filter_ != nullptr && filter_->isAssociated(bill) == associated) bills.push_back(bill);
  }
  return bills;
}

void DesSetSubcontractAssociationBillViewImpl::associate() {
  const std::vector<proxy::Element*> bills = selected(false);
  if (table_->selectedElements().empty()) return hint(NoBill);
  if (bills.empty()) return hint("选中的清单都已关联到当前分包。");
  if (view_ != nullptr) view_->associate(bills);
}

void DesSetSubcontractAssociationBillViewImpl::disassociate() {
  const std::vector<proxy::Element*> bills = selected(true);
  if (table_->selectedElements().empty()) return hint(NoBill);
  if (bills.empty()) return hint("选中的清单都没有关联到当前分包。");
  if (view_ != nullptr) view_->disassociate(bills);
}

void DesSetSubcontractAssociationBillViewImpl::toggle() {
  selected(false).empty() && !selected(true).empty() ? disassociate() : associate();
}

void DesSetSubcontractAssociationBillViewImpl::showContextMenu(const QPoint& at) {
  auto* menu = new QMenu(table_);
  menu->setObjectName("DesSetSubcontract_billMenu");
  menu->setAttribute(Qt::WA_DeleteOnClose);
  associateAction_->setEnabled(!selected(false).empty());
  disassociateAction_->setEnabled(!selected(true).empty());
  menu->addAction(associateAction_);
  menu->addAction(disassociateAction_);
  menu->addSeparator();
  menu->addAction("复制\tCtrl+C", table_, &bwidgets::TreeGridView::copySelection);
  menu->addAction("导出到表格", this, [this] { bwidgets::exportSheet(*table_, "分包清单"); });
  menu->popup(table_->viewport()->mapToGlobal(at));
}

}  // namespace gui::qce::destructors
