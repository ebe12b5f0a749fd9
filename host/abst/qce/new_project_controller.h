#pragma once

#include <string>

#include "contract_export.h"

namespace abst::qce {

/// The answers of the new-project dialog, as the host reads them back. Texts are UTF-8.
class QCE_CONTRACT_EXPORT QCENewProjectView {
 public:
  virtual ~QCENewProjectView();

  /// Puts the chosen source path and the project name into the two arguments.
  virtual void readFilePath(std::string& sourcePath, std::string& projectName) const = 0;
  /// The extension of the source file as typed, without the dot; empty without a source file.
  virtual std::string getSelectFileType() const = 0;
  /// "投标成本测算" or "目标成本测算".
  virtual std::string getType() const = 0;
  /// Full path of the chosen report template; empty when there is none.
  virtual std::string getReportTemplatePath() const = 0;
  /// The name of the cost plan that the project starts with; empty leaves it to the host.
  virtual std::string getCostPlanName() const;
  /// What the chosen project template stands for in the host; empty when there is none to choose.
  virtual std::string getProjectTemplate() const;
};

/// What the new-project dialog asks of the host when the user confirms.
class QCE_CONTRACT_EXPORT QCENewProjectController {
 public:
  virtual ~QCENewProjectController();

  /// Looks at the source file: an empty text when a project can be made of it, else a message for
  /// the user that names what is wrong and the cure (file missing, unreadable, of another kind than
  /// its extension says). Reads no more than it must.
  virtual std::string checkSource(const std::string& path, const std::string& type) const = 0;
  /// Creates the project from the dialog's answers. False leaves the dialog open; the host has
  /// told the user why.
  virtual bool createProject(const QCENewProjectView& answers) = 0;
};

}  // namespace abst::qce
