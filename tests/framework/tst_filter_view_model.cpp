#include <QSignalSpy>
#include <random>

#include "framework/filter_view_model.h"
#include "tests/support/rows.h"
#include "tests/support/test_elements.h"
#include "tests/support/tester_proxy.h"

namespace {

using Source = gui::TViewModel<abst::BaseModel>;

class AnyFilter : public abst::BaseModel {
 public:
  using SourceModel = abst::BaseModel;
};

class Filter : public gui::TFilterViewModel<AnyFilter> {
 public:
  using TFilterViewModel::TFilterViewModel;
  std::string wanted;  // a row passes when its name contains this
  mutable int comparisons = 0;
  mutable int comparedReads = 0;  // cells read by the comparisons themselves

 protected:
  bool filterAcceptsRow(proxy::Element* element) const override {
    return static_cast<tests::Node*>(element)->name().find(wanted) != std::string::npos;
  }
  using TFilterViewModel::filterAcceptsRow;
  bool lessThan(const QModelIndex& left, const QModelIndex& right) const override {
    ++comparisons;
    const auto* op = static_cast<const tests::NodeOperator*>(getOperator());
    const int before = op->reads;
    const bool less = TFilterViewModel::lessThan(left, right);
    comparedReads += op->reads - before;
    return less;
  }
};

}  // namespace

