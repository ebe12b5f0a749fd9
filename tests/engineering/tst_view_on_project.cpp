#include <QCheckBox>
#include <QClipboard>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QUndoStack>
#include <QtTest>

#include "engineering/filter_model.h"
#include "engineering/model.h"
#include "engineering/view.h"
#include "framework/des_filter_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/tree_grid_view.h"
#include "tests/support/test_main.h"
#include "tests/support/tester_proxy.h"
#include "tests/workbench/project_fixture.h"

namespace keys = domain::keys;
using records::Bill;

namespace {

/// The page over the office building.
struct Setup {
  Setup() : opened(*fixture.open()), filter(&model) {
    tests::attachTester(&model);
    tests::attachTester(&filter);
    model.setDisplayTable(&opened.subEngineeringTable());
    model.setOperator(&opened.subEngineeringOperator());
    opened.subEngineeringController().setChanged(
        [this](const std::vector<proxy::Element*>& bills) { changed = bills; });
    page.setModel(&filter);
    page.resize(1400, 760);
    page.show();
    page.activate();
    grid = page.findChild<gui::TreeGridView*>();
    proxy::Element* at = opened.project().unitWorks().front();
    while (dynamic_cast<Bill*>(at) == nullptr) at = at->child(0);
    bill = static_cast<Bill*>(at);
    settle();
  }
  ~Setup() { opened.subEngineeringController().setChanged({}); }
  static void settle() { QCoreApplication::processEvents(); }

  QModelIndex cell(proxy::Element* row, const std::string& key) const {
    return filter.makeIndex(row, filter.getColumnIndex(key));
  }
  QString text(proxy::Element* row, const std::string& key) const {
    return cell(row, key).data().toString();
  }
  QLineEdit* edit(proxy::Element* row, const std::string& key) {
    grid->selectionModel()->setCurrentIndex(cell(row, key), QItemSelectionModel::ClearAndSelect);
    QTest::keyClick(grid, Qt::Key_F2);
    for (auto* line : grid->viewport()->findChildren<QLineEdit*>()) {
      if (line->isVisible()) return line;
    }
    return nullptr;
  }
  void type(proxy::Element* row, const std::string& key, const QString& text) {
    QLineEdit* line = edit(row, key);
    QVERIFY(line != nullptr);
    line->selectAll();
    QInputMethodEvent typed;
    typed.setCommitString(text);
    QCoreApplication::sendEvent(line, &typed);
    QTest::keyClick(line, Qt::Key_Return);
    settle();
  }
  QString message() {
    const auto& all = fixture.channel.messages();
    return all.empty() ? QString() : QString::fromStdString(all.back().text);
  }
  void savePicture(const char* name) {
    const QByteArray folder = qgetenv("QCE_PICTURES");
    if (!folder.isEmpty()) page.grab().save(folder + "/" + name + ".png");
  }

  tests::ProjectFixture fixture;
  controllers::OpenProject& opened;
  gui::qce::QCESubEngineeringModelImpl model;
  gui::qce::QCESubEngineeringFilterModelImpl filter;
  gui::qce::QCESubEngineeringViewImpl page;
  gui::TreeGridView* grid = nullptr;
  Bill* bill = nullptr;
  std::vector<proxy::Element*> changed;
};

}  // namespace

class TestViewOnProject : public QObject {
  Q_OBJECT

 private slots:
  void init() { s_ = std::make_unique<Setup>(); }
  void cleanup() { s_.reset(); }

  void showsTheProjectWithItsSums() {
    const costing::Totals& totals = s_->opened.totals();
    costing::Decimal budget;
    for (int row = 0; row < s_->opened.project().structure().size(); ++row) {
      domain::Value value;
      QVERIFY(s_->opened.subEngineeringOperator().getValue(
          s_->opened.project().structure().member(row), keys::SEBudgetTotalCost, domain::EditRole,
          value));
      budget += costing::Decimal::fromDouble(std::get<double>(value)).value();
    }
    QCOMPARE(budget.toString(2), totals.budget.toString(2));
    QCOMPARE(s_->text(s_->bill->parent(), keys::SEQuantity), QString());  // a node has none
    QCOMPARE(s_->grid->frozenColumnCount(), 2);
    s_->savePicture("bills");
  }

  void changesTheCostByAnExpression() {
    const QString tender = s_->text(s_->bill, keys::SEQuantityBillTendering);
    const QString cost = s_->text(s_->bill, keys::SECostTotalCost);
    const QString budget = s_->text(s_->bill, keys::SEBudgetTotalCost);
    const costing::Decimal total = s_->opened.totals().excluded;

    s_->type(s_->bill, keys::SECalcExpr, "工程量*(2+");
    QVERIFY2(s_->message().contains("第 5 个字符的括号"), qPrintable(s_->message()));
    QCOMPARE(s_->text(s_->bill, keys::SEQuantity), tender);
    QLineEdit* again = s_->edit(s_->bill, keys::SECalcExpr);
    QCOMPARE(again->text(), QString("工程量*(2+"));  // what was refused is not lost
    QTest::keyClick(again, Qt::Key_Escape);

    s_->type(s_->bill, keys::SECalcExpr, "工程量*2");
    QVERIFY(s_->text(s_->bill, keys::SEQuantity) != tender);
    QCOMPARE(s_->text(s_->bill, keys::SEQuantityBillTendering), tender);
    QCOMPARE(s_->text(s_->bill, keys::SEBudgetTotalCost), budget);
    QVERIFY(s_->text(s_->bill, keys::SECostTotalCost) != cost);
    QVERIFY(s_->opened.totals().excluded > total);
    QCOMPARE(s_->changed, std::vector<proxy::Element*>{s_->bill});
    s_->savePicture("bills-quantity");

    s_->opened.undo().stack()->undo();
    QCOMPARE(s_->text(s_->bill, keys::SECostTotalCost), cost);
    QVERIFY(s_->opened.totals().excluded == total);
    QCOMPARE(s_->text(s_->bill, keys::SECalcExpr), QString());
  }

