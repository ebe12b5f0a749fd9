#include "host/gui/view_model.h"

namespace gui {

ViewModel::~ViewModel() = default;

}  // namespace gui
