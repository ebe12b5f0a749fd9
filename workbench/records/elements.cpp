#include "workbench/records/elements.h"

#include <array>

namespace records {
namespace {

// Grouping rows are not stored; their ids lie below zero, apart from those of all records.
std::int64_t groupId(const StructureNode& unitWork, int slot) {
  return -(unitWork.id() * (CategoryCount + 1) + slot + 1);
}

}  // namespace

const std::string& nameOf(Category category) {
  static const std::array<std::string, CategoryCount> names = {"人工", "材料", "机械", "主材",
                                                               "设备"};
  return names[static_cast<std::size_t>(category)];
}

costing::Totals ResourceItem::totals() const {
  return {budgetAmount_.value(), excludedAmount_.value(), includedAmount_.value()};
}

ResourceGroup* ResourceItem::group() const {
  return static_cast<ResourceGroup*>(parent());
}

ResourceGroup::ResourceGroup(StructureNode& unitWork)
    : Branch(groupId(unitWork, CategoryCount)), unitWork_(&unitWork) {}

ResourceGroup::ResourceGroup(StructureNode& unitWork, Category category)
    : Branch(groupId(unitWork, static_cast<int>(category))),
      unitWork_(&unitWork),
      category_(category) {}

}  // namespace records
