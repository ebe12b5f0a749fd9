#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTreeView>
#include <QUndoStack>
#include <algorithm>

#include "framework/des_filter_view.h"
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

void Tour::bills() {
  auto* list = window_->findChild<QListWidget*>("pageList");
  require(list != nullptr, "没有页面列表");
  const auto goTo = [this, list](const QString& key) {
    const int row = window_->pages()->pages().indexOf(key);
    require(row >= 0, "没有页面 " + key);
    driver_.clickCell(list, list->model()->index(row, 0));
    require(window_->pages()->currentPage() == key, "没有切换到页面 " + key);
  };
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
    driver_.key(Qt::Key_F2);
    driver_.key(Qt::Key_A, Qt::ControlModifier);
    driver_.type(expression);
    driver_.key(Qt::Key_Return);
  };
  express("工程量*(1.2+");
  require(channel_->messages().size() == 1 &&
              channel_->messages().front().text.find("第 5 个字符") != std::string::npos,
          "有误的计算式没有指出位置");
  channel_->clear();
  require(shown(bill, keys::SEQuantity) == tender, "有误的计算式改变了工程量");
  driver_.key(Qt::Key_Escape);
  express("工程量*1.2");
  require(shown(bill, keys::SEQuantity) != tender, "计算式没有改变成本工程量");
  require(shown(bill, keys::SEQuantityBillTendering) == tender, "招标工程量变了");
  require(shown(bill, keys::SEBudgetTotalCost) == budget, "预算合价变了");
  require(shown(bill, keys::SECostTotalCost) != cost && project.totals().excluded != total,
          "成本没有随工程量变化");
  picture("成本工程量");
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(shown(bill, keys::SECostTotalCost) == cost && project.totals().excluded == total,
          "撤销没有恢复成本");
  driver_.key(Qt::Key_Y, Qt::ControlModifier);
  require(shown(bill, keys::SECostTotalCost) != cost, "恢复没有改变成本");
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  goTo("resources");
}

}  // namespace cli
