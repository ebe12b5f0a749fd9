#pragma once

#include <vector>

#include "host/abst/base_model.h"

namespace abst {

/// What the model of the sub-engineering tree and the filter over it have in common.
class QCE_CONTRACT_EXPORT SubEngineeringBase : public BaseModel {
 public:
  ~SubEngineeringBase() override;

  /// Whether the row is a resource (工料机) of a bill, and neither a bill nor what bills stand
  /// below. False without a host behind the model.
  virtual bool isResourceRow(const proxy::Element* element) const = 0;
  /// Appends the bills of an element in the order of the tree: itself for a bill, the bill above
  /// for a resource, those below for anything else.
  virtual void getBills(proxy::Element* element, std::vector<proxy::Element*>& out) const = 0;
};

/// The structure of a project with its bills and their resources, as one tree.
class QCE_CONTRACT_EXPORT SubEngineeringModel : public SubEngineeringBase {
 public:
  ~SubEngineeringModel() override;
};

}  // namespace abst
