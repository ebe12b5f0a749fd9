#pragma once

#include <QString>
#include <nlohmann/json.hpp>

namespace services {

/// The JSON object in the file at `path`; an empty object when there is no such file. A file that
/// is no JSON object is renamed beside itself, and `setAside` (when given) receives its new path.
nlohmann::json readJsonObject(const QString& path, QString* setAside = nullptr);

/// Replaces the file at `path` as a whole, making its directory where needed; false (and logged)
/// when it cannot be written.
bool writeJson(const QString& path, const nlohmann::json& content);

}  // namespace services
