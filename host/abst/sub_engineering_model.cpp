#include "host/abst/sub_engineering_model.h"

#include "host/abst/sub_engineering_filter_model.h"

namespace abst {

SubEngineeringBase::~SubEngineeringBase() = default;
SubEngineeringModel::~SubEngineeringModel() = default;
SubEngineeringFilterModel::~SubEngineeringFilterModel() = default;

}  // namespace abst
