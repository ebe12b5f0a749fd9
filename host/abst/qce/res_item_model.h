#pragma once

#include <string>

#include "host/abst/base_model.h"

namespace abst::qce {

/// The resource items of a cost project as a grouped tree.
class QCE_CONTRACT_EXPORT QCEResItemModel : public BaseModel {
 public:
  ~QCEResItemModel() override;

  /// Shows one sub-project; null shows the whole project.
  virtual void setSubProject(proxy::Element* subProject) = 0;
  virtual void rebuildGroup() = 0;
  /// The key of the column's field; empty when there is none.
  virtual std::string getHeadName(int column) const = 0;
  virtual bool getComment(proxy::Element* item, std::string& out) const = 0;
  virtual bool setComment(proxy::Element* item, const std::string& comment) = 0;
  /// Sets the unit price excluding tax (yuan), on the same path as a price typed into the cell.
  virtual void setExcludeTaxPrice(proxy::Element* item, double price) = 0;
};

}  // namespace abst::qce
