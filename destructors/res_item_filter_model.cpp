#include "destructors/res_item_filter_model.h"

#include "host/domain/field_keys.h"

namespace gui::qce::destructors {

namespace {

namespace keys = domain::keys;

void readValue(const QModelIndex& index, gui::SortInputs::Cell& cell) {
  cell.number = index.data(Qt::EditRole).toDouble();
}

}  // namespace

gui::SortInputs::Reader valueReader(const domain::DisplayTable* table, int sourceColumn) {
  const domain::ColumnDescriptor* column =
      table != nullptr ? table->getHeader()->column(sourceColumn) : nullptr;
  const bool number = column != nullptr && column->field != nullptr &&
                      (column->field->type == domain::IntegerField ||
                       column->field->type == domain::FloatingPointField);
  return number ? readValue : nullptr;
}

DesResItemFilterModelImpl::DesResItemFilterModelImpl(
    abst::qce::destructors::DesResItemModel* source)
    : ResItemFilterModelImpl(source),
      conditions_(
          {&keys::CostAccount, &keys::BRICode, &keys::BRIName, &keys::BRISpec, &keys::BRIUnit}) {}

int DesResItemFilterModelImpl::getItemWaitForCollectNum() const {
  return getSource() != nullptr ? getSource()->getItemWaitForCollectNum() : 0;
}

bool DesResItemFilterModelImpl::isItem(const proxy::Element* element) const {
  return getSource() != nullptr && getSource()->isItem(element);
}

void DesResItemFilterModelImpl::setGrouped(bool grouped) {
  if (getSource() != nullptr) getSource()->setGrouped(grouped);
}

bool DesResItemFilterModelImpl::isGrouped() const {
  return getSource() != nullptr && getSource()->isGrouped();
}

void DesResItemFilterModelImpl::rebuildGroup() {
  if (getSource() != nullptr) getSource()->rebuildGroup();
}

void DesResItemFilterModelImpl::setFilterField(std::vector<std::string>& conditions) {
  conditions_.setTexts(conditions);
}

void DesResItemFilterModelImpl::setIsFilterByCondition(bool on) {
  isFilterByCondition_ = on;
  invalidate();
}

// A grouping row that itself holds the text would be shown without an item.
bool DesResItemFilterModelImpl::filterAcceptsRow(proxy::Element* element) const {
  return isItem(element) && ResItemFilterModelImpl::filterAcceptsRow(element) &&
         (!isFilterByCondition_ || conditions_.areFulfilled(getOperator(), element));
}

bool DesResItemFilterModelImpl::lessThan(const QModelIndex& left, const QModelIndex& right) const {
  if (valueReader(getDisplayTable(), left.column()) == nullptr) {
    return ResItemFilterModelImpl::lessThan(left, right);
  }
  return left.data(Qt::EditRole).toDouble() < right.data(Qt::EditRole).toDouble();
}

gui::SortInputs::Reader DesResItemFilterModelImpl::sortReader(int sourceColumn) const {
  const gui::SortInputs::Reader reader = valueReader(getDisplayTable(), sourceColumn);
  return reader != nullptr ? reader : bridgeReader(sourceColumn);
}

}  // namespace gui::qce::destructors
