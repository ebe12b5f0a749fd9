#include <sys/resource.h>

#include <csignal>
#include <limits>

#include "tests/support/files.h"
#include "tests/support/rows.h"
#include "workbench/exchange/file_replacement.h"
#include "workbench/exchange/spreadsheet_names.h"
#include "workbench/exchange/spreadsheet_reader.h"
#include "workbench/exchange/spreadsheet_writer.h"

using exchange::ReadCell;

namespace {

app::SheetCell cell(decltype(app::SheetCell::value) value, int places = 2) {
  app::SheetCell made;
  made.value = std::move(value);
  made.places = places;
  return made;
}

app::SheetCell text(const char* content) {
  return cell(std::string(content));
}

/// Writes beyond `bytes` fail while this lives, as on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int) = nullptr;
};

}  // namespace

class SpreadsheetTest : public QObject {
  Q_OBJECT

 private slots:
  void init() { dir_ = std::make_unique<QTemporaryDir>(); }

  void laysOutHeaderTreeAndTotals() {
    app::Sheet sheet;
    sheet.name = "人材机";
    sheet.columns = {{"code", "编码", 110},
                     {"name", "名称", 180},
                     {"amount", "数量", 77},
                     {"price", "单价", 130, true},
                     {"note", "备注", 61}};
    sheet.groups = {{"用量单价", 2, 3}, {"其他", 4, 4}};
    sheet.frozenColumns = 2;
    sheet.treeColumn = 1;
    sheet.rows = {row(0, "材料"), row(1, "钢筋"), row(2, "螺纹钢"),
                  row(2, "圆钢"), row(1, "水泥"), row(0, "机械")};
    sheet.rows[1].collapsed = true;
    sheet.totals = row(0, "合计");
    const exchange::ReadSheet read = roundTrip(sheet);

    QCOMPARE(read.name, QString("人材机"));
    QCOMPARE(read.merges, QStringList({"C1:D1", "A1:A2", "B1:B2"}));
    QCOMPARE(read.cell(0, 0).text + read.cell(0, 2).text + read.cell(1, 3).text,
             "编码用量单价单价");
    QCOMPARE(read.cell(0, 4).text + read.cell(1, 4).text, QString("其他备注"));
    QVERIFY(read.cell(0, 1).bold);
    QCOMPARE(read.cell(0, 1).alignment, QString("center"));
    QCOMPARE(read.frozenRows, 2);
    QCOMPARE(read.frozenColumns, 2);
    QVERIFY(read.summaryAbove);
    for (int column = 0; column < 5; ++column) {
      QCOMPARE(read.widths[column], sheet.columns[std::size_t(column)].width);
    }
    QStringList outline;
    for (int at = 2; at < read.rowCount(); ++at) {
      const exchange::ReadRow& found = read.rows[at];
      outline << QString("%1%2%3%4")
                     .arg(found.level)
                     .arg(found.collapsed ? "+" : "", found.hidden ? "-" : "",
                          read.cell(at, 1).text);
    }
    QCOMPARE(outline.join(" "), QString("0材料 1+钢筋 2-螺纹钢 2-圆钢 1水泥 0机械 0合计"));
    QCOMPARE(read.cell(4, 1).indent, 2);
    QCOMPARE(read.cell(2, 1).indent, 0);
    QVERIFY(read.cell(8, 3).bold);
    QVERIFY(!read.cell(7, 3).bold);
    QVERIFY(read.cell(8, 3).background.isValid());
  }

  void keepsNumbersAsNumbers_data() {
    const tests::Rows<double, int, bool, QString> row;
    row("money", 1234567.005, 2, true, "#,##0.00");
    row("six places", 0.000001, 6, false, "0.000000");
    row("more places than a double has", 0.1, 40, false, "0.000000000000000");
    row("negative", -2.675, 2, true, "#,##0.00");
    row("very large", 9e307, 2, false, "0.00");
    row("negative zero", -0.0, 2, false, "0.00");
  }
  void keepsNumbersAsNumbers() {
    const auto [value, places, thousands, format] = tests::fetch<double, int, bool, QString>();
    app::Sheet sheet = oneCell(cell(value, places));
    sheet.columns[0].thousands = thousands;
    const ReadCell found = roundTrip(sheet).cell(1, 0);
    QCOMPARE(found.kind, ReadCell::Number);
    QVERIFY(std::abs(found.number - value) <= std::abs(value) * 1e-15);
    QVERIFY(!std::signbit(found.number) || value < 0);
    QCOMPARE(found.numberFormat, format);
  }

  void whatIsNoNumberIsAnEmptyCell() {
    // The largest double is beyond the numbers of a spreadsheet.
    using Limits = std::numeric_limits<double>;
    for (const double value : {Limits::quiet_NaN(), -Limits::infinity(), Limits::max()}) {
      QCOMPARE(roundTrip(oneCell(cell(value))).cell(1, 0).kind, ReadCell::Empty);
    }
    QCOMPARE(roundTrip(oneCell({})).cell(1, 0).kind, ReadCell::Empty);
    QCOMPARE(roundTrip(oneCell(cell(false))).cell(1, 0).kind, ReadCell::Empty);
    const ReadCell yes = roundTrip(oneCell(cell(true))).cell(1, 0);
    QCOMPARE(yes.text, QString("√"));
    QCOMPARE(yes.alignment, QString("center"));
  }

