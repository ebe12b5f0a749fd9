#include <QImage>

#include "tests/support/files.h"
#include "tests/support/rows.h"
#include "workbench/exchange/spreadsheet_reader.h"

namespace {

struct Result {
  int code = -1;
  QString out;
  QString error;
};

Result run(const QStringList& arguments, const QProcessEnvironment& environment) {
  QProcess process;
  process.setProcessEnvironment(environment);
  process.start(QCE_WORKBENCH, arguments);
  process.waitForFinished(280000);
  if (process.exitStatus() != QProcess::NormalExit) return {};
  return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
          QString::fromUtf8(process.readAllStandardError())};
}

QProcessEnvironment without(const QStringList& names) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const QString& name : names) environment.remove(name);
  return environment;
}

Result run(const QStringList& arguments) {
  return run(arguments, without({"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}));
}

}  // namespace

class CommandLineTest : public QObject {
  Q_OBJECT

 private slots:
  void helpIsChinese_data() {
    const tests::Rows<QStringList, QString> row;
    row("all", QStringList{"--help"}, "用法：qce-workbench [工程.qcp]");
    row("new", QStringList{"new", "--help"}, "--source 文件");
    row("check", QStringList{"check", "--help"}, "check 工程.qcp");
    row("tour", QStringList{"tour", "x.qcp", "--help"}, "--out 目录");
    row("report", QStringList{"report", "--help"}, "report 工程.qcp --out 目录");
    row("sample", QStringList{"sample", "--help"}, "--seed 种子");
    row("version", QStringList{"--version"}, "qce-workbench 0.");
  }
  void helpIsChinese() {
    const auto [arguments, part] = tests::fetch<QStringList, QString>();
    const Result result = run(arguments);
    QCOMPARE(result.code, 0);
    QVERIFY2(result.out.contains(part), qPrintable(result.out));
    QVERIFY2(result.error.isEmpty(), qPrintable(result.error));
  }

  void wrongUse_data() {
    const tests::Rows<QStringList, QString> row;
    const auto sample = [](const QString& resources) {
      return QStringList{"sample", "--resources", resources, "--seed", "1", "--out", "x.TBQD"};
    };
    row("unknown option", QStringList{"--nonsense"}, "没有选项 --nonsense");
    row("unknown command", QStringList{"open", "a.qcp"}, "没有命令 open");
    row("mistyped command", QStringList{"chekc"}, "没有命令 chekc");
    row("missing option", QStringList{"new", "--source", "a.TBQD"}, "缺少选项 --name");
    row("missing value", QStringList{"tour", "a.qcp", "--out"}, "--out 缺少内容");
    row("empty value", QStringList{"tour", "a.qcp", "--out="}, "--out 缺少内容");
    row("type",
        QStringList{"new", "--source", "a.TBQD", "--name", "a", "--type", "成本", "--out", "a.qcp"},
        "--type 只能是：投标成本测算、目标成本测算");
    row("twice", QStringList{"tour", "a.qcp", "--out", "x", "--out", "y"}, "只能给出一次");
    row("too many", QStringList{"check", "a.qcp", "b.qcp"}, "多余的参数：“b.qcp”");
    row("no operand", QStringList{"check"}, "缺少 工程.qcp");
    row("too large", sample("5000001"), "--resources");
  }
  void wrongUse() {
    const auto [arguments, message] = tests::fetch<QStringList, QString>();
    const Result result = run(arguments);
    QCOMPARE(result.code, 2);
    QVERIFY2(result.error.contains(message), qPrintable(result.error));
    QVERIFY(result.error.contains("用法："));
    QVERIFY(result.out.isEmpty());
  }

  void refusalsLeaveNothingBehind() {
    const QStringList rest{"--name", "甲", "--type", "投标成本测算", "--out"};
    const QString out = path("refused.qcp");
    const auto refused = [&](const QString& source, const QString& part) {
      const Result result = run(QStringList{"new", "--source", source} + rest + QStringList{out});
      QCOMPARE(result.code, 1);
      QVERIFY2(result.error.contains(part), qPrintable(result.error));
      QVERIFY(!QFile::exists(out));
    };
    refused(path("没有.TBQD"), "没有.TBQD");

    makeProject("原件", 60);
    tests::writeFile(path("cut.TBQD"), tests::contentOf(path("原件.TBQD")).left(2500));
    refused(path("cut.TBQD"), "行");
    QCOMPARE(QDir(dir_.path()).entryList({"*refused*"}, QDir::Files | QDir::Hidden).size(), 0);

    const QByteArray before = tests::contentOf(path("原件.qcp"));
    const Result existing = run(QStringList{"new", "--source", path("原件.TBQD")} + rest +
                                QStringList{path("原件.qcp")});
    QCOMPARE(existing.code, 1);
    QCOMPARE(tests::contentOf(path("原件.qcp")), before);
    const Result check = run({"check", path("原件.qcp")});
    QVERIFY2(check.code == 0 && check.out.contains("检查通过"), qPrintable(check.error));
    const Result report = run({"report", path("原件.qcp"), "--out", path("报表")});
    QVERIFY2(report.code == 0, qPrintable(report.error));
    const QStringList files = report.out.split('\n', Qt::SkipEmptyParts);
    QCOMPARE(files.size(), 5);
    for (const QString& file : files) QVERIFY2(QFile::exists(file), qPrintable(file));
    tests::writeFile(files.last(), "mine");
    const Result again = run({"report", path("原件.qcp"), "--out", path("报表")});
    QVERIFY2(again.code == 1 && again.error.contains("已存在"), qPrintable(again.error));
    QCOMPARE(tests::contentOf(files.last()), QByteArray("mine"));
    QCOMPARE(tests::contentOf(path("原件.qcp")), before);
    QCOMPARE(run({"check", path("cut.TBQD")}).code, 1);
    QCOMPARE(run({"check", path("没有.qcp")}).code, 1);
    QCOMPARE(run({"tour", path("没有.qcp"), "--out", path("pictures")}).code, 1);
    QCOMPARE(run({"report", path("没有.qcp"), "--out", path("report")}).code, 1);
    QVERIFY(!QFile::exists(path("report")));
  }

  void sampleFollowsItsSeedInAnyLocale() {
    QProcessEnvironment environment = without({"QT_QPA_PLATFORM", "LC_ALL"});
    environment.insert("LANG", "C");
    const auto sample = [&](const QString& name, const QString& seed) {
      const Result result =
          run({"sample", "--resources", "200", "--seed", seed, "--out", path(name)}, environment);
      return result.code == 0 ? tests::contentOf(path(name)) : result.error.toUtf8();
    };
    const QByteArray first = sample("示例.ZGXJQD", "11");
    QVERIFY2(first.startsWith("<?xml"), first);
    QCOMPARE(sample("b.ZGXJQD", "11"), first);
    QVERIFY(sample("c.ZGXJQD", "12") != first);
  }

  void windowNeedsADisplay() {
    const Result result = run({path("any.qcp")});
    QCOMPARE(result.code, 1);
    QVERIFY(result.error.contains("没有可用的显示设备"));
  }

  void tourTakesPicturesAndLeavesTheProjectAlone() {
    // Large enough that several bills of a unit work use the same resources.
    const QString project = makeProject("走查", 1000);
    const QByteArray before = tests::contentOf(project);
    const Result result = run({"tour", project, "--out", path("pictures")});
    QVERIFY2(result.code == 0, qPrintable(result.error));
    int pictures = 0;
    int spreadsheets = 0;
    for (const QString& made : result.out.split('\n', Qt::SkipEmptyParts)) {
      if (made.endsWith(".xlsx")) {
        ++spreadsheets;
        const exchange::ReadWorkbook book = exchange::readSpreadsheet(made);
        QVERIFY2(book.problem.isEmpty() && book.sheets.at(0).rowCount() > 4, qPrintable(made));
        continue;
      }
      ++pictures;
      const QImage image(made);
      QVERIFY2(image.width() >= 1000 && image.height() >= 600, qPrintable(made));
    }
    QVERIFY(pictures >= 15);
    QVERIFY(spreadsheets >= 4);
    QCOMPARE(tests::contentOf(project), before);
  }

 private:
  QString path(const QString& name) const { return dir_.filePath(name); }
  /// A project of `resources` budget items, made through the command line.
  QString makeProject(const QString& name, int resources) {
    const QString source = path(name + ".TBQD");
    QString project = path(name + ".qcp");
    const Result sample =
        run({"sample", "--resources", QString::number(resources), "--seed", "3", "--out", source});
    if (sample.code != 0) qWarning().noquote() << sample.error;
    const Result made = run(
        {"new", "--source", source, "--name", name, "--type", "投标成本测算", "--out", project});
    if (made.code != 0) qWarning().noquote() << made.error;
    return project;
  }

  QTemporaryDir dir_;
};

QTEST_GUILESS_MAIN(CommandLineTest)
#include "tst_command_line.moc"
