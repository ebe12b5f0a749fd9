#include "workbench/cli/commands.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include "project/checks.h"
#include "workbench/cli/command_line.h"
#include "workbench/cli/tour.h"
#include "workbench/exchange/sample_generator.h"
#include "workbench/exchange/source_reader.h"
#include "workbench/services/path_manager.h"
#include "workbench/services/templates.h"
#include "workbench/shell/report.h"
#include "workbench/store/check.h"
#include "workbench/store/project_file.h"

namespace cli {

namespace {

int refuse(const QString& why) {
  printError(why);
  return Refused;
}

int misuse(const QString& why) {
  printError(why + QStringLiteral("\n\n用法：qce-workbench sample --help"));
  return WrongUse;
}

QString option(const Arguments& arguments, const char* name) {
  return arguments.options.value(QLatin1String(name));
}

}  // namespace

int makeProject(const Arguments& arguments) {
  const QString out = option(arguments, "out");
  const QString name = option(arguments, "name").trimmed();
  const QString problem = gui::qce::ProjectNameProblem(name);
  if (!problem.isEmpty()) return refuse(problem);
  if (QFileInfo(out).suffix().compare(QLatin1String("qcp"), Qt::CaseInsensitive) != 0) {
    return refuse(QStringLiteral("工程文件的扩展名必须是 .qcp：“%1”。").arg(out));
  }
  if (QFileInfo::exists(out)) {
    return refuse(QStringLiteral("已有文件“%1”。请换一个文件名，或先移走它。").arg(out));
  }
  const exchange::ReadResult source = exchange::SourceReader().read(option(arguments, "source"));
  if (!source.report.project.name.empty() || !source.report.unitWorks.empty()) {
    print(source.report.toText());
  }
  if (!source.ok()) return refuse(source.message());

  store::NewProject answers;
  answers.name = name;
  answers.costType = option(arguments, "type");
  store::Failure failure;
  if (!store::ProjectFile::create(out, &source.document, answers, failure)) {
    return refuse(failure.message);
  }
  print(QStringLiteral("已新建工程：%1").arg(out));
  return Success;
}

int checkProject(const Arguments& arguments) {
  const store::CheckReport report = store::check(arguments.operand);
  if (report.failure.kind != store::FailureKind::None) return refuse(report.failure.message);
  print(report.money);
  if (!report.ok()) {
    return refuse(QStringLiteral("发现 %1 处问题：\n").arg(report.findings.size()) +
                  report.findings.join(QLatin1Char('\n')));
  }
  print(QStringLiteral("检查通过：%1 条人材机，全部合计一致。").arg(report.resourceItems));
  return Success;
}

int writeSample(const Arguments& arguments) {
  using exchange::SampleGenerator;
  bool valid = false;
  const qint64 resources = option(arguments, "resources").toLongLong(&valid);
  if (!valid || resources < 1 || resources > SampleGenerator::MostResources) {
    return misuse(QStringLiteral("选项 --resources 必须是 1 到 %1 的整数。")
                      .arg(SampleGenerator::MostResources));
  }
  const quint64 seed = option(arguments, "seed").toULongLong(&valid);
  if (!valid) return misuse(QStringLiteral("选项 --seed 必须是不小于 0 的整数。"));
  const QString out = option(arguments, "out");
  const QString refusal = SampleGenerator::generate(resources, seed, out);
  if (!refusal.isEmpty()) return refuse(refusal);
  print(QStringLiteral("已写出示例源文件：%1").arg(out));
  return Success;
}

int writeReport(const Arguments& arguments) {
  const QDir folder(option(arguments, "out"));
  for (const QString& name : shell::reportFileNames()) {
    if (!folder.exists(name)) continue;
    return refuse(QStringLiteral("文件“%1”已存在，没有写出报表。\n请换一个目录，或先移走同名文件。")
                      .arg(QDir::toNativeSeparators(folder.filePath(name))));
  }
  store::Failure failure;
  const auto file = store::ProjectFile::open(arguments.operand, failure);
  if (!file) return refuse(failure.message);
  QString problem;
  const records::FeeTemplate fees = services::loadFeeTemplate(
      QString::fromStdString(services::PathManager().getTemplatePath()), &problem);
  if (!problem.isEmpty()) printError(problem);
  const shell::ReportResult written =
      shell::writeReport(file->project(), fees, option(arguments, "out"));
  if (!written.files.isEmpty()) print(written.files.join(QLatin1Char('\n')));
  return written.problem.isEmpty() ? int(Success) : refuse(written.problem);
}

int tour(const Arguments& arguments) {
  const QString pictures = QFileInfo(option(arguments, "out")).absoluteFilePath();
  const QTemporaryDir scratch;
  const QString copy = scratch.filePath(QFileInfo(arguments.operand).fileName());
  store::Failure failure;
  {
    const auto original = store::ProjectFile::open(arguments.operand, failure);
    if (!original || !original->copyTo(copy, failure)) return refuse(failure.message);
  }
  if (!QDir().mkpath(pictures)) {
    return refuse(QStringLiteral("不能建立目录“%1”。").arg(pictures));
  }
  Tour walk(copy, scratch.path(), pictures);
  try {
    walk.walk();
  } catch (const Tour::StepFailed& stepFailed) {
    return refuse(QStringLiteral("走查未通过：") + QString::fromUtf8(stepFailed.what()));
  }
  print((walk.pictures() + walk.spreadsheets()).join(QLatin1Char('\n')));
  return Success;
}

}  // namespace cli
