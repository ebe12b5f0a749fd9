#pragma once

#include <QTimer>

namespace gui {

/// A timer of `page` that runs `slot` once, `milliseconds` after it was started for the last time.
template <class Page, class Slot>
QTimer* makeDelay(Page* page, int milliseconds, Slot slot) {
  auto* timer = new QTimer(page);
  timer->setSingleShot(true);
  timer->setInterval(milliseconds);
  QObject::connect(timer, &QTimer::timeout, page, slot);
  return timer;
}

}  // namespace gui
