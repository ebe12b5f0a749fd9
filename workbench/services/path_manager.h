#pragma once

#include <QString>
#include <string>

#include "host/app/services.h"

namespace services {

/// The directories of the program.
///
/// Keys: "DocumentsLocation" (the user's documents), "DataLocation" (what the program keeps: recent
/// projects, report templates), "ConfigLocation" (settings).
class PathManager : public app::PathMgr {
 public:
  /// The standard places of the user who runs the program.
  PathManager();
  /// Everything below `base`; for walks that must not touch the user's own files.
  explicit PathManager(const QString& base);

  std::string getPath(const std::string& key) const override;
  std::string getTemplatePath() const override;

  QString documents() const { return documents_; }
  QString data() const { return data_; }
  QString config() const { return config_; }
  /// Where report templates lie: "汇报表/汇报表模板" in the data directory.
  QString reportTemplates() const;

  /// Puts the program's own report templates into the template directory when that does not exist
  /// yet; what the user has changed or removed there stays so. False when it cannot be written.
  bool installReportTemplates() const;

 private:
  QString documents_;
  QString data_;
  QString config_;
};

}  // namespace services
