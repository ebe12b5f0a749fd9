#include "workbench/records/elements.h"

#include <array>

#include "host/domain/qce/contract_types.h"

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

const std::string& nameOf(MeteringMethod method) {
  static const std::array<std::string, MeteringMethodCount> names = {"按清单工程量", "按实际数量",
                                                                     "总价包干"};
  return names[static_cast<std::size_t>(method)];
}

const std::vector<std::string>& contractTypes() {
  static const std::vector<std::string> types = [] {
    std::vector<std::string> all = domain::qce::contractTypes();
    all.pop_back();  // stands for none
    return all;
  }();
  return types;
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

costing::Decimal Subcontract::billQuantity() const {
  costing::Decimal sum;
  for (int row = 0; row < rows().size(); ++row) sum += billAt(row).bill.quantityForCost();
  return sum;
}

costing::Decimal Subcontract::quantityNow() const {
  if (metering == MeteringMethod::LumpSum) return 1;
  return metering == MeteringMethod::ByQuantity ? quantity : billQuantity();
}

costing::Decimal Subcontract::amount() const {
  return costing::excludedTaxAmount(quantityNow(), price);
}

costing::Decimal Subcontract::includedAmount() const {
  return costing::includedTaxAmount(quantityNow(), price, taxRate);
}

}  // namespace records
