#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "workbench/costing/expression.h"
#include "workbench/records/bookings.h"
#include "workbench/records/change.h"
#include "workbench/records/fees.h"

namespace records {

/// Facts about the whole project, as its source file and the new-project dialog give them.
struct Facts {
  std::string name;      ///< as the dialog gives it
  std::string costType;  ///< 投标成本测算 or 目标成本测算
  std::string reportTemplate;
  std::string costPlan;    ///< name of the cost plan (成本计划)
  std::string sourceKind;  ///< the source file's extension; empty for an empty project
  std::string sourceName, code, builder, tenderer, region, date, pricingBasis, structure;
  std::string taxMethod;
  costing::Decimal taxRate, buildingArea;
  std::optional<costing::Decimal> declaredBills, declaredResources, declaredFees;
  /// Money that the project was made with; the budget never changes afterwards.
  costing::Decimal readBills, readResources, readFees;
};

/// The fields of a resource item that is to be made. An id of 0 gives it a new one, a negative
/// position the last place.
struct ResourceItemData {
  std::int64_t id = 0;
  CostAccount* account = nullptr;
  Category category = Category::Material;
  Text code, name, spec, unit, annotation;
  costing::Decimal quantity, price, taxRate, budgetAmount;
  bool ownerSupplied = false, provisional = false, priceAdjustable = false;
  bool linked = true;
  int position = -1;
};

/// Hears what happens to the records. Each "about to" is followed by the change and its end.
class Observer {
 public:
  virtual ~Observer();
  virtual void itemChanged(ResourceItem& /*item*/) {}
  /// The item's bill lines have changed: what is booked into it or remains in it, or their terms.
  virtual void bookingChanged(ResourceItem& /*item*/) {}
  /// What can be edited of the bill is something else.
  virtual void billChanged(Bill& /*bill*/) {}
  /// A row comes in below `parent` at `row`.
  virtual void aboutToInsert(ResourceGroup& /*parent*/, int /*row*/) {}
  virtual void inserted() {}
  virtual void aboutToRemove(ResourceGroup& /*parent*/, int /*row*/) {}
  virtual void removed() {}
  /// The row below `upper` moves up over it.
  virtual void aboutToSwap(ResourceGroup& /*group*/, int /*upper*/) {}
  virtual void swapped() {}
  /// The stored places of the group's items have changed in a way that its rows do not show before
  /// the next Project::arrange.
  virtual void rearranged(ResourceGroup& /*group*/) {}
  /// What an indirect fee says or costs has changed. Costs that are calculated may change with any
  /// item, and do so in silence.
  virtual void feeChanged(IndirectFeeItem& /*item*/) {}
  virtual void aboutToInsertFee(IndirectFeeGroup& /*group*/, int /*row*/) {}
  virtual void feeInserted() {}
  virtual void aboutToRemoveFee(IndirectFeeGroup& /*group*/, int /*row*/) {}
  virtual void feeRemoved() {}
  /// What a subcontract entry says, what it costs or what is collected into it has changed.
  virtual void subcontractChanged(Subcontract& /*entry*/) {}
  virtual void aboutToInsertSubcontract(int /*row*/) {}
  virtual void subcontractInserted() {}
  virtual void aboutToRemoveSubcontract(int /*row*/) {}
  virtual void subcontractRemoved() {}
  /// Both rows are its own, before and afterwards.
  virtual void aboutToMoveSubcontract(int /*from*/, int /*to*/) {}
  virtual void subcontractMoved() {}
  /// A bill comes in below the entry at `row`, or goes; subcontractChanged follows.
  virtual void aboutToAssign(Subcontract& /*entry*/, int /*row*/) {}
  virtual void assigned() {}
  virtual void aboutToUnassign(Subcontract& /*entry*/, int /*row*/) {}
  virtual void unassigned() {}
  /// An edit, an undo or a redo is complete.
  virtual void stepFinished() {}
};

/// A cost project in memory. All writing goes through the editing and booking operations, which
/// record what they do; whoever ends an edit takes the record (takeRecorded) to store it and to be
/// able to take it back (apply).
class Project {
 public:
  Project();
  ~Project();
  Project(const Project&) = delete;
  Project& operator=(const Project&) = delete;

  Facts facts;
  TextPool texts;

