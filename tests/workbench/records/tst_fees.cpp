#include <QUndoStack>
#include <random>

#include "tests/support/rows.h"
#include "tests/workbench/project_fixture.h"
#include "tests/workbench/values.h"
#include "workbench/records/project_builder.h"
#include "workbench/store/database.h"

using costing::Decimal;
using records::Category;
using records::FeeCost;
using records::FeeData;
using records::IndirectFeeGroup;
using records::IndirectFeeItem;
using tests::dec;

namespace {

std::vector<IndirectFeeItem*> feesOf(const records::Project& project) {
  std::vector<IndirectFeeItem*> fees;
  records::forEachFee(const_cast<records::Project&>(project).feeGroups().rows(),
                      [&](IndirectFeeItem& fee) { fees.push_back(&fee); });
  return fees;
}

const records::StructureNode* workOf(const IndirectFeeItem& fee) {
  const auto* group = static_cast<const IndirectFeeGroup*>(fee.parent());
  while (group->parent() != nullptr) group = static_cast<const IndirectFeeGroup*>(group->parent());
  return group->unitWork;
}

/// Cost of a category, put together the plain way; of all unit works for null.
Decimal costOf(records::Project& project, const records::StructureNode* of, Category category) {
  Decimal sum;
  for (const records::StructureNode* work : project.unitWorks()) {
    if (of != nullptr && of != work) continue;
    const records::RowList& rows = project.categoryGroup(*work, category)->rows();
    for (int row = 0; row < rows.size(); ++row) {
      sum += static_cast<records::ResourceItem*>(rows.at(row))->excludedAmount().value();
    }
  }
  return sum;
}

/// What a fee costs, computed apart from the program for the calculations that this test writes.
Decimal plainCost(records::Project& project, const IndirectFeeItem& fee) {
  if (!fee.cost) return fee.amount;
  const FeeCost& cost = *fee.cost;
  if (cost.base.empty() || !cost.rate) return cost.amount;
  const records::StructureNode* work = workOf(fee);
  const Decimal labour = costOf(project, work, Category::Labour);
  const Decimal base = cost.base == "人工费*1.5" ? labour * dec("1.5")
                       : cost.base == "(人工费＋材料费)÷2"
                           ? (labour + costOf(project, work, Category::Material)) / 2
                           : dec(cost.base.c_str());
  return (base * *cost.rate / 100).rounded(2);
}

bool figuresAreTrue(records::Project& project) {
  Decimal sum;
  for (const IndirectFeeItem* fee : feesOf(project)) {
    if (project.figures(*fee).amount != plainCost(project, *fee)) return false;
    if (!project.figures(*fee).problem.empty()) return false;
    sum += plainCost(project, *fee);
  }
  return sum == project.feeTotal();
}

}  // namespace

class FeesTest : public QObject {
  Q_OBJECT

 private slots:
  // The example of docs/costing.md.
  void followsTheWorkedExample() {
    records::Project project;
    records::ProjectBuilder builder(project);
    auto& work = builder.addNode(nullptr, 0, records::StructureKind::UnitWork);
    const auto add = [&](Category category, const char* quantity, int price) {
      records::ResourceItemData data;
      data.category = category;
      data.quantity = dec(quantity);
      data.price = price;
      return &builder.addItem(work, data);
    };
    records::ResourceItem* labour = add(Category::Labour, "400", 150);
    add(Category::Material, "2000", 100);
    IndirectFeeGroup& group = builder.addFeeGroup(nullptr, 0);
    group.name = "管理费";
    IndirectFeeItem& fee = builder.addFeeItem(group, 0);
    fee.sourceId = "F1";
    fee.name = "管理人员工资";
    fee.base = dec("58000");
    fee.rate = dec("5.5");
    fee.amount = dec("3190");
    const auto cost = [&] { return QString::fromStdString(project.feeTotal().toString(2)); };
    const auto set = [&](const char* base, const char* rate) {
      FeeData data = fee;
      data.cost = FeeCost{base, dec(rate), {}};
      project.setFee(fee, data);
    };
    QCOMPARE(cost(), QString("3190.00"));
    set("58000", "6");
    QCOMPARE(cost(), QString("3480.00"));
    set("人工费*1.1", "6");
    QCOMPARE(cost(), QString("3960.00"));
    project.set(*labour, records::ItemField::Price, costing::PackedDecimal(Decimal(165)));
    QCOMPARE(cost(), QString("4356.00"));
    QCOMPARE(project.feeBudget().toString(2), std::string("3190.00"));
  }

