#include <sys/resource.h>
#include <sys/types.h>
#include <unistd.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <csignal>
#include <cstdio>

#include "tests/support/files.h"
#include "tests/support/rows.h"
#include "tests/workbench/project_fixture.h"
#include "workbench/records/project_templates.h"

using costing::Decimal;
using costing::PackedDecimal;
using records::Category;
using records::ItemField;
using store::FailureKind;

Q_DECLARE_METATYPE(store::FailureKind)

namespace {

/// Runs a statement on the file as another tool would.
void tamper(const QString& path, const QStringList& statements) {
  {
    QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "tamper");
    database.setDatabaseName(path);
    QVERIFY(database.open());
    for (const QString& statement : statements) {
      QSqlQuery query(database);
      QVERIFY2(query.exec(statement), qPrintable(query.lastError().text()));
    }
    database.close();
  }
  QSqlDatabase::removeDatabase("tamper");
}

/// Pools a part of the first budget item into an item of its unit work other than its home.
void book(tests::ProjectFixture& fixture) {
  records::Project& project = fixture.open()->project();
  {
    const app::ScopedUndo undo("");
    records::ResourceItem& item = fixture.item(0, Category::Material, 0);
    for (records::BudgetItem* from : fixture.below<records::BudgetItem>(*fixture.bills().front())) {
      if (from->resourceItem == &item) continue;
      project.pool(*from, item, project.remaining(*from) / 3);
      break;
    }
    // And gives the second item to a subcontract, next to its own bill.
    records::SubcontractData data;
    data.name = project.texts.intern("分包");
    data.unit = fixture.bills().front()->unit;
    data.price = Decimal(12);
    records::Subcontract& entry = project.addSubcontract(data);
    project.assign(entry, {fixture.bills().front()});
    project.collect(fixture.item(0, Category::Material, 1), entry);
  }
  {
    // The entry follows its bill, in the file too.
    const app::ScopedUndo undo("");
    records::BillData data = *fixture.bills().front();
    data.expression = project.texts.intern("工程量*2");
    project.set(*fixture.bills().front(), data);
  }
  fixture.close();
}

QString lineOf(FailureKind kind) {
  return QString::number(static_cast<int>(kind));
}

void say(const QString& line) {
  std::fputs(qPrintable(line + '\n'), stdout);
  std::fflush(stdout);
}

/// What this program does when it is started as another one.
int actAs(const QStringList& arguments) {
  const QString& what = arguments.at(1);
  const QString& path = arguments.at(2);
  if (what == "open-as-nobody" && ::setuid(65534) != 0) return 3;
  store::Failure failure;
  const auto opened = controllers::OpenProject::open(path, failure);
  if (!opened) {
    say(lineOf(failure.kind));
    return 1;
  }
  app::Services services;
  services.undo = &opened->undo();
  app::InstallServices(services);
  say("open");
  if (what != "edit") {
    for (;;) ::pause();
  }
  // Edits on and on; each is confirmed before its price is told.
  auto& item = *static_cast<records::ResourceItem*>(
      opened->project().subProjects().member(0)->child(0)->child(0));
  for (int price = 1;; ++price) {
    {
      const app::ScopedUndo undo("");
      opened->project().set(item, ItemField::Price, PackedDecimal(Decimal(price)));
    }
    say(QString::number(price));
  }
}

class Other {
 public:
  Other(const QString& what, const QString& path) {
    process_.start(QCoreApplication::applicationFilePath(), {"act", what, path});
    line_ = nextLine();
  }
  ~Other() { kill(); }

  QString firstLine() const { return line_; }
  QString nextLine() {
    while (!process_.canReadLine()) {
      if (!process_.waitForReadyRead(20000)) return {};
    }
    return QString::fromUtf8(process_.readLine()).trimmed();
  }
  /// SIGKILL; answers what it had still said.
  QStringList kill() {
    process_.kill();
    process_.waitForFinished();
    return QString::fromUtf8(process_.readAll()).split('\n');
  }

