#pragma once

#include <string>

#include "framework/instances.h"
#include "qce_export.h"

namespace gui::qce::destructors {

/// Which bills the subcontract setting page shows: all, those that hold a text, those that are
/// associated with the current entry. Each setter filters again at once.
class QCE_EXPORT DesSetSubcontractAssociationBillFilterModelImpl
    : public gui::TFilterViewModel<
          abst::qce::destructors::DesSetSubcontractAssociationBillFilterModel> {
 public:
  using TFilterViewModel::TFilterViewModel;

  bool isAssociated(const proxy::Element* bill) const override;
  void refresh() override;
  void setAssociatedOnly(bool on) override;
  bool isAssociatedOnly() const override { return associatedOnly_; }
  void setText(std::string text) override;

 protected:
  using TFilterViewModel::filterAcceptsRow;

  bool filterAcceptsRow(proxy::Element* bill) const override;
  gui::SortInputs::Reader sortReader(int sourceColumn) const override {
    return bridgeReader(sourceColumn);
  }

 private:
  bool associatedOnly_ = false;
  std::string text_;
};

}  // namespace gui::qce::destructors
