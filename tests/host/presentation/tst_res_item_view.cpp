#include "host/presentation/res_item_view.h"

#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QtTest>

#include "host/gui/tree_grid_view.h"
#include "host/presentation/res_item_filter_model.h"
#include "resitem/model.h"
#include "tests/support/fake_res_item_operator.h"
#include "tests/support/test_main.h"
#include "tests/support/tester_proxy.h"

namespace keys = domain::keys;
using Fake = tests::FakeResItemOperator;

namespace {

// The narrowest filter interface over resource items.
struct PlainFilter : abst::BaseModel {
  using SourceModel = abst::qce::QCEResItemModel;
};

class Page : public gui::ResItemViewImpl {
 public:
  Page() { init(); }
};

}  // namespace

class TestResItemView : public QObject {
  Q_OBJECT

 private slots:
  void filtersByTextAndCategory() {
    Fake op;
    gui::qce::QCEResItemModelImpl model;
    gui::ResItemFilterModelImpl<PlainFilter> filter(&model);
    tests::attachTester(&model);
    tests::attachTester(&filter);
    const std::string steelType = "材料";
    tests::Node* steel = op.group("S");
    Fake::item(steel, "A1", "螺纹钢")->set(keys::BRIType, steelType);
    Fake::item(steel, "B2", "铁丝")
        ->set(keys::BRIType, steelType)
        ->set(keys::BRISpec, std::string("a1-mm"));
    Fake::item(op.group("L"), "C3", "用工")->set(keys::BRIType, std::string("人工"));
    model.setDisplayTable(&op.table);
    model.setOperator(&op);
    Page page;
    page.setModel(&filter);
    page.show();

    const auto shown = [&filter] { return QString::fromStdString(tests::treeText(filter)); };
    auto* text = page.findChild<QLineEdit*>("ResItem_filterText");
    QTest::keyClicks(text, "a1");  // code and specification, whatever the case
    QTest::keyClick(text, Qt::Key_Return);
    QCOMPARE(shown(), QString("S(A1 B2)"));
    text->selectAll();
    QTest::keyClicks(text, "B");
    for (auto* button : page.findChildren<QPushButton*>()) {
      if (button->text() == "过滤") QTest::mouseClick(button, Qt::LeftButton);
    }
    QCOMPARE(shown(), QString("S(B2)"));
    QVERIFY(page.findChild<gui::TreeGridView*>()->isExpanded(filter.index(0, 0)));
    text->clear();
    QTest::keyClick(text, Qt::Key_Return);

    QMenu* menu = page.findChild<QPushButton*>("ResItem_filterRCJButton")->menu();
    QStringList checked;
    for (QAction* action : menu->actions()) checked << (action->isChecked() ? action->text() : "");
    QCOMPARE(checked.join(""), QString("所有"));
    menu->actions().first()->trigger();
    QCOMPARE(shown(), QString("L(C3)"));
    QVERIFY(!menu->actions().last()->isChecked());
    menu->actions().last()->trigger();
    QCOMPARE(shown(), QString("S(A1 B2) L(C3)"));
  }
};

QCE_WIDGET_TEST_MAIN(TestResItemView)
#include "tst_res_item_view.moc"
