#include "host/gui/styled_item_delegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QCompleter>
#include <QHelpEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QTimer>
#include <QToolTip>
#include <QValidator>
#include <algorithm>

#include "host/app/services.h"
#include "host/base/number_text.h"
#include "host/bwidgets/cell_text.h"
#include "host/bwidgets/grid_clipboard.h"
#include "host/bwidgets/search_box.h"
#include "host/bwidgets/tree_grid_view.h"
#include "host/domain/data_field.h"
#include "host/domain/item_role.h"

namespace gui {
namespace {

constexpr char startText[] = "gui_startText";  // what an editor showed before the user typed
constexpr char cellPlace[] = "gui_cellPlace";  // which cell it edits, in the user's words
const QColor searchMark(0xff, 0xf1, 0xa8);
const QColor refusedText(0xc6, 0x28, 0x28);

bool isNumber(const QModelIndex& index) {
  const int type = index.data(domain::FieldTypeRole).toInt();
  return type == domain::IntegerField || type == domain::FloatingPointField;
}

QString editText(const QModelIndex& index) {
  const QVariant value = index.data(Qt::EditRole);
  if (value.type() == QVariant::Double) {
    return QString::fromStdString(base::ToPlainString(value.toDouble()));
  }
  if (value.type() == QVariant::Bool) {
    return value.toBool() ? QString::fromUtf8("是") : QString::fromUtf8("否");
  }
  if (!value.isValid() || value.isNull()) {
    // A host may answer the display role alone.
    return bwidgets::clipboardText(index);
  }
  return value.toString();
}

// "“螺纹钢筋”的“数量”": the row by the column of the tree, else by its first one.
QString placeOf(const QWidget* view, const QModelIndex& index) {
  const auto* grid = qobject_cast<const bwidgets::TreeGridView*>(view);
  const int naming = grid != nullptr ? std::max(grid->treePosition(), 0) : 0;
  const QString row = index.sibling(index.row(), naming).data().toString().simplified();
  const QString title =
      index.model()->headerData(index.column(), Qt::Horizontal).toString().simplified();
  return QString::fromUtf8(row.isEmpty() ? "%1“%2”" : "“%1”的“%2”").arg(row, title);
}

bool isCheckBoxAlone(const QStyleOptionViewItem& option) {
  return (option.features & QStyleOptionViewItem::HasCheckIndicator) && option.text.isEmpty();
}

QStyle* styleOf(const QStyleOptionViewItem& option) {
  return option.widget != nullptr ? option.widget->style() : QApplication::style();
}

QRect checkBoxRect(const QStyleOptionViewItem& option) {
  const QStyle* style = styleOf(option);
  const QSize size(style->pixelMetric(QStyle::PM_IndicatorWidth, &option, option.widget),
                   style->pixelMetric(QStyle::PM_IndicatorHeight, &option, option.widget));
  return QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, size, option.rect);
}

// The number that was typed, as plain digits; nothing for what is none.
std::optional<QString> typedNumber(QString text) {
  // Full-width digits come from Chinese input methods.
  static const QRegularExpression digits(QRegularExpression::anchoredPattern(
      QString::fromUtf8("\\s*[-+－＋]?[0-9０-９,，]*[.．。]?[0-9０-９]*\\s*")));
  if (!digits.match(text).hasMatch()) return {};
  return bwidgets::plainNumber(text.replace(QString::fromUtf8("。"), QStringLiteral(".")));
}

// What is no number can be typed but not committed: were its letters left out one by one, "12*1.5"
// would silently become 121.5.
class NumberValidator : public QValidator {
 public:
  using QValidator::QValidator;
  State validate(QString& text, int& /*position*/) const override {
    return text.trimmed().isEmpty() || typedNumber(text) ? Acceptable : Intermediate;
  }
};

void tellOfNumber(QLineEdit* editor) {
  const bool number = editor->hasAcceptableInput();
  QPalette palette = editor->parentWidget()->palette();
  if (!number) palette.setColor(QPalette::Text, refusedText);
  editor->setPalette(palette);
  QToolTip::showText(editor->mapToGlobal(QPoint(0, editor->height() / 2)),
                     number ? QString() : QString::fromUtf8("这里只能输入数字，按 Esc 恢复原值"),
                     editor);
}

}  // namespace

