#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTabBar>
#include <QToolButton>
#include <QTreeView>
#include <QTreeWidget>
#include <QUndoStack>
#include <algorithm>
#include <set>

#include "destructors/res_item_view.h"
#include "framework/des_filter_view.h"
#include "host/base/number_text.h"
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
  // Of items and subcontracts.
  const auto total = [&project] {
    return project.totals().excluded + project.subcontractTotals().excluded;
  };
  const Decimal totalBefore = total();

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

  // A text, and none again.
  auto* filterLine = find<QLineEdit>("ResItem_filterText", view);
  const QString part = QString::fromStdString(item(shown.back()).name().str()).left(2);
  driver_.click(filterLine);
  driver_.type(part);
  driver_.key(Qt::Key_Return);
  const std::size_t all = shown.size();
  readShown();
  require(!shown.empty() && shown.size() < all, "没有按文字“" + part + "”过滤");
  for (proxy::Element* row : shown) {
    const ResourceItem& each = item(row);
    require(QString::fromStdString(each.code().str() + "\n" + each.name().str() + "\n" +
                                   each.spec().str())
                .contains(part, Qt::CaseInsensitive),
            "过滤后显示了不含“" + part + "”的人材机");
  }
  picture("人材机归集按文字过滤");
  for (int i = 0; i < part.size(); ++i) driver_.key(Qt::Key_Backspace);
  require(filterLine->text().isEmpty(), "没有清空过滤的文字");
  readShown();
  require(shown.size() == all, "清空文字后没有显示全部人材机");

  // By the panel: a cost account and a unit, which both have to hold.
  const ResourceItem& last = item(shown.back());
  const auto meets = [&last](const ResourceItem& each) {
    return each.account() == last.account() &&
           each.unit().str().find(last.unit().str()) != std::string::npos;
  };
  require(last.account() != nullptr, "最后一项人材机没有成本科目");
  const auto hits = std::count_if(shown.begin(), shown.end(),
                                  [&](proxy::Element* row) { return meets(item(row)); });
  auto* conditions = find<QToolButton>("ResItem_conditions", view);
  driver_.click(conditions);
  auto* panel = view->findChild<gui::qce::destructors::DesFilterView*>();
  require(panel->isVisible(), "没有条件面板");
  const auto inBox = [&](const char* box, const std::string& text) {
    driver_.click(find<QLineEdit>(box, panel));
    driver_.type(QString::fromStdString(text));
  };
  inBox("cbkm", last.account()->label);
  inBox("unit", last.unit().str());
  driver_.key(Qt::Key_Return);
  readShown();
  require(static_cast<std::ptrdiff_t>(shown.size()) == hits &&
              std::all_of(shown.begin(), shown.end(),
                          [&](proxy::Element* row) { return meets(item(row)); }),
          "条件过滤显示的不是成本科目和单位都相符的人材机");
  statusSays("条件过滤中");
  picture("人材机归集按条件过滤");
  driver_.click(panel->cancelButton());
  driver_.click(conditions);
  readShown();
  require(shown.size() == all && !panel->isVisible(), "取消条件过滤后没有显示全部人材机");

  // Two items of one unit, so that they can be paid for by quantity, that cost something and have
  // sources.
  proxy::Element* first = nullptr;
  proxy::Element* second = nullptr;
  proxy::Element* third = nullptr;
  for (proxy::Element* row : shown) {
    if (item(row).excludedAmount().value() <= 0 || project.linesOf(item(row)).empty()) continue;
    if (first == nullptr) {
      first = row;
    } else if (item(row).unit() != item(first).unit()) {
      continue;
    } else if (second == nullptr) {
      second = row;
    } else {
      third = row;
      break;
    }
  }
  require(third != nullptr, "没有可用的人材机");
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
  const auto yuan = [](const Decimal& value) {
    return QString::fromStdString(base::ToThousandthsString(value.toDouble(), 2));
  };
  auto* tabs = page->findChild<QTabBar*>();
  auto* guide = page->findChild<gui::TreeGridView*>("DesResItemSummary_guide");
  auto* summary = page->findChild<bwidgets::TableView*>("DesResItemSummary_table");
  const auto collectedLine = [guide] {
    return guide->model()->index(guide->model()->rowCount() - 1, 0);
  };
  driver_.click(tabs, tabs->tabRect(1).center());
  driver_.clickCell(guide, collectedLine());
  require(summary->model()->rowCount() == 0, "没有归集的人材机也列在按分包之下");
  picture("没有归集的人材机");
  driver_.click(tabs, tabs->tabRect(0).center());
  const int entries = project.subcontracts().size();
  const auto collect = [&] {
    const bool came = driver_.withPopup(
        [&] { click("ResItem_setContract"); },
        [&](QWidget* dialog) {
          auto* price = dialog->findChild<QLineEdit*>("DesCollection_price");
          const auto enter = [&](const QString& text) {
            driver_.click(price);
            driver_.retype(text);
          };
          enter("120*(");
          driver_.key(Qt::Key_Return);
          require(dialog->isVisible() && channel_->messages().size() == 1, "没有拒绝有误的单价");
          channel_->clear();
          enter("120*0.95");
          const QString effect = find<QLabel>("DesCollection_effect", dialog)->text();
          require(effect.contains(yuan(both)), "没有说明减少的成本：" + effect);
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
  const Decimal paid = entry.amount();
  require(project.totals().excluded == costBefore - both, "归集后人材机仍计入成本");
  require(total() == totalBefore - both + paid, "归集后的总成本不对");
  require(Driver::waitUntil([&] { return !button("ResItem_setLinkCB")->isEnabled(); }) &&
              !button("ResItem_setUnLinkCB")->isEnabled() &&
              !button("ResItem_setContract")->isEnabled(),
          "已归集的人材机仍可关联或归集");
  picture("归集之后");
  driver_.click(tabs, tabs->tabRect(1).center());
  driver_.clickCell(guide, guide->model()->index(0, 0));
  require(guide->isVisible() && summary->model()->rowCount() > 0, "没有显示汇总");
  Decimal counted;
  const int money = summary->viewModel()->getColumnIndex(keys::BRIExcludedTaxTotalCost);
  for (int row = 0; row < summary->model()->rowCount(); ++row) {
    const double shownMoney = summary->model()->index(row, money).data(Qt::EditRole).toDouble();
    counted += *Decimal::fromDouble(shownMoney);
  }
  require(counted == project.totals().excluded, "汇总的计入成本与项目不同");
  picture("人材机归集汇总");
  driver_.clickCell(guide, guide->model()->index(0, 0, collectedLine()));
  require(summary->model()->rowCount() > 0 && summary->model()->rowCount() <= 2,
          "按分包的汇总不对");
  picture("按分包汇总");

  // Back by a double click, and another item into the same entry.
  driver_.doubleClickCell(summary, summary->model()->index(0, 1));
  require(view->isVisible() && !view->selectedItems().empty(), "汇总行没有转到明细");
  for (proxy::Element* row : view->selectedItems()) {
    require(item(row).subcontract() == &entry, "汇总行转到了其他人材机");
  }
  ResourceItem& c = item(third);
  const Decimal more = c.excludedAmount().value();
  driver_.clickCell(table, cell(third));
  const bool intoOld = driver_.withPopup(
      [&] { click("ResItem_setContract"); },
      [&](QWidget* dialog) {
        auto* target = find<QComboBox>("DesCollection_target", dialog);
        driver_.withPopup([&] { driver_.click(target); },
                          [&](QWidget* popup) {
                            auto* choices = popup->findChild<QAbstractItemView*>();
                            driver_.clickCell(choices,
                                              choices->model()->index(target->count() - 1, 0));
                          });
        const QString effect = find<QLabel>("DesCollection_effect", dialog)->text();
        require(effect.contains(yuan(more)) && effect.contains(yuan(paid)),
                "没有说明成本的变化：" + effect);
        picture("归集到已有分包", dialog);
        clickButton("确定", dialog);
        if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
      });
  require(intoOld && c.subcontract() == &entry && entry.amount() == paid,
          "没有归集到已有的分包，或改变了它的合价");
  require(total() == totalBefore - both - more + paid, "归集到已有分包后的总成本不对");

  // Given back: two by the button, the last one by the menu, with the entry that nothing is left
  // of.
  selectRows(first, second);
  click("ResItem_cancelContract");
  require(a.subcontract() == nullptr && channel_->messages().empty() &&
              total() == totalBefore - more + paid,
          "取消归集后的总成本不对");
  driver_.clickCell(table, cell(third));
  channel_->answerNext(QMessageBox::Yes);
  const bool menuCame = driver_.withPopup(
      [&] {
        const QPoint at = table->visualRect(cell(third)).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, table->viewport()->mapToGlobal(at));
        QApplication::sendEvent(table->viewport(), &event);
      },
      [&](QWidget* popup) {
        auto* menu = qobject_cast<QMenu*>(popup);
        require(menu != nullptr, "没有打开右键菜单");
        picture("人材机归集的右键菜单", menu);
        for (QAction* each : menu->actions()) {
          if (each->text() == "取消归集") {
            driver_.click(menu, menu->actionGeometry(each).center());
            return;
          }
        }
        menu->close();
      });
  require(menuCame && c.subcontract() == nullptr && channel_->messages().size() == 1,
          "右键菜单没有取消归集，或没有询问是否删除空分包");
  channel_->clear();
  require(project.subcontracts().size() == entries && total() == totalBefore &&
              project.totals().excluded == costBefore,
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
