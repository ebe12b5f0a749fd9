#include <functional>
#include <set>

#include "host/bwidgets/tree_grid_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/view_model.h"
#include "pooling/res_item_bill_filter_model.h"
#include "pooling/res_item_bill_view.h"
#include "tests/support/rows.h"
#include "tests/workbench/project_fixture.h"
#include "tests/workbench/window_fixture.h"

namespace keys = domain::keys;
using costing::Decimal;
using gui::qce::QCEResItemBillViewImpl;

/// The pane below the resource-item page, as the program composes it, over a project file.
class TestResItemBillOnProject : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { shell::setUpApplication(*qApp); }
  void init() {
    f_ = std::make_unique<tests::WindowFixture>();
    open();
  }
  void cleanup() { f_.reset(); }

  void followsTheCurrentItemAtRest() {
    QCOMPARE(grid_->model()->rowCount(), lineCount(*item_));
    QVERIFY(title().contains(QString::fromStdString(item_->name().str())));
    QVERIFY(pane_->isShouldShow());

    const QSignalSpy resets(grid_->model(), &QAbstractItemModel::modelReset);
    const auto all = items();
    for (std::size_t i = 0; i < 12; ++i) pageGrid_->selectElements({all[i]});
    const records::ResourceItem* last = all[11];
    QTRY_VERIFY(title().contains(QString::fromStdString(last->code().str())));
    QCOMPARE(resets.size(), 1);
    QCOMPARE(grid_->model()->rowCount(), lineCount(*last));

    pageGrid_->selectElements({all[0]->group()});
    QTRY_VERIFY(!pane_->isShouldShow());
    QCOMPARE(grid_->model()->rowCount(), 0);
  }

  // Nothing is asked while the pane is hidden; its height comes back.
  void asksForNothingWhileItIsHidden() {
    auto* panes = qobject_cast<QSplitter*>(pane_->parentWidget()->parentWidget());
    panes->setSizes({300, 333});
    const int height = pane_->height();
    key(pageGrid_, Qt::Key_D, Qt::ControlModifier);
    QVERIFY(!pane_->isVisible());
    const auto all = items();
    const QSignalSpy resets(grid_->model(), &QAbstractItemModel::modelReset);
    pageGrid_->selectElements({all[5]});
    {
      app::ScopedUndo scope("系数");
      records::LineTerms terms = line(0).terms;
      terms.coefficient = Decimal(2);
      project().setTerms(*item_, *line(0).bill, terms);
    }
    QCOMPARE(resets.size(), 0);
    key(pageGrid_, Qt::Key_D, Qt::ControlModifier);
    QTRY_VERIFY(title().contains(QString::fromStdString(all[5]->code().str())));
    QCOMPARE(grid_->model()->rowCount(), lineCount(*all[5]));
    QCOMPARE(pane_->height(), height);
  }

  void keepsExpressionsOfItsCells() {
    type(0, keys::SEContent, "（1＋2）×0.5");
    QCOMPARE(text(0, keys::SEContent), QString("1.5"));
    type(0, keys::SEContent, "1.5");
    QCOMPARE(steps(), 1);  // the same content again is none
    type(0, keys::RIExcludedTaxFee, "100*1.03/3");
    QCOMPARE(terms(0).price->toString(), std::string("34.333333"));
    QCOMPARE(text(0, keys::RIExcludedTaxFee), QString("34.33"));
    QCOMPARE(cell(0, keys::RIExcludedTaxFee).data(Qt::EditRole).toString(), QString("100*1.03/3"));
    QCOMPARE(text(0, keys::RIExcludedTaxTotalCost),
             QString::fromStdString(line(0).excludedAmount.toString(2)));
    while (steps() > 0) undo();
    QCOMPARE(terms(0), records::LineTerms());
    QCOMPARE(text(0, keys::SECostAmount), text(0, keys::SEBudgetAmount));
  }

  // What cannot be is refused with the bill's name, and nothing becomes a step.
  void refusesInItsCells_data() {
    const tests::Rows<std::string, QString, QString> row;
    row("no content", keys::SEContent, "1.5*", "没有写完");
    row("column", keys::SEContent, "（2＋米）", "第 4 个字符“米”");
    row("negative content", keys::SEContent, "-1", "0 到 1,000,000,000");
    row("too exact", keys::SEContent, "0.1234567", "最多 6 位小数");
    row("zero", keys::SECoefficient, "0", "系数不能为零");
    row("large", keys::SECoefficient, "1000001", "1,000,000");
    row("by zero", keys::RIExcludedTaxFee, "12/0", "除数为零");
    row("negative price", keys::RIExcludedTaxFee, "-0.01", "0 到 1,000,000,000");
  }
  void refusesInItsCells() {
    const auto [key, typed, words] = tests::fetch<std::string, QString, QString>();
    const QString before = text(0, key);
    type(0, key, typed);
    QCOMPARE(messages().size(), std::size_t(1));
    const QString said = QString::fromStdString(messages()[0].text);
    QVERIFY2(said.contains(words) && said.contains(text(0, keys::SECode)), qPrintable(said));
    QCOMPARE(text(0, key), before);
    QCOMPARE(steps(), 0);
  }

  void setsCoefficientsOfABatch() {
    select(0, 2);
    type(1, keys::SECoefficient, "4");
    select(0, 2);
    inDialog([this] { click("批量系数"); },
             [](QDialog* dialog) { enter(dialog->findChild<QLineEdit*>(), "1.05"); });
    QCOMPARE(terms(0).coefficient.toString(), std::string("1.05"));
    QCOMPARE(terms(1).coefficient.toString(), std::string("4.2"));
    QCOMPARE(steps(), 2);
    QCOMPARE(stack().undoText(), QString("批量设置系数"));

    // Dividing takes it back.
    inDialog([this] { QTest::keyClick(grid_, Qt::Key_F6); },
             [](QDialog* dialog) {
               for (auto* option : dialog->findChildren<QRadioButton*>()) {
                 if (option->text() == "除以相同系数") option->click();
               }
               QTest::keyClicks(dialog->findChild<QLineEdit*>(), "1.05");
               press(dialog, "确定");
             });
    QCOMPARE(terms(0).coefficient, Decimal(1));
    QCOMPARE(terms(1).coefficient, Decimal(4));
    QCOMPARE(terms(2), records::LineTerms());
    inDialog([this] { click("批量系数"); }, [](QDialog* dialog) { press(dialog, "取消"); });
    QCOMPARE(steps(), 3);
  }

  // One row that cannot take it takes the whole batch back, and what was typed is asked again.
  void leavesNothingOfARefusedBatch() {
    type(1, keys::SECoefficient, "1000000");
    select(0, 2);
    int asked = 0;
    inDialog([this] { click("批量系数"); },
             [&asked](QDialog* dialog) {
               auto* edit = dialog->findChild<QLineEdit*>();
               auto* divides = dialog->findChildren<QRadioButton*>().last();
               if (asked++ > 0) {
                 QCOMPARE(edit->text(), QString("0.5"));
                 QVERIFY(divides->isChecked());
                 return dialog->reject();
               }
               divides->click();
               QTest::keyClicks(edit, "0.5");
               press(dialog, "确定");
             },
             2);
    QCOMPARE(messages().size(), std::size_t(1));
    QVERIFY(messages()[0].text.find(line(1).bill->code.str()) != std::string::npos);
    QVERIFY(messages()[0].text.find("已全部取消") != std::string::npos);
    QCOMPARE(terms(0), records::LineTerms());
    QCOMPARE(steps(), 1);

    asked = 0;
    inDialog([this] { click("批量含量"); },
             [&asked](QDialog* dialog) {
               auto* edit = dialog->findChild<QLineEdit*>();
               if (asked++ == 0) return enter(edit, "2*(3");
               QCOMPARE(edit->text(), QString("2*(3"));
               enter(edit, "2*3");
             },
             2);
    QCOMPARE(terms(0).content->toString(), std::string("6"));
    QCOMPARE(terms(1).content->toString(), std::string("6"));
    QCOMPARE(steps(), 2);
  }

  void setsContentsAndPricesOfABatch() {
    select(0, 1);
    inDialog([this] { QTest::keyClick(grid_, Qt::Key_F7); },
             [this](QDialog* dialog) {
               QCOMPARE(dialog->windowTitle(), QString("批量设置实际含量"));
               auto* edit = dialog->findChild<QLineEdit*>();
               QCOMPARE(edit->text(), text(0, keys::SEBudgetContent));
               enter(edit, "2.25");
             });
    inDialog([this] { QTest::keyClick(grid_, Qt::Key_F8); },
             [](QDialog* dialog) {
               QCOMPARE(dialog->windowTitle(), QString("批量设置分包不含税成本单价"));
               enter(dialog->findChild<QLineEdit*>(), "88.5");
             });
    for (int row : {0, 1}) {
      QCOMPARE(terms(row).content->toString(), std::string("2.25"));
      QCOMPARE(terms(row).price->toString(), std::string("88.5"));
    }
    inDialog([this] { menuAction("分包单价计算式"); },
             [](QDialog* dialog) { enter(dialog->findChild<QLineEdit*>(), "80+8"); });
    QCOMPARE(terms(1).priceExpression.str(), std::string("80+8"));
    QCOMPARE(steps(), 3);
    // An empty line takes both away.
    inDialog([this] { click("批量含量"); },
             [](QDialog* dialog) { enter(dialog->findChild<QLineEdit*>(), ""); });
    inDialog([this] { menuAction("分包单价计算式"); },
             [](QDialog* dialog) { enter(dialog->findChild<QLineEdit*>(), ""); });
    QCOMPARE(terms(0), records::LineTerms());
    QVERIFY(messages().empty());
  }

  void pastesCopiesAndClears() {
    QApplication::clipboard()->setText("1.25\t2\n2*0.7\t3\n");
    current(0, keys::SEContent);
    key(grid_, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(steps(), 1);
    QCOMPARE(terms(0).content->toString(), std::string("1.25"));
    QCOMPARE(terms(1).content->toString(), std::string("1.4"));
    QCOMPARE(terms(1).coefficient, Decimal(3));
    select(0, 1, keys::SEContent, keys::SECoefficient);
    menuAction("复制\tCtrl+C");
    QCOMPARE(QApplication::clipboard()->text(), QString("1.25\t2\n1.4\t3"));
    key(grid_, Qt::Key_Delete);
    QCOMPARE(terms(0), records::LineTerms());
    QCOMPARE(terms(1), records::LineTerms());
    QCOMPARE(steps(), 2);
    QVERIFY(messages().empty());
  }

  // 取消归集 leaves the bill its association and its terms, 取消关联 takes all; Delete on cells
  // that cannot be edited means the bills.
  void withdrawsAndDisassociates() {
    records::BudgetItem& budget = budgetIn(*line(0).bill);
    const Decimal before = project().remaining(budget);
    type(0, keys::SECoefficient, "2");
    const Decimal cost = line(0).costQuantity;
    records::BudgetItem* other = budgetElsewhere();
    {
      app::ScopedUndo scope("归集");
      project().pool(budget, *item_, before);
      project().pool(*other, *item_, project().remaining(*other));
    }
    auto* action = command("取消归集");
    current(1, keys::SEName);
    QTRY_VERIFY(!action->isEnabled());  // nothing is pooled from this one
    key(grid_, Qt::Key_Delete);
    QVERIFY(f_->message().contains("都没有关联"));
    current(0, keys::SEName);
    QTRY_VERIFY(action->isEnabled());
    click("取消归集");
    QCOMPARE(project().remaining(budget), before);
    QCOMPARE(line(0).costQuantity, cost);
    QCOMPARE(text(0, keys::BRIAssociation), QString("√"));
    QVERIFY(project().remaining(*other).isZero());  // of a bill that was not selected
    QTRY_VERIFY(!action->isEnabled());
    QCOMPARE(stack().undoText(), QString("取消归集"));
    undo();
    QVERIFY(project().remaining(budget).isZero());

    for (const int answer : {QMessageBox::No, QMessageBox::Yes}) {
      f_->channel->answerNext(answer);
      current(0, keys::SEName);
      key(grid_, Qt::Key_Delete);
      QVERIFY(f_->message().contains("数量将退回"));
      QCOMPARE(terms(0).associated, answer == QMessageBox::No);
    }
    QCOMPARE(project().remaining(budget), before);
    QCOMPARE(text(0, keys::BRIAssociation), QString());
    undo();
    QCOMPARE(text(0, keys::BRIAssociation), QString("√"));
  }

  // A line that comes or goes is a row that comes or goes, also by undo and redo.
  void followsBookings() {
    auto* other = budgetElsewhere();
    const int rows = grid_->model()->rowCount();
    const int lines = lineCount(*item_);
    QCOMPARE(rows, lines);
    {
      app::ScopedUndo scope("归集");
      project().pool(*other, *item_, project().remaining(*other));
    }
    QCOMPARE(grid_->model()->rowCount(), lineCount(*item_));
    QCOMPARE(grid_->model()->rowCount(), rows + 1);
    undo();
    QCOMPARE(grid_->model()->rowCount(), rows);
    stack().redo();
    QCOMPARE(grid_->model()->rowCount(), rows + 1);

    auto* only = pane_->findChild<QAbstractButton*>("ResItemBill_associatedOnly");
    QTest::mouseClick(only, Qt::LeftButton, {}, QPoint(8, only->height() / 2));
    QCOMPARE(grid_->model()->rowCount(), 1);
    undo();
    QCOMPARE(grid_->model()->rowCount(), 0);
  }

  // The summarised entry of a subcontract: the bill's price is what is paid, the unit is its own.
  void showsTheSubcontractTable() {
    records::Bill& bill = *line(0).bill;
    QCOMPARE(header(keys::BRIBillUnitPrice), QString("清单单价（元）"));
    {
      app::ScopedUndo scope("关联");
      project().associate(*item_, bill, true);
    }
    QCOMPARE(header(keys::BRIBillUnitPrice), QString("清单分包单价（元）"));
    constexpr Qt::ItemFlags editable = Qt::ItemIsEditable | Qt::ItemIsEnabled;
    QVERIFY((cell(0, keys::SEUnit).flags() & editable) == editable);
    QVERIFY(!(cell(0, keys::RIExcludedTaxFee).flags() & Qt::ItemIsEditable));
    QVERIFY(!(cell(1, keys::SEUnit).flags() & Qt::ItemIsEditable));
    QVERIFY(cell(1, keys::RIExcludedTaxFee).flags() & Qt::ItemIsEditable);
    type(0, keys::BRIBillUnitPrice, "(20+5)*2");
    type(0, keys::SEUnit, "项");
    QCOMPARE(terms(0).price->toString(), std::string("50"));
    QCOMPARE(text(0, keys::RIExcludedTaxFee), QString("50.00"));
    const QString dump = QString::fromStdString(project().dump());
    f_->window->closeProject();
    open();
    QCOMPARE(QString::fromStdString(project().dump()), dump);
    QCOMPARE(text(0, keys::SEUnit), QString("项"));
    QCOMPARE(header(keys::BRIBillUnitPrice), QString("清单分包单价（元）"));
  }

  void hidesColumnsAndGrowsRows() {
    pane_->hideBillViewColumn("no such column");
    pane_->showBillViewColumn("");
    menuAction("项目特征");
    const int column = cell(0, keys::SEProjFeatures).column();
    QVERIFY(grid_->isColumnHidden(column));
    pageGrid_->selectElements({items()[3]});
    QTRY_VERIFY(title().contains(QString::fromStdString(items()[3]->code().str())));
    QVERIFY(grid_->isColumnHidden(column));
    pane_->showBillViewColumn(keys::SEProjFeatures);
    QVERIFY(!grid_->isColumnHidden(column));

    const int plain = grid_->visualRect(cell(0, keys::SEName)).height();
    grid_->setColumnWidth(cell(0, keys::SEName).column(), 30);
    menuAction("行高适应内容");
    QVERIFY(pane_->isResize());
    QTRY_VERIFY(grid_->visualRect(cell(0, keys::SEName)).height() > 2 * plain);
    pane_->resizeRowsToContents(false);
    QTRY_COMPARE(grid_->visualRect(cell(0, keys::SEName)).height(), plain);
  }

 private:
  void open() {
    f_->open("resources");
    f_->window->resize(1500, 900);
    QWidget* page = f_->window->pages()->currentWidget();
    pane_ = page->findChild<QCEResItemBillViewImpl*>();
    grid_ = pane_->getTableView();
    tests::attachTester(qobject_cast<QSortFilterProxyModel*>(grid_->model())->sourceModel());
    tests::attachTester(grid_->model());
    pageGrid_ = page->findChild<bwidgets::TreeGridView*>();
    item_ = nullptr;
    for (records::ResourceItem* item : items()) {
      if (item_ == nullptr && lineCount(*item) >= 4) item_ = item;
    }
    QVERIFY(item_ != nullptr);
    pageGrid_->selectElements({item_});
    QTRY_COMPARE(grid_->model()->rowCount(), lineCount(*item_));
  }

  std::vector<records::ResourceItem*> items() { return tests::ProjectFixture::itemsOf(project()); }

  // Records.
  records::Project& project() { return f_->records(); }
  int lineCount(const records::ResourceItem& item) {
    return static_cast<int>(project().linesOf(item).size());
  }
  records::BillLine line(int row) { return project().linesOf(*item_).at(std::size_t(row)); }
  records::LineTerms terms(int row) { return line(row).terms; }
  /// A budget item of the bill that counts in the item shown.
  records::BudgetItem& budgetIn(const records::Bill& bill) {
    for (records::BudgetItem* budget : tests::ProjectFixture::below<records::BudgetItem>(bill)) {
      if (budget->resourceItem == item_) return *budget;
    }
    qFatal("the bill has no budget item of the item shown");
  }
  /// A budget item of the same unit work whose bill is not among the lines of the item shown.
  records::BudgetItem* budgetElsewhere() {
    std::set<const proxy::Element*> shown;
    for (const records::BillLine& line : project().linesOf(*item_)) shown.insert(line.bill);
    for (auto* budget :
         tests::ProjectFixture::below<records::BudgetItem>(*project().unitWorkOf(*item_))) {
      if (shown.count(budget->parent()) == 0) return budget;
    }
    return nullptr;
  }
  QUndoStack& stack() { return f_->stack(); }
  int steps() { return stack().index(); }
  void undo() { stack().undo(); }
  const std::vector<services::RecordingChannel::Message>& messages() const {
    return f_->channel->messages();
  }

  // The pane.
  QString title() const { return pane_->findChild<QLabel*>("ResItemBill_title")->text(); }
  QModelIndex cell(int row, const std::string& key) const {
    return grid_->model()->index(row, grid_->viewModel()->getColumnIndex(key));
  }
  QString text(int row, const std::string& key) const { return cell(row, key).data().toString(); }
  QString header(const std::string& key) const {
    return grid_->model()->headerData(cell(0, key).column(), Qt::Horizontal).toString();
  }
  void current(int row, const std::string& key) {
    grid_->setFocus();
    grid_->scrollTo(cell(row, key));
    grid_->selectionModel()->setCurrentIndex(cell(row, key), QItemSelectionModel::ClearAndSelect);
    QCoreApplication::processEvents();
  }
  void select(int first, int last, const std::string& from = keys::SECode,
              const std::string& to = keys::SEName) {
    current(first, from);
    grid_->selectionModel()->select(QItemSelection(cell(first, from), cell(last, to)),
                                    QItemSelectionModel::ClearAndSelect);
    QCoreApplication::processEvents();
  }
  void type(int row, const std::string& key, const QString& text) {
    f_->driver.clickCell(grid_, cell(row, key));
    f_->driver.edit(text);
  }
  static void key(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    widget->setFocus();
    QTest::keyClick(widget, key, modifiers);
    QCoreApplication::processEvents();
  }
  QAction* command(const QString& text) {
    for (auto* button : pane_->findChildren<QToolButton*>()) {
      if (button->text() == text) return button->defaultAction();
    }
    qFatal("no such command");
  }
  void click(const QString& text) {
    QVERIFY(command(text)->isEnabled());
    for (auto* button : pane_->findChildren<QToolButton*>()) {
      if (button->text() == text) QTest::mouseClick(button, Qt::LeftButton);
    }
    QCoreApplication::processEvents();
  }
  /// Triggers an entry of the context menu, or of a menu in it.
  void menuAction(const QString& text) {
    emit grid_->customContextMenuRequested(QPoint(60, 30));
    auto* menu = grid_->findChild<QMenu*>("ResItemBill_contextMenu");
    QVERIFY(menu != nullptr);
    QList<QAction*> actions = menu->actions();
    for (int i = 0; i < actions.size(); ++i) {
      if (actions[i]->menu() != nullptr) actions << actions[i]->menu()->actions();
      if (actions[i]->text() != text) continue;
      QVERIFY(actions[i]->isEnabled());
      menu->close();
      actions[i]->trigger();
      QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
      QCoreApplication::processEvents();
      return;
    }
    QFAIL(qPrintable("no entry " + text));
  }
  /// Runs `open`, which shows a dialog `times` times in a row, and `inside` in each.
  void inDialog(const std::function<void()>& open, const std::function<void(QDialog*)>& inside,
                int times = 1) {
    int shown = 0;
    QTimer poll;
    QDialog* last = nullptr;
    connect(&poll, &QTimer::timeout, &poll, [&] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      if (dialog == nullptr || dialog == last) return;
      last = ++shown < times ? nullptr : dialog;
      inside(dialog);
      if (dialog->isVisible()) dialog->reject();
    });
    poll.start(5);
    open();
    QTRY_COMPARE(shown, times);
    // Without a window manager, nobody hands the keyboard back.
    f_->window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(f_->window.get()));
    grid_->setFocus();
  }
  static void enter(QLineEdit* edit, const QString& text) {
    edit->selectAll();
    text.isEmpty() ? QTest::keyClick(edit, Qt::Key_Backspace) : QTest::keyClicks(edit, text);
    QTest::keyClick(edit, Qt::Key_Return);
  }
  static void press(QDialog* dialog, const QString& text) {
    for (auto* button : dialog->findChildren<QPushButton*>()) {
      if (button->text() == text) return QTest::mouseClick(button, Qt::LeftButton);
    }
  }

  std::unique_ptr<tests::WindowFixture> f_;
  QCEResItemBillViewImpl* pane_ = nullptr;
  bwidgets::TreeGridView* grid_ = nullptr;
  bwidgets::TreeGridView* pageGrid_ = nullptr;
  records::ResourceItem* item_ = nullptr;
};

QTEST_MAIN(TestResItemBillOnProject)
#include "tst_res_item_bill_on_project.moc"
