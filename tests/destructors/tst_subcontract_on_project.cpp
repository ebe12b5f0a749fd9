
#include "destructors/subcontract_association_bill_view.h"
#include "destructors/subcontract_collect_view.h"
#include "destructors/subcontract_table_view.h"
#include "destructors/subcontract_view.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/domain/item_role.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "tests/support/rows.h"
#include "tests/support/test_main.h"
#include "tests/support/tester_proxy.h"
#include "tests/workbench/project_fixture.h"
#include "workbench/services/templates.h"
#include "workbench/shell/session.h"
#include "workbench/shell/subcontract_page.h"

namespace keys = domain::keys;
using costing::Decimal;
using gui::qce::destructors::DesSetSubcontractViewImpl;
using records::Bill;
using records::Subcontract;

namespace {

/// The page on the office building, as the window has it.
struct Opened {
  Opened() {
    store::Failure failure;
    session = shell::Session::open(file.path(), failure);
    app::Services services;
    services.undo = &session->undoService();
    services.channel = services.qceChannel = &file.channel;
    before = app::InstallServices(services);
    page = shell::makeSubcontractPage(*session);
    widget.reset(page.widget);
    view = widget->findChild<DesSetSubcontractViewImpl*>();
    table = view->tableView()->table();
    tree = view->collectView()->tree();
    bills = view->billView()->table();
    for (bwidgets::TreeGridView* grid : grids()) tests::attachTester(grid->model());
    widget->resize(1280, 760);
    widget->show();
    view->activate();
    QVERIFY(QTest::qWaitForWindowActive(widget.get()));
  }
  ~Opened() {
    widget.reset();
    page = {};
    app::InstallServices(before);
  }

  std::vector<bwidgets::TreeGridView*> grids() const { return {table, tree, bills}; }
  records::Project& project() const { return session->project().project(); }
  Subcontract& entry(int row) const {
    return *static_cast<Subcontract*>(project().subcontracts().rows().at(row));
  }
  QModelIndex cell(int row, const std::string& key) const {
    return table->model()->index(row, table->viewModel()->getColumnIndex(key));
  }
  bool write(int row, const std::string& key, const QVariant& value) const {
    return table->model()->setData(cell(row, key), value);
  }
  QString text(int row, const std::string& key) const { return cell(row, key).data().toString(); }
  /// The rows of the bills with this name, in the order of the table.
  std::vector<proxy::Element*> billsNamed(const QString& name) const {
    std::vector<proxy::Element*> found;
    const int column = bills->viewModel()->getColumnIndex(keys::SEName);
    for (int row = 0; row < bills->model()->rowCount(); ++row) {
      const QModelIndex index = bills->model()->index(row, column);
      if (index.data().toString() == name) found.push_back(bills->elementAt(index));
    }
    return found;
  }
  void press(bwidgets::TreeGridView* grid, const std::vector<proxy::Element*>& rows, int key,
             Qt::KeyboardModifiers modifiers = {}) const {
    grid->selectElements(rows);
    grid->setFocus();
    QTest::keyClick(grid, static_cast<Qt::Key>(key), modifiers);
  }
  QString message() {
    const auto& shown = file.channel.messages();
    QString text = shown.empty() ? QString() : QString::fromStdString(shown.back().text);
    file.channel.clear();
    return text;
  }

  tests::ProjectFixture file;
  app::Services before;
  std::unique_ptr<shell::Session> session;
  shell::Page page;
  std::unique_ptr<QWidget> widget;
  DesSetSubcontractViewImpl* view = nullptr;
  bwidgets::TreeGridView *table = nullptr, *tree = nullptr, *bills = nullptr;
};

}  // namespace

class SubcontractOnProjectTest : public QObject {
  Q_OBJECT

 private slots:
  void init() { o_ = std::make_unique<Opened>(); }
  void cleanup() { o_.reset(); }

