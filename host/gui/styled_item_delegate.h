#pragma once

#include <QStyledItemDelegate>

#include "host_widgets_export.h"

namespace gui {

/// The delegate of a bwidgets::TreeGridView; works in other views, too.
///
/// Asks the cell for role 137 (its field type): numbers stand to the right unless the model aligns
/// them. Every value is edited in a plain line with its text selected; a number's line commits
/// nothing else and tells so while it is typed. A cell that takes some texts only
/// (domain::ChoicesRole) gets a list of them, in which a part of the text finds the entry. A text
/// that was not changed is not written. A check box without a text stands in the middle; a click on
/// it or Space toggles it. A text that does not fit its cell shows in full as its tool tip.
/// What is no number and is left by a click elsewhere is not written, and the user is told.
class QCE_HOST_WIDGETS_EXPORT StyledItemDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  explicit StyledItemDelegate(QObject* parent = nullptr);

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;
  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
  bool eventFilter(QObject* object, QEvent* event) override;
};

}  // namespace gui
