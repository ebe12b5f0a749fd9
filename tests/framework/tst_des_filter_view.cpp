#include <QSignalSpy>

#include "framework/des_filter_view.h"
#include "tests/support/rows.h"
#include "tests/support/test_main.h"

using gui::qce::destructors::DesFilterView;

namespace {

/// A page around a panel, which notes the keys that reach it.
class Page : public bwidgets::Widget {
 public:
  QList<int> keys;

 protected:
  void keyPressEvent(QKeyEvent* event) override { keys << event->key(); }
};

QLineEdit* box(const DesFilterView& panel, const QString& label) {
  for (auto* caption : panel.findChildren<QLabel*>()) {
    if (caption->text() == label && !caption->isHidden()) {
      return qobject_cast<QLineEdit*>(caption->buddy());
    }
  }
  return nullptr;
}

std::vector<std::string> conditions(const DesFilterView& panel) {
  return {panel.getCbkm(), panel.getCode(), panel.getName(), panel.getFeature(), panel.getUnit()};
}

}  // namespace

class TestDesFilterView : public QObject {
  Q_OBJECT

 private slots:
  void labelsItsBoxesByViewType_data() {
    const tests::Rows<int, QString, QString, bool> row;
    row("sub-engineering", 0, "项目特征:", "规格型号:", true);
    row("resource items", 1, "规格型号:", "项目特征:", false);
  }
  void labelsItsBoxesByViewType() {
    const auto [type, fourthLabel, absentLabel, checkBoxes] =
        tests::fetch<int, QString, QString, bool>();
    DesFilterView panel(static_cast<DesFilterView::ViewType>(type), nullptr);
    panel.show();
    const QStringList labels{"成本科目:", "编  码:", "名  称:", fourthLabel, "单  位:"};
    const QStringList typed{"C30 混凝土", "0101%", "\"a\" ", "规格✓", " m³"};
    for (int i = 0; i < labels.size(); ++i) {
      QVERIFY2(box(panel, labels[i]), qPrintable(labels[i]));
      box(panel, labels[i])->insert(typed[i]);
    }
    std::vector<std::string> expected;
    for (const QString& text : typed) expected.push_back(text.toStdString());
    QVERIFY(conditions(panel) == expected);
    QVERIFY(!box(panel, absentLabel));
    QCOMPARE(panel.showChildrenBox()->isVisible(), checkBoxes);
    QCOMPARE(panel.showSiblingBox()->isVisible(), checkBoxes);
    QCOMPARE(panel.showChildrenBox()->text(), "显示下级内容");
    QCOMPARE(panel.showSiblingBox()->text(), "显示同级内容");
  }

  void emptiesTheBoxesOnReset() {
    DesFilterView panel(DesFilterView::SubEngineering, nullptr);
    const auto edits = panel.findChildren<QLineEdit*>();
    QCOMPARE(edits.size(), 5);
    for (auto* edit : edits) edit->setText("x");
    panel.showChildrenBox()->setChecked(true);
    QSignalSpy started(panel.startButton(), &QPushButton::clicked);
    QTest::mouseClick(panel.resetButton(), Qt::LeftButton);
    QVERIFY(conditions(panel) == std::vector<std::string>(5));
    QVERIFY(panel.showChildrenBox()->isChecked());
    QCOMPARE(started.count(), 0);
  }

  void startsOnReturnFromAnywhereAndConfirmsNothingElse() {
    QDialog dialog;
    QPushButton other("确定", &dialog);
    other.setDefault(true);
    const QSignalSpy confirmed(&other, &QPushButton::clicked);
    Page page;
    page.setParent(&dialog);
    auto* panel = new DesFilterView(DesFilterView::SubEngineering, &page);
    const QSignalSpy started(panel->startButton(), &QPushButton::clicked);
    const QSignalSpy cancelled(panel->cancelButton(), &QPushButton::clicked);
    dialog.show();
    const QList<QWidget*> targets{panel, box(*panel, "单  位:"), panel->startButton(),
                                  panel->cancelButton(), panel->showChildrenBox()};
    for (QWidget* target : targets) {
      target->setFocus();
      for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) QTest::keyClick(target, key);
    }
    QCOMPARE(started.count(), 2 * targets.size());
    QCOMPARE(started[0][0].toBool(), false);
    QCOMPARE(cancelled.count() + confirmed.count(), 0);
    QVERIFY(!panel->showChildrenBox()->isChecked());
    QVERIFY(page.keys.isEmpty());
  }

  void keepsSpacesAndPassesOtherKeysOn() {
    Page page;
    auto* panel = new DesFilterView(DesFilterView::SubEngineering, &page);
    QSignalSpy started(panel->startButton(), &QPushButton::clicked);
    QSignalSpy siblings(panel->showSiblingBox(), &QCheckBox::stateChanged);
    QTest::keyClick(panel, Qt::Key_Space);
    QVERIFY(conditions(*panel) == std::vector<std::string>(5));
    QTest::keyClicks(box(*panel, "名  称:"), "C30 P6");
    QCOMPARE(panel->getName(), std::string("C30 P6"));
    QTest::keyClick(panel->showSiblingBox(), Qt::Key_Space);
    QTest::keyClick(panel->showSiblingBox(), Qt::Key_Space);
    QCOMPARE(siblings.count(), 2);
    QCOMPARE(siblings[0][0].toInt(), 2);
    QCOMPARE(siblings[1][0].toInt(), 0);
    QVERIFY(page.keys.isEmpty());
    QCOMPARE(started.count(), 0);
    QTest::keyClick(panel, Qt::Key_Escape);
    QTest::keyClick(box(*panel, "编  码:"), Qt::Key_F3);
    QCOMPARE(page.keys, (QList<int>{Qt::Key_Escape, Qt::Key_F3}));
  }

  void tabsThroughBoxesAndButtonsFromTopToBottom() {
    DesFilterView panel(DesFilterView::SubEngineering, nullptr);
    panel.show();
    QVERIFY(QTest::qWaitForWindowActive(&panel));
    panel.setFocus();
    QList<QWidget*> order;
    for (int i = 0; i < 10; ++i) {
      order << panel.focusWidget();
      QTest::keyClick(panel.focusWidget(), Qt::Key_Tab);
    }
    const QList<QWidget*> expected{box(panel, "成本科目:"), box(panel, "编  码:"),
                                   box(panel, "名  称:"),   box(panel, "项目特征:"),
                                   box(panel, "单  位:"),   panel.showChildrenBox(),
                                   panel.showSiblingBox(),  panel.startButton(),
                                   panel.cancelButton(),    panel.resetButton()};
    QCOMPARE(order, expected);
  }
};

QCE_WIDGET_TEST_MAIN(TestDesFilterView)
#include "tst_des_filter_view.moc"
