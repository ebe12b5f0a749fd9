#include <map>

#include "engineering/indirect_fee_left_model.h"
#include "engineering/indirect_fee_right_model.h"
#include "engineering/indirect_fee_view.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/domain/qce/indirect_fee_right_operator.h"
#include "host/gui/tree_grid_view.h"
#include "tests/support/recording_services.h"
#include "tests/support/rows.h"
#include "tests/support/test_elements.h"
#include "tests/support/test_main.h"
#include "tests/support/tester_proxy.h"

namespace keys = domain::keys;
using tests::Node;

namespace {

/// The items of each group, by its name.
class RightOperator : public tests::NodeHost<domain::qce::QCEIndirectFeeRightOperator> {
 public:
  proxy::ElementGroup* getRoot() override { return shown_; }
  bool isEditable(const proxy::Element*, const std::string& key) const override {
    return key == keys::IFCostRate;
  }
  void setParentElement(proxy::Element* group) override {
    asked.push_back(group);
    shown_ = group != nullptr ? &items[static_cast<Node*>(group)->name()] : nullptr;
  }

  std::map<std::string, tests::Tree> items;
  std::vector<proxy::Element*> asked;

 private:
  tests::Tree* shown_ = nullptr;
};

}  // namespace

class IndirectFeeTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    services_ = std::make_unique<tests::RecordingServices>();
    groups_ = std::make_unique<tests::NodeOperator>();
    items_ = std::make_unique<RightOperator>();
    leftTable_ = std::make_unique<domain::DisplayTable>();
    rightTable_ = std::make_unique<domain::DisplayTable>();
    left_ = std::make_unique<gui::qce::QCEIndirectFeeLeftModelImpl>();
    right_ = std::make_unique<gui::qce::QCEIndirectFeeRightModelImpl>();
    tests::attachTester(left_.get());
    tests::attachTester(right_.get());

    for (const char* name : {"间接费", "利润"}) group(groups_->tree.add(name));
    for (const char* name : {"管理费", "规费"}) group(groups_->tree.node(0)->add(name));
    leftTable_->getHeader()->addColumn(keys::IFName, tests::field(0, {}, false, "费用组"));
    for (int i = 0; i < 3; ++i) {
      Node* item = items_->items["管理费"].add("m" + std::to_string(i));
      item->set(keys::IFName, "第" + std::to_string(i) + "项费用，名称相当长")
          ->set(keys::IFCostAmount, i + 0.5);
    }
    items_->items["利润"].add("p")->set(keys::IFName, std::string("利润"));
    const std::pair<std::string, const char*> columns[] = {{keys::IFNumber, "序号"},
                                                           {keys::IFCode, "编码"},
                                                           {keys::IFName, "名称"},
                                                           {keys::IFBasis, "计算基数"},
                                                           {keys::IFBudgetBase, "基数（）"},
                                                           {keys::IFBudgetRate, "费率"},
                                                           {keys::IFBudgetAmount, "金额（）"},
                                                           {keys::IFCostExpression, "费"},
                                                           {keys::IFCostRate, "成本费率"},
                                                           {keys::IFCostAmount, "成本"},
                                                           {keys::IFDifference, ""}};
    for (const auto& [key, name] : columns) {
      const bool number = key == keys::IFCostRate || key == keys::IFCostAmount;
      rightTable_->getHeader()->addColumn(
          key,
          tests::field(number ? 3 : 0, number ? std::optional<int>(2) : std::nullopt, false, name));
    }
    left_->setDisplayTable(leftTable_.get());
    left_->setOperator(groups_.get());
    right_->setDisplayTable(rightTable_.get());
    right_->setOperator(items_.get());

    view_ = std::make_unique<gui::qce::QCEIndirectFeeViewImpl>();
    view_->setModel(right_.get());
    view_->setLeftModel(left_.get());
    view_->resize(1400, 500);
    view_->show();
    QVERIFY(QTest::qWaitForWindowExposed(view_.get()));
    view_->leftTree()->setCurrentIndex({});  // focus goes to the first group
  }

  void cleanup() {
    view_.reset();
    right_.reset();
    left_.reset();
    services_.reset();
  }

  void laysOutTwoPanes() {
    const auto* splitter = view_->findChild<QSplitter*>();
    QCOMPARE(splitter->orientation(), Qt::Horizontal);
    QCOMPARE(splitter->handleWidth(), 8);
    QCOMPARE(splitter->contentsMargins(), QMargins());
    QCOMPARE(splitter->widget(0), view_->findChild<QWidget*>("QCEIndirectFeeTreeView"));
    QCOMPARE(splitter->widget(1), view_->rightTable());
    QCOMPARE(splitter->widget(0)->sizePolicy().horizontalStretch(), 20);
    QCOMPARE(splitter->widget(1)->sizePolicy().horizontalStretch(), 80);
    QCOMPARE(splitter->geometry(), view_->rect());
    QVERIFY(view_->leftTree()->header()->stretchLastSection());
    QCOMPARE(view_->rightTable()->frozenColumnCount(), 3);
  }

  void onlyLeavesCanBeChosen() {
    view_->activate();
    QCOMPARE(current(), QString("管理费"));
    QVERIFY(!left_->flags(left_->index(0, 0)).testFlag(Qt::ItemIsEnabled));
    click("间接费");
    QCOMPARE(current(), QString("管理费"));
    QVERIFY(!view_->leftTree()->isExpanded(left_->index(0, 0)));
    click("间接费");
    QVERIFY(view_->leftTree()->isExpanded(left_->index(0, 0)));
    click("管理费");
    QTest::keyClick(view_->leftTree(), Qt::Key_Up);
    QCOMPARE(current(), QString("管理费"));
    click("利润");
    QCOMPARE(view_->rightTable()->model()->rowCount(), 1);
    view_->activate();  // what was chosen stays
    QCOMPARE(current(), QString("利润"));

    // Without leaves nothing is shown, and nobody is asked for the items of a group.
    const std::size_t before = items_->asked.size();
    groups_->tree.remove(1, 1, nullptr);
    groups_->tree.node(0)->node(0)->add("a")->add("b")->add("c");
    QCOMPARE(items_->asked.size(), before);
  }

  // Each column from the third on is as wide as its contents and 20 pixels.
  void sizesTheColumnsOfAGroup() {
    auto* table = view_->rightTable();
    table->setColumnWidth(0, 33);
    table->setColumnWidth(1, 44);
    view_->hideColumns({keys::IFBasis});
    click("管理费");
    QCOMPARE(table->columnWidth(0), 33);
    QCOMPARE(table->columnWidth(1), 44);
    QVERIFY(table->isColumnHidden(3));
    view_->hideColumns({keys::IFCode, "unknown"});
    QVERIFY(table->isColumnHidden(1) && !table->isColumnHidden(3));
    view_->hideColumns({});
    QVERIFY(!table->isColumnHidden(1));
    for (int column = 2; column < table->model()->columnCount(); ++column) {
      const int width = table->columnWidth(column);
      table->resizeColumnToContents(column);
      QCOMPARE(width, table->columnWidth(column) + 20);
    }
  }

  void headersCarryTheCaption_data() {
    const tests::Rows<int, QString, QString> row("section", "plain", "captioned");
    row("first without", 3, "计算基数", "计算基数");
    row("before the bracket", 4, "基数（）", "基数（管理费）");
    row("before the last character", 5, "费率", "费管理费率");
    row("one character", 7, "费", "管理费费");
    row("formatted", 8, "成本费率", "管理费 成本费率");
    row("empty", 10, "", "");
  }
  void headersCarryTheCaption() {
    QFETCH(int, section);
    QTEST(right_->headerData(section, Qt::Horizontal).toString(), "plain");
    int changes = 0;
    connect(right_.get(), &QAbstractItemModel::headerDataChanged, this, [&] { ++changes; });
    click("管理费");
    QTEST(right_->headerData(section, Qt::Horizontal).toString(), "captioned");
    QCOMPARE(changes, 1);
    QVERIFY(!right_->headerData(section, Qt::Horizontal, Qt::ToolTipRole).isValid());
    QVERIFY(!right_->headerData(section, Qt::Vertical).isValid());
  }

  void shortHeadersAreErrors() {
    for (const int section : {3, 9, 5}) rightTable_->getHeader()->column(section)->title = "ab";
    QCOMPARE(right_->headerData(3, Qt::Horizontal).toString(), QString("ab"));
    QCOMPARE(right_->headerData(9, Qt::Horizontal).toString(), QString("ab"));
    QVERIFY_EXCEPTION_THROWN(right_->headerData(5, Qt::Horizontal), std::out_of_range);
    rightTable_->getHeader()->column(5)->title = "";
    QCOMPARE(right_->headerData(5, Qt::Horizontal).toString(), QString());
  }

  void exportsUnderTheNameOfTheGroup() {
    gui::qce::QCEIndirectFeeViewImpl fresh;  // without models nothing happens
    fresh.setModel(nullptr);
    fresh.setLeftModel(nullptr);
    fresh.activate();
    fresh.hideColumns({keys::IFCode});
    QVERIFY(fresh.getRightTableSelectedElement().empty());
    view_->exportExcel();
    click("管理费");
    view_->actions().at(2)->trigger();
    QCOMPARE(services_->spreadsheets.names, (std::vector<std::string>{"间接费用", "管理费"}));
    const app::Sheet& sheet = services_->spreadsheets.saved.at(0);
    QCOMPARE(sheet.rows.size(), std::size_t(3));
    QVERIFY(sheet.totals.has_value());
    QCOMPARE(sheet.columns.at(4).title, std::string("基数（管理费）"));
  }

 private:
  static void group(Node* node) { node->set(keys::IFName, node->name()); }
  QString current() const { return view_->leftTree()->currentIndex().data().toString(); }
  void click(const QString& name) {
    auto* tree = view_->leftTree();
    const QModelIndexList found = left_->match(left_->index(0, 0), Qt::DisplayRole, name, 1,
                                               Qt::MatchExactly | Qt::MatchRecursive);
    QCOMPARE(found.size(), 1);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {},
                      tree->visualRect(found.front()).center());
  }

  std::unique_ptr<tests::RecordingServices> services_;
  std::unique_ptr<tests::NodeOperator> groups_;
  std::unique_ptr<RightOperator> items_;
  std::unique_ptr<domain::DisplayTable> leftTable_, rightTable_;
  std::unique_ptr<gui::qce::QCEIndirectFeeLeftModelImpl> left_;
  std::unique_ptr<gui::qce::QCEIndirectFeeRightModelImpl> right_;
  std::unique_ptr<gui::qce::QCEIndirectFeeViewImpl> view_;
};

QCE_WIDGET_TEST_MAIN(IndirectFeeTest)
#include "tst_indirect_fee.moc"
