#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>
#include <deque>
#include <string>
#include <vector>

#include "host/app/services.h"

namespace services {

/// Shows each message in a modal box over the window, with Chinese button texts.
class MessageBoxChannel : public app::Channel {
 public:
  explicit MessageBoxChannel(QString title) : title_(std::move(title)) {}

  /// The window that boxes stand over when no dialog is open.
  void setWindow(QWidget* window) { window_ = window; }
  int message(const std::string& text, int buttons) override;

 private:
  QString title_;
  QPointer<QWidget> window_;
};

/// Keeps messages instead of showing them and answers them with buttons given beforehand.
class RecordingChannel : public app::Channel {
 public:
  struct Message {
    std::string text;  ///< UTF-8
    int buttons = 0;   ///< an or of QMessageBox::StandardButton values
  };

  /// Queues the answer to a coming message. Messages without one, or one that does not offer the
  /// queued button, are answered with their first button.
  void answerNext(int button) { answers_.push_back(button); }
  int message(const std::string& text, int buttons) override;

  const std::vector<Message>& messages() const { return messages_; }
  void clear();

 private:
  std::vector<Message> messages_;
  std::deque<int> answers_;
};

/// Prints each message to the error stream and answers it with its first button.
class ConsoleChannel : public app::Channel {
 public:
  int message(const std::string& text, int buttons) override;
};

}  // namespace services
