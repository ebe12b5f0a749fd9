
#include "host/app/scoped_undo.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "tests/support/rows.h"
#include "tests/workbench/window_fixture.h"
#include "workbench/store/check.h"

namespace keys = domain::keys;

class IndirectFeePageTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { shell::setUpApplication(*qApp); }

  void init() {
    f_ = std::make_unique<tests::WindowFixture>();
    f_->window->resize(1500, 640);
    f_->open("fees");
    groups_ = f_->window->findChild<gui::TreeGridView*>("QCEIndirectFeeTreeView");
    table_ = f_->window->findChild<bwidgets::TableView*>("QCEIndirectFeeTableView");
    tests::attachTester(groups_->model());
    tests::attachTester(table_->model());
    row_ = -1;
    for (int i = 0; i < table_->model()->rowCount() && row_ < 0; ++i) {
      if (!text(keys::IFCostRate, i).isEmpty()) row_ = i;
    }
    QVERIFY(row_ >= 0);
  }

  void cleanup() { f_.reset(); }

  void everyTotalFollowsARate() {
    const costing::Decimal before = project().feeTotal();
    const QString group = groupTotal();
    type(keys::IFCostRate, "12.5");
    QCOMPARE(text(keys::IFCostRate), QString("12.5"));
    const double base = number(keys::IFCostBase);
    QCOMPARE(number(keys::IFCostAmount), std::round(base * 12.5) / 100);
    QVERIFY(project().feeTotal() != before);
    QVERIFY(groupTotal() != group);
    QCOMPARE(f_->stack().undoText(), QString("修改间接费"));
    f_->driver.key(Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(project().feeTotal() == before);
    QCOMPARE(groupTotal(), group);
    f_->driver.key(Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(text(keys::IFCostRate), QString("12.5"));
    QVERIFY(f_->channel->messages().empty());
  }

  void calculationsFollowTheItems() {
    type(keys::IFCostExpression, "直接费*1.5");
    const double base = number(keys::IFCostBase);
    QCOMPARE(text(keys::IFCostExpression), QString("直接费*1.5"));
    QVERIFY(base > 0);
    records::Project& project = this->project();
    auto* group = project.categoryGroup(*project.unitWorks().front(), records::Category::Material);
    {
      const app::ScopedUndo undo("");
      project.set(*static_cast<records::ResourceItem*>(group->rows().at(0)),
                  records::ItemField::Price, costing::PackedDecimal(costing::Decimal(99999)));
    }
    QVERIFY(number(keys::IFCostBase) > base);
  }

  void moneyStaysWhenItsCalculationGoes() {
    const double amount = number(keys::IFCostAmount);
    type(keys::IFCostAmount, "100");
    QVERIFY2(message().contains("先清空费率"), qPrintable(message()));
    QCOMPARE(number(keys::IFCostAmount), amount);
    f_->driver.key(Qt::Key_Escape);
    f_->driver.clickCell(table_, cell(keys::IFCostRate, row_));
    f_->driver.key(Qt::Key_Delete);
    QCOMPARE(text(keys::IFCostRate), QString());
    QCOMPARE(number(keys::IFCostAmount), amount);
    type(keys::IFCostAmount, "4321.5");
    QCOMPARE(text(keys::IFCostAmount), QString("4,321.50"));
    // Back to what was budgeted, nothing is left of the edit.
    type(keys::IFCostRate, text(keys::IFBudgetRate));
    QCOMPARE(number(keys::IFCostAmount), amount);
    QCOMPARE(number(keys::IFDifference), 0.0);
  }

  void refusalsNameThePlaceAndTheCure_data() {
    const tests::Rows<std::string, QString, QString> row;
    row("expression", keys::IFCostExpression, "人工费*(", "括号没有配对");
    row("variable", keys::IFCostExpression, "利润", "可以使用的变量：人工费");
    row("rate", keys::IFCostRate, "1001", "0 到 1000");
    row("account", keys::CostAccount, "没有的科目", "没有成本科目");
  }
  void refusalsNameThePlaceAndTheCure() {
    const auto [key, typed, words] = tests::fetch<std::string, QString, QString>();
    const std::string before = project().dump();
    type(key, typed);
    QVERIFY2(message().contains(words), qPrintable(message()));
    QVERIFY(project().dump() == before);
    QVERIFY(!f_->stack().canUndo());
  }

  void ownItemsComeAndGo() {
    const int rows = table_->model()->rowCount();
    const costing::Decimal before = project().feeTotal();
    f_->driver.clickCell(table_, cell(keys::IFName, 0));
    f_->driver.key(Qt::Key_Insert);
    QCOMPARE(table_->model()->rowCount(), rows + 1);
    row_ = rows;
    QCOMPARE(table_->currentIndex(), cell(keys::IFName, row_));
    type(keys::IFName, "夜间施工增加费");
    type(keys::IFCostAmount, "1500");
    QVERIFY(project().feeTotal() == before + costing::Decimal(1500));
    QCOMPARE(text(keys::IFNumber), QString::number(rows + 1));

    // The fees of the source file stay.
    f_->driver.clickCell(table_, cell(keys::IFName, 0));
    f_->driver.key(Qt::Key_Delete, Qt::ControlModifier);
    QVERIFY2(message().contains("来自源文件，不能删除"), qPrintable(message()));
    QCOMPARE(table_->model()->rowCount(), rows + 1);
    f_->driver.clickCell(table_, cell(keys::IFName, row_));
    f_->driver.key(Qt::Key_Delete, Qt::ControlModifier);
    QCOMPARE(table_->model()->rowCount(), rows);
    f_->driver.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(text(keys::IFName), QString("夜间施工增加费"));
    const std::string dump = project().dump();
    f_->driver.key(Qt::Key_W, Qt::ControlModifier);
    QVERIFY(store::check(f_->project()).ok());
    QVERIFY(f_->window->openProject(f_->project()));
    QVERIFY(project().dump() == dump);
  }

 private:
  records::Project& project() { return f_->records(); }
  QModelIndex cell(const std::string& key, int row) const {
    return table_->model()->index(row, table_->viewModel()->getColumnIndex(key));
  }
  QString text(const std::string& key, int row) const { return cell(key, row).data().toString(); }
  QString text(const std::string& key) const { return text(key, row_); }
  double number(const std::string& key) const {
    return cell(key, row_).data(Qt::EditRole).toDouble();
  }
  QString groupTotal() const {
    return groups_->currentIndex().sibling(groups_->currentIndex().row(), 1).data().toString();
  }
  QString message() const { return f_->message(); }
  void type(const std::string& key, const QString& what) {
    f_->driver.clickCell(table_, cell(key, row_));
    f_->driver.edit(what);
  }

  std::unique_ptr<tests::WindowFixture> f_;
  gui::TreeGridView* groups_ = nullptr;
  bwidgets::TableView* table_ = nullptr;
  int row_ = -1;
};

QTEST_MAIN(IndirectFeePageTest)
#include "tst_indirect_fee_page.moc"
