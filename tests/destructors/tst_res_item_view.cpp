#include "destructors/res_item_view.h"

#include <QSignalSpy>
#include <algorithm>
#include <memory>

#include "destructors/res_item_filter_model.h"
#include "destructors/res_item_model.h"
#include "framework/des_filter_view.h"
#include "host/domain/field_keys.h"
#include "host/domain/qce/destructors/des_res_item_keys.h"
#include "host/domain/qce/destructors/des_res_item_operator.h"
#include "host/gui/tree_grid_view.h"
#include "tests/support/recording_services.h"
#include "tests/support/test_elements.h"
#include "tests/support/test_main.h"
#include "tests/support/tester_proxy.h"

namespace keys = domain::keys;
namespace des = abst::qce::destructors;
using gui::qce::destructors::DesResItemViewImpl;

namespace {

// Items below grouping rows; an item is a row that has a unit.
class FakeOperator : public tests::NodeHost<domain::qce::destructors::DesResItemOperator> {
 public:
  FakeOperator() {
    column(keys::BRICode, "");
    column(keys::BRIType, "");
    column(keys::BRIName, "");
    column(keys::BRIUnit, "");
    table.getHeader()->addColumn(keys::BRIMarketTotalCost,
                                 tests::field(domain::FloatingPointField, 2, true, "合价"));
    table.getHeader()->addColumn(keys::BRIExcludedTaxTotalCost,
                                 tests::field(domain::FloatingPointField, 2, true));
  }
  tests::Node* item(tests::Node* group, const char* code, const char* name, const char* type,
                    double amount) {
    return group->add(code)
        ->set(keys::BRICode, std::string(code))
        ->set(keys::BRIName, std::string(name))
        ->set(keys::BRIType, std::string(type))
        ->set(keys::BRIUnit, std::string("t"))
        ->set(keys::BRIMarketTotalCost, amount)
        ->set(keys::BRIExcludedTaxTotalCost, amount);
  }

  int getItemWaitForCollectNum() const override { return 7; }
  bool isItem(const proxy::Element* element) const override {
    return static_cast<const tests::Node*>(element)->find(keys::BRIUnit, domain::EditRole) !=
           nullptr;
  }
  bool isGrouped() const override { return grouped; }
  void setGrouped(bool on) override { grouped = on; }
  void rebuildGroup() override {}

  bool grouped = true;
};

class FakeController : public des::DesResItemController {
 public:
  void setCurrentItem(proxy::Element* item) override { told.push_back(item); }
  bool isClosed(proxy::Element* item) const override { return item == closed; }
  std::string getClosedReason(proxy::Element* item) const override {
    return isClosed(item) ? "已归集" : "";
  }
  void linkToCost(const Items& items) override { log("link", items); }
  void unlinkFromCost(const Items& items) override { log("unlink", items); }
  std::vector<des::CostAccountEntry> getCostAccounts() const override {
    return {{account1.get(), "01", "人工费", 0}, {account2.get(), "0101", "钢筋工", 1}};
  }
  proxy::Element* getCostAccount(proxy::Element*) const override { return account1.get(); }
  void setCostAccountToLocal(bool on) override { local = on; }
  void setCostAccount(const Items& items, proxy::Element* account) override {
    log(account == nullptr ? "account none"
                           : "account " + static_cast<tests::Node*>(account)->name(),
        items);
  }
  std::vector<des::CollectionTarget> getCollectionTargets(const Items&) const override {
    return {{nullptr, "钢筋劳务", account2.get(), "特征一", "850.00", "按实际数量"},
            {entry.get(), "F1 旧分包", account1.get(), "旧特征", "99.00", "总价包干"}};
  }
  bool canCollect(const Items& items) const override {
    return std::find(items.begin(), items.end(), closed) == items.end();
  }
  des::CollectionEffect getCollectionEffect(const Items&,
                                            const des::CollectionSetting& setting) const override {
    return {"1,500.50", setting.price == "bad" ? "" : "=" + setting.price};
  }
  bool setCollection(const Items& items, const des::CollectionSetting& setting) override {
    const auto name = [](proxy::Element* element) {
      return element != nullptr ? static_cast<tests::Node*>(element)->name() : "-";
    };
    log("collect " + name(setting.entry) + " " + name(setting.account) + " " + setting.features +
            " " + setting.price,
        items);
    return setting.price != "bad";
  }
  void cancelCollection(const Items& items) override { log("cancel", items); }
  std::vector<des::SourceBill> getSourceBills(proxy::Element* item) const override {
    ++billQuestions;
    billsOf = item;
    if (item == nullptr) return {};
    return {{nullptr, "010101", "挖土方", "特征一", "m3", "10"},
            {nullptr, "010102", "回填方", "特征二", "m3", "5"}};
  }
  void findSource(proxy::Element* item) override { log("source", {item}); }
  void insertItem(proxy::Element* current) override { log("insert", {current}); }
  void deleteItems(const Items& items) override { log("delete", items); }

