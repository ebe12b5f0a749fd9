#pragma once

#include <QWidget>

#include "host_widgets_export.h"

namespace bwidgets {

/// Base of the host's own widgets and panels.
class QCE_HOST_WIDGETS_EXPORT Widget : public QWidget {
  Q_OBJECT

 public:
  explicit Widget(QWidget* parent = nullptr);
  ~Widget() override;
};

}  // namespace bwidgets
