#include <QPainter>
#include <QtTest>

#include "tests/support/rows.h"
#include "workbench/exchange/page_layout.h"
#include "workbench/exchange/pdf_report.h"

using exchange::PrintedRow;

class PdfReportTest : public QObject {
  Q_OBJECT

 private slots:
  void breaksPages_data() {
    // Levels of rows that are 10 high; rooms of the first page and of the others; first rows.
    const tests::Rows<QVector<int>, double, double, QVector<int>> row;
    row("nothing", QVector<int>{}, 30.0, 50.0, QVector<int>{0});
    row("one page", QVector<int>{0, 0, 0}, 30.0, 50.0, QVector<int>{0});
    row("plain", QVector<int>{0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 30.0, 50.0, QVector<int>{0, 3, 8});
    row("total takes a row along", QVector<int>{0, 1, 1, 0}, 30.0, 50.0, QVector<int>{0, 2});
    row("headings go with their rows", QVector<int>{0, 0, 1, 2, 0}, 30.0, 50.0, QVector<int>{0, 1});
    row("nothing but headings", QVector<int>{0, 1, 2, 3, 4, 4}, 30.0, 20.0, QVector<int>{0, 3, 5});
    row("no room at all", QVector<int>{0, 0, 0}, 0.0, 5.0, QVector<int>{0, 1, 2});
  }
  void breaksPages() {
    const auto [levels, firstRoom, room, starts] =
        tests::fetch<QVector<int>, double, double, QVector<int>>();
    std::vector<PrintedRow> rows;
    for (const int level : levels) rows.push_back({10, level});
    const std::vector<int> found = exchange::pageBreaks(rows, firstRoom, room);
    QCOMPARE(QVector<int>(found.begin(), found.end()), starts);
  }

  void carriesRowsOver() {
    const auto carried = [](const QVector<int>& levels, int first, double room) {
      std::vector<PrintedRow> rows;
      for (const int level : levels) rows.push_back({10, level});
      return exchange::carryOver(rows, first, room);
    };
    QCOMPARE(carried({0, 0, 0, 0, 0, 0}, 0, 100), 3);
    QCOMPARE(carried({0, 0, 0, 1, 1, 0}, 0, 100), 2);  // with the heading of the group
    QCOMPARE(carried({0, 0, 0, 1, 1, 0}, 0, 35), -1);
    QCOMPARE(carried({0, 0, 0, 0, 0, 0}, 0, 25), -1);
    QCOMPARE(carried({0, 0, 0, 0, 0, 0}, 3, 100), -1);  // nothing would be left
  }

  void sharesTheWidth() {
    using Widths = std::vector<double>;
    QCOMPARE(exchange::columnWidths({{10, 30}, {20, 20}}, 60, 0), (Widths{40, 20}));
    QCOMPARE(exchange::columnWidths({{10, 60}, {20, 25}}, 60, 0), (Widths{35, 25}));
    QCOMPARE(exchange::columnWidths({{10, 30}, {30, 30}}, 20, 0), (Widths{5, 15}));
  }

  void printsEachPartOnPagesOfItsOwn() {
    exchange::ReportPart upright;
    upright.table.name = "窄表";
    upright.table.columns = {{"name", "名称", 200, false}, {"amount", "金额", 100, true}};
    upright.table.treeColumn = 0;
    for (int i = 0; i < 200; ++i) {
      app::SheetRow row;
      row.cells.resize(2);
      row.cells[0].value = std::string(i % 50 == 0 ? 300 : 9, 'x') + std::to_string(i);
      row.cells[1].value = i * 1000.5;
      row.level = i % 3;
      upright.table.rows.push_back(row);
    }
    int drawn = 0;
    QSizeF place;
    upright.picture = [&](QPainter&, const QRectF& at) {
      ++drawn;
      place = at.size();
    };
    exchange::ReportPart across;
    across.table.name = "宽表";
    across.table.rows.resize(1);
    for (int i = 0; i < 16; ++i) {
      across.table.columns.push_back({"", "列", 80, false});
      across.table.rows[0].cells.emplace_back().value = 123456789012.0;
    }
    const auto made =
        exchange::printReport({"工程", {{"类型", "投标"}}, "备注"}, {upright, across});
    QVERIFY(made.pdf.startsWith("%PDF-1.") && made.pdf.trimmed().endsWith("%%EOF"));
    QVERIFY(made.pages > 4 && made.pages < 8);
    QCOMPARE(made.pdf.count("/Type /Page\n"), made.pages);
    QCOMPARE(made.pdf.count("/MediaBox [0 0 842"), 1);
    QCOMPARE(drawn, 1);
    QVERIFY(place.width() > place.height());
  }
};

QTEST_MAIN(PdfReportTest)
#include "tst_pdf_report.moc"
