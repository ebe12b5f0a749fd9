#include "resitem/model.h"

#include <QSignalSpy>
#include <QtTest>

#include "tests/support/fake_res_item_operator.h"
#include "tests/support/rows.h"
#include "tests/support/tester_proxy.h"

namespace keys = domain::keys;

class TestModel : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    op_ = std::make_unique<tests::FakeResItemOperator>();
    model_ = std::make_unique<gui::qce::QCEResItemModelImpl>();
    tests::attachTester(model_.get());
    tests::Node* steel = op_->group("钢材");
    item_ = tests::FakeResItemOperator::item(steel, "0101", "螺纹钢", 2.0, 3500.0);
    model_->setDisplayTable(&op_->table);
    model_->setOperator(op_.get());
  }
  void cleanup() {
    model_.reset();
    op_.reset();
  }

  void switchesSubProjectAndGroupingInsideAReset() {
    QStringList order;
    connect(model_.get(), &QAbstractItemModel::modelAboutToBeReset, this, [&] {
      order << QString("about %1 %2").arg(op_->subProject != nullptr).arg(op_->rebuilt);
    });
    connect(model_.get(), &QAbstractItemModel::modelReset, this, [&] {
      order << QString("reset %1 %2").arg(op_->subProject != nullptr).arg(op_->rebuilt);
    });
    model_->setSubProject(item_);
    QCOMPARE(op_->subProject, item_);
    model_->rebuildGroup();
    QCOMPARE(order, QStringList({"about 0 0", "reset 1 0", "about 1 0", "reset 1 1"}));
  }

  void namesTheHeadOfAColumn() {
    QCOMPARE(model_->getHeadName(4), keys::BRIAmount);
    QCOMPARE(model_->getHeadName(-1), std::string());
    QCOMPARE(model_->getHeadName(99), std::string());
    op_->table.getHeader()->addColumn(domain::ColumnDescriptor{"bare", nullptr, {}, {}, {}, {}});
    model_->setDisplayTable(&op_->table);
    QCOMPARE(model_->getHeadName(op_->table.getHeader()->columnCount() - 1), std::string());
    model_->setDisplayTable(nullptr);
    QCOMPARE(model_->getHeadName(0), std::string());
  }

  void announcesAnEditOnceMoreUnlessItIsPriceOrAccount_data() {
    const tests::Rows<QString, bool, QStringList> row;
    const QString edit = QString::number(Qt::EditRole);
    row("name", "QCE_BRIName", false, QStringList{edit, ""});
    row("name refused", "QCE_BRIName", true, QStringList{""});
    row("price", "QCE_BRIExcludedTaxFee", false, QStringList{edit});
    row("price refused", "QCE_BRIExcludedTaxFee", true, QStringList{});
    row("account", "QCE_CostAccount", false, QStringList{edit});
  }
  void announcesAnEditOnceMoreUnlessItIsPriceOrAccount() {
    const auto [key, refuse, announced] = tests::fetch<QString, bool, QStringList>();
    op_->refused = refuse ? item_ : nullptr;
    const QModelIndex cell = model_->makeIndex(item_, model_->getColumnIndex(key.toStdString()));
    QStringList heard;
    connect(model_.get(), &QAbstractItemModel::dataChanged, this,
            [&](const QModelIndex& first, const QModelIndex& last, const QVector<int>& roles) {
              QCOMPARE(first, cell);
              QCOMPARE(last, cell);
              QStringList texts;
              for (const int role : roles) texts << QString::number(role);
              heard << texts.join(',');
            });
    QCOMPARE(model_->setData(cell, "12", Qt::EditRole), !refuse);
    QCOMPARE(heard, announced);
  }

  void setsThePriceOnThePathOfATypedOne() {
    QSignalSpy changes(model_.get(), &QAbstractItemModel::dataChanged);
    model_->setExcludeTaxPrice(item_, 3600.5);
    const int column = model_->getColumnIndex(keys::BRIExcludedTaxFee);
    QCOMPARE(model_->makeIndex(item_, column).data().toString(), QString("3600.50"));
    QCOMPARE(changes.size(), 1);
    model_->setExcludeTaxPrice(nullptr, 1.0);
    QCOMPARE(changes.size(), 1);
  }

  void doesNothingWithAnOperatorOfAnotherKind() {
    tests::NodeOperator other;
    model_->setOperator(&other);
    const QSignalSpy resets(model_.get(), &QAbstractItemModel::modelReset);
    std::string comment = "as it was";
    QVERIFY(!model_->getComment(item_, comment));
    QVERIFY(!model_->setComment(item_, "x"));
    QCOMPARE(comment, std::string("as it was"));
    model_->setSubProject(item_);
    model_->rebuildGroup();
    QCOMPARE(op_->rebuilt, 0);
    QCOMPARE(op_->subProject, nullptr);
    QCOMPARE(resets.count(), 0);
    model_->setOperator(nullptr);
    model_->setExcludeTaxPrice(item_, 1.0);
  }

 private:
  std::unique_ptr<tests::FakeResItemOperator> op_;
  std::unique_ptr<gui::qce::QCEResItemModelImpl> model_;
  tests::Node* item_ = nullptr;
};

QTEST_GUILESS_MAIN(TestModel)
#include "tst_model.moc"
