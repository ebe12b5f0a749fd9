#include "workbench/services/channels.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <cstdio>

namespace services {

namespace {

constexpr int kQuestionButtons =
    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel | QMessageBox::Retry;

int firstButton(int buttons) {
  return buttons != 0 ? (buttons & -buttons) : static_cast<int>(QMessageBox::Ok);
}

QString buttonText(QMessageBox::StandardButton button) {
  switch (button) {
    case QMessageBox::Ok:
      return QStringLiteral("确定");
    case QMessageBox::Cancel:
      return QStringLiteral("取消");
    case QMessageBox::Yes:
      return QStringLiteral("是");
    case QMessageBox::No:
      return QStringLiteral("否");
    case QMessageBox::YesToAll:
      return QStringLiteral("全部是");
    case QMessageBox::NoToAll:
      return QStringLiteral("全部否");
    case QMessageBox::Retry:
      return QStringLiteral("重试");
    case QMessageBox::Ignore:
      return QStringLiteral("忽略");
    case QMessageBox::Abort:
      return QStringLiteral("中止");
    case QMessageBox::Save:
      return QStringLiteral("保存");
    case QMessageBox::Discard:
      return QStringLiteral("不保存");
    case QMessageBox::Close:
      return QStringLiteral("关闭");
    case QMessageBox::Apply:
      return QStringLiteral("应用");
    default:
      return {};
  }
}

}  // namespace

int MessageBoxChannel::message(const std::string& text, int buttons) {
  QWidget* parent = QApplication::activeModalWidget();
  if (parent == nullptr) parent = window_;
  QMessageBox box(parent);
  box.setWindowTitle(title_);
  box.setTextFormat(Qt::PlainText);  // a name in the text may hold "<"
  box.setText(QString::fromStdString(text));
  box.setIcon((buttons & kQuestionButtons) != 0 ? QMessageBox::Question : QMessageBox::Warning);
  box.setStandardButtons(
      QMessageBox::StandardButtons(buttons != 0 ? buttons : static_cast<int>(QMessageBox::Ok)));
  for (QAbstractButton* button : box.buttons()) {
    const QString label = buttonText(box.standardButton(button));
    if (!label.isEmpty()) button->setText(label);
  }
  return box.exec();
}

int RecordingChannel::message(const std::string& text, int buttons) {
  messages_.push_back({text, buttons});
  if (!answers_.empty()) {
    const int answer = answers_.front();
    answers_.pop_front();
    if ((answer & buttons) != 0) return answer;
  }
  return firstButton(buttons);
}

void RecordingChannel::clear() {
  messages_.clear();
  answers_.clear();
}

int ConsoleChannel::message(const std::string& text, int buttons) {
  std::fprintf(stderr, "%s\n", text.c_str());
  return firstButton(buttons);
}

}  // namespace services
