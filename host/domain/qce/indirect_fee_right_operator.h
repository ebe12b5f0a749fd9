#pragma once

#include <string>

#include "host/domain/operator.h"

namespace domain::qce {

/// The host side of the table of fee items.
class QCE_CONTRACT_EXPORT QCEIndirectFeeRightOperator : public Operator {
 public:
  ~QCEIndirectFeeRightOperator() override;

  /// Leads to the items of one group, an element of the left tree; null to none. Changes the rows:
  /// the caller resets its model around the call.
  virtual void setParentElement(proxy::Element* group) = 0;

  /// The header of a column from the ninth on, of the caption and the column's name (both UTF-8).
  /// By default "caption name", and the name alone without a caption.
  virtual std::string formatHeader(const std::string& caption, const std::string& name) const;
};

}  // namespace domain::qce