 private:
  QProcess process_;
  QString line_;
};

}  // namespace

class ProjectFileTest : public QObject {
  Q_OBJECT

 private slots:
  void keepsEverything() {
    tests::ProjectFixture fixture;
    QVERIFY2(fixture.made, qPrintable(fixture.failure.message));
    const auto source = exchange::SampleGenerator::officeBuilding(exchange::SourceKind::Bid);
    QCOMPARE(QDir(fixture.directory()).entryList(QDir::Files), QStringList{"办公楼.qcp"});

    controllers::OpenProject* opened = fixture.open();
    QVERIFY2(opened != nullptr, qPrintable(fixture.failure.message));
    records::Project& project = opened->project();
    QCOMPARE(project.facts.name, std::string("办公楼"));
    QCOMPARE(project.facts.costType, std::string("投标成本测算"));
    QCOMPARE(project.facts.builder, source.facts.builder);
    QCOMPARE(project.totals().budget, exchange::moneyOf(source).resources);
    QCOMPARE(project.feeTotal(), exchange::moneyOf(source).fees);
    QCOMPARE(project.unitWorks().size(), source.projects[0].unitWorks.size());
    const auto& bill = source.projects[0].unitWorks[0].sections[0];
    QCOMPARE(static_cast<records::StructureNode*>(project.unitWorks()[0]->child(0))->name,
             bill.name);
    fixture.close();
    const store::CheckReport report = store::check(fixture.path());
    QVERIFY2(report.ok(), qPrintable(report.failure.message + report.findings.join('\n')));
    QVERIFY(report.resourceItems > 100);
    QVERIFY2(report.money.contains(QString::fromStdString(source.declared.bills->toString(2))),
             qPrintable(report.money));
    // Closing leaves one file, which can be copied as it is.
    QCOMPARE(QDir(fixture.directory()).entryList(QDir::Files), QStringList{"办公楼.qcp"});
  }

  void opensFilesOfEarlierVersions_data() {
    const tests::Rows<QStringList> row{"statements"};
    const QStringList third{"DROP TABLE quantity_line", "ALTER TABLE bill DROP COLUMN type",
                            "ALTER TABLE bill DROP COLUMN remark",
                            "ALTER TABLE bill DROP COLUMN expression",
                            "ALTER TABLE bill DROP COLUMN cost_quantity"};
    const QStringList second{"DROP TABLE pooling", "DROP TABLE bill_line",
                             "ALTER TABLE resource_item DROP COLUMN own_quantity",
                             "UPDATE resource_item SET associated = 1 WHERE id % 2 = 0"};
    const QStringList fourth{"ALTER TABLE fee_item DROP COLUMN cost_base",
                             "ALTER TABLE fee_item DROP COLUMN cost_rate",
                             "ALTER TABLE fee_item DROP COLUMN cost_amount"};
    const QStringList fifth{"DROP INDEX resource_item_subcontract",
                            "ALTER TABLE resource_item DROP COLUMN subcontract_id",
                            "ALTER TABLE resource_item DROP COLUMN linked",
                            "DROP TABLE subcontract_bill", "DROP TABLE subcontract"};
    row("1", fifth + fourth + third + second + QStringList{"PRAGMA user_version = 1"});
    row("2", fifth + fourth + third + QStringList{"PRAGMA user_version = 2"});
    row("3", fifth + fourth + QStringList{"PRAGMA user_version = 3"});
    row("4", fifth + QStringList{"PRAGMA user_version = 4"});
  }
  void opensFilesOfEarlierVersions() {
    QFETCH(QStringList, statements);
    tests::ProjectFixture fixture;
    {
      // The one kind of item that has a quantity of its own.
      records::Project& project = fixture.open()->project();
      const app::ScopedUndo undo("");
      records::ResourceItemData data;
      data.code = data.name = project.texts.intern("手工");
      data.quantity = Decimal(7);
      project.add(*project.unitWorks().front(), data);
    }
    const std::string before = fixture.open()->project().dump();
    fixture.close();
    tamper(fixture.path(), statements);
    controllers::OpenProject* opened = fixture.open();
    QVERIFY2(opened != nullptr, qPrintable(fixture.failure.message));
    QVERIFY(opened->project().dump() == before);
    book(fixture);
    QCOMPARE(fixture.checked(), QString());
  }

