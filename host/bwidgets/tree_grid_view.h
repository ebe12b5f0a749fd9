#pragma once

#include <QPersistentModelIndex>
#include <QTreeView>
#include <memory>
#include <vector>

#include "host_widgets_export.h"

class QMenu;

namespace gui {
class ViewModel;
}
namespace proxy {
class Element;
}

namespace bwidgets {

class GridHeader;
class GridState;
class SearchBox;

/// A tree or list of records as a grid.
///
/// - Leading columns can stay in place while the others scroll beneath them. It is one view, so
///   there is one model, one selection, one scroll position and one row height.
/// - The header has a second level when the model groups its columns.
/// - Column widths are kept by the model (gui::ViewModel) at 100 % zoom.
/// - Selection, current cell, expansion and scroll position stay on the same elements when the
///   model sorts, filters or resets.
/// - Numbers stand to the right, cells are edited as in a spreadsheet: gui::StyledItemDelegate is
///   the delegate unless another one is set.
/// - Ctrl+C and Ctrl+V exchange blocks with a spreadsheet, Ctrl+F finds, Delete clears.
///
/// Models need not be a gui::ViewModel; then there are no elements, no kept widths and no state
/// kept over a reset. Rows are told by their cell in column 0. Right-to-left layout is not
/// supported.
class QCE_HOST_WIDGETS_EXPORT TreeGridView : public QTreeView {
  Q_OBJECT

 public:
  explicit TreeGridView(QWidget* parent = nullptr);
  ~TreeGridView() override;

  void setModel(QAbstractItemModel* model) override;
  void setSelectionModel(QItemSelectionModel* selectionModel) override;
  /// The model as views know it; null when it is none.
  gui::ViewModel* viewModel() const { return viewModel_; }
  GridHeader* gridHeader() const { return header_; }

  // Columns.
  /// Keeps the first `count` columns (in visual order) in place. In a window too narrow for them
  /// fewer stay, so that the others can be reached.
  void setFrozenColumnCount(int count);
  int frozenColumnCount() const;
  /// The columns that are shown, from left to right.
  std::vector<int> visibleColumns() const;
  /// Gives each column the width that the model remembers, else one that fits its title and its
  /// first rows.
  void applyDefaultColumnWidths();
  /// Shows the sort indicator and lets a click on a title sort, by way of the model's sort().
  void applyHeaderSettings();
  /// Takes the sort mark off, since the rows are no longer in that order. Sorts nothing.
  void clearSortIndicator();

  // Rows.
  /// On: each row is as high as its wrapped texts need. Off (the default): all rows have one
  /// height, which is what keeps large grids fast.
  void setRowsResizedToContents(bool on);
  bool rowsResizedToContents() const { return !uniformRowHeights(); }

  /// What stands in the middle of a grid that shows no row; nothing by default.
  void setEmptyText(const QString& text);

  // Zoom.
  /// Scales texts, rows and columns; 50 to 300 per cent.
  void setZoom(int percent);
  int zoom() const { return zoom_; }

  // Elements.
  /// Those with a selected cell in a shown row, from top to bottom, each once.
  std::vector<proxy::Element*> selectedElements() const;
  proxy::Element* currentElement() const;
  /// Selects the rows of these elements, expands what is above them and makes the first of them
  /// current. Elements that are not shown are left out.
  void selectElements(const std::vector<proxy::Element*>& elements);
  proxy::Element* elementAt(const QModelIndex& index) const;
  /// The selected cells of shown rows and columns, by rows from top to bottom; disabled ones too.
  QModelIndexList selectedCells() const;

  // Search.
  /// Makes the search box; without it Ctrl+F does nothing.
  void initSearchBox();
  SearchBox* searchBox() const { return searchBox_; }
  /// Shows the search box and puts the keyboard into it.
  void openSearchBox();

  // Editing.
  /// A delegate sets this property of an editor to true when the model has refused its text: the
  /// current cell then stays where it is when the editor closes, to be typed into again.
  static constexpr char RefusedProperty[] = "bwidgets_refused";
  /// Adds copy, paste and clear to a context menu.
  void addEditActions(QMenu* menu);

  QRect visualRect(const QModelIndex& index) const override;
  QModelIndex indexAt(const QPoint& point) const override;
  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
  void doItemsLayout() override;

 public slots:
  void copySelection();
  /// Writes the clipboard's block from the top left selected cell on, over shown rows and columns;
  /// a single value fills the selection. One undo step; cells that refuse are named to the user.
  void paste();
  /// Empties the editable selected cells, in one undo step.
  void clearSelectedCells();

 signals:
  /// The current row is another one; null for none.
  void currentElementChanged(proxy::Element* element);
  /// The Delete key. While anything is connected to it, the grid does not clear cells itself.
  void deletePressed();
  void zoomChanged(int percent);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void drawBranches(QPainter* painter, const QRect& rect, const QModelIndex& index) const override;
  void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
  QRegion visualRegionForSelection(const QItemSelection& selection) const override;
  void scrollContentsBy(int dx, int dy) override;
  void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) override;
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
  void updateEditorGeometries() override;

 private:
  friend class GridState;

  QRect decorationRect(const QModelIndex& index) const;
  QRect cellRect(const QModelIndex& index) const;
  bool isCellEnabled(const QModelIndex& index) const;
  QModelIndex nextRow(const QModelIndex& from, int direction, int count) const;
  QModelIndex columnInRow(const QModelIndex& from, int visible, int direction) const;
  void moveCurrent(CursorAction action);
  bool handleKey(QKeyEvent* event);
  QModelIndex lastRow() const;
  QItemSelection block(const QModelIndex& from, const QModelIndex& to) const;
  void storeWidth(int column, int oldWidth, int newWidth);
  int sampledWidth(int column) const;
  bool applyKeptWidth(int column);
  void sizeInsertedColumns(const QModelIndex& parent, int first, int last);
  void afterLayoutChange();
  void afterReset();

  GridHeader* header_;
  std::unique_ptr<GridState> state_;
  SearchBox* searchBox_ = nullptr;
  gui::ViewModel* viewModel_ = nullptr;
  std::vector<QMetaObject::Connection> modelConnections_;
  QPersistentModelIndex anchor_;  // where an extended selection starts
  bool extending_ = false;        // by the keyboard: the selection reaches to the current cell
  bool holdsAnchor_ = false;      // while the mouse is at work, setSelection places the anchor
  bool pressedDecoration_ = false;
  bool applyingWidths_ = false;
  bool sampledRows_ = false;
  int sizedColumns_ = 0;  // how many columns there were when they were last given their widths
  int zoom_ = 100;
  QFont plainFont_;
  QString emptyText_;
};

}  // namespace bwidgets
