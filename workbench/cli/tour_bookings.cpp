#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QTreeView>
#include <QUndoStack>
#include <algorithm>
#include <set>

#include "host/bwidgets/tree_grid_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/view_model.h"
#include "workbench/cli/tour.h"
#include "workbench/controllers/open_project.h"
#include "workbench/services/channels.h"
#include "workbench/shell/main_window.h"
#include "workbench/shell/session.h"

namespace cli {

namespace keys = domain::keys;

namespace {

void collectBudget(proxy::Element& node, std::vector<records::BudgetItem*>& into) {
  if (auto* line = dynamic_cast<records::BudgetItem*>(&node)) into.push_back(line);
  for (int row = 0; row < node.childCount(); ++row) collectBudget(*node.child(row), into);
}

}  // namespace

void Tour::poolResources() {
  records::Project& project = window_->session()->project().project();
  QUndoStack& stack = window_->session()->undoStack();
  const int steps = stack.index();
  const std::string before = project.dump();
  const costing::Decimal budget = project.totals().budget;
  const QModelIndex cell = items(column(keys::BRIName)).value(0);
  const scoped_refptr<records::ResourceItem> item(
      dynamic_cast<records::ResourceItem*>(element(cell)));
  records::StructureNode* unitWork = project.unitWorkOf(*item);
  const QString totals = find<QLabel>("totalsText")->text();

  // A resource that several bills use, in a bill that uses another one, too.
  std::vector<records::BudgetItem*> lines;
  collectBudget(*unitWork, lines);
  const auto bills = [&](const records::BudgetItem& of) {
    std::set<const records::Bill*> found;
    for (const records::BudgetItem* line : lines) {
      if (project.sameResource(of, *line)) found.insert(&project.billOf(*line));
    }
    return found.size();
  };
  const records::BudgetItem* whole = nullptr;
  const records::BudgetItem* part = nullptr;
  for (std::size_t i = 0; i + 1 < lines.size() && part == nullptr; ++i) {
    if (&project.billOf(*lines[i]) != &project.billOf(*lines[i + 1]) || bills(*lines[i]) < 3 ||
        lines[i]->resourceItem == item.get() || project.sameResource(*lines[i], *lines[i + 1])) {
      continue;
    }
    whole = lines[i];
    part = lines[i + 1];
  }
  require(part != nullptr, "没有三个清单共用的预算工料机");
  const costing::Decimal half =
      (project.quantity(*part) / costing::Decimal(2)).rounded(costing::MaxQuantityPlaces);
  const auto rowOf = [](QAbstractItemView* rows, const records::BudgetItem& line, const char* key) {
    const auto& view = dynamic_cast<const gui::ViewModel&>(*rows->model());
    const int column = view.getColumnIndex(key);
    const QModelIndex top = rows->model()->index(0, 0);
    for (int row = 0; row < rows->model()->rowCount(top); ++row) {
      const QModelIndex at = rows->model()->index(row, column, top);
      if (view.getInternalData(at)->id() == line.id()) return at;
    }
    return QModelIndex();
  };
  const auto choose = [&](QWidget* dialog, const records::Bill& bill) {
    auto* list = find<QListWidget>("NotionalPooling_bills", dialog);
    const QString code = QString::fromStdString(bill.code.str());
    for (int row = 0; row < list->count(); ++row) {
      if (!list->item(row)->text().startsWith(code)) continue;
      list->scrollToItem(list->item(row));
      driver_.click(list->viewport(), list->visualItemRect(list->item(row)).center());
      return;
    }
    require(false, "没有列出清单 " + code);
  };

  driver_.clickCell(grid(), cell);
  const bool came = driver_.withPopup(
      [this] { clickAction("归集到成本"); },
      [&](QWidget* dialog) {
        auto* rows = find<bwidgets::TreeGridView>("NotionalPooling_tree", dialog);
        choose(dialog, project.billOf(*whole));
        driver_.clickCell(rows, rowOf(rows, *whole, "QCE_NPChoose"));
        driver_.clickCell(rows, rowOf(rows, *part, "QCE_NPChoose"));
        const QModelIndex quantity = rowOf(rows, *part, "QCE_NPCollectionAmount");
        const QString shown = quantity.data().toString();
        driver_.doubleClickCell(rows, quantity);
        driver_.retype("999999999");
        driver_.key(Qt::Key_Return);
        Driver::wait(0);
        require(channel_->messages().size() == 1 &&
                    channel_->messages().front().text == "超过最大可归集数量，请重新输入！",
                "没有拒绝过大的归集数量");
        channel_->clear();
        require(quantity.data().toString() == shown, "拒绝之后归集数量变了");
        driver_.doubleClickCell(rows, quantity);
        driver_.retype(QString::fromStdString(half.toString()));
        driver_.key(Qt::Key_Return);
        Driver::wait(0);
        require(dialog->isVisible(), "回车关闭了对话框");
        picture("归集到成本", dialog);
        clickButton("应用到其他清单", dialog);
        for (const records::BudgetItem* line : lines) {
          if (!project.sameResource(*line, *whole)) continue;
          choose(dialog, project.billOf(*line));
          require(rowOf(rows, *line, "QCE_NPChoose").data(Qt::CheckStateRole).toInt() == 2,
                  "没有应用到其他清单");
        }
        picture("应用到其他清单", dialog);
        clickButton("确定", dialog);
        if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
      });
  require(came, "“归集到成本”没有打开对话框");
  require(stack.index() == steps + 1, "归集不是一个撤销步骤");
  for (const records::BudgetItem* line : lines) {
    const bool chosen = project.sameResource(*line, *whole) || project.sameResource(*line, *part);
    const costing::Decimal wanted = line == part ? half
                                    : chosen     ? project.quantity(*line)
                                                 : costing::Decimal();
    require(project.pooled(*line, *item) == wanted, "归集的数量不对");
  }
  require(text(item.get(), keys::BRIAssociation) == "√", "没有关联标记");
  require(project.totals().budget == budget, "归集后预算合价变了");
  costing::Decimal quantity;
  for (const records::BillLine& line : project.linesOf(*item)) quantity += line.costQuantity;
  require(costing::storedQuantity(quantity, item->unit().str()) == item->quantity().value(),
          "成本工料机的数量不是归集之和");
  require(cell.sibling(cell.row(), column(keys::BRIAmount)).data().toDouble() ==
              item->quantity().toDouble(),
          "页面没有显示新的数量");
  const auto* shownTotals = find<QLabel>("totalsText");
  require(Driver::waitUntil([&] { return shownTotals->text() != totals; }), "状态栏没有更新");
  picture("归集之后");

  // What is pooled is no longer offered; what is left of the other one is.
  driver_.withPopup(
      [this] { clickAction("归集到成本"); },
      [&](QWidget* dialog) {
        auto* rows = find<bwidgets::TreeGridView>("NotionalPooling_tree", dialog);
        choose(dialog, project.billOf(*whole));
        require(!rowOf(rows, *whole, "QCE_NPAmount").isValid(), "已归集的仍然列出");
        require(rowOf(rows, *part, "QCE_NPAmount").data().toDouble() ==
                    (project.quantity(*part) - half).rounded(costing::MaxQuantityPlaces).toDouble(),
                "剩余可归集数量不对");
        driver_.key(Qt::Key_Escape);
        if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
      });
  require(stack.index() == steps + 1, "取消之后仍然归集了");
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(project.dump() == before, "归集没有完全撤销");
  require(Driver::waitUntil([&] { return shownTotals->text() == totals; }), "撤销后状态栏没有恢复");
}

void Tour::associateBills() {
  records::Project& project = window_->session()->project().project();
  QUndoStack& stack = window_->session()->undoStack();
  const int steps = stack.index();
  const std::string before = project.dump();
  const costing::Decimal budget = project.totals().budget;
  const QModelIndex cell = items(column(keys::BRIName)).value(0);
  const scoped_refptr<records::ResourceItem> item(
      dynamic_cast<records::ResourceItem*>(element(cell)));
  driver_.clickCell(grid(), cell);

  // The pooling dialog opens when the one before it has gone.
  bool handedOver = false;
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
    QWidget* dialog = QApplication::activeModalWidget();
    if (dialog == nullptr || !dialog->isVisible() ||
        dialog->windowTitle() != "选择归集到成本的预算收入工料机") {
      return;
    }
    poll.stop();
    handedOver = true;
    auto* rows = find<bwidgets::TreeGridView>("NotionalPooling_tree", dialog);
    driver_.clickCell(rows, rows->model()->index(0, 0));  // the bill's box, for all below it
    picture("关联后归集到成本", dialog);
    clickButton("确定", dialog);
    if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
  });

  QString marked;
  const bool came = driver_.withPopup(
      [this] { clickAction("关联清单"); },
      [&](QWidget* dialog) {
        auto* bills = find<bwidgets::TreeGridView>("AssociationBill_right", dialog);
        QModelIndex bill = bills->model()->index(0, 0);
        while (bills->model()->hasChildren(bill)) bill = bills->model()->index(0, 0, bill);
        marked = bill.data().toString();
        driver_.clickCell(bills, bill.sibling(bill.row(), 1));
        driver_.key(Qt::Key_Space);
        auto* collect = find<QAbstractButton>("AssociationBill_collect", dialog);
        driver_.click(collect, QPoint(8, collect->height() / 2));
        picture("关联清单", dialog);
        poll.start(10);
        clickButton("确定", dialog);
        if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
      });
  require(came, "“关联清单”没有打开对话框");
  require(handedOver, "确定后没有弹出归集到成本");
  require(stack.index() == steps + 2, "关联和归集不是两个撤销步骤");
  const std::vector<records::Bill*> associated = project.associatedBills(*item);
  require(
      associated.size() == 1 && QString::fromStdString(associated.front()->code.str()) == marked,
      "关联的不是勾选的清单");
  require(text(item.get(), keys::BRIAssociation) == "√", "没有关联标记");
  for (int row = 0; row < associated.front()->childCount(); ++row) {
    const auto& line = static_cast<const records::BudgetItem&>(*associated.front()->child(row));
    require(project.pooled(line, *item) == project.quantity(line), "没有全部归集到成本");
  }
  require(project.totals().budget == budget, "归集后预算合价变了");
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(project.dump() == before, "关联和归集没有完全撤销");
}

