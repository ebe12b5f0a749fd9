#pragma once

#include <QAction>
#include <QKeySequence>
#include <QList>
#include <QWidget>

#include "qce_export.h"

namespace gui {

/// An action of `page` whose keys work wherever in the page the keyboard is, except while text is
/// typed: a cell's editor has all keys for itself, any other line those with Insert and Delete. The
/// tool tip names the first of the keys as well.
QCE_EXPORT QAction* addCommand(QWidget* page, const QString& text, const QString& toolTip,
                               const QList<QKeySequence>& keys = {});

/// As above; triggers a slot of the page.
template <class Page>
QAction* addCommand(Page* page, const QString& text, const QString& toolTip,
                    const QList<QKeySequence>& keys, void (Page::*slot)()) {
  QAction* action = addCommand(page, text, toolTip, keys);
  QObject::connect(action, &QAction::triggered, page, slot);
  return action;
}

}  // namespace gui
