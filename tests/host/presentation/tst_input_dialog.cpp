#include "host/presentation/input_dialog.h"

#include "tests/support/recording_services.h"
#include "tests/support/rows.h"
#include "tests/support/test_main.h"

class TestInputDialog : public QObject {
  Q_OBJECT

 private slots:
  void asksForANumber() {
    gui::CInputDialog dialog("批量设置不含税单价", "不含税单价（元）:", 3500.5, {}, nullptr);
    auto* edit = show(dialog);
    QCOMPARE(dialog.windowTitle(), QString("批量设置不含税单价"));
    QCOMPARE(edit->text(), QString("3500.5"));
    QTest::keyClicks(edit, "1,012.34");  // replaces the selected text
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(dialog.result(), 1);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.getValue(), 1012.34);
  }

  void refusesWhatIsNoNumberWithinTheBounds_data() {
    const tests::Rows<QString> row;
    row("empty", "");
    row("sign only", "-");
    row("below", "-5");
    row("above", "101");
    row("calculation", "2*1.5");
    row("exponent", "1e1");
    row("third decimal", "12.345");
  }
  void refusesWhatIsNoNumberWithinTheBounds() {
    const auto [typed] = tests::fetch<QString>();
    tests::RecordingServices recorded;
    gui::CInputDialog dialog("标题", "数值:", 50, {-1.0, 100.0, 2}, nullptr);
    auto* edit = show(dialog);
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, typed);
    QCOMPARE(edit->text(), typed);
    ok(dialog)->click();
    QVERIFY(dialog.isVisible());
    QCOMPARE(recorded.channel.messages().size(), std::size_t(1));
    const std::string& said = recorded.channel.messages()[0].text;
    const char* reason = typed == "12.345" ? "小数超过 2 位" : "-1 至 100";
    QVERIFY(said.find(reason) != std::string::npos);
    QTest::keyClicks(edit, "7");  // the refused text is selected: typing replaces it
    QTest::keyClick(edit, Qt::Key_Enter);
    QCOMPARE(dialog.result(), 1);
    QCOMPARE(dialog.getValue(), 7.0);
  }

  void cancels() {
    gui::CInputDialog dialog("标题", "数值:", 1, {}, nullptr);
    auto* edit = show(dialog);
    QTest::keyClicks(edit, "abc");
    QTest::keyClick(edit, Qt::Key_Escape);
    QCOMPARE(dialog.result(), 0);
  }

 private:
  static QLineEdit* show(gui::CInputDialog& dialog) {
    dialog.show();
    return dialog.findChild<QLineEdit*>("CInputDialog_value");
  }
  static QPushButton* ok(gui::CInputDialog& dialog) {
    for (auto* button : dialog.findChildren<QPushButton*>()) {
      if (button->text() == "确定") return button;
    }
    return nullptr;
  }
};

QCE_WIDGET_TEST_MAIN(TestInputDialog)
#include "tst_input_dialog.moc"
