#include "framework/commands.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace gui {

namespace {

constexpr char FilterName[] = "gui_commandKeys";

bool isTextEditor(const QObject* widget) {
  return qobject_cast<const QLineEdit*>(widget) != nullptr ||
         qobject_cast<const QTextEdit*>(widget) != nullptr ||
         qobject_cast<const QPlainTextEdit*>(widget) != nullptr;
}

bool standsInGrid(const QWidget* widget) {
  while (widget != nullptr && qobject_cast<const QAbstractItemView*>(widget) == nullptr) {
    widget = widget->parentWidget();
  }
  return widget != nullptr;
}

/// Leaves the keys of a page's commands to the text that is being typed in it.
class CommandKeys : public QObject {
 public:
  explicit CommandKeys(QWidget* page) : QObject(page) { setObjectName(FilterName); }

 protected:
  // Comes up from the widget with the keyboard where that has not taken the key for itself; taken
  // here, the key goes there as a plain one.
  bool eventFilter(QObject* page, QEvent* event) override {
    if (event->type() != QEvent::ShortcutOverride) return false;
    const QWidget* typing = QApplication::focusWidget();
    if (!isTextEditor(typing)) return false;
    const auto* pressed = static_cast<QKeyEvent*>(event);
    const bool edits = pressed->key() == Qt::Key_Insert || pressed->key() == Qt::Key_Delete;
    // A cell is to be done with before anything is done to its row.
    if (!edits && !standsInGrid(typing)) return false;
    const Qt::KeyboardModifiers modifiers = pressed->modifiers() & ~Qt::KeypadModifier;
    const QKeySequence keys(pressed->key() | static_cast<int>(modifiers));
    for (const QAction* action : static_cast<QWidget*>(page)->actions()) {
      if (!action->shortcuts().contains(keys)) continue;
      event->accept();
      return true;
    }
    return false;
  }
};

}  // namespace

QAction* addCommand(QWidget* page, const QString& text, const QString& toolTip,
                    const QList<QKeySequence>& keys) {
  auto* action = new QAction(text, page);
  action->setShortcuts(keys);
  action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  action->setToolTip(
      keys.isEmpty()
          ? toolTip
          : QString("%1（%2）").arg(toolTip, keys.first().toString(QKeySequence::NativeText)));
  page->addAction(action);
  if (page->findChild<QObject*>(FilterName, Qt::FindDirectChildrenOnly) == nullptr) {
    page->installEventFilter(new CommandKeys(page));
  }
  return action;
}

}  // namespace gui
