#pragma once

#include <string>

#include "host/domain/operator.h"

namespace domain::qce::destructors {

/// The host side of the bills of the subcontract setting page: the bills of the project without
/// rows below them, and what is associated with the current entry.
///
/// The rows are the host's: a bill's row need not be the element that the host knows the bill by
/// elsewhere.
class QCE_CONTRACT_EXPORT DesSetSubcontractBillOperator : public Operator {
 public:
  ~DesSetSubcontractBillOperator() override;

  /// Whether the bill is associated with the current entry; false without one. Asked for every
  /// painted cell, and for every row while only these are shown.
  virtual bool isAssociated(const proxy::Element* bill) const = 0;
  /// Whether the filter text (UTF-8) leaves the bill out; an empty one leaves out none.
  virtual bool isExcluded(const proxy::Element* bill, const std::string& text) const = 0;
};

}  // namespace domain::qce::destructors
