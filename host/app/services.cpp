#include "host/app/services.h"

#include <utility>

#include "host/app/spreadsheet.h"
#include "host/base/log.h"

namespace app {

UndoService::~UndoService() = default;
Channel::~Channel() = default;
PathMgr::~PathMgr() = default;
GlobalConfig::~GlobalConfig() = default;
Spreadsheets::~Spreadsheets() = default;

namespace {

class NoUndo : public UndoService {
  void beginScope(const std::string&) override {}
  void endScope() override {}
  void abandonScope() override {}
};

class LogChannel : public Channel {
  int message(const std::string& text, int buttons) override {
    base::Log(base::LogLevel::Warning, text);
    return buttons & -buttons;
  }
};

class NoPaths : public PathMgr {
  std::string getPath(const std::string&) const override { return {}; }
  std::string getTemplatePath() const override { return {}; }
};

class NoConfig : public GlobalConfig {
  std::optional<std::string> getValue(const std::string&) const override { return {}; }
  void setValue(const std::string&, const std::string&) override {}
};

class NoSpreadsheets : public Spreadsheets {
  bool save(const std::string& name, const std::vector<Sheet>&) override {
    base::Log(base::LogLevel::Warning, "No spreadsheet service is installed to save " + name);
    return false;
  }
};

Services& installed() {
  static Services services;
  return services;
}

template <class Fallback, class Service>
Service* orFallback(Service* service) {
  static Fallback fallback;
  return service != nullptr ? service : &fallback;
}

}  // namespace

Services InstallServices(const Services& services) {
  return std::exchange(installed(), services);
}

UndoService* GetUndoService() {
  return orFallback<NoUndo>(installed().undo);
}
Channel* GetChannel() {
  return orFallback<LogChannel>(installed().channel);
}
PathMgr* GetPathMgr() {
  return orFallback<NoPaths>(installed().pathMgr);
}
GlobalConfig* GetGlobalConfig() {
  return orFallback<NoConfig>(installed().globalConfig);
}

Spreadsheets* GetSpreadsheets() {
  return orFallback<NoSpreadsheets>(installed().spreadsheets);
}

namespace qce {
Channel* GetQCEChannel() {
  return orFallback<LogChannel>(installed().qceChannel);
}
}  // namespace qce

}  // namespace app
