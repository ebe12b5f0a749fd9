#pragma once

#include "host/bwidgets/tree_grid_view.h"

namespace gui {

/// The tree grid that the generic pages are built on.
class QCE_HOST_WIDGETS_EXPORT TreeGridView : public bwidgets::TreeGridView {
  Q_OBJECT

 public:
  explicit TreeGridView(QWidget* parent = nullptr);
};

}  // namespace gui