  // Every command is one undo step, and undoing all of them leaves the project as it was.
  void carriesOutEachCommandAsOneStep() {
    QUndoStack& stack = o_->session->undoStack();
    const std::string before = o_->project().dump();
    int steps = 0;
    const auto step = [&](const char* what) {
      QVERIFY2(stack.index() == ++steps, what);
      QVERIFY2(o_->file.channel.messages().empty(), what);
    };
    o_->press(o_->table, {}, Qt::Key_Insert);
    step("add");
    QVERIFY(o_->write(0, keys::BRIName, "墙体分包"));
    step("name");
    QVERIFY(o_->write(0, keys::BRIExcludedTaxFee, "260"));
    step("price");

    // The entry takes the unit of its first bills.
    // Its bills come in the order of the project, however the table is sorted.
    const int name = o_->bills->viewModel()->getColumnIndex(keys::SEName);
    const std::vector<proxy::Element*> both{o_->billsNamed("砌块墙").front(),
                                            o_->billsNamed("砖基础").front()};
    for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
      QSignalSpy sorted(o_->bills->model(), &QAbstractItemModel::layoutChanged);
      o_->bills->sortByColumn(name, order);
      QVERIFY(!sorted.isEmpty() || sorted.wait());
      o_->press(o_->bills, both, Qt::Key_Space);
      QCOMPARE(o_->entry(0).childCount(), 2);
      QVERIFY(o_->entry(0).billAt(0).bill.id() < o_->entry(0).billAt(1).bill.id());
      if (order == Qt::AscendingOrder) stack.undo();
    }
    step("associate");
    const Bill& first = o_->entry(0).billAt(0).bill;
    const Bill& second = o_->entry(0).billAt(1).bill;
    const Decimal quantity = first.quantityForCost() + second.quantityForCost();
    QCOMPARE(o_->entry(0).unit.str(), first.unit.str());
    QCOMPARE(o_->cell(0, keys::BRIAmount).data(Qt::EditRole).toDouble(), quantity.toDouble());
    const Decimal amount = (quantity * 260).rounded(2);
    QCOMPARE(o_->entry(0).amount().toString(), amount.toString());

    QVERIFY(o_->write(0, keys::BRIMeteringMethod, "总价包干"));
    step("metering");
    QCOMPARE(o_->entry(0).price.toString(), amount.toString());
    QVERIFY(o_->view->findChild<QLabel*>("DesSetSubcontract_note")->text().contains("总价包干"));
    stack.undo();
    --steps;
    QCOMPARE(o_->text(0, keys::BRIMeteringMethod), QString("按清单工程量"));

    o_->press(o_->table, {o_->table->elementAt(o_->cell(0, keys::BRIName))}, Qt::Key_D,
              Qt::ControlModifier);
    step("duplicate");
    QCOMPARE(o_->text(1, keys::BRIName), QString("墙体分包（副本）"));
    QCOMPARE(o_->entry(1).childCount(), 0);
    o_->press(o_->table, {o_->table->elementAt(o_->cell(1, keys::BRIName))}, Qt::Key_Up,
              Qt::ControlModifier);
    step("up");
    QCOMPARE(o_->entry(1).childCount(), 2);
    // A bill goes over from one entry to the other through the menu of the tree.
    o_->press(o_->tree, {o_->entry(1).child(0)}, Qt::Key_F2);
    emit o_->tree->customContextMenuRequested(QPoint(5, 5));
    auto* menu = o_->tree->findChild<QMenu*>("DesSetSubcontract_collectMenu");
    auto* targets = menu->findChild<QMenu*>();
    QCOMPARE(targets->actions().size(), 1);
    targets->actions().front()->trigger();
    menu->close();
    step("move over");
    QCOMPARE(o_->entry(0).childCount() * 10 + o_->entry(1).childCount(), 11);
    // What the other one has already is not moved, nor is what was chosen with it.
    const std::string apart = o_->project().dump();
    o_->table->setCurrentIndex(o_->cell(1, keys::BRIName));
    o_->press(o_->bills, {both.front(), both.back()}, Qt::Key_Space);
    step("associate both");
    o_->press(o_->tree, {o_->entry(1).child(0), o_->entry(1).child(1)}, Qt::Key_F2);
    emit o_->tree->customContextMenuRequested(QPoint(5, 5));
    menu = o_->tree->findChildren<QMenu*>("DesSetSubcontract_collectMenu").last();
    menu->findChild<QMenu*>()->actions().front()->trigger();
    menu->close();
    const QString told = o_->message();
    QVERIFY2(told.contains(QString::fromStdString(first.name.str())) && told.contains("副本"),
             qPrintable(told));
    QCOMPARE(o_->entry(0).childCount() * 10 + o_->entry(1).childCount(), 12);
    stack.undo();
    --steps;
    QCOMPARE(o_->project().dump(), apart);
    o_->press(o_->tree, {o_->entry(0).child(0)}, Qt::Key_Delete);
    step("take");
    QCOMPARE(o_->entry(0).childCount(), 0);

