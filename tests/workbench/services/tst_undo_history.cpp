#include <QtTest>
#include <random>

#include "host/app/scoped_undo.h"
#include "tests/support/rows.h"
#include "tests/workbench/project_fixture.h"

using costing::Decimal;
using costing::PackedDecimal;
using records::Category;
using records::ItemField;
using records::ResourceItem;

namespace {

/// The totals that the items' own inputs give, put together the plain way.
bool totalsAreTrue(records::Project& project) {
  costing::Totals whole;
  for (const records::StructureNode* work : project.unitWorks()) {
    costing::Totals sum;
    for (int i = 0; i < records::CategoryCount; ++i) {
      const auto* group = project.categoryGroup(*work, static_cast<Category>(i));
      costing::Totals items;
      for (int row = 0; row < group->rows().size(); ++row) {
        const auto& item = *static_cast<ResourceItem*>(group->rows().at(row));
        const Decimal quantity = item.quantity().value();
        const Decimal price = item.price().value();
        items += {item.budgetAmount().value(), (quantity * price).rounded(2),
                  (quantity * price * (Decimal(1) + item.taxRate().value() / 100)).rounded(2)};
        if (item.row() != row || item.parent() != group) return false;
      }
      if (items != group->totals()) return false;
      sum += items;
    }
    if (sum != project.subProject(*work)->totals()) return false;
    whole += sum;
  }
  return whole == project.totals();
}

class Editor {
 public:
  Editor(tests::ProjectFixture& fixture, controllers::OpenProject& opened, unsigned seed)
      : fixture_(fixture), project_(opened.project()), random_(seed) {}

  void editOnce() {
    const app::ScopedUndo undo("");
    for (unsigned count = 1 + random_() % 4; count > 0; --count) change();
  }

 private:
  void change() {
    const std::vector<ResourceItem*> items = fixture_.items();
    ResourceItem& item = *items[random_() % items.size()];
    const auto pick = [this](const auto& from) { return from[random_() % from.size()]; };
    const std::function<void()> kinds[] = {
        [&] { project_.set(item, ItemField::Price, PackedDecimal(Decimal(number(90000)) / 700)); },
        [&] { project_.set(item, ItemField::TaxRate, PackedDecimal(Decimal(number(18)))); },
        [&] { project_.set(item, ItemField::Annotation, text("", 50)); },
        [&] { project_.set(item, ItemField::OwnerSupplied, number(2) == 0); },
        [&] { project_.set(item, ItemField::Account, pick(project_.allAccounts())); },
        [&] { project_.moveUp(item); },
        [&] { project_.moveDown(item); },
        [&] { project_.remove(item); },  // refused for most
        [&] {
          records::ResourceItemData data;
          data.category = static_cast<Category>(number(records::CategoryCount));
          data.code = data.name = text("N", 100);
          data.quantity = Decimal(number(1000)) / 8;
          data.price = Decimal(3);
          project_.add(*pick(project_.unitWorks()), data);
        }};
    kinds[random_() % std::size(kinds)]();
  }
  int number(unsigned below) { return static_cast<int>(random_() % below); }
  records::Text text(const std::string& start, unsigned below) {
    return project_.texts.intern(start + std::to_string(number(below)));
  }

  tests::ProjectFixture& fixture_;
  records::Project& project_;
  std::mt19937 random_;
};

}  // namespace

class UndoHistoryTest : public QObject {
  Q_OBJECT

 private slots:
  void randomEditsAreTakenBackWhole_data() {
    const tests::Rows<unsigned> row{"seed"};
    for (unsigned seed = 1; seed <= 4; ++seed) row(qPrintable(QString::number(seed)), seed);
  }
  void randomEditsAreTakenBackWhole() {
    QFETCH(unsigned, seed);
    tests::ProjectFixture fixture;
    controllers::OpenProject* opened = fixture.open();
    QVERIFY2(opened != nullptr, qPrintable(fixture.failure.message));
    QUndoStack& stack = *opened->undo().stack();
    Editor editor(fixture, *opened, seed);
    std::vector<std::string> states = {opened->project().dump()};  // by the stack's index
    std::mt19937 random(std::mt19937::result_type{101} * seed);
    for (int step = 0; step < 120; ++step) {
      const unsigned what = random() % 5;
      if (what == 0 && stack.canUndo()) {
        stack.undo();
      } else if (what == 1 && stack.canRedo()) {
        stack.redo();
      } else {
        const int before = stack.index();
        editor.editOnce();
        if (stack.index() == before) continue;  // nothing came of it
        states.resize(static_cast<std::size_t>(before) + 1);
        states.push_back(opened->project().dump());
      }
      QVERIFY(totalsAreTrue(opened->project()));
      QVERIFY(opened->project().dump() == states[static_cast<std::size_t>(stack.index())]);
    }
    QVERIFY(stack.count() > 20);
    // What is stored is what is in memory.
    const std::string last = opened->project().dump();
    opened = fixture.open();
    QVERIFY(opened->project().dump() == last);
    QCOMPARE(fixture.checked(), QString());

    // And taking back everything that is done now leaves what was there.
    opened = fixture.open();
    Editor again(fixture, *opened, seed + 50);
    for (int step = 0; step < 30; ++step) again.editOnce();
    opened->undo().stack()->setIndex(0);
    QVERIFY(opened->project().dump() == last);
    opened = fixture.open();
    QVERIFY(opened->project().dump() == last);
  }

