#include "engineering/view.h"

#include "engineering/filter_model.h"
#include "engineering/model.h"
#include "framework/des_filter_view.h"
#include "host/bwidgets/search_box.h"
#include "host/domain/field_keys.h"
#include "host/gui/tree_grid_view.h"
#include "tests/support/recording_services.h"
#include "tests/support/test_main.h"
#include "tests/support/tester_proxy.h"
#include "tests/workbench/project_fixture.h"
#include "workbench/cli/driver.h"

namespace keys = domain::keys;
using gui::qce::destructors::DesFilterView;
using records::Bill;

namespace {

// Types as an input method does, which Chinese texts come from.
void input(QWidget* editor, const QString& text) {
  QInputMethodEvent event;
  event.setCommitString(text);
  QCoreApplication::sendEvent(editor, &event);
}

// The program's operator, with a bill that takes no writes.
class Operator : public operators::SubEngineeringOperator {
 public:
  using SubEngineeringOperator::SubEngineeringOperator;
  bool setValue(proxy::Element* row, const std::string& key, const domain::Value& value,
                int role) override {
    return row != refused && SubEngineeringOperator::setValue(row, key, value, role);
  }
  bool setQuantityDetail(proxy::Element* row, const domain::QuantityLines& lines) override {
    return row != refused && SubEngineeringOperator::setQuantityDetail(row, lines);
  }
  std::vector<std::pair<std::string, proxy::Element*>> getSubProjects() const override {
    auto all = SubEngineeringOperator::getSubProjects();
    if (lastGone) all.pop_back();
    return all;
  }
  const proxy::Element* refused = nullptr;
  bool lastGone = false;  ///< its last sub-project has been deleted
};

}  // namespace

