#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeView>
#include <QUndoStack>
#include <algorithm>
#include <functional>
#include <map>

#include "destructors/res_item_view.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "host/proxy/element.h"
#include "workbench/cli/tour.h"
#include "workbench/controllers/open_project.h"
#include "workbench/operators/des_res_item_operator.h"
#include "workbench/services/channels.h"
#include "workbench/shell/main_window.h"
#include "workbench/shell/page_stack.h"
#include "workbench/shell/session.h"
#include "workbench/shell/summary_view.h"

namespace cli {

namespace keys = domain::keys;
using costing::Decimal;
using records::Bill;
using records::Subcontract;

namespace {

/// Bills of the same work have this in common: the leading part of the code, and the unit.
std::string workOf(const Bill& bill) {
  return bill.code.str().substr(0, 9) + ' ' + bill.unit.str();
}

}  // namespace

void Tour::subcontracts() {
  const QString pageBefore = window_->pages()->currentPage();
  records::Project& project = window_->session()->project().project();
  QUndoStack& stack = window_->session()->undoStack();
  const std::string before = project.dump();
  const int steps = stack.index();
  const std::array<Summary, 3> costs = readSummaries();
  goTo("subcontracts");

  auto* table = find<bwidgets::TableView>("DesSetSubcontract_table");
  auto* tree = find<gui::TreeGridView>("DesSetSubcontract_collect");
  auto* bills = find<bwidgets::TableView>("DesSetSubcontract_bills");
  auto* filter = find<QLineEdit>("DesSetSubcontract_filter");
  const auto cell = [](const bwidgets::TreeGridView* in, int row, const std::string& key) {
    return in->model()->index(row, in->viewModel()->getColumnIndex(key));
  };
  const auto shown = [&](const std::string& key) {
    return cell(table, 0, key).data().toString().remove(',');
  };
  const auto money = [](const Decimal& value) {
    return QString::fromStdString(value.toString(costing::MoneyPlaces));
  };
  const auto edit = [&](const std::string& key, const QString& text) {
    driver_.clickCell(table, cell(table, 0, key));
    driver_.key(Qt::Key_F2);
    driver_.retype(text);
    // A list of what matches stands over the editor first.
    if (QApplication::activePopupWidget() != nullptr) driver_.key(Qt::Key_Return);
    if (!table->hasFocus()) driver_.key(Qt::Key_Return);
  };

  // A bill whose work stands elsewhere, too, where there is one.
  std::map<std::string, std::vector<Bill*>> works;
  const std::function<void(proxy::Element*)> collect = [&](proxy::Element* at) {
    auto* bill = dynamic_cast<Bill*>(at);
    if (bill != nullptr) works[workOf(*bill)].push_back(bill);
    for (int row = 0; bill == nullptr && row < at->childCount(); ++row) collect(at->child(row));
  };
  for (records::StructureNode* work : project.unitWorks()) collect(work);
  const Bill* bill = nullptr;
  for (const auto& [work, same] : works) {
    const bool more = bill == nullptr || same.size() > works[workOf(*bill)].size();
    if (more && !same.front()->quantityForCost().isZero()) bill = same.front();
  }
  require(bill != nullptr, "没有可用的清单");
  const std::vector<Bill*>& same = works[workOf(*bill)];

  // From the base list.
  const bool opened = driver_.withPopup(
      [&] { clickAction("从基础库添加"); },
      [&](QWidget* dialog) {
        auto* list = find<bwidgets::TableView>("DesSetSubcontract_base", dialog);
        int row = 0;
        while (row + 1 < list->model()->rowCount() &&
               cell(list, row, keys::BRIUnit).data().toString().toStdString() != bill->unit.str()) {
          ++row;
        }
        driver_.clickCell(list, cell(list, row, keys::BRIName));
        picture("分包基础库", dialog);
        driver_.doubleClickCell(list, cell(list, row, keys::BRIName));
      });
  require(opened && project.subcontracts().size() == 1, "没有从基础库添加分包");
  auto& entry = *static_cast<Subcontract*>(project.subcontracts().rows().at(0));
  edit(keys::BRIUnit, QString::fromStdString(bill->unit.str()));
  edit(keys::BRIMeteringMethod, "按清单工程量");
  require(shown(keys::BRIAmount) == "0", "没有清单的分包有数量");

  driver_.click(filter);
  driver_.type(QString::fromStdString(bill->name.str()));
  int at = 0;
  while (at < bills->model()->rowCount() &&
         bills->elementAt(bills->model()->index(at, 0))->id() != bill->id()) {
    ++at;
  }
  require(at < bills->model()->rowCount(), "没有过滤出清单");
  driver_.clickCell(bills, cell(bills, at, keys::SEName));
  driver_.key(Qt::Key_Space);
  require(entry.childCount() == 1 && &entry.billAt(0).bill == bill, "没有关联清单");
  const Decimal quantity = bill->quantityForCost();
  require(entry.amount() == (quantity * entry.price).rounded(2) &&
              shown(keys::BRIExcludedTaxTotalCost) == money(entry.amount()),
          "合价不等于工程量 × 单价");
  require(cell(bills, at, keys::SEName).data(Qt::BackgroundRole).value<QColor>() ==
              QColor(229, 243, 225),
          "已关联的清单没有底色");
  require(tree->model()->rowCount(tree->model()->index(0, 0)) == 1, "归集树没有清单");
  auto* hint = find<QWidget>("subcontractHint");
  require(Driver::waitUntil([hint] { return hint->isVisible(); }), "没有提示重复计算的人材机");
  picture("分包设置");

  // A price, a contract type and an account.
  edit(keys::BRIExcludedTaxFee, "275.5");
  require(entry.price == *Decimal::parse("275.5") &&
              entry.amount() == (quantity * entry.price).rounded(2),
          "单价没有进入合价");
  edit(keys::BRIContractType, "清包合同");
  require(entry.contractType.str() == "清包合同", "没有选中合同类型");
  edit(keys::BRIContractType, "<空白>");
  require(entry.contractType.empty(), "没有清空合同类型");
  const records::CostAccount* account = project.allAccounts().back();
  edit(keys::CostAccount, QString::fromStdString(account->label));
  require(entry.account == account, "没有选中成本科目");

  const std::pair<const std::string&, const char*> contract[] = {
      {keys::BRIContractAttachment, "合同/墙体.pdf"},
      {keys::BRIContentQuota, "砌块 1.02 m3/m3"},
      {keys::BRIApplicableArea, "地下室"},
      {keys::BRIPriceExpiryDate, "2099-06-30"}};
  for (const auto& [key, text] : contract) {
    edit(key, text);
    require(shown(key) == text, QString("没有写入 ") + text);
  }

  // By the menus: taken back, and moved to a copy.
  const auto choose = [&](bwidgets::TreeGridView* in, const QModelIndex& index,
                          const QString& command) {
    in->scrollTo(index);
    const bool came = driver_.withPopup(
        [&] {
          driver_.click(in->viewport(), in->visualRect(index).center(), Qt::NoModifier,
                        Qt::RightButton);
        },
        [&](QWidget* popup) {
          auto* menu = qobject_cast<QMenu*>(popup);
          const QList<QAction*> all = menu->actions();
          const auto found = std::find_if(
              all.begin(), all.end(), [&](const QAction* each) { return each->text() == command; });
          require(found != all.end() && (*found)->isEnabled(), "菜单中没有 " + command);
          QMenu* below = (*found)->menu();
          driver_.click(menu, menu->actionGeometry(*found).center());
          if (below == nullptr) return;
          require(Driver::waitUntil([&] { return below->isVisible(); }), "没有打开 " + command);
          driver_.click(below, below->actionGeometry(below->actions().front()).center());
        });
    require(came, "没有打开菜单");
  };
  driver_.clickCell(bills, cell(bills, at, keys::SEName));
  choose(bills, cell(bills, at, keys::SEName), "取消关联");
  require(entry.childCount() == 0 && entry.amount().isZero() &&
              shown(keys::BRIExcludedTaxTotalCost) == "0.00",
          "没有取消关联");
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(entry.childCount() == 1 && entry.amount() == (quantity * entry.price).rounded(2),
          "撤销没有恢复关联");
  driver_.clickCell(table, cell(table, 0, keys::BRIName));
  driver_.key(Qt::Key_D, Qt::ControlModifier);
  require(project.subcontracts().size() == 2, "没有复制分包");
  const auto& copy = *static_cast<Subcontract*>(project.subcontracts().rows().at(1));
  require(copy.name.str() == entry.name.str() + "（副本）" && copy.childCount() == 0,
          "复制的分包名称或清单不对");
  const QModelIndex given = tree->model()->index(0, 1, tree->model()->index(0, 0));
  driver_.clickCell(tree, given);
  choose(tree, given, "移到其他分包");
  require(entry.childCount() == 0 && entry.amount().isZero() && copy.childCount() == 1 &&
              copy.amount() == (quantity * entry.price).rounded(2),
          "清单没有移到其他分包");
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(project.subcontracts().size() == 1 && entry.childCount() == 1, "撤销没有恢复清单");

  // An item that is collected costs what its subcontract costs; a double click leads back to it.
  goTo("design-resources");
  const auto* design = window_->pages()->currentWidget();
  auto* list = design->findChild<gui::qce::destructors::DesResItemViewImpl*>()
                   ->findChild<gui::TreeGridView*>();
  const records::ResourceItem* item = nullptr;
  QModelIndex place;
  const std::function<void(const QModelIndex&)> pick = [&](const QModelIndex& parent) {
    for (int row = 0; item == nullptr && row < list->model()->rowCount(parent); ++row) {
      const QModelIndex index =
          list->model()->index(row, list->viewModel()->getColumnIndex(keys::BRIName), parent);
      const auto* found = operators::DesResItemOperator::itemOf(list->elementAt(index));
      if (found != nullptr && found->excludedAmount().value() > 0) {
        item = found;
        place = index;
      }
      pick(index.siblingAtColumn(0));
    }
  };
  pick({});
  require(item != nullptr, "没有可归集的人材机");
  const Decimal saved = item->excludedAmount().value();
  driver_.clickCell(list, place);
  const bool collecting =
      driver_.withPopup([&] { driver_.click(find<QPushButton>("ResItem_setContract")); },
                        [&](QWidget* dialog) {
                          driver_.click(find<QLineEdit>("DesCollection_price", dialog));
                          driver_.retype("120");
                          driver_.key(Qt::Key_Return);
                          if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
                        });
  require(collecting && project.subcontracts().size() == 2, "没有归集人材机");
  const auto& collected = *static_cast<Subcontract*>(project.subcontracts().rows().at(1));
  require(collected.amount() == (item->quantity().value() * 120).rounded(2), "归集的合价不对");
  const std::array<Summary, 3> without = readSummaries();
  for (std::size_t i = 0; i < without.size(); ++i) {
    require(without[i].cost == costs[i].cost + entry.amount() + collected.amount() - saved,
            "汇总没有以分包代替归集的人材机");
  }
  goTo("subcontracts");
  const QModelIndex itemCount = cell(table, 1, keys::BRICollectedItems);
  require(itemCount.data().toInt() == 1, "没有显示归集的人材机");
  driver_.doubleClickCell(table, itemCount);
  require(window_->pages()->currentPage() == "design-resources" &&
              operators::DesResItemOperator::itemOf(list->currentElement()) == item,
          "双击没有转到归集的人材机");
  picture("分包归集的人材机");
  goTo("subcontracts");
  driver_.clickCell(table, cell(table, 0, keys::BRIName));
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(project.subcontracts().size() == 1 && item->subcontract() == nullptr, "撤销没有恢复归集");

  // Another way of metering keeps the money.
  const Decimal amount = entry.amount();
  edit(keys::BRIMeteringMethod, "总价包干");
  require(entry.metering == records::MeteringMethod::LumpSum && entry.price == amount &&
              entry.amount() == amount && shown(keys::BRIAmount) == "1",
          "总价包干没有保持合价");
  require(find<QLabel>("DesSetSubcontract_note")->text().contains("总价包干"), "没有说明计量方式");
  picture("计量方式");
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(entry.metering == records::MeteringMethod::ByBills && entry.amount() == amount &&
              shown(keys::BRIExcludedTaxTotalCost) == money(amount),
          "撤销没有恢复计量方式");

  // The same work in the whole project.
  Decimal total;
  for (const Bill* each : same) total += each->quantityForCost();
  const int count = static_cast<int>(same.size());
  channel_->answerNext(QMessageBox::Yes);
  driver_.click(find<QPushButton>("DesSetSubcontract_apply"));
  const std::string asked = count > 1 ? std::to_string(count - 1) + " 条" : "没有与";
  require(channel_->messages().size() == 1 &&
              channel_->messages().front().text.find(asked) != std::string::npos,
          "没有询问要归入多少条清单");
  channel_->clear();
  require(entry.childCount() == count && entry.quantityNow() == total &&
              entry.amount() == (total * entry.price).rounded(2),
          "应用到其他清单后的数量不对");
  Decimal shares;
  const QModelIndex top = tree->model()->index(0, 0);
  const int shareColumn = tree->viewModel()->getColumnIndex(keys::SECostTotalCost);
  for (int row = 0; row < count; ++row) {
    const QModelIndex share = tree->model()->index(row, shareColumn, top);
    shares += *Decimal::fromDouble(share.data(Qt::EditRole).toDouble());
  }
  require(shares == entry.amount(), "各清单的分包金额之和不等于合价");
  picture("应用到其他清单");

  const Decimal share =
      *Decimal::fromDouble(tree->model()->index(0, shareColumn, top).data(Qt::EditRole).toDouble());
  const std::array<Summary, 3> more = followed(costs, entry.amount());
  for (std::size_t i = 0; i < more.size(); ++i) {
    const auto found = more[i].costs.find(bill);
    require(found == more[i].costs.end() || found->second == costs[i].costs.at(bill) + share,
            "清单的成本没有加上分包的金额");
  }
  // From the line of the bid fees back to the entry.
  driver_.clickCell(find<QTreeView>("QCEFeeSummaryTreeView"),
                    find<QTreeView>("QCEFeeSummaryTreeView")->model()->index(0, 0));
  shell::SummaryView& summary = shownSummary();
  QModelIndex line;
  const std::function<void(const QModelIndex&)> look = [&](const QModelIndex& parent) {
    for (int row = 0; row < summary.model().rowCount(parent); ++row) {
      const QModelIndex index = summary.model().index(row, 0, parent);
      const auto kind = summary.model().row(index)->line().kind;
      if (kind == records::SummaryLine::Kind::Subcontract) line = index;
      look(index);
    }
  };
  look({});
  require(line.isValid(), "投标费用汇总没有分包");
  summary.grid()->expandAll();
  summary.grid()->scrollTo(line);
  picture("汇总中的分包");
  driver_.doubleClickCell(summary.grid(), line);
  require(window_->pages()->currentPage() == "subcontracts" && table->currentElement() != nullptr &&
              table->currentElement()->id() == entry.id(),
          "双击没有转到分包");
  require(find<QLabel>("totalsText")->text().contains("分包成本"), "状态栏没有分包成本");

  // What has bills is removed after a question.
  driver_.clickCell(table, cell(table, 0, keys::BRIName));
  channel_->answerNext(QMessageBox::Yes);
  driver_.key(Qt::Key_Delete, Qt::ControlModifier);
  require(channel_->messages().size() == 1 && project.subcontracts().size() == 0,
          "没有询问并删除分包");
  channel_->clear();
  followed(costs, Decimal());
  goTo("subcontracts");
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(project.subcontracts().size() == 1 && entry.childCount() == count, "撤销没有恢复分包");
  while (stack.index() > steps) driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(project.dump() == before, "分包的设置没有完全撤销");
  filter->clear();
  goTo(pageBefore);
}

}  // namespace cli
