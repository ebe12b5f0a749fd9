
#include "host/bwidgets/table_view.h"
#include "tests/support/sample_grid.h"
#include "tests/support/test_main.h"

using tests::OpenGrid;
using tests::SampleGrid;

namespace {

void setClipboard(const char* text) {
  QGuiApplication::clipboard()->setText(QString::fromUtf8(text));
}

QString clipboard() {
  return QGuiApplication::clipboard()->text();
}

}  // namespace

class TestGridClipboard : public QObject {
  Q_OBJECT

 private slots:
  void copiesABlockAsASpreadsheetWantsIt() {
    SampleGrid g;
    g.node(0, 1)->set("name", std::string("两行\n文字"));
    g.view->expandAll();
    g.select("0.0:name", "0.1:owner");
    g.key(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(clipboard(), QString::fromUtf8("螺纹钢 HRB400\tt\t12.500\t3850.00\t48125.00\t√\n"
                                            "\"两行\n文字\"\tm³\t13.500\t3849.00\t51961.50\t"));
    setClipboard("untouched");
    g.view->clearSelection();
    g.key(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(clipboard(), QString("untouched"));
  }

  void copiesInVisualOrder() {
    SampleGrid g;
    g.view->expand(g.cell("0:code"));
    g.view->gridHeader()->moveSection(7, 0);
    g.view->setColumnHidden(2, true);
    g.view->setRowHidden(1, g.cell("0:code"), true);
    // From the last shown column of the third item back to the note, over collapsed groups.
    g.select("0.0:code", "0.2:note");
    g.view->selectionModel()->select(QItemSelection(g.cell("1:code"), g.cell("1:note")),
                                     QItemSelectionModel::Select);
    g.key(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(clipboard(),
             QString::fromUtf8("备注0\tCL1000\t螺纹钢 HRB400\t12.500\t3850.00\t48125.00\t√\n"
                               "备注2\tCL1002\t商品混凝土 C30\t14.500\t3848.00\t55796.00\t\n"
                               "\t材料\t\t0.000\t0.00\t0.00\t"));
  }

  void copiesAScatteredSelectionInItsFrame() {
    OpenGrid g;
    g.click("0.2:name");
    g.click("0.0:code", Qt::ControlModifier);
    g.key(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(clipboard(), QString::fromUtf8("CL1000\t\n\t商品混凝土 C30"));
  }

  void pastesABlockOverShownRowsAndColumns() {
    SampleGrid g;
    g.view->expand(g.cell("0:code"));
    g.view->setColumnHidden(2, true);
    g.view->gridHeader()->moveSection(7, 1);
    g.setCurrent("0.2:note");  // then name, amount
    setClipboard("n1\t\"a\nb\"\t1,234.5\r\nn2\tc\t2\r\n\"\"\tgroup\t3\r\n");
    g.key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(g.text("0.2:note"), QString("n1"));
    QCOMPARE(g.text("0.2:name"), QString("a\nb"));
    QCOMPARE(g.text("0.2:amount"), QString("1234.500"));
    QCOMPARE(g.text("0.3:note"), QString("n2"));
    QCOMPARE(g.text("0.3:amount"), QString("2.000"));
    QCOMPARE(g.text("1:name"), QString("group"));  // the row below the last item
    QCOMPARE(g.text("0.2:unit"), QString("t"));    // hidden, so passed over
    QCOMPARE(g.services.undo.steps, std::vector<std::string>{"粘贴"});
    QCOMPARE(g.message(), QString("0 messages"));
  }

  void pastesAtTheTopLeftOfTheSelection() {
    OpenGrid g;
    g.click("0.1:note");
    g.click("0.0:unit", Qt::ShiftModifier);  // the current cell is the top left one now
    g.click("0.0:unit");
    g.click("0.1:note", Qt::ShiftModifier);  // and now the bottom right one
    setClipboard("kg\t7");
    g.key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(g.text("0.0:unit"), QString("kg"));
    QCOMPARE(g.text("0.0:amount"), QString("7.000"));
    QCOMPARE(g.text("0.1:note"), QString::fromUtf8("备注1"));
  }

  void fillsTheSelectionWithOneValue() {
    OpenGrid g;
    g.select("0.0:unit", "0.2:unit");
    g.view->selectionModel()->select(g.cell("1.3:note"), QItemSelectionModel::Select);
    setClipboard("kg\n");
    g.key(Qt::Key_V, Qt::ControlModifier);
    for (const char* cell : {"0.0:unit", "0.1:unit", "0.2:unit", "1.3:note"}) {
      QCOMPARE(g.text(cell), QString("kg"));
    }
    QCOMPARE(g.text("0.3:unit"), QString("m³"));
    QCOMPARE(g.services.undo.steps.size(), std::size_t(1));
  }

  void readsNumbersAndCheckMarks() {
    OpenGrid g;
    g.setCurrent("0.0:amount");
    setClipboard("１２．５\n\n¥1,000");
    g.key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(g.text("0.0:amount"), QString("12.500"));
    QVERIFY(std::holds_alternative<std::monostate>(*g.node(0, 1)->find("amount", Qt::EditRole)));
    QCOMPARE(g.text("0.2:amount"), QString("1000.000"));
    g.setCurrent("0.0:owner");
    setClipboard("否\n√\nmaybe\n");
    g.key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(g.op.lastRole, int(Qt::CheckStateRole));
    QVERIFY(g.message().contains(QString::fromUtf8("“CL1002 商品混凝土 C30”的甲供")));
  }

  void namesWhatItCouldNotPaste() {
    OpenGrid g;
    g.setCurrent("2.2:price");
    // total is read-only, "x" is no number, the grid has one more row and three more columns.
    setClipboard("1\t2\t\tn\t5\nx\t\t\tn\n9\n9\n");
    g.key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(g.message(), QString::fromUtf8("以下 2 个单元格未粘贴，保持原值：\n"
                                            "“CL1010 商品混凝土 C30”的合价：不可编辑\n"
                                            "“CL1011 中砂”的单价：应为数字\n"
                                            "有 2 行超出表格末尾，未粘贴。\n"
                                            "有 1 列超出表格右侧，未粘贴。"));
    QCOMPARE(g.text("2.2:price"), QString("1.00"));
    QCOMPARE(g.text("2.3:price"), QString("3,839.00"));  // what was there stays
    QCOMPARE(g.text("2.2:note"), QString("n"));

    // Where rows have numbers, these come first.
    SampleGrid table(3, 0, new bwidgets::TableView);
    table.setCurrent("1:price");
    setClipboard("x");
    table.key(Qt::Key_V, Qt::ControlModifier);
    QVERIFY(table.message().endsWith(QString::fromUtf8("\n第 2 行“材料”的单价：应为数字")));
  }

  void reportsOnceWhatTheModelSaysOfEachCell() {
    OpenGrid g;
    g.view->setTreePosition(1);
    g.op.refuse = true;
    g.op.complaint = "“CL1000 螺纹钢 HRB400”的单价过大。";
    g.setCurrent("0.0:price");
    setClipboard("1\n2\nx");
    g.key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(g.message(), QString::fromUtf8("以下 3 个单元格未粘贴，保持原值：\n"
                                            "“CL1000 螺纹钢 HRB400”的单价过大。\n"
                                            "“CL1001 普通水泥 P.O 42.5”：“CL1000 螺纹钢 HRB400”"
                                            "的单价过大。\n"
                                            "“CL1002 商品混凝土 C30”的单价：应为数字"));
    // Ten cells are named, the rest is counted.
    g.services.channel.clear();
    g.op.complaint.clear();
    g.select("0.0:code", "0.3:amount");
    setClipboard("7");
    g.key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(g.message().count('\n'), 11);
    QVERIFY(g.message().endsWith(QString::fromUtf8("\n……另有 6 个单元格")));
    // The channel is the host's again.
    g.services.channel.clear();
    app::qce::GetQCEChannel()->message("x", QMessageBox::Ok);
    QCOMPARE(g.message(), QString("x"));
  }

  void pastesWhileTheModelFilters() {
    // Each accepted edit makes the proxy filter and sort again; the rows must not be lost.
    OpenGrid g;
    g.filter.want("中砂");
    QCOMPARE(g.filter.rowCount(g.cell("0:code")), 1);
    g.view->setCurrentIndex(g.cell("0.0:note"));
    setClipboard("a\nb\nc\nd\ne");
    g.key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(g.text("0.0:note"), QString("a"));
    QCOMPARE(g.text("1:note"), QString("b"));
    QCOMPARE(g.text("1.0:note"), QString("c"));
    QCOMPARE(g.text("2.0:note"), QString("e"));
  }

  void copiedRowsPasteBackUnchanged() {
    SampleGrid g;
    g.node(0, 0)->set("price", 1.23456);
    g.view->expandAll();
    g.select("0.0:code", "0.3:note");
    g.key(Qt::Key_C, Qt::ControlModifier);
    g.key(Qt::Key_V, Qt::ControlModifier);
    // Neither digits that are not shown nor read-only columns stand in the way.
    QCOMPARE(std::get<double>(*g.node(0, 0)->find("price", Qt::EditRole)), 1.23456);
    QCOMPARE(g.message(), QString("0 messages"));
  }

  void clears() {
    OpenGrid g;
    g.select("0.0:name", "0.0:note");
    g.key(Qt::Key_Delete);
    QCOMPARE(g.text("0.0:name"), QString());
    QCOMPARE(g.text("0.0:note"), QString());
    QCOMPARE(g.text("0.0:total"), QString("48,125.00"));
    QCOMPARE(g.services.undo.steps, std::vector<std::string>{"清除内容"});
    g.key(Qt::Key_Delete);  // what is empty already makes no undo step
    g.select("0.1:total", "0.1:owner");
    g.key(Qt::Key_Delete);
    QCOMPARE(g.services.undo.steps.size(), std::size_t(1));
    QCOMPARE(g.message(), QString("0 messages"));
    // A page that wants to hear of it is asked instead.
    const QSignalSpy pressed(g.view.get(), &bwidgets::TreeGridView::deletePressed);
    g.select("0.1:name", "0.1:note");
    g.key(Qt::Key_Delete);
    QCOMPARE(pressed.size(), 1);
    QCOMPARE(g.text("0.1:note"), QString::fromUtf8("备注1"));
  }
};

QCE_WIDGET_TEST_MAIN(TestGridClipboard)
#include "tst_grid_clipboard.moc"
