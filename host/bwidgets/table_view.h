#pragma once

#include "host/bwidgets/tree_grid_view.h"

namespace bwidgets {

/// A flat list of records as a grid: all that TreeGridView offers, without branches and with a
/// column of row numbers at its left. The numbers are the model's vertical header.
class QCE_HOST_WIDGETS_EXPORT TableView : public TreeGridView {
  Q_OBJECT

 public:
  explicit TableView(QWidget* parent = nullptr);

  void setModel(QAbstractItemModel* model) override;
  void setRowNumbersShown(bool on);
  bool rowNumbersShown() const { return shown_; }
  /// Pixels that the row numbers take now.
  int rowNumberWidth() const;

 protected:
  void updateGeometries() override;
  void scrollContentsBy(int dx, int dy) override;
  void paintEvent(QPaintEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void paintRowNumbers();
  QModelIndex rowAt(int y) const;
  void selectRow(int y, Qt::KeyboardModifiers modifiers, bool extend);

  QWidget* numbers_;
  bool shown_ = true;
  bool updating_ = false;
  int paintedWidth_ = 0;
  QPersistentModelIndex firstNumbered_;  // where a drag over the numbers began
};

}  // namespace bwidgets