  void projectWithoutASourceStartsFromItsTemplate() {
    const QTemporaryDir dir;
    store::NewProject answers;
    answers.costType = "目标成本测算";
    store::Failure failure;
    QStringList works;
    for (const auto& [name, key] : records::projectTemplates()) {
      answers.name = QString::fromStdString(name);
      answers.projectTemplate = QString::fromStdString(key);
      const QString path = dir.filePath(answers.name + ".qcp");
      QVERIFY2(store::ProjectFile::create(path, nullptr, answers, failure),
               qPrintable(failure.message));
      const auto opened = controllers::OpenProject::open(path, failure);
      QVERIFY2(opened != nullptr, qPrintable(failure.message));
      QCOMPARE(opened->project().itemCount(), 0);
      QVERIFY(!opened->project().allAccounts().empty());
      QStringList names;
      for (const records::StructureNode* work : opened->project().unitWorks()) {
        names << QString::fromStdString(work->name);
      }
      QCOMPARE(opened->resItemOperator().getRoot()->size(), names.size());
      QVERIFY(!names.isEmpty() && !works.contains(names.join('|')));  // no two are alike
      works << names.join('|');
    }
    QVERIFY(works.size() > 1);
  }

  void refusesWithItsOwnMessage_data() {
    const tests::Rows<QString, FailureKind, QString> row;
    row("missing", "missing", FailureKind::Missing, "不存在");
    row("text", "text", FailureKind::NotAProject, "不是成本测算工程文件");
    row("empty", "empty", FailureKind::NotAProject, "不是成本测算工程文件");
    row("directory", "directory", FailureKind::NotAProject, "不是成本测算工程文件");
    row("another database", "PRAGMA application_id = 7", FailureKind::NotAProject,
        "不是成本测算工程文件");
    row("newer", "PRAGMA user_version = 99", FailureKind::Newer, "升级本程序");
    row("no version", "PRAGMA user_version = 0", FailureKind::Damaged, "已损坏");
    row("cut short", "cut", FailureKind::Damaged, "已损坏");
    row("cut in the header", "header", FailureKind::Damaged, "文件不完整");
    row("overwritten in the middle", "scribble", FailureKind::Damaged, "已损坏");
    row("table gone", "DROP TABLE cost_total; DROP TABLE fee_item; DROP TABLE fee_group",
        FailureKind::Damaged, "已损坏");
    row("facts gone", "DELETE FROM project_fact", FailureKind::Damaged, "缺少项目信息");
    row("items gone",
        "DELETE FROM resource_item WHERE id IN (SELECT id FROM "
        "resource_item LIMIT 3)",
        FailureKind::Damaged, "引用的记录不存在");
    row("bill in the air", "UPDATE bill SET section_id = 987654", FailureKind::Damaged,
        "引用的记录不存在");
    row("no number", "UPDATE resource_item SET price = '十元'", FailureKind::Damaged, "数值不正确");
    row("huge number", "UPDATE resource_item SET price = '99999999999999999999'",
        FailureKind::Damaged, "超出可计算的范围");
    row("bookings gone", "DROP TABLE pooling", FailureKind::Damaged, "已损坏");
    row("booked across unit works",
        "INSERT INTO bill_line SELECT min(r.id), (SELECT max(id) FROM bill), 1, 0, '', '1', NULL,"
        " NULL, '' FROM resource_item r",
        FailureKind::Damaged, "不在同一单位工程");
    row("unknown category", "UPDATE resource_item SET category = 9", FailureKind::Damaged,
        "取值不正确");
  }
  void refusesWithItsOwnMessage() {
    const auto [fault, kind, words] = tests::fetch<QString, FailureKind, QString>();
    tests::ProjectFixture fixture;
    QString path = fixture.path();
    if (fault == "missing") {
      QVERIFY(QFile::remove(path));
    } else if (fault == "text") {
      tests::writeFile(path, "这是一个文本文件");
    } else if (fault == "empty") {
      tests::writeFile(path, {});
    } else if (fault == "directory") {
      path = fixture.directory();
    } else if (fault == "cut") {
      QVERIFY(QFile::resize(path, QFileInfo(path).size() * 2 / 3));
    } else if (fault == "header") {
      QVERIFY(QFile::resize(path, 50));
    } else if (fault == "scribble") {
      QByteArray content = tests::contentOf(path);
      for (int i = 4096; i < content.size() / 2; ++i) content[i] = char(i * 7);
      tests::writeFile(path, content);
    } else {
      tamper(path, fault.split("; "));
    }
    const QByteArray before = fault == "directory" ? QByteArray() : tests::contentOf(path);

    store::Failure failure;
    QVERIFY(!store::ProjectFile::open(path, failure));
    QVERIFY2(failure.kind == kind && failure.message.contains(words), qPrintable(failure.message));
    QVERIFY(failure.message.contains(path));
    QString plain = failure.message;
    plain.remove(path).remove(QRegularExpression("（技术信息：[^）]*）"));
    QVERIFY2(!plain.contains(QRegularExpression("[A-Za-z]+ [A-Za-z]+")), qPrintable(plain));
    if (fault != "directory") QVERIFY(tests::contentOf(path) == before);
    QVERIFY(!store::check(path).ok());
  }

