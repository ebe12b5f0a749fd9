#include "workbench/services/templates.h"

#include <QDir>
#include <QFile>

#include "workbench/records/template_text.h"

static void initTemplateResources() {
  Q_INIT_RESOURCE(templates);
}

namespace services {
namespace {

struct TemplateFile {
  QString kind;     ///< the user's name for it, and its folder in the template directory
  QString name;     ///< without folders
  QString builtIn;  ///< resource path
  int largest;      ///< MB; they are some kilobytes
  QString instead;  ///< tells the user that the built-in one is used
};

/// `parse` refuses a text by throwing records::TemplateError.
template <class Parse>
auto load(const TemplateFile& file, const QString& templateDirectory, QString* problem,
          Parse parse) {
  const QString path = QStringLiteral("%1/%2/%3").arg(templateDirectory, file.kind, file.name);
  QFile own(path);
  if (!templateDirectory.isEmpty() && own.exists()) {
    QString why;
    if (!own.open(QIODevice::ReadOnly)) {
      why = QStringLiteral("不能读取：%1。请检查该文件的权限。").arg(own.errorString());
    } else if (own.size() > qint64(file.largest) << 20) {
      why = QStringLiteral("超过 %1 MB，不像是%2。请换用正确的文件。")
                .arg(QString::number(file.largest), file.kind);
    } else {
      try {
        return parse(own.readAll().toStdString());
      } catch (const records::TemplateError& error) {
        why = QString::fromUtf8(error.what());
      }
    }
    if (problem != nullptr) {
      *problem = QStringLiteral("%1\n\n文件：%2\n%3")
                     .arg(why, QDir::toNativeSeparators(path), file.instead);
    }
  }
  initTemplateResources();
  QFile builtIn(file.builtIn);
  builtIn.open(QIODevice::ReadOnly);
  return parse(builtIn.readAll().toStdString());
}

}  // namespace

records::FeeTemplate loadFeeTemplate(const QString& templateDirectory, QString* problem) {
  return load({"费用模板", "投标费用.json", ":/qce/fees/投标费用.json", 1,
               "费用汇总暂按内置的费用模板计算。"},
              templateDirectory, problem, records::FeeTemplate::parse);
}

std::vector<SubcontractBaseEntry> loadSubcontractBase(const QString& templateDirectory,
                                                      QString* problem) {
  return load({"分包基础库", "分包基础库.json", ":/qce/subcontracts/分包基础库.json", 4,
               "暂用内置的分包基础库。"},
              templateDirectory, problem, parseSubcontractBase);
}

}  // namespace services