  void everyEditIsUndoneAndStored() {
    tests::ProjectFixture fixture;
    controllers::OpenProject* opened = fixture.open();
    records::Project& project = opened->project();
    const std::string atFirst = project.dump();
    std::mt19937 random(20261121);
    const auto number = [&](unsigned below) { return static_cast<int>(random() % below); };
    std::vector<std::string> dumps{atFirst};
    for (int step = 0; step < 150; ++step) {
      QUndoStack& stack = *opened->undo().stack();
      if (number(5) == 0 && stack.canUndo()) {
        const int to = number(static_cast<unsigned>(stack.count() + 1));
        stack.setIndex(to);
      } else {
        const app::ScopedUndo undo("");
        for (int count = 1 + number(3); count > 0; --count) edit(fixture, project, number);
      }
      dumps.resize(static_cast<std::size_t>(std::max(stack.index(), 0)) + 1);
      if (dumps.back().empty()) dumps.back() = project.dump();
      QCOMPARE(project.dump(), dumps.back());
      QVERIFY(figuresAreTrue(project));
    }
    const std::string last = project.dump();
    QVERIFY(last != atFirst);
    fixture.close();
    QVERIFY(store::check(fixture.path()).ok());
    QVERIFY(fixture.open()->project().dump() == last);
    QVERIFY(figuresAreTrue(fixture.opened()->project()));
  }

  void refusesWhatCannotBe_data() {
    const tests::Rows<QString, QString, QString, QString> row("base", "rate", "amount", "message");
    row("unknown variable", "人工费*管理费", "5", "0", "第 5 个字符");
    row("not finished", "人工费*", "5", "0", "没有写完");
    row("division by zero", "100/(人工费-人工费)", "5", "0", "除数为零");
    row("lists the variables", "a", "5", "0", "分部分项工程费、建筑面积");
    row("negative rate", "100", "-1", "0", "0 到 1000");
    row("rate too large", "100", "1000.1", "0", "0 到 1000");
    row("places of the rate", "100", "1.23456", "0", "4 位小数");
    row("places of the amount", "", "", "1.234", "2 位小数");
    row("amount too large", "", "", "1000000000001", "过大");
    row("base too large", "10^13", "1", "0", "过大");
  }
  void refusesWhatCannotBe() {
    QFETCH(QString, base);
    QFETCH(QString, rate);
    QFETCH(QString, amount);
    QFETCH(QString, message);
    tests::ProjectFixture fixture;
    records::Project& project = fixture.open()->project();
    IndirectFeeItem& fee = *feesOf(project).front();
    const std::string before = project.dump();
    FeeData data = fee;
    data.cost =
        FeeCost{base.toStdString(), Decimal::parse(rate.toStdString()), dec(qPrintable(amount))};
    const QString text = tests::refusal([&] { project.setFee(fee, data); });
    QVERIFY2(text.contains(message) && text.contains(QString::fromStdString(fee.name)),
             qPrintable(text));
    QVERIFY(project.dump() == before && !project.hasRecorded());
  }

