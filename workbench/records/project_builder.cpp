#include "workbench/records/project_builder.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace records {

std::int64_t ProjectBuilder::use(std::int64_t id) {
  if (id == 0) return project_.newId();
  project_.lastId_ = std::max(project_.lastId_, id);
  return id;
}

void ProjectBuilder::add(Branch* parent, Group& top, scoped_refptr<Record> record) {
  (parent != nullptr ? parent->rows() : top.rows()).append(std::move(record));
}

CostAccount& ProjectBuilder::addAccount(CostAccount* parent, std::int64_t id,
                                        const std::string& code, const std::string& name) {
  auto* account = new CostAccount(use(id));
  add(parent, *project_.accounts_, scoped_refptr<Record>(account));
  account->code = code;
  account->name = name;
  account->label = code.empty() ? name : code + " " + name;
  project_.allAccounts_.push_back(account);
  for (const std::string& text : {account->label, code, name}) {
    if (!text.empty()) project_.accountByText_.emplace(text, account);
  }
  return *account;
}

StructureNode& ProjectBuilder::addNode(StructureNode* parent, std::int64_t id, StructureKind kind) {
  auto* node = new StructureNode(use(id), kind);
  add(parent, *project_.structure_, scoped_refptr<Record>(node));
  if (kind == StructureKind::UnitWork) {
    project_.unitWorks_.push_back(node);
    Project::SubProject& subProject = project_.bySubProject_[node->id()];
    subProject.row.reset(new ResourceGroup(*node));
    for (int i = 0; i < CategoryCount; ++i) {
      subProject.categories[static_cast<std::size_t>(i)].reset(
          new ResourceGroup(*node, static_cast<Category>(i)));
    }
    project_.subProjects_->rows().append(subProject.row);
  }
  return *node;
}

Bill& ProjectBuilder::addBill(StructureNode& section, std::int64_t id) {
  auto* bill = new Bill(use(id));
  project_.bookings_.forgetStructure();
  section.rows().append(scoped_refptr<Record>(bill));
  return *bill;
}

BudgetItem& ProjectBuilder::addBudgetItem(Bill& bill, std::int64_t id) {
  auto* item = new BudgetItem(use(id));
  bill.rows().append(scoped_refptr<Record>(item));
  return *item;
}

ResourceItem& ProjectBuilder::addItem(StructureNode& unitWork, const ResourceItemData& data) {
  ResourceItemData placed = data;
  placed.id = use(data.id);
  if (placed.position < 0) {
    placed.position = project_.categoryGroup(unitWork, data.category)->rows().size();
  }
  const scoped_refptr<ResourceItem> item = project_.makeItem(placed);
  project_.link(unitWork, item);
  return *item;
}

void ProjectBuilder::gather(BudgetItem& budgetItem, ResourceItem& item) {
  budgetItem.resourceItem = &item;
  item.gathered_ = true;
  project_.bookings_.forgetStructure();
}

void ProjectBuilder::setOwnQuantity(ResourceItem& item, const costing::Decimal& quantity) {
  project_.bookings_.setOwnQuantity(item, quantity);
}

void ProjectBuilder::setPooling(BudgetItem& budgetItem, ResourceItem& into,
                                const costing::Decimal& quantity) {
  project_.bookings_.setPooling(budgetItem, into, quantity);
}

void ProjectBuilder::setTerms(ResourceItem& item, Bill& bill, const LineTerms& terms) {
  project_.bookings_.setTerms(item, bill, std::make_shared<const LineTerms>(terms));
}

void ProjectBuilder::setCostQuantity(Bill& bill, const costing::Decimal& quantity) {
  project_.bookings_.setCostQuantity(bill, costing::PackedDecimal(quantity));
}

void ProjectBuilder::finishBookings() {
  for (ResourceItem* item : project_.bookings_.touchedItems()) {
    const costing::Totals before = item->totals();
    project_.refresh(*item, before.budget);
    project_.count(*item->group(), before, item->totals());
  }
}

Subcontract& ProjectBuilder::addSubcontract(std::int64_t id) {
  auto* entry = new Subcontract(use(id));
  project_.subcontracts_->rows().append(scoped_refptr<Record>(entry));
  return *entry;
}

void ProjectBuilder::assign(Subcontract& entry, Bill& bill, std::int64_t id) {
  entry.rows().append(scoped_refptr<Record>(new SubcontractBill(use(id), bill)));
  project_.subcontractsOfBills_[&bill].push_back(&entry);
}

void ProjectBuilder::collect(ResourceItem& item, Subcontract& into) {
  project_.write(item, &into);
}

void ProjectBuilder::finishSubcontracts() {
  // Nothing can be shown of a project whose figures do not fit.
  project_.subcontractTotals();
}

IndirectFeeGroup& ProjectBuilder::addFeeGroup(IndirectFeeGroup* parent, std::int64_t id) {
  auto* group = new IndirectFeeGroup(use(id));
  add(parent, *project_.feeGroups_, scoped_refptr<Record>(group));
  return *group;
}

IndirectFeeItem& ProjectBuilder::addFeeItem(IndirectFeeGroup& group, std::int64_t id) {
  auto* item = new IndirectFeeItem(use(id));
  group.rows().append(scoped_refptr<Record>(item));
  return *item;
}

}  // namespace records
