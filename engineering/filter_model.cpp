#include "engineering/filter_model.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "engineering/map_value.h"
#include "host/domain/field_keys.h"

namespace gui::qce {
namespace {

// What the conditions are matched against, by position.
gui::TextConditions::Keys conditionKeys() {
  return {&domain::keys::CostAccount, &domain::keys::SECode, &domain::keys::SEName,
          &domain::keys::SEProjFeatures, &domain::keys::SEUnit};
}

}  // namespace

QCESubEngineeringFilterModelImpl::QCESubEngineeringFilterModelImpl(
    abst::SubEngineeringModel* source)
    : Base(source), conditions_(conditionKeys()) {
  QAbstractItemModel* items = sourceModel();
  if (items == nullptr) return;
  const auto forget = [this] { forgetAnswers(); };
  // Before new rows are filtered; after a changed text, which filters nothing.
  connect(items, &QAbstractItemModel::rowsAboutToBeInserted, this, forget);
  connect(items, &QAbstractItemModel::rowsAboutToBeRemoved, this, forget);
  connect(items, &QAbstractItemModel::rowsAboutToBeMoved, this, forget);
  connect(items, &QAbstractItemModel::modelAboutToBeReset, this, forget);
  connect(items, &QAbstractItemModel::dataChanged, this, forget);
}

// ---------------------------------------------------------------------------------------------
// Switches

void QCESubEngineeringFilterModelImpl::forgetAnswers() {
  matchAtOrAbove_.clear();
  matchAmongChildren_.clear();
}

void QCESubEngineeringFilterModelImpl::switched() {
  matchCache_.clear();
  forgetAnswers();
  // All at once: telling of each vanishing run of rows costs as much as all rows, for every run.
  invalidate();
}

void QCESubEngineeringFilterModelImpl::setShowRes(bool show) {
  hideRes_ = !show;
  invalidate();
}

void QCESubEngineeringFilterModelImpl::setFilterField(std::vector<std::string>& conditions) {
  conditions_.setTexts(conditions);
  forgetAnswers();
}

void QCESubEngineeringFilterModelImpl::setIsFilterByCondition(bool on) {
  isFilterByCondition_ = on;
  switched();
}

void QCESubEngineeringFilterModelImpl::setShowChildren(bool show) {
  showChildren_ = show;
  switched();
}

void QCESubEngineeringFilterModelImpl::setShowSibling(bool show) {
  showSibling_ = show;
  switched();
}

void QCESubEngineeringFilterModelImpl::setFilterMap(const std::map<std::string, bool>& visible) {
  if (&visible == &filterMap_) return;
  filterMap_ = visible;
  invalidate();  // in one go: column by column, views are told of each below each row
}

// ---------------------------------------------------------------------------------------------
// Columns

bool QCESubEngineeringFilterModelImpl::filterAcceptsColumn(int sourceColumn) const {
  if (getSource() == nullptr) return true;
  const domain::DisplayTable* table = getDisplayTable();
  const domain::ColumnDescriptor* column =
      table != nullptr ? table->getHeader()->column(sourceColumn) : nullptr;
  if (column == nullptr) return false;
  if (filterMap_.empty()) return column->visible.value_or(true);
  return filterMap_.count(column->key) > 0 && mapValue(filterMap_, column->key);
}

// ---------------------------------------------------------------------------------------------
// Rows

bool QCESubEngineeringFilterModelImpl::filterAcceptsRow(proxy::Element* element) const {
  if (element == nullptr || !Base::filterAcceptsRow(element)) return false;
  const abst::SubEngineeringModel* source = getSource();
  if (source == nullptr) return true;
  if (isFilterByCondition_) return isFilter(element);
  return !hideRes_ || !source->isResourceRow(element);
}

// Asked for each row below each hidden one: the element is found without an index of it.
bool QCESubEngineeringFilterModelImpl::filterAcceptsRow(int sourceRow,
                                                        const QModelIndex& sourceParent) const {
  const auto* parent = static_cast<const proxy::Element*>(sourceParent.internalPointer());
  proxy::Element* element = parent != nullptr ? parent->child(sourceRow) : nullptr;
  return element != nullptr ? isAcceptRow(element)
                            : Base::filterAcceptsRow(sourceRow, sourceParent);
}

bool QCESubEngineeringFilterModelImpl::isFilter(proxy::Element* element) const {
  if (const std::optional<bool> known = matchCache_.find(element)) return *known;
  proxy::Element* parent = element->parent();
  bool verdict = false;
  if (showSibling_ && parent != nullptr) {
    // A matching row is among its parent's children: their answer says all that its own would.
    verdict =
        isShowSiblingByCondition(element) || (showChildren_ && isShowChildrenByCondition(parent));
  } else {
    verdict = isFilterByCondition(element) ||
              (showChildren_ && parent != nullptr && isShowChildrenByCondition(parent));
  }
  matchCache_.insert(element, verdict);
  return verdict;
}

bool QCESubEngineeringFilterModelImpl::isFilterByCondition(proxy::Element* element) const {
  return conditions_.areFulfilled(getOperator(), element);
}

bool QCESubEngineeringFilterModelImpl::isShowChildrenByCondition(proxy::Element* parent) const {
  if (const std::optional<bool> known = matchAtOrAbove_.find(parent)) return *known;
  const bool matches = isFilterByCondition(parent) ||
                       (parent->parent() != nullptr && isShowChildrenByCondition(parent->parent()));
  matchAtOrAbove_.insert(parent, matches);
  return matches;
}

bool QCESubEngineeringFilterModelImpl::isShowSiblingByCondition(proxy::Element* element) const {
  proxy::Element* parent = element->parent();
  if (parent == nullptr) return false;
  if (const std::optional<bool> known = matchAmongChildren_.find(parent)) return *known;
  const bool matches = anyChildMatches(parent);
  matchAmongChildren_.insert(parent, matches);
  return matches;
}

bool QCESubEngineeringFilterModelImpl::anyChildMatches(const proxy::Element* parent) const {
  const int children = parent->childCount();
  for (int row = 0; row < children; ++row) {
    if (isFilterByCondition(parent->child(row))) return true;
  }
  return false;
}

bool QCESubEngineeringFilterModelImpl::filterRecursiveAcceptsRow(proxy::Element* element) const {
  if (filterAcceptsRow(element)) return true;
  const int children = element->childCount();
  for (int row = 0; row < children; ++row) {
    if (filterAcceptsRow(element->child(row))) return true;
  }
  return false;
}

std::vector<proxy::Element*> QCESubEngineeringFilterModelImpl::getFilterBills(
    proxy::Element* element) const {
  std::vector<proxy::Element*> bills;
  getBills(element, bills);
  bills.erase(std::remove_if(bills.begin(), bills.end(),
                             [this](proxy::Element* bill) {
                               return bill == nullptr || !filterRecursiveAcceptsRow(bill);
                             }),
              bills.end());
  return bills;
}

}  // namespace gui::qce
