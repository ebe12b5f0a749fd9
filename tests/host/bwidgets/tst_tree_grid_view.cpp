#include <QClipboard>
#include <QLineEdit>

#include "tests/support/sample_grid.h"
#include "tests/support/test_main.h"

using tests::SampleGrid;

class TestTreeGridView : public QObject {
  Q_OBJECT

 private slots:
  void keepsFrozenColumnsInPlace();
};

void TestTreeGridView::keepsFrozenColumnsInPlace() {
  SampleGrid g;
  g.view->expandAll();
  g.savePicture("grid-plain");
  g.view->setFrozenColumnCount(2);
  const QRect code = g.view->visualRect(g.cell("0.1:code"));
  const QRect price = g.view->visualRect(g.cell("0.1:price"));
  g.scrollTo(150);
  QCOMPARE(g.view->visualRect(g.cell("0.1:code")), code);
  QCOMPARE(g.view->visualRect(g.cell("0.1:price")), price.translated(-150, 0));
  QCOMPARE(g.pathOf(g.view->indexAt(code.center())), QString("0.1:code"));
  QCOMPARE(g.pathOf(g.view->indexAt(QPoint(265, code.center().y()))), QString("0.1:amount"));
  g.setCurrent("0.1:price");
  g.view->openSearchBox();
  QTest::keyClicks(g.view->searchBox()->lineEdit(), "lwg");
  QTest::keyClick(g.view->searchBox()->lineEdit(), Qt::Key_Return);
  g.scrollTo(150);
  g.savePicture("grid-frozen");
}

QCE_WIDGET_TEST_MAIN(TestTreeGridView)
#include "tst_tree_grid_view.moc"
