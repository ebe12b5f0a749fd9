#include "engineering/filter_model.h"

#include <QtTest>
#include <functional>
#include <random>

#include "engineering/map_value.h"
#include "engineering/model.h"
#include "tests/support/fake_sub_engineering_operator.h"
#include "tests/support/rows.h"
#include "tests/support/tester_proxy.h"

namespace keys = domain::keys;
using Fake = tests::FakeSubEngineeringOperator;
using tests::Node;

namespace {

/// A model and its filter over an operator that the test fills.
struct Setup {
  Setup() : filter(&model) {
    tests::attachTester(&model);
    tests::attachTester(&filter);
  }
  void show() {
    model.setDisplayTable(&op.table);
    model.setOperator(&op);
  }
  void condition(const QStringList& words) {
    std::vector<std::string> texts;
    for (const QString& word : words) texts.push_back(word.toStdString());
    filter.setFilterField(texts);
    filter.setIsFilterByCondition(true);
  }
  QString shown() const { return QString::fromStdString(tests::treeText(filter)); }
  QStringList columns() const {
    QStringList found;
    for (int c = 0; c < filter.columnCount(); ++c) {
      found << QString::fromStdString(filter.getColumnName(c));
    }
    return found;
  }

  Fake op;
  gui::qce::QCESubEngineeringModelImpl model;
  gui::qce::QCESubEngineeringFilterModelImpl filter;
};

/// The rules once more, as they are told: nothing is remembered, nothing is taken for granted.
struct PlainRules {
  std::vector<std::string> words;
  bool children, sibling, showRes, byCondition;

  bool matches(const Node* row) const {
    const std::string* const order[] = {&keys::CostAccount, &keys::SECode, &keys::SEName,
                                        &keys::SEProjFeatures, &keys::SEUnit};
    for (std::size_t i = 0; i < words.size(); ++i) {
      const domain::Value* value = row->find(*order[i], domain::DisplayRole);
      const std::string text = value != nullptr ? std::get<std::string>(*value) : std::string();
      if (text.find(words[i]) == std::string::npos) return false;
    }
    return true;
  }
  bool accepts(const Node* row) const {
    if (!byCondition) return showRes || !Fake::has(row, "resource");
    if (matches(row)) return true;
    const auto* above = static_cast<const Node*>(row->parent());
    if (children) {
      for (const Node* at = above; at != nullptr; at = static_cast<const Node*>(at->parent())) {
        if (matches(at)) return true;
      }
    }
    for (int i = 0; sibling && above != nullptr && i < above->childCount(); ++i) {
      if (matches(above->node(i))) return true;
    }
    return false;
  }
  // What a tree shows: accepted rows, and rows above them.
  std::string text(const std::function<Node*(int)>& at, int count) const {
    std::string out;
    for (int i = 0; i < count; ++i) {
      const Node* row = at(i);
      const std::string below = text([row](int n) { return row->node(n); }, row->childCount());
      if (!accepts(row) && below.empty()) continue;
      if (!out.empty()) out += ' ';
      out += row->name();
      if (!below.empty()) out += '(' + below + ')';
    }
    return out;
  }
};

}  // namespace

