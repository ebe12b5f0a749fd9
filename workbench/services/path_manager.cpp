#include "workbench/services/path_manager.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

static void initTemplateResources() {
  Q_INIT_RESOURCE(templates);
}

namespace services {

namespace {

constexpr char kFolder[] = "/qce-workbench";

QString standard(QStandardPaths::StandardLocation location) {
  return QStandardPaths::writableLocation(location);
}

}  // namespace

PathManager::PathManager()
    : documents_(standard(QStandardPaths::DocumentsLocation)),
      data_(standard(QStandardPaths::GenericDataLocation) + QLatin1String(kFolder)),
      config_(standard(QStandardPaths::GenericConfigLocation) + QLatin1String(kFolder)) {}

PathManager::PathManager(const QString& base)
    : documents_(base + QStringLiteral("/documents")),
      data_(base + QStringLiteral("/data")),
      config_(base + QStringLiteral("/config")) {}

std::string PathManager::getPath(const std::string& key) const {
  if (key == "DocumentsLocation") return documents_.toStdString();
  if (key == "DataLocation") return data_.toStdString();
  if (key == "ConfigLocation") return config_.toStdString();
  return {};
}

std::string PathManager::getTemplatePath() const {
  return data_.toStdString();
}

QString PathManager::reportTemplates() const {
  return data_ + QStringLiteral("/汇报表/汇报表模板");
}

bool PathManager::installReportTemplates() const {
  initTemplateResources();
  const QString target = reportTemplates();
  if (QFileInfo::exists(target)) return true;
  // Filled under another name first: a start that is cut short leaves no half-filled directory.
  const QString staging = target + QStringLiteral(".new");
  QDir(staging).removeRecursively();
  if (!QDir().mkpath(staging)) return false;
  const QDir source(QStringLiteral(":/qce/templates"));
  for (const QString& name : source.entryList(QDir::Files)) {
    const QString copy = staging + QLatin1Char('/') + name;
    if (!QFile::copy(source.filePath(name), copy)) return false;
    QFile::setPermissions(
        copy, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
  }
  return QDir().rename(staging, target);
}

}  // namespace services
