#include "destructors/subcontract_table_view.h"

#include <QFileDialog>
#include <QHeaderView>
#include <QMenu>
#include <QVBoxLayout>
#include <algorithm>

#include "destructors/subcontract_add_base_view.h"
#include "destructors/subcontract_commands.h"
#include "host/abst/qce/destructors/des_set_subcontract_view.h"
#include "host/app/scoped_undo.h"
#include "host/bwidgets/grid_sheet.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/styled_item_delegate.h"
#include "host/gui/view_model.h"
#include "host/proxy/element.h"

namespace gui::qce::destructors {

namespace {

constexpr char NoEntry[] = "没有选中分包。请先在分包表中选择一条或几条分包。";

}  // namespace

DesSetSubcontractTableViewImpl::DesSetSubcontractTableViewImpl(QWidget* parent) : BasePage(parent) {
  using View = DesSetSubcontractTableViewImpl;
  setWindowTitle("分包");
  table_ = new bwidgets::TableView(this);
  table_->setObjectName("DesSetSubcontract_table");
  table_->setItemDelegate(new gui::StyledItemDelegate(table_));
  table_->setContextMenuPolicy(Qt::CustomContextMenu);
  table_->setEmptyText("还没有分包。按 Insert 新增，或从基础库添加");
  connect(table_, &QWidget::customContextMenuRequested, this, &View::showContextMenu);
  connect(table_, &bwidgets::TreeGridView::deletePressed, this, &View::onDelete);
  setGrid(table_, domain::keys::BRIName, domain::keys::BRICode);
  auto* layout = new QVBoxLayout(this);
  layout->setMargin(0);
  layout->addWidget(table_);

  commands_ = {addCommand(this, "新增分包", "在当前分包之后新增一条",
                          {QKeySequence(Qt::Key_Insert)}, &View::addSubcontract),
               addCommand(this, "从基础库添加", "从分包基础库中选择条目，添加在当前分包之后",
                          {QKeySequence("Shift+Insert")}, &View::addFromBase),
               addCommand(this, "复制为新分包", "按选中的分包新增相同的条目，不带清单",
                          {QKeySequence("Ctrl+D")}, &View::duplicateSubcontracts),
               addCommand(this, "删除分包", "删除选中的分包，其清单和归集的人材机退回",
                          {QKeySequence("Ctrl+Delete")}, &View::removeSubcontracts),
               addCommand(this, "上移", "把选中的分包上移一行",
                          {QKeySequence("Ctrl+Up"), QKeySequence("Alt+Up")}, &View::moveUp),
               addCommand(this, "下移", "把选中的分包下移一行",
                          {QKeySequence("Ctrl+Down"), QKeySequence("Alt+Down")}, &View::moveDown),
               addCommand(this, "导出到表格", "把分包表保存为电子表格", {}, &View::exportExcel)};
}

DesSetSubcontractTableViewImpl::~DesSetSubcontractTableViewImpl() = default;

void DesSetSubcontractTableViewImpl::setModel(abst::BaseModel* model) {
  BasePage::setModel(model);
  // Entries stand in the order that the estimator gives them.
  table_->header()->setSectionsClickable(false);
  table_->header()->setSortIndicatorShown(false);
}

void DesSetSubcontractTableViewImpl::setAbstractView(
    abst::qce::destructors::DesSetSubcontractView* view) {
  view_ = view;
}

proxy::Element* DesSetSubcontractTableViewImpl::currentElement() const {
  return table_->currentElement();
}

void DesSetSubcontractTableViewImpl::setCurrentElement(std::int64_t id) {
  const QAbstractItemModel* rows = table_->model();
  for (int row = 0; rows != nullptr && row < rows->rowCount(); ++row) {
    const QModelIndex index = rows->index(row, std::max(0, table_->currentIndex().column()));
    const proxy::Element* entry = table_->elementAt(index);
    if (entry == nullptr || entry->id() != id) continue;
    if (row != table_->currentIndex().row()) table_->setCurrentIndex(index);
    return;
  }
}

// ---------------------------------------------------------------------------------------------
// Commands

void DesSetSubcontractTableViewImpl::show(const std::vector<proxy::Element*>& entries) {
  if (entries.empty()) return;
  table_->selectElements(entries);
  // Typing begins with the name.
  const int name = table_->viewModel()->getColumnIndex(domain::keys::BRIName);
  const QModelIndex current = table_->currentIndex();
  if (entries.size() == 1 && name >= 0)
    table_->setCurrentIndex(current.sibling(current.row(), name));
  table_->setFocus();
}

void DesSetSubcontractTableViewImpl::addSubcontract() {
  if (view_ == nullptr) return;
  proxy::Element* entry = view_->addSubcontract(currentElement());
  if (entry != nullptr) show({entry});
}

void DesSetSubcontractTableViewImpl::addFromBase() {
  abst::BaseModel* list = view_ != nullptr ? view_->getBaseList() : nullptr;
  if (list == nullptr) return;
  DesSetSubcontractAddQCEBaseViewImpl dialog(this);
  dialog.setModel(list);
  if (dialog.showAddQCEBaseDialog()) {
    show(view_->addFromBase(dialog.chosenElements(), currentElement()));
  }
}

void DesSetSubcontractTableViewImpl::duplicateSubcontracts() {
  const std::vector<proxy::Element*> entries = table_->selectedElements();
  if (entries.empty()) return hint(NoEntry);
  if (view_ != nullptr) show(view_->duplicateSubcontracts(entries));
}

void DesSetSubcontractTableViewImpl::removeSubcontracts() {
  const std::vector<proxy::Element*> entries = table_->selectedElements();
  if (entries.empty()) return hint(NoEntry);
  if (view_ != nullptr) view_->removeSubcontracts(entries);
}

void DesSetSubcontractTableViewImpl::moveUp() {
  moveEntries(&abst::qce::destructors::DesSetSubcontractView::moveUp, false);
}

void DesSetSubcontractTableViewImpl::moveDown() {
  moveEntries(&abst::qce::destructors::DesSetSubcontractView::moveDown, true);
}

void DesSetSubcontractTableViewImpl::moveEntries(Move command, bool down) {
  std::vector<proxy::Element*> entries = table_->selectedElements();
  if (entries.empty()) return hint(NoEntry);
  // The one in front makes room for the next; where it cannot, all stay as they are.
  if (down) std::reverse(entries.begin(), entries.end());
  const int last = down ? table_->model()->rowCount() - 1 : 0;
  if (view_ == nullptr || entries.front()->row() == last) return;
  app::ScopedUndo undo("移动分包");
  for (proxy::Element* entry : entries) {
    if ((view_->*command)(entry)) continue;
    undo.abandon();
    return;
  }
}

void DesSetSubcontractTableViewImpl::chooseAttachment() {
  const QModelIndex current = table_->currentIndex();
  if (currentElement() == nullptr) return hint(NoEntry);
  const int column = table_->viewModel()->getColumnIndex(domain::keys::BRIContractAttachment);
  const QModelIndex cell = current.sibling(current.row(), column);
  const QString path =
      QFileDialog::getOpenFileName(this, "选择合同附件", cell.data(Qt::EditRole).toString());
  if (!path.isEmpty() && cell.isValid()) table_->model()->setData(cell, path);
}

void DesSetSubcontractTableViewImpl::exportExcel() {
  if (table_->model() != nullptr) bwidgets::exportSheet(*table_, "分包");
}

bool DesSetSubcontractTableViewImpl::wholeRowsSelected() const {
  const std::size_t rows = table_->selectedElements().size();
  const std::size_t cells = static_cast<std::size_t>(table_->selectedCells().size());
  return rows > 0 && cells == rows * table_->visibleColumns().size();
}

void DesSetSubcontractTableViewImpl::onDelete() {
  wholeRowsSelected() ? removeSubcontracts() : table_->clearSelectedCells();
}

void DesSetSubcontractTableViewImpl::showContextMenu(const QPoint& at) {
  auto* menu = new QMenu(table_);
  menu->setObjectName("DesSetSubcontract_tableMenu");
  menu->setAttribute(Qt::WA_DeleteOnClose);
  for (QAction* command : commands_) {
    if (command == commands_.back()) {
      menu->addSeparator();
      table_->addEditActions(menu);
      menu->addAction("选择附件…", this, &DesSetSubcontractTableViewImpl::chooseAttachment)
          ->setEnabled(currentElement() != nullptr);
      menu->addSeparator();
    }
    menu->addAction(command);
  }
  menu->popup(table_->viewport()->mapToGlobal(at));
}

}  // namespace gui::qce::destructors
