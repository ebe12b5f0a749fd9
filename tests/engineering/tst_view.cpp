#include "engineering/view.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <QToolButton>
#include <QtTest>

#include "engineering/filter_model.h"
#include "engineering/model.h"
#include "framework/des_filter_view.h"
#include "host/bwidgets/search_box.h"
#include "host/gui/tree_grid_view.h"
#include "tests/support/fake_sub_engineering_operator.h"
#include "tests/support/recording_services.h"
#include "tests/support/test_main.h"
#include "tests/support/tester_proxy.h"

namespace keys = domain::keys;
using Fake = tests::FakeSubEngineeringOperator;
using gui::qce::destructors::DesFilterView;
using tests::Node;

namespace {

// Types as an input method does, which Chinese texts come from.
void input(QWidget* editor, const QString& text) {
  QInputMethodEvent event;
  event.setCommitString(text);
  QCoreApplication::sendEvent(editor, &event);
}

// A page over two nodes, as a host sets it up.
struct Setup {
  Setup() : filter(&model) {
    tests::attachTester(&model);
    tests::attachTester(&filter);
    earth = op.node("A", "土方工程");
    dig = Fake::bill(earth, "0101", "挖基坑土方", 126.0);
    dig->set(keys::SEProjFeatures, std::string("三类土\n深2m"));
    r1 = Fake::resource(dig, "r1", "普工");
    fill = Fake::bill(earth, "0102", "回填", 80.0);
    wall = op.node("B", "砌筑工程");
    brick = Fake::bill(wall, "0201", "砖墙");
    op.subProjects = {{"土方工程", earth}, {"砌筑工程", wall}};
    model.setDisplayTable(&op.table);
    model.setOperator(&op);
    page.setModel(&filter);
    page.resize(1000, 500);
    page.show();
    page.activate();
    grid = page.findChild<gui::TreeGridView*>();
    panel = page.findChild<DesFilterView*>();
    grid->setFocus();
    settle();
  }
  static void settle() { QCoreApplication::processEvents(); }

  QModelIndex cell(proxy::Element* row, const std::string& key) const {
    return filter.makeIndex(row, filter.getColumnIndex(key));
  }
  QString text(proxy::Element* row, const std::string& key) const {
    return cell(row, key).data().toString();
  }
  void current(proxy::Element* row, const std::string& key) {
    grid->selectionModel()->setCurrentIndex(cell(row, key), QItemSelectionModel::ClearAndSelect);
    settle();
  }
  template <class Editor>
  Editor* edit(proxy::Element* row, const std::string& key) {
    current(row, key);
    QTest::keyClick(grid, Qt::Key_F2);
    for (auto* editor : grid->viewport()->findChildren<Editor*>()) {
      if (editor->isVisible()) return editor;
    }
    return nullptr;
  }
  void type(proxy::Element* row, const std::string& key, const QString& text) {
    auto* line = edit<QLineEdit>(row, key);
    QVERIFY(line != nullptr);
    line->selectAll();
    input(line, text);
    QTest::keyClick(line, Qt::Key_Return);
    settle();
  }
  QToolButton* button(const QString& text) const {
    for (auto* found : page.findChildren<QToolButton*>()) {
      if (found->text() == text) return found;
    }
    return nullptr;
  }
  void condition(const char* box, const QString& text) {
    auto* edit = panel->findChild<QLineEdit*>(box);
    edit->clear();
    input(edit, text);
    QTest::mouseClick(panel->startButton(), Qt::LeftButton);
    settle();
  }
  QString shown() const { return QString::fromStdString(tests::treeText(filter)); }
  bool allExpanded(const QModelIndex& parent = {}) const {
    for (int row = 0; row < filter.rowCount(parent); ++row) {
      const QModelIndex index = filter.index(row, 0, parent);
      if (filter.hasChildren(index) && (!grid->isExpanded(index) || !allExpanded(index))) {
        return false;
      }
    }
    return true;
  }
  QString message() const {
    const auto& shown = services.channel.messages();
    return shown.size() == 1 ? QString::fromStdString(shown.front().text)
                             : QString("%1 messages").arg(shown.size());
  }

