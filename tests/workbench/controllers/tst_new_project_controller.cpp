#include <QMessageBox>

#include "tests/support/files.h"
#include "tests/support/recording_services.h"
#include "tests/support/rows.h"
#include "workbench/controllers/new_project_controller.h"
#include "workbench/controllers/open_project.h"
#include "workbench/exchange/sample_generator.h"

namespace {

class Answers : public abst::qce::QCENewProjectView {
 public:
  explicit Answers(const QString& source) : source_(source) {}
  void readFilePath(std::string& sourcePath, std::string& projectName) const override {
    sourcePath = source_.toStdString();
    projectName = "办公楼";
  }
  std::string getSelectFileType() const override { return {}; }
  std::string getType() const override { return "目标成本测算"; }
  std::string getReportTemplatePath() const override { return "/t/汇总.hbbmb"; }

 private:
  QString source_;
};

}  // namespace

class NewProjectControllerTest : public QObject {
  Q_OBJECT

 private slots:
  void makesAProjectOfItsAnswers() {
    const tests::RecordingServices services;
    QCOMPARE(exchange::SampleGenerator::writeOfficeBuilding(dir_.path()), QString());
    for (const QString& extension : {QStringLiteral("TBQD"), QStringLiteral("GCLQD"), QString()}) {
      QVERIFY(create(extension.isEmpty() ? QString() : source(extension)));
      QCOMPARE(created_, target_);
      store::Failure failure;
      const auto opened = controllers::OpenProject::open(target_, failure);
      QVERIFY2(opened != nullptr, qPrintable(failure.message));
      QCOMPARE(opened->facts().name, std::string("办公楼"));
      QCOMPARE(opened->facts().costType, std::string("目标成本测算"));
      QCOMPARE(opened->facts().reportTemplate, std::string("/t/汇总.hbbmb"));
      QCOMPARE(QString::fromStdString(opened->facts().sourceKind), extension);
    }
    QVERIFY(services.channel.messages().empty());
  }

  void refusedSourceLeavesNothing() {
    const tests::RecordingServices services;
    const QString path = dir_.filePath("坏.TBQD");
    tests::writeFile(path, "<?xml version=\"1.0\"?><不是");
    QVERIFY(!create(path));
    QCOMPARE(services.channel.messages().size(), std::size_t(1));
    QVERIFY(!QFileInfo::exists(target_) && created_.isEmpty());
    const controllers::NewProjectController controller({}, {});
    QVERIFY(!controller.checkSource(path.toStdString(), "TBQD").empty());
    QVERIFY(controller.checkSource(source("TBQD").toStdString(), "TBQD").empty());
  }

  void differingMoneyNeedsTheUsersWord_data() {
    const tests::Rows<int> row{"answer"};
    row("yes", QMessageBox::Yes);
    row("no", QMessageBox::No);
  }
  void differingMoneyNeedsTheUsersWord() {
    QFETCH(int, answer);
    tests::RecordingServices services;
    QByteArray content = tests::contentOf(source("TBQD"));
    const auto office = exchange::SampleGenerator::officeBuilding(exchange::SourceKind::Bid);
    const QByteArray declared = QByteArray::fromStdString(office.declared.resources->toString(2));
    const int at = content.indexOf('"' + declared + '"');
    QVERIFY(at > 0);
    content[at + 1] = content[at + 1] == '9' ? '8' : '9';
    const QString changed = dir_.filePath("差.TBQD");
    tests::writeFile(changed, content);

    services.channel.answerNext(answer);
    QCOMPARE(create(changed), answer == QMessageBox::Yes);
    QCOMPARE(services.channel.messages().size(), std::size_t(1));
    QVERIFY(services.channel.messages()[0].text.find("不一致") != std::string::npos);
    QCOMPARE(QFileInfo::exists(target_), answer == QMessageBox::Yes);
    QCOMPARE(money_.contains("（申报 "), answer == QMessageBox::Yes);
  }

 private:
  QString source(const QString& extension) const {
    for (const QFileInfo& file : QDir(dir_.path()).entryInfoList({"*." + extension})) {
      return file.filePath();
    }
    return {};
  }
  bool create(const QString& sourcePath) {
    created_.clear();
    target_ = dir_.filePath("out.qcp");
    QFile::remove(target_);
    controllers::NewProjectController controller([this](const QString&) { return target_; },
                                                 [this](const QString& path) { created_ = path; });
    const bool made = controller.createProject(Answers(sourcePath));
    money_ = controller.sourceMoney().summary;
    return made;
  }

  QTemporaryDir dir_;
  QString target_, created_, money_;
};

QTEST_GUILESS_MAIN(NewProjectControllerTest)
#include "tst_new_project_controller.moc"
