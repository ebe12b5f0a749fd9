#include <set>

#include "host/domain/field_keys.h"
#include "host/domain/qce/res_item_bill_operator.h"
#include "pooling/res_item_bill_filter_model.h"
#include "pooling/res_item_bill_model.h"
#include "pooling/res_item_bill_view.h"
#include "tests/support/chain.h"
#include "tests/support/recording_services.h"
#include "tests/support/test_main.h"

namespace keys = domain::keys;
using tests::field;

namespace {

// The host side of the pane in memory; "4" names a table of kind 4.
class Fake : public tests::NodeHost<domain::qce::QCEResItemBillOperator> {
 public:
  Fake() {
    using namespace domain;
    for (DisplayTable* each : {&table, &subcontract}) {
      DisplayRow& header = *each->getHeader();
      for (const std::string& key :
           {keys::SEName, keys::SEUnit, keys::SEContent, keys::BRIAssociation}) {
        header.addColumn(key, field(StringField));
      }
      header.addColumn(keys::BRIBillUnitPrice, field(FloatingPointField, 2, false, "单价"));
      header.addColumn(keys::BRIExcludedTaxFee, field(StringField, 3, true));
      header.addColumn(keys::RIExcludedTaxFee, field(StringField, 2));
    }
  }

  bool isEnabled(const proxy::Element*, const std::string&) const override { return false; }
  bool isEditable(const proxy::Element*, const std::string& key) const override {
    return key == keys::RIExcludedTaxFee || key == keys::SEContent;
  }
  void setBaseResItem(proxy::Element*) override {}
  void setSubProject(proxy::Element*) override {}
  domain::DisplayTable* getTable(const std::string& name) override {
    return name == "1" ? &table : name == "4" ? &subcontract : nullptr;
  }
  int getTableKind(const std::string& name) const override { return std::atoi(name.c_str()); }
  bool isOrdinaryBill(const proxy::Element* row) const override {
    return summarised.count(row) == 0;
  }
  std::string getColorText(const proxy::Element*) const override { return color; }
  bool setCoefficient(const std::vector<proxy::Element*>&, double, bool) override { return true; }
  bool setAdjustedContent(const std::vector<proxy::Element*>&, const std::string&) override {
    return true;
  }
  bool setExcludeTaxPrice(proxy::Element*, double) override { return true; }
  bool setExcludeTaxPriceExpr(proxy::Element*, const std::string& text) override {
    expression = text;
    return !refuse;
  }
  bool disassociateBill(const std::vector<proxy::Element*>&) override { return true; }

  domain::DisplayTable subcontract;
  std::set<const proxy::Element*> summarised;
  std::string color, expression;
  bool refuse = false;
};

}  // namespace