  void nestedScopesAreOneNamedStep() {
    tests::ProjectFixture fixture;
    controllers::OpenProject& opened = *fixture.open();
    QUndoStack& stack = *opened.undo().stack();
    ResourceItem& item = fixture.item(0, Category::Material, 0);
    const std::string before = opened.project().dump();
    {
      const app::ScopedUndo outer("");
      for (int row = 0; row < 3; ++row) {
        const app::ScopedUndo inner("批量");
        fixture.setPrice(fixture.item(0, Category::Material, row), row);
      }
    }
    QCOMPARE(stack.count(), 1);
    QCOMPARE(stack.undoText(), QStringLiteral("批量"));
    stack.undo();
    QVERIFY(opened.project().dump() == before);
    // Without a name, what has changed is the name.
    fixture.setPrice(item, 7);
    QCOMPARE(stack.undoText(), QStringLiteral("修改不含税单价"));
    {
      const app::ScopedUndo undo("");
      fixture.setPrice(item, 8);
      opened.project().set(item, ItemField::Provisional, !item.provisional());
    }
    QCOMPARE(stack.undoText(), QStringLiteral("编辑"));
  }

  void emptyScopeLeavesRedo() {
    tests::ProjectFixture fixture;
    controllers::OpenProject& opened = *fixture.open();
    ResourceItem& item = fixture.item(0, Category::Material, 0);
    fixture.setPrice(item, 5);
    opened.undo().stack()->undo();
    {
      const app::ScopedUndo undo("");
      opened.project().set(item, ItemField::Price, item.price());  // the same again
    }
    QVERIFY(opened.undo().stack()->canRedo());
    opened.undo().stack()->redo();
    QCOMPARE(item.price().value(), Decimal(5));
  }

  void abandonedScopeLeavesNothing() {
    tests::ProjectFixture fixture;
    controllers::OpenProject* opened = fixture.open();
    const std::string before = opened->project().dump();
    {
      app::ScopedUndo outer("");
      fixture.setPrice(fixture.item(0, Category::Material, 0), 5);
      {
        app::ScopedUndo inner("");
        inner.abandon();
      }
      fixture.setPrice(fixture.item(0, Category::Material, 1), 6);
    }
    QCOMPARE(opened->undo().stack()->count(), 0);
    QVERIFY(opened->project().dump() == before);
    QVERIFY(fixture.channel.messages().empty());
    opened = fixture.open();
    QVERIFY(opened->project().dump() == before);
  }

  void whatCannotBeStoredIsNotDone() {
    tests::ProjectFixture fixture;
    records::Project& project = fixture.open()->project();
    bool works = true;
    services::UndoHistory history(project, [&](const records::ChangeSet&, QString& message) {
      message = QStringLiteral("磁盘空间不足");
      return works;
    });
    const auto edit = [&](int price) {
      history.beginScope("");
      project.set(fixture.item(0, Category::Material, 0), ItemField::Price,
                  PackedDecimal(Decimal(price)));
      history.endScope();
    };
    const std::string before = project.dump();
    for (int price = 1; price <= 3; ++price) edit(price);
    const std::string after = project.dump();
    works = false;
    edit(4);
    QVERIFY(project.dump() == after);
    QCOMPARE(history.stack()->count(), 3);
    QCOMPARE(fixture.message(), QString("磁盘空间不足"));
    for (const int index : {2, 0}) {  // the latter fails at its first step
      history.stack()->setIndex(index);
      QCOMPARE(history.stack()->index(), 3);
      QVERIFY(project.dump() == after);
    }
    works = true;
    history.stack()->setIndex(0);
    QVERIFY(project.dump() == before);
    works = false;
    history.stack()->redo();
    QCOMPARE(history.stack()->index(), 0);
    QVERIFY(project.dump() == before);
  }

  void movesInASortedViewStoreWhatIsSeen() {
    tests::ProjectFixture fixture;
    controllers::OpenProject* opened = fixture.open();
    const std::string before = opened->project().dump();
    opened->project().subProjects().reorder([](proxy::Element* a, proxy::Element* b) {
      const auto* left = dynamic_cast<ResourceItem*>(a);
      const auto* right = dynamic_cast<ResourceItem*>(b);
      return left != nullptr && left->name().str() > right->name().str();
    });
    QVERIFY(opened->project().dump() == before);  // a sorted view is no edit
    QCOMPARE(opened->undo().stack()->count(), 0);

    ResourceItem& item = fixture.item(0, Category::Material, 2);
    const auto codes = [&] {
      std::string result;
      for (int row = 0; row < item.group()->rows().size(); ++row) {
        result += fixture.item(0, Category::Material, row).code().str() + " ";
      }
      return result;
    };
    QVERIFY(opened->resItemController().moveUp(&item));
    QCOMPARE(item.row(), 1);
    const std::string seen = codes();
    opened->undo().stack()->undo();
    QVERIFY(opened->project().dump() == before);
    opened->undo().stack()->redo();
    opened->project().arrange();
    QVERIFY(codes() == seen);
  }
};

QTEST_GUILESS_MAIN(UndoHistoryTest)
#include "tst_undo_history.moc"
