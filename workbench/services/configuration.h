#pragma once

#include <QString>
#include <map>
#include <optional>
#include <string>

#include "host/app/services.h"

namespace services {

/// Settings as one small JSON file of texts, written whole and atomically on each change.
class Configuration : public app::GlobalConfig {
 public:
  /// Reads `path`. A file that cannot be understood is renamed, not lost, and the settings start
  /// empty.
  explicit Configuration(QString path);

  std::optional<std::string> getValue(const std::string& key) const override;
  void setValue(const std::string& key, const std::string& value) override;

  /// Where a damaged file was put at start-up; empty when the file was sound.
  QString setAside() const { return setAside_; }

 private:
  void save() const;

  QString path_;
  QString setAside_;
  std::map<std::string, std::string> values_;
};

}  // namespace services
