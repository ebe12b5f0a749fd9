#include <QtTest>
#include <algorithm>

#include "host/base/collation.h"
#include "host/base/pinyin.h"
#include "tests/support/rows.h"

class TestTexts : public QObject {
  Q_OBJECT

 private slots:
  void sortsInPinyinOrder() {
    // an, bei, gang, ji, luo, shui, zhong: neither the order of the code points nor of the strokes.
    // Figures come first and Latin letters last.
    const std::vector<std::string> wanted = {"100",    "安装", "备注", "钢筋", "机械",
                                             "螺纹钢", "水泥", "中砂", "abc"};
    std::vector<std::string> texts(wanted.rbegin(), wanted.rend());
    std::sort(texts.begin(), texts.end(),
              [](const std::string& a, const std::string& b) { return base::ALargeB(a, b) < 0; });
    QVERIFY(texts == wanted);
    QCOMPARE(base::ALargeB("水泥", "水泥"), 0);
    QVERIFY(base::ALargeB("水泥", "钢筋") > 0);
  }

  void keysOrderAsTextsDo() {
    std::vector<std::string> texts = {"",     "a",  "A",     "a b",   "10",   "9",
                                      "钢筋", "钢", "钢 筋", "钢筋1", "重庆", "长度",
                                      "ｍ³",  "m³", "m3",    "φ12",   "Φ12",  "\xff\xfe"};
    // Long texts have keys beyond the small buffer.
    for (int length : {60, 127, 128, 300}) {
      std::string text;
      for (int i = 0; i < length; ++i) text += i % 2 != 0 ? "混" : "凝";
      texts.push_back(text);
      texts.push_back(text + "土");
    }
    const auto sign = [](int value) { return (value > 0) - (value < 0); };
    for (const std::string& a : texts) {
      for (const std::string& b : texts) {
        const int byKey = base::CollationKey(a).compare(base::CollationKey(b));
        QVERIFY2(sign(byKey) == sign(base::ALargeB(a, b)),
                 qPrintable(QString::fromStdString(a) + " / " + QString::fromStdString(b)));
      }
    }
  }

  void findsPinyinInitials_data() {
    const tests::Rows<QString, QString> row;
    row("Chinese", "螺纹钢", "lwg");
    row("mixed, lower case", "螺纹钢 HRB400", "lwghrb400");
    row("punctuation is left out", "（商品）混凝土-C30", "sphntc30");
    row("umlaut", "铝合金", "lhj");
    row("beyond the basic plane", "\xF0\xA0\x80\x80钢", "hg");
    row("empty", "", "");
  }
  void findsPinyinInitials() {
    const auto [text, initials] = tests::fetch<QString, QString>();
    QCOMPARE(QString::fromStdString(base::PinyinInitials(text.toStdString())), initials);
  }
};

QTEST_APPLESS_MAIN(TestTexts)
#include "tst_texts.moc"
