#include <QtTest>

#include "host/app/spreadsheet.h"

class SpreadsheetTest : public QObject {
  Q_OBJECT

 private slots:
  void totalsAreTheSumsOfTheShownLeaves() {
    app::Sheet sheet;
    sheet.columns = {{"name", "名称"}, {"total", "合价"}, {"rate", "税率"}, {"total2", "含税合价"}};
    sheet.treeColumn = 0;
    sheet.rows = {row(0, 1e6), row(1, 0.005), row(1, 0.005), row(0, 1e6),
                  row(1, 1e6), row(2, 0.1),   row(2, 0.2, 3)};
    app::AddTotals(sheet, "合计", {"total2", "total", "unknown"});

    QVERIFY(sheet.totals.has_value());
    const std::vector<app::SheetCell>& cells = sheet.totals->cells;
    QCOMPARE(cells.size(), std::size_t(4));
    QCOMPARE(std::get<std::string>(cells[0].value), std::string("合计"));
    // 0.01 + 0.01 as shown, and not 0.005 + 0.005; the rows above others do not count.
    QCOMPARE(std::get<double>(cells[1].value), 0.32);
    QCOMPARE(cells[1].places, 3);
    QVERIFY(std::holds_alternative<std::monostate>(cells[2].value));
    QCOMPARE(std::get<double>(cells[3].value), 0.0);  // no numbers
  }

  void withoutSuchColumnsThereAreNoTotals() {
    app::Sheet sheet;
    sheet.columns = {{"name", "名称"}};
    sheet.rows = {row(0, 1)};
    app::AddTotals(sheet, "合计", {"total"});
    QVERIFY(!sheet.totals.has_value());
  }

  void manyLinesAddUpToTheCent() {
    app::Sheet sheet;
    sheet.columns = {{"name", "名称"}, {"total", "合价"}};
    sheet.rows.assign(1000000, row(0, 1234567.89));
    app::AddTotals(sheet, "合计", {"total"});
    QCOMPARE(std::get<double>(sheet.totals->cells[1].value), 1234567890000.0);
  }

 private:
  static app::SheetRow row(int level, double total, int places = 2) {
    app::SheetRow made;
    made.level = level;
    made.cells.resize(2);
    made.cells[0].value = std::string("行");
    made.cells[1].value = total;
    made.cells[1].places = places;
    return made;
  }
};

QTEST_GUILESS_MAIN(SpreadsheetTest)
#include "tst_spreadsheet.moc"
