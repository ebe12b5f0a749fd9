#pragma once

#include <QWidget>
#include <vector>

#include "workbench/shell/recent_files.h"

class QLabel;
class QListWidget;
class QListWidgetItem;

namespace shell {

/// What stands in the window while no project is open: new, open, and the recent projects.
class WelcomeView : public QWidget {
  Q_OBJECT

 public:
  explicit WelcomeView(QWidget* parent = nullptr);

  void setRecentFiles(const std::vector<RecentFile>& files);

 signals:
  void newRequested();
  void openRequested();
  void recentRequested(const QString& path);
  /// The entry shall leave the list.
  void forgetRequested(const QString& path);

 private:
  void showMenu(const QPoint& at);

  QListWidget* recent_;
  QLabel* none_;
};

}  // namespace shell
