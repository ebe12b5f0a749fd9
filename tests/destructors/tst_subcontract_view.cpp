#include <QSignalSpy>

#include "destructors/subcontract_add_base_view.h"
#include "destructors/subcontract_association_bill_filter_model.h"
#include "destructors/subcontract_association_bill_model.h"
#include "destructors/subcontract_association_bill_view.h"
#include "destructors/subcontract_collect_model.h"
#include "destructors/subcontract_collect_view.h"
#include "destructors/subcontract_table_model.h"
#include "destructors/subcontract_table_view.h"
#include "destructors/subcontract_view.h"
#include "host/abst/qce/destructors/des_set_subcontract_view.h"
#include "host/bwidgets/screen.h"
#include "host/bwidgets/search_box.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/domain/qce/destructors/des_set_subcontract_operator.h"
#include "host/gui/tree_grid_view.h"
#include "tests/support/recording_services.h"
#include "tests/support/test_elements.h"
#include "tests/support/test_main.h"
#include "tests/support/tester_proxy.h"

namespace keys = domain::keys;
using tests::Node;

namespace {

/// The bills with "yes" under "on" are associated.
class BillOperator
    : public tests::NodeHost<domain::qce::destructors::DesSetSubcontractBillOperator> {
 public:
  bool isAssociated(const proxy::Element* bill) const override {
    return static_cast<const Node*>(bill)->find("on", domain::DisplayRole) != nullptr;
  }
  bool isExcluded(const proxy::Element* bill, const std::string& text) const override {
    return static_cast<const Node*>(bill)->name().find(text) == std::string::npos;
  }
};

/// Keeps what it is told: "command: names".
class HostView : public abst::qce::destructors::DesSetSubcontractView {
 public:
  void setCurrentSubcontract(proxy::Element* entry) override { note("current", {entry}); }
  std::string handleMeteringMethod(proxy::Element* entry) override {
    const app::ScopedUndo undo("计量");  // joins the edit's
    note("metering", {entry});
    return "改为总价包干";
  }
  proxy::Element* addSubcontract(proxy::Element* after) override {
    note("add", {after});
    return nullptr;
  }
  Elements duplicateSubcontracts(const Elements& entries) override { return note("copy", entries); }
  bool removeSubcontracts(const Elements& entries) override {
    return note("remove", entries).empty();
  }
  bool moveUp(proxy::Element* entry) override { return note("up", {entry}).empty(); }
  bool moveDown(proxy::Element* entry) override { return !note("down", {entry}).empty(); }
  abst::BaseModel* getBaseList() override { return base; }
  Elements addFromBase(const Elements& rows, proxy::Element* after) override {
    note("base", rows);
    return note("after", {after});
  }
  bool associate(const Elements& bills) override { return note("associate", bills).empty(); }
  bool disassociate(const Elements& bills) override { return note("disassociate", bills).empty(); }
  bool applyToOtherBills() override { return note("apply", {}).empty(); }
  bool removeCollected(const Elements& bills) override { return note("take", bills).empty(); }
  bool moveCollected(const Elements& bills, proxy::Element* entry) override {
    note("move", bills);
    return note("to", {entry}).empty();
  }

  QStringList take() { return std::exchange(told_, {}); }
  abst::BaseModel* base = nullptr;

