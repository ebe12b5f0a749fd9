#include <map>
#include <random>

#include "tests/support/rows.h"
#include "tests/workbench/project_fixture.h"
#include "tests/workbench/values.h"
#include "workbench/records/project_builder.h"

using costing::Decimal;
using costing::PackedDecimal;
using records::Bill;
using records::BillLine;
using records::BudgetItem;
using records::ItemField;
using records::LineTerms;
using records::Project;
using records::ResourceItem;
using records::Subcontract;
using tests::dec;

namespace {

BudgetItem& budgetItem(Bill& bill, int row) {
  return *static_cast<BudgetItem*>(bill.rows().at(row));
}

using Pair = std::pair<std::int64_t, std::int64_t>;

/// Bookings as they were asked for, by ids, and what they come to when everything is added up from
/// the start.
struct Plain {
  std::map<Pair, Decimal> poolings;  // of a budget item into a cost item
  std::map<Pair, LineTerms> terms;   // of a cost item and a bill
  std::map<std::int64_t, Decimal> own;

  struct Line {
    Decimal quantity, money, cost, excluded, included;
    LineTerms terms;
  };
  using Lines = std::map<std::int64_t, std::vector<std::pair<const Bill*, Line>>>;

  /// By cost item, in bill order; the lines that are there.
  Lines lines(const Project& project) const {
    Lines all;
    const auto at = [&](std::int64_t item, const Bill* bill) -> Line& {
      auto& list = all[item];
      if (list.empty() || list.back().first != bill) list.emplace_back(bill, Line());
      return list.back().second;
    };
    for (const records::StructureNode* work : project.unitWorks()) {
      for (const Bill* bill : tests::ProjectFixture::below<Bill>(*work)) {
        for (const auto& [key, said] : terms) {
          if (key.second == bill->id() && said.associated) at(key.first, bill);
        }
        for (int row = 0; row < bill->rows().size(); ++row) {
          const auto& item = *static_cast<BudgetItem*>(bill->rows().at(row));
          const Decimal whole = bill->quantity.value() * item.content.value();
          Decimal given, money;
          for (auto pooling = poolings.lower_bound({item.id(), 0});
               pooling != poolings.end() && pooling->first.first == item.id(); ++pooling) {
            Line& line = at(pooling->first.second, bill);
            given += pooling->second;
            const Decimal upTo = given == whole ? item.amount.value()
                                                : (item.amount.value() * given / whole).rounded(2);
            line.quantity += pooling->second;
            line.money += upTo - money;
            money = upTo;
          }
          if (given.isZero() || given != whole) {
            Line& line = at(item.resourceItem->id(), bill);
            line.quantity += whole - given;
            line.money += item.amount.value() - money;
          }
        }
        for (auto& [id, list] : all) {
          if (list.back().first != bill) continue;
          Line& line = list.back().second;
          const auto said = terms.find({id, bill->id()});
          if (said != terms.end()) line.terms = said->second;
          const Decimal forCost = bill->quantityForCost();
          line.cost = (line.terms.content ? forCost * *line.terms.content
                                          : line.quantity * forCost / bill->quantity.value()) *
                      line.terms.coefficient;
        }
      }
    }
    return all;
  }