  void keepsTheFeesOfTheSourceFile() {
    tests::ProjectFixture fixture;
    records::Project& project = fixture.open()->project();
    IndirectFeeItem& fee = *feesOf(project).front();
    QVERIFY_EXCEPTION_THROWN(project.removeFee(fee), records::Refusal);
    FeeData data = fee;
    data.name = "别的";
    QVERIFY_EXCEPTION_THROWN(project.setFee(fee, data), records::Refusal);
    auto& top = *static_cast<IndirectFeeGroup*>(project.feeGroups().rows().at(0));
    QVERIFY_EXCEPTION_THROWN(project.addFee(top, data), records::Refusal);
    QVERIFY(!project.hasRecorded());
  }

  // A base that gets lost with the money that it is reckoned on is shown as such.
  void tellsOfABaseThatHasNoValueAnyMore() {
    tests::ProjectFixture fixture;
    records::Project& project = fixture.open()->project();
    IndirectFeeItem& fee = *feesOf(project).front();
    const app::ScopedUndo undo("");
    FeeData data = fee;
    data.cost = FeeCost{"1000/人工费", Decimal(5), {}};
    project.setFee(fee, data);
    QVERIFY(project.figures(fee).problem.empty());
    for (records::ResourceItem* item : fixture.items()) {
      if (item->category() != Category::Labour) continue;
      project.set(*item, records::ItemField::Price, costing::PackedDecimal());
    }
    QVERIFY(!project.figures(fee).problem.empty());
    QVERIFY(project.figures(fee).amount.isZero());
  }

  void checkingFindsWhatIsWrong() {
    tests::ProjectFixture fixture;
    {
      store::Database database(fixture.path());
      database.run(
          "UPDATE fee_item SET cost_base = '人工费*', cost_rate = '5', cost_amount = '0'"
          " WHERE id = (SELECT min(id) FROM fee_item)");
      database.run(
          "UPDATE fee_item SET cost_base = '', cost_amount = 'x'"
          " WHERE id = (SELECT max(id) FROM fee_item)");
    }
    QVERIFY(store::check(fixture.path()).failure.message.contains("fee_item"));
    {
      store::Database database(fixture.path());
      database.run("UPDATE fee_item SET cost_amount = '1' WHERE cost_amount = 'x'");
    }
    const QString findings = store::check(fixture.path()).findings.join('\n');
    QVERIFY2(findings.contains("成本基数计算式有误"), qPrintable(findings));
  }

 private:
  template <class Number>
  static void edit(tests::ProjectFixture& fixture, records::Project& project,
                   const Number& number) {
    const std::vector<IndirectFeeItem*> fees = feesOf(project);
    IndirectFeeItem& fee = *fees[static_cast<std::size_t>(number(unsigned(fees.size())))];
    auto& group = *static_cast<IndirectFeeGroup*>(fee.parent());
    FeeData data = fee;
    FeeCost cost;
    switch (number(8)) {
      case 0:
        data.cost.reset();
        break;
      case 1:
        cost.amount = Decimal(number(1000000)) / 100;
        data.cost = cost;
        break;
      case 2:
      case 3: {
        const char* bases[] = {"人工费*1.5", "(人工费＋材料费)÷2", "1234.56"};
        cost.base = bases[number(3)];
        cost.rate = Decimal(number(200)) / 8;
        data.cost = cost;
        break;
      }
      case 4: {
        data.cost = cost;
        data.name = "新费用" + std::to_string(number(100));
        project.addFee(group, data);
        return;
      }
      case 5:
        if (fee.isOwn()) project.removeFee(fee);
        return;
      case 6:
        if (fee.isOwn()) data.code = std::to_string(number(1000));
        data.account = project.allAccounts()[static_cast<std::size_t>(
            number(unsigned(project.allAccounts().size())))];
        break;
      default: {
        const std::vector<records::ResourceItem*> items = fixture.items();
        project.set(*items[static_cast<std::size_t>(number(unsigned(items.size())))],
                    records::ItemField::Price,
                    costing::PackedDecimal(Decimal(number(90000)) / 100));
        return;
      }
    }
    project.setFee(fee, data);
  }
};

QTEST_MAIN(FeesTest)
#include "tst_fees.moc"
