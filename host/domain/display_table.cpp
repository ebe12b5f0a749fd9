#include "host/domain/display_table.h"

#include <algorithm>
#include <utility>

namespace domain {

ColumnDescriptor& DisplayRow::addColumn(std::string key, DataField field) {
  fields_.push_back(std::move(field));
  ColumnDescriptor descriptor;
  descriptor.key = std::move(key);
  descriptor.field = &fields_.back();
  return addColumn(std::move(descriptor));
}

ColumnDescriptor& DisplayRow::addColumn(ColumnDescriptor descriptor) {
  numbers_.emplace(descriptor.key, columnCount());
  columns_.push_back(std::make_unique<ColumnDescriptor>(std::move(descriptor)));
  return *columns_.back();
}

ColumnDescriptor* DisplayRow::column(int number) {
  return const_cast<ColumnDescriptor*>(std::as_const(*this).column(number));
}

const ColumnDescriptor* DisplayRow::column(const std::string& key) const {
  return column(columnIndex(key));
}

ColumnDescriptor* DisplayRow::column(const std::string& key) {
  return column(columnIndex(key));
}

int DisplayRow::columnIndex(const std::string& key) const {
  const auto found = numbers_.find(key);
  return found == numbers_.end() ? -1 : found->second;
}

void DisplayRow::addHeaderGroup(std::string key, std::string caption,
                                std::vector<std::string> columnKeys) {
  captions_[key] = std::move(caption);
  groups_.push_back({std::move(key), std::move(columnKeys)});
}

void DisplayRow::prepareHeaderGroups() {
  for (HeaderGroup& group : groups_) {
    auto& keys = group.columnKeys;
    keys.erase(std::remove_if(keys.begin(), keys.end(),
                              [this](const std::string& key) { return columnIndex(key) < 0; }),
               keys.end());
  }
  groups_.remove_if([](const HeaderGroup& group) { return group.columnKeys.empty(); });
}

std::string DisplayRow::groupCaption(const std::string& key) const {
  const auto found = captions_.find(key);
  return found == captions_.end() ? std::string() : found->second;
}

}  // namespace domain
