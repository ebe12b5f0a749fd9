#include "host/gui/tree_grid_view.h"

#include "host/gui/styled_item_delegate.h"

namespace gui {

TreeGridView::TreeGridView(QWidget* parent) : bwidgets::TreeGridView(parent) {
  setItemDelegate(new StyledItemDelegate(this));
}

}  // namespace gui
