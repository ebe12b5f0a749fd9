#include "host/bwidgets/screen.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <algorithm>

namespace bwidgets {

QSize Screen::availableSize(const QWidget* widget) {
  const QScreen* screen = QGuiApplication::primaryScreen();
  if (widget != nullptr) {
    const QWindow* window = widget->window()->windowHandle();
    if (window != nullptr && window->screen() != nullptr) screen = window->screen();
  }
  return screen != nullptr ? screen->availableGeometry().size() : QSize(1024, 768);
}

int Screen::getNoIncludeTaskbartWidget() {
  return availableSize().width();
}

int Screen::getNoIncludeTaskbartHeight() {
  return availableSize().height();
}

QSize Screen::fraction(const QSize& available, double width, double height) {
  // A hair is added so that a tenth of 1920 is 192 whatever the binary fraction of 0.1.
  const auto part = [](int whole, double share) {
    return std::max(1, static_cast<int>(whole * std::clamp(share, 0.0, 1.0) + 1e-6));
  };
  return {part(available.width(), width), part(available.height(), height)};
}

}  // namespace bwidgets
