#include "workbench/costing/expression.h"

#include <QtTest>

using costing::ExpressionError;

class TestExpression : public QObject {
  Q_OBJECT

 private slots:
  void calculates_data() {
    QTest::addColumn<QString>("value");
    const std::pair<const char*, const char*> rows[] = {
        {"1+2*3", "7"},
        {"0.1+0.2", "0.3"},
        {"-3^2", "-9"},
        {"2^3^2", "512"},
        {"100*13%", "13"},
        {"1/3", "0.333333333333"},
        {"12*(35.6+4.4)/2", "240"},
        {"max(min(3,5), abs(-2))", "3"},
        {"round(2.345, 2)", "2.35"},
        {"（１２＋３．５）×2÷【4】", "7.75"},
        {"round（10÷3，2）−３。33", "0"},
    };
    for (const auto& [text, value] : rows) QTest::newRow(text) << QString(value);
  }
  void calculates() {
    QFETCH(QString, value);
    QCOMPARE(QString::fromStdString(costing::evaluate(QTest::currentDataTag()).toString()), value);
  }

  // The column is that of the character as the user sees it, whatever its width.
  void namesWhatIsWrongAndWhere_data() {
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("words");
    const std::tuple<const char*, int, const char*> rows[] = {
        {"", 0, "空"},
        {"12 +", 4, "没有写完"},
        {"12 + * 3", 6, "第 6 个字符“*”"},
        {"（12＋3））*2", 7, "第 7 个字符的括号多余"},
        {"（12＋（3*2）", 1, "第 1 个字符的括号没有配对"},
        {"3米*2", 2, "第 2 个字符“米”"},
        {"１２×单价", 4, "第 4 个字符“单”"},
        {"1.2.3", 4, "第 4 个字符"},
        {"1,200*3", 2, "千分位"},
        {"max(1,(2,3))", 9, "千分位"},
        {"1?2:3", 2, "第 2 个字符“?”"},
        {"round(1)", 8, "缺少参数"},
        {"sin(1)", 1, "sin"},
        {"12/0", 0, "除数为零"},
        {"0^-1", 0, "除数为零"},
        {"9^999", 0, "超出"},
        {"10^200*10^200", 0, "超出"},
        {"(-8)^0.5", 0, "负数不能开方"},
    };
    for (const auto& [text, column, words] : rows) {
      QTest::newRow(*text != '\0' ? text : "empty") << column << QString(words);
    }
  }
  void namesWhatIsWrongAndWhere() {
    QFETCH(int, column);
    QFETCH(QString, words);
    const QByteArray tag = QTest::currentDataTag();
    try {
      costing::evaluate(tag == "empty" ? "" : tag.constData());
      QFAIL("has a value");
    } catch (const ExpressionError& error) {
      QCOMPARE(error.column(), column);
      QVERIFY2(QString::fromUtf8(error.what()).contains(words), error.what());
    }
  }
};

QTEST_GUILESS_MAIN(TestExpression)
#include "tst_expression.moc"
