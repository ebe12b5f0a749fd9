#pragma once

#include <string>
#include <vector>

#include "host/app/services.h"
#include "host/app/spreadsheet.h"
#include "workbench/services/channels.h"

namespace tests {

/// Keeps the outermost undo scopes as "name" or, abandoned, "name!".
class RecordingUndo : public app::UndoService {
 public:
  void beginScope(const std::string& name) override {
    if (depth_++ == 0) {
      name_ = name;
      abandoned_ = false;
    }
  }
  void endScope() override {
    if (--depth_ == 0) steps.push_back(name_ + (abandoned_ ? "!" : ""));
  }
  void abandonScope() override { abandoned_ = true; }
  std::vector<std::string> steps;

 private:
  int depth_ = 0;
  std::string name_;
  bool abandoned_ = false;
};

/// Keeps what it is told to save.
class RecordingSpreadsheets : public app::Spreadsheets {
 public:
  bool save(const std::string& name, const std::vector<app::Sheet>& sheets) override {
    names.push_back(name);
    saved = sheets;
    return succeeds;
  }
  std::vector<std::string> names;  ///< one a call
  std::vector<app::Sheet> saved;   ///< by the last call
  bool succeeds = true;
};

/// All of them installed for as long as this lives; both channels are the same one.
class RecordingServices {
 public:
  RecordingServices() {
    app::Services services;
    services.undo = &undo;
    services.channel = &channel;
    services.qceChannel = &channel;
    services.spreadsheets = &spreadsheets;
    before_ = app::InstallServices(services);
  }
  ~RecordingServices() { app::InstallServices(before_); }
  RecordingServices(const RecordingServices&) = delete;
  RecordingServices& operator=(const RecordingServices&) = delete;

  services::RecordingChannel channel;
  RecordingUndo undo;
  RecordingSpreadsheets spreadsheets;

 private:
  app::Services before_;
};

}  // namespace tests
