#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QStatusBar>
#include <QToolButton>

#include "tests/support/files.h"
#include "tests/workbench/project_fixture.h"
#include "workbench/exchange/spreadsheet_reader.h"
#include "workbench/records/summary.h"
#include "workbench/services/install.h"
#include "workbench/services/templates.h"
#include "workbench/shell/application.h"
#include "workbench/shell/main_window.h"
#include "workbench/shell/report.h"

namespace {

class GivenFolder : public shell::FileChooser {
 public:
  explicit GivenFolder(QString path) : path_(std::move(path)) {}
  QString folderToWrite(QWidget*, const QString&) override { return path_; }
  bool showFolder(const QString& path) override {
    shown << path;
    return shown.size() < 2;
  }
  QStringList shown;

 private:
  QString path_;
};

}  // namespace

class ReportTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { shell::setUpApplication(*qApp); }

  void spreadsheetsHoldTheFigures() {
    tests::ProjectFixture fixture;
    records::Project& project = fixture.open()->project();
    fixture.setPrice(fixture.item(0, records::Category::Labour, 0), 4321);
    const records::FeeTemplate fees = services::loadFeeTemplate({});
    const QDir folder(fixture.directory() + "/报表/一月");
    const shell::ReportResult made = shell::writeReport(project, fees, folder.path());
    QCOMPARE(made.problem, QString());
    QCOMPARE(made.files.size(), 5);
    QCOMPARE(folder.entryList(QDir::Files | QDir::Hidden).size(), 5);

    int row = 0;
    exchange::ReadSheet sheet;
    const auto compare = [&](const records::SummaryLine& line, int level) {
      QCOMPARE(sheet.rows.value(row).level, level);
      QCOMPARE(sheet.cell(row, 0).text.toStdString(), line.name);
      QCOMPARE(sheet.cell(row, 1).number, line.income.toDouble());
      QCOMPARE(sheet.cell(row, 2).number, line.cost.toDouble());
      QCOMPARE(sheet.cell(row, 3).number, line.difference().toDouble());
      QCOMPARE(sheet.cell(row, 4).number, line.share.toDouble());
      QCOMPARE(sheet.cell(row, 1).numberFormat, QString("#,##0.00"));
      ++row;
    };
    const std::function<void(const std::vector<records::SummaryLine>&, int)> compareAll =
        [&](const std::vector<records::SummaryLine>& lines, int level) {
          for (const records::SummaryLine& line : lines) {
            compare(line, level);
            compareAll(line.lines, level + 1);
          }
        };
    for (int i = 0; i < 3; ++i) {
      const auto kind = static_cast<records::SummaryKind>(i);
      const exchange::ReadWorkbook book = exchange::readSpreadsheet(made.files[i]);
      QCOMPARE(book.problem, QString());
      sheet = book.sheets.front();
      QCOMPARE(sheet.name.toStdString(), records::nameOf(kind));
      QCOMPARE(sheet.cell(0, 1).text, QString("收入（不含税）"));
      row = 1;
      const records::SummaryLine total = records::summarize(project, kind, fees);
      compareAll(total.lines, 0);
      compare(total, 0);
      QCOMPARE(sheet.rowCount(), row);
    }

    sheet = exchange::readSpreadsheet(made.files[3]).sheets.front();
    int items = 0;
    records::forEachFee(project.feeGroups().rows(), [&](const records::IndirectFeeItem& fee) {
      ++items;
      for (int at = 1; at < sheet.rowCount(); ++at) {
        if (sheet.cell(at, 0).text.toStdString() != fee.code) continue;
        QCOMPARE(sheet.cell(at, 1).text.toStdString(), fee.name);
        QCOMPARE(sheet.cell(at, 5).number, fee.amount.toDouble());
        QCOMPARE(sheet.cell(at, 9).number, project.figures(fee).amount.toDouble());
        return;
      }
      QFAIL(("missing: " + fee.code).c_str());
    });
    QVERIFY(items > 10);
    QStringList titles;
    for (int column = 3; column < 11; ++column) titles << sheet.cell(0, column).text;
    QCOMPARE(titles.join(' '),
             QString("预算基数（元） 预算费率（%） 预算金额（元） 成本基数算式 成本基数（元） "
                     "成本费率（%） 成本金额（元） 预算减成本（元）"));
    QCOMPARE(sheet.cell(sheet.rowCount() - 1, 5).number, project.feeBudget().toDouble());
    QCOMPARE(sheet.cell(sheet.rowCount() - 1, 9).number, project.feeTotal().toDouble());
    QVERIFY(tests::contentOf(made.files[4]).startsWith("%PDF-"));
  }

  void theMenuAsksBeforeItReplaces() {
    tests::ProjectFixture fixture;
    const QString home = fixture.directory();
    auto recording = std::make_unique<services::RecordingChannel>();
    services::RecordingChannel& channel = *recording;
    const auto installed =
        services::install(std::make_unique<services::PathManager>(home), std::move(recording));
    shell::MainWindow window(*installed);
    auto* action = window.findChild<QAction*>("actionReport");
    QVERIFY(!action->isEnabled());
    QVERIFY(window.openProject(fixture.path()));
    const QDir folder(home + "/出");
    auto* chooser = new GivenFolder(folder.path());
    window.setFileChooser(std::unique_ptr<shell::FileChooser>(chooser));
    window.resize(1024, 720);
    window.show();
    auto* open = window.findChild<QToolButton*>("openFolder");
    QVERIFY(!open->isVisible());
    action->trigger();
    QCOMPARE(folder.entryList(QDir::Files), [] {
      QStringList names = shell::reportFileNames();
      std::sort(names.begin(), names.end());
      return names;
    }());
    QVERIFY(channel.messages().empty());
    QTRY_VERIFY(open->isVisible());
    QTest::mouseClick(open, Qt::LeftButton);
    QCOMPARE(chooser->shown, QStringList(folder.path()));
    QVERIFY(channel.messages().empty());
    QTest::mouseClick(open, Qt::LeftButton);  // no file manager this time
    QVERIFY(channel.messages().back().text.find("文件管理器") != std::string::npos);
    channel.clear();
    auto* totals = window.findChild<QLabel*>("totalsText");
    QVERIFY(window.statusBar()->currentMessage().contains(folder.path()));
    window.statusBar()->clearMessage();
    QVERIFY(!open->isVisible() && totals->isVisible());

    const QString first = folder.filePath(shell::reportFileNames().first());
    tests::writeFile(first, "mine");
    channel.answerNext(QMessageBox::No);
    action->trigger();
    QCOMPARE(tests::contentOf(first), QByteArray("mine"));
    channel.answerNext(QMessageBox::Yes);
    action->trigger();
    QVERIFY(tests::contentOf(first) != "mine");
    QCOMPARE(channel.messages().size(), std::size_t(2));

    // A file in the way of the folder.
    window.setFileChooser(std::make_unique<GivenFolder>(first + "/下级"));
    action->trigger();
    QCOMPARE(channel.messages().size(), std::size_t(3));
    QVERIFY(channel.messages().back().text.find("换一个位置") != std::string::npos);
  }
};

QTEST_MAIN(ReportTest)
#include "tst_report.moc"