  void log(const std::string& what, const Items& items) {
    std::string line = what;
    for (proxy::Element* item : items) line += "|" + static_cast<tests::Node*>(item)->name();
    calls << QString::fromStdString(line);
  }

  scoped_refptr<tests::Node> account1{new tests::Node("A1")}, account2{new tests::Node("A2")};
  scoped_refptr<tests::Node> entry{new tests::Node("E")};
  proxy::Element* closed = nullptr;
  bool local = false;
  std::vector<proxy::Element*> told;
  QStringList calls;
  mutable int billQuestions = 0;
  mutable proxy::Element* billsOf = nullptr;
};

struct Setup {
  explicit Setup(int more = 0) {
    tests::attachTester(&model);
    tests::attachTester(&filter);
    group = op.tree.add("工程");
    group->set(keys::BRICode, domain::DisplayRole, std::string("工程"));
    steel = op.item(group, "s", "螺纹钢", "材料", 1200.5);
    wire = op.item(group, "w", "铁丝", "材料", 90);
    labour = op.item(group, "l", "钢筋工", "人工", 300);
    for (int i = 0; i < more; ++i) op.item(group, "x", "辅材", "材料", 1);
    model.setDisplayTable(&op.table);
    model.setOperator(&op);
    page = std::make_unique<DesResItemViewImpl>();
    page->setController(&controller);
    page->setModel(&filter);
    page->resize(1440, 500);
    page->show();
    QApplication::setActiveWindow(page.get());
    page->activate();
    grid = page->findChild<gui::TreeGridView*>();
  }

  void select(const std::vector<proxy::Element*>& items) { grid->selectElements(items); }
  QPushButton* button(const char* name) const { return page->findChild<QPushButton*>(name); }
  void click(const char* name) const { QTest::mouseClick(button(name), Qt::LeftButton); }
  QString shown() const { return QString::fromStdString(tests::treeText(filter)); }
  /// Runs what stands in a modal dialog once it is open.
  template <class Inside>
  static void inDialog(const Inside& inside) {
    QTimer::singleShot(0, qApp, [inside] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      QVERIFY(dialog != nullptr);
      inside(dialog);
      if (dialog->isVisible()) dialog->reject();  // a failed check must not block the test
    });
  }

  tests::RecordingServices services;
  FakeOperator op;
  FakeController controller;
  gui::qce::destructors::DesResItemModelImpl model;
  gui::qce::destructors::DesResItemFilterModelImpl filter{&model};
  std::unique_ptr<DesResItemViewImpl> page;
  gui::TreeGridView* grid = nullptr;
  tests::Node *group, *steel, *wire, *labour;
};

}  // namespace

class TestDesResItemView : public QObject {
  Q_OBJECT

