#include "destructors/subcontract_association_bill_filter_model.h"

#include <utility>

#include "host/domain/qce/destructors/des_set_subcontract_operator.h"

namespace gui::qce::destructors {

using Filter = DesSetSubcontractAssociationBillFilterModelImpl;

bool Filter::isAssociated(const proxy::Element* bill) const {
  return getSource() != nullptr && getSource()->isAssociated(bill);
}

void Filter::refresh() {
  if (getSource() != nullptr) getSource()->refresh();
}

void Filter::setAssociatedOnly(bool on) {
  if (on == associatedOnly_) return;
  associatedOnly_ = on;
  invalidate();
}

void Filter::setText(std::string text) {
  if (text == text_) return;
  text_ = std::move(text);
  invalidate();
}

bool Filter::filterAcceptsRow(proxy::Element* bill) const {
  if (associatedOnly_ && !isAssociated(bill)) return false;
  if (text_.empty()) return true;
  const auto* op =
      dynamic_cast<const domain::qce::destructors::DesSetSubcontractBillOperator*>(getOperator());
  return op == nullptr || !op->isExcluded(bill, text_);
}

}  // namespace gui::qce::destructors
