#pragma once

#include "host/gui/styled_item_delegate.h"
#include "qce_export.h"

namespace gui::qce {

/// The delegate of the bills' grid. Rows are as high as their wrapped texts while the resize state
/// is on, else one line high. Contents and subcontract prices are edited in a line that takes an
/// expression too.
class QCE_EXPORT QCEResItemBillDelegate : public gui::StyledItemDelegate {
  Q_OBJECT

 public:
  using StyledItemDelegate::StyledItemDelegate;

  void setResizeState(bool on) { resizeState_ = on; }
  bool resizeState() const { return resizeState_; }

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

 private:
  bool resizeState_ = false;
};

}  // namespace gui::qce
