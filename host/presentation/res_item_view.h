#pragma once

#include <QString>
#include <set>
#include <string>

#include "framework/base_page.h"
#include "qce_export.h"

class QActionGroup;
class QBoxLayout;
class QLineEdit;
class QMenu;

namespace gui {

class ResItemTextFilter;
class StyledItemDelegate;
class TreeGridView;

/// The host's generic resource-item page: a tool bar, the grid with its delegate, a text filter
/// with a choice of category, a choice of columns, a context menu and find. A concrete page
/// overrides the hooks and calls init() in its constructor.
class QCE_EXPORT ResItemViewImpl : public BasePage {
  Q_OBJECT

 public:
  explicit ResItemViewImpl(QWidget* parent = nullptr);
  ~ResItemViewImpl() override;

  void setModel(abst::BaseModel* model) override;

 public slots:
  // What a page that changes the set of its items does; nothing here.
  virtual void insertItem() {}
  virtual void deleteItem() {}
  virtual void searchRCJ() {}
  /// Opens the search box over the grid.
  void find();
  /// Lets the host save the grid as a spreadsheet under the page's title.
  virtual void exportExcel();
  void expandAll();
  void collapseAll();

 protected:
  /// Builds the widgets from the hooks below.
  void init();

  virtual gui::TreeGridView* createTableGridView();
  virtual gui::StyledItemDelegate* createDelegate();
  /// Whether the page's filter model is one that the text filter can drive (ResItemTextFilter).
  virtual bool hasTextFilter() const { return true; }
  /// Adds the page's own controls, after the text filter.
  virtual void fillToolBar(QBoxLayout* /*toolBar*/) {}
  /// What stands below the tool bar: the grid, or a widget that holds it.
  virtual QWidget* createContent(gui::TreeGridView* grid);
  /// What stands below the content; null for nothing.
  virtual QWidget* createFooter() { return nullptr; }
  /// The grid's current row is another one. Nothing here.
  virtual void onCurrentRowChanged() {}
  /// Adds the entries of the grid's context menu.
  virtual void fillContextMenu(QMenu* menu);

  /// Shows a column or leaves it out; what is left out stays so in later sessions.
  void showColumn(const std::string& key, bool show);

  /// Whether a text or a category leaves items out.
  bool isTextFiltered() const;
  /// Shows all again: no text, and the type "所有".
  void clearTextFilter();

  gui::TreeGridView* treeGrid() const { return treeGrid_; }

  void onModelReset() override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void createColumnMenu();
  void hideKeptColumns();
  void hideColumns(const std::set<std::string>& keys);
  /// Where the host's configuration keeps what is left out; empty without a model.
  std::string columnSetting() const;
  QWidget* createTextFilter();
  /// Filters by what the controls say.
  void applyTextFilter();
  void showContextMenu(const QPoint& position);

  gui::TreeGridView* treeGrid_ = nullptr;
  ResItemTextFilter* textFilter_ = nullptr;
  QLineEdit* textEdit_ = nullptr;
  QActionGroup* types_ = nullptr;
  QMenu* columnMenu_ = nullptr;
  bool wasEmpty_ = true;
};

}  // namespace gui
