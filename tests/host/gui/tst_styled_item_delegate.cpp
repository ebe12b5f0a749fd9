
#include "host/gui/styled_item_delegate.h"
#include "tests/support/rows.h"
#include "tests/support/sample_grid.h"
#include "tests/support/test_main.h"

using tests::OpenGrid;
using tests::SampleGrid;

namespace {

// Opens what initStyleOption makes of a cell.
class Delegate : public gui::StyledItemDelegate {
 public:
  QStyleOptionViewItem option(const SampleGrid& g, const QString& path) const {
    QStyleOptionViewItem made;
    made.widget = g.view.get();
    made.displayAlignment = Qt::AlignLeft | Qt::AlignVCenter;
    initStyleOption(&made, g.cell(path));
    return made;
  }
};

}  // namespace

class TestStyledItemDelegate : public QObject {
  Q_OBJECT

 private slots:
  void alignsByFieldType() {
    SampleGrid g;
    const Delegate delegate;
    QVERIFY(delegate.option(g, "0.0:amount").displayAlignment & Qt::AlignRight);
    QVERIFY(delegate.option(g, "0.0:name").displayAlignment & Qt::AlignLeft);
    g.node(0, 0)->set("amount", Qt::TextAlignmentRole, int(Qt::AlignHCenter));
    QVERIFY(!(delegate.option(g, "0.0:amount").displayAlignment & Qt::AlignRight));
  }

  void returnCommitsAndGoesDown() {
    SampleGrid g;
    g.edit("0.0:note");
    QCOMPARE(g.editor()->selectedText(), QString::fromUtf8("备注0"));
    QTest::keyClicks(g.editor(), "new");
    QTest::keyClick(g.editor(), Qt::Key_Return);
    QTRY_COMPARE(g.text("0.0:note"), QString("new"));
    QTRY_COMPARE(g.current(), QString("0.1:note"));
    QVERIFY(g.editor() == nullptr);
    QCOMPARE(g.view->selectedCells().size(), 1);
    QVERIFY(g.view->hasFocus());
  }

  void tabCommitsAndGoesOn() {
    SampleGrid g;
    g.edit("0.0:unit", "kg");
    QTest::keyClick(g.editor(), Qt::Key_Tab);
    QCOMPARE(g.text("0.0:unit"), QString("kg"));
    QCOMPARE(g.current(), QString("0.0:amount"));
    QVERIFY(g.editor() == nullptr);
    g.edit("0.0:unit", "lb");
    QTest::keyClick(g.editor(), Qt::Key_Escape);
    QCOMPARE(g.text("0.0:unit"), QString("kg"));
    QCOMPARE(g.current(), QString("0.0:unit"));
  }

  void typingReplacesTheText() {
    OpenGrid g;
    g.setCurrent("0.0:amount");
    QTest::keyClick(g.view.get(), '7');
    QVERIFY(g.editor() != nullptr);
    QCOMPARE(g.editor()->text(), QString("7"));
    QTest::keyClicks(g.editor(), ".5");
    QTest::keyClick(g.editor(), Qt::Key_Return);
    QTRY_COMPARE(g.text("0.0:amount"), QString("7.500"));
    // A cell that cannot be edited stays as it is.
    g.setCurrent("0.0:total");
    QTest::keyClick(g.view.get(), '7');
    QVERIFY(g.editor() == nullptr);
  }

  void takesNumbersAlone_data() {
    const tests::Rows<QString, double> row;
    row("separators", "1,234.5", 1234.5);
    row("full width", QString::fromUtf8("１２。５"), 12.5);
    row("negative", "-2", -2.0);
  }
  void takesNumbersAlone() {
    const auto [typed, value] = tests::fetch<QString, double>();
    SampleGrid g;
    g.node(0, 0)->set("price", 1234567.125);
    g.edit("0.0:price");
    QCOMPARE(g.editor()->text(), QString("1234567.125"));  // and not as it is displayed
    g.editor()->clear();
    for (const QChar c : typed) g.editor()->insert(c);
    QTest::keyClick(g.editor(), Qt::Key_Return);
    QTRY_COMPARE(g.current(), QString("0.1:price"));
    QCOMPARE(std::get<double>(*g.node(0, 0)->find("price", Qt::EditRole)), value);
  }

  void keepsWhatIsNoNumberInTheEditor() {
    OpenGrid g;
    g.setCurrent("0.0:price");
    const domain::Value before = *g.node(0, 0)->find("price", Qt::EditRole);
    g.key(Qt::Key_F2);
    QTest::keyClicks(g.editor(), "100*1.05");
    QCOMPARE(g.editor()->text(), QString("100*1.05"));
    QVERIFY(QToolTip::text().contains(QString::fromUtf8("只能输入数字")));
    QTest::keyClick(g.editor(), Qt::Key_Return);
    QCoreApplication::processEvents();  // Return commits by way of the event loop
    QVERIFY(g.editor() != nullptr);
    QCOMPARE(g.current(), QString("0.0:price"));
    QCOMPARE(*g.node(0, 0)->find("price", Qt::EditRole), before);
    for (int i = 0; i < 5; ++i) QTest::keyClick(g.editor(), Qt::Key_Backspace);
    QTest::keyClick(g.editor(), Qt::Key_Return);
    QTRY_COMPARE(g.text("0.0:price"), QString("100.00"));
  }

