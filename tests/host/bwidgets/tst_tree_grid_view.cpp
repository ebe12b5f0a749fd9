
#include "tests/support/rows.h"
#include "tests/support/sample_grid.h"
#include "tests/support/test_main.h"

using tests::OpenGrid;
using tests::SampleGrid;

class TestTreeGridView : public QObject {
  Q_OBJECT

 private slots:
  void keepsFrozenColumnsInPlace() {
    OpenGrid g;
    g.view->setFrozenColumnCount(2);
    const QRect code = g.view->visualRect(g.cell("0.1:code"));
    const QRect price = g.view->visualRect(g.cell("0.1:price"));
    g.scrollTo(150);
    QCOMPARE(g.view->visualRect(g.cell("0.1:code")), code);
    QCOMPARE(g.view->visualRect(g.cell("0.1:price")), price.translated(-150, 0));
    QCOMPARE(g.pathOf(g.view->indexAt(code.center())), QString("0.1:code"));
    // The amount column lies at 320..420, so 45 pixels of it are beneath the border at 260.
    QCOMPARE(g.pathOf(g.view->indexAt(QPoint(259, code.center().y()))), QString("0.1:name"));
    QCOMPARE(g.pathOf(g.view->indexAt(QPoint(261, code.center().y()))), QString("0.1:amount"));

    // Frozen cells are edited where they are shown.
    g.click("0.1:code");
    g.key(Qt::Key_F2);
    QVERIFY(g.editor() != nullptr);
    QVERIFY(code.contains(g.editor()->geometry()));
    QTest::keyClicks(g.editor(), "X1");
    QTest::keyClick(g.editor(), Qt::Key_Return);
    QTRY_COMPARE(g.text("0.1:code"), QString("X1"));
  }

  void typingOnACellThatCannotBeEditedGoesNowhere() {
    OpenGrid g;
    g.setCurrent("0.1:total");
    QTest::keyClicks(g.view.get(), g.text("0.2:total").left(1) + "2");
    QVERIFY(g.editor() == nullptr);
    QCOMPARE(g.pathOf(g.view->currentIndex()), QString("0.1:total"));
  }

  void paintsFrozenColumnsOverTheOthers() {
    OpenGrid g;
    g.view->setFrozenColumnCount(2);
    g.setCurrent("0.0:note");
    g.scrollTo(0);
    QTest::qWait(20);  // the scroll bars come
    const QImage unscrolled = g.view->grab().toImage();
    g.scrollTo(150);
    const QImage scrolled = g.view->grab().toImage();
    const QRect strip(0, 0, 258, 260);
    QCOMPARE(scrolled.copy(strip), unscrolled.copy(strip));
    const QRect beside(262, 0, 250, 260);
    QVERIFY(scrolled.copy(beside) != unscrolled.copy(beside));
    QCOMPARE(scrolled.copy(beside.adjusted(0, 60, 0, 0)),
             unscrolled.copy(beside.translated(150, 0).adjusted(0, 60, 0, 0)));

    // Painting piece by piece, as scrolling does it, gives the same picture.
    for (const int x : {0, 40, 150}) {
      g.scrollTo(x);
      QTest::qWait(20);
    }
    QCOMPARE(g.view->grab().toImage(), scrolled);
  }

  void letsGoOfFrozenColumnsInANarrowWindow() {
    SampleGrid g;
    g.view->setFrozenColumnCount(2);
    for (const auto& [width, frozen] : {std::pair(300, 120), {140, 0}, {700, 260}}) {
      g.view->resize(width, 320);
      QCOMPARE(g.view->gridHeader()->frozenWidth(), frozen);
    }
    g.view->setColumnHidden(0, true);
    QCOMPARE(g.view->gridHeader()->frozenWidth(), 140);
  }

