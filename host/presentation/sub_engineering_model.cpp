#include "host/presentation/sub_engineering_model.h"

#include "host/domain/sub_engineering_operator.h"

namespace gui {

domain::SubEngineeringOperator* SubEngineeringModelImpl::getSubEngineeringOperator() const {
  return dynamic_cast<domain::SubEngineeringOperator*>(getOperator());
}

bool SubEngineeringModelImpl::isResourceRow(const proxy::Element* element) const {
  const auto* op = getSubEngineeringOperator();
  return op != nullptr && element != nullptr && op->isResourceRow(element);
}

void SubEngineeringModelImpl::getBills(proxy::Element* element,
                                       std::vector<proxy::Element*>& out) const {
  const auto* op = getSubEngineeringOperator();
  if (op != nullptr && element != nullptr) op->getBills(element, out);
}

}  // namespace gui
