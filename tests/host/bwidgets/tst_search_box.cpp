
#include "tests/support/sample_grid.h"
#include "tests/support/test_main.h"

using tests::OpenGrid;
using tests::SampleGrid;

namespace {

void type(SampleGrid& g, const char* text) {
  g.key(Qt::Key_F, Qt::ControlModifier);
  g.view->searchBox()->lineEdit()->insert(QString::fromUtf8(text));  // as an input method does
}

void press(SampleGrid& g, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  QTest::keyClick(g.view->searchBox()->lineEdit(), key, modifiers);
}

QString count(const SampleGrid& g) {
  return g.view->searchBox()->countLabel()->text();
}

}  // namespace

class TestSearchBox : public QObject {
  Q_OBJECT

 private slots:
  void opensAndClosesByKeyboard() {
    SampleGrid g;
    QVERIFY(!g.view->searchBox()->isVisible());
    g.key(Qt::Key_F, Qt::ControlModifier);
    QVERIFY(g.view->searchBox()->isVisible());
    QVERIFY(g.view->searchBox()->lineEdit()->hasFocus());
    QCOMPARE(count(g), QString());
    press(g, Qt::Key_Escape);
    QVERIFY(!g.view->searchBox()->isVisible());
    QVERIFY(g.view->hasFocus());
    // Closed before the typing pauses, it leaves the grid where it is.
    type(g, "螺纹");
    press(g, Qt::Key_Escape);
    QTest::qWait(250);
    QCOMPARE(g.current(), QString("0:code"));
  }

  void walksTheMatchesRoundTheEnd() {
    SampleGrid g;  // items 0, 4 and 8 are 螺纹钢, one in each group
    type(g, "螺纹");
    QTRY_COMPARE(g.current(), QString("0.0:name"));  // as soon as the typing pauses
    QCOMPARE(count(g), QString("1/3"));
    press(g, Qt::Key_Return);
    QCOMPARE(g.current(), QString("1.0:name"));
    QCOMPARE(count(g), QString("2/3"));
    press(g, Qt::Key_F3);
    QCOMPARE(count(g), QString("3/3"));
    press(g, Qt::Key_F3);
    QCOMPARE(count(g), QString("1/3"));
    press(g, Qt::Key_F3, Qt::ShiftModifier);
    QCOMPARE(count(g), QString("3/3"));
    // The keys go on working from the grid, the box closed or not.
    press(g, Qt::Key_Escape);
    g.key(Qt::Key_F3);
    QCOMPARE(g.current(), QString("0.0:name"));
    g.key(Qt::Key_F3, Qt::ShiftModifier);
    QCOMPARE(g.current(), QString("2.0:name"));
  }

  void startsFromTheCurrentCell() {
    OpenGrid g;
    g.setCurrent("0.3:price");
    type(g, "螺纹");
    press(g, Qt::Key_Return);
    QCOMPARE(g.current(), QString("1.0:name"));
    g.setCurrent("0.3:price");
    press(g, Qt::Key_F3, Qt::ShiftModifier);
    QCOMPARE(g.current(), QString("0.0:name"));
    // In the row of the current cell the column decides.
    g.setCurrent("1.0:code");
    press(g, Qt::Key_F3);
    QCOMPARE(g.current(), QString("1.0:name"));
    g.setCurrent("1.0:unit");
    press(g, Qt::Key_F3);
    QCOMPARE(g.current(), QString("2.0:name"));
  }

  void findsShownTextsAlone() {
    SampleGrid g;
    g.view->setColumnHidden(7, true);
    type(g, "备注1");
    press(g, Qt::Key_Return);
    QCOMPARE(count(g), QString("0/0"));
    QCOMPARE(g.current(), QString("0:code"));
    g.view->setColumnHidden(7, false);
    g.node(0, 0)->set("code", std::string("hrb-1"));
    g.model.reset([] {});
    g.view->searchBox()->lineEdit()->setText("HRB");
    press(g, Qt::Key_Return);
    QCOMPARE(count(g), QString("1/4"));  // any case, two in one row
    g.view->searchBox()->lineEdit()->setText("3,850");
    press(g, Qt::Key_Return);
    QCOMPARE(g.current(), QString("0.0:price"));  // as displayed
  }

  void findsInitialsBelowCollapsedRows() {
    SampleGrid g;
    type(g, "sphnt");
    press(g, Qt::Key_Return);
    QCOMPARE(g.current(), QString("0.2:name"));
    QVERIFY(g.view->isExpanded(g.cell("0:code")));
    QVERIFY(!g.view->isExpanded(g.cell("1:code")));
    QVERIFY(g.view->viewport()->rect().contains(g.view->visualRect(g.cell("0.2:name"))));
    QVERIFY(g.view->searchBox()->marks(g.text("1.2:name")));
  }

  void keepsUpWithTheModel() {
    SampleGrid g;
    type(g, "lwg");
    press(g, Qt::Key_Return);
    QCOMPARE(count(g), QString("1/3"));
    g.filter.setData(g.cell("2.0:name"), "x");
    QTRY_COMPARE(count(g), QString("1/2"));
    g.filter.want("材料");
    QTRY_COMPARE(count(g), QString("0/0"));
    press(g, Qt::Key_F3);
    g.filter.want("");
    press(g, Qt::Key_F3);
    QCOMPARE(count(g).section('/', 1), QString("2"));
    g.view->sortByColumn(3, Qt::DescendingOrder);
    QTRY_COMPARE(g.text("0.0:code"), QString("CL1003"));
    press(g, Qt::Key_F3);
    QVERIFY(g.view->currentIndex().data().toString().startsWith(QString::fromUtf8("螺纹钢")));
    g.model.reset([&g] { g.op.tree.clear(); });
    press(g, Qt::Key_F3);
    QTRY_COMPARE(count(g), QString("0/0"));
    g.view->setModel(nullptr);
    press(g, Qt::Key_F3);
    g.view->setModel(&g.filter);
    press(g, Qt::Key_F3);
  }

  void hidesNeitherCellsNorTitles() {
    OpenGrid g(3, 40);
    g.setCurrent("0.0:note");
    const auto over = [&g](const QWidget* part) {
      return QRect(part->mapTo(g.view.get(), QPoint()), part->size());
    };
    const QRect without = over(g.view->viewport());
    type(g, "备注");
    const QRect box = g.view->searchBox()->geometry();
    QVERIFY(g.view->rect().contains(box));
    QVERIFY(!box.intersects(over(g.view->viewport())));
    QVERIFY(!box.intersects(over(g.view->header()->viewport())));
    for (int i = 0; i < 60; ++i) {
      press(g, Qt::Key_F3);
      QVERIFY2(g.view->viewport()->rect().contains(
                   g.view->visualRect(g.view->currentIndex()).adjusted(0, 0, 0, -1)),
               qPrintable(g.current()));
    }
    press(g, Qt::Key_Escape);
    QCOMPARE(over(g.view->viewport()).top(), without.top());
    // The last row that is seen is not pushed out of sight.
    const QModelIndex last = g.view->indexAt({600, without.height() - 30});
    g.view->selectionModel()->setCurrentIndex(last, QItemSelectionModel::ClearAndSelect);
    g.key(Qt::Key_F, Qt::ControlModifier);
    QVERIFY(g.view->viewport()->rect().contains(g.view->visualRect(last).center()));
  }
};

QCE_WIDGET_TEST_MAIN(TestSearchBox)
#include "tst_search_box.moc"
