#include "destructors/res_item_summary_models.h"

#include "destructors/res_item_filter_model.h"
#include "host/domain/qce/destructors/des_res_item_operator.h"

namespace gui::qce::destructors {

namespace ops = domain::qce::destructors;

void DesResItemSummaryGuideModelImpl::rebuild() {
  beginResetModel();
  if (auto* op = dynamic_cast<ops::DesResItemGuideOperator*>(getOperator())) op->rebuild();
  endResetModel();
}

void DesResItemSummaryTableModelImpl::setGuideEntry(proxy::Element* entry) {
  beginResetModel();
  if (auto* op = dynamic_cast<ops::DesResItemSummaryOperator*>(getOperator())) {
    op->setGuideEntry(entry);
  }
  endResetModel();
}

void DesResItemSummaryTableModelImpl::rebuild() {
  beginResetModel();
  if (auto* op = dynamic_cast<ops::DesResItemSummaryOperator*>(getOperator())) op->rebuild();
  endResetModel();
}

DesResItemSummaryTableFilterModelImpl::DesResItemSummaryTableFilterModelImpl(
    abst::qce::destructors::DesResItemSummaryTableModel* source)
    : TFilterViewModel(source) {}

void DesResItemSummaryTableFilterModelImpl::setGuideEntry(proxy::Element* entry) {
  if (getSource() != nullptr) getSource()->setGuideEntry(entry);
}

void DesResItemSummaryTableFilterModelImpl::rebuild() {
  if (getSource() != nullptr) getSource()->rebuild();
}

void DesResItemSummaryTableFilterModelImpl::setText(const std::string& text) {
  if (state_.setText(text)) invalidate();
}

bool DesResItemSummaryTableFilterModelImpl::filterAcceptsRow(proxy::Element* row) const {
  return state_.acceptsRow(getOperator(), row);
}

bool DesResItemSummaryTableFilterModelImpl::lessThan(const QModelIndex& left,
                                                     const QModelIndex& right) const {
  if (valueReader(getDisplayTable(), left.column()) == nullptr) {
    return Base::lessThan(left, right);
  }
  return left.data(Qt::EditRole).toDouble() < right.data(Qt::EditRole).toDouble();
}

gui::SortInputs::Reader DesResItemSummaryTableFilterModelImpl::sortReader(int sourceColumn) const {
  const gui::SortInputs::Reader reader = valueReader(getDisplayTable(), sourceColumn);
  return reader != nullptr ? reader : bridgeReader(sourceColumn);
}

}  // namespace gui::qce::destructors
