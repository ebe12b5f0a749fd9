
#include "host/bwidgets/dialog.h"
#include "host/bwidgets/table_view.h"
#include "tests/support/sample_grid.h"
#include "tests/support/test_main.h"

using tests::SampleGrid;

class TestTableView : public QObject {
  Q_OBJECT

 private slots:
  void showsRowNumbersBesideTheCells() {
    SampleGrid g(30, 0, new bwidgets::TableView);
    auto* table = static_cast<bwidgets::TableView*>(g.view.get());
    const int width = table->rowNumberWidth();
    QVERIFY(width > 0);
    QTRY_VERIFY(table->viewport()->geometry().left() >= width);
    QCOMPARE(table->header()->geometry().left(), table->viewport()->geometry().left());
    QCOMPARE(table->header()->width(), table->viewport()->width());
    // The last column can be scrolled into sight in full.
    table->horizontalScrollBar()->setValue(table->horizontalScrollBar()->maximum());
    const QRect last = table->visualRect(g.cell("0:note"));
    QVERIFY(last.right() < table->viewport()->width());
    QVERIFY(last.right() > table->viewport()->width() - 5);
    table->setRowNumbersShown(false);
    QVERIFY(table->viewport()->geometry().left() < width);
  }

  void selectsRowsByTheirNumbers() {
    SampleGrid g(30, 0, new bwidgets::TableView);
    auto* numbers = g.view->findChild<QWidget*>("rowNumbers");
    QVERIFY(numbers != nullptr);
    const auto at = [&g](const char* path) {
      return QPoint(
          5, g.view->visualRect(g.cell(path)).center().y() + g.view->viewport()->geometry().top());
    };
    QTest::mouseClick(numbers, Qt::LeftButton, {}, at("2:code"));
    QCOMPARE(g.view->selectedCells().size(), 8);
    QCOMPARE(g.current(), QString("2:code"));
    QTest::mouseClick(numbers, Qt::LeftButton, Qt::ShiftModifier, at("4:code"));
    QCOMPARE(g.view->selectedElements().size(), std::size_t(3));
    QTest::mouseClick(numbers, Qt::LeftButton, Qt::ControlModifier, at("6:code"));
    QCOMPARE(g.view->selectedElements().size(), std::size_t(4));
    QTest::mouseClick(numbers, Qt::LeftButton, {}, QPoint(5, 5));
    QCOMPARE(g.view->selectedElements().size(), std::size_t(30));
  }

  void growsWithTheNumberOfRows() {
    SampleGrid g(5, 0, new bwidgets::TableView);
    QTest::qWait(20);
    const int before = g.view->viewport()->geometry().left();
    g.model.reset([&g] {
      for (int i = 0; i < 20000; ++i) g.op.tree.add("x");
    });
    QTRY_VERIFY(g.view->viewport()->geometry().left() > before);
  }

  void dialogSpeaksChinese() {
    bwidgets::Dialog dialog;
    QVERIFY(!(dialog.windowFlags() & Qt::WindowContextHelpButtonHint));
    QDialogButtonBox* box = dialog.createButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QCOMPARE(box->button(QDialogButtonBox::Ok)->text(), QString::fromUtf8("确定"));
    QCOMPARE(box->button(QDialogButtonBox::Cancel)->text(), QString::fromUtf8("取消"));
    dialog.show();
    box->button(QDialogButtonBox::Ok)->click();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    dialog.resizeToScreen(0.5, 0.5);
    QVERIFY(dialog.width() > 100);
  }
};

QCE_WIDGET_TEST_MAIN(TestTableView)
#include "tst_table_view.moc"