  tests::RecordingServices services;
  Fake op;
  gui::qce::QCESubEngineeringModelImpl model;
  gui::qce::QCESubEngineeringFilterModelImpl filter;
  gui::qce::QCESubEngineeringViewImpl page;
  gui::TreeGridView* grid = nullptr;
  DesFilterView* panel = nullptr;
  Node *earth, *dig, *r1, *fill, *wall, *brick;
};

// Works the dialog that opens next.
template <class Work>
void onDialog(Work work) {
  QTimer::singleShot(0, [work] {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    QVERIFY(dialog != nullptr);
    work(dialog);
  });
}

}  // namespace

class TestView : public QObject {
  Q_OBJECT

 private slots:
  void init() { s_ = std::make_unique<Setup>(); }
  void cleanup() { s_.reset(); }

  void startsWithTheBillsUnfoldedAndTheirNamesInPlace() {
    QVERIFY(s_->grid->isExpanded(s_->cell(s_->earth, keys::SECode)));
    QVERIFY(!s_->grid->isExpanded(s_->cell(s_->dig, keys::SECode)));
    QVERIFY(!s_->panel->isVisible());
    QCOMPARE(s_->page.findChild<QLabel*>("SubEngineering_status")->text(),
             QString("显示 6 行　　已选 0 行"));
    QCOMPARE(s_->grid->frozenColumnCount(), 2);
    s_->grid->setFrozenColumnCount(0);
    s_->page.updateColumnWidth();
    QCOMPARE(s_->grid->frozenColumnCount(), 2);
    gui::qce::QCESubEngineeringFilterModelImpl other(&s_->model);
    other.setFilterMap({{keys::SEUnit, true}, {keys::SEName, true}, {keys::SECode, false}});
    s_->page.setModel(&other);
    QCOMPARE(s_->grid->frozenColumnCount(), 1);
    s_->page.setModel(&s_->filter);
    QCOMPARE(s_->grid->frozenColumnCount(), 2);
  }

  void filtersByThePanel() {
    s_->condition("code", "0101");
    QTest::mouseClick(s_->panel->showChildrenBox(), Qt::LeftButton, {}, QPoint(5, 8));
    QCOMPARE(s_->shown(), QString("A(0101(r1))"));
    s_->grid->collapseAll();
    QTest::mouseClick(s_->panel->showSiblingBox(), Qt::LeftButton, {}, QPoint(5, 8));
    QCOMPARE(s_->shown(), QString("A(0101(r1) 0102)"));
    QVERIFY(s_->allExpanded());
    QTRY_VERIFY(s_->page.findChild<QLabel*>("SubEngineering_status")
                    ->text()
                    .startsWith("显示 4 行（条件过滤中）"));
    // A row that no longer matches goes when the page is shown again.
    s_->type(s_->dig, keys::SECode, "0999");
    QCOMPARE(s_->shown(), QString("A(0999(r1) 0102)"));
    s_->page.deactivate();
    s_->page.activate();
    QCOMPARE(s_->shown(), QString());
    s_->grid->collapseAll();
    QTest::mouseClick(s_->panel->cancelButton(), Qt::LeftButton);
    QCOMPARE(s_->shown(), QString("A(0999(r1) 0102) B(0201)"));
    QVERIFY(s_->allExpanded());
    // 规格型号 is no condition of this page: its fourth box is for features.
    s_->panel->resetConditions();
    s_->condition("feature", "深2m");
    QCOMPARE(s_->shown(), QString("A(0999(r1) 0102)"));
  }

  void leavesAnotherModelAlone() {
    gui::qce::QCESubEngineeringViewImpl page;
    page.setModel(&s_->model);  // no filter
    auto* panel = page.findChild<DesFilterView*>();
    panel->startButton()->click();
    panel->showSiblingBox()->click();
    panel->cancelButton()->click();
    page.showQuantityDetailDialog();
    QVERIFY(!page.getQuantityDetailDialogState());
    QCOMPARE(page.findChild<gui::TreeGridView*>()->frozenColumnCount(), 2);
    QVERIFY(gui::qce::QCESubEngineeringViewImpl().updateTreeHeader() == false);
  }