 private slots:
  void offersItsControls() {
    Setup s;
    QStringList hidden;
    for (auto* each : s.page->findChildren<QToolButton*>()) {
      if (!QStringList{"插入", "删除", "查询"}.contains(each->text())) continue;
      QVERIFY(!each->isVisible() && each->autoRaise());
      QCOMPARE(each->width(), 30);
      hidden << each->text();
      s.select({s.steel, s.wire});
      each->click();
    }
    QCOMPARE(hidden, (QStringList{"插入", "删除", "查询"}));
    QCOMPARE(s.controller.calls, (QStringList{"insert|s", "delete|s|w"}));

    auto* menuButton = s.button("ResItem_filterRCJButton");
    QCOMPARE(menuButton->styleSheet(),
             QString("QPushButton::menu-indicator:image{subcontrol-origin: margin;"
                     "subcontrol-position: right center;margin-right: 5px;}"));
    QList<QAction*> types = menuButton->menu()->actions();
    QCOMPARE(menuButton->menu()->activeAction(), types.last());
    QVERIFY(types.last()->isChecked());
    types[1]->trigger();
    QVERIFY(types[1]->isChecked() && !types.last()->isChecked());
    QCOMPARE(s.shown(), QString("工程(s w)"));
    types.last()->trigger();
    auto* text = s.page->findChild<QLineEdit*>("ResItem_filterText");
    QCOMPARE(text->placeholderText(), QString("输入内容"));
    text->setText("铁丝");
    QTest::keyClick(text, Qt::Key_Return);
    QCOMPARE(s.shown(), QString("工程(w)"));
    text->setText("工");  // not entered yet; grouping rows hold it too
    types[1]->trigger();
    QCOMPARE(s.shown(), QString());
    types[0]->trigger();
    QCOMPARE(s.shown(), QString("工程(l)"));
    QTest::keyClick(text, Qt::Key_Backspace);
    types.last()->trigger();
    QCOMPARE(s.shown(), QString("工程(s w l)"));
    text->setText("铁");
    QTest::keyClick(text, Qt::Key_Return);
    s.page->showItems({s.steel});
    QCOMPARE(s.grid->currentElement(), s.steel);
    QVERIFY(text->text().isEmpty());

    auto* box = s.page->findChild<QCheckBox*>();
    QCOMPARE(box->styleSheet(), QString("color: rgb(241, 70, 62)"));
    QTRY_VERIFY(s.page->findChild<QLabel*>("DesResItem_status")->text().contains("待归集：7 项"));
    QVERIFY(s.page->findChild<QLabel*>("DesResItem_status")->text().contains("1,200.50"));
  }