  void editsAndRefusesTexts() {
    s_->type(s_->bill, keys::SEName, "平整场地");
    QCOMPARE(s_->text(s_->bill, keys::SEName), QString("平整场地"));
    s_->type(s_->bill, keys::SEName, "  ");
    QVERIFY(s_->message().contains("名称不能为空"));
    QCOMPARE(s_->text(s_->bill, keys::SEName), QString("平整场地"));
    const auto write = [this](const std::string& key, const QString& text) {
      return s_->model.setData(s_->model.makeIndex(s_->bill, s_->model.getColumnIndex(key)), text);
    };
    QVERIFY(!write(keys::SEType, "没有的"));
    QVERIFY(s_->message().contains("没有类型“没有的”"));
    QVERIFY(write(keys::SEType, "专业分包"));
    QVERIFY(!write(keys::CostAccount, "没有的"));
    QVERIFY(write(keys::CostAccount,
                  QString::fromStdString(s_->opened.project().allAccounts().front()->label)));
    QVERIFY(!write(keys::SEQuantityBillTendering, "1"));
    QVERIFY(!write(keys::SERemark, QString(600, QChar(0x7532))));
    QVERIFY(s_->message().contains("备注过长"));
    // An item of the budget is not the estimator's to change.
    const QModelIndex below =
        s_->model.makeIndex(s_->bill->child(0), s_->model.getColumnIndex(keys::SEName));
    QVERIFY(!s_->model.setData(below, "x"));
    QVERIFY(!(below.flags() & Qt::ItemIsEditable));
    QCOMPARE(s_->cell(s_->bill, keys::SEType).data(domain::ChoicesRole).toStringList().size(), 5);
  }

  void takesLinesForAQuantity() {
    auto& op = s_->opened.subEngineeringOperator();
    QVERIFY(op.setQuantityDetail(s_->bill, {{"一层", "10*2"}, {"二层", "建筑面积*0"}}));
    QCOMPARE(s_->text(s_->bill, keys::SEQuantity), QString("20"));
    QCOMPARE(s_->text(s_->bill, keys::SECalcExpr), QString("明细 2 行"));
    domain::QuantityLines lines;
    QVERIFY(op.getQuantityDetail(s_->bill, lines));
    QCOMPARE(lines.size(), std::size_t(2));
    QVERIFY(!op.setQuantityDetail(s_->bill, {{"错", "3*"}}));
    QVERIFY(s_->message().contains("明细第 1 行"));
    // Delete on the cell goes back to the tender quantity.
    s_->grid->selectionModel()->setCurrentIndex(s_->cell(s_->bill, keys::SECalcExpr),
                                                QItemSelectionModel::ClearAndSelect);
    QTest::keyClick(s_->grid, Qt::Key_Delete);
    QCOMPARE(s_->text(s_->bill, keys::SEQuantity),
             s_->text(s_->bill, keys::SEQuantityBillTendering));
    QVERIFY(op.getQuantityDetail(s_->bill, lines) && lines.empty());
  }

  void goesOnFromTheCalculationThatIsThere() {
    const QModelIndex cell = s_->cell(s_->bill, keys::SECalcExpr);
    QVERIFY(s_->grid->model()->setData(cell, "工程量*2"));
    s_->grid->selectionModel()->setCurrentIndex(cell, QItemSelectionModel::ClearAndSelect);
    s_->page.showQuantityDetailDialog();
    auto* dialog = s_->page.findChild<QDialog*>("QuantityDetailDialog");
    auto* table = dialog->findChild<QTableWidget*>();
    QCOMPARE(table->rowCount(), 1);
    QCOMPARE(table->item(0, 1)->text(), QString("工程量*2"));
    dialog->accept();  // nothing was changed
    QCOMPARE(s_->text(s_->bill, keys::SECalcExpr), QString("工程量*2"));
  }

  void filtersByConditionsOnTheProject() {
    auto* panel = s_->page.findChild<gui::qce::destructors::DesFilterView*>();
    s_->page.filterByConditionView();
    s_->settle();
    auto* code = panel->findChild<QLineEdit*>("code");
    code->setText(QString::fromStdString(s_->bill->code.str()));
    QTest::mouseClick(panel->startButton(), Qt::LeftButton);
    QVERIFY(s_->cell(s_->bill, keys::SECode).isValid());
    QVERIFY(!s_->cell(s_->bill->child(0), keys::SECode).isValid());
    panel->showChildrenBox()->click();
    panel->showSiblingBox()->click();
    QVERIFY(s_->cell(s_->bill->child(0), keys::SECode).isValid());
    QVERIFY(s_->cell(s_->bill->parent()->child(1), keys::SECode).isValid());
    s_->settle();
    s_->savePicture("bills-filter");
  }

 private:
  std::unique_ptr<Setup> s_;
};

QCE_WIDGET_TEST_MAIN(TestViewOnProject)
#include "tst_view_on_project.moc"
