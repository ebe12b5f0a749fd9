#include <stdexcept>

#include "workbench/records/project.h"

namespace records {

namespace {
constexpr char NotYet[] = "归集功能尚未完成";
}

costing::Decimal Project::quantity(const BudgetItem& item) const {
  return costing::consumption(billOf(item).quantity.value(), item.content.value());
}
costing::Decimal Project::pooled(const BudgetItem& /*item*/) const {
  return {};
}
costing::Decimal Project::pooled(const BudgetItem& /*item*/, const ResourceItem& /*into*/) const {
  return {};
}
costing::Decimal Project::remaining(const BudgetItem& item) const {
  return quantity(item) - pooled(item);
}
Bill& Project::billOf(const BudgetItem& item) const {
  return *static_cast<Bill*>(item.parent());
}
StructureNode* Project::unitWorkOf(const proxy::Element& element) const {
  for (const proxy::Element* at = &element; at != nullptr; at = at->parent()) {
    if (const auto* group = dynamic_cast<const ResourceGroup*>(at)) return &group->unitWork();
    const auto* node = dynamic_cast<const StructureNode*>(at);
    if (node != nullptr && node->kind == StructureKind::UnitWork) {
      return const_cast<StructureNode*>(node);
    }
  }
  return nullptr;
}
bool Project::sameResource(const BudgetItem& a, const BudgetItem& b) const {
  return a.category == b.category && a.name == b.name && a.spec == b.spec && a.unit == b.unit;
}
void Project::pool(BudgetItem& /*item*/, ResourceItem& /*into*/,
                   const costing::Decimal& /*quantity*/) {
  throw Refusal(NotYet);
}
void Project::withdraw(BudgetItem& /*item*/, ResourceItem& /*from*/) {
  throw Refusal(NotYet);
}
void Project::associate(ResourceItem& /*item*/, Bill& /*bill*/, bool /*summary*/) {
  throw Refusal(NotYet);
}
void Project::disassociate(ResourceItem& /*item*/, Bill& /*bill*/) {
  throw Refusal(NotYet);
}
LineTerms Project::terms(const ResourceItem& /*item*/, const Bill& /*bill*/) const {
  return {};
}
void Project::setTerms(ResourceItem& /*item*/, Bill& /*bill*/, const LineTerms& /*terms*/) {
  throw Refusal(NotYet);
}
std::vector<BillLine> Project::linesOf(const ResourceItem& /*item*/) const {
  return {};
}
std::vector<Bill*> Project::associatedBills(const ResourceItem& /*item*/) const {
  return {};
}

}  // namespace records
