#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/abst/sub_engineering_model.h"

namespace abst {

/// Which rows and columns of a SubEngineeringModel are shown.
class QCE_CONTRACT_EXPORT SubEngineeringFilterModel : public SubEngineeringBase {
 public:
  using SourceModel = SubEngineeringModel;

  ~SubEngineeringFilterModel() override;

  /// Shows one node of the structure with what is below it; null shows all. Filters at once.
  virtual void setSubProject(proxy::Element* subProject) = 0;
  /// Whether resource rows are shown. Filters at once.
  virtual void setShowRes(bool show) = 0;
  virtual bool isShowRes() const = 0;
  /// Which columns are shown, by field key: those that map to true and no others. An empty map
  /// shows what the display table says. The first column carries the tree and should stay. Filters
  /// at once.
  virtual void setFilterMap(const std::map<std::string, bool>& visible) = 0;
  virtual const std::map<std::string, bool>& getFilterMap() const = 0;
  /// Those of an element's bills that are shown, in their order; also those that are not accepted
  /// themselves while a row directly below them is.
  virtual std::vector<proxy::Element*> getFilterBills(proxy::Element* element) const = 0;
};

}  // namespace abst
