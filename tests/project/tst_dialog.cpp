#include <sys/stat.h>
#include <unistd.h>

#include "host/app/services.h"
#include "project/checks.h"
#include "project/dialog.h"
#include "tests/support/files.h"
#include "tests/support/rows.h"
#include "tests/support/test_main.h"

using gui::qce::ProjectNameProblem;
using gui::qce::QCENewProjectViewImpl;

namespace {

const char* const Filter =
    "文件(*.ZBQD *.TBQD *.ZGXJQD *.CZB *.CTB *.GCLQD) ;;招标文件(*.ZBQD);;投标文件(*.TBQD);;"
    "控制价文件(*.ZGXJQD);;CZB格式(*.CZB);;CTB格式(*.CTB);;标准文件(*.GCLQD)";

/// Everything that the dialog says and asks, in order.
QStringList journal;

class RecordingChannel : public app::Channel {
  int message(const std::string& text, int buttons) override {
    journal << QString("message %1: %2").arg(buttons).arg(QString::fromStdString(text));
    return QMessageBox::Ok;
  }
};

class Paths : public app::PathMgr {
 public:
  std::string documents, templates;

 private:
  std::string getPath(const std::string& key) const override {
    return key == "DocumentsLocation" ? documents : std::string();
  }
  std::string getTemplatePath() const override { return templates; }
};

class Controller : public abst::qce::QCENewProjectController {
 public:
  std::string problem;
  bool creates = true;

 private:
  std::string checkSource(const std::string& path, const std::string& type) const override {
    journal << QString("check %1 as %2")
                   .arg(QFileInfo(QString::fromStdString(path)).fileName(),
                        QString::fromStdString(type));
    return problem;
  }
  bool createProject(const abst::qce::QCENewProjectView& answers) override {
    std::string path, name;
    answers.readFilePath(path, name);
    journal << QString("create %1 from %2, %3, %4, %5")
                   .arg(QString::fromStdString(name),
                        QFileInfo(QString::fromStdString(path)).fileName(),
                        QString::fromStdString(answers.getType()),
                        QString::fromStdString(answers.getCostPlanName()),
                        QString::fromStdString(answers.getProjectTemplate()));
    return creates;
  }
};

/// The dialog with a chooser that answers at once.
class Dialog : public QCENewProjectViewImpl {
 public:
  QString chosen;

  QLineEdit* edit(const QString& name) const { return findChild<QLineEdit*>(name); }
  QComboBox* combo(const QString& name) const { return findChild<QComboBox*>(name); }
  QAbstractButton* button(const QString& text) const {
    for (auto* candidate : findChildren<QAbstractButton*>()) {
      if (candidate->text() == text) return candidate;
    }
    return nullptr;
  }
  void click(const QString& text) { QTest::mouseClick(button(text), Qt::LeftButton); }
  QString typeOfFile() const { return QString::fromStdString(getSelectFileType()); }

 private:
  QString chooseFile(const QString& caption, const QString& directory,
                     const QString& filter) override {
    journal << caption << directory << filter;
    return chosen;
  }
};

QStringList items(const QComboBox* box) {
  QStringList found;
  for (int i = 0; i < box->count(); ++i) found << box->itemText(i);
  return found;
}

}  // namespace