class TestResItemBillModel : public QObject,
                             tests::Chain<Fake, gui::qce::QCEResItemBillModelImpl,
                                          gui::qce::QCEResItemBillFilterModelImpl> {
  Q_OBJECT

 private slots:
  void init() {
    make();
    for (const char* content : {"9", "10", ""}) {
      op_->tree.add(content)
          ->set(keys::SEContent, std::string(content))
          ->set(keys::BRIAssociation, std::string(*content == '9' ? "√" : ""))
          ->set(keys::BRIExcludedTaxFee, 1234.5);
    }
    model_->setOperator(op_.get());
    model_->setTableName("1");
  }

  void headsTheBillPriceByTheKindOfTheTable() {
    const int price = model_->getColumnIndex(keys::BRIBillUnitPrice);
    const auto title = [&] { return filter_->headerData(price, Qt::Horizontal).toString(); };
    QCOMPARE(title(), QString("单价"));
    filter_->setTableName("4");
    QCOMPARE(model_->getDisplayTable(), &op_->subcontract);
    QCOMPARE(title(), QString("清单分包单价（元）"));
    filter_->setTableName("3");  // no table of its own: the columns stay
    QCOMPARE(model_->getDisplayTable(), &op_->subcontract);
    QCOMPARE(title(), QString("单价"));
    QCOMPARE(model_->headerData(2, Qt::Vertical, Qt::DisplayRole), QVariant(3));
    QVERIFY(!model_->headerData(0, Qt::Vertical, Qt::ToolTipRole).isValid());
  }

  void showsBudgetFiguresPlainAndColoured() {
    const QModelIndex budget = cell(0, keys::BRIExcludedTaxFee);
    QCOMPARE(budget.data().toString(), QString("1234.500"));
    QCOMPARE(budget.data(Qt::TextAlignmentRole), QVariant(0x82));
    QCOMPARE(budget.data(domain::FieldTypeRole), QVariant(3));
    QCOMPARE(cell(0, keys::RIExcludedTaxFee).data(domain::FieldTypeRole), QVariant(3));
    for (const auto& [text, color] : {std::pair("#FF8001", QColor(255, 128, 1)),
                                      {"0a0b0c", QColor(10, 11, 12)},
                                      {"", QColor()},
                                      {"red", QColor()}}) {
      op_->color = text;
      QCOMPARE(budget.data(Qt::BackgroundRole).value<QColor>(), color);
    }
  }

  void handsExpressionsForPricesOn() {
    tests::RecordingServices services;
    const QModelIndex price = cell(0, keys::RIExcludedTaxFee);
    const QSignalSpy changed(model_.get(), &QAbstractItemModel::dataChanged);
    QVERIFY(model_->setData(price, " 12*3 "));
    QCOMPARE(op_->expression, std::string("12*3"));
    QCOMPARE(changed.size(), 1);
    op_->refuse = true;
    QVERIFY(!model_->setData(price, "12/"));
    QCOMPARE(changed.size(), 1);
    QVERIFY(model_->setData(price, "1,234.5"));  // a number, on the way of all numbers
    QCOMPARE(op_->expression, std::string("12/"));
    QVERIFY(model_->setData(cell(1, keys::SEContent), "1,200"));
    QCOMPARE(cell(1, keys::SEContent).data().toString(), QString("1200"));
    op_->summarised.insert(op_->tree.node(0));
    QVERIFY(!model_->setData(price, "1+1"));
    QCOMPARE(op_->expression, std::string("12/"));
  }

  void sortsContentsAsNumbersAndKeepsAssociatedRows() {
    filter_->sort(filter_->getColumnIndex(keys::SEContent), Qt::DescendingOrder);
    QTRY_COMPARE(QString::fromStdString(op_->tree.text()), QString("10 9 "));
    filter_->setAssociatedOnly(true);
    QCOMPARE(filter_->rowCount(), 1);
    filter_->setAssociatedOnly(false);
    QCOMPARE(filter_->rowCount(), 3);
  }

  // Without an operator of its kind, nothing happens.
  void doesNothingWithoutItsOperator() {
    tests::NodeOperator other;
    other.tree.add("a");
    gui::qce::QCEResItemBillModelImpl model;
    model.setOperator(&other);
    model.setDisplayTable(&op_->table);
    model.setBaseResItem(nullptr);
    model.setTableName("4");
    QVERIFY(!model.setCoefficient({other.tree.node(0)}, 2.0, true));
    QVERIFY(!model.disassociateBill({other.tree.node(0)}));
    QCOMPARE(model.getDisplayTable(), &op_->table);
    QVERIFY(model.flags(model.index(0, 0)) & Qt::ItemIsEnabled);
  }

  void takesCoefficientsOfThePattern() {
    gui::qce::QCEResItemBillViewImpl view;
    std::string accepted;
    QTimer::singleShot(0, &view, [&accepted] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      auto* edit = dialog->findChild<QLineEdit*>();
      for (const char* text :
           {"1000", "999.999", "1", "1.05", "0.5", ".25", "-9.5", "-99.125",  // and these are not:
            "1001", "1000.5", "1.0505", "-100", "-0.5", "0", "abc", "1e3", ""}) {
        edit->setText(text);
        if (edit->hasAcceptableInput()) accepted += std::string(text) + ' ';
      }
      edit->setText("-9.5");
      dialog->findChildren<QRadioButton*>().last()->click();
      dialog->accept();
    });
    double coefficient = 0.0;
    bool multiply = true;
    QVERIFY(view.getCoefficientToSet(coefficient, multiply));
    QCOMPARE(QString::fromStdString(accepted),
             QString("1000 999.999 1 1.05 0.5 .25 -9.5 -99.125 "));
    QCOMPARE(coefficient, -9.5);
    QVERIFY(!multiply);
  }

 private:
  QModelIndex cell(int row, const std::string& key) const {
    return model_->index(row, model_->getColumnIndex(key));
  }
};

QCE_WIDGET_TEST_MAIN(TestResItemBillModel)
#include "tst_res_item_bill_model.moc"
