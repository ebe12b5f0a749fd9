#pragma once

#include <QHeaderView>
#include <QStringList>
#include <vector>

#include "host/bwidgets/header_spans.h"

namespace bwidgets {

/// The header of a tree grid: one level, or two when its model groups columns; its leading
/// columns stay in place while the others scroll beneath them.
class QCE_HOST_WIDGETS_EXPORT GridHeader : public QHeaderView {
  Q_OBJECT

 public:
  explicit GridHeader(QWidget* parent = nullptr);

  /// How many columns, in visual order and hidden ones included, stay in place.
  void setFrozenCount(int count);
  int frozenCount() const { return frozenCount_; }
  /// Pixels that they take; they take the fewer the narrower the header is.
  int frozenWidth() const;
  bool isFrozen(int logicalIndex) const;
  /// The column shown at `x` of the header's viewport, frozen ones included; -1 for none.
  int shownColumnAt(int x) const;
  /// Where the column is shown, frozen or scrolled.
  int shownPosition(int logicalIndex) const;

  /// Asks the model (a gui::ViewModel) for its column groups again.
  void readGroups();
  bool hasGroups() const { return !captions_.isEmpty(); }
  /// The group captions as they lie, from the start of the first column.
  std::vector<HeaderSpan> spans() const;
  /// The group of a column; -1 for none.
  int groupOf(int logicalIndex) const;
  QString groupCaption(int group) const { return captions_.value(group); }

  /// Pixels that are left free above the titles, for a bar that is to hide neither them nor a cell.
  void setRoomAbove(int pixels);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
  bool viewportEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  std::vector<HeaderColumn> columns() const;
  int effectiveFrozenCount() const;
  int captionHeight() const;
  void paintCaptions(QPainter& painter, bool frozen) const;
  bool isOnCaption(const QPoint& at) const;
  bool isOverFrozen(int x) const;
  int frozenHandleAt(int x) const;
  template <class Handler>
  void handleMouse(QMouseEvent* event, Handler handler);

  int frozenCount_ = 0;
  int roomAbove_ = 0;
  QStringList captions_;
  std::vector<int> groups_;  // by logical column
  bool pressedFrozen_ = false;
  int resized_ = -1;  // the frozen column whose border is being dragged
  int resizeStart_ = 0;
  int resizeSize_ = 0;
};

}  // namespace bwidgets
