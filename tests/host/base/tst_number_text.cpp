#include <QtTest>
#include <cmath>
#include <limits>

#include "host/base/number_text.h"
#include "tests/support/rows.h"

class TestNumberText : public QObject {
  Q_OBJECT

 private slots:
  void writesDecimalText_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("precision");
    QTest::addColumn<QString>("plain");
    QTest::addColumn<QString>("stripped");
    QTest::addColumn<QString>("grouped");
    QTest::addColumn<QString>("groupedStripped");

    const auto row = [](double value, int precision, const char* plain, const char* stripped,
                        const char* grouped, const char* groupedStripped) {
      QTest::addRow("%.17g at %d", value, precision)
          << value << precision << plain << stripped << grouped << groupedStripped;
    };
    row(1234567.891, 2, "1234567.89", "1234567.89", "1,234,567.89", "1,234,567.89");
    row(1234.5, 2, "1234.50", "1234.5", "1,234.50", "1,234.5");
    row(1200.0, 2, "1200.00", "1200", "1,200.00", "1,200");
    row(999.995, 2, "1000.00", "1000", "1,000.00", "1,000");
    row(100.0, 0, "100", "100", "100", "100");  // zeros before the point are not trailing ones
    // Half away from zero, on the decimal digits and not on the binary value behind them.
    row(2.675, 2, "2.68", "2.68", "2.68", "2.68");
    row(-2.5, 0, "-3", "-3", "-3", "-3");
    row(0.05, 1, "0.1", "0.1", "0.1", "0.1");
    row(0.0049, 2, "0.00", "0", "0.00", "0");
    row(-0.004, 2, "0.00", "0", "0.00", "0");
    row(0.0, 3, "0.000", "0", "0.000", "0");
    row(-1234.5, 1, "-1234.5", "-1234.5", "-1,234.5", "-1,234.5");
    row(1e21, 1, "1000000000000000000000.0", "1000000000000000000000",
        "1,000,000,000,000,000,000,000.0", "1,000,000,000,000,000,000,000");
    row(123.4, -2, "123", "123", "123", "123");
    row(std::numeric_limits<double>::infinity(), 2, "", "", "", "");
    row(std::nan(""), 2, "", "", "", "");
  }
  void writesDecimalText() {
    QFETCH(double, value);
    QFETCH(int, precision);
    const auto text = [](const std::string& s) { return QString::fromStdString(s); };
    QTEST(text(base::ToPlainString(value, precision)), "plain");
    QTEST(text(base::ToPlainStringWithStripTrailingZeros(value, precision)), "stripped");
    QTEST(text(base::ToThousandthsString(value, precision)), "grouped");
    QTEST(text(base::ToThousandthsStringWithStripTrailingZeros(value, precision)),
          "groupedStripped");
  }

  void showsAllDigitsWithoutPrecision() {
    QCOMPARE(base::ToPlainString(0.1), std::string("0.1"));
    QCOMPARE(base::ToPlainString(1e-7), std::string("0.0000001"));
    QCOMPARE(base::ToPlainString(120000), std::string("120000"));
    QCOMPARE(base::ToThousandthsString(1234567.125), std::string("1,234,567.125"));
  }

  void readsBackWhatItWrote() {
    std::uint64_t state = 42;
    for (int i = 0; i < 20000; ++i) {
      state = state * 6364136223846793005ULL + 1442695040888963407ULL;
      const double value =
          static_cast<double>(static_cast<std::int64_t>(state >> 11)) / std::pow(10.0, i % 14);
      QCOMPARE(base::ParseNumberPrefix(base::ToPlainString(value)), value);
    }
  }

  void parsesTheNumberAtTheStart_data() {
    const tests::Rows<QString, double> row;
    row("blanks before", "  \t12.5", 12.5);
    row("rest ignored", "12.5kg", 12.5);
    row("stops at a separator", "1,200.00", 1.0);
    row("two signs", "+-3", 0.0);
    row("minus", "-0.5", -0.5);
    row("exponent", "1e3", 1000.0);
    row("no number", "abc", 0.0);
  }
  void parsesTheNumberAtTheStart() {
    const auto [text, value] = tests::fetch<QString, double>();
    QCOMPARE(base::ParseNumberPrefix(text.toStdString()), value);
  }
};

QTEST_APPLESS_MAIN(TestNumberText)
#include "tst_number_text.moc"
