#include <QtTest>
#include <random>

#include "tests/support/rows.h"
#include "tests/workbench/values.h"
#include "workbench/costing/packed_decimal.h"
#include "workbench/costing/rules.h"

using costing::Decimal;
using costing::PackedDecimal;
using tests::dec;

class CostingTest : public QObject {
  Q_OBJECT

 private slots:
  void readsOnlyPlainNumbers_data() {
    // expected: empty: refused
    const tests::Rows<QString, QString> row;
    for (const char* good : {"0", "12.5", "-0.03", "999999999999999999999999.999999999999"}) {
      row(good, good, good);
    }
    row("plus sign", "+7", "7");
    row("trailing zeros", "1.500", "1.5");
    row("negative zero", "-0.0", "0");
    row("leading zeros", "007.10", "7.1");
    for (const char* bad :
         {"", "-", "+", ".", ".5", "5.", "1.2.3", "1e5", " 1", "1 ", "1,000", "１", "0x1", "nan",
          "--1", "1000000000000000000000000", "0.0000000000001"}) {
      row(qPrintable(QStringLiteral("refuses '%1'").arg(bad)), bad, "");
    }
  }
  void readsOnlyPlainNumbers() {
    const auto [text, expected] = tests::fetch<QString, QString>();
    const auto value = Decimal::parse(text.toStdString());
    QCOMPARE(value ? QString::fromStdString(value->toString()) : QString(), expected);
  }

  void roundsHalfAwayFromZero_data() {
    const tests::Rows<QString, int, QString> row;
    row("half up", "2.675", 2, "2.68");
    row("below half", "2.67499999", 2, "2.67");
    row("negative half", "-2.675", 2, "-2.68");
    row("to no places", "0.5", 0, "1");
    row("carries", "99.995", 2, "100.00");
    row("loses its sign with its digits", "-0.004", 2, "0.00");
    row("pads", "3", 4, "3.0000");
    row("places out of range", "3.5", 40, "3.500000000000");
  }
  void roundsHalfAwayFromZero() {
    const auto [text, places, expected] = tests::fetch<QString, int, QString>();
    QCOMPARE(QString::fromStdString(dec(qPrintable(text)).toString(places)), expected);
  }

  void keepsWhatDoublesShow() {
    std::mt19937_64 random(7);
    for (int i = 0; i < 2000; ++i) {
      // What a user types with up to 4 places, through the double that a cell hands over.
      const long long digits = static_cast<long long>(random() % 100000000000ULL);
      const std::string text =
          std::to_string(digits / 10000) + "." + std::to_string(10000 + digits % 10000).substr(1);
      const double number = QString::fromStdString(text).toDouble();
      const auto value = Decimal::fromDouble(number);
      QVERIFY(value.has_value());
      QCOMPARE(QString::fromStdString(value->toString(4)), QString::fromStdString(text));
      QCOMPARE(value->toDouble(), number);
      QCOMPARE(PackedDecimal(*value).toDouble(), number);
    }
    QCOMPARE(Decimal::fromDouble(1e-13).value(), Decimal(0));
    QCOMPARE(QString::fromStdString(Decimal::fromDouble(-5e-13).value().toString()),
             QStringLiteral("-0.000000000001"));
    QVERIFY(!Decimal::fromDouble(1e24));
    QVERIFY(!Decimal::fromDouble(qQNaN()));
    QVERIFY(!Decimal::fromDouble(qInf()));
  }

  void refusesWhatDoesNotFit() {
    const Decimal large = dec("999999999999999999999999");
    QVERIFY_EXCEPTION_THROWN(large + large, std::overflow_error);
    QVERIFY_EXCEPTION_THROWN(large * dec("2"), std::overflow_error);
    QVERIFY_EXCEPTION_THROWN(Decimal(1) / Decimal(0), std::overflow_error);
    QVERIFY_EXCEPTION_THROWN(PackedDecimal{large}, std::overflow_error);
    QCOMPARE(Decimal(-1) / Decimal(3), dec("-0.333333333333"));
    QCOMPARE(Decimal(2) / Decimal(-3), dec("-0.666666666667"));
  }

  void packsEveryValueThatFits() {
    for (const char* text : {"0", "-1", "0.000000000001", "-99999.999999999999",
                             "576460752303423487", "1000000000000", "123456789.12345678", "-0.5"}) {
      const Decimal value = dec(text);
      QCOMPARE(PackedDecimal(value).value(), value);
      QCOMPARE(PackedDecimal(value).toDouble(), value.toDouble());
    }
    // Equal numbers are equal however they were written.
    QVERIFY(PackedDecimal(dec("1.50")) == PackedDecimal(dec("1.5")));
    QVERIFY(PackedDecimal(dec("10")) == PackedDecimal(Decimal(10)));
    QVERIFY_EXCEPTION_THROWN(PackedDecimal(dec("576460752303423488")), std::overflow_error);
  }

  void appliesEachRule() {
    // The worked example of docs/costing.md.
    const Decimal quantity = costing::consumption(dec("126.35"), dec("1.015"));
    QCOMPARE(quantity, dec("128.24525"));
    QCOMPARE(costing::storedQuantity(quantity, "m³"), dec("128.2453"));
    QCOMPARE(costing::storedQuantity(quantity, "台"), dec("128.25"));
    QCOMPARE(costing::budgetAmount(dec("126.35"), dec("1.015"), dec("485.44")), dec("62255.37"));
    QCOMPARE(costing::excludedTaxAmount(dec("128.2453"), dec("470")), dec("60275.29"));
    QCOMPARE(costing::includedTaxPrice(dec("470"), dec("13")), dec("531.1"));
    QCOMPARE(costing::includedTaxAmount(dec("128.2453"), dec("470"), dec("13")), dec("68111.08"));
    // The price in an amount is the one that was typed, not the one that is shown.
    QCOMPARE(costing::excludedTaxAmount(dec("1000"), dec("0.125")), dec("125.00"));
  }
};

QTEST_APPLESS_MAIN(CostingTest)
#include "tst_costing.moc"
