#include "pooling/association_bill_right_model.h"

#include <algorithm>
#include <functional>

#include "host/domain/qce/association_bill_right_operator.h"

namespace gui::qce {
namespace {

void appendBranch(proxy::Element* element, std::vector<proxy::Element*>& out) {
  out.push_back(element);
  for (int row = 0; row < element->childCount(); ++row) appendBranch(element->child(row), out);
}

}  // namespace

QCEAssociationBillRightModelImpl::QCEAssociationBillRightModelImpl()
    : follower_(this, this, [this](const gui::RowFollower::Place& place) {
        gui::RowFollower::follow(checked_, place);
      }) {}

domain::qce::QCEAssociationBillRightOperator* QCEAssociationBillRightModelImpl::getRightOperator()
    const {
  return dynamic_cast<domain::qce::QCEAssociationBillRightOperator*>(getOperator());
}

std::vector<proxy::Element*> QCEAssociationBillRightModelImpl::allRows() const {
  std::vector<proxy::Element*> rows;
  const proxy::ElementGroup* root = getRoot();
  for (int row = 0; root != nullptr && row < root->size(); ++row) {
    appendBranch(root->member(row), rows);
  }
  return rows;
}

// ---------------------------------------------------------------------------------------------
// Rows

void QCEAssociationBillRightModelImpl::setBaseResItem(std::vector<proxy::Element*> items) {
  beginResetModel();
  if (auto* op = getRightOperator()) op->setBaseResItem(items);
  endResetModel();
}

void QCEAssociationBillRightModelImpl::setSubProject(proxy::Element* subProject) {
  beginResetModel();
  if (auto* op = getRightOperator()) op->setSubProject(subProject);
  endResetModel();
}

void QCEAssociationBillRightModelImpl::resetModel() {
  beginResetModel();
  if (auto* op = getRightOperator()) {
    op->reload();
    std::vector<proxy::Element*> sections;
    for (proxy::Element* element : allRows()) {
      if (!op->isBill(element)) {
        sections.push_back(element);
      } else if (op->isAssociated(element)) {
        checked_.insert(makeIndex(element, 0));
      }
    }
    // From below, as each section follows what it holds.
    std::for_each(sections.rbegin(), sections.rend(), [this](proxy::Element* section) {
      const QModelIndex index = makeIndex(section, 0);
      if (section->childCount() > 0 && checkParentState(index)) checked_.insert(index);
    });
  }
  endResetModel();
}

// ---------------------------------------------------------------------------------------------
// Marks

void QCEAssociationBillRightModelImpl::clickedStat(proxy::Element* element, bool checked) {
  const QModelIndex index = makeIndex(element, 0);
  if (!index.isValid()) return;
  if (checked) {
    if (!checked_.insert(index).second) return;
    const QModelIndex above = index.parent();
    if (checkParentState(above)) checked_.insert(above);
  } else {
    if (checked_.erase(index) == 0) return;
    checked_.erase(index.parent());
  }
  emit dataChanged(index, index, {Qt::CheckStateRole});
}

// From the last child on: where children are checked one after the other, the last ones tell first.
bool QCEAssociationBillRightModelImpl::checkParentState(const QModelIndex& parent) const {
  if (!parent.isValid()) return false;
  for (int row = rowCount(parent) - 1; row >= 0; --row) {
    if (checked_.count(index(row, 0, parent)) == 0) return false;
  }
  return true;
}

void QCEAssociationBillRightModelImpl::clearChecked() {
  std::set<QModelIndex> before;
  checked_.swap(before);
  for (const QModelIndex& index : before) emit dataChanged(index, index, {Qt::CheckStateRole});
}

bool QCEAssociationBillRightModelImpl::isSelected(proxy::Element* element, bool deep) const {
  if (element == nullptr) return false;
  if (checked_.count(makeIndex(element, 0)) > 0) return true;
  if (!deep) return false;
  for (int row = 0; row < element->childCount(); ++row) {
    if (isSelected(element->child(row), true)) return true;
  }
  return false;
}

std::vector<proxy::Element*> QCEAssociationBillRightModelImpl::getBranch(
    proxy::Element* element) const {
  std::vector<proxy::Element*> branch;
  if (element != nullptr) appendBranch(element, branch);
  return branch;
}

void QCEAssociationBillRightModelImpl::getAllChoosedBills(std::vector<proxy::Element*>& out) const {
  const auto* op = getRightOperator();
  if (op == nullptr) return;
  for (const QModelIndex& index : checked_) {
    proxy::Element* element = getInternalData(index);
    if (op->isBill(element)) out.push_back(element);
  }
}

void QCEAssociationBillRightModelImpl::getAssociationBills(
    std::vector<proxy::Element*>& out) const {
  const auto* op = getRightOperator();
  if (op == nullptr) return;
  for (proxy::Element* element : allRows()) {
    if (op->isBill(element) && isSelected(element, false) && !op->isAssociated(element)) {
      out.push_back(element);
    }
  }
}

void QCEAssociationBillRightModelImpl::getCancelAssociationBills(
    std::vector<proxy::Element*>& out) const {
  const auto* op = getRightOperator();
  if (op == nullptr) return;
  for (proxy::Element* element : allRows()) {
    if (op->isBill(element) && !isSelected(element, false) && op->isAssociated(element)) {
      out.push_back(element);
    }
  }
}

bool QCEAssociationBillRightModelImpl::associationBill(bool unify) {
  auto* op = getRightOperator();
  if (op == nullptr) return false;
  std::vector<proxy::Element*> bills;
  std::vector<proxy::Element*> cancelled;
  getAssociationBills(bills);
  getCancelAssociationBills(cancelled);
  return op->associate(bills, cancelled, unify);
}

bool QCEAssociationBillRightModelImpl::associationGroup() {
  auto* op = getRightOperator();
  if (op == nullptr) return false;
  std::vector<proxy::Element*> bills;
  const std::function<void(proxy::Element*, bool)> visit = [&](proxy::Element* row, bool whole) {
    if (op->isBill(row)) {
      if (whole && !op->isAssociated(row)) bills.push_back(row);
      return;
    }
    for (int i = 0; i < row->childCount(); ++i) {
      visit(row->child(i), whole || isSelected(row, false));
    }
  };
  const proxy::ElementGroup* root = getRoot();
  for (int row = 0; root != nullptr && row < root->size(); ++row) visit(root->member(row), false);
  // Only 汇总统计 as it stands leaves the bills alone that are associated already.
  return op->associate(bills, {}, op->isUnified());
}

// ---------------------------------------------------------------------------------------------
// Cells

QVariant QCEAssociationBillRightModelImpl::data(const QModelIndex& index, int role) const {
  if (role == Qt::CheckStateRole && index.isValid() && index.column() == 0) {
    return checked_.count(index) > 0 ? Qt::Checked : Qt::Unchecked;
  }
  if (role == Qt::DisplayRole) {
    const domain::DataField* field = getDataField(index.column());
    const auto* op = getRightOperator();
    if (op != nullptr && field != nullptr && field->type == domain::FloatingPointField) {
      const std::optional<int> precision =
          op->getPrecision(getInternalData(index), getFieldName(index.column()));
      domain::Value value;
      if (precision &&
          op->getValue(getInternalData(index), getFieldName(index.column()), role, value)) {
        const std::optional<double> number = toNumber(value);
        if (number) return QString::fromStdString(formatDoubleValue(field, *number, precision));
      }
    }
  }
  return TViewModel::data(index, role);
}

bool QCEAssociationBillRightModelImpl::setData(const QModelIndex& index, const QVariant& value,
                                               int role) {
  proxy::Element* element = index.isValid() ? getInternalData(index) : nullptr;
  if (role != Qt::CheckStateRole || index.column() != 0 || element == nullptr) return false;
  const bool checked = value.toBool();
  for (proxy::Element* row : getBranch(element)) clickedStat(row, checked);
  // A click carries as far up as it has to: above the parent, too, a row is checked when all below
  // it is.
  for (proxy::Element* above = element->parent(); above != nullptr; above = above->parent()) {
    clickedStat(above, checkParentState(makeIndex(above, 0)));
  }
  return true;
}

// A section has no quantity.
bool QCEAssociationBillRightModelImpl::showValueOnFailToGetFloatValue(
    const std::string& /*fieldKey*/) const {
  return false;
}

std::string QCEAssociationBillRightModelImpl::formatDoubleValue(
    const domain::DataField* field, double value, std::optional<int> precision) const {
  if (field == nullptr) return {};
  domain::DataField own = *field;
  if (precision) own.precision = precision;
  return formatDouble(&own, value);
}

}  // namespace gui::qce
