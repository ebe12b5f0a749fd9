#include "host/gui/tree_grid_view.h"

namespace gui {

TreeGridView::TreeGridView(QWidget* parent) : bwidgets::TreeGridView(parent) {}

}  // namespace gui
