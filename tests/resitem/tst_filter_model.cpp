#include "resitem/filter_model.h"

#include <QtTest>

#include "resitem/model.h"
#include "tests/support/chain.h"
#include "tests/support/fake_res_item_operator.h"
#include "tests/support/rows.h"

namespace keys = domain::keys;
using Fake = tests::FakeResItemOperator;

namespace {

// The row hook, asked as the proxy asks it.
class Filter : public gui::qce::QCEResItemFilterModelImpl {
 public:
  using QCEResItemFilterModelImpl::QCEResItemFilterModelImpl;
  bool accepts(proxy::Element* element) const { return isAcceptRow(element); }
};

}  // namespace

class TestFilterModel : public QObject, tests::Chain<Fake, gui::qce::QCEResItemModelImpl, Filter> {
  Q_OBJECT

 private slots:
  void init() {
    make();
    tests::Node* steel = op_->group("S");
    rebar_ = Fake::item(steel, "s1", "螺纹钢筋", 10.0);
    rebar_->set(keys::BRISpec, std::string("HRB400 φ12"))
        ->set(keys::CostAccount, std::string("材料费"))
        ->set(keys::BRIAssociation, std::string("√"))
        ->set(keys::BRIIsProvidedByJia, true);
    wire_ = Fake::item(steel, "s2", "ab wire", 9.0);
    wire_->set(keys::BRIAssociation, std::string("√ "))->set(keys::BRIProvisional, true);
    tests::Node* labour = op_->group("L");
    worker_ = Fake::item(labour, "l1", "综合用工", 100.0);
    worker_->set(keys::BRIUnit, std::string("工日"))
        ->set(keys::BRIAssociation, std::string("\xE2\x9C\x93"))
        ->set(keys::BRIPriceAdjustable, true);
    show();
  }

  void refusesValuesOfAnotherKind() {
    Filter filter(model_.get());  // nothing is mapped yet, so that only accepts() filters
    rebar_->set(keys::BRIProvisional, 1);
    op_->setFilterType(29);
    QVERIFY_EXCEPTION_THROWN(filter.accepts(rebar_), std::bad_variant_access);
    op_->setFilterType(0);
    filter.setShowAll(false);
    rebar_->set(keys::BRIAssociation, true);
    QVERIFY_EXCEPTION_THROWN(filter.accepts(rebar_), std::bad_variant_access);
    filter.setShowAll(true);
    rebar_->set(keys::BRICode, 7);
    std::vector<std::string> words = {"", "7"};
    filter.setFilterField(words);
    filter.setIsFilterByCondition(true);
    QVERIFY_EXCEPTION_THROWN(filter.accepts(rebar_), std::bad_variant_access);
    QVERIFY(filter.accepts(op_->tree.node(0)) == false);
  }

  void filtersByFlagAndAssociationMark() {
    for (const auto& [type, rows] : {std::pair(28, "S(s1)"), {29, "S(s2)"}, {30, "L(l1)"}}) {
      op_->setFilterType(27);
      filter_->invalidate();
      op_->setFilterType(type);
      QCOMPARE(shown(), QString("S(s1 s2) L(l1)"));  // nothing changes before the filter is told
      filter_->invalidate();
      QCOMPARE(shown(), QString(rows));
    }
    op_->setFilterType(27);
    filter_->setShowAll(false);
    filter_->setShowAssociation(true);
    filter_->invalidate();
    QCOMPARE(shown(), QString("S(s1)"));
    filter_->setShowAssociation(false);
    filter_->invalidate();
    // A blank behind the mark, and another check sign, are no marks.
    QCOMPARE(shown(), QString("S(s2) L(l1)"));
  }

  void filtersByConditions_data() {
    const tests::Rows<QStringList, QString> row;
    row("all empty", QStringList{"", "", "", "", ""}, "S(s1 s2) L(l1)");
    row("part of a name", QStringList{"", "", "钢", "", ""}, "S(s1)");
    row("case counts", QStringList{"", "", "Ab", "", ""}, "");
    row("as written", QStringList{"", "", "ab", "", ""}, "S(s2)");
    row("no wildcard", QStringList{"", "", "a*", "", ""}, "");
    row("fourth is spec", QStringList{"", "", "", "HRB", ""}, "S(s1)");
    row("all must match", QStringList{"", "s", "钢", "HRB4", "t"}, "S(s1)");
    row("one does not", QStringList{"", "s", "钢", "HRB4", "kg"}, "");
  }
  void filtersByConditions() {
    const auto [words, rows] = tests::fetch<QStringList, QString>();
    condition(words);
    QCOMPARE(shown(), rows);
    op_->setFilterType(29);  // both must accept
    filter_->setIsFilterByCondition(true);
    QCOMPARE(shown(), rows.contains("s2") ? QString("S(s2)") : QString());
    op_->setFilterType(0);
    filter_->setIsFilterByCondition(false);
    QCOMPARE(shown(), QString("S(s1 s2) L(l1)"));
  }

