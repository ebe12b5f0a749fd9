#pragma once

#include <string>
#include <vector>

#include "host/abst/qce/res_item_model.h"

namespace abst::qce {

/// Which rows of a QCEResItemModel are shown.
class QCE_CONTRACT_EXPORT QCEResItemFilterModel : public BaseModel {
 public:
  using SourceModel = QCEResItemModel;

  ~QCEResItemFilterModel() override;

  virtual void setSubProject(proxy::Element* subProject) = 0;
  virtual void rebuildGroup() = 0;
  virtual std::string getHeadName(int column) const = 0;
  virtual bool getComment(proxy::Element* item, std::string& out) const = 0;
  virtual bool setComment(proxy::Element* item, const std::string& comment) = 0;
  virtual void setExcludeTaxPrice(proxy::Element* item, double price) = 0;

  /// True switches the association filter off. Takes effect at the next invalidate().
  virtual void setShowAll(bool showAll) = 0;
  /// With show-all off: true keeps associated rows only, false the others only.
  virtual void setShowAssociation(bool showAssociation) = 0;
  /// Keywords for cost account, code, name, specification and unit, in this order, at most five.
  virtual void setFilterField(std::vector<std::string>& keywords) = 0;
  virtual void setIsFilterByCondition(bool on) = 0;
};

}  // namespace abst::qce
