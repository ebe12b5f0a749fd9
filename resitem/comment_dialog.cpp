#include "resitem/comment_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace gui::qce {

CommentDialog::CommentDialog(const std::string& item, const std::string& comment, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint) {
  setWindowTitle("批注");
  auto* caption = new QLabel(QString::fromStdString(item), this);
  caption->setWordWrap(true);

  edit_ = new QPlainTextEdit(QString::fromStdString(comment), this);
  edit_->setObjectName("CommentDialog_text");
  edit_->setPlaceholderText("输入批注，留空则删除批注");
  edit_->setTabChangesFocus(true);
  edit_->moveCursor(QTextCursor::End);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
  ok->setText("确定");
  ok->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Return));  // Return itself breaks the line
  ok->setToolTip("确定（Ctrl+Enter）");
  buttons->button(QDialogButtonBox::Cancel)->setText("取消");
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(caption);
  layout->addWidget(edit_, 1);
  layout->addWidget(buttons);
  resize(420, 260);
  edit_->setFocus();
}

std::string CommentDialog::comment() const {
  return edit_->toPlainText().trimmed().toStdString();
}

}  // namespace gui::qce