  void filtersByConditions() {
    Setup s;
    s.steel->set(keys::CostAccount, std::string("0201 钢材"));
    s.steel->set(keys::BRISpec, std::string("HRB400"));
    s.wire->set(keys::CostAccount, std::string("0201 钢材"));
    auto* panel = s.page->findChild<gui::qce::destructors::DesFilterView*>();
    QVERIFY(!panel->isVisible());
    auto* conditions = s.page->findChild<QToolButton*>("ResItem_conditions");
    QTest::mouseClick(conditions, Qt::LeftButton);
    QVERIFY(panel->isVisible());
    const auto filter = [&](const char* box, const char* text) {
      panel->resetConditions();
      auto* edit = panel->findChild<QLineEdit*>(box);
      edit->setText(text);
      QTest::keyClick(edit, Qt::Key_Return);
      return s.shown();
    };
    QCOMPARE(filter("cbkm", "0201"), QString("工程(s w)"));
    QCOMPARE(filter("code", "l"), QString("工程(l)"));
    QCOMPARE(filter("name", "钢"), QString("工程(s l)"));
    QCOMPARE(filter("feature", "HRB"), QString("工程(s)"));
    QCOMPARE(filter("feature", "hrb"), QString());
    QCOMPARE(filter("unit", "t"), QString("工程(s w l)"));
    QCOMPARE(filter("name", "钢"), QString("工程(s l)"));
    // With the text filter both have to agree; closing the panel keeps the conditions.
    auto* text = s.page->findChild<QLineEdit*>("ResItem_filterText");
    text->setText("l");
    QTest::keyClick(text, Qt::Key_Return);
    QCOMPARE(s.shown(), QString("工程(l)"));
    QTest::keyClick(s.grid, Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(!panel->isVisible() && !conditions->isChecked());
    auto* status = s.page->findChild<QLabel*>("DesResItem_status");
    QTRY_VERIFY(status->text().contains("（筛选中）（条件过滤中）"));
    // An item that is to be shown is, whatever was filtered.
    s.page->showItems({s.wire});
    QCOMPARE(s.shown(), QString("工程(s w l)"));
    QTRY_VERIFY(!status->text().contains("中）"));
    QTest::mouseClick(conditions, Qt::LeftButton);
    QCOMPARE(filter("code", "w"), QString("工程(w)"));
    QTest::mouseClick(panel->cancelButton(), Qt::LeftButton);
    QCOMPARE(s.shown(), QString("工程(s w l)"));
  }

  void forwardsCommandsForTheSelectedItems() {
    Setup s;
    const std::vector<const char*> commands{"ResItem_setLinkCB", "ResItem_setUnLinkCB",
                                            "ResItem_cancelContract"};
    s.grid->clearSelection();
    for (const char* name : commands) s.click(name);
    QCOMPARE(s.services.channel.messages().size(), commands.size());  // a hint each
    QVERIFY(s.controller.calls.isEmpty());
    s.select({s.group, s.steel, s.labour});  // a grouping row is no item
    for (const char* name : commands) s.click(name);
    s.grid->setFocus();
    QTest::keyClick(s.grid, Qt::Key_L, Qt::ControlModifier);
    s.select({s.wire});
    s.click("ResItem_findSource");
    QCOMPARE(s.controller.calls,
             (QStringList{"link|s|l", "unlink|s|l", "cancel|s|l", "link|s|l", "source|w"}));
    QCOMPARE(s.services.channel.messages().size(), commands.size());
  }

  void setsACostAccountOfTheTree() {
    Setup s;
    s.select({s.steel, s.labour});
    Setup::inDialog([](QDialog* dialog) {
      auto* line = dialog->findChild<QLineEdit*>("DesCostAccount_filter");
      const auto* ok = dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
      QTest::keyClicks(line, "gjgx");
      QVERIFY(!ok->isEnabled());
      QTest::keyClick(line, Qt::Key_Backspace);  // gjg: 钢筋工
      QVERIFY(ok->isEnabled());
      auto* tree = dialog->findChild<QTreeWidget*>();
      QVERIFY(!tree->topLevelItem(1)->isHidden() && tree->topLevelItem(0)->isHidden());
      QTest::keyClick(line, Qt::Key_Return);
    });
    s.click("ResItem_setCostAccount");
    QVERIFY(!s.controller.local);
    QTest::mouseClick(s.page->findChild<QCheckBox*>(), Qt::LeftButton, {}, QPoint(8, 8));
    QVERIFY(s.controller.local && s.page->isSetCostAccountToLocal());
    Setup::inDialog([](QDialog* dialog) {
      auto* tree = dialog->findChild<QTreeWidget*>();
      QCOMPARE(tree->currentItem()->text(0), QString("01"));  // the account so far
      QVERIFY(dialog->findChild<QLabel*>()->text().contains("“s 螺纹钢”"));
      const QRect row = tree->visualItemRect(tree->topLevelItem(0));
      QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, row.center());
      QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, row.center());
    });
    s.click("ResItem_setCostAccount");
    QCOMPARE(s.controller.calls, (QStringList{"account A2|s|l", "account none|s"}));
  }

  void collectsThroughItsDialog() {
    Setup s;
    s.select({s.steel, s.labour});
    Setup::inDialog([&s](QDialog* dialog) {
      QCOMPARE(dialog->windowTitle(), QString("设置归集"));
      auto* price = dialog->findChild<QLineEdit*>("DesCollection_price");
      auto* features = dialog->findChild<QPlainTextEdit*>("DesCollection_features");
      QCOMPARE(price->text() + features->toPlainText(), QString("850.00特征一"));
      auto* bills = dialog->findChild<QTreeWidget*>("DesSourceBill_list");
      bills->setCurrentItem(bills->topLevelItem(1));
      QCOMPARE(features->toPlainText(), QString("特征二"));
      QCOMPARE(dialog->findChild<QLabel*>("DesSourceBill_current")->text(),
               QString("当前清单：010102 回填方"));
      price->selectAll();
      QTest::keyClicks(price, "bad");
      QTest::keyClick(price, Qt::Key_Return);
      QVERIFY(dialog->isVisible());  // refused
      auto* effect = dialog->findChild<QLabel*>("DesCollection_effect");
      QVERIFY(effect->text().contains("1,500.50") && effect->text().contains("不能计算"));
      features->selectAll();
      QTest::keyClicks(features, "own");
      auto* target = dialog->findChild<QComboBox*>("DesCollection_target");
      target->setCurrentIndex(1);
      QVERIFY(price->isReadOnly() && features->isReadOnly());
      QCOMPARE(price->text(), QString("99.00"));
      QVERIFY2(effect->text().contains("仍为 =99.00"), qPrintable(effect->text()));
      target->setCurrentIndex(0);
      bills->setCurrentItem(bills->topLevelItem(0));
      QCOMPARE(price->text() + features->toPlainText(), QString("badown"));
      price->selectAll();
      QTest::keyClicks(price, "800*2");
      QTest::keyClick(price, Qt::Key_Return);
      QVERIFY(!dialog->isVisible());
    });
    s.click("ResItem_setContract");
    QCOMPARE(s.controller.calls,
             (QStringList{"collect - A2 特征二 bad|s|l", "collect - A2 own 800*2|s|l"}));

    // One of them is collected already: said before anything is asked. The current row is not among
    // the selected ones, so its bills are not shown.
    s.controller.calls.clear();
    s.controller.closed = s.labour;
    s.page->popupSetContract();
    s.controller.closed = nullptr;
    s.grid->selectionModel()->setCurrentIndex(s.filter.makeIndex(s.wire, 0),
                                              QItemSelectionModel::NoUpdate);
    Setup::inDialog([](QDialog*) {});
    s.page->popupSetContract();
    QCOMPARE(s.controller.billsOf, s.steel);
    QVERIFY(s.controller.calls.isEmpty());
  }

  void followsTheCurrentRowWhileItIsSeen() {
    Setup s(1000);
    QSignalSpy refreshed(s.page.get(), &DesResItemViewImpl::refreshed);
    QVERIFY(refreshed.wait());  // of the page that was opened
    refreshed.clear();
    s.controller.told.clear();
    s.controller.billQuestions = 0;
    const QModelIndex group = s.filter.index(0, 0);
    for (int row = 0; row < 1000; ++row) s.grid->setCurrentIndex(s.filter.index(row, 0, group));
    QCOMPARE(s.controller.told.size(), std::size_t(1000));
    QCOMPARE(s.controller.billQuestions, 0);
    s.controller.closed = s.labour;
    s.select({s.labour});
    const auto enabled = [&s] {
      QStringList names;
      for (const char* name : {"ResItem_setLinkCB", "ResItem_setUnLinkCB", "ResItem_setContract",
                               "ResItem_cancelContract", "ResItem_setCostAccount"}) {
        if (s.button(name)->isEnabled()) names << name;
      }
      return names;
    };
    QCOMPARE(enabled(), (QStringList{"ResItem_cancelContract", "ResItem_setCostAccount"}));
    QCOMPARE(s.button("ResItem_setContract")->toolTip(), QString("已归集"));
    const auto told = s.controller.told.size();
    emit s.model.dataChanged(s.model.makeIndex(s.labour, 0), s.model.makeIndex(s.labour, 1));
    s.page->onSubEngineeringChange();
    QCOMPARE(s.controller.told.size(), told);
    QCOMPARE(s.controller.billQuestions, 0);
    QVERIFY(refreshed.wait());
    QCOMPARE(refreshed.size(), 1);
    QCOMPARE(s.controller.billQuestions, 1);
    QVERIFY(s.page->findChild<QLabel*>("DesResItem_currentBill")
                ->text()
                .startsWith("当前清单：010101 挖土方"));

    // Filtered away, it is current no more.
    auto* type = s.button("ResItem_filterRCJButton")->menu();
    type->actions()[1]->trigger();
    QCOMPARE(enabled().size(), 5);
    QVERIFY(s.controller.told.back() == nullptr);
    QTRY_COMPARE(refreshed.size(), 2);
    QCOMPARE(s.page->findChild<QLabel*>("DesResItem_currentBill")->text(),
             QString("当前清单：（无）"));
    type->actions().last()->trigger();
    QTRY_COMPARE(refreshed.size(), 3);

    // Hidden or switched off, it tells nobody; shown again, it tells where it is.
    s.controller.told.clear();
    s.page->hide();
    s.select({s.wire});
    s.page->deactivate();
    s.page->show();
    s.select({s.steel});
    QVERIFY(s.controller.told.empty());
    s.page->activate();
    QCOMPARE(s.controller.told.back(), s.steel);
    QCOMPARE(enabled().size(), 5);
    QVERIFY(s.button("ResItem_setContract")->toolTip().contains("Ctrl+G"));
    s.select({s.labour});
    s.page.reset();  // with the refresh pending
    QCOMPARE(refreshed.size(), 3);
  }

  void sortsNumbersByTheirValue() {
    Setup s;
    const int amount = s.filter.getColumnIndex(keys::BRIMarketTotalCost);
    s.filter.sort(amount, Qt::DescendingOrder);
    QTRY_COMPARE(s.shown(), QString("工程(s l w)"));  // 1,200.50 before 300.00
    s.filter.sort(s.filter.getColumnIndex(keys::BRIName), Qt::AscendingOrder);
    QTRY_COMPARE(s.shown(), QString("工程(l s w)"));  // gang, luo, tie
  }
};

QCE_WIDGET_TEST_MAIN(TestDesResItemView)
#include "tst_res_item_view.moc"
