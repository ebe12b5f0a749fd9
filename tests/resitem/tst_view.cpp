#include "resitem/view.h"

#include "framework/des_filter_view.h"
#include "host/base/number_text.h"
#include "host/bwidgets/grid_header.h"
#include "host/bwidgets/search_box.h"
#include "host/domain/field_keys.h"
#include "host/gui/tree_grid_view.h"
#include "resitem/filter_model.h"
#include "resitem/model.h"
#include "tests/support/test_main.h"
#include "tests/support/tester_proxy.h"
#include "tests/workbench/project_fixture.h"
#include "workbench/cli/driver.h"
#include "workbench/services/configuration.h"

namespace keys = domain::keys;
using gui::qce::destructors::DesFilterView;
using records::Category;
using records::ItemField;
using records::ResourceItem;

namespace {

// The program's operator, with an item that takes no writes.
class Operator : public operators::ResItemOperator {
 public:
  using ResItemOperator::ResItemOperator;
  bool setValue(proxy::Element* item, const std::string& key, const domain::Value& value,
                int role) override {
    return item != refused && ResItemOperator::setValue(item, key, value, role);
  }
  const proxy::Element* refused = nullptr;
};

}  // namespace

/// The page of resource items over the office building, with its undo and its arithmetic.
class TestView : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    fixture_ = std::make_unique<tests::ProjectFixture>();
    show();
    for (int row = 0; row < 3; ++row) items_[row] = &fixture_->item(0, Category::Material, row);
    labour_ = &fixture_->item(0, Category::Labour, 0);
  }
  void cleanup() {
    hide();
    fixture_.reset();
  }

  void opensWithEverythingShown() {
    const int all = static_cast<int>(fixture_->items().size());
    QCOMPARE(shown(), all);
    QVERIFY(grid_->isExpanded(filter_->index(0, 0)));
    select({items_[0], labour_, items_[0]->group()});
    const double sum =
        (items_[0]->excludedAmount().value() + labour_->excludedAmount().value()).toDouble();
    QCOMPARE(status(), QString("显示 %1 项，共 %1 项　　已选 2 项　　不含税合价 %2 元")
                           .arg(all)
                           .arg(base::ToThousandthsString(sum, 2).c_str()));
  }

  void filtersByFlagAndKeepsItsPlace() {
    set(*items_[1], ItemField::OwnerSupplied, true);
    select({items_[1]});
    click("甲供");
    QCOMPARE(grid_->currentElement(), items_[1]);
    QVERIFY(status().startsWith(
        QString("显示 %1 项，共 %2 项").arg(shown()).arg(fixture_->items().size())));
    QVERIFY(shown() < int(fixture_->items().size()));
    click("全部");
    QCOMPARE(shown(), int(fixture_->items().size()));
    QVERIFY(grid_->isExpanded(filter_->index(1, 0)));
  }

  void filtersByConditions() {
    auto* panel = page_->findChild<DesFilterView*>();
    QVERIFY(!panel->isVisible());
    click("条件过滤");
    QVERIFY(panel->isVisible());
    auto* name = panel->findChild<QLineEdit*>("name");
    name->setText(QString::fromStdString(items_[0]->name().str()));
    QTest::keyClick(panel, Qt::Key_Space);
    QCOMPARE(shown(), int(fixture_->items().size()));
    QTest::keyClick(name, Qt::Key_Return);
    const int some = shown();
    QVERIFY(some > 0 && some < 20);
    QVERIFY(grid_->isExpanded(filter_->index(0, 0)));
    // Closing the panel keeps the filter, and the status line tells so.
    click("条件过滤");
    QVERIFY(!panel->isVisible());
    QCOMPARE(shown(), some);
    QVERIFY2(status().contains("（条件过滤中）"), qPrintable(status()));
    click("条件过滤");
    driver_.click(panel->cancelButton());
    QCOMPARE(shown(), int(fixture_->items().size()));
  }

  void setsThePriceOfTheSelectedItemsInOneStep() {
    const auto before = items_[1]->price().value();
    select({items_[0]->group(), items_[0], labour_});  // a grouping row has no price
    typePrice("88.5", Qt::Key_Return);
    QCOMPARE(price(*items_[0]), QString("88.50"));
    QCOMPARE(price(*labour_), QString("88.50"));
    QVERIFY(items_[1]->price().value() == before);
    QCOMPARE(stack().count(), 1);
    QCOMPARE(stack().undoText(), QString("批量设置不含税单价"));
    typePrice("99", Qt::Key_Escape);
    QCOMPARE(stack().count(), 1);
    // One that takes no price takes the whole batch back.
    op_->refused = items_[0];
    typePrice("77", Qt::Key_Return);
    const QString name = QString::fromStdString(items_[0]->name().str());
    QVERIFY2(fixture_->message().contains(name), qPrintable(fixture_->message()));
    QVERIFY(fixture_->message().contains("本次批量设置已全部取消"));
    QCOMPARE(price(*labour_), QString("88.50"));
    QCOMPARE(stack().count(), 1);
  }

  void editsAndDeletesAnnotations() {
    select({items_[1]});
    const auto edit = [this](const std::function<void()>& type) {
      QVERIFY(driver_.withPopup([this] { driver_.key(Qt::Key_F2, Qt::ShiftModifier); },
                                [&](QWidget*) {
                                  type();
                                  driver_.key(Qt::Key_Return, Qt::ControlModifier);
                                }));
    };
    edit([this] {
      driver_.type("two");
      driver_.key(Qt::Key_Return);
      driver_.type("lines");
    });
    QCOMPARE(items_[1]->annotation().str(), std::string("two\nlines"));
    edit([] {});  // confirmed without a change: no undo step
    QCOMPARE(stack().count(), 1);
    page_->deleteComment();
    QVERIFY(items_[1]->annotation().empty());
    QCOMPARE(stack().undoText(), QString("删除批注"));
  }

  void movesRowsAndTheSelectionFollows() {
    sortByCode();
    auto& group = *items_[0]->group();
    ResourceItem* const first = row(group, 0);
    ResourceItem* const second = row(group, 1);
    ResourceItem* const third = row(group, 2);
    select({first, second});
    driver_.key(Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(grid_->header()->sortIndicatorSection(), -1);  // no longer in the order of the codes
    QVERIFY(row(group, 0) == third && row(group, 1) == first && row(group, 2) == second);
    QCOMPARE(grid_->currentElement(), first);
    QCOMPARE(grid_->selectedElements().size(), std::size_t(2));
    QCOMPARE(stack().undoText(), QString("下移"));
    click("上移");
    QCOMPARE(row(group, 0), first);
    driver_.key(Qt::Key_Up, Qt::AltModifier);  // at the top already
    QCOMPARE(stack().count(), 2);
  }

  void movesPastRowsThatTheFilterHides() {
    for (int i = 0; i < 3; ++i) set(*items_[i], ItemField::PriceAdjustable, i != 1);
    click("可调价");
    select({items_[2]});
    click("上移");
    QVERIFY(items_[2]->row() == 0 && items_[0]->row() == 1 && items_[1]->row() == 2);
  }

  void poolsIntoTheCurrentItem() {
    select({labour_, items_[1]});
    QString shown;
    QVERIFY(driver_.withPopup(
        [this] { driver_.key(Qt::Key_G, Qt::ControlModifier); },
        [&](QWidget* dialog) {
          shown = dialog->findChild<QLabel*>("NotionalPooling_currentItem")->text();
          dialog->close();
        }));
    QVERIFY2(shown.contains(QString::fromStdString(labour_->code().str())), qPrintable(shown));
  }

  void enablesWhatCanBeDone() {
    const auto enabled = [this](const QString& text) { return button(text)->isEnabled(); };
    select({});
    QVERIFY(!enabled("批量设置不含税单价") && !enabled("上移"));
    select({labour_->group()});
    QVERIFY(!enabled("批量设置不含税单价") && !enabled("编辑批注") && !enabled("归集到成本"));
    select({items_[0]});
    QVERIFY(enabled("批量设置不含税单价") && enabled("编辑批注") && enabled("下移"));
    QVERIFY(!enabled("上移"));
    select({items_[1], labour_});  // not siblings
    QVERIFY(!enabled("上移") && !enabled("下移"));

    select({items_[1]});
    emit grid_->customContextMenuRequested(
        grid_->visualRect(filter_->makeIndex(items_[1], 0)).center());
    auto* menu = page_->findChild<QMenu*>("ResItem_contextMenu");
    QVERIFY(menu != nullptr && menu->isVisible());
    QStringList offered;
    for (const QAction* action : menu->actions()) {
      if (action->isEnabled()) offered << action->text();
    }
    for (const char* text :
         {"归集到成本", "批量设置不含税单价", "编辑批注", "上移", "下移", "条件过滤", "刷新分组"}) {
      QVERIFY2(offered.contains(text), text);
    }
    QVERIFY(!offered.contains("删除批注"));  // there is none to delete
    menu->close();
  }

  void keepsItsPlaceWhenItRegroups() {
    grid_->collapse(filter_->index(1, 0));
    sortByCode();
    select({items_[1], items_[2]});
    driver_.key(Qt::Key_F5);
    QTest::qWait(160);
    QCOMPARE(grid_->header()->sortIndicatorSection(), -1);  // and nothing sorts again
    QVERIFY(items_[0]->row() == 0 && items_[1]->row() == 1);
    QCOMPARE(grid_->currentElement(), items_[1]);
    QCOMPARE(grid_->selectedElements(), (std::vector<proxy::Element*>{items_[1], items_[2]}));
    QVERIFY(grid_->isExpanded(filter_->index(0, 0)));
    QVERIFY(!grid_->isExpanded(filter_->index(1, 0)));

    click("查找");
    QVERIFY(grid_->searchBox()->isVisible());
    page_->deactivate();
    QVERIFY(!grid_->searchBox()->isVisible());
  }

  void hidesColumnsAndKeepsThemHidden() {
    const auto toggle = [this](const std::string& key) {
      QWidget* header = grid_->gridHeader()->viewport();
      QContextMenuEvent event(QContextMenuEvent::Mouse, {20, 20}, header->mapToGlobal({20, 20}));
      QVERIFY(driver_.withPopup(
          [&] { QApplication::sendEvent(header, &event); },
          [&](QWidget* menu) {
            driver_.click(menu->findChild<QCheckBox*>("column_" + QString::fromStdString(key)));
            driver_.key(Qt::Key_Escape);
          }));
    };
    const QTemporaryDir directory;
    services::Configuration config(directory.filePath("settings.json"));
    app::Services installed = app::InstallServices({});
    installed.globalConfig = &config;
    app::InstallServices(installed);
    const auto uninstall = qScopeGuard([&installed] {
      installed.globalConfig = nullptr;
      app::InstallServices(installed);
    });
    const int all = filter_->columnCount();
    const int name = filter_->getColumnIndex(keys::BRIName);
    select({items_[1]});
    toggle(keys::BRIType);     // before the name
    toggle(keys::BRITaxRate);  // of a group of columns
    const auto check = [&] {
      QCOMPARE(filter_->columnCount(), all - 2);
      QCOMPARE(filter_->getColumnIndex(keys::BRITaxRate), -1);
      QCOMPARE(filter_->getColumnIndex(keys::BRIName), name - 1);
      QCOMPARE(grid_->treePosition(), name - 1);
      QCOMPARE(grid_->frozenColumnCount(), name);
    };
    check();
    QCOMPARE(grid_->currentElement(), items_[1]);
    toggle(keys::BRIName);  // what tells the rows apart stays
    check();
    page_ = std::make_unique<gui::qce::QCEResItemViewImpl>();  // as in the next session
    filter_->cleacColumnList();
    page_->setModel(filter_.get());
    grid_ = page_->findChild<gui::TreeGridView*>();
    page_->show();
    check();
    toggle(keys::BRITaxRate);
    toggle(keys::BRIType);
    QCOMPARE(filter_->columnCount(), all);
    QCOMPARE(grid_->frozenColumnCount(), name + 1);
  }

  void typingGoesOnPastWhatCannotBeEdited() {
    const auto at = [this](ResourceItem* item, const std::string& key) {
      return filter_->makeIndex(item, filter_->getColumnIndex(key));
    };
    const std::vector<ResourceItem*> items = fixture_->items();
    int borders = 0;
    for (std::size_t i = 1; i < items.size(); ++i) {
      if (items[i]->group() == items[i - 1]->group()) continue;
      ++borders;
      edit(items[i - 1], keys::BRIExcludedTaxFee, "12");
      QCOMPARE(grid_->currentIndex(), at(items[i], keys::BRIExcludedTaxFee));
      edit(items[i - 1], keys::BRIComment, "12", Qt::Key_Tab);
      QCOMPARE(grid_->currentIndex(), at(items[i], keys::CostAccount));
    }
    QVERIFY(borders > 4);
    // Past the prices that follow, and nowhere from the last one.
    edit(items.back(), keys::BRITaxRate, "12", Qt::Key_Tab);
    QCOMPARE(grid_->currentIndex(), at(items.back(), keys::BRIIsProvidedByJia));
    edit(items.back(), keys::BRIExcludedTaxFee, "12");
    QCOMPARE(grid_->currentIndex(), at(items.back(), keys::BRIExcludedTaxFee));
    QCOMPARE(price(*items.back()), QString("12.00"));
  }

  void addsItemsOfOnesOwn() {
    const std::string before = project().dump();
    const costing::Decimal total = project().totals().excluded;
    const int items = shown();
    select({items_[0]});
    driver_.key(Qt::Key_Insert);
    auto* added = dynamic_cast<ResourceItem*>(grid_->currentElement());
    QVERIFY(added != nullptr && added != items_[0]);
    driver_.type("临时用料");  // the name is being edited
    driver_.key(Qt::Key_Return);
    QCOMPARE(shown(), items + 1);
    QCOMPARE(added->name().str(), std::string("临时用料"));
    QVERIFY(added->group() == items_[0]->group() && added->account() != nullptr);
    const auto type = [this](proxy::Element* item, const std::string& key, const char* text) {
      return filter_->setData(filter_->makeIndex(item, filter_->getColumnIndex(key)), text);
    };
    QVERIFY(type(added, keys::BRIUnit, "工日"));
    QVERIFY(type(added, keys::BRIAmount, "12.5"));
    QVERIFY(type(added, keys::BRIExcludedTaxFee, "200"));
    QVERIFY(project().totals().excluded - total == costing::Decimal(2500));
    QVERIFY(!type(added, keys::BRIAmount, "-1"));
    QCOMPARE(fixture_->channel.messages().size(), std::size_t(1));
    for (const std::string& key : {keys::BRIUnit, keys::BRIAmount}) {  // those of the bills
      const QModelIndex cell = filter_->makeIndex(items_[0], filter_->getColumnIndex(key));
      QVERIFY(!cell.flags().testFlag(Qt::ItemIsEditable));
      QVERIFY(!type(items_[0], key, "3"));
    }

    select({items_[0], added});
    driver_.key(Qt::Key_Delete, Qt::ControlModifier);
    QVERIFY(fixture_->message().contains("没有删除任何人材机"));
    QCOMPARE(shown(), items + 1);
    select({added});
    driver_.key(Qt::Key_Delete, Qt::ControlModifier);
    QCOMPARE(shown(), items);
    QCOMPARE(project().totals().excluded.toString(), total.toString());
    while (stack().canUndo()) stack().undo();
    QCOMPARE(project().dump(), before);
  }

  void tellsOfCodesThatAreTaken() {
    const ResourceItem& there = *items_[1];
    const QString code = QString::fromStdString(there.code().str());
    const QString name = QString::fromStdString(there.name().str());
    const QString said = edit(items_[0], keys::BRICode, code);
    QVERIFY2(said.contains("“" + code + " " + name + "”的编码相同"), qPrintable(said));
    QCOMPARE(items_[0]->code(), there.code());
    QCOMPARE(edit(labour_, keys::BRICode, code), QString());  // of another category

    // One that differs in its price alone may have it, one that differs in nothing else may not.
    while (stack().canUndo()) stack().undo();
    const app::ScopedUndo undo("");
    auto& added = static_cast<ResourceItem&>(
        *fixture_->opened()->resItemController().insertItem(items_[1], "材料"));
    project().set(added, ItemField::Name, there.name());
    project().set(added, ItemField::Spec, there.spec());
    project().set(added, ItemField::Unit, there.unit());
    project().set(added, ItemField::TaxRate, there.taxRate());
    project().set(added, ItemField::Account, there.account());
    QCOMPARE(edit(&added, keys::BRICode, code), QString());
    QCOMPARE(added.code(), there.code());
    QCOMPARE(edit(&added, keys::BRICode, "1"), QString());
    project().set(added, ItemField::Price, there.price());
    QVERIFY(edit(&added, keys::BRICode, code).contains("无法区分。请改用别的编码"));
    QCOMPARE(added.code().str(), std::string("1"));
    QCOMPARE(grid_->currentElement(), &added);
  }

  void addsTheFirstItem() {
    hide();
    fixture_->close();
    store::Failure failure;
    QVERIFY(store::ProjectFile::create(fixture_->path(), nullptr, {"空", "投标成本测算", {}},
                                       failure, {}, true));
    show();
    grid_->setCurrentIndex({});  // no row says where the item goes
    QVERIFY(driver_.withPopup([this] { page_->insertItem(); },
                              [](QWidget* dialog) {
                                QTest::keyClick(dialog->findChild<QComboBox*>(), Qt::Key_Down);
                                QTest::keyClick(dialog, Qt::Key_Return);
                              }));
    auto* added = dynamic_cast<ResourceItem*>(grid_->currentElement());
    QVERIFY(added != nullptr);
    QVERIFY(&added->group()->unitWork() == project().unitWorks().at(1));
    QCOMPARE(added->category(), Category::Labour);
    QCOMPARE(added->code().str(), std::string("补充人工001"));
  }

 private:
  void show() {
    QVERIFY(fixture_->open() != nullptr);
    op_ = std::make_unique<Operator>(project());
    model_ = std::make_unique<gui::qce::QCEResItemModelImpl>();
    filter_ = std::make_unique<gui::qce::QCEResItemFilterModelImpl>(model_.get());
    tests::attachTester(model_.get());
    tests::attachTester(filter_.get());
    model_->setDisplayTable(&fixture_->opened()->resItemTable());
    model_->setOperator(op_.get());
    auto& controller = fixture_->opened()->resItemController();
    controller.setModel(model_.get());
    page_ = std::make_unique<gui::qce::QCEResItemViewImpl>();
    page_->setController(&controller);
    page_->setModel(filter_.get());
    page_->resize(1400, 700);
    page_->show();
    page_->activate();
    QVERIFY(QTest::qWaitForWindowActive(page_.get()));
    grid_ = page_->findChild<gui::TreeGridView*>();
    grid_->setFocus();
  }
  void hide() {
    page_.reset();
    fixture_->opened()->resItemController().setModel(nullptr);
    filter_.reset();
    model_.reset();
    op_.reset();
  }
  records::Project& project() { return fixture_->opened()->project(); }
  QUndoStack& stack() { return *fixture_->opened()->undo().stack(); }
  /// Types into a cell; what is said of it.
  QString edit(ResourceItem* item, const std::string& key, const QString& text,
               int last = Qt::Key_Return) {
    const std::size_t before = fixture_->channel.messages().size();
    const QModelIndex cell = filter_->makeIndex(item, filter_->getColumnIndex(key));
    grid_->selectionModel()->setCurrentIndex(cell, QItemSelectionModel::ClearAndSelect);
    driver_.type(text);
    driver_.key(last);
    cli::Driver::waitUntil([&] { return !grid_->isPersistentEditorOpen(cell); });
    return fixture_->channel.messages().size() == before ? QString() : fixture_->message();
  }
  void set(ResourceItem& item, ItemField field, bool value) {
    project().set(item, field, value);
    project().takeRecorded();
  }
  static ResourceItem* row(records::ResourceGroup& group, int number) {
    return static_cast<ResourceItem*>(group.rows().at(number));
  }

  int shown(const QModelIndex& parent = {}) const {
    int items = 0;
    for (int i = 0; i < filter_->rowCount(parent); ++i) {
      const QModelIndex at = filter_->index(i, 0, parent);
      items += filter_->hasChildren(at) ? shown(at) : 1;
    }
    return items;
  }
  QString status() const {
    QCoreApplication::processEvents();
    return page_->findChild<QLabel*>("ResItem_status")->text();
  }
  QString price(ResourceItem& item) const {
    return filter_->makeIndex(&item, filter_->getColumnIndex(keys::BRIExcludedTaxFee))
        .data()
        .toString();
  }
  void select(const std::vector<proxy::Element*>& elements) {
    grid_->selectionModel()->clear();
    grid_->selectElements(elements);
    QCoreApplication::processEvents();
  }
  void sortByCode() {
    QSignalSpy sorted(model_.get(), &QAbstractItemModel::layoutChanged);
    grid_->header()->setSortIndicator(filter_->getColumnIndex(keys::BRICode), Qt::AscendingOrder);
    QVERIFY(sorted.wait());
  }
  QAbstractButton* button(const QString& text) const { return tests::button(page_.get(), text); }
  void click(const QString& text) {
    QVERIFY(button(text)->isEnabled());
    driver_.click(button(text));
    QCoreApplication::processEvents();
  }
  void typePrice(const QString& price, Qt::Key last) {
    QVERIFY(driver_.withPopup([this] { driver_.key(Qt::Key_B, Qt::ControlModifier); },
                              [&](QWidget*) {
                                driver_.type(price);
                                driver_.key(last);
                              }));
  }

  std::unique_ptr<tests::ProjectFixture> fixture_;
  std::unique_ptr<Operator> op_;
  std::unique_ptr<gui::qce::QCEResItemModelImpl> model_;
  std::unique_ptr<gui::qce::QCEResItemFilterModelImpl> filter_;
  std::unique_ptr<gui::qce::QCEResItemViewImpl> page_;
  cli::Driver driver_;
  gui::TreeGridView* grid_ = nullptr;
  ResourceItem* items_[3] = {};  // the first materials of the first unit work
  ResourceItem* labour_ = nullptr;
};

QCE_WIDGET_TEST_MAIN(TestView)
#include "tst_view.moc"
