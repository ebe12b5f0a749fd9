#pragma once

#include <string>

#include "host/abst/qce/destructors/des_set_subcontract_association_bill_model.h"

namespace abst::qce::destructors {

/// Which bills of a DesSetSubcontractAssociationBillModel are shown.
class QCE_CONTRACT_EXPORT DesSetSubcontractAssociationBillFilterModel : public BaseModel {
 public:
  using SourceModel = DesSetSubcontractAssociationBillModel;

  ~DesSetSubcontractAssociationBillFilterModel() override;

  // As in DesSetSubcontractAssociationBillModel.
  virtual bool isAssociated(const proxy::Element* bill) const = 0;
  virtual void refresh() = 0;

  /// True keeps the bills that are associated with the current entry.
  virtual void setAssociatedOnly(bool on) = 0;
  virtual bool isAssociatedOnly() const = 0;
  /// Keeps the bills that the host finds `text` (UTF-8) in; empty keeps all.
  virtual void setText(std::string text) = 0;
};

}  // namespace abst::qce::destructors
