#include <QUndoStack>
#include <QtTest>
#include <algorithm>
#include <functional>
#include <random>

#include "tests/workbench/project_fixture.h"
#include "workbench/records/bill_costs.h"
#include "workbench/records/project_builder.h"
#include "workbench/records/summary.h"
#include "workbench/services/fee_template.h"
#include "workbench/store/check.h"

using costing::Decimal;
using costing::PackedDecimal;
using records::Bill;
using records::MeteringMethod;
using records::Project;
using records::ResourceItem;
using records::Subcontract;
using records::SubcontractData;
using records::SummaryKind;

namespace {

Decimal dec(const char* text) {
  return Decimal::parse(text).value();
}

std::vector<Bill*> billsOf(const records::RowList& rows) {
  std::vector<Bill*> bills;
  for (int row = 0; row < rows.size(); ++row) {
    auto* bill = dynamic_cast<Bill*>(rows.at(row));
    if (bill != nullptr) {
      bills.push_back(bill);
      continue;
    }
    const auto below = billsOf(static_cast<records::Branch*>(rows.at(row))->rows());
    bills.insert(bills.end(), below.begin(), below.end());
  }
  return bills;
}

Subcontract& entryAt(Project& project, int row) {
  return *static_cast<Subcontract*>(project.subcontracts().member(row));
}

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
      try {
        attempt();
        QFAIL(words);
      } catch (const records::Refusal& refusal) {
        QVERIFY2(QString::fromUtf8(refusal.what()).contains(words), refusal.what());
      }
    }
    QVERIFY(project.dump() == before);
  }

  // The check of the file recomputes all figures, apart from the program.
  void everyEditIsUndoneAndStored() {
    tests::ProjectFixture fixture;
    std::mt19937 random(20261121);
    for (int round = 0; round < 5; ++round) {
      controllers::OpenProject* opened = fixture.open();
      QUndoStack& stack = *opened->undo().stack();
      Project& project = opened->project();
      std::vector<std::string> states{project.dump()};
      for (int step = 0; step < 70; ++step) {
        const int before = stack.index();
        const bool jumps = random() % 5 == 0;
        if (jumps) {
          stack.setIndex(std::clamp(before - 3 + static_cast<int>(random() % 7), 0, stack.count()));
        } else {
          const app::ScopedUndo undo("");
          edit(project, fixture.items(), random);
          edit(project, fixture.items(), random);
        }
        if (!jumps && stack.index() != before) {
          states.resize(static_cast<std::size_t>(before) + 1);
          states.push_back(project.dump());
        }
        QVERIFY(project.dump() == states[static_cast<std::size_t>(stack.index())]);
      }
      const std::string last = project.dump();
      QVERIFY(stack.count() > 20);
      QVERIFY(fixture.open()->project().dump() == last);
      fixture.close();
      const store::CheckReport report = store::check(fixture.path());
      QVERIFY2(report.ok(), qPrintable(report.findings.join('\n')));
    }
  }

 private:
  /// Changes anything about the entries, or what they follow from.
  static void edit(Project& project, const std::vector<ResourceItem*>& items,
                   std::mt19937& random) {
    const auto number = [&](int below) { return static_cast<int>(random() % unsigned(below)); };
    const auto pick = [&](const auto& list) { return list[random() % list.size()]; };
    const auto bills = billsOf(project.structure().rows());
    const int count = project.subcontracts().size();
    ResourceItem& item = *pick(items);
    SubcontractData data;
    data.name = project.texts.intern("分包" + std::to_string(number(100)));
    data.unit = pick(bills)->unit;
    if (count < 3) return void(project.addSubcontract(data, number(2) - 1));
    Subcontract& entry = entryAt(project, number(count));
    const std::function<void()> kinds[] = {
        [&] { number(3) == 0 ? project.removeSubcontract(entry) : void(); },
        [&] { project.moveSubcontract(number(count), number(count)); },
        [&] { project.setMetering(entry, static_cast<MeteringMethod>(number(3))); },
        [&] {
          project.assign(entry, {pick(bills), pick(bills), pick(bills)});
        },
        [&] {
          for (Bill* bill : bills)
            bill->unit == entry.unit ? project.assign(entry, {bill}) : void();
        },
        [&] {
          if (entry.rows().size() > 0) project.unassign(entry, {&entry.billAt(0).bill, bills[0]});
        },
        [&] {
          data = entry;
          data.price = Decimal(number(100000)) / 100;
          data.account = pick(project.allAccounts());
          if (data.metering == MeteringMethod::ByQuantity) data.quantity = Decimal(number(900)) / 7;
          project.set(entry, data);
        },
        [&] {
          project.setLinked({&item, pick(items)}, number(2) == 0);
        },
        [&] { project.collect(item, entry); },
        [&] { project.uncollect(item); },
        [&] { project.set(item, records::ItemField::Price, PackedDecimal(Decimal(number(900)))); },
        [&] {
          Bill& bill = entry.rows().size() > 0 ? entry.billAt(0).bill : *bills[0];
          records::BillData changed = bill;
          changed.expression = project.texts.intern(std::to_string(1 + number(500)));
          project.set(bill, changed);
        },
        [&] {
          if (project.remove(item)) return;  // refused for most
          records::ResourceItemData own;
          own.code = own.name = project.texts.intern("手工");
          own.quantity = number(100);
          project.add(*pick(project.unitWorks()), own);
        },
    };
    try {
      kinds[random() % std::size(kinds)]();
    } catch (const records::Refusal&) {
      // The rules are tested above.
    }
  }
};

QTEST_MAIN(SubcontractsTest)
#include "tst_subcontracts.moc"
