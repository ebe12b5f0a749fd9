#pragma once

#include <QLayout>
#include <QList>

#include "host_widgets_export.h"

namespace bwidgets {

/// Lays its items out in rows from left to right, as the words of a text: what does not fit into a
/// row goes on in the next one. Each has its preferred size and stands in the middle of its row;
/// hidden ones take no room. The height follows from the width, so that a tool bar of many buttons
/// does not keep its window from being made narrow.
class QCE_HOST_WIDGETS_EXPORT FlowLayout : public QLayout {
  Q_OBJECT

 public:
  explicit FlowLayout(QWidget* parent = nullptr);
  ~FlowLayout() override;

  void addItem(QLayoutItem* item) override;
  QLayoutItem* itemAt(int index) const override;
  QLayoutItem* takeAt(int index) override;
  int count() const override { return items_.size(); }

  Qt::Orientations expandingDirections() const override { return {}; }
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;
  QSize sizeHint() const override;  ///< all in one row
  QSize minimumSize() const override;
  void setGeometry(const QRect& area) override;

 private:
  /// The height that the rows take; they are moved there if `place`.
  int layOut(const QRect& area, bool place) const;

  QList<QLayoutItem*> items_;
};

}  // namespace bwidgets
