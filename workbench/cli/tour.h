#pragma once

#include <QDir>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>

#include "workbench/cli/driver.h"
#include "workbench/costing/decimal.h"
#include "workbench/exchange/spreadsheet_reader.h"

class QAction;
class QTreeView;

namespace bwidgets {
class TreeGridView;
}
namespace proxy {
class Element;
}
namespace records {
class Record;
}
namespace services {
class Installed;
class RecordingChannel;
}  // namespace services
namespace shell {
class MainWindow;
class SummaryView;
}  // namespace shell

namespace cli {

/// Walks through the program as a user would, on the real window, and takes a picture after each
/// step. A step that does not have its effect ends the walk.
class Tour {
 public:
  /// `project` is worked on and changed; `scratch` takes the files that the walk makes.
  Tour(const QString& project, const QString& scratch, const QString& pictures);
  ~Tour();

  /// The paths of the pictures.
  const QStringList& pictures() const { return paths_; }
  /// The paths of the spreadsheets.
  const QStringList& spreadsheets() const { return spreadsheets_; }
  /// Throws StepFailed.
  void walk();

  /// UTF-8: which step, and what it should have done.
  class StepFailed : public std::runtime_error {
   public:
    using std::runtime_error::runtime_error;
  };

 private:
  // The steps, in order.
  void welcome();
  void newProject();
  void resourceItems();
  void flagFilter();
  void associationFilter();
  void conditionFilter();
  void search();
  void sort();
  void editPrice();
  void batchPrice();
  void annotation();
  void columns();
  void undoAndRedo();
  void poolResources();
  void associateBills();
  void billTerms();
  void bills();
  void designItems();
  void subProject();
  void exportGrid();
  void feeSummaries();
  void indirectFees();
  void report();
  void subcontracts();
  void zoom();
  void reopen();
  void narrowWindow();

  /// What the page of summaries shows of one of them.
  struct Summary {
    costing::Decimal income, cost;  ///< of the total
    /// Of the lines of bills and of indirect fees.
    std::map<const records::Record*, costing::Decimal> costs;
  };
  shell::SummaryView& shownSummary() const;
  /// Goes to the page of summaries and reads all three; they have one total, that of the status
  /// bar.
  std::array<Summary, 3> readSummaries();
  /// The summaries after an edit that changes what the project costs by `cost`, and nothing else.
  std::array<Summary, 3> followed(const std::array<Summary, 3>& before,
                                  const costing::Decimal& cost);

  void step(const QString& name, void (Tour::*what)());
  void require(bool holds, const QString& what) const {
    if (!holds) fail(what);
  }
  [[noreturn]] void fail(const QString& what) const;
  void expectMessageFree() const;
  /// Takes a picture of the window, with `dialog` over it where one is open.
  void picture(const QString& name, QWidget* dialog = nullptr);

  /// In the window, or in another widget.
  template <class Widget>
  Widget* find(const QString& name, QWidget* in = nullptr) const {
    auto* found = (in != nullptr ? in : window())->findChild<Widget*>(name);
    require(found != nullptr, "找不到控件 " + name);
    return found;
  }
  QWidget* window() const;
  /// Clicks the page in the list.
  void goTo(const QString& key);
  /// Exports the current page to a spreadsheet of that name, with what `shown` shows, and reads it
  /// back cell by cell.
  exchange::ReadSheet exported(const QString& name, const bwidgets::TreeGridView& shown);
  QAction* action(const QString& text) const;
  void clickAction(const QString& text);
  /// The button with this text in a dialog.
  void clickButton(const QString& text, QWidget* in);
  QTreeView* grid() const;
  int column(const std::string& key) const;
  /// The shown items (not the grouping rows), top to bottom, in the given column.
  QModelIndexList items(int column) const;
  proxy::Element* element(const QModelIndex& index) const;
  QString text(proxy::Element* item, const std::string& key) const;
  bool flag(proxy::Element* item, const std::string& key) const;
  double number(proxy::Element* item, const std::string& key) const;

  QString project_;
  QString scratch_;
  QDir out_;
  QStringList paths_;
  QStringList spreadsheets_;
  QString current_;  ///< name of the step
  Driver driver_;
  services::RecordingChannel* channel_ = nullptr;
  std::unique_ptr<services::Installed> services_;
  std::unique_ptr<shell::MainWindow> window_;

  // What the edits made, to be found again after the project was opened anew.
  std::int64_t editedItem_ = 0;
  double editedPrice_ = 0;
  std::int64_t annotatedItem_ = 0;
};

}  // namespace cli
