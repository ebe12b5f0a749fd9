#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "workbench/records/project.h"
#include "workbench/store/failure.h"

namespace exchange {
struct SourceDocument;
}

namespace store {

class Database;

/// What the new-project dialog answers, besides the source file.
struct NewProject {
  QString name;
  QString costType;        ///< 投标成本测算 or 目标成本测算
  QString reportTemplate;  ///< full path, or empty
  // Optional: whoever names the three above alone leaves these empty.
  QString costPlan = {};         ///< name of the cost plan (成本计划)
  QString projectTemplate = {};  ///< key of what a project without a source file starts with
};

/// Whether two paths lead to one file, by whatever spelling or link. False when one is missing.
bool isSameFile(const QString& path, const QString& other);

/// Hears how far a long operation is, 0 to 100; false cancels it.
using Progress = std::function<bool(int percent)>;

/// A project file (*.qcp): the records in memory and where they are kept. While it is open no other
/// program can open it; the lock goes with the process, however that ends.
class ProjectFile {
 public:
  /// Makes a project file from a source file (null: an empty project). It is written under another
  /// name and moved to `path` when it is complete, so a failed or cancelled creation leaves
  /// nothing behind. An existing file is replaced only when `replace` says so, and never while
  /// another program has it open. The file is closed again afterwards.
  static bool create(const QString& path, const exchange::SourceDocument* source,
                     const NewProject& answers, Failure& failure, const Progress& progress = {},
                     bool replace = false);
  /// Null when it cannot be opened; `failure` then says why. Older files are migrated.
  static std::unique_ptr<ProjectFile> open(const QString& path, Failure& failure,
                                           const Progress& progress = {});
  ~ProjectFile();

  const QString& path() const { return path_; }
  records::Project& project() { return *project_; }

  /// Writes the project as it is stored now to another file, which appears whole or not at all and
  /// replaces what is there. A file that is open, this one too, is never replaced.
  bool copyTo(const QString& path, Failure& failure) const;

  /// Stores what the changes have left in the records, in one durable transaction. False when that
  /// failed: storage is then as it was and `message` says why (Chinese).
  bool commit(const records::ChangeSet& changes, QString& message);

 private:
  explicit ProjectFile(const QString& path);

  QString path_;
  std::unique_ptr<Database> database_;
  std::unique_ptr<records::Project> project_;
};

}  // namespace store