  /// "" when the project says the same, else what differs.
  QString difference(const Project& project, const std::vector<ResourceItem*>& items) const {
    Lines all = lines(project);
    costing::Totals totals;
    for (const ResourceItem* item : items) {
      const QString name = QString("item %1: ").arg(item->id());
      const int places = costing::quantityPlaces(item->unit().str());
      const auto ownQuantity = own.find(item->id());
      const Decimal mine = ownQuantity == own.end() ? Decimal() : ownQuantity->second;
      const Decimal tax = Decimal(1) + item->taxRate().value() / 100;
      const bool counts = item->linked() && item->subcontract() == nullptr;
      Decimal quantity = mine, unpriced = mine;
      costing::Totals sum;
      bool associated = false;
      for (auto& [bill, line] : all[item->id()]) {
        quantity += line.cost;
        sum.budget += line.money;
        associated = associated || line.terms.associated;
        if (!line.terms.price) unpriced += line.cost;
        const Decimal base = line.terms.price ? bill->quantityForCost() * *line.terms.price
                                              : line.cost * item->price().value();
        if (!counts) continue;
        line.excluded = base.rounded(2);
        line.included = (base * tax).rounded(2);
        if (!line.terms.price) continue;
        sum.excluded += line.excluded;
        sum.included += line.included;
      }
      if (quantity != mine) quantity = quantity.rounded(places);
      if (unpriced != mine) unpriced = unpriced.rounded(places);
      if (!counts) unpriced = 0;
      sum.excluded += (unpriced * item->price().value()).rounded(2);
      sum.included += (unpriced * item->price().value() * tax).rounded(2);
      if (item->quantity().value() != quantity) return name + "quantity";
      if (item->totals() != sum) return name + "amounts";
      if (item->associated() != associated) return name + "mark";
      totals += sum;

      const std::vector<BillLine> shown = project.linesOf(*item);
      const auto& expected = all[item->id()];
      if (shown.size() != expected.size()) return name + "number of lines";
      for (std::size_t i = 0; i < shown.size(); ++i) {
        const Line& line = expected[i].second;
        if (shown[i].bill != expected[i].first || shown[i].terms != line.terms ||
            shown[i].budgetQuantity != line.quantity || shown[i].costQuantity != line.cost ||
            shown[i].budgetAmount != line.money || shown[i].excludedAmount != line.excluded ||
            shown[i].includedAmount != line.included) {
          return name + "line of bill " + QString::number(shown[i].bill->id());
        }
      }
    }
    if (totals != project.totals()) return "totals";
    for (const records::StructureNode* work : project.unitWorks()) {
      costing::Totals sum;
      for (int i = 0; i < records::CategoryCount; ++i) {
        const auto* group = project.categoryGroup(*work, static_cast<records::Category>(i));
        costing::Totals rows;
        for (int row = 0; row < group->rows().size(); ++row) {
          const auto& item = *static_cast<ResourceItem*>(group->rows().at(row));
          if (item.row() != row || item.parent() != group) return "row numbers";
          rows += item.totals();
        }
        if (rows != group->totals()) return "totals of a group";
        sum += rows;
      }
      if (sum != project.subProject(*work)->totals()) return "totals of a sub-project";
    }
    return {};
  }
};

/// Does at random what an estimator can do, among a few bills and items, in the project and in the
/// plain record alike.
class Booker {
 public:
  Booker(tests::ProjectFixture& fixture, unsigned seed)
      : project_(fixture.opened()->project()), random_(seed), bills_(fixture.bills()) {
    bills_.resize(std::min<std::size_t>(bills_.size(), 6));
  }