    o_->file.channel.answerNext(QMessageBox::No);
    o_->press(o_->table, {o_->table->elementAt(o_->cell(1, keys::BRIName))}, Qt::Key_Delete,
              Qt::ControlModifier);
    QVERIFY(o_->message().contains("关联了 1 条清单"));
    QCOMPARE(o_->project().subcontracts().size(), 2);
    o_->file.channel.answerNext(QMessageBox::Yes);
    o_->press(o_->table, {o_->table->elementAt(o_->cell(1, keys::BRIName))}, Qt::Key_Delete,
              Qt::ControlModifier);
    o_->message();
    step("remove");
    QCOMPARE(o_->table->model()->rowCount(), 1);
    const std::string after = o_->project().dump();
    while (stack.canUndo()) stack.undo();
    QCOMPARE(o_->project().dump(), before);
    QCOMPARE(o_->table->model()->rowCount(), 0);
    while (stack.canRedo()) stack.redo();
    QCOMPARE(o_->project().dump(), after);
  }

  void appliesToTheSameWorkElsewhere() {
    QUndoStack& stack = o_->session->undoStack();
    auto* view = o_->view->collectView();
    view->applyToOtherBills();
    QVERIFY(o_->message().contains("没有当前分包"));
    o_->press(o_->table, {}, Qt::Key_Insert);
    view->applyToOtherBills();
    QVERIFY(o_->message().contains("还没有清单"));
    o_->press(o_->bills, {o_->billsNamed("砌块墙").front()}, Qt::Key_Space);
    std::size_t same = 0;
    const Bill& wall = o_->entry(0).billAt(0).bill;
    const int code = o_->bills->viewModel()->getColumnIndex(keys::SECode);
    const int unit = o_->bills->viewModel()->getColumnIndex(keys::SEUnit);
    for (int row = 0; row < o_->bills->model()->rowCount(); ++row) {
      const auto text = [&](int column) {
        return o_->bills->model()->index(row, column).data().toString().toStdString();
      };
      same +=
          text(code).substr(0, 9) == wall.code.str().substr(0, 9) && text(unit) == wall.unit.str();
    }
    QVERIFY(same > 1);
    const int steps = stack.index();
    o_->file.channel.answerNext(QMessageBox::No);
    view->applyToOtherBills();
    QVERIFY(o_->message().contains(QString("找到 %1 条").arg(same - 1)));
    QCOMPARE(stack.index(), steps);
    o_->file.channel.answerNext(QMessageBox::Yes);
    view->applyToOtherBills();
    o_->message();
    QCOMPARE(stack.index(), steps + 1);
    QCOMPARE(std::size_t(o_->entry(0).childCount()), same);
    // The shares of the bills are the money of the entry, to the cent.
    const int column = o_->tree->viewModel()->getColumnIndex(keys::SECostTotalCost);
    QVERIFY(o_->write(0, keys::BRIExcludedTaxFee, "33.33"));
    Decimal sum;
    const QModelIndex top = o_->tree->model()->index(0, 0);
    for (int row = 0; row < o_->tree->model()->rowCount(top); ++row) {
      const QModelIndex share = o_->tree->model()->index(row, column, top);
      sum += *Decimal::fromDouble(share.data(Qt::EditRole).toDouble());
    }
    QCOMPARE(sum.toString(), o_->entry(0).amount().toString());
    view->applyToOtherBills();
    QVERIFY(o_->message().contains("没有与"));
  }

  void refusesWhatDoesNotFit_data() {
    const tests::Rows<std::string, QString, QString> row;
    row("unknown metering", keys::BRIMeteringMethod, "按面积", "请选择按清单工程量");
    row("unknown type", keys::BRIContractType, "总包合同", "请选择劳务外包合同");
    row("unknown account", keys::CostAccount, "没有的", "不存在；请从列表中选择");
    row("no date", keys::BRIPriceExpiryDate, "2026-02-30", "不是日期");
    row("empty name", keys::BRIName, "", "名称不能为空");
    row("long text", keys::SERemark, QString(501, QChar(0x7532)), "最多 500 个字");
    row("tax", keys::BRITaxRate, "101", "0 到 100");
    row("unit of its bills", keys::BRIUnit, "t", "单位");
  }
  void refusesWhatDoesNotFit() {
    const auto [key, text, complaint] = tests::fetch<std::string, QString, QString>();
    o_->press(o_->table, {}, Qt::Key_Insert);
    o_->press(o_->bills, {o_->billsNamed("砌块墙").front()}, Qt::Key_Space);
    const QString before = o_->text(0, key);
    QVERIFY(!o_->write(0, key, text));
    const QString told = o_->message();
    QVERIFY2(told.contains(complaint), qPrintable(told));
    QVERIFY2(told.contains("新增分包"), qPrintable(told));
    QCOMPARE(o_->text(0, key), before);
  }

  void readsWhatIsTyped() {
    o_->press(o_->table, {}, Qt::Key_Insert);
    QVERIFY(o_->write(0, keys::BRIPriceExpiryDate, "2020年3月1日"));
    QCOMPARE(o_->text(0, keys::BRIPriceExpiryDate), QString("2020-03-01"));
    QVERIFY(o_->cell(0, keys::BRIPriceExpiryDate).data(Qt::ForegroundRole).isValid());
    QCOMPARE(o_->cell(0, keys::BRIContractType).data(domain::ChoicesRole).toStringList(),
             (QStringList{"劳务外包合同", "清包合同", "专业分包合同", "采购合同", "租赁合同",
                          "<空白>"}));
    QVERIFY(o_->write(0, keys::BRIContractType, "租赁合同"));
    QVERIFY(o_->write(0, keys::BRIContractType, "<空白>"));
    QCOMPARE(o_->text(0, keys::BRIContractType), QString());
    QVERIFY(!(o_->cell(0, keys::BRIAmount).flags() & Qt::ItemIsEditable));
    QVERIFY(o_->write(0, keys::BRIMeteringMethod, "按实际数量"));
    QVERIFY(o_->write(0, keys::BRIAmount, "12.5"));
    QVERIFY(o_->write(0, keys::BRIExcludedTaxFee, "1.01"));
    QCOMPARE(o_->text(0, keys::BRIExcludedTaxTotalCost), QString("12.63"));
  }

  void keepsTheFileThatIsChosen() {
    o_->press(o_->table, {}, Qt::Key_Insert);
    const QString path = QFileInfo(o_->file.path()).absoluteFilePath();
    QTimer::singleShot(0, [&] {
      auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
      QVERIFY(dialog != nullptr);
      dialog->selectFile(path);
      QMetaObject::invokeMethod(dialog, "accept");
    });
    emit o_->table->customContextMenuRequested(QPoint(5, 5));
    auto* menu = o_->table->findChild<QMenu*>("DesSetSubcontract_tableMenu");
    const QList<QAction*> all = menu->actions();
    const auto choose = std::find_if(
        all.begin(), all.end(), [](const QAction* each) { return each->text() == "选择附件…"; });
    QVERIFY(choose != all.end());
    (*choose)->trigger();  // the dialog closes the menu
    QCOMPARE(o_->text(0, keys::BRIContractAttachment), path);
  }

  void namesWhatIsWrongWithABaseList_data() {
    const tests::Rows<QByteArray, QString> row;
    row("no JSON", "{\n\"条目\": [\n{,}]}", "第 3 行");
    row("no list", "{}", "“条目”缺失");
    row("no name", R"({"条目": [{"名称": "a"}, {"单位": "t"}]})", "“条目[2].名称”缺失");
    row("key", R"({"条目": [{"名称": "a", "单价": 3}]})", "“条目[1].单价”不是可用的键");
    row("number", R"({"条目": [{"名称": "a", "税率": "九"}]})", "“条目[1].税率”应为 0 到 100");
    row("type", R"({"条目": [{"名称": "a", "合同类型": "b"}]})", "请改为下列之一：劳务外包合同");
    row("metering", R"({"条目": [{"名称": "a", "计量方式": "b"}]})",
        "请改为下列之一：按清单工程量");
    row("right", R"({"条目": [{"名称": "a", "不含税单价": 3.5}]})", "");
  }
  void namesWhatIsWrongWithABaseList() {
    const auto [json, complaint] = tests::fetch<QByteArray, QString>();
    QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkpath("分包基础库"));
    QFile file(dir.filePath("分包基础库/分包基础库.json"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(json) > 0);
    file.close();
    QString problem;
    const auto list = services::loadSubcontractBase(dir.path(), &problem);
    QVERIFY2(complaint.isEmpty() ? problem.isEmpty() : problem.contains(complaint),
             qPrintable(problem));
    // The built-in list stands in for a broken one, and all of its accounts are the sample's.
    QCOMPARE(list.size() > 20, !complaint.isEmpty());
    for (const auto& entry : list) {
      QVERIFY(entry.account.empty() || o_->project().findAccount(entry.account) != nullptr);
    }
  }

  void survivesClosingWithAnEditorOpen() {
    o_->press(o_->table, {}, Qt::Key_Insert);
    QTest::keyClick(o_->table, Qt::Key_F2);
    QVERIFY(!o_->table->viewport()->findChildren<QLineEdit*>().isEmpty());
    QTest::keyClicks(o_->table->viewport()->findChildren<QLineEdit*>().front(), "abc");
    o_.reset();
  }

  // An entry with bills has become the current one, and its bills are still to be shown.
  void survivesClosingBeforeItHasCaughtUp() {
    o_->press(o_->table, {}, Qt::Key_Insert);
    o_->press(o_->bills, {o_->billsNamed("砌块墙").front()}, Qt::Key_Space);
    o_->press(o_->table, {}, Qt::Key_Insert);
    o_->view->billView()->associatedOnlyBox()->setChecked(true);
    QCOMPARE(o_->bills->model()->rowCount(), 0);
    o_->bills->sortByColumn(1, Qt::DescendingOrder);  // waits for its timer
    o_->table->setCurrentIndex(o_->cell(0, keys::BRIName));
    QTest::keyClick(o_->table, Qt::Key_F2);
    auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    QVERIFY(editor != nullptr);
    QTest::keyClicks(editor, "abc");
    o_.reset();
  }

 private:
  std::unique_ptr<Opened> o_;
};

QCE_WIDGET_TEST_MAIN(SubcontractOnProjectTest)
#include "tst_subcontract_on_project.moc"
