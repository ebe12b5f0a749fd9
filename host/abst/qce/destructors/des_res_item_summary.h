#pragma once

#include "host/abst/base_model.h"

namespace abst::qce::destructors {

/// What the items can be summed up by: all, a category, a cost account, a subcontract entry.
class QCE_CONTRACT_EXPORT DesResItemSummaryGuideModel : public BaseModel {
 public:
  ~DesResItemSummaryGuideModel() override;

  /// Reads the entries again. Resets the model.
  virtual void rebuild() = 0;
};

/// What the table of the summary and the filter over it have in common.
class QCE_CONTRACT_EXPORT DesResItemSummaryTableBase : public BaseModel {
 public:
  ~DesResItemSummaryTableBase() override;

  /// Sums up the items of this entry of the guide; null, or an entry that only holds others, all.
  /// Resets the model.
  virtual void setGuideEntry(proxy::Element* entry) = 0;
  /// Sums up again. Resets the model.
  virtual void rebuild() = 0;
};

/// Equal resources of all sub-projects as one row each, with their summed quantity and amounts.
class QCE_CONTRACT_EXPORT DesResItemSummaryTableModel : public DesResItemSummaryTableBase {
 public:
  ~DesResItemSummaryTableModel() override;
};

class QCE_CONTRACT_EXPORT DesResItemSummaryTableFilterModel : public DesResItemSummaryTableBase {
 public:
  using SourceModel = DesResItemSummaryTableModel;

  ~DesResItemSummaryTableFilterModel() override;
};

}  // namespace abst::qce::destructors