  void bookOnce(Plain& plain) {
    const app::ScopedUndo undo("");
    const std::vector<ResourceItem*> candidates = items();
    ResourceItem& item = *pick(candidates);
    Bill& bill = *bills_[random_() % bills_.size()];
    const Pair key(item.id(), bill.id());
    switch (random_() % 18) {
      case 0:
      case 1:
      case 2: {
        // Half and half: all that remains, or a part that does not divide evenly.
        const bool all = random_() % 2 == 0;
        for (int row = 0; row < bill.rows().size(); ++row) {
          BudgetItem& from = budgetItem(bill, row);
          const Decimal left = project_.remaining(from);
          const Decimal quantity = all ? left : left * Decimal(int(random_() % 100)) / 97;
          if (quantity > left || quantity.isZero()) continue;
          const bool fresh = !isThere(plain, item, bill);
          project_.pool(from, item, quantity);
          plain.poolings[{from.id(), item.id()}] += quantity;
          if (fresh) plain.terms[key] = {};
          plain.terms[key].associated = true;
        }
        break;
      }
      case 3: {
        BudgetItem& from = budgetItem(bill, int(random_() % unsigned(bill.rows().size())));
        for (const auto& pooling : std::vector(project_.bookings().poolingsOf(from))) {
          project_.withdraw(from, *pooling.into);
          plain.poolings.erase({from.id(), pooling.into->id()});
        }
        break;
      }
      case 4:
        if (!isThere(plain, item, bill)) plain.terms[key] = {};
        project_.associate(item, bill, random_() % 2 == 0);
        plain.terms[key].associated = true;
        plain.terms[key].summary = project_.terms(item, bill).summary;
        break;
      case 5:
        project_.disassociate(item, bill);
        plain.terms.erase(key);
        for (int row = 0; row < bill.rows().size(); ++row) {
          plain.poolings.erase({budgetItem(bill, row).id(), item.id()});
        }
        break;
      case 6:
      case 7: {
        if (!isThere(plain, item, bill)) break;
        LineTerms terms = project_.terms(item, bill);
        terms.coefficient = Decimal(int(random_() % 300) - 20) / 7;
        if (terms.coefficient.isZero()) terms.coefficient = 1;
        terms.content.reset();
        terms.price.reset();
        if (random_() % 3 == 0) terms.content = Decimal(int(random_() % 1000)) / 13;
        if (random_() % 3 == 0) terms.price = Decimal(int(random_() % 9000)) / 8;
        project_.setTerms(item, bill, terms);
        plain.terms[key] = terms;
        break;
      }
      case 8: {
        records::BillData data = bill.data();
        const char* const expressions[] = {"工程量*1.05", "工程量/3", "0", "123.456", ""};
        data.expression = project_.texts.intern(expressions[random_() % 5]);
        data.quantityLines.clear();
        if (random_() % 4 == 0)
          std::swap(data.expression, data.quantityLines.emplace_back().expression);
        data.account = pick(project_.allAccounts());
        project_.set(bill, data);
        break;
      }
      case 9:
        project_.set(item, ItemField::Annotation,
                     project_.texts.intern(std::to_string(random_() % 50)));
        project_.set(item, ItemField::OwnerSupplied, random_() % 2 == 0);
        project_.set(item, ItemField::Account, pick(project_.allAccounts()));
        break;
      case 10:
        random_() % 2 == 0 ? project_.moveUp(item) : project_.moveDown(item);
        break;
      case 11:
        if (random_() % 2 == 0) {
          project_.remove(item);  // refused for most
        } else {
          records::ResourceItemData data;
          data.category = static_cast<records::Category>(random_() % records::CategoryCount);
          data.code = data.name = project_.texts.intern("N");
          data.quantity = Decimal(int(random_() % 1000)) / 8;
          data.price = Decimal(3);
          project_.add(*project_.unitWorks().front(), data);
          for (const ResourceItem* each : items()) {
            if (!each->gathered()) plain.own.emplace(each->id(), data.quantity);
          }
        }
        break;
      case 12:
        if (random_() % 2 == 0) {
          project_.set(item, ItemField::Price, PackedDecimal(Decimal(int(random_() % 900)) / 7));
        } else {
          project_.set(item, ItemField::TaxRate, PackedDecimal(Decimal(int(random_() % 18))));
        }
        break;
      default:
        try {
          giveAway(item, bill);
        } catch (const records::Refusal&) {
          break;  // a unit that does not fit, an item that is collected
        }
    }
  }

 private:
  /// Changes what counts in cost, or a subcontract entry.
  void giveAway(ResourceItem& item, Bill& bill) {
    records::SubcontractData data;
    data.name = bill.name;
    data.unit = bill.unit;
    data.price = Decimal(int(random_() % 9000)) / 100;
    const unsigned count = unsigned(project_.subcontracts().size());
    if (count < 3) return void(project_.addSubcontract(data, int(random_() % 2) - 1));
    auto& entry =
        *static_cast<Subcontract*>(project_.subcontracts().member(int(random_() % count)));
    switch (random_() % 9) {
      case 0:
        return project_.collect(item, entry);
      case 1:
        return project_.uncollect(item);
      case 2:
        return project_.setLinked({&item}, random_() % 2 == 0);
      case 3:
        return project_.setMetering(entry, static_cast<records::MeteringMethod>(random_() % 3));
      case 4:
      case 5:
        return project_.assign(entry, {&bill, bills_[0]});
      case 6:
        return project_.unassign(entry, {&bill});
      case 7:
        if (random_() % 3 == 0) return project_.removeSubcontract(entry);
        return void(project_.moveSubcontract(entry.row(), int(random_() % count)));
      default:
        data = entry;
        data.price += 1;
        data.account = pick(project_.allAccounts());
        if (data.metering == records::MeteringMethod::ByQuantity) data.quantity = 7;
        return project_.set(entry, data);
    }
  }

  bool isThere(const Plain& plain, const ResourceItem& item, const Bill& bill) const {
    const auto all = plain.lines(project_);
    const auto found = all.find(item.id());
    if (found == all.end()) return false;
    return std::any_of(found->second.begin(), found->second.end(),
                       [&](const auto& line) { return line.first == &bill; });
  }

