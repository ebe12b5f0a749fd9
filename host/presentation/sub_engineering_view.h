#pragma once

#include <QPointer>
#include <map>
#include <string>
#include <vector>

#include "framework/base_page.h"
#include "host/abst/sub_engineering_filter_model.h"
#include "host/presentation/sub_project_box.h"
#include "host/proxy/element.h"
#include "qce_export.h"

class QAction;
class QLabel;
class QMenu;
class QSplitter;
class QTimer;
class QToolBar;

namespace domain {
struct ColumnDescriptor;
class SubEngineeringOperator;
}  // namespace domain

namespace gui {

class QuantityDetailDialog;
class SubEngineeringDelegate;
class TreeGridView;

/// The host's generic page of a project's bills: the structure, its bills and their resources as a
/// tree grid that keeps the columns up to the name in place. Rows stand in the order of the bill
/// list; a click on a title does not sort.
///
/// Its model is an abst::SubEngineeringFilterModel that is a QAbstractItemModel too; the operator
/// behind it is a domain::SubEngineeringOperator. A concrete page overrides the hooks and calls
/// init() in its constructor. Messages go to the module's channel.
class QCE_EXPORT SubEngineeringViewImpl : public BasePage {
  Q_OBJECT

 public:
  explicit SubEngineeringViewImpl(QWidget* parent = nullptr);
  ~SubEngineeringViewImpl() override;

  /// Builds the widgets from the hooks below.
  virtual void init();

  void setModel(abst::BaseModel* model) override;
  void activate() override;
  void updateView() override;

  /// Gives each column the width that the model remembers, else one that fits.
  virtual void updateColumnWidth();
  /// Reads captions, widths and frozen columns again; false without a model.
  virtual bool updateTreeHeader();

  /// Lets the host save the grid as a spreadsheet, under the name that was set, else under that of
  /// the tab.
  virtual void exportExcel();
  virtual void setExportExcelName(std::string name);

  /// The Delete key on the grid: empties the editable selected cells, as one undo step.
  virtual void keyDeleteAction();
  /// Writes the clipboard's block from the selection on, as one undo step.
  virtual void pasteCellContents();
  /// Asks for one of the types that bills can have, starting with `type`; true and the chosen one
  /// when the user confirmed.
  virtual bool popUpPLSetZBType(std::string& type) const;
  /// Makes an element that was found current, unfolding what is above it. The element, or null when
  /// it is not shown.
  virtual proxy::Element* setCurrentIndexFromFind(proxy::Element* element);
  /// Selects these rows, of the whole project and with no filter on.
  virtual void showElements(const std::vector<proxy::Element*>& elements);

  /// Whether the quantity-detail dialog is open.
  virtual bool getQuantityDetailDialogState() const;
  /// Opens it for the current bill, and returns; nothing for another row.
  virtual void showQuantityDetailDialog();
  /// Tells for each field key in the map whether the current bill's field is made of detail lines;
  /// an empty map is filled with the fields that can be. Whether any of them is.
  virtual bool useDetailCalc(std::map<std::string, bool>& fields);

  virtual gui::TreeGridView* createTableGridView();
  /// A new delegate without parent; the page takes it over.
  virtual gui::SubEngineeringDelegate* createSubEngineeringDelege();

 public slots:
  /// Opens the search box over the grid.
  void find();
  void expandAll();
  /// Folds the resources of the bills away and unfolds everything above.
  void expandBills();
  /// Asks for a type and sets it for the bills in the selection, as one undo step.
  void batchSetType();

 protected:
  /// Adds the page's own commands behind the generic ones.
  virtual void fillToolBar(QToolBar* /*toolBar*/) {}
  virtual void fillContextMenu(QMenu* menu);

  gui::TreeGridView* treeGrid() const { return treeGrid_; }
  /// Holds the grid; a page adds what stands beside it.
  QSplitter* splitter() const { return splitter_; }
  abst::SubEngineeringFilterModel* filter() const { return filter_; }
  /// Counts the shown rows again, once what is going on is over.
  void rowsChanged();
  /// What the status line says beyond its figures; empty for nothing.
  virtual QString statusNote() const { return {}; }

  void onModelReset() override;
  void onDataChanged() override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  virtual std::string getSECodeKey();
  virtual std::string getSENameKey();
  virtual std::string getSEQuantityKey();
  virtual std::string getSEUnitKey();

  void createActions();
  bool isColumnShown(const domain::ColumnDescriptor& column) const;
  void showColumn(const std::string& key, bool show);
  void refillSubProjects();
  void chooseSubProject();
  void showContextMenu(const QPoint& position);
  void expandAboveResources(const QModelIndex& parent);
  void refreshActions();
  void refreshStatus();
  QString cellText(proxy::Element* element, const std::string& key) const;
  std::vector<QModelIndex> selectedCellsOf(const std::string& key) const;
  domain::SubEngineeringOperator* subEngineeringOperator() const;

  gui::TreeGridView* treeGrid_ = nullptr;
  QSplitter* splitter_ = nullptr;
  abst::SubEngineeringFilterModel* filter_ = nullptr;
  SubProjectBox* subProjectBox_ = nullptr;
  QAction* showResAction_ = nullptr;
  QAction* detailAction_ = nullptr;
  QAction* batchTypeAction_ = nullptr;
  QLabel* status_ = nullptr;
  QTimer* refreshTimer_ = nullptr;
  QPointer<QuantityDetailDialog> detailDialog_;
  std::string exportName_;
  int shownRows_ = -1;  // -1: to be counted
  bool wasEmpty_ = true;
};

}  // namespace gui
