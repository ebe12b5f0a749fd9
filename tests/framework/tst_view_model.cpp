#include <QColor>
#include <QFont>
#include <QSignalSpy>

#include "framework/view_model.h"
#include "tests/support/recording_services.h"
#include "tests/support/rows.h"
#include "tests/support/test_elements.h"
#include "tests/support/tester_proxy.h"

namespace {

using Model = gui::TViewModel<abst::BaseModel>;

class StrictModel : public Model {
 public:
  using Model::Model;
  bool showValueOnFailToGetFloatValue(const std::string& key) const override {
    return key != "strict";
  }
};

class Shared : public base::Object {};

}  // namespace

class TestViewModel : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    op_ = std::make_unique<tests::NodeOperator>();
    table_ = std::make_unique<domain::DisplayTable>();
    model_ = std::make_unique<StrictModel>();
    domain::DisplayRow* header = table_->getHeader();
    header->addColumn("name", tests::field(domain::StringField));
    header->addColumn("price", tests::field(domain::FloatingPointField, 2));
    header->addColumn("count", tests::field(domain::IntegerField));
    header->addColumn("flag", tests::field(domain::BoolField));
    header->addColumn("odd", tests::field(7));
    header->addColumn({"bare", nullptr, {}, {}, {}, {}});
    header->column("name")->field->displayName = "名称";
    header->column("price")->title = "单价";
    model_->setDisplayTable(table_.get());
    model_->setOperator(op_.get());
    tests::attachTester(model_.get());
    app::InstallServices({&undo_, nullptr, nullptr, nullptr, nullptr});
    undo_.steps.clear();
  }
  void cleanup() {
    model_.reset();
    app::InstallServices({});
    base::SetLogSink({});
  }

  void answersStructureByElements() {
    op_->tree.clear();
    auto* a = op_->tree.add("a");
    auto* b = op_->tree.add("b");
    auto* c = b->add("c");
    const QModelIndex top = model_->index(1, 2);
    QCOMPARE(model_->index(0, 0, top).internalPointer(), static_cast<void*>(c));
    QCOMPARE(model_->parent(model_->index(0, 3, top)), model_->index(1, 0));
    QCOMPARE(model_->makeIndex(c, 4).row(), 0);
    QVERIFY(!model_->makeIndex(nullptr, 0).isValid());
    QVERIFY(model_->canMoveDown(a) && !model_->canMoveUp(a));
    QVERIFY(model_->canMoveUp(b) && !model_->canMoveDown(b));
    QVERIFY(!model_->canMoveUp(c) && !model_->canMoveUp(nullptr));
    op_->hasRoot = false;
    QCOMPARE(model_->rowCount(), 0);
    QVERIFY(!model_->parent(model_->makeIndex(c, 0)).isValid());
    op_->hasRoot = true;
  }

  void answersEmptyWithoutParts() {
    Model bare;
    tests::attachTester(&bare);
    QCOMPARE(bare.rowCount(), 0);
    QCOMPARE(bare.columnCount(), 0);
    QCOMPARE(bare.getColumnName(0), std::string());
    QCOMPARE(bare.getColumnIndex("name"), -1);
    QVERIFY(!bare.headerData(0, Qt::Horizontal, Qt::DisplayRole).isValid());
    QVERIFY(!bare.setData({}, 1));
    QCOMPARE(bare.flags({}), Qt::ItemFlags(Qt::ItemIsSelectable));
    int width = 5;
    QVERIFY(!bare.getColumnWidth(0, width));
    bare.setColumnWidth(0, 9);
    std::list<std::shared_ptr<gui::StGridHeadData>> groups;
    bare.getMultiHeaderData(groups);
    QVERIFY(groups.empty());
  }

  void describesColumns() {
    QCOMPARE(model_->headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(), QString("名称"));
    QCOMPARE(model_->headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(), QString("单价"));
    QVERIFY(!model_->headerData(0, Qt::Vertical, Qt::DisplayRole).isValid());
    QVERIFY(!model_->headerData(0, Qt::Horizontal, Qt::EditRole).isValid());
    QVERIFY(!model_->headerData(99, Qt::Horizontal, Qt::DisplayRole).isValid());
    op_->tree.clear();
    op_->tree.add("a");
    QCOMPARE(model_->index(0, 1).data(200).toString(), QString("price"));
    QCOMPARE(model_->index(0, 1).data(137).toInt(), 3);
    QCOMPARE(model_->index(0, 5).data(137).toInt(), 0);
    QCOMPARE(model_->data({}, 200), QVariant(QString()));
    int width = 0;
    QVERIFY(!model_->getColumnWidth(1, width));
    model_->setColumnWidth(1, 88);
    QVERIFY(model_->getColumnWidth(1, width));
    QCOMPARE(width, 88);

    table_->getHeader()->addHeaderGroup("g", "不含税", {"count", "price", "gone"});
    std::list<std::shared_ptr<gui::StGridHeadData>> groups;
    model_->getMultiHeaderData(groups);
    QCOMPARE(groups.size(), std::size_t(1));
    QCOMPARE(groups.front()->caption, std::string("不含税"));
    QCOMPARE(groups.front()->columnKeys, (std::vector<std::string>{"price", "count"}));
  }

  void formatsNumbers_data() {
    // precision: -1 absent
    // strip: -1 absent
    const tests::Rows<int, int, bool, double, QString> row;
    row("no precision, strip unset", -1, -1, false, 1.5, "1.500000");
    row("no precision, strip true", -1, 1, false, 1.50, "1.5");
    row("no precision, strip false strips too", -1, 0, false, 2.0, "2");
    row("precision", 2, -1, false, 1.005, "1.01");
    row("precision, strip false keeps", 2, 0, false, 1.5, "1.50");
    row("thousands", 2, -1, true, 1234567.891, "1,234,567.89");
    row("thousands, strip false does not strip", 2, 0, true, 1000.5, "1,000.50");
    // Six decimals first, then grouped without a precision of its own.
    row("thousands, no precision", -1, -1, true, 1234.12345678, "1,234.123457");
  }
  void formatsNumbers() {
    const auto [precision, strip, thousands, value, text] =
        tests::fetch<int, int, bool, double, QString>();
    domain::DataField f = tests::field(domain::FloatingPointField);
    if (precision >= 0) f.precision = precision;
    if (strip >= 0) f.stripTrailingZeros = strip == 1;
    f.thousandsSeparators = thousands;
    QCOMPARE(QString::fromStdString(model_->formatDouble(&f, value)), text);
    QCOMPARE(gui::numberText(f, value).toString(), text);
  }

  void showsZeroAndMissingAsConfigured() {
    auto* row = fresh();
    row->set("price", 0.0000004);
    QModelIndex price = model_->index(0, 1);
    QCOMPARE(price.data().toString(), QString("0.00"));
    table_->getHeader()->column("price")->field->zeroShowsEmpty = true;
    QVERIFY(!price.data().isValid());
    row->set("price", 0.000001);
    QCOMPARE(price.data().toString(), QString("0.00"));
    row->set("price", std::string("0"));
    QVERIFY(!price.data().isValid());
    row->set("price", std::string("面议"));
    QCOMPARE(price.data().toString(), QString("面议"));
    row->set("price", std::string("12.345"));
    QCOMPARE(price.data().toString(), QString("12.35"));

    fresh();
    price = model_->index(0, 1);
    QVERIFY(!price.data().isValid());
    table_->getHeader()->column("price")->zeroShowsEmpty = false;  // decides over the field
    QCOMPARE(price.data().toString(), QString("0.00"));
    QVERIFY(!price.data(Qt::EditRole).isValid());
    QVERIFY(!model_->index(0, 2).data().isValid());

    // A double is formatted in a field of any type, and shown as it is without a field.
    auto* odd = fresh();
    odd->set("count", 1.5)->set("name", 0.0)->set("bare", 0.1234567);
    QCOMPARE(model_->index(0, 2).data(), QVariant(QString("1.500000")));
    table_->getHeader()->column("name")->zeroShowsEmpty = true;
    QVERIFY(!model_->index(0, 0).data().isValid());
    QCOMPARE(model_->index(0, 5).data(), QVariant(0.1234567));
    odd->set("count", 0);  // an integer zero is no double
    table_->getHeader()->column("count")->zeroShowsEmpty = true;
    QCOMPARE(model_->index(0, 2).data(), QVariant(0));

    fresh();
    model_->setDisplayTable(nullptr);
    table_->getHeader()->addColumn("strict", tests::field(domain::FloatingPointField));
    table_->getHeader()->addColumn("loose", tests::field(domain::FloatingPointField));
    model_->setDisplayTable(table_.get());
    QVERIFY(!model_->index(0, 6).data().isValid());
    QCOMPARE(model_->index(0, 7).data().toString(), QString("0.000000"));
  }

  void convertsEveryAlternative() {
    QVERIFY(!model_->Visit({}).isValid());
    QCOMPARE(model_->Visit(true), QVariant(true));
    QCOMPARE(model_->Visit(7), QVariant(7));
    QCOMPARE(model_->Visit(1.5), QVariant(1.5));
    QCOMPARE(model_->Visit(std::string("钢")), QVariant(QString("钢")));
    QCOMPARE(model_->Visit(base::Color{1, 2, 3}).value<QColor>(), QColor(1, 2, 3, 255));
    const QFont bold = model_->Visit(base::Font{true, "Sans"}).value<QFont>();
    QCOMPARE(bold.weight(), 75);
    QCOMPARE(bold.family(), QString("Sans"));
    QCOMPARE(model_->Visit(base::Font{false, "Sans"}).value<QFont>().weight(), 50);
    QCOMPARE(model_->Visit(std::vector<std::string>{"a", "乙"}), QVariant(QStringList{"a", "乙"}));
    scoped_refptr<base::Object> object(new Shared);
    {
      const QVariant held = model_->Visit(object);
      QCOMPARE(object->referenceCount(), std::size_t(2));
      QCOMPARE(held.value<scoped_refptr<base::Object>>().get(), object.get());
    }
    QCOMPARE(object->referenceCount(), std::size_t(1));
    fresh()->set("odd", domain::Value(object));
    const std::size_t kept = object->referenceCount();
    QVERIFY(model_->index(0, 4).data().isValid());
    QCOMPARE(object->referenceCount(), kept);
  }

  void readsCheckStates() {
    auto* row = fresh();
    const QModelIndex flag = model_->index(0, 3);
    const std::vector<std::pair<domain::Value, int>> cases = {
        {true, 2}, {false, 0}, {1, 1}, {2, 2}, {5, 0}, {-1, 0}, {std::string("x"), 0}};
    for (const auto& [value, state] : cases) {
      row->set("flag", Qt::CheckStateRole, value);
      QCOMPARE(flag.data(Qt::CheckStateRole), QVariant(state));
    }
  }

  void givesFlagsAsTheOperatorSays() {
    fresh();
    const QModelIndex price = model_->index(0, 1);
    QCOMPARE(price.flags(), Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsEnabled);
    op_->readOnlyKey = op_->disabledKey = "price";
    QCOMPARE(price.flags(), Qt::ItemFlags(Qt::ItemIsSelectable));
    op_->checkableKey = "flag";
    QVERIFY(model_->index(0, 3).flags().testFlag(Qt::ItemIsUserCheckable));
    QVERIFY(model_->index(0, 3).flags().testFlag(Qt::ItemIsAutoTristate));
    QCOMPARE(model_->flags({}), Qt::ItemFlags(Qt::ItemIsSelectable));
  }

  void writesByFieldTypeInsideOneUndoScope() {
    fresh();
    QSignalSpy changed(model_.get(), &QAbstractItemModel::dataChanged);
    QVERIFY(model_->setData(model_->index(0, 1), "12.5"));
    QCOMPARE(std::get<double>(op_->lastWritten), 12.5);
    QCOMPARE(undo_.steps, std::vector<std::string>{""});
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed[0][2].value<QVector<int>>(), QVector<int>{Qt::EditRole});

    QVERIFY(model_->setData(model_->index(0, 2), "letters"));  // clears, does not fail
    QVERIFY(std::holds_alternative<std::monostate>(op_->lastWritten));
    QVERIFY(model_->setData(model_->index(0, 2), "42"));
    QCOMPARE(std::get<int>(op_->lastWritten), 42);
    QVERIFY(model_->setData(model_->index(0, 3), Qt::Checked, Qt::CheckStateRole));
    QCOMPARE(std::get<bool>(op_->lastWritten), true);
    QCOMPARE(op_->lastRole, int(Qt::CheckStateRole));
    QVERIFY(model_->setData(model_->index(0, 0), "螺纹钢"));
    QCOMPARE(std::get<std::string>(op_->lastWritten), std::string("螺纹钢"));

    changed.clear();
    undo_.steps.clear();
    op_->refuse = true;
    QVERIFY(!model_->setData(model_->index(0, 0), "x"));
    QCOMPARE(undo_.steps, std::vector<std::string>{""});
    op_->refuse = false;
    QStringList logged;
    base::SetLogSink([&logged](base::LogLevel, const std::string& text) {
      logged << QString::fromStdString(text);
    });
    QVERIFY(!model_->setData(model_->index(0, 4), "x"));
    QCOMPARE(logged, QStringList{"Failed to Variant translaotr "});
    QVERIFY(!model_->setData(model_->index(0, 5), "x"));
    QCOMPARE(changed.size(), 0);
  }

  void announcesRowChanges() {
    op_->tree.clear();
    for (int i = 0; i < 10; ++i)
      op_->tree.add(std::string(1, char('a' + i)))->set("name", std::string(1, char('a' + i)));
    model_->setOperator(op_.get());
    QStringList log;
    const auto note = [&log](const char* what) {
      return [&log, what](const QModelIndex& parent, int first, int last) {
        log << QString("%1 %2 %3-%4").arg(what).arg(parent.isValid()).arg(first).arg(last);
      };
    };
    connect(model_.get(), &QAbstractItemModel::rowsAboutToBeInserted, this, note("+"));
    connect(model_.get(), &QAbstractItemModel::rowsAboutToBeRemoved, this, note("-"));
    connect(model_.get(), &QAbstractItemModel::rowsAboutToBeMoved, this,
            [&log](const QModelIndex&, int first, int last, const QModelIndex&, int to) {
              log << QString("> %1-%2 %3").arg(first).arg(last).arg(to);
            });

    model_->beginAddItem(nullptr, 3, nullptr);
    for (const char* name : {"k", "l", "m"}) op_->tree.insert(op_->tree.size(), name, nullptr);
    model_->endAddItem();
    auto* c = op_->tree.node(2);
    model_->beginAddItem(c, 1, nullptr);
    op_->tree.insert(2, "x", nullptr);
    model_->endAddItem();
    model_->beginAddItem(nullptr, 1, c);
    op_->tree.insert(0, "c1", c);
    model_->endAddItem();
    model_->beginDelItem(op_->tree.node(0), 2, nullptr);
    op_->tree.remove(0, 2, nullptr);
    model_->endDelItem();
    model_->beginMoveUpItem(c, nullptr);
    op_->tree.move(1, 0, nullptr);
    model_->endMoveUpItem();
    const QPersistentModelIndex kept(model_->makeIndex(c, 1));
    model_->beginMoveDownItem(c, nullptr);
    op_->tree.move(0, 1, nullptr);
    model_->endMoveDownItem();
    QCOMPARE(kept.row(), 1);
    QCOMPARE(kept.internalPointer(), static_cast<void*>(c));
    QCOMPARE(log,
             (QStringList{"+ 0 10-12", "+ 0 2-2", "+ 1 0-0", "- 0 0-1", "> 1-1 0", "> 1-1 0"}));
    QCOMPARE(op_->tree.text(), std::string("x c(c1) d e f g h i j k l m"));

    // Changes that are none: nothing is announced, nothing is ended.
    log.clear();
    base::SetLogSink([](base::LogLevel, const std::string&) {});
    model_->beginMoveUpItem(op_->tree.node(0), nullptr);
    model_->endMoveUpItem();
    model_->beginMoveDownItem(op_->tree.node(op_->tree.size() - 1), nullptr);
    model_->endMoveDownItem();
    model_->beginAddItem(nullptr, 0, nullptr);
    model_->endAddItem();
    model_->endDelItem();
    QCOMPARE(log, QStringList());

    // Of two changes that run into each other the first is told.
    auto* first = op_->tree.node(0);
    model_->beginDelItem(first, 1, nullptr);
    model_->beginMoveDownItem(first, nullptr);
    model_->endMoveDownItem();
    op_->tree.remove(0, 1, nullptr);
    model_->endDelItem();
    QCOMPARE(log, QStringList{"- 0 0-0"});
    QCOMPARE(model_->rowCount(), op_->tree.size());

    // An end that never comes is forgotten with the next reset.
    model_->beginDelItem(op_->tree.node(0), 1, nullptr);
    model_->setOperator(op_.get());
    log.clear();
    model_->beginDelItem(op_->tree.node(0), 1, nullptr);
    op_->tree.remove(0, 1, nullptr);
    model_->endDelItem();
    QCOMPARE(log, QStringList{"- 0 0-0"});
  }

 private:
  tests::Node* fresh() {
    model_->setOperator(nullptr);
    op_->tree.clear();
    auto* row = op_->tree.add("row");
    model_->setOperator(op_.get());
    return row;
  }

  tests::RecordingUndo undo_;
  std::unique_ptr<tests::NodeOperator> op_;
  std::unique_ptr<domain::DisplayTable> table_;
  std::unique_ptr<StrictModel> model_;
};

QTEST_MAIN(TestViewModel)
#include "tst_view_model.moc"