  template <class Values>
  typename Values::value_type pick(const Values& from) {
    return from[random_() % from.size()];
  }
  /// Those of the bills' unit work that were entered, a few others, and those of the first bill.
  std::vector<ResourceItem*> items() {
    std::vector<ResourceItem*> found;
    for (ResourceItem* item : tests::ProjectFixture::itemsOf(project_)) {
      if (project_.unitWorkOf(*item) != project_.unitWorks().front()) continue;
      if (!item->gathered() || found.size() < 4) found.push_back(item);
    }
    for (int row = 0; row < bills_[0]->rows().size(); ++row) {
      found.push_back(budgetItem(*bills_[0], row).resourceItem);
    }
    return found;
  }

  Project& project_;
  std::mt19937 random_;
  std::vector<Bill*> bills_;
};

/// Hears of bookings, by item.
class Listener : public records::Observer {
 public:
  void bookingChanged(ResourceItem& item) override { heard.insert(&item); }
  std::set<ResourceItem*> heard;
};

/// The worked example of docs/costing.md: two bills of concrete and a subcontracted item, and a
/// bill of another unit work.
struct Example {
  Project project;
  Bill *walls = nullptr, *slabs = nullptr, *elsewhere = nullptr;
  BudgetItem *wallConcrete = nullptr, *slabConcrete = nullptr;
  ResourceItem *concrete = nullptr, *subcontract = nullptr;

  Example() {
    records::ProjectBuilder builder(project);
    auto& single = builder.addNode(nullptr, 0, records::StructureKind::SingleProject);
    auto& work = builder.addNode(&single, 0, records::StructureKind::UnitWork);
    auto& section = builder.addNode(&work, 0, records::StructureKind::Section);
    auto& other = builder.addNode(&single, 0, records::StructureKind::UnitWork);
    records::ResourceItemData data;
    data.name = project.texts.intern("商品混凝土 C30");
    data.unit = project.texts.intern("m³");
    data.price = dec("470");
    data.taxRate = dec("13");
    data.quantity = dec("168.8453");
    data.budgetAmount = dec("81964.23");
    concrete = &builder.addItem(work, data);
    data.name = project.texts.intern("混凝土工程分包");
    data.quantity = data.budgetAmount = Decimal();
    subcontract = &builder.addItem(work, data);
    const auto bill = [&](records::StructureNode& node, const char* name, const char* quantity) {
      Bill& made = builder.addBill(node, 0);
      made.name = project.texts.intern(name);
      made.quantity = dec(quantity);
      return &made;
    };
    const auto use = [&](Bill& in, const char* amount) {
      BudgetItem& item = builder.addBudgetItem(in, 0);
      item.name = concrete->name();
      item.unit = concrete->unit();
      item.content = dec("1.015");
      item.price = dec("485.44");
      item.amount = dec(amount);
      builder.gather(item, *concrete);
      return &item;
    };
    walls = bill(section, "墙", "126.35");
    slabs = bill(section, "板", "40");
    elsewhere = bill(builder.addNode(&other, 0, records::StructureKind::Section), "他处", "1");
    wallConcrete = use(*walls, "62255.37");
    slabConcrete = use(*slabs, "19708.86");
  }
};

QString figures(const ResourceItem& item) {
  return QString::fromStdString(
      item.quantity().value().toString() + " " + item.budgetAmount().value().toString(2) + " " +
      item.excludedAmount().value().toString(2) + " " + item.includedAmount().value().toString(2) +
      (item.associated() ? " √" : ""));
}

}  // namespace

class BookingsTest : public QObject {
  Q_OBJECT

 private slots:
  void randomBookingsAddUp_data() {
    const tests::Rows<unsigned> row{"seed"};
    for (unsigned seed = 1; seed <= 3; ++seed) row(qPrintable(QString::number(seed)), seed);
  }