  void showsTheCurrentCellBesideFrozenColumns() {
    OpenGrid g;
    g.view->setFrozenColumnCount(2);
    const int border = g.view->gridHeader()->frozenWidth();
    g.setCurrent("0.1:note");
    QVERIFY(g.view->viewport()->rect().contains(g.view->visualRect(g.cell("0.1:note"))));
    // Walking back, each cell comes out from beneath the frozen columns.
    for (const char* key : {"owner", "total", "price", "amount", "unit"}) {
      g.key(Qt::Key_Left);
      QCOMPARE(g.current(), QString("0.1:") + key);
      const QRect cell = g.view->visualRect(g.view->currentIndex());
      QVERIFY2(cell.left() >= border && cell.right() < g.view->viewport()->width(), key);
    }
    const int value = g.view->horizontalScrollBar()->value();
    g.key(Qt::Key_Left);
    QCOMPARE(g.current(), QString("0.1:name"));
    QCOMPARE(g.view->horizontalScrollBar()->value(), value);  // it is in sight anyway

    // An editor beneath the border does not cover the frozen columns.
    g.setCurrent("0.1:unit");
    g.key(Qt::Key_F2);
    QVERIFY(g.editor() != nullptr);
    g.scrollTo(30);
    QVERIFY(!g.editor()->mask().isEmpty());
    QVERIFY(!g.editor()->mask().contains(QPoint(0, 5)));
  }