  void keepsAnswersUntilToldToForgetThem() {
    condition({"", "", "钢", "", ""});
    QCOMPARE(shown(), QString("S(s1)"));
    std::vector<std::string> words = {"", "", "用工", "", ""};
    const int reads = op_->fieldReads;
    filter_->setFilterField(words);
    QVERIFY(filter_->accepts(rebar_));
    QVERIFY(!filter_->accepts(worker_));
    // A reset of the source alone does not forget them either.
    filter_->rebuildGroup();
    QCOMPARE(shown(), QString("S(s1)"));
    QCOMPARE(op_->fieldReads, reads);
    filter_->invalidate();
    QCOMPARE(shown(), QString("L(l1)"));
    QVERIFY(!filter_->accepts(rebar_));
    words = {"", "", "wire", "", ""};
    filter_->setFilterField(words);
    filter_->setIsFilterByCondition(true);
    QCOMPARE(shown(), QString("S(s2)"));
  }

  // Answers go by element: one that the host drops must not lend its address to a new one.
  void doesNotTakeANewItemForAnOldOne() {
    tests::Node* group = op_->tree.node(1);
    condition({"", "", "钢", "", ""});
    for (int i = 0; i < 100; ++i) {
      model_->beginDelItem(group->node(0), 1, group);
      op_->tree.remove(0, 1, group);
      model_->endDelItem();
      tests::Node* added = Fake::item(group, "n", i % 2 == 0 ? "型钢" : "木材");
      model_->setOperator(op_.get());
      QCOMPARE(filter_->accepts(added), i % 2 == 0);
    }
  }

  void sortsQuantitiesAsNumbers() {
    wire_->set(keys::BRIAmount, domain::DisplayRole, std::string("none"));
    Fake::item(op_->tree.node(0), "s3", "x", 9.0);
    model_->setOperator(op_.get());
    sort(keys::BRIAmount, Qt::AscendingOrder);
    QCOMPARE(op_->tree.node(0)->node(1)->name(), std::string("s3"));  // 9 before 10
    QCOMPARE(op_->tree.node(0)->node(0)->name(), std::string("s2"));  // no number counts as 0
    sort(keys::BRICode, Qt::DescendingOrder);
    QCOMPARE(op_->tree.text(), std::string("S(s3 s2 s1) L(l1)"));
  }

  void forwardsToTheItemModel() {
    std::string comment;
    QVERIFY(filter_->setComment(rebar_, "询价"));
    QVERIFY(filter_->getComment(rebar_, comment));
    QCOMPARE(comment, std::string("询价"));
    filter_->setExcludeTaxPrice(rebar_, 5.0);
    QCOMPARE(std::get<double>(*rebar_->find(keys::BRIExcludedTaxFee, domain::EditRole)), 5.0);
    filter_->setSubProject(rebar_);
    filter_->rebuildGroup();
    QCOMPARE(op_->subProject, rebar_);
    QCOMPARE(op_->rebuilt, 1);
    QCOMPARE(filter_->getHeadName(4), keys::BRIAmount);

    gui::qce::QCEResItemFilterModelImpl orphan(nullptr);
    QCOMPARE(orphan.getHeadName(4), std::string());
    QVERIFY(!orphan.getComment(rebar_, comment));
    orphan.setSubProject(nullptr);
    orphan.invalidate();
  }

  void hidesColumnsOfABlackList() {
    const int columns = filter_->columnCount();
    filter_->blackListOfColumn({keys::BRISpec, keys::BRIUnit, "unknown"});
    QCOMPARE(filter_->columnCount(), columns - 2);
    QCOMPARE(filter_->getColumnIndex(keys::BRIAmount), 2);
    filter_->cleacColumnList();
    QCOMPARE(filter_->columnCount(), columns);
  }

 private:
  void condition(const QStringList& words) {
    std::vector<std::string> keywords;
    for (const QString& word : words) keywords.push_back(word.toStdString());
    filter_->setFilterField(keywords);
    filter_->setIsFilterByCondition(true);
  }
  void sort(const std::string& key, Qt::SortOrder order) {
    bool sorted = false;
    const auto connection = connect(filter_.get(), &QAbstractItemModel::layoutChanged, this,
                                    [&sorted] { sorted = true; });
    filter_->sort(filter_->getColumnIndex(key), order);
    QTRY_VERIFY(sorted);
    disconnect(connection);
    QCOMPARE(tests::treeText(*filter_), op_->tree.text());
  }

  tests::Node* rebar_ = nullptr;
  tests::Node* wire_ = nullptr;
  tests::Node* worker_ = nullptr;
};

QTEST_GUILESS_MAIN(TestFilterModel)
#include "tst_filter_model.moc"
