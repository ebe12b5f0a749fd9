#include "workbench/cli/driver.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <QWidget>
#include <QWindow>

// Where the toolkit's own test support enters events; exported, but declared in no public header.
Q_GUI_EXPORT void qt_handleMouseEvent(QWindow* window, const QPointF& local, const QPointF& global,
                                      Qt::MouseButtons state, Qt::MouseButton button,
                                      QEvent::Type type, Qt::KeyboardModifiers modifiers,
                                      int timestamp);
Q_GUI_EXPORT void qt_handleKeyEvent(QWindow* window, QEvent::Type type, int key,
                                    Qt::KeyboardModifiers modifiers, const QString& text,
                                    bool autoRepeat, ushort count);

namespace cli {

namespace {

/// The window that has the keyboard: the modal dialog's, else the one in front. Where no window
/// manager hands the keyboard on when a dialog or a popup opens or closes, the window takes it.
QWindow* keyboardWindow() {
  QWidget* wanted = QApplication::activeModalWidget();
  const QWindow* focused = QGuiApplication::focusWindow();
  if (wanted == nullptr && (focused == nullptr || !focused->isVisible())) {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      if (widget->isVisible() && widget->windowType() == Qt::Window) wanted = widget;
    }
  }
  if (wanted != nullptr && QGuiApplication::focusWindow() != wanted->windowHandle()) {
    wanted->activateWindow();
    Driver::waitUntil([wanted] { return QGuiApplication::focusWindow() == wanted->windowHandle(); },
                      2000);
  }
  return QGuiApplication::focusWindow();
}

QWidget* openPopup() {
  QWidget* popup = QApplication::activePopupWidget();
  return popup != nullptr ? popup : QApplication::activeModalWidget();
}

}  // namespace

void Driver::wait(int milliseconds) {
  QEventLoop loop;
  QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
  loop.exec();
}

bool Driver::waitUntil(const std::function<bool()>& condition, int milliseconds) {
  QElapsedTimer timer;
  timer.start();
  while (!condition()) {
    if (timer.elapsed() > milliseconds) return false;
    wait(10);
  }
  return true;
}

void Driver::mouse(QWidget* widget, const QPoint& at, QEvent::Type type, Qt::MouseButton button,
                   Qt::MouseButtons held, Qt::KeyboardModifiers modifiers) {
  QWidget* top = widget->window();
  QWindow* window = top->windowHandle();
  if (window == nullptr) return;
  const QPoint local = widget->mapTo(top, at);
  qt_handleMouseEvent(window, local, top->mapToGlobal(local), held, button, type, modifiers, time_);
}

void Driver::click(QWidget* widget, Qt::KeyboardModifiers modifiers) {
  click(widget, widget->rect().center(), modifiers);
}

void Driver::click(QWidget* widget, const QPoint& at, Qt::KeyboardModifiers modifiers,
                   Qt::MouseButton button) {
  time_ += 1000;
  mouse(widget, at, QEvent::MouseMove, Qt::NoButton, Qt::NoButton, modifiers);
  mouse(widget, at, QEvent::MouseButtonPress, button, button, modifiers);
  mouse(widget, at, QEvent::MouseButtonRelease, button, Qt::NoButton, modifiers);
  wait(0);
}

void Driver::doubleClick(QWidget* widget, const QPoint& at) {
  click(widget, at);
  time_ += 50;
  mouse(widget, at, QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
  mouse(widget, at, QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
  wait(0);
}

void Driver::clickCell(QAbstractItemView* view, const QModelIndex& index,
                       Qt::KeyboardModifiers modifiers) {
  view->scrollTo(index);
  click(view->viewport(), view->visualRect(index).center(), modifiers);
}

void Driver::doubleClickCell(QAbstractItemView* view, const QModelIndex& index) {
  view->scrollTo(index);
  doubleClick(view->viewport(), view->visualRect(index).center());
}

void Driver::keyEvent(int key, Qt::KeyboardModifiers modifiers, const QString& text) {
  QWindow* window = keyboardWindow();
  if (window == nullptr) return;
  qt_handleKeyEvent(window, QEvent::KeyPress, key, modifiers, text, false, 1);
  // The press may have closed the window.
  window = QGuiApplication::focusWindow();
  if (window != nullptr) {
    qt_handleKeyEvent(window, QEvent::KeyRelease, key, modifiers, text, false, 1);
  }
  wait(0);
}

void Driver::key(int key, Qt::KeyboardModifiers modifiers) {
  QString text;
  if (modifiers == Qt::NoModifier && key == Qt::Key_Space) text = QStringLiteral(" ");
  if (key == Qt::Key_Return || key == Qt::Key_Enter) text = QStringLiteral("\r");
  keyEvent(key, modifiers, text);
}

void Driver::type(const QString& text) {
  for (const QChar c : text) {
    const int key = c.unicode() < 0x80 ? c.toUpper().unicode() : static_cast<int>(Qt::Key_unknown);
    keyEvent(key, Qt::NoModifier, QString(c));
  }
}

void Driver::retype(const QString& text) {
  key(Qt::Key_A, Qt::ControlModifier);
  type(text);
}

void Driver::edit(const QString& text) {
  key(Qt::Key_F2);
  retype(text);
  key(Qt::Key_Return);
}

bool Driver::withPopup(const std::function<void()>& open,
                       const std::function<void(QWidget*)>& inside) {
  QWidget* const before = openPopup();
  bool came = false;
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
    QWidget* popup = openPopup();
    if (popup == nullptr || popup == before || !popup->isVisible()) return;
    poll.stop();
    came = true;
    inside(popup);
  });
  poll.start(10);
  open();
  waitUntil([&came] { return came; }, 3000);
  return came;
}

}  // namespace cli