  void tellsOfWhatIsNoNumberAndIsLeft() {
    OpenGrid g;
    const domain::Value before = *g.node(0, 0)->find("price", Qt::EditRole);
    g.edit("0.0:price", "abc");
    QTest::keyClick(g.editor(), Qt::Key_Escape);  // given up on purpose
    QTRY_VERIFY(g.editor() == nullptr);
    const QString naming = g.cell("0.0:price").sibling(0, g.view->treePosition()).data().toString();
    QVERIFY(!naming.isEmpty());
    g.edit("0.0:price", "168*1.1");
    g.click("0.1:price");
    QTRY_COMPARE(
        g.message(),
        QString("“168*1.1”不是数字，没有写入“%1”的“单价”，单元格保留原值。请重新输入数字。")
            .arg(naming));
    QCOMPARE(*g.node(0, 0)->find("price", Qt::EditRole), before);
  }

  void staysOnACellThatIsRefused() {
    OpenGrid g;
    g.op.refuse = true;
    for (const auto key : {Qt::Key_Return, Qt::Key_Tab}) {
      g.setCurrent("0.0:price");
      g.key(Qt::Key_F2);
      QTest::keyClicks(g.editor(), "7");
      QTest::keyClick(g.editor(), key);
      QTRY_VERIFY(g.editor() == nullptr);
      QCOMPARE(g.current(), QString("0.0:price"));
      QVERIFY(g.view->hasFocus());
    }
  }

  void writesOnlyWhatChanged() {
    SampleGrid g;
    g.node(0, 0)->set("price", 1.23456);
    g.edit("0.0:price");
    QTest::keyClick(g.editor(), Qt::Key_Return);
    QTRY_COMPARE(g.current(), QString("0.1:price"));
    QVERIFY(g.services.undo.steps.empty());
    // An emptied cell is cleared.
    g.edit("0.0:price");
    QTest::keyClick(g.editor(), Qt::Key_Delete);
    QTest::keyClick(g.editor(), Qt::Key_Return);
    QTRY_COMPARE(g.services.undo.steps.size(), std::size_t(1));
    QVERIFY(std::holds_alternative<std::monostate>(g.op.lastWritten));
  }

  void keepsWhatIsTypedWhileTheModelChanges() {
    SampleGrid g;
    g.edit("0.0:note", "typed");
    g.node(0, 0)->set("note", std::string("from elsewhere"));
    emit g.model.dataChanged(g.model.index(0, 7, g.model.index(0, 0)),
                             g.model.index(0, 7, g.model.index(0, 0)), {});
    QCOMPARE(g.editor()->text(), QString("typed"));
  }

  void togglesCheckBoxes() {
    OpenGrid g;
    g.setCurrent("0.1:owner");
    const auto state = [&g] { return g.cell("0.1:owner").data(Qt::CheckStateRole).toInt(); };
    QCOMPARE(state(), int(Qt::Unchecked));
    g.key(Qt::Key_Space);
    QCOMPARE(state(), int(Qt::Checked));
    g.click("0.1:owner");  // the box stands in the middle
    QCOMPARE(state(), int(Qt::Unchecked));
    const QRect cell = g.view->visualRect(g.cell("0.1:owner"));
    QTest::mouseClick(g.view->viewport(), Qt::LeftButton, {}, cell.topLeft() + QPoint(3, 3));
    QCOMPARE(state(), int(Qt::Unchecked));  // beside it
    g.op.checkableKey.clear();
    g.click("0.1:owner");
    QCOMPARE(state(), int(Qt::Unchecked));
  }

  void showsCutTextsAsToolTips() {
    SampleGrid g;
    const QString full = QString::fromUtf8("一段放不进这一列的备注，长得要用提示来看全部的文字");
    g.node(0, 0)->set("note", full.toStdString());
    g.view->expandAll();
    g.view->setFrozenColumnCount(2);
    g.view->scrollTo(g.cell("0.0:note"));
    const auto tip = [&g](const char* path) {
      const QPoint at = g.view->visualRect(g.cell(path)).center();
      QHelpEvent event(QEvent::ToolTip, at, g.view->viewport()->mapToGlobal(at));
      QCoreApplication::sendEvent(g.view->viewport(), &event);
      return QToolTip::text();
    };
    QCOMPARE(tip("0.0:note"), full);
    QTRY_COMPARE(tip("0.1:note"), QString());
  }
};

QCE_WIDGET_TEST_MAIN(TestStyledItemDelegate)
#include "tst_styled_item_delegate.moc"
