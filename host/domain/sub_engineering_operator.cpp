#include "host/domain/sub_engineering_operator.h"

namespace domain {

SubEngineeringOperator::~SubEngineeringOperator() = default;

std::vector<std::pair<std::string, proxy::Element*>> SubEngineeringOperator::getSubProjects()
    const {
  return {};
}

std::vector<std::string> SubEngineeringOperator::getTypes() const {
  return {};
}

bool SubEngineeringOperator::getQuantityDetail(const proxy::Element* /*element*/,
                                               QuantityLines& /*out*/) const {
  return false;
}

bool SubEngineeringOperator::setQuantityDetail(proxy::Element* /*element*/,
                                               const QuantityLines& /*lines*/) {
  return false;
}

bool SubEngineeringOperator::evaluate(const proxy::Element* /*element*/,
                                      const std::string& /*expression*/, double& /*value*/,
                                      std::string& error) const {
  error = "此处不能使用计算式。";
  return false;
}

}  // namespace domain
