#pragma once

#include <string>
#include <vector>

#include "host/abst/base_model.h"

namespace abst::qce::destructors {

/// What the model of the design-side resource items and the filter over it have in common.
class QCE_CONTRACT_EXPORT DesResItemBase : public BaseModel {
 public:
  ~DesResItemBase() override;

  /// How many items of the project wait to be collected: their cost counts nowhere yet.
  virtual int getItemWaitForCollectNum() const = 0;
  /// Whether the element is an item rather than a grouping row.
  virtual bool isItem(const proxy::Element* element) const = 0;
  /// Sub-projects and categories as grouping rows, or one list of all items. Resets the model.
  virtual void setGrouped(bool grouped) = 0;
  virtual bool isGrouped() const = 0;
  /// Reads the rows again, in the stored order. Resets the model.
  virtual void rebuildGroup() = 0;
};

/// The resource items of a design-side project.
class QCE_CONTRACT_EXPORT DesResItemModel : public DesResItemBase {
 public:
  ~DesResItemModel() override;
};

/// Which of them are shown, and in which order.
class QCE_CONTRACT_EXPORT DesResItemFilterModel : public DesResItemBase {
 public:
  using SourceModel = DesResItemModel;

  ~DesResItemFilterModel() override;

  /// The texts to search for in cost account, code, name, specification and unit, in this order; an
  /// empty one asks for nothing. Takes effect at the next setIsFilterByCondition.
  virtual void setFilterField(std::vector<std::string>& conditions) = 0;
  /// On: only the items whose texts hold the conditions are shown. Filters at once.
  virtual void setIsFilterByCondition(bool on) = 0;
};

}  // namespace abst::qce::destructors
