#pragma once

#include <QMainWindow>
#include <memory>

#include "workbench/services/install.h"
#include "workbench/shell/file_chooser.h"
#include "workbench/shell/recent_files.h"

class QLabel;
class QMenu;
class QStackedWidget;
class QTimer;
class QToolButton;

namespace store {
struct Failure;
}

namespace shell {

class ElidedLabel;
class PageStack;
class Session;
class SpreadsheetSaver;
class WelcomeView;
struct Page;

/// The window of the program: the pages of the open project, or the welcome view.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// `services` must outlive the window.
  explicit MainWindow(services::Installed& services);
  ~MainWindow() override;

  void setFileChooser(std::unique_ptr<FileChooser> chooser);

  /// Opens a project. When it cannot be opened the user is told why, and the project that is open
  /// stays so.
  bool openProject(const QString& path);
  void closeProject();
  Session* session() const { return session_.get(); }  ///< null when no project is open
  PageStack* pages() const { return pages_; }

 public slots:
  void newProject();
  void openWithChooser();
  void tellSaved();
  void saveCopyAs();
  /// Saves the grid of the current page as a spreadsheet.
  void exportPage();
  /// Writes the report of the project into a folder that the user chooses.
  void exportReport();
  void showFind();
  void zoomIn();
  void zoomOut();
  void resetZoom();
  void about();
  void showHelp();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void createActions();
  void createStatusBar();
  QAction* addAction(QMenu* menu, const QString& name, const QString& text, const QString& icon,
                     const QList<QKeySequence>& keys, void (MainWindow::*slot)());
  void tellFailure(const store::Failure& failure, const QString& path);
  void connectUndo();
  void refreshRecent();
  void refreshState();
  const Page* currentPage() const;  ///< null when there is none
  void refreshExport();
  QString reportFolder() const;
  void refreshTotals();
  /// In the status bar, with a button to the folder.
  void tellExported(const QString& text, const QString& folder);
  void onStatusMessage(const QString& text);
  void openExportFolder();
  void setZoom(int percent);
  void applyZoom();
  void saveWindowState();
  void restoreWindowState();

  services::Installed& services_;
  std::unique_ptr<FileChooser> chooser_;
  RecentFiles recent_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<SpreadsheetSaver> spreadsheets_;
  int zoom_ = 100;  ///< per cent

  QStackedWidget* centre_;
  WelcomeView* welcome_;
  PageStack* pages_;
  QMenu* recentMenu_ = nullptr;
  QAction* undo_ = nullptr;
  QAction* redo_ = nullptr;
  QAction* export_ = nullptr;
  QList<QAction*> needProject_;
  QTimer* totalsTimer_;
  ElidedLabel* sourceMoney_ = nullptr;  ///< of the source file, after a project was made of it
  QLabel* totals_ = nullptr;
  QToolButton* openFolder_ = nullptr;  ///< while the message of an export stands
  QString exported_;                   ///< that message
  QString exportFolder_;
  QLabel* saved_ = nullptr;
};

}  // namespace shell