  void refusesAFileThatAnotherProgramHasOpen() {
    tests::ProjectFixture fixture;
    Other other("hold", fixture.path());
    QCOMPARE(other.firstLine(), QStringLiteral("open"));
    QVERIFY(fixture.open() == nullptr);
    QVERIFY2(fixture.failure.kind == FailureKind::Locked, qPrintable(fixture.failure.message));
    QVERIFY(fixture.failure.message.contains("另一个程序"));
    store::Failure failure;
    QVERIFY(!store::ProjectFile::create(fixture.path(), nullptr, {}, failure, {}, true));
    QVERIFY(failure.kind == FailureKind::Locked);
    // The lock goes with the process, even with one that could not say goodbye.
    other.kill();
    QVERIFY2(fixture.open() != nullptr, qPrintable(fixture.failure.message));
    // A second time in this very program is no different, whatever the way to the file; and the
    // attempt does not take the lock away.
    const QString symbolic = fixture.directory() + "/symbolic.qcp";
    const QString hard = fixture.directory() + "/hard.qcp";
    QVERIFY(QFile::link(fixture.path(), symbolic));
    QCOMPARE(::link(QFile::encodeName(fixture.path()), QFile::encodeName(hard)), 0);
    for (const QString& path : {fixture.path(), symbolic, hard}) {
      QVERIFY(!store::ProjectFile::open(path, failure));
      QVERIFY(failure.kind == FailureKind::Locked);
    }
    QCOMPARE(Other("hold", fixture.path()).firstLine(), lineOf(FailureKind::Locked));
  }

  void refusesWithoutPermission() {
    if (::geteuid() != 0) QSKIP("only root can become somebody else");
    tests::ProjectFixture fixture;
    QVERIFY(QFile::setPermissions(fixture.directory(), QFile::Permissions(0x7755)));
    QVERIFY(QFile::setPermissions(fixture.path(), QFile::Permissions(0x6644)));
    const Other other("open-as-nobody", fixture.path());
    QCOMPARE(other.firstLine(), lineOf(FailureKind::NoPermission));
  }

