#pragma once

#include "workbench/records/project.h"

namespace records {

/// Fills an empty project, from a source file or from storage. Ids of 0 give new ones; a null
/// parent is the top level. What it adds is neither recorded nor announced.
class ProjectBuilder {
 public:
  explicit ProjectBuilder(Project& project) : project_(project) {}

  CostAccount& addAccount(CostAccount* parent, std::int64_t id, const std::string& code,
                          const std::string& name);
  StructureNode& addNode(StructureNode* parent, std::int64_t id, StructureKind kind);
  Bill& addBill(StructureNode& section, std::int64_t id);
  BudgetItem& addBudgetItem(Bill& bill, std::int64_t id);
  ResourceItem& addItem(StructureNode& unitWork, const ResourceItemData& data);
  void gather(BudgetItem& budgetItem, ResourceItem& item);
  // Bookings of items that stand already. Figures follow with finishBookings, apart from the budget
  // amounts, which are as the items were made.
  void setOwnQuantity(ResourceItem& item, const costing::Decimal& quantity);
  void setPooling(BudgetItem& budgetItem, ResourceItem& into, const costing::Decimal& quantity);
  void setTerms(ResourceItem& item, Bill& bill, const LineTerms& terms);
  /// After the items that the bill's budget items were gathered to, before what is booked.
  void setCostQuantity(Bill& bill, const costing::Decimal& quantity);
  void finishBookings();
  /// Its figures are checked with finishSubcontracts.
  Subcontract& addSubcontract(std::int64_t id);
  void assign(Subcontract& entry, Bill& bill, std::int64_t id);
  void collect(ResourceItem& item, Subcontract& into);
  /// @throws std::overflow_error
  void finishSubcontracts();
  IndirectFeeGroup& addFeeGroup(IndirectFeeGroup* parent, std::int64_t id);
  IndirectFeeItem& addFeeItem(IndirectFeeGroup& group, std::int64_t id);

 private:
  std::int64_t use(std::int64_t id);
  void add(Branch* parent, Group& top, scoped_refptr<Record> record);

  Project& project_;
};

}  // namespace records