  Group& structure() { return *structure_; }
  Group& accounts() { return *accounts_; }
  Group& feeGroups() { return *feeGroups_; }
  /// The subcontract entries. Their rows are their stored places: a view must not order the group.
  Group& subcontracts() { return *subcontracts_; }
  const Group& subcontracts() const { return *subcontracts_; }
  /// A row for each unit work, below it one for each category that has items, below these the
  /// items. Ordering this group is the order of a view: it is neither stored nor undone.
  Group& subProjects() { return *subProjects_; }
  const std::vector<StructureNode*>& unitWorks() const { return unitWorks_; }
  /// All accounts, each before those below it.
  const std::vector<CostAccount*>& allAccounts() const { return allAccounts_; }
  /// The account with this text ("code name"), code or name; null when there is none.
  CostAccount* findAccount(const std::string& text) const;

  /// The grouping row of a unit work.
  ResourceGroup* subProject(const StructureNode& unitWork) const;
  /// The row of a category in it; not among the rows while it has no items.
  ResourceGroup* categoryGroup(const StructureNode& unitWork, Category category) const;
  const costing::Totals& totals() const { return totals_; }
  std::int64_t itemCount() const { return itemCount_; }

  // Indirect fees: what they cost now. docs/costing.md has the rules.

  FeeFigures figures(const IndirectFeeItem& item) const;
  /// Cost of all fees; of those in and below a group.
  costing::Decimal feeTotal() const { return feeTotal(feeGroups_->rows()); }
  costing::Decimal feeTotal(const IndirectFeeGroup& group) const { return feeTotal(group.rows()); }
  /// The same as budgeted.
  costing::Decimal feeBudget() const { return feeBudget(feeGroups_->rows()); }
  costing::Decimal feeBudget(const IndirectFeeGroup& group) const {
    return feeBudget(group.rows());
  }
  /// What calculations in this group can name.
  costing::Variables feeVariables(const IndirectFeeGroup& group) const;

  FieldValue value(const ResourceItem& item, ItemField field) const;

  // Subcontracts. docs/costing.md has the rules.

  /// The entries that the bill is assigned to, in their order.
  std::vector<Subcontract*> subcontractsOf(const Bill& bill) const;
  bool isAssigned(const Subcontract& entry, const Bill& bill) const;
  /// In the order of their ids.
  std::vector<ResourceItem*> collectedItems(const Subcontract& entry) const;
  /// Items that are neither linked nor collected: their cost counts nowhere yet.
  std::int64_t itemsWaiting() const { return itemsWaiting_; }
  /// The cost of an item excluding tax, or what it would be if the item counted.
  costing::Decimal amountIfCounted(const ResourceItem& item) const {
    return item.counts() ? item.excludedAmount().value() : amountsOf(item).first;
  }
  /// Cost of all entries; the budget is 0.
  costing::Totals subcontractTotals() const;

  // Editing. An unchanged value records nothing. std::overflow_error: an amount would not fit, and
  // nothing has changed.

  /// Throws Refusal for a quantity that follows from bill lines, and for another unit than that of
  /// what was gathered.
  void set(ResourceItem& item, ItemField field, const FieldValue& value);
  /// Writes what can be edited of a bill, all of it or nothing. Its cost quantity is worked out
  /// here and scales the cost of all that the bill uses; the budget stays. Throws Refusal for a
  /// text that must not be empty, for a calculation that has no value, and for a quantity below 0.
  void set(Bill& bill, BillData data);
  /// The names that the calculation of a bill's cost quantity can use, with their values.
  costing::Variables variablesFor(const Bill& bill) const;
  /// Appends an item to the group of its category; null for a node that is no unit work.
  ResourceItem* add(StructureNode& unitWork, const ResourceItemData& data);
  /// False, and nothing removed, for an item that budget items were gathered to or that anything is
  /// booked on.
  bool remove(ResourceItem& item);
  /// Moves the item one row up or down inside its group; the order that the rows then have becomes
  /// the stored one. False when there is no row to pass.
  bool moveUp(ResourceItem& item);
  bool moveDown(ResourceItem& item);

  // Booking. The quantity of a budget item is pooled into cost items piece by piece; what remains
  // counts in its home, the item that it was gathered to. docs/costing.md has the rules.