StyledItemDelegate::StyledItemDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

// The toolkit drops what cannot be accepted when the focus leaves an editor, without a word.
bool StyledItemDelegate::eventFilter(QObject* object, QEvent* event) {
  auto* line = qobject_cast<QLineEdit*>(object);
  if (event->type() != QEvent::FocusOut || line == nullptr || line->hasAcceptableInput()) {
    return QStyledItemDelegate::eventFilter(object, event);
  }
  const QString text =
      QString::fromUtf8("“%1”不是数字，没有写入%2，单元格保留原值。请重新输入数字。")
          .arg(line->text(), line->property(cellPlace).toString());
  bool closed = false;
  const QMetaObject::Connection heard =
      connect(this, &QAbstractItemDelegate::closeEditor, this, [&closed] { closed = true; });
  const bool handled = QStyledItemDelegate::eventFilter(object, event);
  disconnect(heard);
  if (closed) {
    // Not from inside the change of the focus.
    QTimer::singleShot(0, this, [text] {
      app::qce::GetQCEChannel()->message(text.toStdString(), QMessageBox::Ok);
    });
  }
  return handled;
}

void StyledItemDelegate::initStyleOption(QStyleOptionViewItem* option,
                                         const QModelIndex& index) const {
  QStyledItemDelegate::initStyleOption(option, index);
  if (isNumber(index) && !index.data(Qt::TextAlignmentRole).isValid()) {
    option->displayAlignment = Qt::AlignRight | Qt::AlignVCenter;
  }
  const auto* grid = qobject_cast<const bwidgets::TreeGridView*>(option->widget);
  if (grid != nullptr && grid->searchBox() != nullptr && grid->searchBox()->marks(option->text)) {
    option->backgroundBrush = searchMark;
  }
}

void StyledItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
  QStyleOptionViewItem plain = option;
  plain.state &= ~QStyle::State_HasFocus;  // the grid frames its current cell itself
  QStyleOptionViewItem box = plain;
  initStyleOption(&box, index);
  if (!isCheckBoxAlone(box)) {
    QStyledItemDelegate::paint(painter, plain, index);
    return;
  }
  const QStyle* style = styleOf(box);
  style->drawPrimitive(QStyle::PE_PanelItemViewItem, &box, painter, box.widget);
  box.rect = checkBoxRect(box);
  box.state &= ~(QStyle::State_On | QStyle::State_Off | QStyle::State_NoChange);
  box.state |= box.checkState == Qt::Unchecked ? QStyle::State_Off
               : box.checkState == Qt::Checked ? QStyle::State_On
                                               : QStyle::State_NoChange;
  style->drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &box, painter, box.widget);
}

QSize StyledItemDelegate::sizeHint(const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
  QSize size = QStyledItemDelegate::sizeHint(option, index);
  const auto* grid = qobject_cast<const bwidgets::TreeGridView*>(option.widget);
  const int line = option.fontMetrics.height();
  int height = line + std::max(4, line / 4);
  if (grid != nullptr && grid->rowsResizedToContents()) {
    // The view does not tell the width, and wrapping needs it.
    constexpr int margins = 10;
    const QRect room(0, 0, std::max(1, grid->columnWidth(index.column()) - margins), 1 << 20);
    const QRect text = option.fontMetrics.boundingRect(
        room, Qt::TextWordWrap | Qt::TextWrapAnywhere, index.data().toString());
    height = std::max(height, text.height() + std::max(4, line / 4));
  }
  size.setHeight(height);
  return size;
}

QWidget* StyledItemDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                          const QModelIndex& index) const {
  const QStringList choices = index.data(domain::ChoicesRole).toStringList();
  if (!choices.isEmpty()) {
    // A part of the text finds the entry: there may be hundreds of them.
    auto* box = new QComboBox(parent);
    box->setFrame(false);
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->addItems(choices);
    box->completer()->setCompletionMode(QCompleter::PopupCompletion);
    box->completer()->setFilterMode(Qt::MatchContains);
    return box;
  }
  auto* editor = new QLineEdit(parent);
  editor->setFrame(false);
  editor->setAutoFillBackground(true);
  if (isNumber(index)) {
    editor->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    editor->setValidator(new NumberValidator(editor));
    editor->setProperty(cellPlace, placeOf(option.widget, index));
    QObject::connect(editor, &QLineEdit::textEdited, editor, [editor] { tellOfNumber(editor); });
  }
  return editor;
}

void StyledItemDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  auto* line = qobject_cast<QLineEdit*>(editor);
  if (line == nullptr) {
    QStyledItemDelegate::setEditorData(editor, index);
    const auto* box = qobject_cast<QComboBox*>(editor);
    if (box != nullptr && box->lineEdit() != nullptr) box->lineEdit()->selectAll();
    return;
  }
  // The model may change while the user types; what was typed stays.
  if (line->property(startText).isValid()) return;
  const QString text = editText(index);
  line->setProperty(startText, text);
  line->setText(text);
  line->selectAll();
}

void StyledItemDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                      const QModelIndex& index) const {
  if (const auto* box = qobject_cast<QComboBox*>(editor)) {
    const QString text = box->currentText();
    const bool taken =
        text == index.data(Qt::EditRole).toString() || model->setData(index, text, Qt::EditRole);
    editor->setProperty(bwidgets::TreeGridView::RefusedProperty, !taken);
    return;
  }
  const auto* line = qobject_cast<QLineEdit*>(editor);
  if (line == nullptr) {
    QStyledItemDelegate::setModelData(editor, model, index);
    return;
  }
  QString text = line->text();
  const QVariant before = line->property(startText);
  if (before.isValid() && before.toString() == text) return;
  if (isNumber(index)) {
    text = typedNumber(text).value_or(QString());
  } else if (index.data(domain::FieldTypeRole).toInt() == domain::BoolField) {
    const std::optional<bool> checked = bwidgets::yesOrNo(text);
    const bool taken = checked && model->setData(index, *checked, Qt::EditRole);
    editor->setProperty(bwidgets::TreeGridView::RefusedProperty, !taken);
    return;
  }
  const bool taken = model->setData(index, text, Qt::EditRole);
  editor->setProperty(bwidgets::TreeGridView::RefusedProperty, !taken);
}

void StyledItemDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                              const QModelIndex& /*index*/) const {
  editor->setGeometry(option.rect.adjusted(2, 2, -2, -2));  // the frame of the current cell stays
}

bool StyledItemDelegate::editorEvent(QEvent* event, QAbstractItemModel* model,
                                     const QStyleOptionViewItem& option, const QModelIndex& index) {
  const bool mouse = event->type() == QEvent::MouseButtonPress ||
                     event->type() == QEvent::MouseButtonRelease ||
                     event->type() == QEvent::MouseButtonDblClick;
  QStyleOptionViewItem box = option;
  if (mouse) initStyleOption(&box, index);
  if (!mouse || !isCheckBoxAlone(box)) {
    return QStyledItemDelegate::editorEvent(event, model, option, index);
  }
  constexpr Qt::ItemFlags needed = Qt::ItemIsUserCheckable | Qt::ItemIsEnabled;
  if ((model->flags(index) & needed) != needed) return false;
  const auto* click = static_cast<QMouseEvent*>(event);
  if (click->button() != Qt::LeftButton || !checkBoxRect(box).contains(click->pos())) return false;
  if (event->type() == QEvent::MouseButtonPress) return false;  // lets the cell become current
  if (event->type() == QEvent::MouseButtonDblClick) return true;
  return model->setData(index, box.checkState == Qt::Checked ? Qt::Unchecked : Qt::Checked,
                        Qt::CheckStateRole);
}

bool StyledItemDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                   const QStyleOptionViewItem& option, const QModelIndex& index) {
  if (event == nullptr || view == nullptr || event->type() != QEvent::ToolTip || !index.isValid() ||
      !index.data(Qt::ToolTipRole).toString().isEmpty()) {
    return QStyledItemDelegate::helpEvent(event, view, option, index);
  }
  QStyleOptionViewItem full = option;
  initStyleOption(&full, index);
  const QRect cell = view->visualRect(index);
  const int needed = QFontMetrics(full.font).horizontalAdvance(full.text) + 8;
  const bool cut = !full.text.isEmpty() && (needed > cell.width() || full.text.contains('\n'));
  QToolTip::showText(event->globalPos(), cut ? full.text : QString(), view->viewport(), cell);
  return true;
}

}  // namespace gui
