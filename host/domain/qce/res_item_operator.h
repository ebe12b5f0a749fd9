#pragma once

#include "host/domain/operator.h"

namespace domain::qce {

/// Which flag the resource-item page filters by; any other filter type filters by none.
enum ResItemFilterType : int {
  FilterAll = 0,
  FilterProvidedByJia = 28,
  FilterProvisional = 29,
  FilterPriceAdjustable = 30,
};

/// The host side of the resource-item page.
class QCE_CONTRACT_EXPORT QCEResItemOperator : public Operator {
 public:
  ~QCEResItemOperator() override;

  /// Shows the resource items of one sub-project; null shows those of the whole project. Changes
  /// the rows: the caller resets its model around the call.
  virtual void setSubProject(proxy::Element* subProject) = 0;
  /// Builds the grouping rows of the tree again. Changes the rows, as setSubProject does.
  virtual void rebuildGroup() = 0;

  /// The raw value of a field: bool for the three flags, text for code, name, specification, unit,
  /// cost account and association mark (empty text when there is none; never absent).
  virtual bool getField(const proxy::Element* element, const std::string& key,
                        Value& out) const = 0;

  /// Annotation (批注) of an item; false when the element cannot carry one.
  virtual bool getComment(const proxy::Element* element, std::string& out) const = 0;
  virtual bool setComment(proxy::Element* element, const std::string& comment) = 0;

  /// The current filter type, a ResItemFilterType.
  virtual int getFilterType() const = 0;
  virtual void setFilterType(int type) = 0;
};

}  // namespace domain::qce
