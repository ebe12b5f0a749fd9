#include <QtTest>
#include <functional>

#include "tests/workbench/values.h"
#include "workbench/records/bill_costs.h"
#include "workbench/records/project_builder.h"
#include "workbench/records/summary.h"
#include "workbench/services/templates.h"

using costing::Decimal;
using records::Bill;
using records::MeteringMethod;
using records::Project;
using records::ResourceItem;
using records::Subcontract;
using records::SubcontractData;
using records::SummaryKind;
using tests::dec;

namespace {

/// Walls, slabs and formwork with 160 days of labour; an entry for the walls and slabs by the m³.
struct Example {
  Example() {
    records::ProjectBuilder builder(project);
    account = &builder.addAccount(nullptr, 0, "11", "劳务分包");
    auto& work = builder.addNode(nullptr, 0, records::StructureKind::UnitWork);
    auto& section = builder.addNode(&work, 0, records::StructureKind::Section);
    const auto add = [&](const char* name, const char* unit, const char* quantity,
                         const char* amount) {
      Bill& bill = builder.addBill(section, 0);
      bill.name = project.texts.intern(name);
      bill.code = project.texts.intern("0105");
      bill.unit = project.texts.intern(unit);
      bill.quantity = dec(quantity);
      bill.amount = dec(amount);
      return &bill;
    };
    walls = add("墙", "m³", "126.35", "70756");
    slabs = add("板", "m³", "40", "20000");
    formwork = add("模板", "m²", "300", "12000");
    records::ResourceItemData data;
    data.category = records::Category::Labour;
    data.name = project.texts.intern("混凝土工");
    data.quantity = 160;
    data.price = 185;
    labour = &builder.addItem(work, data);
    SubcontractData entryData;
    entryData.code = project.texts.intern("01");
    entryData.name = project.texts.intern("混凝土劳务");
    entryData.unit = walls->unit;
    entryData.price = dec("165.5");
    entryData.taxRate = 3;
    entryData.account = account;
    entry = &project.addSubcontract(entryData);
    project.assign(*entry, {walls, slabs});
  }
  QString figures() const {
    return QString::fromStdString(entry->quantityNow().toString() + " " + entry->price.toString() +
                                  " " + entry->amount().toString(2) + " " +
                                  entry->includedAmount().toString(2) + ", " +
                                  project.totals().excluded.toString(2));
  }

  Project project;
  records::CostAccount* account = nullptr;
  Bill *walls = nullptr, *slabs = nullptr, *formwork = nullptr;
  ResourceItem* labour = nullptr;
  Subcontract* entry = nullptr;
};

}  // namespace

class SubcontractsTest : public QObject {
  Q_OBJECT

 private slots:
  // The example of docs/costing.md.
  void worksThroughTheExample() {
    Example example;
    Project& project = example.project;
    Subcontract& entry = *example.entry;
    project.takeRecorded();
    const std::string before = project.dump();
    QCOMPARE(example.figures(), QString("166.35 165.5 27530.93 28356.85, 29600.00"));
    project.collect(*example.labour, entry);
    QCOMPARE(example.figures(), QString("166.35 165.5 27530.93 28356.85, 0.00"));
    records::BillData more = *example.walls;
    more.expression = project.texts.intern("工程量×1.02");
    project.set(*example.walls, more);
    QCOMPARE(example.figures(), QString("168.877 165.5 27949.14 28787.62, 0.00"));
    project.setMetering(entry, MeteringMethod::ByQuantity);
    SubcontractData typed = entry;
    QCOMPARE(typed.quantity, dec("168.877"));
    typed.quantity = 170;
    project.set(entry, typed);
    QCOMPARE(example.figures(), QString("170 165.5 28135.00 28979.05, 0.00"));
    project.setMetering(entry, MeteringMethod::LumpSum);
    QCOMPARE(example.figures(), QString("1 28135 28135.00 28979.05, 0.00"));
    const auto share = [&](const Bill* bill) {
      return QString::fromStdString(records::BillCosts(project).of(*bill).toString(2));
    };
    QCOMPARE(share(example.walls), QString("21934.86"));
    QCOMPARE(share(example.slabs), QString("6200.14"));
    project.setMetering(entry, MeteringMethod::ByBills);
    QCOMPARE(example.figures(), QString("168.877 166.6 28134.91 28978.96, 0.00"));
    QCOMPARE(share(example.walls), QString("21470.91"));
    QCOMPARE(share(example.slabs), QString("6664.00"));
    const auto accounts =
        records::summarize(project, SummaryKind::Accounts, services::loadFeeTemplate({}));
    QCOMPARE(accounts.lines.front().source, static_cast<records::Record*>(example.account));
    QCOMPARE(accounts.lines.front().cost, dec("28134.91"));

    project.removeSubcontract(entry);
    QCOMPARE(project.totals().excluded, dec("29600"));
    QVERIFY(example.labour->subcontract() == nullptr);
    project.apply(project.takeRecorded(), Project::Direction::Backward);
    QVERIFY(project.dump() == before);
  }

  void refusesWhatCannotBe() {
    Example example;
    Project& project = example.project;
    Subcontract& entry = *example.entry;
    project.collect(*example.labour, entry);
    const auto with = [&](auto field, auto value) {
      SubcontractData data = entry;
      data.*field = value;
      return [&project, &entry, data] { project.set(entry, data); };
    };
    const auto text = [&](const char* words) { return project.texts.intern(words); };
    records::BillData otherUnit = *example.walls;
    otherUnit.unit = text("m");
    Subcontract& lump = project.addSubcontract(entry);
    project.setMetering(lump, MeteringMethod::LumpSum);
    project.assign(lump, {example.formwork, example.slabs, example.formwork});
    QCOMPARE(lump.rows().size(), 2);
    const std::string before = project.dump();
    const std::vector<std::pair<const char*, std::function<void()>>> forbidden = {
        {"名称不能为空", with(&SubcontractData::name, text(""))},
        {"租赁合同", with(&SubcontractData::contractType, text("口头合同"))},
        {"不是日期", with(&SubcontractData::priceExpiryDate, text("2026-02-29"))},
        {"不是日期", with(&SubcontractData::priceExpiryDate, text("2026-6-30"))},
        {"2 位小数", with(&SubcontractData::price, dec("1.234"))},
        {"0 到", with(&SubcontractData::price, dec("-1"))},
        {"税率应在", with(&SubcontractData::taxRate, dec("101"))},
        {"合价超过", with(&SubcontractData::price, dec("1000000000000"))},
        {"先把计量方式改为", with(&SubcontractData::quantity, dec("5"))},
        {"“m³”", with(&SubcontractData::unit, text("m²"))},
        {"“0105 模板”的单位为“m²”", [&] { project.assign(entry, {example.formwork}); }},
        {"“0105 模板”的单位为“m²”", [&] { project.setMetering(lump, MeteringMethod::ByBills); }},
        {"取消该清单与分包的关联", [&] { project.set(*example.walls, otherUnit); }},
        {"请先取消归集", [&] { project.setLinked({example.labour}, false); }},
        {"请先取消归集", [&] { project.set(*example.labour, records::ItemField::Linked, false); }},
    };
    for (const auto& [words, attempt] : forbidden) {
      QVERIFY2(tests::refusal(attempt).contains(words), words);
    }
    QVERIFY(project.dump() == before);
  }
};

QTEST_MAIN(SubcontractsTest)
#include "tst_subcontracts.moc"
