#pragma once

#include "host/domain/operator.h"

namespace domain::qce::destructors {

/// The host side of the design-side resource items.
class QCE_CONTRACT_EXPORT DesResItemOperator : public Operator {
 public:
  ~DesResItemOperator() override;

  virtual int getItemWaitForCollectNum() const = 0;
  virtual bool isItem(const proxy::Element* element) const = 0;
  virtual bool isGrouped() const = 0;
  // Both change the rows: the caller resets its model around the call.
  virtual void setGrouped(bool grouped) = 0;
  virtual void rebuildGroup() = 0;
};

/// The host side of the summary's guide.
class QCE_CONTRACT_EXPORT DesResItemGuideOperator : public Operator {
 public:
  ~DesResItemGuideOperator() override;

  /// Reads the entries again; the caller resets its model around the call.
  virtual void rebuild() = 0;
};

/// The host side of the summary's table.
class QCE_CONTRACT_EXPORT DesResItemSummaryOperator : public Operator {
 public:
  ~DesResItemSummaryOperator() override;

  // Both change the rows: the caller resets its model around the call.
  virtual void setGuideEntry(proxy::Element* entry) = 0;
  virtual void rebuild() = 0;
  /// Why there is no row, in UTF-8; empty while there are rows. By default nothing is said.
  virtual std::string getEmptyReason() const;
};

}  // namespace domain::qce::destructors