  void failedCreationLeavesNothing() {
    const QTemporaryDir dir;
    const QString path = dir.filePath("a.qcp");
    const auto source = exchange::SampleGenerator::officeBuilding(exchange::SourceKind::Tender);
    store::Failure failure;
    for (const int when : {0, 20, 40, 99}) {
      QVERIFY(!store::ProjectFile::create(path, &source, {}, failure,
                                          [when](int percent) { return percent < when; }));
      QVERIFY(failure.kind == FailureKind::Cancelled);
      QVERIFY(QDir(dir.path()).isEmpty());
    }
    QVERIFY(!store::ProjectFile::create(dir.filePath("none/a.qcp"), &source, {}, failure));
    QVERIFY(failure.kind == FailureKind::Missing);
    QVERIFY(QDir(dir.path()).isEmpty());
  }

  void replacesOnlyWhenTold() {
    tests::ProjectFixture fixture;
    const QByteArray before = tests::contentOf(fixture.path());
    store::Failure failure;
    QVERIFY(!store::ProjectFile::create(fixture.path(), nullptr, {"新", {}, {}}, failure));
    QVERIFY(failure.kind == FailureKind::Exists);
    QVERIFY(!store::ProjectFile::create(
        fixture.path(), nullptr, {"新", {}, {}}, failure, [](int) { return false; }, true));
    QVERIFY(tests::contentOf(fixture.path()) == before);
    QVERIFY(store::ProjectFile::create(fixture.path(), nullptr, {"新", {}, {}}, failure, {}, true));
    QCOMPARE(fixture.open()->facts().name, std::string("新"));
  }

  void editsSurviveAKill_data() {
    const tests::Rows<int> row{"after"};
    for (const int edits : {1, 7, 150}) row(qPrintable(QString::number(edits)), edits);
  }
  void editsSurviveAKill() {
    QFETCH(int, after);
    tests::ProjectFixture fixture;
    Other other("edit", fixture.path());
    QCOMPARE(other.firstLine(), QStringLiteral("open"));
    int confirmed = 0;
    while (confirmed < after) confirmed = other.nextLine().toInt();
    const QStringList rest = other.kill();
    for (const QString& line : rest) confirmed = qMax(confirmed, line.toInt());

    controllers::OpenProject* opened = fixture.open();
    QVERIFY2(opened != nullptr, qPrintable(fixture.failure.message));
    const auto& item = *static_cast<records::ResourceItem*>(
        opened->project().subProjects().member(0)->child(0)->child(0));
    // The kill may have come between storing an edit and telling of it.
    QVERIFY(item.price().value() == Decimal(confirmed) ||
            item.price().value() == Decimal(confirmed + 1));
    QCOMPARE(fixture.checked(), QString());
  }