  const Bookings& bookings() const { return bookings_; }
  /// Bill quantity × content, exact.
  costing::Decimal quantity(const BudgetItem& item) const { return quantityOf(item); }
  /// Into all items.
  costing::Decimal pooled(const BudgetItem& item) const { return bookings_.pooled(item); }
  costing::Decimal pooled(const BudgetItem& item, const ResourceItem& into) const {
    return bookings_.pooled(item, into);
  }
  costing::Decimal remaining(const BudgetItem& item) const { return quantity(item) - pooled(item); }
  Bill& billOf(const BudgetItem& item) const { return records::billOf(item); }
  /// The unit work that a node, a bill, a budget item, a cost item or a grouping row belongs to;
  /// null when there is none.
  StructureNode* unitWorkOf(const proxy::Element& element) const {
    return records::unitWorkOf(element);
  }
  /// Whether both stand for the same resource: category, name, specification and unit.
  bool sameResource(const BudgetItem& a, const BudgetItem& b) const;

  // All throw Refusal where the rules forbid it (another unit work above all), and
  // std::overflow_error where a figure would not fit. Nothing has changed then.

  /// Moves a quantity from what remains of the budget item into the cost item, on top of what was
  /// pooled there before; its bill becomes associated. Refused: negative, more than remains. 0 does
  /// nothing.
  void pool(BudgetItem& item, ResourceItem& into, const costing::Decimal& quantity);
  /// Gives the whole pooling back. The bill stays associated.
  void withdraw(BudgetItem& item, ResourceItem& from);
  /// Changes no quantity.
  void associate(ResourceItem& item, Bill& bill, bool summary);
  /// Withdraws the bill's poolings into the item and drops the line's terms.
  void disassociate(ResourceItem& item, Bill& bill);
  /// The defaults where there is no such line.
  LineTerms terms(const ResourceItem& item, const Bill& bill) const;
  /// Refused: coefficient 0, a negative price, a bill without a line in the item (unless the terms
  /// associate it), and taking the association from under a pooling.
  void setTerms(ResourceItem& item, Bill& bill, const LineTerms& terms);

  /// In the order of the project's bills: those that are used in the item (a budget item has its
  /// home there and is not pooled away, or is pooled into it) or associated with it.
  std::vector<BillLine> linesOf(const ResourceItem& item) const { return bookings_.linesOf(item); }
  std::vector<Bill*> associatedBills(const ResourceItem& item) const;

  // Editing indirect fees. All throw Refusal where the rules forbid it, and std::overflow_error
  // where an amount would not fit. Nothing has changed then.

  /// Refused: a calculation without a value, a rate outside 0 to 1000, more places than are kept;
  /// other names than its own for a fee of the source file.
  void setFee(IndirectFeeItem& item, const FeeData& data);
  /// Appends a fee of one's own. Refused: a group with groups below it.
  IndirectFeeItem& addFee(IndirectFeeGroup& group, const FeeData& data);
  /// Refused: a fee of the source file.
  void removeFee(IndirectFeeItem& item);

  // Editing subcontracts, and what of the resource items counts in cost. All throw Refusal where
  // the rules forbid it, and std::overflow_error where a figure would not fit. Nothing has changed
  // then.

  /// Refused: no name, a contract type, date, price, tax rate or quantity that cannot be, another
  /// metering method, a quantity that is not typed (all methods but ByQuantity), and another unit
  /// than that of bills whose quantities are added up (ByBills).
  void set(Subcontract& entry, const SubcontractData& data);
  /// Keeps the amount: quantity and price become what says the same the other way. A bare unit
  /// price (ByQuantity to ByBills) is kept instead. Refused: ByBills with bills of another unit.
  void setMetering(Subcontract& entry, MeteringMethod method);
  /// A negative row: the last one.
  Subcontract& addSubcontract(const SubcontractData& data, int row = -1);
  /// Gives back the items that are collected into it, and its bills.
  void removeSubcontract(Subcontract& entry);
  /// `to` is the row that the entry has afterwards. False when there is nothing to move.
  bool moveSubcontract(int from, int to);
  /// Appends the bills that the entry does not have yet. Refused: ByBills with another unit.
  void assign(Subcontract& entry, const std::vector<Bill*>& bills);
  /// Those that the entry does not have are passed over.
  void unassign(Subcontract& entry, const std::vector<Bill*>& bills);
  /// 关联到成本, 取消关联到成本. Refused when one of the items is collected.
  void setLinked(const std::vector<ResourceItem*>& items, bool linked);
  /// 设置归集. An item that is collected into another entry goes over to this one.
  void collect(ResourceItem& item, Subcontract& into);
  void uncollect(ResourceItem& item);

  Taxation taxation() const { return {facts.taxMethod, facts.taxRate}; }
  /// Throws Refusal where problemOf has something against it. Nothing that is kept follows from it.
  void setTaxation(const Taxation& taxation);