class TestFilterViewModel : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    domain::DisplayRow* header = table_.getHeader();
    if (header->columnCount() == 0) {
      header->addColumn("name", tests::field(domain::StringField));
      header->addColumn("hidden", tests::field(domain::StringField)).visible = false;
      header->addColumn("amount", tests::field(domain::FloatingPointField, 2));
      header->addColumn("money", tests::field(domain::FloatingPointField, 2, true));
      header->addColumn("flag", tests::field(domain::BoolField));
      header->addColumn("odd", tests::field(9));
    }
    op_ = std::make_unique<tests::NodeOperator>();
    source_ = std::make_unique<Source>();
    source_->setDisplayTable(&table_);
    source_->setOperator(op_.get());
    filter_ = std::make_unique<Filter>(source_.get());
    tests::attachTester(source_.get());
    tests::attachTester(filter_.get());
  }
  void cleanup() {
    filter_.reset();
    source_.reset();
    base::SetLogSink({});
  }

  void keepsParentsOfMatchesAndNumbersRows() {
    rows({"甲", "乙", "丙x"});
    op_->tree.node(1)->add("子x")->set("name", std::string("子x"));
    filter_->wanted = "x";
    filter_->invalidate();
    QCOMPARE(tests::treeText(*filter_), std::string("乙(子x) 丙x"));
    QCOMPARE(filter_->headerData(1, Qt::Vertical).toInt(), 2);
    QCOMPARE(filter_->headerData(2, Qt::Vertical).toInt(), 3);
    const QModelIndex child = filter_->index(0, 0, filter_->index(0, 0));
    QCOMPARE(filter_->getInternalData(child), op_->tree.node(1)->child(0));
    QCOMPARE(filter_->makeIndex(op_->tree.node(1)->child(0), 0), child);
    QVERIFY(!filter_->makeIndex(op_->tree.node(0), 0).isValid());
  }

  void mapsColumnsAlsoWhileEmpty() {
    rows({"a"});
    QCOMPARE(filter_->columnCount(), 5);
    QCOMPARE(filter_->getColumnName(1), std::string("amount"));
    QCOMPARE(filter_->getColumnIndex("amount"), 1);
    QCOMPARE(filter_->getColumnIndex("hidden"), -1);
    filter_->setColumnWidth(1, 77);
    int width = 0;
    QVERIFY(source_->getColumnWidth(2, width) && width == 77);
    QVERIFY(filter_->getColumnWidth(1, width) && width == 77);

    filter_->wanted = "nothing";
    filter_->invalidate();
    QCOMPARE(filter_->rowCount(), 0);
    QCOMPARE(filter_->getColumnName(1), std::string());
    QCOMPARE(filter_->getColumnIndex("amount"), 1);
    QCOMPARE(filter_->getColumnIndex("hidden"), 0);  // accepted columns before it, minus 1
    QCOMPARE(filter_->getColumnIndex("unknown"), -1);
  }

  void sortsByTypeAsShown_data() {
    const tests::Rows<int, QString> row;
    row("pinyin", 0, "钢筋 混凝土 水泥 砖");
    row("number", 1, "混凝土 钢筋 砖 水泥");
    // 1,200.00 and 1,000.00 are no numbers to the comparison: both count as 0 and keep their order.
    row("separators", 2, "混凝土 水泥 砖 钢筋");
    row("flag", 3, "混凝土 砖 水泥 钢筋");
    row("unknown type keeps the order", 4, "混凝土 水泥 砖 钢筋");
  }
  void sortsByTypeAsShown() {
    const auto [column, ascending] = tests::fetch<int, QString>();
    materials();
    filter_->sort(column);
    waitForSort(*filter_);
    QCOMPARE(QString::fromStdString(op_->tree.text()), ascending);
    QCOMPARE(QString::fromStdString(tests::treeText(*filter_)), ascending);
  }

  void coalescesRequestsAndSortsDescendingStably() {
    materials();
    QStringList calls;
    filter_->connectLayoutAboutToBeChanged([&calls] { calls << "about"; });
    filter_->connectLayoutChanged([&calls] { calls << "done"; });
    filter_->sort(0);
    filter_->sort(3, Qt::DescendingOrder);
    QCOMPARE(op_->tree.text(), std::string("混凝土 水泥 砖 钢筋"));
    waitForSort(*filter_);
    QTest::qWait(Filter::SortDelay + 60);  // the first request does not come after it
    QCOMPARE(op_->tree.text(), std::string("水泥 钢筋 混凝土 砖"));
    QCOMPARE(calls, (QStringList{"about", "done"}));

    op_->hasRoot = false;
    source_->setOperator(op_.get());
    filter_->sort(0);
    QTest::qWait(Filter::SortDelay + 60);
    QCOMPARE(calls.size(), 2);
    filter_->sort(0);  // dies with the proxy
    filter_.reset();
    QTest::qWait(Filter::SortDelay + 60);
  }

  void readsEachCellOncePerSort() {
    std::mt19937 random(1);
    source_->setOperator(nullptr);
    for (int i = 0; i < 500; ++i) {
      op_->tree.add("n")->set("name", "n" + std::to_string(random() % 1000));
    }
    source_->setOperator(op_.get());
    filter_->comparisons = 0;
    filter_->comparedReads = 0;
    filter_->sort(0);
    waitForSort(*filter_);
    QVERIFY(filter_->comparisons > 2000);
    QCOMPARE(filter_->comparedReads, 500);
  }

  // The short way of a filter that names its reader leads to the order that lessThan gives.
  void ordersByCellsAsByPairs() {
    struct Keyed : Filter {
      using Filter::Filter;
      gui::SortInputs::Reader sortReader(int column) const override { return bridgeReader(column); }
    } keyed(source_.get());
    tests::attachTester(&keyed);
    std::mt19937 random(7);
    const QStringList names = {"钢",  "钢筋", "钢筋混凝土", "",   "abc",
                               "ABC", "水泥", "Ａ",         "10", "9"};
    source_->setOperator(nullptr);
    for (int i = 0; i < 60; ++i) {
      auto* row = op_->tree.add(std::to_string(i));
      row->set("name", names[int(random() % 10)].toStdString());
      row->set("amount", double(random() % 7) - 3)->set("money", double(random() % 3) * 700);
      row->set("flag", Qt::CheckStateRole, random() % 2 == 0);
      if (i % 20 == 0) {
        for (const char* child : {"b", "a", "b"}) row->add(child)->set("name", std::string(child));
      }
    }
    source_->setOperator(op_.get());
    const auto sorted = [this](Filter& filter, int column, Qt::SortOrder order) {
      source_->reorder({}, [](std::vector<proxy::Element*>& siblings) {
        std::sort(siblings.begin(), siblings.end(),
                  [](const auto* a, const auto* b) { return a->id() < b->id(); });
      });
      filter.sort(column, order);
      waitForSort(filter);
      return op_->tree.text();
    };
    for (int column = 0; column < 5; ++column) {
      for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
        const std::string byPairs = sorted(*filter_, column, order);
        keyed.comparisons = 0;
        QCOMPARE(sorted(keyed, column, order), byPairs);
        QVERIFY(column == 4 || keyed.comparisons == 0);
      }
    }
  }

  void passesTheAbstractModelOn() {
    rows({"a", "b"});
    QVERIFY(filter_->canMoveDown(op_->tree.node(0)) && !filter_->canMoveUp(op_->tree.node(0)));
    filter_->beginAddItem(nullptr, 1, nullptr);
    op_->tree.insert(2, "c", nullptr)->set("name", std::string("c"));
    filter_->endAddItem();
    filter_->beginDelItem(op_->tree.node(0), 1, nullptr);
    op_->tree.remove(0, 1, nullptr);
    filter_->endDelItem();
    filter_->beginMoveUpItem(op_->tree.node(1), nullptr);
    op_->tree.move(1, 0, nullptr);
    filter_->endMoveUpItem();
    QCOMPARE(tests::treeText(*filter_), std::string("c b"));
    filter_->beginMoveDownItem(op_->tree.node(0), nullptr);
    op_->tree.move(0, 1, nullptr);
    filter_->endMoveDownItem();
    QCOMPARE(tests::treeText(*filter_), std::string("b c"));
  }

  void comparesAsQtDoesWithoutADescriptor() {
    rows({"Ä", "Z", "a"});
    struct Nameless : Source {
      QVariant data(const QModelIndex& index, int role) const override {
        return role == domain::FieldKeyRole ? QVariant("gone") : Source::data(index, role);
      }
    } nameless;
    nameless.setDisplayTable(&table_);
    nameless.setOperator(op_.get());
    Filter filter(&nameless);
    tests::attachTester(&nameless);
    tests::attachTester(&filter);
    filter.sort(0);
    waitForSort(filter);
    QCOMPARE(QString::fromStdString(op_->tree.text()), QString("Z a Ä"));  // by code point
  }

  void rejectsARowWithoutElement() {
    rows({"a"});
    QStringList logged;
    base::SetLogSink([&logged](base::LogLevel, const std::string& text) {
      logged << QString::fromStdString(text);
    });
    struct Opened : Filter {
      using Filter::Filter;
      bool ask(int row) const { return TFilterViewModel::filterAcceptsRow(row, QModelIndex()); }
    } opened(source_.get());
    QVERIFY(opened.ask(0));
    QVERIFY(!opened.ask(5));
    QCOMPARE(logged, QStringList{"filterAcceptsRow: proxy::Element* ptr = NULLPTR"});
  }

 private:
  /// Until the sort that was asked for is done, however busy the machine is.
  static void waitForSort(const Filter& filter) {
    QSignalSpy sorted(filter.sourceModel(), &QAbstractItemModel::layoutChanged);
    QVERIFY(sorted.wait());
  }
  void rows(const QStringList& names) {
    source_->setOperator(nullptr);
    op_->tree.clear();
    for (const QString& name : names) {
      op_->tree.add(name.toStdString())->set("name", name.toStdString());
    }
    source_->setOperator(op_.get());
  }
  void materials() {
    rows({"混凝土", "水泥", "砖", "钢筋"});
    const double amounts[] = {9, 100, 10.5, 9.2};
    const double money[] = {1200, 1000, 0, 12};
    const bool flags[] = {false, true, false, true};
    for (int i = 0; i < 4; ++i) {
      op_->tree.node(i)->set("amount", amounts[i])->set("money", money[i]);
      op_->tree.node(i)->set("flag", Qt::CheckStateRole, flags[i]);
    }
  }

  domain::DisplayTable table_;
  std::unique_ptr<tests::NodeOperator> op_;
  std::unique_ptr<Source> source_;
  std::unique_ptr<Filter> filter_;
};

QTEST_MAIN(TestFilterViewModel)
#include "tst_filter_view_model.moc"