  void movesOverAllShownColumns() {
    OpenGrid g;
    g.view->setColumnHidden(2, true);
    g.view->gridHeader()->moveSection(7, 1);  // note after code
    g.setCurrent("0.1:code");
    QStringList way;
    for (int i = 0; i < 7; ++i) {
      g.key(Qt::Key_Tab);
      way << g.current();
    }
    QCOMPARE(way.join(' '), QString("0.1:note 0.1:name 0.1:amount 0.1:price 0.1:total 0.1:owner "
                                    "0.2:code"));
    g.key(Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(g.current(), QString("0.1:owner"));
    g.key(Qt::Key_Home);
    QCOMPARE(g.current(), QString("0.1:code"));
    g.key(Qt::Key_End);
    QCOMPARE(g.current(), QString("0.1:owner"));
    g.key(Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(g.current(), QString("2.3:owner"));
    g.key(Qt::Key_Home, Qt::ControlModifier);
    QCOMPARE(g.current(), QString("0:owner"));
    g.click("0.0:code");  // a block takes the columns between as they stand
    g.click("0.0:amount", Qt::ShiftModifier);
    QCOMPARE(g.selected(), QString("0.0:code 0.0:note 0.0:name 0.0:amount"));
  }

  void movesOverRowsAndDisabledCells() {
    SampleGrid g;
    g.view->expand(g.cell("0:code"));
    g.op.disabledKey = "price";
    g.setCurrent("0.3:amount");
    g.key(Qt::Key_Right);
    QCOMPARE(g.current(), QString("0.3:total"));
    g.key(Qt::Key_Left);
    QCOMPARE(g.current(), QString("0.3:amount"));
    g.key(Qt::Key_Down);
    QCOMPARE(g.current(), QString("1:amount"));  // the next group is collapsed
    g.key(Qt::Key_Down);
    g.key(Qt::Key_Down);
    QCOMPARE(g.current(), QString("2:amount"));
    g.key(Qt::Key_Return, Qt::ShiftModifier);
    QCOMPARE(g.current(), QString("1:amount"));
    g.key(Qt::Key_PageUp);
    QCOMPARE(g.current(), QString("0:amount"));
    g.click("0.1:price");  // the mouse reaches it all the same
    QCOMPARE(g.current(), QString("0.1:price"));
    g.key(Qt::Key_F2);
    QVERIFY(g.editor() == nullptr);
  }

  void selectsBlocksByShiftKeysAcrossTheBorder() {
    OpenGrid g;
    g.view->setFrozenColumnCount(2);
    g.setCurrent("0.1:unit");
    g.view->setCurrentIndex(g.cell("0.1:unit"));
    // The start scrolls out of sight beneath the frozen columns.
    for (int i = 0; i < 5; ++i) g.key(Qt::Key_Right, Qt::ShiftModifier);
    g.key(Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(g.current(), QString("0.2:note"));
    QCOMPARE(g.selected(), QString("0.1:unit 0.1:amount 0.1:price 0.1:total 0.1:owner 0.1:note "
                                   "0.2:unit 0.2:amount 0.2:price 0.2:total 0.2:owner 0.2:note"));
    // A plain key starts anew from there.
    g.key(Qt::Key_Left);
    g.key(Qt::Key_Up, Qt::ShiftModifier);
    QCOMPARE(g.view->selectedCells().size(), 2);
  }

  void selectsBlocksByMouse() {
    OpenGrid g;
    g.view->setFrozenColumnCount(2);
    g.scrollTo(150);
    const auto centre = [&g](const char* path) {
      return g.view->visualRect(g.cell(path)).center();
    };
    // A drag from a frozen column into a scrolled one takes what lies between them, hidden or not.
    QTest::mousePress(g.view->viewport(), Qt::LeftButton, {}, centre("0.0:name"));
    QMouseEvent move(QEvent::MouseMove, centre("0.1:price"), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(g.view->viewport(), &move);
    QTest::mouseRelease(g.view->viewport(), Qt::LeftButton, {}, centre("0.1:price"));
    QCOMPARE(g.selected(), QString("0.0:name 0.0:unit 0.0:amount 0.0:price "
                                   "0.1:name 0.1:unit 0.1:amount 0.1:price"));

    g.click("0.2:code");
    QCOMPARE(g.view->selectedCells().size(), 1);
    g.click("1:name", Qt::ShiftModifier);  // over the border of a group
    QCOMPARE(g.view->selectedElements().size(), std::size_t(3));
    g.click("1.1:price", Qt::ControlModifier);
    QCOMPARE(g.view->selectedCells().size(), 7);
    g.click("1.1:price", Qt::ControlModifier);
    QCOMPARE(g.view->selectedCells().size(), 6);
  }

  void expandsFromTheBranchMark_data() {
    const tests::Rows<int, int, int> row;
    row("first column", 0, 0, 0);
    row("frozen first column, scrolled", 0, 2, 150);
    row("second column", 1, 0, 0);
    row("frozen second column, scrolled", 1, 2, 150);
    row("scrolled second column", 1, 1, 60);
  }
  void expandsFromTheBranchMark() {
    const auto [treeColumn, frozen, scrolled] = tests::fetch<int, int, int>();
    SampleGrid g;
    g.view->setTreePosition(treeColumn);
    g.view->setFrozenColumnCount(frozen);
    g.scrollTo(scrolled);
    const QRect content = g.view->visualRect(g.filter.index(1, treeColumn));
    const QPoint mark(content.left() - g.view->indentation() / 2, content.center().y());
    QTest::mouseClick(g.view->viewport(), Qt::LeftButton, {}, mark);
    QVERIFY(g.view->isExpanded(g.cell("1:code")));
    QTest::mouseClick(g.view->viewport(), Qt::LeftButton, {}, mark);
    QVERIFY(!g.view->isExpanded(g.cell("1:code")));
    // Elsewhere in the strip nothing folds, although a branch mark may lie beneath.
    for (int x = 125; x < 700; x += 5) {
      if (std::abs(x - mark.x()) > g.view->indentation()) {
        QTest::mouseClick(g.view->viewport(), Qt::LeftButton, {}, QPoint(x, mark.y()));
      }
    }
    QVERIFY(!g.view->isExpanded(g.cell("1:code")));
    // A double click into a cell that cannot be edited folds its row.
    g.op.readOnlyKey = "code";
    g.click("1:code");
    const QPoint centre = g.view->visualRect(g.cell("1:code")).center();
    QTest::mouseDClick(g.view->viewport(), Qt::LeftButton, {}, centre);
    QVERIFY(g.view->isExpanded(g.cell("1:code")));
  }

  void expandsByKeyboard() {
    SampleGrid g;
    g.setCurrent("1:code");
    g.key(Qt::Key_Right, Qt::AltModifier);
    QVERIFY(g.view->isExpanded(g.cell("1:code")));
    g.key(Qt::Key_Left, Qt::AltModifier);
    QVERIFY(!g.view->isExpanded(g.cell("1:code")));
    g.op.readOnlyKey = "code";
    g.key(Qt::Key_Plus);
    QVERIFY(g.view->isExpanded(g.cell("1:code")));
    // Where a number can be typed, a minus is the start of it.
    g.setCurrent("1:amount");
    g.key(Qt::Key_Minus);
    QVERIFY(g.view->isExpanded(g.cell("1:code")));
    QVERIFY(g.editor() != nullptr);
    QCOMPARE(g.editor()->text(), QString("-"));
  }

  void drawsCaptionsOverGroupedColumns() {
    SampleGrid g;
    const bwidgets::GridHeader* header = g.view->gridHeader();
    QVERIFY(header->hasGroups());
    std::vector<bwidgets::HeaderSpan> wanted = {{0, 3, 4, 320, 210}, {1, 6, 7, 660, 240}};
    QVERIFY(header->spans() == wanted);
    // Columns that the filter leaves out shift the others.
    g.table.getHeader()->column("unit")->visible = false;
    g.filter.want("");
    wanted = {{0, 2, 3, 260, 210}, {1, 5, 6, 600, 240}};
    QVERIFY(header->spans() == wanted);
    // Nor does a column that is left out take a neighbour under its caption, rows or no rows.
    g.table.getHeader()->column("amount")->visible = false;
    wanted = {{0, 2, 2, 260, 110}, {1, 4, 5, 500, 240}};
    for (const char* name : {"nothing has this name", ""}) {
      g.filter.want(name);
      QVERIFY(header->spans() == wanted);
    }
    // A click on a caption sorts nothing; one on a title below it does.
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(300, 5));
    QCOMPARE(header->sortIndicatorSection(), -1);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(300, header->height() - 5));
    QCOMPARE(header->sortIndicatorSection(), 2);
  }

  void keepsWidthsInTheModel() {
    SampleGrid g;
    QCOMPARE(g.view->columnWidth(1), 140);
    g.view->header()->resizeSection(1, 175);
    QCOMPARE(g.table.getHeader()->column("name")->width, std::optional<int>(175));
    // Hiding and showing is no resizing.
    g.view->setColumnHidden(1, true);
    g.view->setColumnHidden(1, false);
    QCOMPARE(g.table.getHeader()->column("name")->width, std::optional<int>(175));
    g.table.getHeader()->column("name")->width = 90;
    g.model.reset([] {});
    QCOMPARE(g.view->columnWidth(1), 90);

    // Without a kept width the title and the first rows decide, and a refresh changes nothing.
    g.table.getHeader()->column("note")->width.reset();
    g.node(0, 0)->set("note", std::string("一段比较长的备注文字，用来撑开这一列"));
    g.view->setModel(nullptr);
    g.view->setModel(&g.filter);
    g.view->expandAll();
    g.view->applyDefaultColumnWidths();
    const int sampled = g.view->columnWidth(7);
    QVERIFY2(sampled > 200 && sampled <= 320, qPrintable(QString::number(sampled)));
    g.node(0, 0)->set("note", std::string("短"));
    g.model.reset([] {});
    QCOMPARE(g.view->columnWidth(7), sampled);
    QVERIFY(!g.table.getHeader()->column("note")->width);

    // A column that the model leaves out for a while comes back as wide as it was.
    domain::ColumnDescriptor* unit = g.table.getHeader()->column("unit");
    const std::function<void()> refreshes[] = {[&g] { g.filter.want(""); },
                                               [&g] { g.filter.invalidate(); },
                                               [&g] { g.model.reset([] {}); }};
    for (const auto& refresh : refreshes) {
      for (const bool visible : {false, true}) {
        unit->visible = visible;
        refresh();
        QCOMPARE(g.view->columnWidth(g.filter.getColumnIndex("amount")), 100);
      }
      QCOMPARE(g.view->columnWidth(2), 60);
    }
    QCOMPARE(unit->width, std::optional<int>(60));
  }

  void resizesFrozenColumnsByMouse() {
    SampleGrid g;
    g.view->setFrozenColumnCount(2);
    g.scrollTo(150);
    QWidget* header = g.view->gridHeader()->viewport();
    const int y = g.view->gridHeader()->height() - 5;
    QTest::mousePress(header, Qt::LeftButton, {}, QPoint(119, y));
    QMouseEvent move(QEvent::MouseMove, QPoint(149, y), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(header, &move);
    QTest::mouseRelease(header, Qt::LeftButton, {}, QPoint(149, y));
    QCOMPARE(g.view->columnWidth(0), 150);
    QCOMPARE(g.table.getHeader()->column("code")->width, std::optional<int>(150));
    QCOMPARE(g.view->header()->sortIndicatorSection(), -1);
    // A click into a frozen title sorts by that column and not by the one beneath.
    QTest::mouseClick(header, Qt::LeftButton, {}, QPoint(60, y));
    QCOMPARE(g.view->header()->sortIndicatorSection(), 0);
  }

  void zooms() {
    OpenGrid g;
    const int row = g.view->visualRect(g.cell("0:code")).height();
    QSignalSpy zoomed(g.view.get(), &bwidgets::TreeGridView::zoomChanged);
    g.view->setZoom(150);
    QCOMPARE(zoomed.size(), 1);
    QCOMPARE(g.view->columnWidth(0), 180);
    const int larger = g.view->visualRect(g.cell("0:code")).height();
    QVERIFY2(larger > row * 1.3 && larger < row * 1.7, qPrintable(QString::number(larger)));
    QCOMPARE(g.table.getHeader()->column("code")->width, std::optional<int>(120));
    g.view->header()->resizeSection(0, 210);
    QCOMPARE(g.table.getHeader()->column("code")->width, std::optional<int>(140));
    g.view->setZoom(100);
    QCOMPARE(g.view->columnWidth(0), 140);
    QCOMPARE(g.view->visualRect(g.cell("0:code")).height(), row);
  }

  void tellsElements() {
    OpenGrid g;
    std::vector<proxy::Element*> changes;
    connect(g.view.get(), &bwidgets::TreeGridView::currentElementChanged, this,
            [&changes](proxy::Element* element) { changes.push_back(element); });
    g.setCurrent("1.2:name");
    QCOMPARE(g.view->currentElement(), static_cast<proxy::Element*>(g.node(1, 2)));
    QCOMPARE(changes.size(), std::size_t(1));
    g.key(Qt::Key_Right);
    QCOMPARE(changes.size(), std::size_t(1));  // the same row
    g.key(Qt::Key_Down);
    QCOMPARE(changes.size(), std::size_t(2));

    // Selected in whatever order, told from top to bottom, each once.
    g.click("2.1:name");
    g.click("0.3:unit", Qt::ControlModifier);
    g.click("0.3:price", Qt::ControlModifier);
    g.click("1:name", Qt::ControlModifier);
    const std::vector<proxy::Element*> wanted = {g.node(0, 3), g.op.tree.node(1), g.node(2, 1)};
    QVERIFY(g.view->selectedElements() == wanted);
    g.view->collapse(g.cell("2:code"));  // what is not shown is not acted upon
    QCOMPARE(g.view->selectedElements().size(), std::size_t(2));
    changes.clear();
    g.model.reset([&g] { g.op.tree.clear(); });
    QVERIFY(!changes.empty() && changes.back() == nullptr);
    QVERIFY(g.view->selectedElements().empty());
  }

  void selectsElements() {
    SampleGrid g;
    g.filter.want("人工");
    g.filter.want("");
    const std::vector<proxy::Element*> wanted = {g.node(1, 1), g.node(1, 2), g.node(2, 0)};
    g.view->selectElements({g.node(2, 0), nullptr, g.node(1, 1), g.node(1, 2)});
    QVERIFY(g.view->selectedElements() == wanted);
    QCOMPARE(g.view->currentElement(), static_cast<proxy::Element*>(g.node(2, 0)));
    QVERIFY(g.view->isExpanded(g.cell("1:code")));
    g.view->selectElements({});
    QVERIFY(g.view->selectedElements().empty());
  }
};

QCE_WIDGET_TEST_MAIN(TestTreeGridView)
#include "tst_tree_grid_view.moc"
