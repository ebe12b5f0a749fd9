#pragma once

#include <optional>
#include <string>
#include <vector>

#include "contract_export.h"

// What a host application offers to every page. The host installs its services once at start-up,
// before the first page is made, and keeps them alive until after the last one is gone.
namespace app {

struct Sheet;

/// Undo steps. Scopes nest; what the outermost one contains is one step and one storage
/// transaction.
class QCE_CONTRACT_EXPORT UndoService {
 public:
  virtual ~UndoService();
  virtual void beginScope(const std::string& name) = 0;
  virtual void endScope() = 0;
  /// Marks the current outermost scope as failed: all of it is taken back when it ends.
  virtual void abandonScope() = 0;
};

/// Shows messages to the user.
class QCE_CONTRACT_EXPORT Channel {
 public:
  virtual ~Channel();
  /// Shows `text` (UTF-8) with `buttons`, an or of QMessageBox::StandardButton values, and answers
  /// the one that was pressed.
  virtual int message(const std::string& text, int buttons) = 0;
};

/// Where things lie on this machine. Paths are UTF-8 with "/" and without one at the end.
class QCE_CONTRACT_EXPORT PathMgr {
 public:
  virtual ~PathMgr();
  /// The directory registered under `key` ("DocumentsLocation", ...); empty when unknown.
  virtual std::string getPath(const std::string& key) const = 0;
  /// The data directory under which "汇报表/汇报表模板" lies.
  virtual std::string getTemplatePath() const = 0;
};

/// Settings that outlive the program.
class QCE_CONTRACT_EXPORT GlobalConfig {
 public:
  virtual ~GlobalConfig();
  virtual std::optional<std::string> getValue(const std::string& key) const = 0;
  virtual void setValue(const std::string& key, const std::string& value) = 0;
};

/// Keeps tables as spreadsheet files.
class QCE_CONTRACT_EXPORT Spreadsheets {
 public:
  virtual ~Spreadsheets();
  /// Asks the user for a file, proposing `name` (UTF-8, without folder and suffix; what a file name
  /// must not hold is the host's to replace), and writes the sheets into it in their order. False
  /// when the user cancels, and when it cannot be written: the user then has been told why, and a
  /// file that was there before is as it was.
  virtual bool save(const std::string& name, const std::vector<Sheet>& sheets) = 0;
};

/// The services of a host; a null one makes what needs it do nothing.
struct Services {
  UndoService* undo = nullptr;
  Channel* channel = nullptr;     ///< the host's own channel
  Channel* qceChannel = nullptr;  ///< the module's channel
  PathMgr* pathMgr = nullptr;
  GlobalConfig* globalConfig = nullptr;
  Spreadsheets* spreadsheets = nullptr;
};

/// Installs the services and returns those that were installed before.
QCE_CONTRACT_EXPORT Services InstallServices(const Services& services);

// These never answer null: without an installed service they answer one that does nothing
// (messages then go to the log and are answered with their first button).
QCE_CONTRACT_EXPORT UndoService* GetUndoService();
QCE_CONTRACT_EXPORT Channel* GetChannel();
QCE_CONTRACT_EXPORT PathMgr* GetPathMgr();
QCE_CONTRACT_EXPORT GlobalConfig* GetGlobalConfig();
QCE_CONTRACT_EXPORT Spreadsheets* GetSpreadsheets();

namespace qce {
QCE_CONTRACT_EXPORT Channel* GetQCEChannel();
}  // namespace qce

}  // namespace app
