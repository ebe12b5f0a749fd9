#pragma once

#include <QDialog>
#include <QPoint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/abst/qce/new_project_controller.h"
#include "qce_export.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace gui::qce {

/// The dialog with which the user starts a cost project, from nothing or from a source file. It
/// gathers the answers and creates nothing itself.
///
/// "新建" tests the answers from top to bottom. The first fault is told through the module's
/// channel, the place to mend gets the focus, and the dialog stays open. Then the controller
/// creates the project; when it answers true, or when there is no controller, exec() returns 1 and
/// the host reads the answers.
class QCE_EXPORT QCENewProjectViewImpl : public QDialog, public abst::qce::QCENewProjectView {
  Q_OBJECT

 public:
  using TextAndValue = std::pair<std::string, std::string>;

  /// Offers the report templates that the installed path manager leads to.
  explicit QCENewProjectViewImpl(QWidget* parent = nullptr);
  ~QCENewProjectViewImpl() override;

  void setController(abst::qce::QCENewProjectController* controller);  ///< not owned
  /// What a new project can start as: texts to choose from, and what each stands for in the host
  /// (UTF-8). The host fills it; the choice is offered from the next showing on.
  void setProjectTemplates(std::vector<TextAndValue> templates);

  /// Prepares the answers for a new project and shows the dialog. Hides QWidget::show on purpose.
  void show();
  int exec() override;
  void open() override;

  void readFilePath(std::string& sourcePath, std::string& projectName) const override;
  std::string getSelectFileType() const override;
  std::string getType() const override;
  std::string getReportTemplatePath() const override;
  std::string getCostPlanName() const override;
  std::string getProjectTemplate() const override;

  /// Scans the host's template directory again, in the order in which QDir lists it (by name).
  void setReportTemplate();

 protected:
  /// Asks the user for a file; an empty answer means cancelled. For a host with its own chooser.
  virtual QString chooseFile(const QString& caption, const QString& directory,
                             const QString& filter);

  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  void buildHead();
  void buildForm();
  void prepare();
  void browse();
  void confirm();
  /// Tells the fault, if any, and leads the user to `place`. True when there was none.
  bool accepts(const QString& problem, QWidget* place);

  abst::qce::QCENewProjectController* controller_ = nullptr;
  std::vector<TextAndValue> projectTemplates_;
  std::map<std::string, std::string> reportTemplates_;  ///< file name → full path
  std::optional<QPoint> grip_;  ///< where the head is held, from the frame's top left

  QWidget* head_ = nullptr;
  QLineEdit* pathEdit_ = nullptr;
  QLineEdit* nameEdit_ = nullptr;
  QLineEdit* costPlanEdit_ = nullptr;
  QComboBox* projectTemplateBox_ = nullptr;
  QRadioButton* tenderButton_ = nullptr;
  QRadioButton* targetButton_ = nullptr;
  QComboBox* reportTemplateBox_ = nullptr;
};

}  // namespace gui::qce
