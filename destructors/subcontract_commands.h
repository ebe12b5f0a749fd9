#pragma once

#include <QAction>
#include <QKeySequence>
#include <QWidget>

#include "host/app/services.h"

// What the panes of the subcontract setting page have in common.
namespace gui::qce::destructors {

constexpr int OkButton = 0x400;  // QMessageBox::Ok

/// A hint, where a command has nothing to work on.
inline void hint(const char* text) {
  app::qce::GetQCEChannel()->message(text, OkButton);
}

/// An action of `pane` whose keys work while the keyboard is in it; the first key is in the tool
/// tip.
template <class Pane>
QAction* addCommand(Pane* pane, const QString& text, const QString& toolTip,
                    const QList<QKeySequence>& keys, void (Pane::*slot)()) {
  auto* action = new QAction(text, pane);
  action->setShortcuts(keys);
  action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  action->setToolTip(keys.isEmpty()
                         ? toolTip
                         : QStringLiteral("%1（%2）")
                               .arg(toolTip, keys.first().toString(QKeySequence::NativeText)));
  QObject::connect(action, &QAction::triggered, pane, slot);
  pane->addAction(action);
  return action;
}

}  // namespace gui::qce::destructors
