#include "workbench/services/configuration.h"

#include <utility>

#include "workbench/services/json_file.h"

namespace services {

Configuration::Configuration(QString path) : path_(std::move(path)) {
  const nlohmann::json content = readJsonObject(path_, &setAside_);
  for (const auto& [key, value] : content.items()) {
    if (value.is_string()) values_[key] = value.get<std::string>();
  }
}

std::optional<std::string> Configuration::getValue(const std::string& key) const {
  const auto found = values_.find(key);
  if (found == values_.end()) return {};
  return found->second;
}

void Configuration::setValue(const std::string& key, const std::string& value) {
  const auto [entry, added] = values_.try_emplace(key, value);
  if (!added) {
    if (entry->second == value) return;
    entry->second = value;
  }
  save();
}

void Configuration::save() const {
  writeJson(path_, nlohmann::json(values_));
}

}  // namespace services
