#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeView>
#include <QUndoStack>
#include <algorithm>

#include "framework/des_filter_view.h"
#include "host/bwidgets/tree_grid_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/view_model.h"
#include "workbench/cli/tour.h"
#include "workbench/controllers/open_project.h"
#include "workbench/services/channels.h"
#include "workbench/shell/main_window.h"
#include "workbench/shell/page_stack.h"
#include "workbench/shell/session.h"

namespace cli {

namespace keys = domain::keys;

namespace {

using costing::Decimal;

/// What a line of the cost comes to with a cost quantity of its bill.
Decimal moneyOf(const records::BillLine& line, const records::ResourceItem& item,
                const Decimal& made, Decimal& quantity) {
  if (line.terms.price) return (made * *line.terms.price).rounded(costing::MoneyPlaces);
  const Decimal tender = line.bill->quantity.value();
  Decimal used = line.terms.content ? made * *line.terms.content
                 : tender.isZero()  ? line.budgetQuantity
                                    : line.budgetQuantity * made / tender;
  used = used * line.terms.coefficient;
  quantity += used;
  return (used * item.price().value()).rounded(costing::MoneyPlaces);
}

/// How much more the resource items of a bill cost with another cost quantity of it; and what the
/// bill then costs itself.
Decimal costDifference(records::Project& project, const records::Bill& bill, const Decimal& made,
                       Decimal& costOfBill) {
  Decimal difference;
  for (const records::ResourceItem* item : project.bookings().itemsOf(bill)) {
    if (!item->counts()) continue;
    Decimal quantity = project.bookings().ownQuantity(*item);
    Decimal money;
    for (const records::BillLine& line : project.linesOf(*item)) {
      const bool changed = line.bill == &bill;
      const Decimal cost =
          moneyOf(line, *item, changed ? made : line.bill->quantityForCost(), quantity);
      if (changed) costOfBill += cost;
      if (line.terms.price) money += cost;
    }
    money += (costing::storedQuantity(quantity, item->unit().str()) * item->price().value())
                 .rounded(costing::MoneyPlaces);
    difference += money - item->excludedAmount().value();
  }
  return difference;
}

}  // namespace

void Tour::bills() {
  const std::array<Summary, 3> before = readSummaries();
  goTo("bills");
  QTreeView* tree = grid();
  const auto& rows = dynamic_cast<const gui::ViewModel&>(*tree->model());
  const auto cell = [&](proxy::Element* row, const std::string& key) {
    return rows.makeIndex(row, rows.getColumnIndex(key));
  };
  const auto shown = [&](proxy::Element* row, const std::string& key) {
    return cell(row, key).data().toString();
  };

  // The first bill that has a bill beside it and costs something.
  records::Project& project = window_->session()->project().project();
  records::Bill* bill = nullptr;
  const std::function<void(proxy::Element*)> look = [&](proxy::Element* at) {
    auto* found = dynamic_cast<records::Bill*>(at);
    if (found != nullptr && bill == nullptr && found->childCount() > 0 &&
        found->parent()->childCount() > 1 &&
        shown(found, keys::SECostTotalCost) != QStringLiteral("0.00")) {
      bill = found;
    }
    for (int row = 0; found == nullptr && row < at->childCount(); ++row) look(at->child(row));
  };
  for (records::StructureNode* work : project.unitWorks()) look(work);
  require(bill != nullptr, "没有可用的清单");
  picture("分部分项");
  const auto& grid = dynamic_cast<const bwidgets::TreeGridView&>(*tree);
  const exchange::ReadSheet sheet = exported("分部分项", grid);
  const auto deepest = std::max_element(
      sheet.rows.begin(), sheet.rows.end(),
      [](const exchange::ReadRow& a, const exchange::ReadRow& b) { return a.level < b.level; });
  require(deepest->level >= 3, "导出的大纲没有到工料机");
  require(sheet.frozenColumns > 1, "导出的名称列没有冻结");

  clickAction("条件过滤");
  QWidget* page = window_->pages()->currentWidget();
  auto* panel = page->findChild<gui::qce::destructors::DesFilterView*>();
  require(panel != nullptr && panel->isVisible(), "没有条件面板");
  driver_.click(panel->findChild<QLineEdit*>("code"));
  driver_.type(QString::fromStdString(bill->code.str()));
  driver_.key(Qt::Key_Return);
  require(cell(bill, keys::SECode).isValid(), "条件过滤没有找到清单");
  require(!cell(bill->child(0), keys::SECode).isValid(), "没有要求下级，却显示了工料机");
  driver_.click(panel->showChildrenBox(), QPoint(8, panel->showChildrenBox()->height() / 2));
  require(cell(bill->child(0), keys::SECode).isValid(), "没有显示下级内容");
  driver_.click(panel->showSiblingBox(), QPoint(8, panel->showSiblingBox()->height() / 2));
  for (int row = 0; row < bill->parent()->childCount(); ++row) {
    require(cell(bill->parent()->child(row), keys::SECode).isValid(), "没有显示同级内容");
  }
  picture("分部分项条件过滤");
  driver_.click(panel->cancelButton());
  clickAction("条件过滤");

  const QString tender = shown(bill, keys::SEQuantityBillTendering);
  const QString cost = shown(bill, keys::SECostTotalCost);
  const QString budget = shown(bill, keys::SEBudgetTotalCost);
  const costing::Decimal total = project.totals().excluded;
  const auto express = [&](const QString& expression) {
    driver_.clickCell(tree, cell(bill, keys::SECalcExpr));
    driver_.edit(expression);
  };
  express("工程量*(1.2+");
  require(channel_->messages().size() == 1 &&
              channel_->messages().front().text.find("第 5 个字符") != std::string::npos,
          "有误的计算式没有指出位置");
  channel_->clear();
  require(shown(bill, keys::SEQuantity) == tender, "有误的计算式改变了工程量");
  driver_.key(Qt::Key_Escape);
  // Worked out from what the records hold, apart from how they reckon.
  const Decimal made =
      costing::storedQuantity(bill->quantity.value() * *Decimal::parse("1.2"), bill->unit.str());
  Decimal costOfBill;
  const Decimal difference = costDifference(project, *bill, made, costOfBill) - project.feeTotal() -
                             project.subcontractTotals().excluded;
  express("工程量*1.2");
  require(shown(bill, keys::SEQuantity) != tender, "计算式没有改变成本工程量");
  require(shown(bill, keys::SEQuantityBillTendering) == tender, "招标工程量变了");
  require(shown(bill, keys::SEBudgetTotalCost) == budget, "预算合价变了");
  require(shown(bill, keys::SECostTotalCost) != cost && project.totals().excluded != total,
          "成本没有随工程量变化");
  picture("成本工程量");
  // Fees and subcontracts may be reckoned on what has changed.
  const auto after =
      followed(before, difference + project.feeTotal() + project.subcontractTotals().excluded);
  if (project.subcontractsOf(*bill).empty()) {
    require(after[1].costs.at(bill) == costOfBill, "汇总中的清单没有随工程量变化");
  }
  goTo("bills");
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(shown(bill, keys::SECostTotalCost) == cost && project.totals().excluded == total,
          "撤销没有恢复成本");
  driver_.key(Qt::Key_Y, Qt::ControlModifier);
  require(shown(bill, keys::SECostTotalCost) != cost, "恢复没有改变成本");
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  goTo("resources");
}

}  // namespace cli
