#include "workbench/operators/notional_pooling_operator.h"

#include <QUndoStack>
#include <QtTest>
#include <memory>

#include "host/domain/field_keys.h"
#include "pooling/notional_pooling_filter_model.h"
#include "pooling/notional_pooling_model.h"
#include "tests/support/tester_proxy.h"
#include "tests/workbench/project_fixture.h"

namespace keys = domain::keys;
using costing::Decimal;
using records::BudgetItem;
using records::Category;

// The office building behind the pooling models.
class NotionalPoolingOperatorTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    fixture_ = std::make_unique<tests::ProjectFixture>();
    QVERIFY(fixture_->made);
    QVERIFY(fixture_->open() != nullptr);
    fixture_->channel.clear();
    const auto bills = fixture_->bills();
    bills_.assign(bills.begin(), bills.end());
    lines_ = fixture_->below<BudgetItem>(*project().unitWorks().at(0));
    // A labour item, so that budget materials move when they are pooled into it.
    item_ = &fixture_->item(0, Category::Labour, 0);
    setUp();
  }
  void cleanup() {
    tearDown();
    fixture_.reset();
  }

  void showsWhatIsLeft() {
    QCOMPARE(model_->rowCount(), int(bills_.size()));
    int rows = 0;
    for (BudgetItem* line : lines_) {
      const QModelIndex amount = cell(*line, keys::NPAmount);
      QVERIFY(amount.isValid());
      ++rows;
      QCOMPARE(decimal(amount), project().remaining(*line).rounded(4));
      QCOMPARE(cell(*line, keys::NPCollectionAmount).data(), amount.data());
      // Money as well without separators, by which it would sort as nothing.
      QCOMPARE(cell(*line, keys::NPExcludeTaxTotalCost).data().toString(),
               QString::fromStdString(line->amount.value().toString(2)));
      // What is shown can always be pooled, even where rounding has made it more than there is.
      QVERIFY(model_->setData(cell(*line, keys::NPCollectionAmount), amount.data()));
      QCOMPARE(op_->getOwningBill(rowOf(*line))->id(), project().billOf(*line).id());
      QVERIFY(model_->flags(cell(*line, keys::NPCollectionAmount)) & Qt::ItemIsEditable);
      QVERIFY(!(model_->flags(amount) & Qt::ItemIsEditable));
    }
    QVERIFY(rows > 10);
    QCOMPARE(model_->getCurrentQCEResItemType(), std::string("人工"));
    QVERIFY(fixture_->channel.messages().empty());
    const QModelIndex bill = model_->index(0, model_->getColumnIndex(keys::NPAmount));
    QCOMPARE(bill.data().toString(), QString());  // a bill has no quantity to pool, not 0
    QVERIFY(!(model_->flags(bill) & Qt::ItemIsEditable));
  }

  void poolsInOneStep() {
    BudgetItem& whole = uneven();
    BudgetItem& part = *lines_.at(lines_.front() == &whole ? 1 : 0);
    check(whole);
    check(part);
    const Decimal half = Decimal::fromDigits(1, 2);
    QVERIFY(project().quantity(part) > half);
    QVERIFY(model_->setData(cell(part, keys::NPCollectionAmount), "0.01"));
    filter_->collectToQCEResItem();
    // The whole of it, to the last place, though less or more is shown.
    QCOMPARE(project().pooled(whole, *item_), project().quantity(whole));
    QCOMPARE(project().pooled(part, *item_), half);
    auto& stack = *opened().undo().stack();
    QCOMPARE(stack.undoText(), QString("归集到成本"));
    tearDown();
    setUp();
    QVERIFY(!cell(whole, keys::NPAmount).isValid());
    // Lines add up: what was pooled and what is left make the budget amount.
    QVERIFY(cell(part, keys::NPExcludeTaxTotalCost).data().toDouble() < part.amount.toDouble());
    check(part);
    QVERIFY(model_->setData(cell(part, keys::NPCollectionAmount), 0));
    filter_->collectToQCEResItem();
    QCOMPARE(stack.count(), 1);  // nothing of it
  }

  void booksAllOrNothing() {
    // Two rows, the second of which the project refuses: its remainder has gone meanwhile.
    BudgetItem& first = *lines_[0];
    BudgetItem& second = *lines_[1];
    check(first);
    check(second);
    {
      const app::ScopedUndo undo("");
      project().pool(second, *item_, project().quantity(second));
    }
    const std::string before = project().dump();
    const int steps = opened().undo().stack()->count();
    filter_->collectToQCEResItem();
    QVERIFY(project().dump() == before);
    QCOMPARE(opened().undo().stack()->count(), steps);
    QCOMPARE(fixture_->channel.messages().size(), std::size_t(1));
    QVERIFY(!fixture_->channel.messages()[0].text.empty());
  }

 private:
  controllers::OpenProject& opened() { return *fixture_->opened(); }
  records::Project& project() { return opened().project(); }

  void setUp() {
    table_ = operators::makeNotionalPoolingTable();
    op_ = std::make_unique<operators::NotionalPoolingOperator>(project());
    model_ = std::make_unique<gui::qce::QCENotionalPoolingModelImpl>();
    filter_ = std::make_unique<gui::qce::QCENotionalPoolingFilterModelImpl>(model_.get());
    tests::attachTester(model_.get());
    tests::attachTester(filter_.get());
    model_->setDisplayTable(table_.get());
    model_->setOperator(op_.get());
    filter_->setSubEngineerBills(bills_);
    filter_->setCurrentQCEGLJItem(item_);
  }
  void tearDown() {
    filter_.reset();
    model_.reset();
    op_.reset();
    table_.reset();
  }
  // A line whose quantity has more places than are shown.
  BudgetItem& uneven() {
    for (BudgetItem* line : lines_) {
      if (line->resourceItem != item_ &&
          project().quantity(*line).rounded(4) != project().quantity(*line)) {
        return *line;
      }
    }
    qFatal("the sample has no quantity of more than four places");
  }
  proxy::Element* rowOf(const BudgetItem& line) const {
    for (int top = 0; top < model_->rowCount(); ++top) {
      const QModelIndex bill = model_->index(top, 0);
      for (int row = 0; row < model_->rowCount(bill); ++row) {
        proxy::Element* element = model_->getInternalData(model_->index(row, 0, bill));
        if (element->id() == line.id()) return element;
      }
    }
    return nullptr;
  }
  QModelIndex cell(const BudgetItem& line, const std::string& key) const {
    return model_->makeIndex(rowOf(line), model_->getColumnIndex(key));
  }
  static Decimal decimal(const QModelIndex& at) {
    return *Decimal::parse(at.data().toString().toStdString());
  }
  void check(const BudgetItem& line) {
    QVERIFY(model_->setData(cell(line, keys::NPChoose), Qt::Checked, Qt::CheckStateRole));
  }

  std::unique_ptr<tests::ProjectFixture> fixture_;
  std::vector<BudgetItem*> lines_;
  std::vector<proxy::Element*> bills_;
  records::ResourceItem* item_ = nullptr;
  std::unique_ptr<domain::DisplayTable> table_;
  std::unique_ptr<operators::NotionalPoolingOperator> op_;
  std::unique_ptr<gui::qce::QCENotionalPoolingModelImpl> model_;
  std::unique_ptr<gui::qce::QCENotionalPoolingFilterModelImpl> filter_;
};

QTEST_MAIN(NotionalPoolingOperatorTest)
#include "tst_notional_pooling_operator.moc"
