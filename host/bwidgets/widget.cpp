#include "host/bwidgets/widget.h"

namespace bwidgets {

Widget::Widget(QWidget* parent) : QWidget(parent) {}
Widget::~Widget() = default;

}  // namespace bwidgets
