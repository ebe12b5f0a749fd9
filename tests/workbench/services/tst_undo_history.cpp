
#include "tests/workbench/project_fixture.h"

using costing::Decimal;
using costing::PackedDecimal;
using records::Category;
using records::ItemField;
using records::ResourceItem;

class UndoHistoryTest : public QObject {
  Q_OBJECT

 private slots:
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
