#include <QLineEdit>
#include <QtTest>

#include "engineering/filter_model.h"
#include "engineering/model.h"
#include "engineering/view.h"
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
    bill = fixture.bills().front();
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
  void type(proxy::Element* row, const std::string& key, const QString& text) {
    grid->selectionModel()->setCurrentIndex(cell(row, key), QItemSelectionModel::ClearAndSelect);
    QTest::keyClick(grid, Qt::Key_F2);
    auto* line = grid->viewport()->findChild<QLineEdit*>();
    QVERIFY(line != nullptr);
    line->selectAll();
    QInputMethodEvent typed;
    typed.setCommitString(text);
    QCoreApplication::sendEvent(line, &typed);
    QTest::keyClick(line, Qt::Key_Return);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    settle();
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
  }

  void editsAndRefusesTexts() {
    s_->type(s_->bill, keys::SEName, "平整场地");
    QCOMPARE(s_->text(s_->bill, keys::SEName), QString("平整场地"));
    s_->type(s_->bill, keys::SEName, "  ");
    QVERIFY(s_->fixture.message().contains("名称不能为空"));
    QCOMPARE(s_->text(s_->bill, keys::SEName), QString("平整场地"));
    const auto write = [this](const std::string& key, const QString& text) {
      return s_->model.setData(s_->model.makeIndex(s_->bill, s_->model.getColumnIndex(key)), text);
    };
    QVERIFY(!write(keys::SEType, "没有的"));
    QVERIFY(s_->fixture.message().contains("没有类型“没有的”"));
    QVERIFY(write(keys::SEType, "专业分包"));
    QVERIFY(!write(keys::CostAccount, "没有的"));
    QVERIFY(write(keys::CostAccount,
                  QString::fromStdString(s_->opened.project().allAccounts().front()->label)));
    QVERIFY(!write(keys::SEQuantityBillTendering, "1"));
    QVERIFY(!write(keys::SERemark, QString(600, QChar(0x7532))));
    QVERIFY(s_->fixture.message().contains("备注过长"));
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
    QCOMPARE(s_->changed, std::vector<proxy::Element*>{s_->bill});
    QCOMPARE(s_->text(s_->bill, keys::SECalcExpr), QString("明细 2 行"));
    domain::QuantityLines lines;
    QVERIFY(op.getQuantityDetail(s_->bill, lines));
    QCOMPARE(lines.size(), std::size_t(2));
    QVERIFY(!op.setQuantityDetail(s_->bill, {{"错", "3*"}}));
    QVERIFY(s_->fixture.message().contains("明细第 1 行"));
    // Delete on the cell goes back to the tender quantity.
    s_->grid->selectionModel()->setCurrentIndex(s_->cell(s_->bill, keys::SECalcExpr),
                                                QItemSelectionModel::ClearAndSelect);
    QTest::keyClick(s_->grid, Qt::Key_Delete);
    QCOMPARE(s_->text(s_->bill, keys::SEQuantity),
             s_->text(s_->bill, keys::SEQuantityBillTendering));
    QVERIFY(op.getQuantityDetail(s_->bill, lines) && lines.empty());
  }

 private:
  std::unique_ptr<Setup> s_;
};

QCE_WIDGET_TEST_MAIN(TestViewOnProject)
#include "tst_view_on_project.moc"
