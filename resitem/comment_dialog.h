#pragma once

#include <QDialog>
#include <string>

class QPlainTextEdit;

namespace gui::qce {

/// Edits the annotation (批注) of a resource item. exec() answers 1 when it was confirmed.
class CommentDialog : public QDialog {
  Q_OBJECT

 public:
  /// `item` names the item, `comment` is its annotation so far; both UTF-8.
  CommentDialog(const std::string& item, const std::string& comment, QWidget* parent = nullptr);

  /// The text without blanks and line breaks at its ends, UTF-8; empty for no annotation.
  std::string comment() const;

 private:
  QPlainTextEdit* edit_;
};

}  // namespace gui::qce
