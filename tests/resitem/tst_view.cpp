#include "resitem/view.h"

#include <QComboBox>
#include <QDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QToolButton>
#include <QtTest>

#include "framework/des_filter_view.h"
#include "host/bwidgets/search_box.h"
#include "host/gui/tree_grid_view.h"
#include "resitem/filter_model.h"
#include "resitem/model.h"
#include "tests/support/fake_res_item_operator.h"
#include "tests/support/recording_services.h"
#include "tests/support/test_main.h"
#include "tests/support/tester_proxy.h"

namespace keys = domain::keys;
using Fake = tests::FakeResItemOperator;
using gui::qce::destructors::DesFilterView;

namespace {

class FakeController : public abst::qce::QCEResItemController {
 public:
  FakeController(Fake& op, abst::BaseModel& model) : op_(op), model_(model) {}
  std::vector<std::pair<std::string, proxy::Element*>> getSubProjects() const override {
    return subProjects;
  }
  bool moveUp(proxy::Element* item) override {
    if (!model_.canMoveUp(item)) return false;
    model_.beginMoveUpItem(item, item->parent());
    op_.tree.move(item->row(), item->row() - 1, static_cast<tests::Node*>(item->parent()));
    model_.endMoveUpItem();
    return true;
  }
  bool moveDown(proxy::Element* item) override {
    if (!model_.canMoveDown(item)) return false;
    model_.beginMoveDownItem(item, item->parent());
    op_.tree.move(item->row(), item->row() + 1, static_cast<tests::Node*>(item->parent()));
    model_.endMoveDownItem();
    return true;
  }
  bool canCollectToCost(proxy::Element* item) const override { return Fake::isItem(item); }
  void collectToCost(proxy::Element* item) override { collected.push_back(item); }
  std::vector<std::pair<std::string, proxy::Element*>> subProjects;
  std::vector<proxy::Element*> collected;

 private:
  Fake& op_;
  abst::BaseModel& model_;
};

// A page over three groups, as a host sets it up.
struct Setup {
  Setup() : controller(op, model) {
    tests::attachTester(&model);
    tests::attachTester(&filter);
    tests::Node* steel = op.group("钢材");
    s1 = Fake::item(steel, "s1", "螺纹钢筋", 10.0, 3500.0);
    s1->set(keys::BRIAssociation, std::string("√"))->set(keys::BRIIsProvidedByJia, true);
    s2 = Fake::item(steel, "s2", "镀锌铁丝", 2.5, 5.1);
    s3 = Fake::item(steel, "s3", "型钢", 1.0, 4000.0);
    labour = op.group("人工");
    l1 = Fake::item(labour, "l1", "综合用工", 100.0, 150.0);
    building = new tests::Node("1#楼");
    controller.subProjects = {{"1#楼", building.get()}, {"2#楼", labour}};
    model.setDisplayTable(&op.table);
    model.setOperator(&op);
    page.setController(&controller);
    page.setModel(&filter);
    page.resize(1280, 600);
    page.show();
    page.activate();
    grid = page.findChild<gui::TreeGridView*>();
    settle();
  }

  static void settle() { QCoreApplication::processEvents(); }

  QModelIndex cell(proxy::Element* item, const std::string& key) const {
    return filter.makeIndex(item, filter.getColumnIndex(key));
  }
  void select(const std::vector<proxy::Element*>& items) {
    grid->selectionModel()->clearSelection();
    for (proxy::Element* item : items) {
      grid->selectionModel()->setCurrentIndex(cell(item, keys::BRIName),
                                              QItemSelectionModel::Select);
    }
    settle();
  }
  void click(const QString& text, int nth = 0) {
    for (auto* button : page.findChildren<QToolButton*>()) {
      if (button->text() != text || nth-- > 0) continue;
      QVERIFY(button->isEnabled());
      QTest::mouseClick(button, Qt::LeftButton);
      settle();
      return;
    }
    QFAIL(qPrintable("no button " + text));
  }
  QString shown() const { return QString::fromStdString(tests::treeText(filter)); }
  QString status() const { return page.findChild<QLabel*>("ResItem_status")->text(); }
  double price(const tests::Node* item) const {
    return std::get<double>(*item->find(keys::BRIExcludedTaxFee, domain::EditRole));
  }
  const std::vector<std::string>& steps() const { return services.undo.steps; }

