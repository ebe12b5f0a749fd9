#include <QtTest>

#include "tests/support/rows.h"
#include "tests/workbench/values.h"
#include "workbench/exchange/sample_generator.h"
#include "workbench/store/from_source.h"

using costing::Decimal;
using exchange::Resource;
using records::Category;
using records::ResourceItem;
using tests::dec;

using Change = std::function<void(Resource&)>;
Q_DECLARE_METATYPE(Change)

namespace {

Resource resource(const char* id, const char* content, const char* price) {
  Resource result;
  result.id = id;
  result.code = "C1";
  result.name = "水泥";
  result.spec = "P.O 42.5";
  result.unit = "t";
  result.content = dec(content);
  result.price = dec(price);
  result.taxRate = dec("13");
  return result;
}

/// One unit work with two bills of 3.5 and 10 units.
exchange::SourceDocument document(const std::vector<Resource>& first,
                                  const std::vector<Resource>& second) {
  exchange::SourceDocument result;
  result.accounts = {{"a1", "01", "材料费", exchange::ResourceCategory::Material, {}},
                     {"a2", "02", "水泥费", {}, {}}};
  exchange::Bill bill;
  bill.id = "b1";
  bill.quantity = dec("3.5");
  bill.resources = first;
  exchange::Section section;
  section.id = "s1";
  section.bills.push_back(bill);
  bill.id = "b2";
  bill.quantity = dec("10");
  bill.resources = second;
  section.bills.push_back(bill);
  exchange::UnitWork work;
  work.id = "u1";
  work.sections.push_back(section);
  exchange::SingleProject single;
  single.id = "p1";
  single.unitWorks.push_back(work);
  result.projects.push_back(single);
  return result;
}

}  // namespace

class FromSourceTest : public QObject {
  Q_OBJECT

 private slots:
  void gathersWhatIsTheSame() {
    records::Project project;
    QVERIFY(store::fillFromSource(project, document({resource("r1", "0.123457", "400.05")},
                                                    {resource("r2", "0.3", "400.05")})));
    QCOMPARE(project.itemCount(), 1);
    const auto* group = project.categoryGroup(*project.unitWorks()[0], Category::Material);
    const auto& item = *static_cast<ResourceItem*>(group->rows().at(0));
    QCOMPARE(item.quantity().value(), dec("3.4321"));       // 0.4320995 + 3, rounded once
    QCOMPARE(item.budgetAmount().value(), dec("1373.01"));  // 172.86 + 1200.15, rounded each
    QCOMPARE(item.price().value(), dec("400.05"));
    QCOMPARE(item.excludedAmount().value(), dec("1373.01"));
    QCOMPARE(item.includedAmount().value(), dec("1551.50"));
    QCOMPARE(item.account()->code, std::string("01"));  // by its category
    QVERIFY(item.gathered());
    const auto* bill = project.structure().member(0)->child(0)->child(0)->child(1);
    QVERIFY(static_cast<records::BudgetItem*>(bill->child(0))->resourceItem == &item);
  }

  void keepsApartWhatDiffers_data() {
    const tests::Rows<Change> row;
    row("code", [](Resource& other) { other.code = "C2"; });
    row("name", [](Resource& other) { other.name = "水"; });
    row("spec", [](Resource& other) { other.spec = "P.C 42.5"; });
    row("unit", [](Resource& other) { other.unit = "kg"; });
    row("price", [](Resource& other) { other.price = dec("400.051"); });
    row("tax", [](Resource& other) { other.taxRate = dec("3"); });
    row("owner", [](Resource& other) { other.ownerSupplied = true; });
    row("provisional", [](Resource& other) { other.provisional = true; });
    row("adjustable", [](Resource& other) { other.priceAdjustable = true; });
    row("category",
        [](Resource& other) { other.category = exchange::ResourceCategory::Equipment; });
    row("account", [](Resource& other) { other.accountId = "a2"; });
  }
  void keepsApartWhatDiffers() {
    const auto [change] = tests::fetch<Change>();
    Resource other = resource("r2", "0.3", "400.05");
    change(other);
    records::Project project;
    QVERIFY(store::fillFromSource(project, document({resource("r1", "0.3", "400.05")}, {other})));
    QCOMPARE(project.itemCount(), 2);
  }

  void canBeCancelled() {
    const std::vector<Resource> many(1500, resource("r", "0.3", "400.05"));
    records::Project project;
    std::size_t heard = 0;
    QVERIFY(!store::fillFromSource(project, document(many, many), [&](std::size_t done) {
      heard = done;
      return done < 2000;
    }));
    QCOMPARE(heard, std::size_t(2000));
  }
};

QTEST_APPLESS_MAIN(FromSourceTest)
#include "tst_from_source.moc"
