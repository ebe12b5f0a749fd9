#include "workbench/services/json_file.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "host/base/log.h"

namespace services {

namespace {

constexpr qint64 kLargest = qint64(16) << 20;  // bytes; these files are a few kilobytes

QString freeNameBeside(const QString& path) {
  const QString stem = path + QStringLiteral(".damaged-") +
                       QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
  QString name = stem;
  for (int i = 2; QFileInfo::exists(name); ++i) name = stem + QStringLiteral("-%1").arg(i);
  return name;
}

}  // namespace

nlohmann::json readJsonObject(const QString& path, QString* setAside) {
  QFile file(path);
  if (!file.exists()) return nlohmann::json::object();
  if (file.open(QIODevice::ReadOnly) && file.size() <= kLargest) {
    auto content =
        nlohmann::json::parse(file.readAll().toStdString(), nullptr, /*allow_exceptions=*/false);
    if (content.is_object()) return content;
  }
  file.close();
  const QString kept = freeNameBeside(path);
  if (QFile::rename(path, kept)) {
    base::Log(base::LogLevel::Warning,
              "文件已损坏，另存为 " + kept.toStdString() + "：" + path.toStdString());
    if (setAside != nullptr) *setAside = kept;
  }
  return nlohmann::json::object();
}

bool writeJson(const QString& path, const nlohmann::json& content) {
  QDir().mkpath(QFileInfo(path).path());
  QSaveFile file(path);
  const std::string text =
      content.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
  const bool written = file.open(QIODevice::WriteOnly) &&
                       file.write(text.data(), static_cast<qint64>(text.size())) ==
                           static_cast<qint64>(text.size()) &&
                       file.commit();
  if (!written) base::LogError("无法写入文件：" + path.toStdString());
  return written;
}

}  // namespace services
