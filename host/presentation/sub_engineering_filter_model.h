#pragma once

#include <vector>

#include "framework/instances.h"
#include "host/proxy/element.h"
#include "qce_export.h"

namespace gui {

/// The host's generic filter of the sub-engineering tree: one node of the structure with what is
/// below it, or everything. A row stays while one below it is shown. What rows and columns a page
/// shows beyond that is for the concrete filter.
class QCE_EXPORT SubEngineeringFilterModelImpl
    : public TFilterViewModel<abst::SubEngineeringFilterModel> {
 public:
  explicit SubEngineeringFilterModelImpl(abst::SubEngineeringModel* source);

  bool isResourceRow(const proxy::Element* element) const override;
  void getBills(proxy::Element* element, std::vector<proxy::Element*>& out) const override;
  void setSubProject(proxy::Element* subProject) override;

 protected:
  using Base = TFilterViewModel<abst::SubEngineeringFilterModel>;
  using Base::filterAcceptsRow;

  bool filterAcceptsRow(proxy::Element* element) const override;

 private:
  scoped_refptr<proxy::Element> subProject_;
};

}  // namespace gui
