#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "workbench/records/bill_line.h"

namespace records {

/// The bill that a budget item belongs to.
Bill& billOf(const BudgetItem& item);
/// Bill quantity × content, exact.
costing::Decimal quantityOf(const BudgetItem& item);
/// See Project::unitWorkOf.
StructureNode* unitWorkOf(const proxy::Element& element);

/// What is booked between the budget items and the cost items of a project, and the sums that
/// follow from it. Only what differs from a freshly gathered project takes room here. Written
/// through Project alone; what throws has changed nothing.
class Bookings {
 public:
  struct Pooling {
    ResourceItem* into;
    costing::Decimal quantity;  ///< above 0
  };
  /// Money of a budget item that counts in a cost item.
  struct Share {
    ResourceItem* item;
    costing::Decimal money;
  };
  /// Where the quantity and the amounts of a cost item come from.
  struct Sums {
    costing::Decimal own;     ///< quantity entered by hand
    costing::Decimal lines;   ///< quantity of all bill lines
    costing::Decimal priced;  ///< quantity of those with a price of their own
    costing::Decimal pricedExcluded, pricedIncluded;  ///< their amounts
    int poolings = 0;                                 ///< into the item
    int terms = 0, associated = 0, contents = 0;      ///< lines with any terms, with these
  };
  /// Terms that are stored; null stands for the defaults.
  using Terms = std::shared_ptr<const LineTerms>;

  /// In the order of the cost items' ids.
  const std::vector<Pooling>& poolingsOf(const BudgetItem& item) const;
  costing::Decimal pooled(const BudgetItem& item) const;
  costing::Decimal pooled(const BudgetItem& item, const ResourceItem& into) const;
  /// One for each cost item that a part of the budget item counts in, the home always among them.
  std::vector<Share> sharesOf(const BudgetItem& item) const;

  bool isEmpty() const { return sides_.empty(); }
  /// Anything is pooled into it or said about a bill in it.
  bool isBooked(const ResourceItem& item) const;
  /// Something is pooled into it, or a bill is associated with it.
  bool isAssociated(const ResourceItem& item) const;
  /// Its quantity is that of its bill lines rather than one entered by hand.
  bool quantityFollows(const ResourceItem& item) const;
  costing::Decimal ownQuantity(const ResourceItem& item) const;
  /// Null for an item that no booking has touched.
  const Sums* sumsOf(const ResourceItem& item) const;
  /// The line is there: used or associated.
  bool hasLine(const ResourceItem& item, const Bill& bill) const;
  /// As they are stored, also while the line is not there.
  Terms termsOf(const ResourceItem& item, const Bill& bill) const;
  std::vector<BillLine> linesOf(const ResourceItem& item) const;
  /// Bills with stored terms, in the order of the project's bills.
  std::vector<Bill*> billsWithTerms(const ResourceItem& item) const;

  /// 0 takes the pooling away.
  void setPooling(BudgetItem& item, ResourceItem& into, const costing::Decimal& quantity);
  void setTerms(ResourceItem& item, Bill& bill, const Terms& terms);
  /// Writes the bill's cost quantity and what follows from it in the sums of itemsOf(bill).
  void setCostQuantity(Bill& bill, const std::optional<costing::PackedDecimal>& quantity);
  /// The cost items that the bill has a line in or that have terms for it, in the order of their
  /// ids.
  std::vector<ResourceItem*> itemsOf(const Bill& bill) const;
  void setOwnQuantity(ResourceItem& item, const costing::Decimal& quantity);
  /// The item has another tax rate.
  void reprice(ResourceItem& item);
  /// The item leaves the project; nothing is booked on it.
  void forget(ResourceItem& item) { sides_.erase(&item); }
  /// Bills or budget items have come in.
  void forgetStructure() {
    if (!indexes_.empty()) indexes_.clear();
  }
  /// Budget items of which anything is pooled, in the order of their ids.
  std::vector<const BudgetItem*> pooledItems() const;
  /// Cost items whose figures may differ from what gathering made them.
  std::vector<ResourceItem*> touchedItems() const;

 private:
  /// A bill in a cost item.
  struct Line {
    Terms terms;
    costing::Decimal budgetQuantity;
    int uses = 0;  // budget items that have something here

    bool exists() const { return uses > 0 || (terms && terms->associated); }
  };
  struct Side {
    Sums sums;
    // Those that a booking has touched. All others are what gathering made them.
    std::unordered_map<Bill*, Line> lines;
  };
  /// What lies where in a unit work.
  struct Index {
    std::unordered_map<const Bill*, int> order;
    std::unordered_map<const ResourceItem*, std::vector<BudgetItem*>> homes;  // in bill order
  };
  struct Edit;

  const Index& indexOf(const ResourceItem& item) const;
  const std::vector<BudgetItem*>& homesOf(const ResourceItem& item) const;
  const Side* find(const ResourceItem& item) const;
  Side& side(ResourceItem& item);
  Line lineOf(const ResourceItem& item, const Bill& bill) const;
  Line& line(ResourceItem& item, Bill& bill);
  void sortByOrder(const ResourceItem& item, std::vector<Bill*>& bills) const;

  std::unordered_map<const BudgetItem*, std::vector<Pooling>> poolings_;
  std::unordered_map<ResourceItem*, Side> sides_;
  mutable std::unordered_map<const StructureNode*, Index> indexes_;  // built when first needed
};

}  // namespace records
