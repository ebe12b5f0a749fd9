#include <QLabel>
#include <QLayout>
#include <QSplitter>
#include <QStackedWidget>
#include <QStandardItemModel>
#include <QTreeView>
#include <QtTest>

#include "engineering/fee_summary_navigation_model.h"
#include "engineering/fee_summary_view.h"
#include "engineering/navigation_view.h"
#include "tests/support/rows.h"
#include "tests/support/tester_proxy.h"

using gui::qce::QCEFeeSummaryNavigationModelImpl;
using gui::qce::QCEFeeSummaryViewImpl;
using gui::qce::QCENavigationViewImpl;

namespace {

class RecordingView : public QLabel, public abst::BaseView {
 public:
  RecordingView(const QString& name, QStringList& calls) : QLabel(name), calls_(calls) {}
  void setModel(abst::BaseModel*) override {}
  void activate() override { calls_ << "+" + text(); }
  void deactivate() override { calls_ << "-" + text(); }
  void updateView() override {}

 private:
  QStringList& calls_;
};

void click(QTreeView* tree, int row) {
  QTest::mouseClick(tree->viewport(), Qt::LeftButton, {},
                    tree->visualRect(tree->model()->index(row, 0)).center());
}

/// The calls since the last time.
QString taken(QStringList& calls) {
  QString text = calls.join(' ');
  calls.clear();
  return text;
}

}  // namespace

class NavigationTest : public QObject {
  Q_OBJECT

 private slots:
  void listsTheThreeSummaries() {
    QCEFeeSummaryNavigationModelImpl model;
    tests::attachTester(&model);
    QStringList names;
    for (int row = 0; row < model.rowCount(); ++row) names << model.index(row, 0).data().toString();
    QCOMPARE(names, (QStringList{"按投标费用汇总", "按项目结构汇总", "按成本科目汇总"}));
    QCOMPARE(model.columnCount(), 1);
    QCOMPARE(model.rowCount(model.index(0, 0)), 0);
    QVERIFY(!model.setData(model.index(0, 0), "x"));
  }

  void keepsItsRootWhileItIsInUse() {
    scoped_refptr<proxy::Element> entry;
    {
      QCEFeeSummaryNavigationModelImpl model;
      entry.reset(model.getInternalData(model.index(2, 0)));
    }
    QCOMPARE(entry->row(), 2);
  }

  void buildsTheTwoPanes_data() {
    const tests::Rows<bool, int, int> row("summary", "left", "right");
    row("fee summary", true, 15, 85);
    row("navigation", false, 20, 80);
  }
  void buildsTheTwoPanes() {
    QFETCH(bool, summary);
    std::unique_ptr<QWidget> page;
    if (summary) {
      page = std::make_unique<QCEFeeSummaryViewImpl>();
    } else {
      page = std::make_unique<QCENavigationViewImpl>();
    }
    auto* splitter = page->findChild<QSplitter*>();
    QCOMPARE(splitter->orientation(), Qt::Horizontal);
    QCOMPARE(splitter->handleWidth(), 8);
    auto* tree = qobject_cast<QTreeView*>(splitter->widget(0));
    QVERIFY(tree != nullptr && tree->isHeaderHidden());
    QVERIFY(qobject_cast<QStackedWidget*>(splitter->widget(1)) != nullptr);
    QTEST(splitter->widget(0)->sizePolicy().horizontalStretch(), "left");
    QTEST(splitter->widget(1)->sizePolicy().horizontalStretch(), "right");
    QCOMPARE(page->layout()->contentsMargins(), QMargins());
    QCOMPARE(splitter->contentsMargins(), QMargins());
    if (!summary) return;
    QCOMPARE(tree->objectName(), QString("QCEFeeSummaryTreeView"));
    page->resize(1808, 400);
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page.get()));
    QCOMPARE(splitter->sizes(), (QList<int>{200, 1600}));  // 1000 : 8000
  }

  void switchesTheOldSummaryOffBeforeTheNewOneOn() {
    QStringList calls;
    QCEFeeSummaryViewImpl page;
    page.activate();  // without any sub-view nothing happens
    page.deactivate();
    auto* tree = page.findChild<QTreeView*>("QCEFeeSummaryTreeView");
    tests::attachTester(tree->model());
    auto* stack = page.findChild<QStackedWidget*>();
    for (const char* name : {"一", "二", "三"}) {
      page.addSubView(std::string(name), new RecordingView(name, calls));
    }
    RecordingView again("一", calls);
    page.addSubView(std::string("一"), &again);  // taken
    QCOMPARE(tree->model()->rowCount(), 3);
    QCOMPARE(taken(calls), QString());  // adding does not activate
    page.resize(800, 300);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));

    page.activate();
    QVERIFY(tree->selectionModel()->isSelected(tree->model()->index(0, 0)));
    QCOMPARE(taken(calls), QString("+一"));
    click(tree, 2);
    QCOMPARE(taken(calls), QString("-一 +三"));
    QCOMPARE(stack->currentIndex(), 2);
    QTest::keyClick(tree, Qt::Key_Up);
    QCOMPARE(taken(calls), QString("-三 +二"));

    // A row that names no sub-view leaves the shown one active.
    tree->model()->setData(tree->model()->index(0, 0), "四");
    click(tree, 0);
    QCOMPARE(taken(calls), QString());
    QCOMPARE(stack->currentIndex(), 1);

    page.deactivate();
    QVERIFY(!page.isActive());
    QCOMPARE(taken(calls), QString("-二"));
    page.activate();  // what was selected stays
    QCOMPARE(taken(calls), QString("+二"));
  }

  void leadsThroughAModelOfNames() {
    QStringList calls;
    QCEFeeSummaryNavigationModelImpl model;
    tests::attachTester(&model);
    QCENavigationViewImpl page;
    page.activate();
    page.setModel(nullptr);
    page.navigationViewRowChanged({});
    page.setModel(&model);
    page.setModel(&model);  // one connection, not two
    auto* first = new RecordingView("一", calls);
    auto* last = new RecordingView("三", calls);
    page.addSubView(std::string("按成本科目汇总"), last);
    page.addSubView(std::string("按投标费用汇总"), first);
    QCOMPARE(page.getBaseView("按投标费用汇总"), static_cast<abst::BaseView*>(first));
    QVERIFY(page.getBaseView("按项目结构汇总") == nullptr);
    page.resize(600, 300);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));

    page.activate();  // the first row, not the first sub-view
    QCOMPARE(taken(calls), QString("+一"));
    auto* tree = page.findChild<QTreeView*>();
    click(tree, 1);  // no sub-view
    QCOMPARE(taken(calls), QString());
    click(tree, 2);
    QCOMPARE(taken(calls), QString("-一 +三"));

    page.delSubView(last);
    QCOMPARE(taken(calls), QString("-三 +一"));
    QVERIFY(page.getBaseView("按成本科目汇总") == nullptr);
    QVERIFY(!last->isVisible());
    delete last;
    page.delSubView(nullptr);
    page.deactivate();
    QCOMPARE(taken(calls), QString("-一"));
  }
};

QTEST_MAIN(NavigationTest)
#include "tst_navigation.moc"
