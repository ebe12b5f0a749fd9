#pragma once

#include <memory>

#include "host/app/services.h"
#include "host/proxy/qce/field_accessors.h"
#include "workbench/services/channels.h"
#include "workbench/services/configuration.h"
#include "workbench/services/path_manager.h"

namespace services {

/// The services of the running program; uninstalls them when it goes. Undo comes with the open
/// project (see setUndo).
class Installed {
 public:
  explicit Installed(std::unique_ptr<PathManager> paths, std::unique_ptr<app::Channel> channel);
  ~Installed();
  Installed(const Installed&) = delete;
  Installed& operator=(const Installed&) = delete;

  PathManager& paths() { return *paths_; }
  Configuration& configuration() { return configuration_; }
  app::Channel& channel() { return *channel_; }

  /// The undo service of the open project; null when none is open. Not owned.
  void setUndo(app::UndoService* undo);
  /// What saves spreadsheets: the window, while there is one; null for none. Not owned.
  void setSpreadsheets(app::Spreadsheets* spreadsheets);

 private:
  app::Services current();

  std::unique_ptr<PathManager> paths_;
  std::unique_ptr<app::Channel> channel_;
  Configuration configuration_;
  app::UndoService* undo_ = nullptr;
  app::Spreadsheets* spreadsheets_ = nullptr;
  app::Services before_;
  proxy::qce::FieldAccessors accessorsBefore_;
};

/// Installs the services of the desktop program: the user's directories, message boxes, settings
/// and, on the first start, the report templates.
std::unique_ptr<Installed> install();

/// As above, with other directories or another channel.
std::unique_ptr<Installed> install(std::unique_ptr<PathManager> paths,
                                   std::unique_ptr<app::Channel> channel);

}  // namespace services
