#include "workbench/shell/progress.h"

#include <QApplication>

namespace shell {

namespace {

constexpr int kUnits = 1000;
constexpr int kRefresh = 40;  // ms between two looks at the event loop

}  // namespace

Progress::Progress(QWidget* parent, const QString& text)
    : dialog_(text, QStringLiteral("取消"), 0, kUnits, parent) {
  dialog_.setObjectName(QStringLiteral("progress"));
  dialog_.setWindowTitle(QStringLiteral("请稍候"));
  dialog_.setWindowModality(Qt::ApplicationModal);
  dialog_.setMinimumWidth(360);
  dialog_.setMinimumDuration(300);
  dialog_.setAutoReset(false);
  dialog_.setAutoClose(false);
  dialog_.setValue(0);
  sinceShown_.start();
}

void Progress::setStage(const QString& text) {
  dialog_.setLabelText(text);
  dialog_.setRange(0, kUnits);
  sinceShown_.invalidate();
}

bool Progress::step(qint64 done, qint64 total) {
  if (sinceShown_.isValid() && sinceShown_.elapsed() < kRefresh) return !dialog_.wasCanceled();
  sinceShown_.start();
  if (total > 0) {
    dialog_.setValue(static_cast<int>(qBound<qint64>(0, done * kUnits / total, kUnits)));
  } else {
    dialog_.setRange(0, 0);
    dialog_.setValue(0);
  }
  // Until the dialog is there to keep them away, keys and clicks would start the work once more.
  QApplication::processEvents(dialog_.isVisible() ? QEventLoop::AllEvents
                                                  : QEventLoop::ExcludeUserInputEvents);
  return !dialog_.wasCanceled();
}

}  // namespace shell
