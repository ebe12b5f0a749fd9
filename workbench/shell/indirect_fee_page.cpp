#include "workbench/shell/indirect_fee_page.h"

#include <QAction>
#include <QToolBar>
#include <QVBoxLayout>

#include "engineering/indirect_fee_left_model.h"
#include "engineering/indirect_fee_right_model.h"
#include "engineering/indirect_fee_view.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/tree_grid_view.h"
#include "workbench/controllers/indirect_fee_controller.h"
#include "workbench/controllers/open_project.h"
#include "workbench/shell/elided_label.h"

namespace shell {

namespace {

void announceAll(QAbstractItemModel& model, const QModelIndex& parent = {}) {
  const int rows = model.rowCount(parent);
  if (rows == 0) return;
  emit model.dataChanged(model.index(0, 0, parent),
                         model.index(rows - 1, model.columnCount() - 1, parent));
  for (int row = 0; row < rows; ++row) announceAll(model, model.index(row, 0, parent));
}

/// What stands behind the page, bound to the project as long as it lives.
struct IndirectFees {
  explicit IndirectFees(records::Project& project)
      : groups(project), items(project), controller(project, items) {
    left.setDisplayTable(groupTable.get());
    left.setOperator(&groups);
    right.setDisplayTable(itemTable.get());
    right.setOperator(&items);
    controller.setModel(&right);
    // Calculated costs follow from items of other pages, too.
    controller.setFiguresChanged([this] {
      announceAll(left);
      announceAll(right);
    });
  }

  std::unique_ptr<domain::DisplayTable> groupTable = operators::makeFeeGroupTable();
  std::unique_ptr<domain::DisplayTable> itemTable = operators::makeFeeItemTable();
  operators::IndirectFeeLeftOperator groups;
  operators::IndirectFeeRightOperator items;
  controllers::IndirectFeeController controller;
  gui::qce::QCEIndirectFeeLeftModelImpl left;
  gui::qce::QCEIndirectFeeRightModelImpl right;
};

}  // namespace

Page makeIndirectFeePage(Session& session) {
  auto fees = std::make_shared<IndirectFees>(session.project().project());
  auto* frame = new QWidget;
  auto* view = new gui::qce::QCEIndirectFeeViewImpl(frame);
  view->setController(&fees->controller);
  view->setModel(&fees->right);
  view->setLeftModel(&fees->left);
  view->hideColumns({domain::keys::IFNumber});  // the rows of the grid have numbers

  auto* bar = new QToolBar(frame);
  bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
  for (QAction* action : view->actions()) {
    if (!action->shortcut().isEmpty()) {
      const QString keys = action->shortcut().toString(QKeySequence::NativeText);
      action->setToolTip(QStringLiteral("%1（%2）").arg(action->text(), keys));
    }
    bar->addAction(action);
  }
  bar->addSeparator();
  auto* hint = new ElidedLabel(bar);
  hint->setText(
      "成本基数算式可用：人工费、材料费、机械费、主材费、设备费、直接费、"
      "分部分项工程费、建筑面积（元、不含税；项目的费用组取全部单位工程）");
  bar->addWidget(hint);
  auto* layout = new QVBoxLayout(frame);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(bar);
  layout->addWidget(view, 1);

  Page page;
  page.key = QStringLiteral("fees");
  page.title = QStringLiteral("间接费");
  page.icon = QIcon(QStringLiteral(":/qce/icons/fees.svg"));
  page.widget = frame;
  page.view = view;
  page.find = [view] { view->rightTable()->openSearchBox(); };
  page.exportGrid = [view] { view->exportExcel(); };
  page.setZoom = [view, width = view->leftTree()->minimumWidth()](int percent) {
    view->leftTree()->setMinimumWidth(width * percent / 100);
    view->leftTree()->setZoom(percent);
    view->rightTable()->setZoom(percent);
  };
  page.behind = fees;
  return page;
}

}  // namespace shell
