#include "resitem/filter_model.h"

#include <algorithm>
#include <array>

#include "host/domain/field_keys.h"
#include "host/domain/qce/res_item_operator.h"

namespace gui::qce {
namespace {

constexpr const char* AssociationMark = "\xE2\x88\x9A";  // √

// What the keywords are matched against, by position. The panel's fourth box names a feature: for
// a resource item that is its specification.
const std::array<const std::string*, 5>& conditionKeys() {
  static const std::array<const std::string*, 5> keys = {
      &domain::keys::CostAccount, &domain::keys::BRICode, &domain::keys::BRIName,
      &domain::keys::BRISpec, &domain::keys::BRIUnit};
  return keys;
}

const domain::Value& read(const domain::qce::QCEResItemOperator& op, const proxy::Element* item,
                          const std::string& key, domain::Value& out) {
  if (!op.getField(item, key, out)) out = std::monostate();
  return out;
}

// The flag that a filter type asks for; null when it asks for none.
const std::string* flagOf(int filterType) {
  switch (filterType) {
    case domain::qce::FilterProvidedByJia:
      return &domain::keys::BRIIsProvidedByJia;
    case domain::qce::FilterProvisional:
      return &domain::keys::BRIProvisional;
    case domain::qce::FilterPriceAdjustable:
      return &domain::keys::BRIPriceAdjustable;
    default:
      return nullptr;
  }
}

}  // namespace

QCEResItemFilterModelImpl::QCEResItemFilterModelImpl(abst::qce::QCEResItemModel* source)
    : Base(source) {
  setDynamicSortFilter(false);
}

void QCEResItemFilterModelImpl::setSubProject(proxy::Element* subProject) {
  if (getSource() != nullptr) getSource()->setSubProject(subProject);
}

void QCEResItemFilterModelImpl::rebuildGroup() {
  if (getSource() != nullptr) getSource()->rebuildGroup();
}

std::string QCEResItemFilterModelImpl::getHeadName(int column) const {
  return getSource() != nullptr ? getSource()->getHeadName(column) : std::string();
}

bool QCEResItemFilterModelImpl::getComment(proxy::Element* item, std::string& out) const {
  return getSource() != nullptr && getSource()->getComment(item, out);
}

bool QCEResItemFilterModelImpl::setComment(proxy::Element* item, const std::string& comment) {
  return getSource() != nullptr && getSource()->setComment(item, comment);
}

void QCEResItemFilterModelImpl::setExcludeTaxPrice(proxy::Element* item, double price) {
  if (getSource() != nullptr) getSource()->setExcludeTaxPrice(item, price);
}

void QCEResItemFilterModelImpl::setShowAll(bool showAll) {
  showAll_ = showAll;
}

void QCEResItemFilterModelImpl::setShowAssociation(bool showAssociation) {
  showAssociation_ = showAssociation;
}

void QCEResItemFilterModelImpl::setFilterField(std::vector<std::string>& keywords) {
  filterFields_ = keywords;
}

void QCEResItemFilterModelImpl::setIsFilterByCondition(bool on) {
  isFilterByCondition_ = on;
  // All at once: telling of each vanishing run of rows costs as much as all rows, for every run.
  invalidate();
}

void QCEResItemFilterModelImpl::invalidate() {
  conditionCache_.clear();
  Base::invalidate();
}

const domain::qce::QCEResItemOperator* QCEResItemFilterModelImpl::getResItemOperator() const {
  const domain::Operator* op = getOperator();
  if (op == nullptr) return nullptr;
  // Asked for each row: the cast is looked up once per class of operator.
  if (knownOperator_ != nullptr && typeid(*op) == *knownOperator_) {
    return static_cast<const domain::qce::QCEResItemOperator*>(op);
  }
  const auto* typed = dynamic_cast<const domain::qce::QCEResItemOperator*>(op);
  if (typed != nullptr) knownOperator_ = &typeid(*op);
  return typed;
}

bool QCEResItemFilterModelImpl::filterAcceptsRow(proxy::Element* item) const {
  const domain::qce::QCEResItemOperator* op = getResItemOperator();
  if (op == nullptr) return true;

  if (const std::string* flag = flagOf(op->getFilterType())) {
    domain::Value value;
    if (!std::get<bool>(read(*op, item, *flag, value))) return false;
  }
  if (!showAll_) {
    const auto& mark =
        std::get<std::string>(read(*op, item, domain::keys::BRIAssociation, scratch_));
    if ((mark == AssociationMark) != showAssociation_) return false;
  }
  return !isFilterByCondition_ || isFilterByCondition(item);
}

bool QCEResItemFilterModelImpl::isFilterByCondition(proxy::Element* item) const {
  if (const std::optional<bool> known = conditionCache_.find(item)) return *known;
  const domain::qce::QCEResItemOperator* op = getResItemOperator();
  bool accepted = true;
  const std::size_t count = std::min(filterFields_.size(), conditionKeys().size());
  for (std::size_t i = 0; accepted && op != nullptr && i < count; ++i) {
    const std::string& keyword = filterFields_[i];
    if (keyword.empty()) continue;
    const auto& text = std::get<std::string>(read(*op, item, *conditionKeys()[i], scratch_));
    accepted = text.find(keyword) != std::string::npos;
  }
  conditionCache_.insert(item, accepted);
  return accepted;
}

// The head name, asked in each comparison, without making a text of it.
bool QCEResItemFilterModelImpl::isQuantityColumn(int sourceColumn) const {
  const domain::DisplayTable* table = getDisplayTable();
  const domain::ColumnDescriptor* column =
      table != nullptr ? table->getHeader()->column(sourceColumn) : nullptr;
  return column != nullptr && column->field != nullptr && column->key == domain::keys::BRIAmount;
}

gui::SortInputs::Reader QCEResItemFilterModelImpl::sortReader(int sourceColumn) const {
  return isQuantityColumn(sourceColumn) ? gui::readDisplayedNumber : bridgeReader(sourceColumn);
}

bool QCEResItemFilterModelImpl::lessThan(const QModelIndex& left, const QModelIndex& right) const {
  if (left.column() == right.column() && isQuantityColumn(left.column())) {
    return displayedNumber(left) < displayedNumber(right);
  }
  return Base::lessThan(left, right);
}

}  // namespace gui::qce
