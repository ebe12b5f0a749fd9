#include "host/presentation/sub_engineering_delegate.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <algorithm>

#include "host/bwidgets/tree_grid_view.h"
#include "host/domain/item_role.h"

namespace gui {
namespace {

constexpr int ComplexLines = 6;

std::string keyOf(const QModelIndex& index) {
  return index.data(domain::FieldKeyRole).toString().toStdString();
}

// Full-width letters, digits and signs as the plain ones; no blanks.
QString plainCode(const QString& text) {
  QString plain;
  for (const QChar character : text) {
    const ushort code = character.unicode();
    if (character.isSpace()) continue;
    plain += code > 0xFF00 && code < 0xFF5F ? QChar(code - 0xFEE0) : character;
  }
  return plain;
}

// One line, whatever was pasted.
QString oneLine(const QString& text) {
  QString line = text;
  return line.replace("\r\n", " ").replace('\r', ' ').replace('\n', ' ');
}

// Keeps what is typed into `line` as `rule` makes it, and the cursor where it is.
void keepTo(QLineEdit* line, QString (*rule)(const QString&)) {
  QObject::connect(line, &QLineEdit::textEdited, line, [line, rule](const QString& text) {
    const QString kept = rule(text);
    if (kept == text) return;
    const int position = rule(text.left(line->cursorPosition())).size();
    line->setText(kept);
    line->setCursorPosition(position);
  });
}

}  // namespace

SubEngineeringDelegate::SubEngineeringDelegate(QObject* parent) : StyledItemDelegate(parent) {}

std::string SubEngineeringDelegate::GetCodeField() const {
  return "SECode";
}
std::string SubEngineeringDelegate::GetNameField() const {
  return "SEName";
}
std::string SubEngineeringDelegate::GetCalcExprField() const {
  return "SECalcExpr";
}
std::string SubEngineeringDelegate::GetComplexField() const {
  return "SEProjFeatures";
}

QWidget* SubEngineeringDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                              const QModelIndex& index) const {
  const std::string key = keyOf(index);
  if (key == GetComplexField()) {
    auto* box = new QPlainTextEdit(parent);
    box->setAutoFillBackground(true);
    box->setTabChangesFocus(true);
    box->setToolTip(QStringLiteral("回车确认，Alt+回车换行，Esc 恢复原值"));
    return box;
  }
  QWidget* editor = StyledItemDelegate::createEditor(parent, option, index);
  auto* line = qobject_cast<QLineEdit*>(editor);
  if (line != nullptr && key == GetCodeField()) {
    keepTo(line, plainCode);
  } else if (line != nullptr && key == GetNameField()) {
    keepTo(line, oneLine);
  } else if (line != nullptr && key == GetCalcExprField()) {
    line->setPlaceholderText(QStringLiteral("留空则取招标工程量"));
  }
  return editor;
}

void SubEngineeringDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  if (auto* box = qobject_cast<QPlainTextEdit*>(editor)) {
    if (box->document()->isModified()) return;  // what was typed stays
    box->setPlainText(index.data(Qt::EditRole).toString());
    box->document()->setModified(false);
    box->selectAll();
    return;
  }
  StyledItemDelegate::setEditorData(editor, index);
  auto* line = qobject_cast<QLineEdit*>(editor);
  if (line != nullptr && refusedCell_.isValid() && refusedCell_ == index) {
    line->setText(refusedText_);
    line->selectAll();
    refusedCell_ = QPersistentModelIndex();
  }
}

void SubEngineeringDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                          const QModelIndex& index) const {
  constexpr const char* refused = bwidgets::TreeGridView::RefusedProperty;
  if (const auto* box = qobject_cast<QPlainTextEdit*>(editor)) {
    const QString text = box->toPlainText();
    const bool taken =
        text == index.data(Qt::EditRole).toString() || model->setData(index, text, Qt::EditRole);
    editor->setProperty(refused, !taken);
    return;
  }
  const QPersistentModelIndex cell(index);
  StyledItemDelegate::setModelData(editor, model, index);
  const auto* line = qobject_cast<QLineEdit*>(editor);
  if (line != nullptr && editor->property(refused).toBool() && keyOf(cell) == GetCalcExprField()) {
    refusedCell_ = cell;
    refusedText_ = line->text();
  }
}

void SubEngineeringDelegate::updateEditorGeometry(QWidget* editor,
                                                  const QStyleOptionViewItem& option,
                                                  const QModelIndex& index) const {
  StyledItemDelegate::updateEditorGeometry(editor, option, index);
  if (qobject_cast<QPlainTextEdit*>(editor) == nullptr || editor->parentWidget() == nullptr) return;
  // As many lines as it takes to see a description as a whole, inside the grid.
  const QRect room = editor->parentWidget()->rect();
  QRect place = option.rect;
  place.setHeight(std::min(room.height(), ComplexLines * option.fontMetrics.lineSpacing() + 10));
  place.setWidth(std::max(place.width(), option.fontMetrics.averageCharWidth() * 40));
  place.moveBottom(std::min(place.bottom(), room.bottom()));
  place.moveRight(std::min(place.right(), room.right()));
  editor->setGeometry(place);
}

bool SubEngineeringDelegate::eventFilter(QObject* object, QEvent* event) {
  auto* box = qobject_cast<QPlainTextEdit*>(object);
  if (box != nullptr && event->type() == QEvent::KeyPress) {
    const auto* press = static_cast<QKeyEvent*>(event);
    if (press->key() == Qt::Key_Return || press->key() == Qt::Key_Enter) {
      if (press->modifiers() & (Qt::AltModifier | Qt::ShiftModifier)) {
        box->insertPlainText(QStringLiteral("\n"));
      } else {
        emit commitData(box);
        emit closeEditor(box, SubmitModelCache);
      }
      return true;
    }
  }
  return StyledItemDelegate::eventFilter(object, event);
}

}  // namespace gui