class TestFilterModel : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    setup_ = std::make_unique<Setup>();
    Node* earth = setup_->op.node("A", "土方工程");
    dig_ = Fake::bill(earth, "0101", "挖基坑土方");
    dig_->set(keys::SEProjFeatures, std::string("三类土 深2m"))
        ->set(keys::CostAccount, std::string("人工费"));
    Fake::resource(dig_, "r1", "普工");
    Fake::resource(dig_, "r2", "挖掘机");
    fill_ = Fake::bill(earth, "0102", "回填");
    Fake::resource(fill_, "r3", "普工");
    Node* wall = setup_->op.node("B", "砌筑工程");
    Fake::bill(wall, "0201", "砖墙")->set(keys::SEUnit, std::string("M3"));
    setup_->show();
  }
  void cleanup() { setup_.reset(); }

  void findsWhatHoldsAllConditions_data() {
    const tests::Rows<QStringList, QString> row{"words", "rows"};
    row("all empty", QStringList{"", "", "", "", ""}, All);
    row("none given", QStringList{}, All);
    row("case counts", QStringList{"", "", "", "", "m3"}, "A(0101 0102)");
    row("bytes of a character", QStringList{"", "", QString("土方") + " ", "", ""}, "");
    row("no wildcard", QStringList{"", "0*1", "", "", ""}, "");
  }
  void findsWhatHoldsAllConditions() {
    QFETCH(QStringList, words);
    QFETCH(QString, rows);
    setup_->condition(words);
    QCOMPARE(setup_->shown(), rows);
    setup_->filter.setIsFilterByCondition(false);
    QCOMPARE(setup_->shown(), QString(All));
  }

  void narrowsToOneNode() {
    setup_->filter.setSubProject(fill_);
    QCOMPARE(setup_->shown(), QString("A(0102(r3))"));
    setup_->condition({"", "", "普工", "", ""});  // both must accept
    QCOMPARE(setup_->shown(), QString("A(0102(r3))"));
    setup_->filter.setSubProject(nullptr);
    QCOMPARE(setup_->shown(), QString("A(0101(r1) 0102(r3))"));
  }

  // An answer holds until a switch is set, whichever, to whatever value.
  void keepsItsAnswersUntilASwitchIsSet() {
    setup_->condition({"", "", "回填", "", ""});
    const auto rename = [this](const char* name) {
      const QModelIndex cell = setup_->model.makeIndex(fill_, 1);
      QVERIFY(setup_->model.setData(cell, QString(name)));
      setup_->filter.invalidate();
    };
    rename("平整");
    QCOMPARE(setup_->shown(), QString("A(0102)"));
    setup_->filter.setShowSibling(false);
    QCOMPARE(setup_->shown(), QString());
    rename("回填");
    QCOMPARE(setup_->shown(), QString());
    setup_->filter.setShowChildren(false);
    QCOMPARE(setup_->shown(), QString("A(0102)"));
    std::vector<std::string> other = {"", "0201"};
    setup_->filter.setFilterField(other);
    setup_->filter.invalidate();
    QCOMPARE(setup_->shown(), QString("A(0102)"));
    setup_->filter.setIsFilterByCondition(true);
    QCOMPARE(setup_->shown(), QString("B(0201)"));
  }

  void readsEachTextAboutOncePerPass() {
    Node* wide = setup_->op.node("W", "宽");
    for (int i = 0; i < 2000; ++i) Fake::bill(wide, "w" + std::to_string(i), "清单");
    setup_->model.setOperator(&setup_->op);
    setup_->filter.setShowChildren(true);
    setup_->filter.setShowSibling(true);
    setup_->op.reads = 0;
    setup_->condition({"", "", "没有", "", ""});
    QCOMPARE(setup_->shown(), QString());
    const int rows = 2000 + 9;
    QVERIFY2(setup_->op.reads <= 2 * rows + 100, qPrintable(QString::number(setup_->op.reads)));
  }

  void filtersTheBillsOfAnElement() {
    const auto codes = [this](proxy::Element* element) {
      QStringList found;
      for (proxy::Element* bill : setup_->filter.getFilterBills(element)) {
        found << QString::fromStdString(static_cast<Node*>(bill)->name());
      }
      return found.join(' ');
    };
    proxy::Element* earth = setup_->op.tree.node(0);
    QCOMPARE(codes(earth), QString("0101 0102"));
    QCOMPARE(codes(dig_->node(0)), QString("0101"));
    setup_->condition({"", "r3", "", "", ""});  // a bill stays for a row below it
    QCOMPARE(codes(earth), QString("0102"));
    QCOMPARE(codes(dig_->node(0)), QString());
  }

  void showsTheColumnsOfItsMap() {
    auto& filter = setup_->filter;
    const int all = setup_->model.columnCount({});
    QCOMPARE(filter.columnCount(), all - 1);  // the remark says that it is hidden
    QVERIFY(!setup_->columns().contains("SERemark"));
    filter.setFilterMap({{keys::SECode, true}, {keys::SEName, false}, {keys::SERemark, true}});
    QCOMPARE(setup_->columns(), QStringList({"QCE_SECode", "SERemark"}));
    filter.setFilterMap(filter.getFilterMap());
    QCOMPARE(filter.columnCount(), 2);
    filter.setFilterMap({});
    QCOMPARE(filter.columnCount(), all - 1);
    QVERIFY(!filter.filterAcceptsColumn(all));
    QVERIFY(!filter.filterAcceptsColumn(-1));
    try {
      gui::qce::mapValue(std::map<std::string, bool>(), std::string("key"));
      QFAIL("a key that is not there has a value");
    } catch (const std::out_of_range& error) {
      QCOMPARE(QString(error.what()), QString("invalid map<K, T> key"));
    }
  }

  void agreesWithThePlainRules_data() {
    const tests::Rows<unsigned> row{"seed"};
    for (unsigned seed = 1; seed <= 12; ++seed) row(qPrintable(QString::number(seed)), seed);
  }
  void agreesWithThePlainRules() {
    QFETCH(unsigned, seed);
    std::mt19937 random(seed);
    const auto pick = [&random](int below) {
      return static_cast<int>(random() % static_cast<unsigned>(below));
    };
    const auto word = [&pick](int length) {
      static const char* const letters[] = {"a", "b", "土", "方"};
      std::string text;
      while (length-- > 0) text += letters[pick(4)];
      return text;
    };
    Setup setup;
    std::vector<Node*> rows;
    int number = 0;
    for (int i = 0; i < 120; ++i) {
      const std::string code = std::to_string(number++) + word(2);
      Node* above =
          rows.empty() || pick(12) == 0 ? nullptr : rows[std::size_t(pick(int(rows.size())))];
      Node* row = above == nullptr ? setup.op.tree.add(code) : above->add(code);
      row->set(keys::SECode, code);
      for (const std::string* key :
           {&keys::CostAccount, &keys::SEName, &keys::SEProjFeatures, &keys::SEUnit}) {
        if (pick(5) > 0) row->set(*key, word(pick(5)));
      }
      if (pick(4) == 0) row->set("resource", true);
      rows.push_back(row);
    }
    setup.show();
    PlainRules rules{{"", "", "", "", ""}, false, false, true, false};
    for (int step = 0; step < 40; ++step) {
      switch (pick(5)) {
        case 0:
          setup.filter.setShowChildren(rules.children = pick(2) == 0);
          break;
        case 1:
          setup.filter.setShowSibling(rules.sibling = pick(2) == 0);
          break;
        case 2:
          setup.filter.setShowRes(rules.showRes = pick(2) == 0);
          break;
        case 3:
          setup.filter.setIsFilterByCondition(rules.byCondition = pick(4) > 0);
          break;
        default:
          for (std::string& text : rules.words) text = pick(2) == 0 ? word(1 + pick(2)) : "";
          setup.filter.setFilterField(rules.words);
          setup.filter.setIsFilterByCondition(rules.byCondition = true);
      }
      const std::string expected =
          rules.text([&setup](int n) { return setup.op.tree.node(n); }, setup.op.tree.size());
      QCOMPARE(setup.shown(), QString::fromStdString(expected));
    }
  }

 private:
  static constexpr const char* All = "A(0101(r1 r2) 0102(r3)) B(0201)";

  std::unique_ptr<Setup> setup_;
  Node* dig_ = nullptr;
  Node* fill_ = nullptr;
};

QTEST_MAIN(TestFilterModel)
#include "tst_filter_model.moc"
