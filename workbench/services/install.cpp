#include "workbench/services/install.h"

#include <utility>

#include "workbench/records/field_accessors.h"

namespace services {

Installed::Installed(std::unique_ptr<PathManager> paths, std::unique_ptr<app::Channel> channel)
    : paths_(std::move(paths)),
      channel_(std::move(channel)),
      configuration_(paths_->config() + QStringLiteral("/settings.json")),
      before_(app::InstallServices(current())),
      accessorsBefore_(proxy::qce::InstallFieldAccessors(records::fieldAccessors())) {
  paths_->installReportTemplates();
}

Installed::~Installed() {
  app::InstallServices(before_);
  proxy::qce::InstallFieldAccessors(std::move(accessorsBefore_));
}

void Installed::setUndo(app::UndoService* undo) {
  undo_ = undo;
  app::InstallServices(current());
}

void Installed::setSpreadsheets(app::Spreadsheets* spreadsheets) {
  spreadsheets_ = spreadsheets;
  app::InstallServices(current());
}

app::Services Installed::current() {
  app::Services services;
  services.undo = undo_;
  services.channel = channel_.get();
  services.qceChannel = channel_.get();
  services.pathMgr = paths_.get();
  services.globalConfig = &configuration_;
  services.spreadsheets = spreadsheets_;
  return services;
}

std::unique_ptr<Installed> install() {
  return install(std::make_unique<PathManager>(),
                 std::make_unique<MessageBoxChannel>(QStringLiteral("成本测算")));
}

std::unique_ptr<Installed> install(std::unique_ptr<PathManager> paths,
                                   std::unique_ptr<app::Channel> channel) {
  return std::make_unique<Installed>(std::move(paths), std::move(channel));
}

}  // namespace services