/// The page of bills over the office building.
class TestView : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    fixture_ = std::make_unique<tests::ProjectFixture>();
    QVERIFY(fixture_->open() != nullptr);
    app::Services services = app::InstallServices({});
    services.spreadsheets = &spreadsheets_;
    app::InstallServices(services);
    opened().subEngineeringController().setChanged(
        [this](const std::vector<proxy::Element*>& bills) { changed_ = bills; });
    op_ = std::make_unique<Operator>(opened().project());
    model_ = std::make_unique<gui::qce::QCESubEngineeringModelImpl>();
    filter_ = std::make_unique<gui::qce::QCESubEngineeringFilterModelImpl>(model_.get());
    tests::attachTester(model_.get());
    tests::attachTester(filter_.get());
    model_->setDisplayTable(&opened().subEngineeringTable());
    model_->setOperator(op_.get());
    page_ = std::make_unique<gui::qce::QCESubEngineeringViewImpl>();
    page_->setModel(filter_.get());
    page_->resize(1400, 760);
    page_->show();
    page_->activate();
    QVERIFY(QTest::qWaitForWindowActive(page_.get()));
    grid_ = page_->findChild<gui::TreeGridView*>();
    panel_ = page_->findChild<DesFilterView*>();
    grid_->setFocus();
    bill_ = fixture_->bills().at(0);
    next_ = fixture_->bills().at(1);
    resource_ = bill_->child(0);
    QCOMPARE(next_->parent(), bill_->parent());
  }
  void cleanup() {
    page_.reset();
    filter_.reset();
    model_.reset();
    op_.reset();
    opened().subEngineeringController().setChanged({});
    fixture_.reset();
  }

  void startsUnfoldedWithItsNamesInPlaceAndItsSumsRight() {
    QVERIFY(grid_->isExpanded(cell(bill_->parent(), keys::SECode)));
    QVERIFY(!grid_->isExpanded(cell(bill_, keys::SECode)));
    QVERIFY(!panel_->isVisible());
    QVERIFY(status().endsWith("已选 0 行"));
    costing::Decimal budget;
    records::Project& project = opened().project();
    for (int row = 0; row < project.structure().size(); ++row) {
      const QModelIndex at = cell(project.structure().member(row), keys::SEBudgetTotalCost);
      budget += *costing::Decimal::fromDouble(at.data(Qt::EditRole).toDouble());
    }
    QCOMPARE(budget.toString(2), project.totals().budget.toString(2));
    QCOMPARE(text(bill_->parent(), keys::SEQuantity), QString());  // a node has none

    QCOMPARE(grid_->frozenColumnCount(), 2);
    grid_->setFrozenColumnCount(0);
    page_->updateColumnWidth();
    QCOMPARE(grid_->frozenColumnCount(), 2);
    gui::qce::QCESubEngineeringFilterModelImpl other(model_.get());
    other.setFilterMap({{keys::SEUnit, true}, {keys::SEName, true}, {keys::SECode, false}});
    page_->setModel(&other);
    QCOMPARE(grid_->frozenColumnCount(), 1);
    page_->setModel(filter_.get());
  }

  void filtersByThePanel() {
    condition("code", QString::fromStdString(bill_->code.str()));
    QVERIFY(shown(bill_) && !shown(resource_) && !shown(next_));
    driver_.click(panel_->showChildrenBox(), QPoint(5, 8));
    grid_->collapseAll();
    driver_.click(panel_->showSiblingBox(), QPoint(5, 8));
    QVERIFY(shown(resource_) && shown(next_) && !shown(next_->child(0)));
    QVERIFY(grid_->isExpanded(cell(bill_->parent(), keys::SECode)));
    QTRY_VERIFY(status().contains("（条件过滤中）"));
    // A row that no longer matches goes when the page is shown again.
    type(bill_, keys::SECode, "099999999999");
    QVERIFY(shown(bill_));
    page_->deactivate();
    page_->activate();
    QVERIFY(!shown(bill_));
    driver_.click(panel_->cancelButton());
    QVERIFY(shown(bill_));
    // 规格型号 is no condition of this page: its fourth box is for features.
    panel_->resetConditions();
    condition("feature", QString::fromStdString(bill_->features.str()).left(5));
    QVERIFY(shown(bill_));
  }

  void leavesAnotherModelAlone() {
    gui::qce::QCESubEngineeringViewImpl page;
    page.setModel(model_.get());  // no filter
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
    driver_.click(button("显示工料机"));
    QVERIFY(shown(bill_) && !shown(resource_));
    driver_.click(button("显示工料机"));
    QVERIFY(shown(resource_));

    auto* menu = page_->findChild<QMenu*>("SubEngineering_columns");
    emit menu->aboutToShow();
    QVERIFY(!menu->findChild<QCheckBox*>("column_QCE_SEName")->isEnabled());
    menu->findChild<QCheckBox*>("column_QCE_SEUnit")->click();
    QCOMPARE(filter_->getColumnIndex(keys::SEUnit), -1);
    QCOMPARE(grid_->frozenColumnCount(), 2);

    auto* range = page_->findChild<QComboBox*>("SubEngineering_subProject");
    QCOMPARE(range->itemText(0), QString("整个项目"));
    range->setFocus();
    driver_.key(Qt::Key_End);
    QVERIFY(!shown(bill_));
    const QString chosen = range->currentText();
    page_->activate();
    QCOMPARE(range->currentText(), chosen);
    op_->lastGone = true;
    page_->activate();
    QCOMPARE(range->currentIndex(), 0);
    QVERIFY(shown(bill_));
  }

  void editsByField() {
    type(bill_, keys::SECode, "０1 ０9");  // narrowed while it is typed
    QCOMPARE(text(bill_, keys::SECode), QString("0109"));
    type(bill_, keys::SEName, "挖 土");
    QCOMPARE(text(bill_, keys::SEName), QString("挖 土"));
    auto* name = edit<QLineEdit>(bill_, keys::SEName);
    QGuiApplication::clipboard()->setText("挖土\r\n回填");
    name->selectAll();
    name->paste();
    QTest::keyClick(name, Qt::Key_Return);
    QCoreApplication::processEvents();
    QCOMPARE(text(bill_, keys::SEName), QString("挖土 回填"));
    type(bill_, keys::SEName, "挖 土");
    type(bill_, keys::SEName, "  ");
    QVERIFY2(fixture_->message().contains("名称不能为空"), qPrintable(fixture_->message()));
    QCOMPARE(text(bill_, keys::SEName), QString("挖 土"));

    const QString before = text(bill_, keys::SEProjFeatures);
    auto* box = edit<QPlainTextEdit>(bill_, keys::SEProjFeatures);
    QCOMPARE(box->toPlainText(), before);
    QTest::keyClick(box, Qt::Key_End, Qt::ControlModifier);
    QTest::keyClick(box, Qt::Key_Return, Qt::AltModifier);
    QTest::keyClicks(box, "x");
    QTest::keyClick(box, Qt::Key_Return);
    QCoreApplication::processEvents();
    QCOMPARE(text(bill_, keys::SEProjFeatures), before + "\nx");

    auto* types = edit<QComboBox>(bill_, keys::SEType);
    QCOMPARE(types->count(), 5);
    input(types->lineEdit(), "专业分包");
    QTest::keyClick(types, Qt::Key_Return);
    QCoreApplication::processEvents();
    QCOMPARE(text(bill_, keys::SEType), QString("专业分包"));
    // An item of the budget is not the estimator's to change.
    QVERIFY(edit<QLineEdit>(resource_, keys::SEName) == nullptr);
    QVERIFY(!model_->setData(model_->makeIndex(resource_, 1), "x"));
    for (const auto& [key, value, words] :
         {std::tuple(keys::SEType, QString("没有的"), "没有类型“没有的”"),
          {keys::CostAccount, QString("没有的"), "没有的"},
          {keys::SERemark, QString(600, QChar(0x7532)), "备注过长"}}) {
      QVERIFY(!model_->setData(model_->makeIndex(bill_, model_->getColumnIndex(key)), value));
      QVERIFY2(fixture_->message().contains(words), qPrintable(fixture_->message()));
    }
  }

  void setsOneTypeForManyBills() {
    const QString type = text(bill_, keys::SEType);
    const auto choose = [&](QWidget* dialog) {
      auto* box = dialog->findChild<QComboBox*>("BatchType_type");
      box->setFocus();
      driver_.key(Qt::Key_Down);
      driver_.key(Qt::Key_Return);
      if (dialog->isVisible()) dialog->close();
    };
    grid_->selectElements({bill_, resource_, next_});
    QTRY_VERIFY(button("批量设置类型")->isEnabled());
    QVERIFY(driver_.withPopup([&] { driver_.click(button("批量设置类型")); }, choose));
    QCOMPARE(text(bill_, keys::SEType), QString("单价措施"));
    QCOMPARE(text(next_, keys::SEType), QString("单价措施"));
    QCOMPARE(stack().count(), 1);
    QCOMPARE(stack().undoText(), QString("批量设置类型"));
    stack().undo();

    op_->refused = next_;  // and so none is changed
    QVERIFY(driver_.withPopup([&] { page_->batchSetType(); }, choose));
    QCOMPARE(stack().index(), 0);
    QCOMPARE(text(bill_, keys::SEType), type);
    QVERIFY2(fixture_->message().startsWith(
                 QString("“%1”的类型不能修改").arg(text(next_, keys::SEName))),
             qPrintable(fixture_->message()));
    std::string chosen = "其他";
    QVERIFY(driver_.withPopup([&] { QVERIFY(!page_->popUpPLSetZBType(chosen)); },
                              [](QWidget* dialog) { static_cast<QDialog*>(dialog)->reject(); }));
    QCOMPARE(chosen, std::string("其他"));
  }

  void sumsTheLinesOfAQuantity() {
    current(resource_, keys::SEName);
    page_->showQuantityDetailDialog();
    QVERIFY(!page_->getQuantityDetailDialogState());  // no bill
    current(bill_, keys::SEQuantity);
    std::map<std::string, bool> fields;
    QVERIFY(!page_->useDetailCalc(fields));
    QCOMPARE(fields, (std::map<std::string, bool>{{keys::SEQuantity, false}}));
    QTRY_VERIFY(button("工程量明细")->isEnabled());
    driver_.click(button("工程量明细"));
    auto* dialog = page_->findChild<QDialog*>("QuantityDetailDialog");
    auto* table = dialog->findChild<QTableWidget*>();
    const auto type = [table](int row, int column, const QString& text) {
      table->setCurrentCell(row, column);
      table->editItem(table->item(row, column));
      auto* line = qobject_cast<QLineEdit*>(table->indexWidget(table->currentIndex()));
      QVERIFY(line != nullptr);
      line->selectAll();
      input(line, text);
      QTest::keyClick(line, Qt::Key_Return);
      QCoreApplication::processEvents();
    };
    type(0, 0, "A轴");
    type(0, 1, "10.5+2");
    driver_.click(dialog->findChild<QPushButton*>("QuantityDetail_add"));
    type(1, 1, "3*");
    auto* sum = dialog->findChild<QLabel*>("QuantityDetail_sum");
    QCOMPARE(sum->text(), QString("合计: 有计算式不能计算"));
    dialog->accept();
    QVERIFY2(fixture_->message().startsWith("第 2 行的计算式“3*”：计算式没有写完"),
             qPrintable(fixture_->message()));
    QVERIFY(page_->getQuantityDetailDialogState());
    type(1, 1, "建筑面积*0+4");
    QCOMPARE(sum->text(), "合计: 16.5 " + text(bill_, keys::SEUnit));
    op_->refused = bill_;
    dialog->accept();
    QVERIFY(page_->getQuantityDetailDialogState());  // refused: still open, nothing lost
    op_->refused = nullptr;
    dialog->accept();
    QVERIFY(!page_->getQuantityDetailDialogState());
    QCOMPARE(text(bill_, keys::SEQuantity), QString("16.5"));
    QCOMPARE(text(bill_, keys::SECalcExpr), QString("明细 2 行"));
    QCOMPARE(changed_, std::vector<proxy::Element*>{bill_});
    fields = {{keys::SEQuantity, false}, {keys::SEName, true}};
    QVERIFY(page_->useDetailCalc(fields));
    QCOMPARE(fields,
             (std::map<std::string, bool>{{keys::SEQuantity, true}, {keys::SEName, false}}));
    // Delete on the cell goes back to the tender quantity.
    current(bill_, keys::SECalcExpr);
    QTest::keyClick(grid_, Qt::Key_Delete);
    QCOMPARE(text(bill_, keys::SEQuantity), text(bill_, keys::SEQuantityBillTendering));
    QVERIFY(!page_->useDetailCalc(fields));
    this->type(bill_, keys::SEQuantity, "12.5");  // a quantity is its own calculation
    QCOMPARE(text(bill_, keys::SECalcExpr), QString("12.5"));
    QCOMPARE(text(bill_, keys::SEQuantity), QString("12.5"));
  }

  void goesOnFromTheCalculationThatIsThere() {
    type(bill_, keys::SECalcExpr, "工程量*2");
    current(bill_, keys::SECalcExpr);
    page_->showQuantityDetailDialog();
    auto* dialog = page_->findChild<QDialog*>("QuantityDetailDialog");
    QCOMPARE(dialog->findChild<QTableWidget*>()->item(0, 1)->text(), QString("工程量*2"));
    dialog->accept();  // nothing was changed
    QCOMPARE(text(bill_, keys::SECalcExpr), QString("工程量*2"));
  }

  void exportsUnderTheNameThatWasSet() {
    driver_.key(Qt::Key_E, Qt::ControlModifier);
    page_->setExportExcelName("清单表");
    driver_.click(button("导出Excel"));
    QCOMPARE(spreadsheets_.names, (std::vector<std::string>{"分部分项", "清单表"}));
    QCOMPARE(spreadsheets_.saved.front().frozenColumns, 2);
  }

  void goesToWhatWasFound() {
    grid_->collapseAll();
    QCOMPARE(page_->setCurrentIndexFromFind(resource_), resource_);
    QCOMPARE(grid_->currentElement(), resource_);
    filter_->setShowRes(false);
    QVERIFY(page_->setCurrentIndexFromFind(resource_) == nullptr);
    QVERIFY(page_->setCurrentIndexFromFind(nullptr) == nullptr);
    driver_.key(Qt::Key_F, Qt::ControlModifier);
    QVERIFY(grid_->searchBox()->isVisible());
    page_->deactivate();
    QVERIFY(!grid_->searchBox()->isVisible());
  }

 private:
  controllers::OpenProject& opened() { return *fixture_->opened(); }
  QUndoStack& stack() { return *opened().undo().stack(); }

  QModelIndex cell(proxy::Element* row, const std::string& key) const {
    return filter_->makeIndex(row, filter_->getColumnIndex(key));
  }
  bool shown(proxy::Element* row) const { return cell(row, keys::SECode).isValid(); }
  QString text(proxy::Element* row, const std::string& key) const {
    return cell(row, key).data().toString();
  }
  QString status() const { return page_->findChild<QLabel*>("SubEngineering_status")->text(); }
  void current(proxy::Element* row, const std::string& key) {
    grid_->selectionModel()->setCurrentIndex(cell(row, key), QItemSelectionModel::ClearAndSelect);
    QCoreApplication::processEvents();
  }
  template <class Editor>
  Editor* edit(proxy::Element* row, const std::string& key) {
    current(row, key);
    QTest::keyClick(grid_, Qt::Key_F2);
    for (auto* editor : grid_->viewport()->findChildren<Editor*>()) {
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
    QCoreApplication::processEvents();
  }
  QAbstractButton* button(const QString& text) const { return tests::button(page_.get(), text); }
  void condition(const char* box, const QString& text) {
    if (!panel_->isVisible()) driver_.click(button("条件过滤"));
    input(panel_->findChild<QLineEdit*>(box), text);
    driver_.click(panel_->startButton());
  }

  std::unique_ptr<tests::ProjectFixture> fixture_;
  tests::RecordingSpreadsheets spreadsheets_;
  std::vector<proxy::Element*> changed_;
  std::unique_ptr<Operator> op_;
  std::unique_ptr<gui::qce::QCESubEngineeringModelImpl> model_;
  std::unique_ptr<gui::qce::QCESubEngineeringFilterModelImpl> filter_;
  std::unique_ptr<gui::qce::QCESubEngineeringViewImpl> page_;
  cli::Driver driver_;
  gui::TreeGridView* grid_ = nullptr;
  DesFilterView* panel_ = nullptr;
  Bill *bill_ = nullptr, *next_ = nullptr;
  proxy::Element* resource_ = nullptr;
};

QCE_WIDGET_TEST_MAIN(TestView)
#include "tst_view.moc"
