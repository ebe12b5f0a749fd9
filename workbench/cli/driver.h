#pragma once

#include <QAbstractItemView>
#include <QEvent>
#include <QPoint>
#include <QString>
#include <functional>

class QWidget;

namespace cli {

/// Works a window as a person does: its events enter where those of the keyboard and the mouse do,
/// so that shortcuts, focus, popups and modal dialogs behave as they do for a person.
class Driver {
 public:
  /// Lets pending events and timers run for `milliseconds`.
  static void wait(int milliseconds);
  /// Runs the event loop until `condition` holds; false when it does not within `milliseconds`.
  static bool waitUntil(const std::function<bool()>& condition, int milliseconds = 5000);

  void click(QWidget* widget, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
  void click(QWidget* widget, const QPoint& at, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
             Qt::MouseButton button = Qt::LeftButton);
  void doubleClick(QWidget* widget, const QPoint& at);
  /// Clicks the cell, scrolling to it first.
  void clickCell(QAbstractItemView* view, const QModelIndex& index,
                 Qt::KeyboardModifiers modifiers = Qt::NoModifier);
  void doubleClickCell(QAbstractItemView* view, const QModelIndex& index);

  /// Presses and releases a key in the window that has the keyboard.
  void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
  void type(const QString& text);
  /// Types over all that the editor or line with the keyboard holds.
  void retype(const QString& text);
  /// Gives the current cell another text: F2, the text, Return.
  void edit(const QString& text);

  /// Runs `open`, which opens a modal dialog or a menu, and `inside` once that stands. True when it
  /// came up; `inside` must close it.
  bool withPopup(const std::function<void()>& open, const std::function<void(QWidget*)>& inside);

 private:
  void mouse(QWidget* widget, const QPoint& at, QEvent::Type type, Qt::MouseButton button,
             Qt::MouseButtons held, Qt::KeyboardModifiers modifiers);
  void keyEvent(int key, Qt::KeyboardModifiers modifiers, const QString& text);

  int time_ = 0;  ///< of mouse events, ms; clicks lie apart so that two are no double click
};

}  // namespace cli
