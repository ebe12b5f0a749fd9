#pragma once

#include <QPersistentModelIndex>
#include <string>

#include "host/gui/styled_item_delegate.h"
#include "qce_export.h"

namespace gui {

/// The delegate of the generic sub-engineering page. Four kinds of cells, told by their field key,
/// have editors of their own:
///
/// - code: no blanks, full-width characters made narrow;
/// - name: one line, whatever line breaks are pasted;
/// - calculation expression: a refused expression is there again when its cell is edited next;
/// - composite (a text of several lines): a box of several lines. Return commits, Alt+Return or
///   Shift+Return breaks the line.
///
/// All other cells are edited as by gui::StyledItemDelegate.
class QCE_EXPORT SubEngineeringDelegate : public StyledItemDelegate {
  Q_OBJECT

 public:
  explicit SubEngineeringDelegate(QObject* parent = nullptr);

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;

 protected:
  // The field keys of the four columns.
  virtual std::string GetCodeField() const;
  virtual std::string GetNameField() const;
  virtual std::string GetCalcExprField() const;
  virtual std::string GetComplexField() const;

  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  // The expression that was refused last, and where.
  mutable QPersistentModelIndex refusedCell_;
  mutable QString refusedText_;
};

}  // namespace gui
