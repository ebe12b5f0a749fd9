#include "framework/commands.h"

namespace gui {

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
  return action;
}

}  // namespace gui