  void keepsTextsAsTexts_data() {
    const tests::Rows<QString> row;
    row("formula", "=1+1");
    row("link formula", "=HYPERLINK(\"http://x\",\"点\")");
    row("array formula", "{=SUM(A1:A2)}");
    row("digits", "00123.50");
    row("address", "https://example.org/");
    row("marks", "<a> & \"b\" 'c' ]]>");
    row("line break", "一行\n二行\t制表");
    row("control character", QString("a\x01") + "b\x1f");
    row("escape", "_x0041_ _x005F_ _xZZZZ_");
    row("beyond the base plane", "𠮷野家 ㎡ ①");
    row("longest", QString("长").repeated(32767));
  }
  void keepsTextsAsTexts() {
    const auto [content] = tests::fetch<QString>();
    const ReadCell found = roundTrip(oneCell(cell(content.toStdString()))).cell(1, 0);
    QCOMPARE(found.kind, ReadCell::Text);
    QCOMPARE(found.text, content);
    QCOMPARE(found.numberFormat, QString(content.size() < 100 ? "@" : "General"));
  }

  void keepsLooksAndFoldsDeepLevels() {
    app::SheetCell marked = text("名");
    marked.background = base::Color{0, 0, 0};
    marked.foreground = base::Color{255, 0x80, 1};
    marked.bold = true;
    marked.alignment = app::SheetAlignment::Right;
    app::Sheet sheet = oneCell(marked);
    sheet.wrapTexts = true;
    const ReadCell found = roundTrip(sheet).cell(1, 0);
    QCOMPARE(found.background, QColor(0, 0, 0));
    QCOMPARE(found.foreground, QColor(255, 0x80, 1));
    QVERIFY(found.bold && found.wrap);
    QCOMPARE(found.alignment, QString("right"));
    for (int level = 1; level < 12; ++level) sheet.rows.push_back(row(level, "下"));
    const exchange::ReadSheet deep = roundTrip(sheet);  // the format ends at level 7
    QCOMPARE(deep.rows[8].level, 7);
    QCOMPARE(deep.rows[12].level, 7);
  }

  void severalSheetsInOneFile() {
    app::Sheet first = oneCell(text("一"));
    app::Sheet second = oneCell(text("二"));
    first.name = second.name = "费用/汇总";
    QCOMPARE(exchange::writeSpreadsheet({first, second}, path()), QString());
    const exchange::ReadWorkbook book = exchange::readSpreadsheet(path());
    QCOMPARE(book.problem, QString());
    QCOMPARE(book.sheets.size(), std::size_t(2));
    QCOMPARE(book.sheets[0].name + book.sheets[1].name, QString("费用_汇总费用_汇总 (2)"));
    QCOMPARE(book.sheets[1].cell(1, 0).text, QString("二"));
  }

  void namesAreWhatSheetsAndFilesMayBeCalled() {
    const QString longName = QString("工程").repeated(20);
    const QStringList names = exchange::sheetNames(
        {"a[b]:*?/\\c", "'甲'", "", "  ", "history", longName, longName, "Abc", "aBC"});
    QCOMPARE(names.mid(0, 5), QStringList({"a_b______c", "甲", "表", "表 (2)", "history_"}));
    QCOMPARE(names[5], longName.left(31));
    QCOMPARE(names[6], longName.left(27) + " (2)");
    QCOMPARE(names[8], QString("aBC (2)"));

    QCOMPARE(exchange::spreadsheetFileName("间接费用"), QString("间接费用.xlsx"));
    QCOMPARE(exchange::spreadsheetFileName("1.2 a/b:c*?\"<>|\\"), QString("1.2 a_b_c_______.xlsx"));
    QCOMPARE(exchange::spreadsheetFileName(" .. "), QString("导出.xlsx"));
    QCOMPARE(exchange::spreadsheetFileName("nul"), QString("_nul.xlsx"));
    QCOMPARE(exchange::spreadsheetFileName(QString("𠮷").repeated(99)).size(), 80 + 5);
  }

  void refusesWhatDoesNotFit() {
    app::Sheet sheet = oneCell(text("行"));
    sheet.name = "清单";
    sheet.rows.assign(1048575, app::SheetRow());
    sheet.totals = app::SheetRow();
    expectRefusal({sheet}, path(), {"“清单”", "1048575 行", "1048574 行", "过滤"});
    sheet.rows.assign(2, row(0, "行"));
    sheet.rows[1].cells[0].value = QString("长").repeated(32768).toStdString();
    expectRefusal({sheet}, path(), {"第 2 行", "“名称”", "32768", "32767", "缩短"});
    sheet.columns.clear();
    expectRefusal({sheet}, path(), {"“清单”", "没有显示任何列"});
    expectRefusal({}, path(), {"没有可以导出的表格"});
    expectRefusal({oneCell({})}, dir_->filePath("表.xls"), {"表.xls", "必须是 .xlsx"});
  }

