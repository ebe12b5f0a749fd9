#include <QtTest>

#include "host/bwidgets/cell_text.h"
#include "host/bwidgets/screen.h"
#include "host/bwidgets/text_matcher.h"
#include "tests/support/rows.h"

class TestCellText : public QObject {
  Q_OBJECT

 private slots:
  void readsNumbersAsUsersWriteThem_data() {
    const tests::Rows<QString, QString> rows("text", "number");  // "-" for none
    const auto row = [&rows](const char* text, const char* number) { rows(text, text, number); };
    row("12.50", "12.50");
    row("1,234,567.89", "1234567.89");
    row("１２．５", "12.5");
    row("¥1,200.00", "1200.00");
    row("-￥3", "-3");
    row(".5", ".5");
    row("12,5", "-");  // a decimal comma is not guessed at
    row("1,23,456", "-");
    row("6%", "-");  // 6 or 0.06: the user has to say
    row("", "-");
    row("nan", "-");
    row("1e999", "-");
  }
  void readsNumbersAsUsersWriteThem() {
    QFETCH(QString, text);
    QTEST(bwidgets::plainNumber(text).value_or("-"), "number");
  }

  void readsYesAndNo() {
    for (const char* yes : {"是", "√", "TRUE", "1", " y "}) {
      QVERIFY2(bwidgets::yesOrNo(QString::fromUtf8(yes)) == std::optional<bool>(true), yes);
    }
    for (const char* no : {"否", "", "False", "0"}) {
      QVERIFY2(bwidgets::yesOrNo(QString::fromUtf8(no)) == std::optional<bool>(false), no);
    }
    QVERIFY(!bwidgets::yesOrNo("maybe"));
  }

  void readsBlocks_data() {
    // cells in <>, rows parted by |
    const tests::Rows<QString, QString> row("text", "cells");
    row("one cell", "a", "<a>");
    row("trailing break is no row", "a\tb\r\nc\td\r\n", "<a><b>|<c><d>");
    row("old line breaks", "a\rb", "<a>|<b>");
    row("empty cells", "\t\n\t", "<><>|<><>");
    row("empty row in between", "a\n\nb", "<a>|<>|<b>");
    row("quoted line break and tab", "\"a\nb\tc\"\td", "<a\nb\tc><d>");
    row("doubled quotes", "\"say \"\"x\"\"\"", "<say \"x\">");
    row("quote inside a text", "5\" pipe\tb", "<5\" pipe><b>");
    row("lone quote in front", "\"a\tb", "<\"a><b>");
    row("quoted empty", "\"\"", "<>");
    row("nothing", "", "");
  }
  void readsBlocks() {
    QFETCH(QString, text);
    QStringList rows;
    for (const QStringList& row : bwidgets::parseBlock(text)) {
      rows << '<' + row.join("><") + '>';
    }
    QTEST(rows.join('|'), "cells");
  }

  void blocksSurviveTheRoundTrip() {
    const std::vector<QStringList> block = {
        {"a", "", "line\nbreak"}, {"\"quoted\"", "tab\there", "5\" pipe"}, {"", "", "cr\rlf"}};
    QVERIFY(bwidgets::parseBlock(bwidgets::formatBlock(block)) == block);
    QCOMPARE(bwidgets::formatBlock({{"a", "b"}, {"c", "d"}}), QString("a\tb\nc\td"));
  }

  void matches_data() {
    const tests::Rows<QString, QString, bool> row;
    row("part", "纹钢", "螺纹钢", true);
    row("any case", "hrb", "螺纹钢 HRB400", true);
    row("initials", "lwg", "Φ12 螺纹钢 HRB400", true);
    row("initials in capitals", "LWG", "螺纹钢", true);
    row("initials and figures", "hntc30", "商品混凝土 C30", true);
    row("one letter is no initial", "l", "螺纹钢", false);
    row("initials must be neighbours", "lg", "螺纹钢", false);
    row("blanks around", " 水泥 ", "普通水泥", true);
    row("nothing wished", "", "水泥", false);
    row("other text", "lwg", "普通水泥", false);
  }
  void matches() {
    const auto [wish, text, hit] = tests::fetch<QString, QString, bool>();
    QCOMPARE(bwidgets::TextMatcher(wish).matches(text), hit);
  }

  void takesFractionsOfTheScreen() {
    using bwidgets::Screen;
    QCOMPARE(Screen::fraction({1920, 1040}, 0.6, 0.7), QSize(1152, 728));
    QCOMPARE(Screen::fraction({1920, 1040}, 0.1, 1.5), QSize(192, 1040));
    QCOMPARE(Screen::fraction({1920, 1040}, -1, 0), QSize(1, 1));
  }
};

QTEST_APPLESS_MAIN(TestCellText)
#include "tst_cell_text.moc"
