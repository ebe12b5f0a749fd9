#include "host/abst/base_view.h"

namespace abst {

BaseView::~BaseView() = default;
void BaseView::addSubView(BaseView* /*view*/) {}
void BaseView::addSubView(const std::string& /*key*/, BaseView* /*view*/) {}
void BaseView::addSubView(SubDocTabView* /*view*/, const std::string& /*key*/) {}
SubDocTabView::~SubDocTabView() = default;

}  // namespace abst
