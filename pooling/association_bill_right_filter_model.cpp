#include "pooling/association_bill_right_filter_model.h"

#include <utility>

#include "host/domain/qce/association_bill_right_operator.h"

namespace gui::qce {

using Elements = std::vector<proxy::Element*>;

QCEAssociationBillRightFilterModelImpl::QCEAssociationBillRightFilterModelImpl(
    abst::qce::QCEAssociationBillRightModel* source)
    : Base(source) {}

const domain::qce::QCEAssociationBillRightOperator*
QCEAssociationBillRightFilterModelImpl::getRightOperator() const {
  return dynamic_cast<const domain::qce::QCEAssociationBillRightOperator*>(getOperator());
}

// ---------------------------------------------------------------------------------------------
// What the source answers

void QCEAssociationBillRightFilterModelImpl::setBaseResItem(Elements items) {
  if (getSource() != nullptr) getSource()->setBaseResItem(std::move(items));
}

void QCEAssociationBillRightFilterModelImpl::setSubProject(proxy::Element* subProject) {
  if (getSource() != nullptr) getSource()->setSubProject(subProject);
}

void QCEAssociationBillRightFilterModelImpl::resetModel() {
  if (getSource() != nullptr) getSource()->resetModel();
}

void QCEAssociationBillRightFilterModelImpl::clickedStat(proxy::Element* element, bool checked) {
  if (getSource() != nullptr) getSource()->clickedStat(element, checked);
  marksChanged();
}

void QCEAssociationBillRightFilterModelImpl::clearChecked() {
  if (getSource() != nullptr) getSource()->clearChecked();
  marksChanged();
}

bool QCEAssociationBillRightFilterModelImpl::isSelected(proxy::Element* element, bool deep) const {
  return getSource() != nullptr && getSource()->isSelected(element, deep);
}

Elements QCEAssociationBillRightFilterModelImpl::getBranch(proxy::Element* element) const {
  return getSource() != nullptr ? getSource()->getBranch(element) : Elements();
}

void QCEAssociationBillRightFilterModelImpl::getAllChoosedBills(Elements& out) const {
  if (getSource() != nullptr) getSource()->getAllChoosedBills(out);
}

void QCEAssociationBillRightFilterModelImpl::getAssociationBills(Elements& out) const {
  if (getSource() != nullptr) getSource()->getAssociationBills(out);
}

void QCEAssociationBillRightFilterModelImpl::getCancelAssociationBills(Elements& out) const {
  if (getSource() != nullptr) getSource()->getCancelAssociationBills(out);
}

bool QCEAssociationBillRightFilterModelImpl::associationBill(bool unify) {
  return getSource() != nullptr && getSource()->associationBill(unify);
}

bool QCEAssociationBillRightFilterModelImpl::associationGroup() {
  return getSource() != nullptr && getSource()->associationGroup();
}

// ---------------------------------------------------------------------------------------------
// What is shown

void QCEAssociationBillRightFilterModelImpl::filterType(std::string text) {
  if (text == text_) return;
  text_ = std::move(text);
  invalidate();
}

void QCEAssociationBillRightFilterModelImpl::filterType(bool onlySelected) {
  if (onlySelected == onlySelected_) return;
  onlySelected_ = onlySelected;
  invalidate();
}

void QCEAssociationBillRightFilterModelImpl::setSection(proxy::Element* section) {
  if (section == section_.get()) return;
  section_.reset(section);
  invalidate();
}

bool QCEAssociationBillRightFilterModelImpl::filterAcceptsRow(proxy::Element* element) const {
  if (element == nullptr) return true;
  if (onlySelected_ && !isSelected(element, true)) return false;
  const auto* op = getRightOperator();
  if (op == nullptr) return true;
  if (section_ && !op->isInSection(element, section_.get())) return false;
  return !op->isExcluded(element, text_);
}

bool QCEAssociationBillRightFilterModelImpl::filterAcceptsColumn(int sourceColumn) const {
  return Base::filterAcceptsColumn(sourceColumn);
}

// ---------------------------------------------------------------------------------------------
// Marks

bool QCEAssociationBillRightFilterModelImpl::setData(const QModelIndex& index,
                                                     const QVariant& value, int role) {
  const auto* op = getRightOperator();
  proxy::Element* element = getInternalData(index);
  if (role == Qt::CheckStateRole && index.column() == 0 && op != nullptr && element != nullptr &&
      !op->isBill(element)) {
    const bool written = setRData(index, value);
    marksChanged();
    return written;
  }
  const bool written = Base::setData(index, value, role);
  if (written) marksChanged();
  return written;
}

// The rows above a bill stand or go with its mark, but it is announced for the bill alone.
void QCEAssociationBillRightFilterModelImpl::marksChanged() {
  if (onlySelected_) invalidateFilter();
}

// A section is as checked as its bills: those that are hidden must not change with it.
bool QCEAssociationBillRightFilterModelImpl::setRData(const QModelIndex& section,
                                                      const QVariant& value) {
  SourceViewModel* source = getSourceViewModel();
  // First all of them, since a row may go from here with its mark.
  Elements bills;
  collectShownBills(section, bills);
  if (bills.empty()) {
    return source->setData(mapToSource(section), value, Qt::CheckStateRole);
  }
  for (std::size_t i = 0; i < bills.size(); ++i) {
    const bool last = i + 1 == bills.size() || bills[i + 1]->parent() != bills[i]->parent();
    if (last) {
      // The rows above follow once for all siblings.
      source->setData(source->makeIndex(bills[i], 0), value, Qt::CheckStateRole);
    } else {
      getSource()->clickedStat(bills[i], value.toBool());
    }
  }
  return true;
}

void QCEAssociationBillRightFilterModelImpl::collectShownBills(const QModelIndex& parent,
                                                               Elements& out) const {
  const auto* op = getRightOperator();
  for (int row = 0; row < rowCount(parent); ++row) {
    const QModelIndex at = index(row, 0, parent);
    proxy::Element* element = getInternalData(at);
    if (op->isBill(element)) {
      out.push_back(element);
    } else {
      collectShownBills(at, out);
    }
  }
}

}  // namespace gui::qce
