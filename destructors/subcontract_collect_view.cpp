#include "destructors/subcontract_collect_view.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

#include "destructors/subcontract_commands.h"
#include "host/abst/qce/destructors/des_set_subcontract_view.h"
#include "host/bwidgets/grid_sheet.h"
#include "host/domain/field_keys.h"
#include "host/gui/styled_item_delegate.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "host/proxy/element.h"

namespace gui::qce::destructors {

namespace {

namespace keys = domain::keys;

constexpr char NoBill[] = "没有选中清单。请先在归集树中选择分包下的清单。";

}  // namespace

DesSetSubcontractCollectViewImpl::DesSetSubcontractCollectViewImpl(QWidget* parent)
    : BasePage(parent) {
  using View = DesSetSubcontractCollectViewImpl;
  setWindowTitle("分包归集");
  applyAction_ = addCommand(
      this, "应用到其他清单",
      "在整个项目中查找与当前分包的清单相同（编码前 9 位和单位相同）的其他清单，归入当前分包", {},
      &View::applyToOtherBills);
  removeAction_ = addCommand(this, "移除清单", "把选中的清单从所属的分包中移除",
                             {QKeySequence(Qt::Key_Delete)}, &View::removeBills);

  auto* apply = new QPushButton(applyAction_->text(), this);
  apply->setObjectName("DesSetSubcontract_apply");
  apply->setToolTip(applyAction_->toolTip());
  apply->setFixedWidth(180);
  connect(apply, &QPushButton::clicked, this, &View::applyToOtherBills);
  auto* top = new QHBoxLayout;
  top->addWidget(apply);
  top->addStretch();

  tree_ = new gui::TreeGridView(this);
  tree_->setObjectName("DesSetSubcontract_collect");
  tree_->setItemDelegate(new gui::StyledItemDelegate(tree_));
  tree_->setTreePosition(0);
  tree_->setContextMenuPolicy(Qt::CustomContextMenu);
  tree_->setEmptyText("还没有分包");
  connect(tree_, &QWidget::customContextMenuRequested, this, &View::showContextMenu);
  connect(tree_, &bwidgets::TreeGridView::deletePressed, this, &View::removeBills);
  connect(tree_, &bwidgets::TreeGridView::currentElementChanged, this, &View::onCurrentElement);
  setGrid(tree_, keys::SEName, keys::SECode);

  auto* layout = new QVBoxLayout(this);
  layout->setMargin(0);
  layout->addLayout(top);
  layout->addWidget(tree_, 1);
}

DesSetSubcontractCollectViewImpl::~DesSetSubcontractCollectViewImpl() = default;

void DesSetSubcontractCollectViewImpl::setModel(abst::BaseModel* model) {
  BasePage::setModel(model);
  tree_->header()->setSectionsClickable(false);
  tree_->header()->setSortIndicatorShown(false);
  tree_->expandAll();
  if (tree_->model() == nullptr) return;
  // A bill that comes in is to be seen; so are those of an entry that comes back.
  connect(tree_->model(), &QAbstractItemModel::rowsInserted, tree_,
          [tree = tree_](const QModelIndex& parent, int first, int last) {
            tree->expand(parent);
            for (int row = first; row <= last; ++row) {
              tree->expand(tree->model()->index(row, 0, parent));
            }
          });
}

void DesSetSubcontractCollectViewImpl::setAbstractView(
    abst::qce::destructors::DesSetSubcontractView* view) {
  view_ = view;
}

void DesSetSubcontractCollectViewImpl::onModelReset() {
  BasePage::onModelReset();
  tree_->expandAll();
}

void DesSetSubcontractCollectViewImpl::showEntry(std::int64_t id) {
  const QAbstractItemModel* rows = tree_->model();
  for (int row = 0; rows != nullptr && row < rows->rowCount(); ++row) {
    const QModelIndex index = rows->index(row, 0);
    const proxy::Element* entry = tree_->elementAt(index);
    if (entry == nullptr || entry->id() != id) continue;
    const QModelIndex current = tree_->currentIndex();
    if (current.isValid() && (current.row() == row || current.parent().isValid()) &&
        (current.parent().isValid() ? current.parent().row() : current.row()) == row) {
      return;
    }
    tree_->setCurrentIndex(index);
    tree_->expand(index);
    return;
  }
}

void DesSetSubcontractCollectViewImpl::onCurrentElement(proxy::Element* element) {
  if (element == nullptr) return;
  const proxy::Element* entry = element->parent() != nullptr ? element->parent() : element;
  emit entryChosen(entry->id());
}

// ---------------------------------------------------------------------------------------------
// Commands

std::vector<proxy::Element*> DesSetSubcontractCollectViewImpl::selectedBills() const {
  std::vector<proxy::Element*> bills;
  for (proxy::Element* element : tree_->selectedElements()) {
    if (element->parent() != nullptr) bills.push_back(element);
  }
  return bills;
}

void DesSetSubcontractCollectViewImpl::applyToOtherBills() {
  if (view_ != nullptr) view_->applyToOtherBills();
}

void DesSetSubcontractCollectViewImpl::removeBills() {
  const std::vector<proxy::Element*> bills = selectedBills();
  if (bills.empty()) return hint(NoBill);
  if (view_ != nullptr) view_->removeCollected(bills);
}

void DesSetSubcontractCollectViewImpl::moveBills(std::int64_t entry) {
  const QAbstractItemModel* rows = tree_->model();
  for (int row = 0; view_ != nullptr && row < rows->rowCount(); ++row) {
    proxy::Element* to = tree_->elementAt(rows->index(row, 0));
    if (to == nullptr || to->id() != entry) continue;
    view_->moveCollected(selectedBills(), to);
    return;
  }
}

void DesSetSubcontractCollectViewImpl::showContextMenu(const QPoint& at) {
  auto* menu = new QMenu(tree_);
  menu->setObjectName("DesSetSubcontract_collectMenu");
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->addAction(removeAction_);
  QMenu* targets = menu->addMenu("移到其他分包");
  const std::vector<proxy::Element*> bills = selectedBills();
  const QAbstractItemModel* rows = tree_->model();
  for (int row = 0; !bills.empty() && row < rows->rowCount(); ++row) {
    const proxy::Element* entry = tree_->elementAt(rows->index(row, 0));
    if (entry == nullptr || bills.front()->parent() == entry) continue;
    QStringList name;
    for (const std::string& key : {keys::SECode, keys::SEName}) {
      const int column = tree_->viewModel()->getColumnIndex(key);
      const QString text = rows->index(row, column).data().toString();
      if (!text.isEmpty()) name << text;
    }
    const std::int64_t id = entry->id();
    targets->addAction(name.join(' ').replace('&', "&&"), this, [this, id] { moveBills(id); });
  }
  targets->setEnabled(!targets->isEmpty());
  menu->addAction(applyAction_);
  menu->addSeparator();
  menu->addAction("复制\tCtrl+C", tree_, &bwidgets::TreeGridView::copySelection);
  menu->addSeparator();
  menu->addAction("全部展开", tree_, &QTreeView::expandAll);
  menu->addAction("全部折叠", tree_, &QTreeView::collapseAll);
  menu->addAction("导出到表格", this, [this] { bwidgets::exportSheet(*tree_, "分包归集"); });
  menu->popup(tree_->viewport()->mapToGlobal(at));
}

}  // namespace gui::qce::destructors
