#pragma once

#include <string>

#include "destructors/res_item_instances.h"
#include "host/presentation/res_item_filter_model.h"

namespace gui::qce::destructors {

/// What the items can be summed up by, as an item model. Its rows come from the
/// domain::qce::destructors::DesResItemGuideOperator that it was given.
class QCE_EXPORT DesResItemSummaryGuideModelImpl
    : public gui::TViewModel<abst::qce::destructors::DesResItemSummaryGuideModel> {
 public:
  void rebuild() override;
};

/// The rows of the summary, from the domain::qce::destructors::DesResItemSummaryOperator.
class QCE_EXPORT DesResItemSummaryTableModelImpl
    : public gui::TViewModel<abst::qce::destructors::DesResItemSummaryTableModel> {
 public:
  void setGuideEntry(proxy::Element* entry) override;
  void rebuild() override;
};

/// Which rows of the summary are shown: those of the guide's entry, which the host sums up, whose
/// code, name or specification holds a text. Sorts as DesResItemFilterModelImpl does.
class QCE_EXPORT DesResItemSummaryTableFilterModelImpl
    : public gui::TFilterViewModel<abst::qce::destructors::DesResItemSummaryTableFilterModel> {
 public:
  explicit DesResItemSummaryTableFilterModelImpl(
      abst::qce::destructors::DesResItemSummaryTableModel* source);

  void setGuideEntry(proxy::Element* entry) override;
  void rebuild() override;
  /// Whatever the case; empty keeps all.
  void setText(const std::string& text);

 protected:
  using Base = gui::TFilterViewModel<abst::qce::destructors::DesResItemSummaryTableFilterModel>;
  using Base::filterAcceptsRow;

  bool filterAcceptsRow(proxy::Element* row) const override;
  bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;
  gui::SortInputs::Reader sortReader(int sourceColumn) const override;

 private:
  gui::ResItemFilterState state_;
};

}  // namespace gui::qce::destructors