void Tour::billTerms() {
  using costing::Decimal;
  records::Project& project = window_->session()->project().project();
  QUndoStack& stack = window_->session()->undoStack();
  const int steps = stack.index();
  const std::string before = project.dump();
  driver_.key(Qt::Key_Y, Qt::ControlModifier);  // the association of the step before
  const QModelIndex cell = items(column(keys::BRIName)).value(0);
  const auto* item = dynamic_cast<records::ResourceItem*>(element(cell));
  driver_.clickCell(grid(), cell);
  const QString shown = "清单明细：" + text(element(cell), keys::BRICode);
  require(Driver::waitUntil(
              [&] { return find<QLabel>("ResItemBill_title")->text().startsWith(shown); }),
          "下方没有显示当前人材机的清单");

  auto* pane = find<bwidgets::TreeGridView>("ResItemBill_grid");
  const auto bills = [&] { return project.linesOf(*item); };
  const auto at = [&](const records::Bill& bill, const std::string& key) {
    const int wanted = pane->viewModel()->getColumnIndex(key);
    for (int row = 0; row < pane->model()->rowCount(); ++row) {
      const QModelIndex index = pane->model()->index(row, wanted);
      if (pane->elementAt(index)->id() == bill.id()) return index;
    }
    return QModelIndex();
  };
  require(pane->model()->rowCount() == static_cast<int>(bills().size()), "清单的行数不对");
  const auto used = bills();
  const auto found = std::find_if(used.begin(), used.end(), [](const records::BillLine& line) {
    return !line.budgetQuantity.isZero();
  });
  require(found != used.end(), "没有使用当前人材机的清单");
  records::Bill& bill = *found->bill;
  const auto line = [&] {
    for (const records::BillLine& now : bills()) {
      if (now.bill == &bill) return now;
    }
    return records::BillLine();
  };

  bool refused = false;
  driver_.clickCell(pane, at(bill, keys::SEName));
  Driver::wait(50);
  const bool came =
      driver_.withPopup([this] { driver_.key(Qt::Key_F6); },
                        [&](QWidget* dialog) {
                          driver_.type("0");
                          driver_.key(Qt::Key_Return);
                          refused = dialog->isVisible() && channel_->messages().size() == 1 &&
                                    channel_->messages()[0].text == "系数不能设置为零";
                          channel_->clear();
                          driver_.type("1.05");
                          picture("批量设置系数", dialog);
                          driver_.key(Qt::Key_Return);
                          if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
                        });
  require(came, "F6 没有打开对话框");
  require(refused, "系数为零没有被拒绝");
  const Decimal factor = *Decimal::parse("1.05");
  require(line().costQuantity == found->budgetQuantity * factor, "系数没有进入成本数量");

  driver_.clickCell(pane, at(bill, keys::SEContent));
  driver_.edit("0.5*3");
  require(line().costQuantity == bill.quantity.value() * *Decimal::parse("1.5") * factor,
          "实际含量没有进入成本数量");
  driver_.clickCell(pane, at(bill, keys::RIExcludedTaxFee));
  driver_.edit("100*1.03");
  require(line().excludedAmount == (bill.quantity.value() * 103).rounded(costing::MoneyPlaces),
          "分包单价没有进入成本合价");
  picture("清单明细");

  const std::vector<records::Bill*> associated = project.associatedBills(*item);
  require(associated.size() == 1, "没有已关联的清单");
  driver_.clickCell(pane, at(*associated.front(), keys::SEName));
  Driver::wait(50);
  clickAction("取消关联");
  require(project.associatedBills(*item).empty(), "没有取消关联");
  require(stack.index() == steps + 5, "每次设置不是一个撤销步骤");
  while (stack.index() > steps) driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(project.dump() == before, "清单的设置没有完全撤销");
}

}  // namespace cli
