#pragma once

#include <QtTest>
#include <QtWidgets>
#include <memory>

#include "tests/support/tester_proxy.h"
#include "workbench/cli/driver.h"
#include "workbench/controllers/open_project.h"
#include "workbench/exchange/sample_generator.h"
#include "workbench/services/install.h"
#include "workbench/shell/application.h"
#include "workbench/shell/main_window.h"
#include "workbench/shell/page_stack.h"
#include "workbench/shell/session.h"

namespace tests {

/// Answers every question for a file with one path, and keeps the names that were proposed.
class GivenFile : public shell::FileChooser {
 public:
  explicit GivenFile(QString path) : path_(std::move(path)) {}
  QString projectToOpen(QWidget*, const QString&) override { return path_; }
  QString projectToWrite(QWidget*, const QString& suggestion) override {
    return answer(suggestion);
  }
  QString spreadsheetToWrite(QWidget*, const QString& suggestion) override {
    return answer(suggestion);
  }
  QStringList suggested;

 private:
  QString answer(const QString& suggestion) {
    suggested << suggestion;
    return path_;
  }
  QString path_;
};

/// The program's window over a directory of its own, with recorded messages, and the office
/// building in it as a project file.
class WindowFixture {
 public:
  WindowFixture() {
    auto recording = std::make_unique<services::RecordingChannel>();
    channel = recording.get();
    services = services::install(std::make_unique<services::PathManager>(dir.path()),
                                 std::move(recording));
    const auto source = exchange::SampleGenerator::officeBuilding(exchange::SourceKind::Bid);
    store::Failure failure;
    made = store::ProjectFile::create(project(), &source, {"办公楼", "投标成本测算", {}}, failure);
    start();
  }

  void start() {
    window = std::make_unique<shell::MainWindow>(*services);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
  }
  /// Opens the office building on a page.
  void open(const char* page) {
    QVERIFY(made);
    QVERIFY(window->openProject(project()));
    QVERIFY(window->pages()->setCurrentPage(page));
  }
  /// The next dialog for a file answers with this path.
  GivenFile* give(const QString& path) {
    auto* chooser = new GivenFile(path);
    window->setFileChooser(std::unique_ptr<shell::FileChooser>(chooser));
    return chooser;
  }

  QString path(const QString& name) const { return dir.filePath(name); }
  QString project() const { return path("办公楼.qcp"); }
  records::Project& records() const { return window->session()->project().project(); }
  QUndoStack& stack() const { return window->session()->undoStack(); }
  /// The latest message; empty when there is none.
  QString message() const {
    const auto& all = channel->messages();
    return all.empty() ? QString() : QString::fromStdString(all.back().text);
  }
  /// What the driver does with `open`'s dialog, which is closed if it still stands.
  bool inDialog(const std::function<void()>& open, const std::function<void(QWidget*)>& inside) {
    return driver.withPopup(open, [&](QWidget* dialog) {
      inside(dialog);
      if (dialog->isVisible()) dialog->close();
    });
  }

  bool made = false;
  QTemporaryDir dir;
  services::RecordingChannel* channel = nullptr;
  std::unique_ptr<services::Installed> services;
  std::unique_ptr<shell::MainWindow> window;
  cli::Driver driver;
};

}  // namespace tests
