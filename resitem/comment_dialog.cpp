#include "resitem/comment_dialog.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace gui::qce {

CommentDialog::CommentDialog(const std::string& item, const std::string& comment, QWidget* parent)
    : Dialog(parent) {
  setWindowTitle("批注");
  auto* caption = new QLabel(QString::fromStdString(item), this);
  caption->setWordWrap(true);

  edit_ = new QPlainTextEdit(QString::fromStdString(comment), this);
  edit_->setObjectName("CommentDialog_text");
  edit_->setPlaceholderText("输入批注，留空则删除批注");
  edit_->setTabChangesFocus(true);
  edit_->moveCursor(QTextCursor::End);

  QDialogButtonBox* buttons = createButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  buttons->button(QDialogButtonBox::Ok)->setToolTip("确定（Ctrl+Enter）");

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(caption);
  layout->addWidget(edit_, 1);
  layout->addWidget(buttons);
  resize(420, 260);
  edit_->setFocus();
}

// Return itself breaks the line.
void CommentDialog::keyPressEvent(QKeyEvent* event) {
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (enter && (event->modifiers() & Qt::ControlModifier) != 0) {
    accept();
    return;
  }
  Dialog::keyPressEvent(event);
}

std::string CommentDialog::comment() const {
  return edit_->toPlainText().trimmed().toStdString();
}

}  // namespace gui::qce
