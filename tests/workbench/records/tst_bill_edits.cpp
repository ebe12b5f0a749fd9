#include <QtTest>

#include "tests/support/rows.h"
#include "tests/workbench/values.h"
#include "workbench/records/bill_costs.h"
#include "workbench/records/project.h"
#include "workbench/records/project_builder.h"

using costing::Decimal;
using records::Bill;
using records::BillData;
using records::BudgetItem;
using records::LineTerms;
using records::Project;
using records::ResourceItem;
using tests::dec;

namespace {

QString text(const Decimal& number) {
  return QString::fromStdString(number.toString());
}

/// The example of docs/costing.md: one bill of concrete, bought cheaper than the budget has it.
struct Example {
  Example() {
    records::ProjectBuilder builder(project);
    project.facts.buildingArea = 2000;
    records::StructureNode& work = builder.addNode(nullptr, 0, records::StructureKind::UnitWork);
    bill = &builder.addBill(builder.addNode(&work, 0, records::StructureKind::Section), 0);
    bill->code = project.texts.intern("0105");
    bill->name = project.texts.intern("混凝土柱");
    bill->unit = project.texts.intern("m3");
    bill->quantity = dec("126.35");
    budgetItem = &builder.addBudgetItem(*bill, 0);
    budgetItem->content = dec("1.015");
    budgetItem->amount = dec("62255.37");
    records::ResourceItemData data;
    data.code = data.name = project.texts.intern("混凝土");
    data.unit = bill->unit;
    data.quantity = dec("128.2453");
    data.price = 470;
    data.taxRate = 13;
    data.budgetAmount = dec("62255.37");
    item = &builder.addItem(work, data);
    builder.gather(*budgetItem, *item);
    data.code = project.texts.intern("other");
    data.quantity = data.budgetAmount = 0;
    other = &builder.addItem(work, data);
  }
  void express(const char* expression) {
    BillData data = bill->data();
    data.expression = project.texts.intern(expression);
    project.set(*bill, data);
  }
  /// Quantity, amount excluding and including tax.
  static QStringList figures(const ResourceItem& of) {
    return {text(of.quantity().value()), text(of.excludedAmount().value()),
            text(of.includedAmount().value())};
  }

  Project project;
  Bill* bill;
  BudgetItem* budgetItem;
  ResourceItem *item, *other;
};

}  // namespace

class TestBillEdits : public QObject {
  Q_OBJECT

 private slots:
  void scalesTheCostAndLeavesTheBudget() {
    Example example;
    QCOMPARE(Example::figures(*example.item), QStringList({"128.2453", "60275.29", "68111.08"}));
    example.express("工程量×1.02");
    QCOMPARE(text(example.bill->quantityForCost()), QString("128.877"));
    QCOMPARE(text(example.bill->quantity.value()), QString("126.35"));
    QCOMPARE(Example::figures(*example.item), QStringList({"130.8102", "61480.79", "69473.3"}));
    QCOMPARE(text(example.project.totals().budget), QString("62255.37"));
    QCOMPARE(text(example.project.totals().excluded), QString("61480.79"));
    QCOMPARE(text(records::BillCosts(example.project).of(*example.bill)), QString("61480.77"));

    const records::ChangeSet done = example.project.takeRecorded();
    QCOMPARE(QString::fromStdString(records::describe(done)), QString("修改成本工程量"));
    example.project.apply(done, Project::Direction::Backward);
    QCOMPARE(Example::figures(*example.item), QStringList({"128.2453", "60275.29", "68111.08"}));
    QVERIFY(!example.bill->costQuantity);
  }

  // Content and price of a bill line are per unit of the bill: they go by its cost quantity.
  void scalesTermsAndPoolings() {
    Example example;
    example.project.pool(*example.budgetItem, *example.other, dec("28.24525"));
    example.express("工程量*2");
    QCOMPARE(text(example.other->quantity().value()), QString("56.4905"));
    QCOMPARE(text(example.item->quantity().value()), QString("200"));
    LineTerms terms = example.project.terms(*example.other, *example.bill);
    terms.content = dec("0.5");
    terms.coefficient = dec("1.1");
    example.project.setTerms(*example.other, *example.bill, terms);
    QCOMPARE(text(example.other->quantity().value()), QString("138.985"));  // 252.7 × 0.5 × 1.1
    terms.price = 100;
    example.project.setTerms(*example.other, *example.bill, terms);
    QCOMPARE(text(example.other->excludedAmount().value()), QString("25270"));  // 252.7 × 100
    example.express("");
    QCOMPARE(text(example.other->excludedAmount().value()), QString("12635"));
    QCOMPARE(text(example.item->quantity().value()), QString("100"));
  }

  void addsUpLines() {
    Example example;
    BillData data = example.bill->data();
    const auto line = [&](const char* remark, const char* expression) {
      data.quantityLines.push_back(
          {example.project.texts.intern(remark), example.project.texts.intern(expression)});
    };
    line("地上", "建筑面积*5%");
    line("只是说明", "");
    line("地下", "10.55555");
    example.project.set(*example.bill, data);
    QCOMPARE(text(example.bill->quantityForCost()), QString("110.5556"));
    line("错", "1+");
    const QString said = tests::refusal([&] { example.project.set(*example.bill, data); });
    QVERIFY2(said.startsWith("清单“0105 混凝土柱”的成本工程量明细第 4 行“1+”："), qPrintable(said));
    QCOMPARE(text(example.bill->quantityForCost()), QString("110.5556"));
  }

  void refusesWhatHasNoValue_data() {
    const tests::Rows<QString, QString> row{"expression", "words"};
    row("a sign too many", "工程量**2", "第 5 个字符");
    row("unknown name", "工程量+层高", "第 5 个字符“层”");
    row("two names", "工程量建筑面积", "第 4 个字符“建筑面积”");
    row("negative", "工程量-1000", "应在 0 到");
    row("too large", "工程量*10^8", "应在 0 到");
    row("by zero", "1/0", "除数为零");
  }
  void refusesWhatHasNoValue() {
    QFETCH(QString, expression);
    QFETCH(QString, words);
    Example example;
    const std::string before = example.project.dump();
    const QString said = tests::refusal([&] { example.express(expression.toUtf8().constData()); });
    QVERIFY2(said.contains(words), qPrintable(said));
    QVERIFY(example.project.dump() == before);
    QVERIFY(!example.project.hasRecorded());
  }
};

QTEST_MAIN(TestBillEdits)
#include "tst_bill_edits.moc"
