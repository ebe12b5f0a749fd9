#pragma once

#include <QIcon>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

class QUndoStack;
class QWidget;

namespace abst {
class BaseView;
}
namespace app {
class UndoService;
}
namespace controllers {
class OpenProject;
}
namespace store {
struct Failure;
}

namespace shell {

class Session;

/// What the window knows of one page of an open project.
struct Page {
  QString key;
  QString title;
  QIcon icon;
  QWidget* widget = nullptr;  ///< handed over to the window
  abst::BaseView* view = nullptr;
  std::function<void()> find;        ///< opens the search over the page's grid
  std::function<void()> exportGrid;  ///< saves its grid as a spreadsheet; empty when it has none
  std::function<void(int)> setZoom;  ///< per cent
  std::shared_ptr<void> behind;      ///< models and controllers, kept as long as the widget
};

/// Makes one page of a project; the list has them in the order of the page list.
using PageMaker = std::function<Page(Session&)>;
const std::vector<PageMaker>& pageMakers();

/// An open project with its undo steps and its pages.
class Session : public QObject {
  Q_OBJECT

 public:
  /// The project's sums as texts in yuan with 2 places.
  struct Totals {
    QString budget;
    QString excludingTax;
    QString includingTax;
    QString fees;          ///< cost of the indirect fees
    QString subcontracts;  ///< cost of the subcontracts excluding tax; empty when there are none
    qint64 items = 0;
  };
  /// Hears how far opening is, 0 to 100; false cancels it.
  using ReportProgress = std::function<bool(int percent)>;

  /// Null when the file cannot be opened; `failure` then says why.
  static std::unique_ptr<Session> open(const QString& path, store::Failure& failure,
                                       const ReportProgress& progress = {});
  ~Session() override;

  QString path() const;
  QString name() const;
  QString type() const;  ///< 投标成本测算 or 目标成本测算
  Totals totals() const;
  /// Writes the project as it is now to another file, replacing what is there.
  bool saveCopy(const QString& path, store::Failure& failure);

  controllers::OpenProject& project() { return *project_; }
  QUndoStack& undoStack();
  app::UndoService& undoService();

  /// Makes the pages; the window takes their widgets.
  const std::vector<Page>& makePages();
  /// Null when there is no such page.
  const Page* page(const QString& key) const;
  const Page* pageTitled(const QString& title) const;
  /// Lets go of what stands behind the pages, after their widgets are gone.
  void dropPages();

 signals:
  /// An edit, an undo or a redo is complete.
  void changed();
  /// A page leads to another one, which is to be shown.
  void pageWanted(const QString& key);

 private:
  explicit Session(std::unique_ptr<controllers::OpenProject> project);

  std::unique_ptr<controllers::OpenProject> project_;
  std::vector<Page> pages_;
};

}  // namespace shell
