#include "workbench/shell/recent_files.h"

#include <QFileInfo>
#include <algorithm>

#include "workbench/services/json_file.h"

namespace shell {

namespace {

constexpr char kList[] = "RecentFile";

QString textOf(const nlohmann::json& entry, const char* key) {
  const auto found = entry.find(key);
  if (found == entry.end() || !found->is_string()) return {};
  return QString::fromStdString(found->get<std::string>());
}

}  // namespace

RecentFiles::RecentFiles(const QString& dataDirectory)
    : file_(dataDirectory + QStringLiteral("/recent_file.json")) {
  const nlohmann::json content = services::readJsonObject(file_);
  const auto list = content.find(kList);
  if (list == content.end() || !list->is_array()) return;
  for (const nlohmann::json& entry : *list) {
    if (!entry.is_object() || entries_.size() == kMost) continue;
    RecentFile file{textOf(entry, "path"), textOf(entry, "locale")};
    if (!file.path.isEmpty()) entries_.push_back(std::move(file));
  }
}

bool RecentFiles::contains(const QString& path) const {
  return std::any_of(entries_.begin(), entries_.end(),
                     [&path](const RecentFile& file) { return file.path == path; });
}

void RecentFiles::add(const QString& path) {
  const QString absolute = QFileInfo(path).absoluteFilePath();
  drop(absolute);
  entries_.insert(entries_.begin(), {absolute, QStringLiteral("zh_CN")});
  if (entries_.size() > kMost) entries_.resize(kMost);
  save();
}

void RecentFiles::remove(const QString& path) {
  drop(path);
  save();
}

void RecentFiles::drop(const QString& path) {
  entries_.erase(std::remove_if(entries_.begin(), entries_.end(),
                                [&path](const RecentFile& file) { return file.path == path; }),
                 entries_.end());
}

void RecentFiles::save() const {
  nlohmann::json list = nlohmann::json::array();
  for (const RecentFile& file : entries_) {
    list.push_back({{"path", file.path.toStdString()}, {"locale", file.locale.toStdString()}});
  }
  // Other keys of the file are not this list's to drop.
  nlohmann::json content = services::readJsonObject(file_);
  content[kList] = std::move(list);
  services::writeJson(file_, content);
}

}  // namespace shell