class TestDialog : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    journal.clear();
    folder_ = std::make_unique<QTemporaryDir>();
    QVERIFY(folder_->isValid());
    paths_.documents = folder_->path().toStdString();
    paths_.templates = folder_->filePath("data").toStdString();
    app::Services services;
    services.qceChannel = &channel_;
    services.pathMgr = &paths_;
    before_ = app::InstallServices(services);
  }

  void cleanup() { app::InstallServices(before_); }

  void showsItsTextsUncut() {
    file("data/汇报表/汇报表模板/成本测算汇报表.hbbmb");
    Dialog dialog;
    dialog.setProjectTemplates({{"房屋建筑与装饰工程", "building"}});
    dialog.show();
    QCOMPARE(dialog.size(), QSize(530, 420));
    QCOMPARE(dialog.minimumSize(), dialog.maximumSize());
    QCOMPARE(dialog.windowTitle(), "新建成本测算");
    QVERIFY(!dialog.windowIcon().pixmap(16, 16).isNull());
    QCOMPARE(dialog.edit("path")->placeholderText(), "选择招投标文件或造价标准数据文件");
    const auto whole = [&](const QWidget* part, const QString& text) {
      QVERIFY2(part->width() >= part->sizeHint().width(), qPrintable(text));
      QVERIFY2(part->height() >= part->sizeHint().height(), qPrintable(text));
      QVERIFY2(dialog.rect().contains(QRect(part->mapTo(&dialog, {}), part->size())),
               qPrintable(text));
    };
    QStringList labels;
    for (auto* label : dialog.findChildren<QLabel*>()) {
      labels << label->text();
      whole(label, label->text());
    }
    for (const auto* text : {"选择文件", "工程名称", "工程模板", "成本类型", "汇报表模板",
                             "软件支持两种成本测算方式：", "方式1：直接新建工程",
                             "方式2：选择各地造价标准文件、电子标文件新建"}) {
      QVERIFY2(labels.contains(text), text);
    }
    for (const auto* text : {"浏览", "新建", "取消", "投标成本测算", "目标成本测算"}) {
      whole(dialog.button(text), text);
    }
    int borderless = 0;
    for (auto* widget : dialog.findChildren<QWidget*>()) {
      borderless += widget->styleSheet() == "border: none;";
    }
    QCOMPARE(borderless, 1);
  }

  void preparesOnShowAndExec() {
    Dialog dialog;
    dialog.setProjectTemplates({{"乙", "2"}, {"甲", "1"}});
    QCOMPARE(dialog.combo("projectTemplate")->count(), 0);
    const auto spoil = [&] {
      dialog.edit("path")->setText("/x.CZB");
      dialog.edit("name")->setText("旧工程");
      dialog.edit("costPlan")->setText("别的");
      dialog.combo("projectTemplate")->addItem("丙");
      dialog.combo("projectTemplate")->setCurrentIndex(1);
    };
    const auto verify = [&] {
      QCOMPARE(dialog.edit("path")->text(), "/x.CZB");
      QCOMPARE(dialog.edit("name")->text(), "");
      QCOMPARE(dialog.edit("costPlan")->text(), "成本计划工程");
      QCOMPARE(items(dialog.combo("projectTemplate")), (QStringList{"乙", "甲"}));
      QCOMPARE(dialog.getProjectTemplate(), std::string("2"));
      QVERIFY(dialog.isVisible());
      dialog.close();
    };
    const std::function<void()> ways[] = {[&] { dialog.show(); }, [&] { dialog.open(); },
                                          [&] { QTimer::singleShot(0, &dialog, verify); }};
    for (const auto& way : ways) {
      spoil();
      way();
      if (dialog.isVisible()) verify();
    }
    QCOMPARE(dialog.exec(), int(QDialog::Rejected));

    dialog.setProjectTemplates({});
    dialog.show();
    QVERIFY(!dialog.combo("projectTemplate")->isEnabled());
    QCOMPARE(dialog.getProjectTemplate(), std::string());
  }

  void takesAChosenFileAndProposesAName_data() {
    const tests::Rows<QString, QString> row;
    row("plain", "/d/办公楼.TBQD", "办公楼");
    row("two dots", "D:/a/项目.v2.ZBQD", "项目");
    row("dot in a folder", "/v1.2/桥", "桥");
    row("nothing before the dot", "/d/.CZB", "");
  }
  void takesAChosenFileAndProposesAName() {
    const auto [path, name] = tests::fetch<QString, QString>();
    Dialog dialog;
    dialog.show();
    dialog.edit("name")->setText("旧");
    dialog.chosen = path;
    dialog.click("浏览");
    QCOMPARE(journal, (QStringList{"打开", folder_->path(), Filter}));
    QCOMPARE(dialog.edit("path")->text(), path);
    QCOMPARE(dialog.edit("path")->toolTip(), path);
    QCOMPARE(dialog.edit("path")->cursorPosition(), 0);
    QCOMPARE(dialog.edit("name")->text(), name);

    dialog.edit("name")->setText("我的工程");
    dialog.chosen.clear();  // cancelled: nothing changes
    dialog.click("浏览");
    QCOMPARE(dialog.edit("path")->text(), path);
    QCOMPARE(dialog.edit("path")->toolTip(), path);
    QCOMPARE(dialog.edit("name")->text(), "我的工程");
  }

  void asksQtForAFileByDefault() {
    const QString source = file("住宅.zbqd");
    file("住宅.xls");
    QCENewProjectViewImpl dialog;
    dialog.show();
    QTimer::singleShot(0, &dialog, [&] {
      auto* chooser = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
      QCOMPARE(chooser->windowTitle(), "打开");
      QCOMPARE(chooser->directory().path(), folder_->path());
      QCOMPARE(chooser->nameFilters().size(), 7);
      chooser->findChild<QLineEdit*>("fileNameEdit")->setText("住宅.zbqd");
      QTest::keyClick(chooser->findChild<QLineEdit*>("fileNameEdit"), Qt::Key_Return);
    });
    for (auto* button : dialog.findChildren<QAbstractButton*>()) {
      if (button->text() == "浏览") QTest::mouseClick(button, Qt::LeftButton);
    }
    std::string path, name;
    dialog.readFilePath(path, name);
    QCOMPARE(QString::fromStdString(path), source);
    QCOMPARE(QString::fromStdString(name), "住宅");
  }

  void tellsTheTypeOfAFile() {
    Dialog dialog;
    for (const auto& [path, type] : {std::pair("", ""),
                                     {"/d/a.ZBQD", "ZBQD"},
                                     {"/d/a.TbQd", "TbQd"},
                                     {"/d/a.v2.ZGXJQD", "ZGXJQD"},
                                     {"/d/招标", "/d/招标"},
                                     {"/d.1/招标", "1/招标"},
                                     {"/d/a.", ""}}) {
      dialog.edit("path")->setText(path);
      QCOMPARE(dialog.typeOfFile(), QString(type));
    }
  }

  void tellsTheCheckedCostType() {
    Dialog dialog;
    dialog.show();
    QCOMPARE(QString::fromStdString(dialog.getType()), "投标成本测算");
    dialog.click("目标成本测算");
    QCOMPARE(QString::fromStdString(dialog.getType()), "目标成本测算");
    dialog.findChild<QButtonGroup*>()->setExclusive(false);
    dialog.click("目标成本测算");
    QCOMPARE(dialog.getType(), std::string());
    dialog.edit("name")->setText("a");
    dialog.click("新建");
    QCOMPARE(journal.size(), 1);
    QVERIFY(journal[0].contains("成本类型"));
    QVERIFY(dialog.isVisible());
  }

  void offersReportTemplates() {
    Dialog dialog;  // no template directory yet
    QCOMPARE(dialog.combo("reportTemplate")->count(), 0);
    QVERIFY(!dialog.combo("reportTemplate")->isEnabled());
    QCOMPARE(dialog.getReportTemplatePath(), std::string());

    const QString folder = "data/汇报表/汇报表模板/";
    const QString second = file(folder + "b.HBBMB");
    const QString first = file(folder + "a.hbbmb");
    for (const auto* name : {"c.txt", "hbbmb", "d.hbbmb.bak", "e.hbbmbx"}) file(folder + name);
    dialog.setReportTemplate();
    dialog.setReportTemplate();
    auto* box = dialog.combo("reportTemplate");
    QCOMPARE(items(box), (QStringList{"a.hbbmb", "b.HBBMB"}));
    QCOMPARE(QString::fromStdString(dialog.getReportTemplatePath()), first);
    dialog.show();
    QTest::keyClick(box, Qt::Key_Down);
    QCOMPARE(QString::fromStdString(dialog.getReportTemplatePath()), second);

    QVERIFY(QDir(folder_->filePath("data")).removeRecursively());
    dialog.setReportTemplate();
    QCOMPARE(box->count(), 0);
    QCOMPARE(dialog.getReportTemplatePath(), std::string());
  }

  void judgesNames_data() {
    // fault: what the message must name; empty for a good name
    const tests::Rows<QString, QString> row;
    row("empty", "", "为空");
    row("wide blank", QString(QChar(0x3000)), "为空");
    row("blank in front", " a", "空格");
    row("folder", "../a", "字符：/");
    row("each once", "a:b?c:d\\", "字符：: ? \\");
    row("tab inside", "a\tb", "第 2 个字");
    row("right-to-left override", QString("ab") + QChar(0x202e), "第 3 个字");
    row("hidden file", ".a", "“.”");
    row("device", "nul.x", "“nul.x”");
    row("one too long", QString(81, QChar(0x697c)), "81");
    row("just long enough", QString(80, QChar(0x697c)), "");
    row("dot and blank inside", "3# 楼 v2.1（改）", "");
  }
  void judgesNames() {
    const auto [name, fault] = tests::fetch<QString, QString>();
    const QString problem = ProjectNameProblem(name);
    if (fault.isEmpty()) {
      QCOMPARE(problem, "");
      QFile made(folder_->filePath(name + ".qcp-journal"));
      QVERIFY2(made.open(QIODevice::WriteOnly), "an accepted name must make a file name");
    } else {
      QVERIFY2(problem.contains(fault), qPrintable(problem));
    }
  }

  void refusesUnusableSources_data() {
    const tests::Rows<QString, QString> row;
    row("missing", "没有.ZBQD", "找不到文件");
    row("blank", " ", "找不到文件");
    row("folder", "folder.CZB", "不是文件");
    row("pipe", "pipe.CZB", "不是文件");  // opening it would wait for ever
    row("unknown extension", "a.xls", "“xls”");
    row("no extension", "ZBQD", "没有扩展名");
  }
  void refusesUnusableSources() {
    const auto [name, fault] = tests::fetch<QString, QString>();
    for (const auto* made : {"a.xls", "ZBQD"}) file(made);
    QVERIFY(QDir(folder_->path()).mkdir("folder.CZB"));
    QCOMPARE(mkfifo(qPrintable(folder_->filePath("pipe.CZB")), 0600), 0);
    Controller controller;
    Dialog dialog;
    dialog.setController(&controller);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    dialog.edit("name")->setText("工程");
    dialog.edit("path")->setText(name == " " ? name : folder_->filePath(name));
    dialog.click("新建");
    QCOMPARE(journal.size(), 1);
    QVERIFY2(journal[0].startsWith(QString("message %1: ").arg(int(QMessageBox::Ok))) &&
                 journal[0].contains(fault) && journal[0].contains(name),
             qPrintable(journal[0]));
    QVERIFY(dialog.isVisible());
    QVERIFY(dialog.edit("path")->hasFocus());
    QCOMPARE(dialog.edit("path")->selectedText(), dialog.edit("path")->text());
  }

  void refusesAnUnreadableSource() {
    const QString source = file("锁.GCLQD");
    QVERIFY(QFile::setPermissions(folder_->path(), QFile::Permissions(0x7755)));
    QCOMPARE(chmod(qPrintable(source), 0), 0);
    const bool root = geteuid() == 0;  // root reads everything: look with another user's eyes
    if (root) QCOMPARE(seteuid(65534), 0);
    const QString problem = gui::qce::SourceFileProblem(source);
    if (root) QCOMPARE(seteuid(0), 0);
    QVERIFY2(problem.contains("无法读取") && problem.contains(source), qPrintable(problem));
  }

  void asksTheControllerBeforeItCreates() {
    Controller controller;
    controller.problem = "内容是投标文件，与扩展名 ZBQD 不符。";
    Dialog dialog;
    dialog.setController(&controller);
    dialog.setProjectTemplates({{"通用", "general"}, {"市政", "municipal"}});
    dialog.show();
    dialog.chosen = file("办公楼.v2.zbqd");
    dialog.click("浏览");
    journal.clear();
    dialog.click("新建");
    QCOMPARE(journal, (QStringList{"check 办公楼.v2.zbqd as zbqd",
                                   QString("message %1: 内容是投标文件，与扩展名 ZBQD 不符。")
                                       .arg(int(QMessageBox::Ok))}));
    QVERIFY(dialog.isVisible());

    journal.clear();
    controller.problem.clear();
    dialog.click("目标成本测算");
    QTest::keyClick(dialog.combo("projectTemplate"), Qt::Key_Down);
    dialog.edit("costPlan")->setText("一期计划");
    QTest::keyClick(dialog.edit("name"), Qt::Key_Return);
    QCOMPARE(journal,
             (QStringList{"check 办公楼.v2.zbqd as zbqd",
                          "create 办公楼 from 办公楼.v2.zbqd, 目标成本测算, 一期计划, municipal"}));
    QCOMPARE(dialog.result(), 1);
    QVERIFY(!dialog.isVisible());
  }

  void mendsOneFaultAfterTheOther() {
    Controller controller;
    Dialog dialog;
    dialog.setController(&controller);
    QTimer::singleShot(0, &dialog, [&] {
      dialog.edit("path")->setText("/没有.CZB");
      dialog.click("新建");  // the path and the name are both wrong
      QTest::keyClick(dialog.focusWidget(), Qt::Key_Delete);
      dialog.click("新建");  // the name still is
      QTest::keyClicks(dialog.focusWidget(), "a/b");
      dialog.click("新建");
      QTest::keyClicks(dialog.focusWidget(), "ab");  // replaces the selected name
      QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    });
    QCOMPARE(dialog.exec(), 1);
    QCOMPARE(journal.size(), 4);
    QVERIFY(journal[0].contains("找不到文件"));
    QVERIFY(journal[1].contains("为空"));
    QVERIFY(journal[2].contains("字符：/"));
    QCOMPARE(journal[3], "create ab from , 投标成本测算, 成本计划工程, ");
  }

  void staysOpenUntilCreatedOrCancelled() {
    Controller controller;
    controller.creates = false;
    Dialog dialog;
    dialog.setController(&controller);
    dialog.show();
    dialog.edit("name")->setText("工程");
    dialog.click("新建");
    QCOMPARE(journal.size(), 1);  // the host has told why; the dialog adds nothing
    QVERIFY(dialog.isVisible());
    QCOMPARE(dialog.edit("name")->text(), "工程");

    journal.clear();
    dialog.click("取消");
    QVERIFY(!dialog.isVisible());
    dialog.show();
    dialog.edit("name")->setText("工程");
    QTest::keyClick(dialog.edit("name"), Qt::Key_Escape);
    QCOMPARE(dialog.result(), 0);
    QCOMPARE(journal, QStringList());

    dialog.setController(nullptr);  // nobody to ask: the answers are taken
    dialog.show();
    dialog.edit("name")->setText("工程");
    dialog.click("新建");
    QCOMPARE(dialog.result(), 1);
  }

  void isDraggedByItsHead() {
    Dialog dialog;
    dialog.show();
    dialog.move(100, 100);
    const auto drag = [&](QWidget* from) {
      QTest::mousePress(from, Qt::LeftButton, {}, {5, 5});
      const QPoint target = from->mapToGlobal({45, 25});
      QMouseEvent step(QEvent::MouseMove, from->mapFromGlobal(target), target, Qt::NoButton,
                       Qt::LeftButton, Qt::NoModifier);
      QApplication::sendEvent(from, &step);
      QTest::mouseRelease(from, Qt::LeftButton, {}, from->mapFromGlobal(target));
      return dialog.pos();
    };
    const QPoint start = dialog.pos();
    auto* head = dialog.findChild<QWidget*>("head");
    QCOMPARE(drag(head->findChild<QLabel*>()), start + QPoint(40, 20));
    QCOMPARE(drag(head), start + QPoint(80, 40));
    QCOMPARE(drag(&dialog), start + QPoint(120, 60));  // its top left corner is the head's
    for (auto* label : dialog.findChildren<QLabel*>()) {
      if (label->text() == "工程名称") QCOMPARE(drag(label), start + QPoint(120, 60));
    }
  }

 private:
  QString file(const QString& name) {
    QString path = folder_->filePath(name);
    tests::writeFile(path, {});
    return path;
  }

  std::unique_ptr<QTemporaryDir> folder_;
  RecordingChannel channel_;
  Paths paths_;
  app::Services before_;
};

QCE_WIDGET_TEST_MAIN(TestDialog)
#include "tst_dialog.moc"