  tests::RecordingServices services;
  Fake op;
  gui::qce::QCEResItemModelImpl model;
  gui::qce::QCEResItemFilterModelImpl filter{&model};
  FakeController controller;
  gui::qce::QCEResItemViewImpl page;
  gui::TreeGridView* grid = nullptr;
  scoped_refptr<tests::Node> building;
  tests::Node *s1, *s2, *s3, *labour, *l1;
};

// Does something with the next modal dialog once it is open.
template <class Do>
void inDialog(Do act) {
  QTimer::singleShot(0, [act] {
    auto* dialog = QApplication::activeModalWidget();
    QVERIFY(dialog != nullptr);
    act(dialog);
  });
}

void typeNumber(const QString& number, int key = Qt::Key_Return) {
  inDialog([number, key](QWidget* dialog) {
    auto* edit = dialog->findChild<QLineEdit*>();
    QTest::keyClicks(edit, number);
    QTest::keyClick(edit, Qt::Key(key));
  });
}

}  // namespace

class TestView : public QObject {
  Q_OBJECT

 private slots:
  void opensWithEverythingShown() {
    Setup s;
    QCOMPARE(s.shown(), QString("钢材(s1 s2 s3) 人工(l1)"));
    QVERIFY(s.grid->isExpanded(s.filter.index(0, 0)));
    QVERIFY(s.status().startsWith("显示 4 项，共 4 项"));
    s.select({s.s1, s.l1});
    QVERIFY2(s.status().contains("已选 2 项　　不含税合价 50,000.00 元"), qPrintable(s.status()));
    s.op.group("设备");
    s.model.rebuildGroup();
    s.settle();
    QVERIFY(s.shown().contains("设备"));
    QVERIFY2(s.status().startsWith("显示 4 项，共 4 项"), qPrintable(s.status()));
  }

  void filtersByFlagAndKeepsItsPlace() {
    Setup s;
    s.select({s.s1});
    s.click("甲供");
    QCOMPARE(s.shown(), QString("钢材(s1)"));
    QCOMPARE(s.grid->currentElement(), s.s1);
    QVERIFY(s.status().startsWith("显示 1 项，共 4 项"));
    s.click("可调价");
    QCOMPARE(s.shown(), QString());
    s.click("全部", 0);
    QCOMPARE(s.shown(), QString("钢材(s1 s2 s3) 人工(l1)"));
    QVERIFY(s.grid->isExpanded(s.filter.index(1, 0)));
  }

  void filtersByConditions() {
    Setup s;
    auto* panel = s.page.findChild<DesFilterView*>();
    QVERIFY(!panel->isVisible());
    s.click("条件过滤");
    QVERIFY(panel->isVisible());
    auto* name = panel->findChild<QLineEdit*>("name");
    QInputMethodEvent typed;  // as an input method hands over Chinese text
    typed.setCommitString("钢");
    QApplication::sendEvent(name, &typed);
    QTest::keyClick(panel, Qt::Key_Space);
    QCOMPARE(s.shown(), QString("钢材(s1 s2 s3) 人工(l1)"));
    QTest::keyClick(name, Qt::Key_Return);
    QCOMPARE(s.shown(), QString("钢材(s1 s3)"));
    QVERIFY(s.grid->isExpanded(s.filter.index(0, 0)));
    s.settle();
    QVERIFY2(s.status().startsWith("显示 2 项，共 4 项（条件过滤中）"), qPrintable(s.status()));
    // Closing the panel keeps the filter, and the status line tells so.
    s.click("条件过滤");
    QVERIFY(!panel->isVisible());
    QCOMPARE(s.shown(), QString("钢材(s1 s3)"));
    s.click("条件过滤");
    QTest::mouseClick(panel->cancelButton(), Qt::LeftButton);
    QCOMPARE(s.shown(), QString("钢材(s1 s2 s3) 人工(l1)"));
  }

