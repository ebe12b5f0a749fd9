#include "workbench/controllers/new_project_controller.h"

#include <QMessageBox>
#include <utility>

#include "host/app/services.h"
#include "workbench/exchange/source_reader.h"

namespace controllers {

NewProjectController::NewProjectController(ChooseTarget chooseTarget, Created created)
    : chooseTarget_(std::move(chooseTarget)), created_(std::move(created)) {}

std::string NewProjectController::checkSource(const std::string& path,
                                              const std::string& /*type*/) const {
  const exchange::PeekResult peeked = exchange::peekKind(QString::fromStdString(path));
  return peeked.kind ? std::string() : peeked.reason.toStdString();
}

bool NewProjectController::refuse(const QString& message) {
  hideProgress();
  app::qce::GetQCEChannel()->message(message.toStdString(), QMessageBox::Ok);
  return false;
}

bool NewProjectController::createProject(const abst::qce::QCENewProjectView& answers) {
  std::string sourcePath;
  std::string name;
  answers.readFilePath(sourcePath, name);
  store::NewProject project;
  project.name = QString::fromStdString(name);
  project.costType = QString::fromStdString(answers.getType());
  project.reportTemplate = QString::fromStdString(answers.getReportTemplatePath());
  project.costPlan = QString::fromStdString(answers.getCostPlanName());
  project.projectTemplate = QString::fromStdString(answers.getProjectTemplate());

  // The source first: a file that cannot be used should not make the user think of a name.
  exchange::ReadResult source;
  if (!sourcePath.empty()) {
    exchange::SourceReader reader;
    if (progress_) {
      reader.setProgress([this](qint64 done, qint64 total) {
        return progress_(total > 0 ? static_cast<int>(qMin(done, total) * 50 / total) : 0);
      });
    }
    const QString path = QString::fromStdString(sourcePath);
    source = reader.read(path);
    if (source.status == exchange::ReadResult::Status::MoneyDiffers) {
      const QString question =
          QStringLiteral("源文件申报的金额与读入的金额不一致：\n%1\n仍要按读入的金额新建工程吗？")
              .arg(source.report.toText());
      hideProgress();
      const int answer = app::qce::GetQCEChannel()->message(question.toStdString(),
                                                            QMessageBox::Yes | QMessageBox::No);
      if (answer != QMessageBox::Yes) return false;
      reader.setAllowMoneyDifference(true);
      source = reader.read(path);
    }
    if (source.status == exchange::ReadResult::Status::Cancelled) return false;
    if (!source.ok()) return refuse(source.message());
  }

  hideProgress();
  const QString target = chooseTarget_(project.name);
  if (target.isEmpty()) return false;
  store::Failure failure;
  store::Progress writing;
  if (progress_) writing = [this](int percent) { return progress_(50 + percent / 2); };
  const bool made = store::ProjectFile::create(
      target, sourcePath.empty() ? nullptr : &source.document, project, failure, writing, true);
  if (!made) {
    if (failure.kind == store::FailureKind::Cancelled) return false;
    return refuse(failure.message);
  }
  sourceMoney_ = sourcePath.empty() ? SourceMoney()
                                    : SourceMoney{source.report.summary(), source.report.toText()};
  created_(target);
  return true;
}

}  // namespace controllers
