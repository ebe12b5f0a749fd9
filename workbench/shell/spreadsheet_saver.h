#pragma once

#include <QString>
#include <functional>

#include "host/app/services.h"
#include "workbench/services/install.h"

namespace shell {

/// Saves the tables of the pages as workbooks where the user wants them.
class SpreadsheetSaver : public app::Spreadsheets {
 public:
  /// Asks for the file, proposing a path; empty when the user cancels.
  using Choose = std::function<QString(const QString& suggestion)>;
  /// Hears of each file that was written.
  using Saved = std::function<void(const QString& path)>;

  /// `services` must outlive it; its channel tells of failures, its configuration keeps the folder
  /// that was chosen last.
  SpreadsheetSaver(services::Installed& services, Choose choose, Saved saved);

  bool save(const std::string& name, const std::vector<app::Sheet>& sheets) override;

 private:
  services::Installed& services_;
  Choose choose_;
  Saved saved_;
};

}  // namespace shell