  bool hasRecorded() const { return !recorded_.empty(); }
  ChangeSet takeRecorded();
  enum class Direction { Forward, Backward };
  /// Does the changes again or takes them back, without recording.
  void apply(const ChangeSet& changes, Direction direction);
  /// Tells the observers that a step is complete.
  void finishStep();

  void addObserver(Observer* observer);  ///< not owned
  void removeObserver(Observer* observer);

  /// Orders the items of each group by their stored places. Changes the rows.
  void arrange();

  /// All that is stored, as text: two projects with the same content have the same dump.
  std::string dump() const;

 private:
  friend class ProjectBuilder;

  struct SubProject {
    scoped_refptr<ResourceGroup> row;
    std::array<scoped_refptr<ResourceGroup>, CategoryCount> categories;
  };

  std::int64_t newId() { return ++lastId_; }
  scoped_refptr<ResourceItem> makeItem(const ResourceItemData& data);
  void record(Change change);
  void recordAll(ChangeSet changes);
  void perform(const Change& change, Direction direction);
  void write(ResourceItem& item, ItemField field, const FieldValue& value);
  void link(const StructureNode& unitWork, const scoped_refptr<ResourceItem>& item);
  void unlink(ResourceItem& item);
  void place(const Reposition& change, Direction direction);
  /// Excluding and including tax, as the item has them while it counts.
  std::pair<costing::Decimal, costing::Decimal> amountsOf(const ResourceItem& item) const;
  void setAmounts(ResourceItem& item) const;
  void refresh(ResourceItem& item, const costing::Decimal& budgetAmount);
  void tell(ResourceItem& item, const costing::Totals& before);
  void write(const SetPooling& change, const costing::Decimal& quantity);
  void write(const SetTerms& change, const Bookings::Terms& terms);
  void write(Bill& bill, const BillData& data);
  std::optional<costing::PackedDecimal> costQuantityOf(const Bill& bill,
                                                       const BillData& data) const;
  void write(IndirectFeeItem& item, const FeeData& data);
  void link(IndirectFeeGroup& group, int row, const scoped_refptr<IndirectFeeItem>& item);
  void unlink(const scoped_refptr<IndirectFeeItem>& item);
  void requireAssignable(const Bill& bill, const BillData& data) const;
  void write(Subcontract& entry, const SubcontractData& data);
  void link(int row, const scoped_refptr<Subcontract>& entry);
  void unlink(const scoped_refptr<Subcontract>& entry);
  void move(int from, int to);
  void link(Subcontract& entry, int row, const scoped_refptr<SubcontractBill>& bill);
  void unlink(Subcontract& entry, const scoped_refptr<SubcontractBill>& bill);
  void write(ResourceItem& item, Subcontract* into);
  void noteCollected(ResourceItem& item);
  void countWaiting(const ResourceItem& item, int sign) {
    if (!item.linked() && item.subcontract() == nullptr) itemsWaiting_ += sign;
  }
  costing::Decimal feeTotal(const RowList& rows) const;
  costing::Decimal feeBudget(const RowList& rows) const;
  void requireFee(const IndirectFeeItem& item, const IndirectFeeGroup& group,
                  const FeeData& data) const;
  costing::Decimal billIncome(const StructureNode& unitWork) const;
  void requireSameUnitWork(const ResourceItem& item, const Bill& bill) const;
  void count(ResourceGroup& group, const costing::Totals& before, const costing::Totals& after);
  bool swapWithNext(ResourceGroup& group, int upper);

  scoped_refptr<Group> structure_, accounts_, feeGroups_, subcontracts_, subProjects_;
  std::vector<StructureNode*> unitWorks_;
  std::unordered_map<std::int64_t, SubProject> bySubProject_;
  std::vector<CostAccount*> allAccounts_;
  std::unordered_map<std::string, CostAccount*> accountByText_;
  Bookings bookings_;
  costing::Totals totals_;
  std::int64_t itemCount_ = 0;
  std::int64_t itemsWaiting_ = 0;
  std::unordered_map<const Bill*, std::vector<Subcontract*>> subcontractsOfBills_;
  std::unordered_map<const Subcontract*, std::vector<ResourceItem*>> collected_;  // by id
  std::int64_t lastId_ = 0;
  ChangeSet recorded_;
  mutable std::unordered_map<const StructureNode*, costing::Decimal> billIncomes_;
  mutable FeeCache feeCache_;
  std::vector<Observer*> observers_;
};

}  // namespace records
