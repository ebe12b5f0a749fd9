#include "pooling/notional_pooling_model.h"

#include <QMessageBox>
#include <QtTest>

#include "pooling/notional_pooling_filter_model.h"
#include "tests/support/chain.h"
#include "tests/support/fake_pooling_operator.h"
#include "tests/support/recording_services.h"
#include "tests/support/rows.h"

namespace keys = domain::keys;
using Fake = tests::FakePoolingOperator;
using tests::Node;

namespace {

class Model : public gui::qce::QCENotionalPoolingModelImpl {
 public:
  using QCENotionalPoolingModelImpl::getClickedElement;
  template <class Change>
  void reset(Change change) {
    beginResetModel();
    change();
    endResetModel();
  }
};

}  // namespace

class TestNotionalPoolingModel
    : public QObject,
      tests::Chain<Fake, Model, gui::qce::QCENotionalPoolingFilterModelImpl> {
  Q_OBJECT

 private slots:
  void init() {
    services_ = std::make_unique<tests::RecordingServices>();
    make();
    first_ = op_->bill("A");
    Fake::item(first_, "a", 10.0);
    Fake::item(first_, "b", 2.5);
    second_ = op_->bill("B");
    Fake::item(second_, "a", 7.0);
    Fake::item(second_, "c", 1.0);
    show();
  }
  void cleanup() { services_.reset(); }

  void checksEverythingBelow() {
    QSignalSpy changed(model_.get(), &QAbstractItemModel::dataChanged);
    QVERIFY(check(first_, Qt::Checked));
    QCOMPARE(checked(), QString("A a b"));
    // Children first, then the row itself, each with the role alone.
    QCOMPARE(announced(changed), QString("a b A"));
    QCOMPARE(changed.front().at(2).value<QVector<int>>(), QVector<int>{Qt::CheckStateRole});
    QCOMPARE(state(first_), QVariant(2));
    QCOMPARE(state(second_), QVariant(0));
    // The state is that of the check box column, and of no other role.
    QCOMPARE(cell(first_, keys::NPChoose).data(), QVariant());
    QCOMPARE(cell(first_, keys::NPCode).data(Qt::CheckStateRole), QVariant());

    changed.clear();
    check(first_, Qt::Checked);
    QCOMPARE(changed.size(), 0);
    check(first_->node(0), Qt::Unchecked);  // does not uncheck what is above
    QCOMPARE(checked(), QString("A b"));
    check(first_, Qt::Unchecked);
    QCOMPARE(announced(changed), QString("a b A"));
    check(second_->node(0), Qt::Checked);
    check(second_->node(1), Qt::Checked);  // does not check what is above
    QCOMPARE(checked(), QString("a c"));
    QCOMPARE(op_->writes, 0);
  }

  void takesQuantitiesUpToTheMaximum_data() {
    const tests::Rows<QVariant, bool> row{"typed", "taken"};
    row("all", 10.0, true);
    row("part as text", QString("4.50"), true);
    row("nothing", 0, true);
    row("a hair too much", 10.000001, false);
    row("too much", QString("11"), false);
    row("negative", -1.0, false);
  }
  void takesQuantitiesUpToTheMaximum() {
    QFETCH(QVariant, typed);
    QFETCH(bool, taken);
    const QModelIndex quantity = cell(first_->node(0), keys::NPCollectionAmount);
    QVERIFY(model_->setData(quantity, 3));
    QSignalSpy changed(model_.get(), &QAbstractItemModel::dataChanged);
    QCOMPARE(model_->setData(quantity, typed), taken);
    QCOMPARE(quantity.data(), taken ? typed : QVariant(3));  // as it was typed
    QCOMPARE(quantity.data(Qt::EditRole), quantity.data());
    QCOMPARE(changed.size(), taken ? 1 : 0);
    const auto& messages = services_->channel.messages();
    QCOMPARE(messages.size(), std::size_t(taken ? 0 : 1));
    if (taken) return;
    QCOMPARE(QString::fromStdString(messages[0].text), QString("超过最大可归集数量，请重新输入！"));
    QCOMPARE(messages[0].buttons, int(QMessageBox::Ok));
  }

  void poolsTypedOrShownQuantities() {
    filter_->collectToQCEResItem();
    QCOMPARE(op_->collected, 0);  // nothing is checked
    check(first_, Qt::Checked);
    check(second_->node(1), Qt::Checked);
    model_->setData(cell(first_->node(0), keys::NPCollectionAmount), QString("4.25"));
    model_->setData(cell(second_->node(1), keys::NPCollectionAmount), 0);
    model_->setData(cell(second_->node(0), keys::NPCollectionAmount), 5);  // not checked
    filter_->collectToQCEResItem();
    QCOMPARE(op_->collected, 1);
    const std::map<std::string, double> wanted = {
        {"A", 0}, {"A.a", 4.25}, {"A.b", 2.5}, {"B.c", 0}};
    QVERIFY(op_->pooled == wanted);
  }

  void appliesToOtherBills() {
    check(first_->node(0), Qt::Checked);
    check(second_->node(1), Qt::Checked);
    model_->setData(cell(first_->node(0), keys::NPCollectionAmount), 1);
    filter_->usedToOtherBills(nullptr);
    QCOMPARE(checked(), QString("a c"));
    QSignalSpy changed(model_.get(), &QAbstractItemModel::dataChanged);
    filter_->usedToOtherBills(op_->bills[0].get());
    QCOMPARE(announced(changed), QString("a"));
    QCOMPARE(state(second_->node(0)), QVariant(2));
    // The quantity stays the other row's own; what only another bill has checked is not looked at.
    QCOMPARE(cell(second_->node(0), keys::NPCollectionAmount).data(), QVariant("7.000"));
  }

  void showsTheRowsOfOneBill() {
    QCOMPARE(shown(), QString("A(a b) B(a c)"));
    filter_->setCurrentSubEngBill(op_->bills[1].get());
    QCOMPARE(shown(), QString("B(a c)"));
    // The same record behind another element is the same bill; an element of its own is none.
    op_->owners[first_->id()] = op_->bills[1].get();
    filter_->invalidate();
    QCOMPARE(shown(), QString("A(a b) B(a c)"));
    const scoped_refptr<Node> stranger(new Node("stranger"));
    filter_->setCurrentSubEngBill(stranger.get());
    QCOMPARE(shown(), QString());
    filter_->setCurrentSubEngBill(nullptr);
    QCOMPARE(shown(), QString("A(a b) B(a c)"));
  }

  void passesOnAndForgets() {
    std::vector<proxy::Element*> bills{op_->bills[0].get()};
    check(first_, Qt::Checked);
    model_->setData(cell(first_->node(0), keys::NPCollectionAmount), 1);
    QSignalSpy reset(model_.get(), &QAbstractItemModel::modelReset);
    filter_->setSubEngineerBills(bills);
    filter_->setCurrentQCEGLJItem(second_);
    QCOMPARE(reset.size(), 1);
    QVERIFY(op_->set == bills);
    QCOMPARE(op_->current, static_cast<proxy::Element*>(second_));
    QCOMPARE(filter_->getCurrentQCEResItemType(), std::string("材料"));
    QCOMPARE(checked(), QString());
    QCOMPARE(cell(first_->node(0), keys::NPCollectionAmount).data(), QVariant("10.000"));

    check(first_, Qt::Checked);
    model_->setData(cell(first_->node(0), keys::NPCollectionAmount), 1);
    filter_->setCurrentSubEngBill(op_->bills[1].get());
    QSignalSpy changed(model_.get(), &QAbstractItemModel::dataChanged);
    filter_->cleanUpResources();
    QCOMPARE(changed.size(), 4);  // three check boxes and a quantity
    QCOMPARE(checked(), QString());
    QCOMPARE(cell(first_->node(0), keys::NPCollectionAmount).data(), QVariant("10.000"));
    QCOMPARE(shown(), QString("A(a b) B(a c)"));
  }

  void editsNothingElseAndNothingWithoutAHost() {
    QVERIFY(!model_->setData(cell(first_->node(0), keys::NPName), "x"));
    QVERIFY(!model_->setData(cell(first_->node(0), keys::NPChoose), true, Qt::EditRole));
    QVERIFY(!model_->setData(cell(first_->node(0), keys::NPCollectionAmount), 1, Qt::DisplayRole));
    QCOMPARE(op_->writes, 0);
    Model empty;
    gui::qce::QCENotionalPoolingFilterModelImpl filter(&empty);
    std::vector<proxy::Element*> bills{first_};
    filter.setSubEngineerBills(bills);
    filter.setCurrentQCEGLJItem(first_);
    filter.usedToOtherBills(first_);
    filter.collectToQCEResItem();
    filter.setCurrentSubEngBill(first_);
    filter.cleanUpResources();
    QCOMPARE(filter.getCurrentQCEResItemType(), std::string());
    QVERIFY(!empty.setData({}, true, Qt::CheckStateRole));
  }

  void marksAndQuantitiesFollowTheirRows() {
    check(second_, Qt::Checked);
    model_->setData(cell(second_->node(1), keys::NPCollectionAmount), 0.5);
    model_->beginAddItem(first_, 1, nullptr);
    op_->tree.insert(0, "new", nullptr);
    model_->endAddItem();
    model_->beginMoveUpItem(second_->node(1), second_);
    op_->tree.move(1, 0, second_);
    model_->endMoveUpItem();
    QCOMPARE(checked(), QString("B c a"));
    QCOMPARE(cell(second_->node(0), keys::NPCollectionAmount).data(), QVariant(0.5));
    QCOMPARE(cell(second_->node(1), keys::NPCollectionAmount).data(), QVariant("7.000"));
    model_->beginDelItem(second_->node(0), 1, second_);
    op_->tree.remove(0, 1, second_);
    model_->endDelItem();
    std::map<proxy::Element*, double> quantities;
    model_->getClickedElement(quantities);
    QCOMPARE(quantities.size(), std::size_t(2));  // of what is gone none
    model_->reset([] {});
    QCOMPARE(checked(), QString());
  }

 private:
  QModelIndex cell(proxy::Element* element, const std::string& key) const {
    return model_->makeIndex(element, model_->getColumnIndex(key));
  }
  QVariant state(proxy::Element* element) const {
    return cell(element, keys::NPChoose).data(Qt::CheckStateRole);
  }
  bool check(proxy::Element* element, Qt::CheckState state) {
    return model_->setData(cell(element, keys::NPChoose), state, Qt::CheckStateRole);
  }
  QString checked() const {
    QStringList names;
    for (const Node* bill : {first_, second_}) {
      for (int i = -1; i < bill->childCount(); ++i) {
        const Node* node = i < 0 ? bill : bill->node(i);
        if (state(const_cast<Node*>(node)).toInt() == 2) names << node->name().c_str();
      }
    }
    return names.join(' ');
  }
  static QString announced(const QSignalSpy& changed) {
    QStringList names;
    for (const auto& signal : changed) {
      const auto index = signal.at(0).toModelIndex();
      names << static_cast<Node*>(index.internalPointer())->name().c_str();
    }
    return names.join(' ');
  }

  std::unique_ptr<tests::RecordingServices> services_;
  Node* first_ = nullptr;
  Node* second_ = nullptr;
};

QTEST_GUILESS_MAIN(TestNotionalPoolingModel)
#include "tst_notional_pooling_model.moc"