  void randomBookingsAddUp() {
    QFETCH(unsigned, seed);
    tests::ProjectFixture fixture;
    controllers::OpenProject* opened = fixture.open();
    QVERIFY2(opened != nullptr, qPrintable(fixture.failure.message));
    Plain plain;
    {
      // One item that was entered by hand, in units that count half pieces.
      const app::ScopedUndo undo("");
      records::ResourceItemData data;
      data.code = data.name = opened->project().texts.intern("手工");
      data.quantity = dec("12.34567");
      data.price = dec("8.5");
      opened->project().add(*opened->project().unitWorks().front(), data);
    }
    for (const ResourceItem* item : fixture.items()) {
      if (!item->gathered()) plain.own[item->id()] = item->quantity().value();
    }
    std::mt19937 random(seed);
    for (int round = 0; round < 3; ++round) {
      opened = fixture.open();
      QVERIFY2(opened != nullptr, qPrintable(fixture.failure.message));
      Project& project = opened->project();
      QUndoStack& stack = *opened->undo().stack();
      std::vector<std::pair<std::string, Plain>> states(1, {project.dump(), plain});
      Booker booker(fixture, seed * 10 + unsigned(round));
      for (int step = 0; step < 80; ++step) {
        const unsigned what = random() % 5;
        if (what == 0 && stack.canUndo()) {
          stack.undo();
        } else if (what == 1 && stack.canRedo()) {
          stack.redo();
        } else {
          const int before = stack.index();
          booker.bookOnce(plain);
          if (stack.index() != before) {
            states.resize(std::size_t(before) + 1);
            states.emplace_back(project.dump(), plain);
          }
        }
        plain = states[std::size_t(stack.index())].second;
        const QString difference = plain.difference(project, fixture.items());
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
        QVERIFY(project.dump() == states[std::size_t(stack.index())].first);
      }
      QVERIFY(!plain.poolings.empty() && !plain.terms.empty());
      const int done = stack.index();
      stack.setIndex(0);
      QVERIFY(project.dump() == states[0].first);
      stack.setIndex(done);
      const std::string last = project.dump();
      QVERIFY(fixture.open()->project().dump() == last);
      QCOMPARE(fixture.checked(), QString());
    }
  }

  void worksThroughTheExample() {
    Example example;
    Project& project = example.project;
    Listener listener;
    project.addObserver(&listener);
    const std::string untouched = project.dump();
    QCOMPARE(figures(*example.concrete), QString("168.8453 81964.23 79357.29 89673.74"));

    project.pool(*example.wallConcrete, *example.subcontract, dec("100"));
    QCOMPARE(listener.heard, (std::set<ResourceItem*>{example.concrete, example.subcontract}));
    QCOMPARE(project.remaining(*example.wallConcrete), dec("28.24525"));
    QCOMPARE(figures(*example.concrete), QString("68.8453 33420.23 32357.29 36563.74"));
    QCOMPARE(figures(*example.subcontract), QString("100 48544.00 47000.00 53110.00 √"));

    LineTerms terms = project.terms(*example.subcontract, *example.walls);
    terms.coefficient = dec("1.02");
    project.setTerms(*example.subcontract, *example.walls, terms);
    QCOMPARE(figures(*example.subcontract), QString("102 48544.00 47940.00 54172.20 √"));

    project.associate(*example.subcontract, *example.slabs, true);
    QCOMPARE(figures(*example.subcontract), QString("102 48544.00 47940.00 54172.20 √"));
    terms = project.terms(*example.subcontract, *example.slabs);
    terms.price = dec("500");
    project.setTerms(*example.subcontract, *example.slabs, terms);
    QCOMPARE(figures(*example.subcontract), QString("102 48544.00 67940.00 76772.20 √"));
    QCOMPARE(project.associatedBills(*example.subcontract),
             (std::vector<Bill*>{example.walls, example.slabs}));
    QCOMPARE(project.totals().budget, dec("81964.23"));

    // The rest into the item's own home is a booking that moves nothing.
    project.pool(*example.wallConcrete, *example.concrete, dec("28.24525"));
    QCOMPARE(figures(*example.concrete), QString("68.8453 33420.23 32357.29 36563.74 √"));
    QVERIFY(project.remaining(*example.wallConcrete).isZero());

    project.disassociate(*example.subcontract, *example.walls);
    QCOMPARE(project.remaining(*example.wallConcrete), dec("100"));
    QCOMPARE(figures(*example.concrete), QString("168.8453 81964.23 79357.29 89673.74 √"));
    QCOMPARE(figures(*example.subcontract), QString("0 0.00 20000.00 22600.00 √"));
    project.apply(project.takeRecorded(), Project::Direction::Backward);
    QVERIFY(project.dump() == untouched);
    project.removeObserver(&listener);
  }