 private:
  Elements note(const QString& command, const Elements& elements) {
    QStringList names;
    for (const proxy::Element* each : elements) {
      names << (each != nullptr ? QString::fromStdString(static_cast<const Node*>(each)->name())
                                : QStringLiteral("none"));
    }
    told_ << (names.isEmpty() ? command : command + ": " + names.join(' '));
    return {};
  }
  QStringList told_;
};

using namespace gui::qce::destructors;

struct Page {
  Page() {
    for (const char* name : {"一", "二", "三"}) {
      Node* entry = entries.tree.add(name)->set(keys::BRIName, std::string(name));
      entry->set(keys::BRIMeteringMethod, std::string("按清单工程量"));
      for (const char* bill : {"甲", "乙"}) entry->add(name + std::string(bill));
    }
    for (const char* name : {"A", "B", "C"})
      bills.tree.add(name)->set(keys::SEName, std::string(name));
    bills.tree.node(0)
        ->set("on", true)
        ->set(keys::SEName, domain::BackgroundRole, base::Color{1, 2, 3});
    bills.tree.node(1)->set("on", true);
    domain::DisplayRow& header = *table.getHeader();
    for (const std::string& key : {keys::BRICode, keys::BRIName, keys::BRIMeteringMethod}) {
      header.addColumn(key, tests::field(domain::StringField, {}, false, key.c_str()));
    }
    for (const std::string& key : {keys::SECode, keys::SEName}) {
      tree.getHeader()->addColumn(key, tests::field(domain::StringField, {}, false, key.c_str()));
    }
    tests::attachTester(&entryModel);
    tests::attachTester(&collectModel);
    tests::attachTester(&billModel);
    tests::attachTester(&filter);
    entryModel.setDisplayTable(&table);
    entryModel.setOperator(&entries);
    collectModel.setDisplayTable(&tree);
    collectModel.setOperator(&entries);
    billModel.setDisplayTable(&tree);
    billModel.setOperator(&bills);
    host.base = &entryModel;
    page = std::make_unique<DesSetSubcontractViewImpl>();
    page->setAbstractView(&host);
    page->setModel(&entryModel);
    page->setCollectModel(&collectModel);
    page->setAssociationBillModel(&filter);
    page->resize(1200, 700);
  }
  void show() {
    page->show();
    QVERIFY(QTest::qWaitForWindowActive(page.get()));
    page->activate();
    host.take();
  }
  QModelIndex entry(int row, const std::string& key) const {
    return entryModel.index(row, entryModel.getColumnIndex(key));
  }
  bwidgets::TableView* grid() const { return page->tableView()->table(); }
  static void doubleClick(bwidgets::TreeGridView* grid, const QModelIndex& cell) {
    const QPoint at = grid->visualRect(cell).center();
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, at);
  }
  static void chooseRows(bwidgets::TreeGridView* grid, const std::vector<proxy::Element*>& rows) {
    grid->selectElements(rows);
    grid->setFocus();
  }

  tests::RecordingServices services;
  HostView host;
  tests::NodeOperator entries;
  BillOperator bills;
  domain::DisplayTable table, tree;
  DesSetSubcontractTableModelImpl entryModel;
  DesSetSubcontractCollectModelImpl collectModel;
  DesSetSubcontractAssociationBillModelImpl billModel;
  DesSetSubcontractAssociationBillFilterModelImpl filter{&billModel};
  std::unique_ptr<DesSetSubcontractViewImpl> page;
};

}  // namespace

class SubcontractViewTest : public QObject {
  Q_OBJECT

 private slots:
  void init() { p_ = std::make_unique<Page>(); }
  void cleanup() { p_.reset(); }

  void tellsOfTheCurrentEntryWhileShown() {
    p_->grid()->setCurrentIndex(p_->entry(1, keys::BRIName));
    QCOMPARE(p_->host.take(), QStringList());
    p_->page->show();
    QCOMPARE(p_->host.take(), QStringList{"current: 二"});
    QSignalSpy refreshed(&p_->billModel, &QAbstractItemModel::dataChanged);
    p_->grid()->setCurrentIndex(p_->entry(2, keys::BRIName));
    QCOMPARE(p_->host.take(), QStringList{"current: 三"});
    QCOMPARE(refreshed.count(), 1);
    QCOMPARE(p_->page->findChild<QLabel*>("DesSetSubcontract_caption")->text(),
             QString("关联到分包：三"));
    // The tree leads the table, and the other way round.
    gui::TreeGridView* tree = p_->page->collectView()->tree();
    QCOMPARE(tree->currentElement(), p_->entries.tree.node(2));
    tree->setCurrentIndex(p_->collectModel.index(1, 0, p_->collectModel.index(0, 0)));
    QCOMPARE(p_->host.take(), QStringList{"current: 一"});
    QCOMPARE(tree->currentElement(), p_->entries.tree.node(0)->node(1));
    p_->page->hide();
    p_->grid()->setCurrentIndex(p_->entry(1, keys::BRIName));
    QCOMPARE(p_->host.take(), QStringList());
  }

