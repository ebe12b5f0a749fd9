#pragma once

#include <QSize>

#include "host_widgets_export.h"

class QWidget;

namespace bwidgets {

/// The screen without the taskbar; sizes are in device-independent pixels.
class QCE_HOST_WIDGETS_EXPORT Screen {
 public:
  /// The room on the screen that `widget` is on, or on the primary one.
  static QSize availableSize(const QWidget* widget = nullptr);

  /// Width and height of that room on the primary screen, in pixels.
  static int getNoIncludeTaskbartWidget();
  static int getNoIncludeTaskbartHeight();

  /// `width` and `height` parts (0 to 1; values outside are limited) of `available`, rounded down,
  /// at least 1 x 1.
  static QSize fraction(const QSize& available, double width, double height);
};

}  // namespace bwidgets
