#pragma once

#include <string>

#include "host/bwidgets/dialog.h"

class QPlainTextEdit;

namespace gui::qce {

/// Edits the annotation (批注) of a resource item. exec() answers 1 when it was confirmed.
class CommentDialog : public bwidgets::Dialog {
  Q_OBJECT

 public:
  /// `item` names the item, `comment` is its annotation so far; both UTF-8.
  CommentDialog(const std::string& item, const std::string& comment, QWidget* parent = nullptr);

  /// The text without blanks and line breaks at its ends, UTF-8; empty for no annotation.
  std::string comment() const;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QPlainTextEdit* edit_;
};

}  // namespace gui::qce