  void fullDiskTakesTheEditBack() {
    tests::ProjectFixture fixture;
    controllers::OpenProject* opened = fixture.open();
    records::ResourceItem& item = fixture.item(0, Category::Material, 0);
    const auto edit = [&](int price) { fixture.setPrice(item, price); };
    edit(11);
    const std::string before = opened->project().dump();

    rlimit old{};
    QCOMPARE(::getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit tight = old;
    tight.rlim_cur = 1;  // no file may grow
    std::signal(SIGXFSZ, SIG_IGN);
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &tight), 0);
    edit(12);
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &old), 0);
    QVERIFY2(fixture.message().contains("未能保存"), qPrintable(fixture.message()));
    QVERIFY(opened->project().dump() == before);
    QCOMPARE(opened->undo().stack()->count(), 1);

    edit(13);  // room again
    const std::string after = opened->project().dump();
    opened = fixture.open();
    QVERIFY2(opened != nullptr, qPrintable(fixture.failure.message));
    QVERIFY(opened->project().dump() == after);
  }

  void checkFindsWhatWasTamperedWith_data() {
    const tests::Rows<QString, QString> row;
    const QString one = QStringLiteral(" WHERE id = (SELECT min(id) FROM %1)");
    row("project total", "UPDATE cost_total SET excluded = '1' WHERE node_id = 0",
        "整个项目的不含税合计");
    row("sub-project total",
        "UPDATE cost_total SET included = '1' WHERE category = -1 AND node_id > 0", "的含税合计");
    row("group total", "UPDATE cost_total SET budget = budget || '1' WHERE category = 1",
        "材料的预算合计");
    row("missing total", "DELETE FROM cost_total WHERE category = 2", "缺少合计");
    row("item amount",
        "UPDATE resource_item SET excluded_amount = '0.01'" + one.arg("resource_item"),
        "的不含税合价");
    row("item price", "UPDATE resource_item SET price = '123456'" + one.arg("resource_item"),
        "的含税合价");
    row("item quantity", "UPDATE resource_item SET quantity = '9.87'" + one.arg("resource_item"),
        "的数量");
    row("budget line", "UPDATE budget_item SET amount = '0.01'" + one.arg("budget_item"),
        "的预算工料机");
    row("bill", "UPDATE bill SET amount = '0.01'" + one.arg("bill"), "清单合价");
    row("fee", "UPDATE fee_item SET amount = '0.01'" + one.arg("fee_item"), "间接费");
    row("declared money", "UPDATE project_fact SET value = '1' WHERE name = 'declared_resources'",
        "申报金额");
    row("pooled too much", "UPDATE pooling SET quantity = '987654321'", "超过其数量");
    row("nothing pooled", "UPDATE pooling SET quantity = '0'", "应大于 0");
    row("pooled backwards", "UPDATE pooling SET quantity = '-1'", "应大于 0");
    row("pooling gone", "DELETE FROM pooling", "的数量：保存的是");
    row("budget share",
        "UPDATE resource_item SET budget_amount = '0.01'"
        " WHERE id = (SELECT resource_item_id FROM pooling)",
        "的预算合价");
    row("quantity of a bill line", "UPDATE bill_line SET coefficient = '3'", "的数量：保存的是");
    row("coefficient 0", "UPDATE bill_line SET coefficient = '0'", "系数为零");
    row("price of a bill line", "UPDATE bill_line SET price = '7.5'", "的不含税合价");
    row("price below 0", "UPDATE bill_line SET price = '-7.5'", "分包单价为负数");
    row("mark gone", "UPDATE resource_item SET associated = 0", "关联标记");
    row("mark of nothing", "UPDATE resource_item SET associated = 1", "关联标记");
    row("item given away", "UPDATE resource_item SET subcontract_id = NULL", "的不含税合价");
    row("item not linked", "UPDATE resource_item SET linked = 0" + one.arg("resource_item"),
        "的含税合价");
    row("subcontract's price", "UPDATE subcontract SET price = '13'", "分包  分包 的不含税合价");
    row("subcontract's bills", "DELETE FROM subcontract_bill", "的计量数量");
    row("unit of a subcontract", "UPDATE subcontract SET unit = 'x'", "工程量不能相加");
    row("own quantity", "UPDATE resource_item SET own_quantity = '5'" + one.arg("resource_item"),
        "的自有数量");
  }
  void checkFindsWhatWasTamperedWith() {
    const auto [statement, words] = tests::fetch<QString, QString>();
    tests::ProjectFixture fixture;
    book(fixture);
    QVERIFY(store::check(fixture.path()).ok());
    tamper(fixture.path(), {statement});
    const store::CheckReport report = store::check(fixture.path());
    QVERIFY2(report.failure.kind == FailureKind::None, qPrintable(report.failure.message));
    QVERIFY2(report.findings.join('\n').contains(words), qPrintable(report.findings.join('\n')));
  }
};

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  if (arguments.value(1) == "act") return actAs(arguments.mid(1));
  ProjectFileTest test;
  return QTest::qExec(&test, argc, argv);
}
#include "tst_project_file.moc"