  void handsAChangedMeteringMethodOverInsideTheEdit() {
    p_->show();
    QSignalSpy changed(&p_->entryModel, &QAbstractItemModel::dataChanged);
    QVERIFY(p_->entryModel.setData(p_->entry(1, keys::BRIName), "名称"));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(p_->host.take(), QStringList());
    changed.clear();
    p_->services.undo.steps.clear();
    QVERIFY(p_->entryModel.setData(p_->entry(1, keys::BRIMeteringMethod), "总价包干"));
    QCOMPARE(changed.count(), 2);
    QCOMPARE(changed[0][2].value<QVector<int>>(), QVector<int>{Qt::EditRole});
    QCOMPARE(changed[1][2].value<QVector<int>>(), QVector<int>());
    // Once for each announcement.
    QCOMPARE(p_->host.take(), (QStringList{"metering: 二", "metering: 二"}));
    QCOMPARE(p_->services.undo.steps.size(), std::size_t(1));
    QCOMPARE(p_->page->findChild<QLabel*>("DesSetSubcontract_note")->text(),
             QString("改为总价包干"));
    p_->entries.refuse = true;
    QVERIFY(!p_->entryModel.setData(p_->entry(1, keys::BRIMeteringMethod), "按实际数量"));
    QCOMPARE(changed.count(), 2);
    QCOMPARE(p_->host.take(), QStringList());
  }

  void marksAssociatedBillsAndNarrowsThem() {
    p_->show();
    const auto ground = [this](int row) {
      const int column = p_->billModel.getColumnIndex(keys::SEName);
      return p_->billModel.index(row, column).data(Qt::BackgroundRole).value<QColor>();
    };
    QCOMPARE(ground(0), QColor(1, 2, 3));
    QCOMPARE(ground(1), QColor(229, 243, 225));
    QVERIFY(!ground(2).isValid());
    auto* view = p_->page->billView();
    QTest::mouseClick(view->associatedOnlyBox(), Qt::LeftButton, {},
                      QPoint(8, view->associatedOnlyBox()->height() / 2));
    QCOMPARE(p_->filter.rowCount(), 2);
    QTest::keyClicks(view->filterEdit(), "B ");
    QCOMPARE(p_->filter.rowCount(), 1);
    view->filterEdit()->clear();
    view->associatedOnlyBox()->setChecked(false);

    bwidgets::TableView* table = view->table();
    tests::Tree& bills = p_->bills.tree;
    const auto press = [table] { QTest::keyClick(table, Qt::Key_Space); };
    Page::chooseRows(table, {bills.node(0), bills.node(1)});
    press();
    QCOMPARE(p_->host.take(), QStringList{"disassociate: A B"});
    Page::chooseRows(table, {bills.node(1), bills.node(2)});
    press();
    QCOMPARE(p_->host.take(), QStringList{"associate: C"});
    Page::doubleClick(table, p_->filter.index(2, 1));
    QCOMPARE(p_->host.take(), QStringList{"associate: C"});
    table->clearSelection();
    press();
    QCOMPARE(p_->services.channel.messages().size(), std::size_t(1));
  }

