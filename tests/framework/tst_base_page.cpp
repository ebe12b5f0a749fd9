#include "framework/base_page.h"

#include "host/abst/base_model.h"
#include "host/bwidgets/tree_grid_view.h"
#include "resitem/filter_model.h"
#include "resitem/model.h"
#include "tests/support/fake_res_item_operator.h"
#include "tests/support/recording_services.h"
#include "tests/support/rows.h"
#include "tests/support/test_main.h"
#include "tests/support/tester_proxy.h"

namespace {

QStringList journal;

class SubView : public QWidget, public abst::SubDocTabView {
 public:
  explicit SubView(const QString& name) { setObjectName(name); }
  void setModel(abst::BaseModel*) override {}
  void activate() override { journal << "activate " + objectName(); }
  void deactivate() override { journal << "deactivate " + objectName(); }
  void updateView() override {}
  std::string tabTitle() const override { return "页 " + objectName().toStdString(); }
};

class NoWidget : public abst::BaseView {
 public:
  void setModel(abst::BaseModel*) override {}
  void activate() override {}
  void deactivate() override { journal << "deactivate no widget"; }
  void updateView() override {}
};

class Page : public gui::BasePage {
 public:
  explicit Page(std::string firstKey = domain::keys::BRIName) {
    auto* layout = new QVBoxLayout(this);
    view = new bwidgets::TreeGridView(this);
    layout->addWidget(view);
    setGrid(view, std::move(firstKey), domain::keys::BRICode);
  }
  using BasePage::setPopup;
  using BasePage::setSubPages;

  void onModelReset() override { journal << "reset"; }
  void onDataChanged() override { journal << "data"; }

  bwidgets::TreeGridView* view;
};

// A host's model and filter over two items.
struct Table {
  Table() {
    tests::attachTester(&model);
    tests::attachTester(&filter);
    item = tests::FakeResItemOperator::item(op.group("S"), "s1", "钢");
    model.setDisplayTable(&op.table);
    model.setOperator(&op);
  }
  tests::FakeResItemOperator op;
  gui::qce::QCEResItemModelImpl model;
  gui::qce::QCEResItemFilterModelImpl filter{&model};
  tests::Node* item = nullptr;
};

}  // namespace

class TestBasePage : public QObject {
  Q_OBJECT

 private slots:
  void init() { journal.clear(); }

  void showsItsModelAndHearsOfItsChanges() {
    Table table;
    Table other;
    Page page;
    page.setModel(&table.filter);
    QCOMPARE(page.view->model(), &table.filter);
    table.model.rebuildGroup();
    table.model.setData(table.filter.mapToSource(table.filter.makeIndex(table.item, 5)), 2.0);
    QCOMPARE(journal, QStringList({"reset", "data"}));

    page.setModel(&other.filter);
    journal.clear();
    table.model.rebuildGroup();
    QCOMPARE(journal, QStringList());  // the connections to the model before are cut
    other.model.rebuildGroup();
    QCOMPARE(journal, QStringList("reset"));
  }

  void refusesAModelThatIsNone() {
    Table table;
    Page page;
    page.setModel(&table.filter);
    page.setModel(nullptr);
    QCOMPARE(page.view->model(), &table.filter);
  }

  void preparesItsGrid() {
    Table table;
    table.op.table.getHeader()->column(domain::keys::BRIName)->width = 173;
    Page page;
    page.resize(700, 300);
    page.setModel(&table.filter);
    page.show();
    QVERIFY(QTest::qWaitForWindowActive(&page));
    QCOMPARE(page.view->columnWidth(1), 173);
    page.view->header()->resizeSection(1, 151);
    QCOMPARE(table.op.table.getHeader()->column(domain::keys::BRIName)->width,
             std::optional<int>(151));
  }

  void freezesUpToTheLeadingKeyColumn() {
    Table table;
    for (const auto& [first, count] : {std::pair("QCE_BRIName", 2), {"unknown", 1}}) {
      Page page(first);
      page.setModel(&table.filter);
      QCOMPARE(page.view->frozenColumnCount(), count);
    }
    QCOMPARE(gui::frozenColumnCount(table.filter, "neither", "nor"), 0);
  }

  void deactivatesEverySubViewInPageOrder_data() {
    const tests::Rows<bool> row{"tabs"};
    row("tabs", true);
    row("stack", false);
  }
  void deactivatesEverySubViewInPageOrder() {
    QFETCH(bool, tabs);
    Page page;
    auto* tabWidget = new QTabWidget(&page);
    auto* stack = new QStackedWidget(&page);
    if (tabs) {
      page.setSubPages(tabWidget);
    } else {
      page.setSubPages(stack);
    }
    auto* first = new SubView("1");
    auto* second = new SubView("2");
    auto* third = new SubView("3");
    abst::BaseView& host = page;  // as a host knows the page
    host.addSubView(static_cast<abst::SubDocTabView*>(first));
    host.addSubView("关键", second);
    third->setWindowTitle("第三页");
    page.addSubView(static_cast<abst::BaseView*>(third));
    page.show();
    page.activate();
    QVERIFY(page.isActive());
    QVERIFY(!third->isVisible());
    page.deactivate();
    QVERIFY(!page.isActive());
    QCOMPARE(journal, QStringList({"deactivate 1", "deactivate 2", "deactivate 3"}));
    QCOMPARE(page.getSubView("关键"), second);
    if (!tabs) return;
    QCOMPARE(tabWidget->tabText(0), QString("页 1"));
    QCOMPARE(tabWidget->tabText(1), QString("关键"));
    QCOMPARE(tabWidget->tabText(2), QString("第三页"));
    journal.clear();
    tabWidget->tabBar()->moveTab(2, 0);
    page.deactivate();
    QCOMPARE(journal, QStringList({"deactivate 3", "deactivate 1", "deactivate 2"}));
  }

  void refusesSubViewsThatItCannotShow() {
    Page page;
    NoWidget view;
    SubView homeless("homeless");
    page.addSubView("no place", &homeless);
    QCOMPARE(page.getSubView("no place"), nullptr);
    auto* tabs = new QTabWidget(&page);
    page.setSubPages(tabs);
    page.addSubView(&view);
    page.addSubView("x", new SubView("1"));
    page.addSubView("x", &homeless);
    QCOMPARE(tabs->count(), 1);
    delete tabs->widget(0);
    QCOMPARE(page.getSubView("x"), nullptr);
    auto* popup = new QWidget(&page);
    page.setPopup(popup);
    page.show();
    popup->show();
    page.deactivate();
    QVERIFY(!popup->isVisible());
    delete popup;
    page.deactivate();
    QCOMPARE(journal, QStringList());
  }
};

QCE_WIDGET_TEST_MAIN(TestBasePage)
#include "tst_base_page.moc"
