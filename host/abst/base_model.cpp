#include "host/abst/base_model.h"

namespace abst {

BaseModel::~BaseModel() = default;

}  // namespace abst