  void hidesResourcesAndColumnsAndOtherParts() {
    QTest::mouseClick(s_->button("显示工料机"), Qt::LeftButton);
    QCOMPARE(s_->shown(), QString("A(0101 0102) B(0201)"));
    QTest::mouseClick(s_->button("显示工料机"), Qt::LeftButton);
    QCOMPARE(s_->shown(), QString("A(0101(r1) 0102) B(0201)"));

    auto* menu = s_->page.findChild<QMenu*>("SubEngineering_columns");
    emit menu->aboutToShow();
    QVERIFY(!menu->findChild<QCheckBox*>("column_QCE_SEName")->isEnabled());
    menu->findChild<QCheckBox*>("column_QCE_SEUnit")->click();
    menu->findChild<QCheckBox*>("column_SERemark")->click();
    QCOMPARE(s_->filter.getColumnIndex(keys::SEUnit), -1);
    QVERIFY(s_->filter.getColumnIndex(keys::SERemark) > 0);
    QCOMPARE(s_->grid->frozenColumnCount(), 2);

    auto* range = s_->page.findChild<QComboBox*>("SubEngineering_subProject");
    range->setCurrentIndex(2);
    emit range->activated(2);
    QCOMPARE(s_->shown(), QString("B(0201)"));
  }

  void editsByField() {
    s_->type(s_->dig, keys::SECode, "０1 ０9");  // narrowed while it is typed
    QCOMPARE(s_->text(s_->dig, keys::SECode), QString("0109"));
    s_->type(s_->dig, keys::SEName, "挖 土");
    QCOMPARE(s_->text(s_->dig, keys::SEName), QString("挖 土"));

    auto* box = s_->edit<QPlainTextEdit>(s_->dig, keys::SEProjFeatures);
    QVERIFY(box != nullptr);
    QCOMPARE(box->toPlainText(), QString("三类土\n深2m"));
    QTest::keyClick(box, Qt::Key_End, Qt::ControlModifier);
    QTest::keyClick(box, Qt::Key_Return, Qt::AltModifier);
    QTest::keyClicks(box, "x");
    QTest::keyClick(box, Qt::Key_Return);
    Setup::settle();
    QCOMPARE(s_->text(s_->dig, keys::SEProjFeatures), QString("三类土\n深2m\nx"));

    auto* types = s_->edit<QComboBox>(s_->dig, keys::SEType);
    QVERIFY(types != nullptr);
    QCOMPARE(types->count(), 3);
    input(types->lineEdit(), "分包");
    QTest::keyClick(types, Qt::Key_Return);
    Setup::settle();
    QCOMPARE(s_->text(s_->dig, keys::SEType), QString("分包"));
    QVERIFY(s_->edit<QLineEdit>(s_->r1, keys::SEName) == nullptr);
  }

  void setsOneTypeForManyBills() {
    s_->grid->selectElements({s_->dig, s_->r1, s_->fill});
    s_->services.undo.steps.clear();
    const auto choose = [](QDialog* dialog) {
      auto* box = dialog->findChild<QComboBox*>("BatchType_type");
      QCOMPARE(box->currentText(), QString("实体"));
      QTest::keyClick(box, Qt::Key_Down);
      QTest::keyClick(dialog, Qt::Key_Return);
    };
    QTRY_VERIFY(s_->button("批量设置类型")->isEnabled());
    onDialog(choose);
    QTest::mouseClick(s_->button("批量设置类型"), Qt::LeftButton);
    QCOMPARE(s_->text(s_->dig, keys::SEType), QString("措施"));
    QCOMPARE(s_->text(s_->fill, keys::SEType), QString("措施"));
    QCOMPARE(s_->services.undo.steps, std::vector<std::string>{"批量设置类型"});

    s_->op.refused = s_->brick;
    s_->grid->selectElements({s_->brick});
    onDialog(choose);
    s_->page.batchSetType();
    QCOMPARE(s_->services.undo.steps.back(), std::string("批量设置类型!"));
    QVERIFY(s_->message().startsWith("“砖墙”的类型不能修改"));
    // Cancelled: nothing changes.
    std::string type = "分包";
    onDialog([](QDialog* dialog) { dialog->reject(); });
    QVERIFY(!s_->page.popUpPLSetZBType(type));
    QCOMPARE(type, std::string("分包"));
  }

