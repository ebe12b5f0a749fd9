#include "host/presentation/sub_engineering_filter_model.h"

namespace gui {

SubEngineeringFilterModelImpl::SubEngineeringFilterModelImpl(abst::SubEngineeringModel* source)
    : Base(source) {
  // A row that is being edited does not vanish from under the user; filters run when told to.
  setDynamicSortFilter(false);
}

bool SubEngineeringFilterModelImpl::isResourceRow(const proxy::Element* element) const {
  return getSource() != nullptr && getSource()->isResourceRow(element);
}

void SubEngineeringFilterModelImpl::getBills(proxy::Element* element,
                                             std::vector<proxy::Element*>& out) const {
  if (getSource() != nullptr) getSource()->getBills(element, out);
}

void SubEngineeringFilterModelImpl::setSubProject(proxy::Element* subProject) {
  if (subProject == subProject_.get()) return;
  subProject_.reset(subProject);
  invalidate();
}

bool SubEngineeringFilterModelImpl::filterAcceptsRow(proxy::Element* element) const {
  if (!subProject_) return true;
  const proxy::Element* at = element;
  while (at != nullptr && at != subProject_.get()) at = at->parent();
  return at != nullptr;
}

}  // namespace gui