  void namesThePlaceThatCannotBeWritten() {
    tests::writeFile(dir_->filePath("文件"), "x");
    QVERIFY(QDir(dir_->path()).mkdir("夹.xlsx"));
    const std::vector<app::Sheet> sheets{oneCell(text("甲"))};
    expectRefusal(sheets, dir_->filePath("无/此/表.xlsx"), {"无", "不存在", "建立"});
    expectRefusal(sheets, dir_->filePath("文件/表.xlsx"), {"文件", "不是文件夹", "换一个位置"});
    expectRefusal(sheets, dir_->filePath("夹.xlsx"), {"夹.xlsx", "是一个文件夹"});
    expectRefusal(sheets, "/proc/表.xlsx", {"/proc", "写入权限", "换一个位置"});
  }

  void leavesAFileAloneThatIsOpenElsewhere() {
    for (const char* mark : {".~lock.表.xlsx#", "~$表.xlsx"}) {
      tests::writeFile(path(), "旧");
      tests::writeFile(dir_->filePath(mark), "");
      expectRefusal({oneCell(text("甲"))}, path(),
                    {"表.xlsx", "另一个程序", "关闭", "换一个文件名"});
      QCOMPARE(tests::contentOf(path()), QByteArray("旧"));
      QVERIFY(QFile::remove(dir_->filePath(mark)));
    }
    QCOMPARE(exchange::writeSpreadsheet({oneCell(text("甲"))}, path()), QString());
  }

  void aFullDiskLeavesTheOldFileAndNothingElse() {
    tests::writeFile(path(), "旧");
    app::Sheet sheet = oneCell(text("甲"));
    for (int i = 0; i < 5000; ++i) {
      sheet.rows.push_back(row(0, QByteArray::number(i * 7919LL).constData()));
    }
    // The limits let the library come to an end at different stages.
    for (const rlim_t bytes : {1000, 4096, 20000, 60000, 100000}) {
      const FileSizeLimit full(bytes);
      const QString problem = exchange::writeSpreadsheet({sheet}, path());
      QVERIFY2(problem.contains("磁盘可能已满") && problem.contains("重试"), qPrintable(problem));
      QCOMPARE(tests::contentOf(path()), QByteArray("旧"));
      QCOMPARE(QDir(dir_->path()).entryList(QDir::Files | QDir::Hidden), QStringList("表.xlsx"));
    }
    QCOMPARE(exchange::writeSpreadsheet({sheet}, path()), QString());
    QCOMPARE(exchange::readSpreadsheet(path()).sheets.at(0).rowCount(), 5002);
  }

  void replacesAFileAsAWhole() {
    QVERIFY(exchange::readSpreadsheet(path()).problem.contains("不是电子表格文件"));
    QByteArray content(3 << 20, 'x');
    QBuffer buffer(&content);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    tests::writeFile(path(), "旧");
    {
      const FileSizeLimit full(1 << 20);
      const QString problem = exchange::replaceFile(buffer, path());
      QVERIFY2(problem.contains("原来的文件没有改变"), qPrintable(problem));
    }
    QCOMPARE(tests::contentOf(path()), QByteArray("旧"));
    buffer.seek(0);
    QCOMPARE(exchange::replaceFile(buffer, path()), QString());
    QCOMPARE(tests::contentOf(path()), content);
    QCOMPARE(QDir(dir_->path()).entryList(QDir::Files | QDir::Hidden), QStringList("表.xlsx"));
  }

 private:
  QString path() const { return dir_->filePath("表.xlsx"); }

  static app::SheetRow row(int level, const char* name) {
    app::SheetRow made;
    made.level = level;
    made.cells = {text("C1"), text(name), cell(1.5, 3), cell(2.0)};
    return made;
  }
  static app::Sheet oneCell(const app::SheetCell& content) {
    app::Sheet sheet;
    sheet.name = "表";
    sheet.columns = {{"name", "名称", 100}};
    sheet.rows.resize(1);
    sheet.rows[0].cells = {content};
    return sheet;
  }

  exchange::ReadSheet roundTrip(const app::Sheet& sheet) const {
    const QString problem = exchange::writeSpreadsheet({sheet}, path());
    const exchange::ReadWorkbook book = exchange::readSpreadsheet(path());
    if (!problem.isEmpty() || !book.problem.isEmpty() || book.sheets.size() != 1) {
      qWarning() << problem << book.problem;
      return {};
    }
    return book.sheets.front();
  }

  void expectRefusal(const std::vector<app::Sheet>& sheets, const QString& to,
                     const QStringList& parts) const {
    const bool was = QFile::exists(to);
    const QString problem = exchange::writeSpreadsheet(sheets, to);
    for (const QString& part : parts) QVERIFY2(problem.contains(part), qPrintable(problem));
    QCOMPARE(QFile::exists(to), was);
  }

  std::unique_ptr<QTemporaryDir> dir_;
};

QTEST_GUILESS_MAIN(SpreadsheetTest)
#include "tst_spreadsheet.moc"