  void sumsTheLinesOfAQuantity() {
    s_->current(s_->r1, keys::SEName);
    s_->page.showQuantityDetailDialog();
    QVERIFY(!s_->page.getQuantityDetailDialogState());  // no bill
    s_->current(s_->dig, keys::SEQuantity);
    std::map<std::string, bool> fields;
    QVERIFY(!s_->page.useDetailCalc(fields));
    QCOMPARE(fields, (std::map<std::string, bool>{{keys::SEQuantity, false}}));
    QTRY_VERIFY(s_->button("工程量明细")->isEnabled());
    QTest::mouseClick(s_->button("工程量明细"), Qt::LeftButton);
    QVERIFY(s_->page.getQuantityDetailDialogState());
    auto* dialog = s_->page.findChild<QDialog*>("QuantityDetailDialog");
    auto* table = dialog->findChild<QTableWidget*>();
    const auto type = [table](int row, int column, const QString& text) {
      table->setCurrentCell(row, column);
      table->editItem(table->item(row, column));
      auto* line = qobject_cast<QLineEdit*>(table->indexWidget(table->currentIndex()));
      QVERIFY(line != nullptr);
      line->selectAll();
      input(line, text);
      QTest::keyClick(line, Qt::Key_Return);
      Setup::settle();
    };
    type(0, 0, "A轴");
    type(0, 1, "10.5+2");
    QTest::mouseClick(dialog->findChild<QPushButton*>("QuantityDetail_add"), Qt::LeftButton);
    type(1, 1, "3*");
    auto* sum = dialog->findChild<QLabel*>("QuantityDetail_sum");
    QCOMPARE(sum->text(), QString("合计: 有计算式不能计算"));
    dialog->accept();
    QVERIFY(s_->message().startsWith("第 2 行的计算式“3*”：第 2 个字符"));
    QVERIFY(s_->page.getQuantityDetailDialogState());
    type(1, 1, "4");
    QCOMPARE(sum->text(), QString("合计: 16.5 m3"));
    s_->op.refused = s_->dig;
    dialog->accept();
    QVERIFY(s_->page.getQuantityDetailDialogState());  // refused: still open, nothing lost
    s_->op.refused = nullptr;
    dialog->accept();
    QVERIFY(!s_->page.getQuantityDetailDialogState());
    QCOMPARE(s_->op.detail.size(), std::size_t(2));
    QCOMPARE(s_->op.detail[0].remark, std::string("A轴"));
    QCOMPARE(s_->op.detail[1].expression, std::string("4"));
    fields = {{keys::SEQuantity, false}, {keys::SEName, true}};
    QVERIFY(s_->page.useDetailCalc(fields));
    QCOMPARE(fields,
             (std::map<std::string, bool>{{keys::SEQuantity, true}, {keys::SEName, false}}));
  }

  void exportsUnderTheNameThatWasSet() {
    QTest::keyClick(s_->grid, Qt::Key_E, Qt::ControlModifier);
    s_->page.setExportExcelName("清单表");
    QTest::mouseClick(s_->button("导出Excel"), Qt::LeftButton);
    const auto& saved = s_->services.spreadsheets;
    QCOMPARE(saved.names, (std::vector<std::string>{"分部分项", "清单表"}));
    QCOMPARE(saved.saved.front().rows.size(), std::size_t(6));
    QCOMPARE(saved.saved.front().frozenColumns, 2);
  }

  void goesToWhatWasFound() {
    s_->grid->collapseAll();
    QCOMPARE(s_->page.setCurrentIndexFromFind(s_->r1), s_->r1);
    QCOMPARE(s_->grid->currentElement(), s_->r1);
    s_->filter.setShowRes(false);
    QVERIFY(s_->page.setCurrentIndexFromFind(s_->r1) == nullptr);
    QVERIFY(s_->page.setCurrentIndexFromFind(nullptr) == nullptr);
    QTest::keyClick(s_->grid, Qt::Key_F, Qt::ControlModifier);
    QVERIFY(s_->grid->searchBox()->isVisible());
    s_->page.deactivate();
    QVERIFY(!s_->grid->searchBox()->isVisible());
  }

 private:
  std::unique_ptr<Setup> s_;
};

QCE_WIDGET_TEST_MAIN(TestView)
#include "tst_view.moc"