  void choosesTheSubProject() {
    Setup s;
    auto* box = s.page.findChild<QComboBox*>("ResItem_subProject");
    QCOMPARE(box->itemText(0), QString("整个项目"));
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Down);
    QCOMPARE(s.op.subProject, s.building.get());
    s.page.deactivate();
    s.page.activate();
    QCOMPARE(box->currentText(), QString("1#楼"));
    s.controller.subProjects.erase(s.controller.subProjects.begin());  // deleted elsewhere
    s.page.activate();
    QCOMPARE(box->currentText(), QString("整个项目"));
    QCOMPARE(s.op.subProject, nullptr);
  }

  void setsThePriceOfTheSelectedItemsInOneStep() {
    Setup s;
    s.select({s.labour, s.s1, s.l1});  // the grouping row has no price and is left out
    typeNumber("88.5");
    QTest::keyClick(s.grid, Qt::Key_B, Qt::ControlModifier);
    QCOMPARE(s.price(s.s1), 88.5);
    QCOMPARE(s.price(s.l1), 88.5);
    QCOMPARE(s.price(s.s2), 5.1);
    QCOMPARE(s.steps(), std::vector<std::string>{"批量设置不含税单价"});
    typeNumber("99", Qt::Key_Escape);
    s.click("批量设置不含税单价");
    QCOMPARE(s.price(s.s1), 88.5);
    QCOMPARE(s.steps().size(), std::size_t(1));
    // One that takes no price takes the whole batch back.
    s.op.refused = s.l1;
    typeNumber("77");
    s.page.batchSetExcludeTaxPrice();
    QCOMPARE(s.steps().back(), std::string("批量设置不含税单价!"));
    const std::string& told = s.services.channel.messages().at(0).text;
    QVERIFY2(told.find("综合用工") != std::string::npos, told.c_str());
    QVERIFY2(told.find("本次批量设置已全部取消") != std::string::npos, told.c_str());
  }

  void editsAndDeletesAnnotations() {
    Setup s;
    s.select({s.s2});
    inDialog([](QWidget* dialog) {
      auto* edit = dialog->findChild<QPlainTextEdit*>();
      QTest::keyClicks(edit, "two");
      QTest::keyClick(edit, Qt::Key_Return);
      QTest::keyClicks(edit, "lines");
      QTest::keyClick(edit, Qt::Key_Return, Qt::ControlModifier);
    });
    QTest::keyClick(s.grid, Qt::Key_F2, Qt::ShiftModifier);
    std::string comment;
    QVERIFY(s.filter.getComment(s.s2, comment));
    QCOMPARE(comment, std::string("two\nlines"));
    s.settle();
    inDialog([](QWidget* dialog) { static_cast<QDialog*>(dialog)->accept(); });
    s.page.editComment();  // confirmed without a change: no undo step
    s.page.deleteComment();
    QVERIFY(s.filter.getComment(s.s2, comment));
    QCOMPARE(comment, std::string());
    QCOMPARE(s.steps(), (std::vector<std::string>{"编辑批注", "删除批注"}));
  }

  void movesRowsAndTheSelectionFollows() {
    Setup s;
    QSignalSpy sorted(&s.model, &QAbstractItemModel::layoutChanged);
    s.grid->header()->setSortIndicator(s.filter.getColumnIndex(keys::BRICode), Qt::AscendingOrder);
    QVERIFY(sorted.wait());
    s.select({s.s1, s.s2});
    QTest::keyClick(s.grid, Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(s.grid->header()->sortIndicatorSection(), -1);  // no longer in the order of the codes
    QCOMPARE(s.shown(), QString("钢材(s3 s1 s2) 人工(l1)"));
    QCOMPARE(s.grid->currentElement(), s.s2);
    QCOMPARE(s.grid->selectedElements().size(), std::size_t(2));
    QCOMPARE(s.steps(), std::vector<std::string>{"下移"});
    s.settle();
    QTest::keyClick(s.grid, Qt::Key_Down, Qt::AltModifier);  // at the end already
    QCOMPARE(s.shown(), QString("钢材(s3 s1 s2) 人工(l1)"));
    QCOMPARE(s.grid->currentElement(), s.s2);
    s.click("上移");
    QCOMPARE(s.shown(), QString("钢材(s1 s2 s3) 人工(l1)"));
  }

  void movesPastRowsThatTheFilterHides() {
    Setup s;
    s.s1->set(keys::BRIPriceAdjustable, true);
    s.s3->set(keys::BRIPriceAdjustable, true);
    s.click("可调价");
    s.select({s.s3});
    s.click("上移");
    QCOMPARE(s.shown(), QString("钢材(s3 s1)"));
    s.click("全部");
    QCOMPARE(s.shown(), QString("钢材(s3 s1 s2) 人工(l1)"));
  }

  void collectsToTheCurrentItem() {
    Setup s;
    s.select({s.s2, s.l1});
    s.click("归集到成本");
    QTest::keyClick(s.grid, Qt::Key_G, Qt::ControlModifier);
    QVERIFY(s.controller.collected == (std::vector<proxy::Element*>{s.l1, s.l1}));
  }

  void enablesWhatCanBeDone() {
    Setup s;
    const auto enabled = [&s](const QString& text) {
      for (auto* button : s.page.findChildren<QToolButton*>()) {
        if (button->text() == text) return button->isEnabled();
      }
      return false;
    };
    s.select({});
    QVERIFY(!enabled("批量设置不含税单价") && !enabled("上移"));
    s.select({s.labour});
    QVERIFY(!enabled("批量设置不含税单价") && !enabled("编辑批注") && !enabled("归集到成本"));
    s.select({s.s1});
    QVERIFY(enabled("批量设置不含税单价") && enabled("编辑批注") && enabled("下移"));
    QVERIFY(!enabled("上移"));
    s.select({s.s2, s.l1});  // not siblings
    QVERIFY(!enabled("上移") && !enabled("下移"));
  }

  void keepsItsPlaceWhenItRegroups() {
    Setup s;
    s.grid->collapse(s.filter.index(1, 0));
    s.select({s.s2, s.s3});
    s.op.onRebuild = [&s] { s.op.tree.move(0, 2, s.op.tree.node(0)); };
    QSignalSpy sorted(&s.model, &QAbstractItemModel::layoutChanged);
    s.grid->header()->setSortIndicator(0, Qt::AscendingOrder);
    QVERIFY(sorted.wait());
    QTest::keyClick(s.grid, Qt::Key_F5);
    QTest::qWait(160);
    QCOMPARE(s.grid->header()->sortIndicatorSection(), -1);  // and nothing sorts again
    s.settle();
    QCOMPARE(s.shown(), QString("钢材(s2 s3 s1) 人工(l1)"));
    QCOMPARE(s.grid->currentElement(), s.s3);
    QCOMPARE(s.grid->selectedElements(), (std::vector<proxy::Element*>{s.s2, s.s3}));
    QVERIFY(s.grid->isExpanded(s.filter.index(0, 0)));
    QVERIFY(!s.grid->isExpanded(s.filter.index(1, 0)));
  }

  void closesTheSearchBoxWithThePage() {
    Setup s;
    s.click("查找");
    QVERIFY(s.grid->searchBox()->isVisible());
    s.page.deactivate();
    QVERIFY(!s.grid->searchBox()->isVisible());
  }

  void offersItsCommandsInTheContextMenu() {
    Setup s;
    s.select({s.s2});
    emit s.grid->customContextMenuRequested(
        s.grid->visualRect(s.cell(s.s2, keys::BRIName)).center());
    auto* menu = s.page.findChild<QMenu*>("ResItem_contextMenu");
    QVERIFY(menu != nullptr && menu->isVisible());
    QStringList enabled;
    for (const QAction* action : menu->actions()) {
      if (action->isEnabled() && !action->text().isEmpty()) enabled << action->text();
    }
    for (const char* text :
         {"归集到成本", "批量设置不含税单价", "编辑批注", "上移", "下移", "条件过滤", "刷新分组"}) {
      QVERIFY2(enabled.contains(text), text);
    }
    QVERIFY(!enabled.contains("删除批注"));  // there is none to delete
    menu->close();
  }
};

QCE_WIDGET_TEST_MAIN(TestView)
#include "tst_view.moc"