  void refusesWhatTheRulesForbid() {
    Example example;
    Project& project = example.project;
    ResourceItem& item = *example.subcontract;
    LineTerms zero, negative, dangling;
    zero.coefficient = 0;
    zero.associated = negative.associated = true;
    negative.price = Decimal(-1);
    dangling.content = Decimal(1);
    project.pool(*example.slabConcrete, item, dec("40.6"));
    const std::string before = project.dump();
    const std::vector<std::pair<const char*, std::function<void()>>> forbidden = {
        {"剩余可归集数量为 128.24525 m³",
         [&] { project.pool(*example.wallConcrete, item, dec("128.24526")); }},
        {"剩余数量", [&] { project.pool(*example.slabConcrete, *example.concrete, dec("0.1")); }},
        {"剩余数量", [&] { project.pool(*example.wallConcrete, item, dec("-1")); }},
        {"同一单位工程", [&] { project.associate(item, *example.elsewhere, false); }},
        {"系数不能设置为零", [&] { project.setTerms(item, *example.slabs, zero); }},
        {"不能为负数", [&] { project.setTerms(item, *example.slabs, negative); }},
        {"请先关联清单", [&] { project.setTerms(item, *example.walls, dangling); }},
        {"取消关联", [&] { project.setTerms(item, *example.slabs, LineTerms()); }},
        {"不能直接修改",
         [&] { project.set(item, ItemField::Quantity, PackedDecimal(Decimal(3))); }},
        {"不能直接修改",
         [&] { project.set(*example.concrete, ItemField::Quantity, PackedDecimal(Decimal(3))); }},
    };
    for (const auto& [words, attempt] : forbidden) {
      QVERIFY2(tests::refusal(attempt).contains(words), words);
    }
    QVERIFY(!project.remove(item));
    QVERIFY(project.dump() == before);
    project.takeRecorded();
    project.disassociate(item, *example.slabs);
    QCOMPARE(QString::fromStdString(describe(project.takeRecorded())), QString("取消关联清单"));
    project.set(item, ItemField::Quantity, PackedDecimal(Decimal(3)));
    QCOMPARE(item.quantity().value(), Decimal(3));
    QVERIFY(project.remove(item));
  }

  void overflowChangesNothing() {
    Example example;
    Project& project = example.project;
    project.pool(*example.wallConcrete, *example.subcontract, dec("100"));
    const std::string before = project.dump();
    LineTerms terms = project.terms(*example.subcontract, *example.walls);
    for (const char* huge : {"1000000000000000", "999999999999999999999999"}) {
      terms.coefficient = dec(huge);
      QVERIFY_EXCEPTION_THROWN(project.setTerms(*example.subcontract, *example.walls, terms),
                               std::overflow_error);
      QVERIFY(project.dump() == before);
    }
    // The line has its coefficient first, the pooling that makes it too large comes afterwards.
    project.takeRecorded();
    project.associate(*example.subcontract, *example.slabs, false);
    terms.coefficient = dec("100000000000");
    project.setTerms(*example.subcontract, *example.slabs, terms);
    project.set(*example.subcontract, ItemField::Price, PackedDecimal(dec("100000000")));
    const std::string set = project.dump();
    QVERIFY_EXCEPTION_THROWN(project.pool(*example.slabConcrete, *example.subcontract, dec("40")),
                             std::overflow_error);
    QVERIFY(project.dump() == set);
    project.apply(project.takeRecorded(), Project::Direction::Backward);
    QVERIFY(project.dump() == before);
  }

  void keepsTermsWhileAllIsPooledAway() {
    Example example;
    Project& project = example.project;
    LineTerms terms;
    terms.content = dec("2");
    project.setTerms(*example.concrete, *example.slabs, terms);
    QCOMPARE(QString::fromStdString(describe(project.takeRecorded())), QString("修改清单设置"));
    QCOMPARE(example.concrete->quantity().value(), dec("208.2453"));  // 128.24525 + 80
    project.pool(*example.slabConcrete, *example.subcontract, dec("40.6"));
    QCOMPARE(example.concrete->quantity().value(), dec("128.2453"));
    QVERIFY(project.terms(*example.concrete, *example.slabs) == LineTerms());
    project.withdraw(*example.slabConcrete, *example.subcontract);
    QCOMPARE(example.concrete->quantity().value(), dec("208.2453"));
    // Associating afterwards must not bring them back: it changes no quantity.
    project.pool(*example.slabConcrete, *example.subcontract, dec("40.6"));
    project.associate(*example.concrete, *example.slabs, false);
    QCOMPARE(example.concrete->quantity().value(), dec("128.2453"));
  }
};

QTEST_GUILESS_MAIN(BookingsTest)
#include "tst_bookings.moc"
