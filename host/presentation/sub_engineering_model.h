#pragma once

#include <vector>

#include "framework/instances.h"
#include "qce_export.h"

namespace domain {
class SubEngineeringOperator;
}

namespace gui {

/// The host's generic sub-engineering tree as an item model. What goes beyond a cell is passed on
/// to the domain::SubEngineeringOperator that the model was given; with an operator of another kind
/// there are no resource rows and no bills.
///
/// A number that a row does not have stays empty: nodes of the structure have no quantity.
class QCE_EXPORT SubEngineeringModelImpl : public TViewModel<abst::SubEngineeringModel> {
 public:
  using TViewModel::TViewModel;

  bool isResourceRow(const proxy::Element* element) const override;
  void getBills(proxy::Element* element, std::vector<proxy::Element*>& out) const override;

  bool showValueOnFailToGetFloatValue(const std::string& /*fieldKey*/) const override {
    return false;
  }

 protected:
  domain::SubEngineeringOperator* getSubEngineeringOperator() const;
};

}  // namespace gui
