#include <set>

#include "tests/support/sample_grid.h"
#include "tests/support/test_main.h"

using tests::OpenGrid;
using tests::SampleGrid;

namespace {

// "人工[2] 材料": expanded groups with their number of shown rows.
QString expansion(const SampleGrid& g) {
  QStringList groups;
  for (int row = 0; row < g.filter.rowCount(); ++row) {
    const QModelIndex group = g.filter.index(row, 0);
    groups << group.data().toString();
    if (g.view->isExpanded(group)) groups.last() += QString("[%1]").arg(g.filter.rowCount(group));
  }
  return groups.join(' ');
}

std::set<std::string> selectedNotes(const SampleGrid& g) {
  std::set<std::string> notes;
  for (const QModelIndex& cell : g.view->selectedCells()) {
    notes.insert(cell.sibling(cell.row(), 7).data().toString().toStdString() + "/" +
                 g.filter.getColumnName(cell.column()));
  }
  return notes;
}

}  // namespace

class TestGridState : public QObject {
  Q_OBJECT

 private slots:
  void staysOnTheSameElementsOverASort() {
    SampleGrid g(3, 40);
    g.view->expand(g.cell("0:code"));
    g.view->expand(g.cell("2:code"));
    g.select("0.3:name", "0.4:unit");
    g.view->verticalScrollBar()->setValue(203);
    g.view->horizontalScrollBar()->setValue(33);
    QCOMPARE(g.pathOf(g.view->indexAt(QPoint(0, 0))), QString("0.7:code"));
    const int offset = g.view->visualRect(g.cell("0.7:code")).top();
    const proxy::Element* top = g.node(0, 7);
    const proxy::Element* current = g.view->currentElement();
    const auto selected = selectedNotes(g);

    g.view->sortByColumn(3, Qt::DescendingOrder);  // amounts rise by row, so this turns all round
    QTRY_COMPARE(g.text("0.0:code"), QString("CL1039"));
    QCOMPARE(g.pathOf(g.view->indexAt(QPoint(0, 0))), QString("0.32:code"));
    QCOMPARE(static_cast<const proxy::Element*>(g.view->elementAt(g.view->indexAt(QPoint(0, 0)))),
             top);
    QCOMPARE(g.view->visualRect(g.cell("0.32:code")).top(), offset);
    QCOMPARE(g.view->horizontalScrollBar()->value(), 33);
    QCOMPARE(static_cast<const proxy::Element*>(g.view->currentElement()), current);
    QCOMPARE(g.current(), QString("0.36:name"));
    QVERIFY(selectedNotes(g) == selected);
    QCOMPARE(expansion(g), QString::fromUtf8("人工[40] 材料 机械[40]"));
  }

  void staysOnTheSameElementsOverAReset() {
    SampleGrid g(3, 40);
    g.view->expand(g.cell("0:code"));
    g.view->expand(g.cell("2:code"));
    g.select("0.3:name", "0.4:unit");
    g.view->selectionModel()->select(g.cell("0.20:price"), QItemSelectionModel::Select);
    g.view->verticalScrollBar()->setValue(203);
    g.view->horizontalScrollBar()->setValue(33);
    const auto selected = selectedNotes(g);
    QCOMPARE(selected.size(), std::size_t(5));

    g.model.reset([&g] {
      g.op.tree.move(0, 2, nullptr);  // 材料 机械 人工
      g.op.tree.remove(0, 2, g.op.tree.node(2));
    });
    QCOMPARE(g.current(), QString("2.1:name"));
    QVERIFY(selectedNotes(g) == selected);
    QCOMPARE(expansion(g), QString::fromUtf8("材料 机械[40] 人工[38]"));
    QCOMPARE(g.pathOf(g.view->indexAt(QPoint(0, 0))), QString("2.5:code"));
    QCOMPARE(g.view->visualRect(g.cell("2.5:code")).top(), -3);
    QCOMPARE(g.view->horizontalScrollBar()->value(), 33);
  }

  void survivesElementsThatAreGone() {
    OpenGrid g(3, 40);
    g.select("0.3:name", "0.4:unit");
    g.view->verticalScrollBar()->setValue(200);
    g.model.reset([&g] { g.op.tree.remove(0, 1, nullptr); });
    QVERIFY(!g.view->currentIndex().isValid());
    QVERIFY(g.view->selectedElements().empty());
    QCOMPARE(g.view->verticalScrollBar()->value(), 200);
    QCOMPARE(expansion(g), QString::fromUtf8("材料[40] 机械[40]"));
  }

  void survivesAnEmptyModelInBetweenAndMoves() {
    SampleGrid g(3, 40);
    g.view->expand(g.cell("1:code"));
    g.setCurrent("1.5:price");
    g.model.reset([&g] { g.op.hasRoot = false; });
    QCOMPARE(g.filter.rowCount(), 0);
    g.model.reset([&g] { g.op.hasRoot = true; });
    QCOMPARE(expansion(g), QString::fromUtf8("人工 材料[40] 机械"));
    QCOMPARE(g.current(), QString("1.5:price"));
    g.model.beginMoveUpItem(g.op.tree.node(1), nullptr);
    g.op.tree.move(1, 0, nullptr);
    g.model.endMoveUpItem();
    QCOMPARE(expansion(g), QString::fromUtf8("材料[40] 人工 机械"));
    QCOMPARE(g.current(), QString("0.5:price"));
  }

  void filteredGroupsComeBackExpanded() {
    SampleGrid g;
    g.view->expand(g.cell("0:code"));
    g.view->expand(g.cell("2:code"));
    g.filter.want("人工");
    QCOMPARE(expansion(g), QString::fromUtf8("人工[0]"));
    g.filter.want("nothing has this name");
    QCOMPARE(expansion(g), QString());
    g.filter.want("");
    QCOMPARE(expansion(g), QString::fromUtf8("人工[4] 材料 机械[4]"));
    // What the user folds before it goes stays folded.
    g.view->collapse(g.cell("0:code"));
    g.filter.want("机械");
    g.filter.want("");
    QCOMPARE(expansion(g), QString::fromUtf8("人工 材料 机械[4]"));
  }

  void newModelStartsAfresh() {
    OpenGrid g;
    g.filter.want("人工");  // the others are gone, and remembered as expanded
    g.view->setModel(nullptr);
    g.filter.want("");
    g.view->setModel(&g.filter);
    QCOMPARE(expansion(g), QString::fromUtf8("人工 材料 机械"));
    QVERIFY(!g.view->currentIndex().isValid());
  }
};

QCE_WIDGET_TEST_MAIN(TestGridState)
#include "tst_grid_state.moc"
