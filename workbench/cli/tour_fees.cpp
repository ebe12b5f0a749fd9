#include <QFile>
#include <QLabel>
#include <QTreeView>

#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "workbench/cli/given_file.h"
#include "workbench/cli/tour.h"
#include "workbench/controllers/open_project.h"
#include "workbench/operators/indirect_fee_operators.h"
#include "workbench/shell/main_window.h"
#include "workbench/shell/page_stack.h"
#include "workbench/shell/report.h"
#include "workbench/shell/session.h"
#include "workbench/shell/summary_view.h"

namespace cli {

namespace keys = domain::keys;
using costing::Decimal;
using Kind = records::SummaryLine::Kind;

namespace {

/// What a cell of money shows.
Decimal shownMoney(const QModelIndex& cell) {
  return Decimal::parse(cell.data().toString().remove(',').toStdString()).value_or(Decimal());
}

}  // namespace

shell::SummaryView& Tour::shownSummary() const {
  shell::SummaryView* view = nullptr;
  for (auto* each : window_->findChildren<shell::SummaryView*>()) {
    if (each->isVisible()) view = each;
  }
  require(view != nullptr, "没有显示汇总");
  return *view;
}

std::array<Tour::Summary, 3> Tour::readSummaries() {
  goTo("summary");
  auto* kinds = find<QTreeView>("QCEFeeSummaryTreeView");
  std::array<Summary, 3> read;
  for (int i = 0; i < 3; ++i) {
    driver_.clickCell(kinds, kinds->model()->index(i, 0));
    const shell::SummaryModel& model = shownSummary().model();
    const int income = model.getColumnIndex(operators::summary_keys::Income);
    const int cost = model.getColumnIndex(operators::summary_keys::Cost);
    Summary& summary = read[static_cast<std::size_t>(i)];
    Decimal taxes;
    const std::function<void(const QModelIndex&)> look = [&](const QModelIndex& at) {
      const records::SummaryLine& line = model.row(at)->line();
      const Decimal shown = shownMoney(at.sibling(at.row(), cost));
      if (line.kind == Kind::Bill || line.kind == Kind::FeeItem) summary.costs[line.source] = shown;
      if (line.kind == Kind::Tax) taxes += shown;
      for (int row = 0; row < model.rowCount(at); ++row) look(model.index(row, 0, at));
    };
    Decimal sumOfIncomes;
    Decimal sumOfCosts;
    const int last = model.rowCount() - 1;
    for (int row = 0; row < last; ++row) {
      look(model.index(row, 0));
      sumOfIncomes += shownMoney(model.index(row, income));
      sumOfCosts += shownMoney(model.index(row, cost));
    }
    summary.income = shownMoney(model.index(last, income));
    summary.cost = shownMoney(model.index(last, cost));
    require(summary.income == sumOfIncomes && summary.cost == sumOfCosts, "合计不等于各行之和");
    require(summary.income == read[0].income && summary.cost == read[0].cost, "各汇总的合计不同");
    records::Project& project = window_->session()->project().project();
    if (i == 0) {
      require(summary.cost == project.totals().excluded + project.feeTotal() +
                                  project.subcontractTotals().excluded + taxes,
              "汇总的成本不是人材机、间接费、分包与税金之和");
    }
  }
  const shell::Session::Totals sums = window_->session()->totals();
  const auto* status = find<QLabel>("totalsText");
  require(Driver::waitUntil([&] {
            return status->text().contains(sums.excludingTax) && status->text().contains(sums.fees);
          }),
          "状态栏没有更新");
  return read;
}

std::array<Tour::Summary, 3> Tour::followed(const std::array<Summary, 3>& before,
                                            const Decimal& cost) {
  std::array<Summary, 3> after = readSummaries();
  for (std::size_t i = 0; i < after.size(); ++i) {
    require(after[i].income == before[i].income, "收入变了");
    require(after[i].cost == before[i].cost + cost,
            QString("汇总的成本应变化 %1，实际变化 %2")
                .arg(QString::fromStdString(cost.toString(2)),
                     QString::fromStdString((after[i].cost - before[i].cost).toString(2))));
  }
  return after;
}

void Tour::feeSummaries() {
  readSummaries();
  auto* kinds = find<QTreeView>("QCEFeeSummaryTreeView");
  const costing::Totals& totals = window_->session()->project().totals();
  for (int i = 0; i < kinds->model()->rowCount(); ++i) {
    const QModelIndex kind = kinds->model()->index(i, 0);
    driver_.clickCell(kinds, kind);
    shell::SummaryView& view = shownSummary();
    picture(kind.data().toString());
    view.grid()->setFocus();
    exported(view.windowTitle(), *view.grid());
  }

  driver_.clickCell(kinds, kinds->model()->index(0, 0));
  shell::SummaryView& view = shownSummary();
  const shell::SummaryModel& model = view.model();
  const QModelIndex works = model.index(0, 0);
  costing::Totals elements;
  QModelIndex labour;
  for (int row = 0; row < model.rowCount(works); ++row) {
    const QModelIndex index = model.index(row, 0, works);
    const auto& line = model.row(index)->line();
    if (line.kind != Kind::Element) continue;
    if (!labour.isValid()) labour = index;
    elements.budget += line.income;
    elements.excluded += line.cost;
  }
  require(elements.budget == totals.budget && elements.excluded == totals.excluded,
          "人材机与状态栏的合计不同");
  const Decimal cost = model.row(labour)->line().cost;
  driver_.doubleClickCell(view.grid(), labour);
  require(window_->pages()->currentPage() == "resources", "双击没有转到来源");
  Decimal source;
  auto& resources = dynamic_cast<bwidgets::TreeGridView&>(*grid());
  for (const proxy::Element* element : resources.selectedElements()) {
    if (const auto* group = dynamic_cast<const records::ResourceGroup*>(element)) {
      source += group->totals().excluded;
    }
  }
  require(source == cost, "来源的金额与汇总不同");
  picture("由汇总查看来源");
}

void Tour::indirectFees() {
  const QString pageBefore = window_->pages()->currentPage();
  const std::array<Summary, 3> before = readSummaries();
  goTo("fees");
  auto* groups = find<gui::TreeGridView>("QCEIndirectFeeTreeView");
  auto* table = find<bwidgets::TableView>("QCEIndirectFeeTableView");
  require(groups->currentIndex().isValid() && table->model()->rowCount() > 0, "没有选中费用组");
  const auto cell = [table](const std::string& key, int row) {
    return table->model()->index(row, table->viewModel()->getColumnIndex(key));
  };
  int row = 0;
  while (row < table->model()->rowCount() &&
         cell(keys::IFCostRate, row).data().toString().isEmpty()) {
    ++row;
  }
  const QModelIndex rate = cell(keys::IFCostRate, row);
  require(rate.isValid(), "没有按费率计算的费用");
  const records::Record* fee =
      operators::IndirectFeeRightOperator::itemOf(table->viewModel()->getInternalData(rate));
  records::Project& project = window_->session()->project().project();
  const auto exact = [](const QVariant& value) { return *Decimal::fromDouble(value.toDouble()); };
  const Decimal total = project.feeTotal();
  const Decimal base = exact(cell(keys::IFCostBase, row).data(Qt::EditRole));
  const Decimal amount = exact(cell(keys::IFCostAmount, row).data(Qt::EditRole));
  const Decimal changed = exact(rate.data(Qt::EditRole)) + 1;
  driver_.clickCell(table, rate);
  driver_.edit(QString::fromStdString(changed.toString()));
  const Decimal expected = (base * changed / 100).rounded(2);
  require(exact(cell(keys::IFCostAmount, row).data(Qt::EditRole)) == expected,
          "成本金额没有随费率改变");
  require(project.feeTotal() == total + expected - amount, "间接费合计不对");
  const exchange::ReadSheet sheet = exported("间接费", *table);
  const QModelIndex group = groups->currentIndex();
  require(sheet.name == group.sibling(group.row(), 0).data().toString(), "工作表不是费用组的名称");
  picture("间接费");

  const std::array<Summary, 3> after = followed(before, expected - amount);
  require(after[0].costs.at(fee) == expected && after[1].costs.at(fee) == expected,
          "汇总中的费用没有随费率改变");
  window_->pages()->setCurrentPage(pageBefore);
}

void Tour::report() {
  const QDir folder(out_.filePath("报表"));
  window_->setFileChooser(std::make_unique<GivenFile>(folder.path()));
  const QStringList names = shell::reportFileNames();
  for (const QString& name : names) QFile::remove(folder.filePath(name));
  driver_.key(Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier);
  for (const QString& name : names) {
    const QString path = folder.filePath(name);
    require(QFile::exists(path), "没有写出 " + path);
    if (!name.endsWith(".xlsx")) continue;
    const exchange::ReadWorkbook book = exchange::readSpreadsheet(path);
    require(book.problem.isEmpty(), book.problem);
    spreadsheets_ << path;
  }
}

}  // namespace cli
