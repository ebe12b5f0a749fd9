#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTabBar>
#include <QTreeView>
#include <QTreeWidget>
#include <QUndoStack>
#include <set>

#include "destructors/res_item_view.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/domain/qce/destructors/des_res_item_keys.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "workbench/cli/tour.h"
#include "workbench/controllers/open_project.h"
#include "workbench/operators/des_res_item_operator.h"
#include "workbench/services/channels.h"
#include "workbench/shell/main_window.h"
#include "workbench/shell/page_stack.h"
#include "workbench/shell/session.h"

namespace cli {

namespace keys = domain::keys;
using costing::Decimal;
using records::ResourceItem;

void Tour::designItems() {
  auto* list = window_->findChild<QListWidget*>("pageList");
  require(list != nullptr, "没有页面列表");
  const auto goTo = [this, list](const QString& key) {
    const int row = window_->pages()->pages().indexOf(key);
    require(row >= 0, "没有页面 " + key);
    driver_.clickCell(list, list->model()->index(row, 0));
    require(window_->pages()->currentPage() == key, "没有切换到页面 " + key);
  };
  goTo("design-resources");
  QWidget* page = window_->pages()->currentWidget();
  auto* view = page->findChild<gui::qce::destructors::DesResItemViewImpl*>();
  auto* table = view->findChild<gui::TreeGridView*>();
  const QAbstractItemModel& rows = *table->model();
  records::Project& project = window_->session()->project().project();
  QUndoStack& undo = window_->session()->undoStack();
  const int stepsBefore = undo.index();
  const Decimal costBefore = project.totals().excluded;

  std::vector<proxy::Element*> shown;  // rows of items, from top to bottom
  const std::function<void(const QModelIndex&)> look = [&](const QModelIndex& parent) {
    for (int row = 0; row < rows.rowCount(parent); ++row) {
      const QModelIndex index = rows.index(row, 0, parent);
      proxy::Element* element = table->elementAt(index);
      if (operators::DesResItemOperator::itemOf(element) != nullptr) shown.push_back(element);
      look(index);
    }
  };
  const auto readShown = [&] {
    shown.clear();
    look({});
  };
  const auto item = [](proxy::Element* row) -> ResourceItem& {
    return *operators::DesResItemOperator::itemOf(row);
  };
  const auto button = [this, view](const char* name) {
    auto* found = view->findChild<QPushButton*>(name);
    require(found != nullptr, QString("没有按钮 ") + name);
    return found;
  };
  const auto click = [&](const char* name) {
    require(button(name)->isEnabled(), QString("按钮不可用：") + name);
    driver_.click(button(name));
  };
  const auto cell = [&](proxy::Element* row) {
    return table->viewModel()->makeIndex(row, table->viewModel()->getColumnIndex(keys::BRIName));
  };
  const auto selectRows = [&](proxy::Element* first, proxy::Element* second) {
    driver_.clickCell(table, cell(first));
    driver_.clickCell(table, cell(second), Qt::ControlModifier);
    require(view->selectedItems().size() == 2, "没有选中两项人材机");
  };
  const auto statusSays = [&](const QString& text) {
    require(Driver::waitUntil([&] {
              return view->findChild<QLabel*>("DesResItem_status")->text().contains(text);
            }),
            "状态行没有显示 " + text);
  };
  readShown();
  require(static_cast<qint64>(shown.size()) == project.itemCount(), "没有显示全部人材机");
  statusSays(QString("待归集：%1 项").arg(project.itemsWaiting()));
  picture("人材机归集");

  // Each type of the menu.
  auto* types = button("ResItem_filterRCJButton");
  std::size_t sum = 0;
  for (QAction* type : types->menu()->actions()) {
    const bool opened = driver_.withPopup(
        [&] { driver_.click(types); },
        [&](QWidget* menu) { driver_.click(menu, types->menu()->actionGeometry(type).center()); });
    require(opened && type->isChecked(), "没有选中类型 " + type->text());
    readShown();
    const bool all = type->text() == "所有";
    for (proxy::Element* row : shown) {
      require(all || QString::fromStdString(records::nameOf(item(row).category())) == type->text(),
              "显示了其他类型的人材机");
    }
    if (all) require(shown.size() == sum, "各类型的行数之和不等于全部");
    sum += shown.size();
    if (type->text() == "材料") picture("人材机归集按类型过滤");
  }

  // Two items of one unit, so that they can be paid for by quantity, that cost something and have
  // sources.
  proxy::Element* first = nullptr;
  proxy::Element* second = nullptr;
  for (proxy::Element* row : shown) {
    if (item(row).excludedAmount().value() <= 0 || project.linesOf(item(row)).empty()) continue;
    if (first == nullptr) {
      first = row;
    } else if (item(row).unit() == item(first).unit()) {
      second = row;
      break;
    }
  }
  require(second != nullptr, "没有可用的人材机");
  ResourceItem& a = item(first);
  ResourceItem& b = item(second);
  const records::CostAccount* accountOfA = a.account();
  const records::CostAccount& wanted = *project.allAccounts().back();
  const auto chooseAccount = [&](const QString& wish) {
    const bool came =
        driver_.withPopup([&] { click("ResItem_setCostAccount"); },
                          [&](QWidget* dialog) {
                            driver_.click(dialog->findChild<QLineEdit*>("DesCostAccount_filter"));
                            driver_.type(wish);
                            picture("设置成本科目", dialog);
                            driver_.key(Qt::Key_Return);
                            if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
                          });
    require(came, "没有打开成本科目对话框");
  };
  selectRows(first, second);
  chooseAccount(QString::fromStdString(wanted.code));
  require(a.account() == &wanted && b.account() == &wanted, "没有设置选中各项的成本科目");
  require(undo.index() == stepsBefore + 1, "批量设置成本科目不是一步");
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(a.account() == accountOfA, "撤销没有恢复成本科目");
  auto* local = view->findChild<QCheckBox*>();
  driver_.click(local, QPoint(8, local->height() / 2));
  selectRows(first, second);
  const records::CostAccount* accountOfFirst = a.account();
  chooseAccount(QString::fromStdString(wanted.code));
  require(b.account() == &wanted && a.account() == accountOfFirst, "没有只设置当前项的成本科目");
  driver_.click(local, QPoint(8, local->height() / 2));

  // Linked or not.
  const Decimal both = a.excludedAmount().value() + b.excludedAmount().value();
  const auto waitingBefore = project.itemsWaiting();
  selectRows(first, second);
  click("ResItem_setUnLinkCB");
  require(project.totals().excluded == costBefore - both, "取消关联后成本不对");
  statusSays(QString("待归集：%1 项").arg(waitingBefore + 2));
  picture("取消关联到成本");
  click("ResItem_setLinkCB");
  require(project.totals().excluded == costBefore, "重新关联后成本不对");

  // Collected into a new subcontract, and given back.
  const int entries = project.subcontracts().size();
  const auto collect = [&] {
    const bool came = driver_.withPopup(
        [&] { click("ResItem_setContract"); },
        [&](QWidget* dialog) {
          auto* price = dialog->findChild<QLineEdit*>("DesCollection_price");
          const auto enter = [&](const QString& text) {
            driver_.click(price);
            driver_.key(Qt::Key_A, Qt::ControlModifier);
            driver_.type(text);
          };
          enter("120*(");
          driver_.key(Qt::Key_Return);
          require(dialog->isVisible() && channel_->messages().size() == 1, "没有拒绝有误的单价");
          channel_->clear();
          enter("120*0.95");
          picture("设置归集", dialog);
          driver_.key(Qt::Key_Return);
          if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
        });
    require(came, "没有打开设置归集对话框");
  };
  const int stepsSoFar = undo.index();
  collect();
  require(undo.index() == stepsSoFar + 1, "设置归集不是一步");
  require(project.subcontracts().size() == entries + 1, "没有新建分包");
  const auto& entry =
      static_cast<const records::Subcontract&>(*project.subcontracts().rows().at(entries));
  const Decimal quantity = a.quantity().value() + b.quantity().value();
  require(a.subcontract() == &entry && b.subcontract() == &entry, "没有归集选中的人材机");
  require(entry.quantityNow() == quantity && entry.amount() == (quantity * 114).rounded(2),
          "分包的数量或合价不对");
  require(project.totals().excluded == costBefore - both, "归集后人材机仍计入成本");
  require(Driver::waitUntil([&] { return !button("ResItem_setLinkCB")->isEnabled(); }) &&
              !button("ResItem_setUnLinkCB")->isEnabled() &&
              !button("ResItem_setContract")->isEnabled(),
          "已归集的人材机仍可关联或归集");
  picture("归集之后");
  auto* tabs = page->findChild<QTabBar*>();
  driver_.click(tabs, tabs->tabRect(1).center());
  auto* guide = page->findChild<gui::TreeGridView*>("DesResItemSummary_guide");
  auto* summary = page->findChild<bwidgets::TableView*>("DesResItemSummary_table");
  require(guide->isVisible() && summary->model()->rowCount() > 0, "没有显示汇总");
  Decimal counted;
  const int money = summary->viewModel()->getColumnIndex(keys::BRIExcludedTaxTotalCost);
  for (int row = 0; row < summary->model()->rowCount(); ++row) {
    const double shownMoney = summary->model()->index(row, money).data(Qt::EditRole).toDouble();
    counted += *Decimal::fromDouble(shownMoney);
  }
  require(counted == project.totals().excluded, "汇总的计入成本与项目不同");
  picture("人材机归集汇总");
  const QModelIndex groups = guide->model()->index(guide->model()->rowCount() - 1, 0);
  driver_.clickCell(guide, guide->model()->index(0, 0, groups));
  require(summary->model()->rowCount() > 0 && summary->model()->rowCount() <= 2,
          "按分包的汇总不对");
  picture("按分包汇总");
  driver_.click(tabs, tabs->tabRect(0).center());
  selectRows(first, second);
  click("ResItem_cancelContract");
  require(a.subcontract() == nullptr && project.totals().excluded == costBefore,
          "取消归集没有恢复成本");

  // Where an item comes from.
  driver_.clickCell(table, cell(first));
  click("ResItem_findSource");
  require(window_->pages()->currentPage() == "bills", "没有转到来源清单");
  std::set<proxy::Element*> expected;
  for (const records::BillLine& line : project.linesOf(a)) expected.insert(line.bill);
  const auto selected = dynamic_cast<bwidgets::TreeGridView&>(*grid()).selectedElements();
  require(std::set<proxy::Element*>(selected.begin(), selected.end()) == expected,
          "选中的不是来源清单");
  picture("查看来源");

  goTo("design-resources");
  while (undo.index() > stepsBefore) driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(project.subcontracts().size() == entries && a.account() == accountOfA,
          "撤销没有恢复原状");
  goTo("resources");
}

}  // namespace cli