  void carriesOutCommandsByKey() {
    p_->show();
    tests::Tree& entries = p_->entries.tree;
    bwidgets::TableView* grid = p_->grid();
    const auto key = [](QWidget* in, int which, Qt::KeyboardModifiers modifiers = {}) {
      in->setFocus();
      QTest::keyClick(in, static_cast<Qt::Key>(which), modifiers);
    };
    grid->setCurrentIndex(p_->entry(1, keys::BRIName));
    p_->host.take();
    key(grid, Qt::Key_Insert);
    key(grid, Qt::Key_Up, Qt::ControlModifier);
    key(grid, Qt::Key_Down, Qt::ControlModifier);
    key(grid, Qt::Key_D, Qt::ControlModifier);
    key(grid, Qt::Key_Delete);  // one cell: it is cleared
    key(grid, Qt::Key_Delete, Qt::ControlModifier);
    QCOMPARE(p_->host.take(),
             (QStringList{"add: 二", "up: 二", "down: 二", "copy: 二", "remove: 二"}));
    QCOMPARE(p_->entry(1, keys::BRIName).data().toString(), QString());
    // In an editor the keys are the text's.
    QTest::keyClick(grid, Qt::Key_F2);
    auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    QVERIFY(editor != nullptr);
    QTest::keyClicks(editor, "ab cd");
    editor->setCursorPosition(3);
    QTest::keyClick(editor, Qt::Key_Insert);
    QTest::keyClick(editor, Qt::Key_D, Qt::ControlModifier);
    QTest::keyClick(editor, Qt::Key_Up, Qt::AltModifier);
    QTest::keyClick(editor, Qt::Key_Delete, Qt::ControlModifier);
    QCOMPARE(p_->host.take(), QStringList());
    QCOMPARE(editor->text(), QString("ab "));
    QTest::keyClick(editor, Qt::Key_Escape);
    Page::chooseRows(grid, {entries.node(0), entries.node(1)});
    p_->host.take();
    key(grid, Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(p_->host.take(), QStringList{"down: 二"});  // refused, so that the other one stays
    key(grid, Qt::Key_Up, Qt::ControlModifier);
    QCOMPARE(p_->host.take(), QStringList());
    key(grid, Qt::Key_Delete);
    QCOMPARE(p_->host.take(), QStringList{"remove: 一 二"});
    const std::vector<bwidgets::TreeGridView*> all{grid, p_->page->billView()->table(),
                                                   p_->page->collectView()->tree()};
    for (bwidgets::TreeGridView* each : all) {
      each->openSearchBox();
      p_->page->deactivate();
      QVERIFY(!each->searchBox()->isVisible());
    }

    gui::TreeGridView* tree = p_->page->collectView()->tree();
    key(tree, Qt::Key_Delete);  // an entry is no bill
    QCOMPARE(p_->services.channel.messages().size(), std::size_t(1));
    Page::chooseRows(tree, {entries.node(0)->node(0), entries.node(0)->node(1)});
    p_->host.take();
    key(tree, Qt::Key_Delete);
    emit tree->customContextMenuRequested(QPoint(5, 5));
    QMenu* menu = tree->findChild<QMenu*>("DesSetSubcontract_collectMenu");
    QMenu* targets = menu->findChild<QMenu*>();
    QCOMPARE(targets->actions().size(), 2);
    targets->actions().last()->trigger();
    menu->close();
    auto* apply = p_->page->findChild<QPushButton*>("DesSetSubcontract_apply");
    QCOMPARE(apply->text(), QString("应用到其他清单"));
    QCOMPARE(apply->width(), 180);
    QTest::mouseClick(apply, Qt::LeftButton);
    QCOMPARE(p_->host.take(),
             (QStringList{"take: 一甲 一乙", "move: 一甲 一乙", "to: 三", "apply"}));
  }

  void addsFromTheBaseList() {
    p_->show();
    const auto run = [this](const std::function<void(DesSetSubcontractAddQCEBaseViewImpl*)>& act) {
      p_->page->activateWindow();
      QTRY_VERIFY(p_->page->isActiveWindow());
      p_->grid()->setFocus();
      QTimer::singleShot(0, [&act] {
        auto* dialog =
            qobject_cast<DesSetSubcontractAddQCEBaseViewImpl*>(QApplication::activeModalWidget());
        QVERIFY(dialog != nullptr);
        act(dialog);
      });
      QTest::keyClick(p_->grid(), Qt::Key_Insert, Qt::ShiftModifier);
    };
    const auto button = [](QWidget* dialog, QDialogButtonBox::StandardButton which) {
      return dialog->findChild<QDialogButtonBox*>()->button(which);
    };
    run([&](DesSetSubcontractAddQCEBaseViewImpl* dialog) {
      QCOMPARE(dialog->layout()->contentsMargins(), QMargins(10, 10, 10, 10));
      QCOMPARE(dialog->minimumSize(),
               QSize(qRound(0.7 * bwidgets::Screen::getNoIncludeTaskbartWidget()),
                     qRound(0.7 * bwidgets::Screen::getNoIncludeTaskbartHeight())));
      QVERIFY(!button(dialog, QDialogButtonBox::Ok)->isEnabled());
      QCOMPARE(button(dialog, QDialogButtonBox::Cancel)->text(), QString("取消"));
      dialog->table()->selectAll();
      QTest::mouseClick(button(dialog, QDialogButtonBox::Cancel), Qt::LeftButton);
    });
    QCOMPARE(p_->host.take(), QStringList());
    run([&](DesSetSubcontractAddQCEBaseViewImpl* dialog) {
      dialog->table()->selectElements({p_->entries.tree.node(0), p_->entries.tree.node(2)});
      QCOMPARE(button(dialog, QDialogButtonBox::Ok)->text(), QString("确定"));
      QTest::mouseClick(button(dialog, QDialogButtonBox::Ok), Qt::LeftButton);
    });
    QCOMPARE(p_->host.take(), (QStringList{"base: 一 三", "after: 一"}));
    run([&](DesSetSubcontractAddQCEBaseViewImpl* dialog) {
      Page::doubleClick(dialog->table(), p_->entryModel.index(1, 1));
    });
    QCOMPARE(p_->host.take(), (QStringList{"base: 二", "after: 一"}));
    bool listed = false, waited = false;
    run([&](DesSetSubcontractAddQCEBaseViewImpl* dialog) {
      listed = dialog->focusWidget() == dialog->table();
      QTest::keyClick(dialog->table(), Qt::Key_Return);
      waited = dialog->isVisible();
      dialog->table()->selectElements({p_->entries.tree.node(1), p_->entries.tree.node(2)});
      QTest::keyClick(dialog->table(), Qt::Key_Return);
      if (dialog->isVisible()) dialog->reject();
    });
    QVERIFY(listed && waited);
    QCOMPARE(p_->host.take(), (QStringList{"base: 二 三", "after: 一"}));
  }

  void keepsTheStateOfItsWindow() {
    const auto activate = [this] {
      QEvent event(QEvent::ActivationChange);
      QApplication::sendEvent(p_->page.get(), &event);
    };
    p_->page->setWindowFlag(Qt::WindowMaximizeButtonHint);
    p_->show();
    p_->page->showMaximized();
    activate();
    QVERIFY(p_->page->isMaximized());
    p_->page->setWindowState(Qt::WindowFullScreen);
    activate();
    QCOMPARE(p_->page->windowState() & ~Qt::WindowActive, Qt::WindowStates());
    p_->page->setEnabled(false);
    p_->page->setWindowState(Qt::WindowFullScreen);
    activate();
    QVERIFY(p_->page->isFullScreen());
    p_->page->setEnabled(true);
    p_->page->close();
    activate();
    QVERIFY(!p_->page->isVisible());
  }

 private:
  std::unique_ptr<Page> p_;
};

QCE_WIDGET_TEST_MAIN(SubcontractViewTest)
#include "tst_subcontract_view.moc"
