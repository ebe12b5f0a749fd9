#include <QtTest>

#include "host/bwidgets/header_spans.h"
#include "tests/support/rows.h"

using bwidgets::HeaderColumn;

namespace {

// "50a 30a 0b 20": width and group letter of each column.
std::vector<HeaderColumn> columns(const QString& text) {
  std::vector<HeaderColumn> made;
  for (const QString& word : text.split(' ', Qt::SkipEmptyParts)) {
    const bool grouped = word.back().isLetter();
    made.push_back(
        {(grouped ? word.chopped(1) : word).toInt(), grouped ? word.back().unicode() - 'a' : -1});
  }
  return made;
}

// "a[0-1] 0+80": group, visual columns, left and width.
QString spansText(const std::vector<HeaderColumn>& all, int frozen) {
  QStringList texts;
  for (const bwidgets::HeaderSpan& span : bwidgets::headerSpans(all, frozen)) {
    texts << QString("%1[%2-%3] %4+%5")
                 .arg(QChar('a' + span.group))
                 .arg(span.first)
                 .arg(span.last)
                 .arg(span.left)
                 .arg(span.width);
  }
  return texts.join(", ");
}

}  // namespace

class TestHeaderSpans : public QObject {
  Q_OBJECT

 private slots:
  void joinsNeighbours_data() {
    const tests::Rows<QString, int, QString> row;
    row("no columns", "", 0, "");
    row("no groups", "50 30", 1, "");
    row("one group", "40 50a 30a 20", 0, "a[1-2] 40+80");
    row("a column moved in between parts it", "50a 20 30a", 0, "a[0-0] 0+50, a[2-2] 70+30");
    row("a group moved in between parts it", "50a 20b 30a", 0,
        "a[0-0] 0+50, b[1-1] 50+20, a[2-2] 70+30");
    row("hidden columns do not part it", "50a 0 0b 30a", 0, "a[0-3] 0+80");
    row("wholly hidden", "10 0a 0a 20", 0, "");
    row("the frozen border parts it", "40 50a 30a", 2, "a[1-1] 40+50, a[2-2] 90+30");
    row("border at a hidden column", "50a 0a 30a", 2, "a[0-0] 0+50, a[2-2] 50+30");
  }
  void joinsNeighbours() {
    const auto [all, frozen, spans] = tests::fetch<QString, int, QString>();
    QCOMPARE(spansText(columns(all), frozen), spans);
  }

  void leavesRoomToScroll_data() {
    const tests::Rows<QString, int, int, int> row;
    row("fits", "100 100 100", 2, 400, 2);
    row("one too many", "100 201 100", 2, 400, 1);
    row("not even one", "400 10", 1, 400, 0);
    row("hidden ones take nothing", "100 0 200", 3, 400, 3);
    row("more than there are", "10 10", 9, 400, 2);
    row("negative", "10 10", -1, 400, 0);
  }
  void leavesRoomToScroll() {
    const auto [all, wanted, room, count] = tests::fetch<QString, int, int, int>();
    QCOMPARE(bwidgets::frozenColumnsThatFit(columns(all), wanted, room), count);
  }
};

QTEST_APPLESS_MAIN(TestHeaderSpans)
#include "tst_header_spans.moc"
