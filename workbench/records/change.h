#pragma once

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "workbench/records/bill_line.h"
#include "workbench/records/elements.h"
#include "workbench/records/taxation.h"

namespace records {

/// A field of a resource item that can be edited.
enum class ItemField {
  Account,
  Code,
  Name,
  Spec,
  Price,
  TaxRate,
  OwnerSupplied,
  Provisional,
  PriceAdjustable,
  Annotation,
  Quantity,
  Linked,  ///< 关联到成本; written by Project::setLinked
  Unit,
};
/// "不含税单价" and so on.
const std::string& nameOf(ItemField field);

using FieldValue = std::variant<bool, Text, costing::PackedDecimal, CostAccount*>;

struct SetField {
  scoped_refptr<ResourceItem> item;
  ItemField field;
  FieldValue before, after;
};

/// An item that comes into or goes out of its category's group, at a stored place.
struct AddItem {
  scoped_refptr<ResourceItem> item;
  StructureNode* unitWork;  ///< not owned: structure outlives every change
};
struct RemoveItem {
  scoped_refptr<ResourceItem> item;
  StructureNode* unitWork;
};

/// Other stored places inside one group.
struct Reposition {
  struct Place {
    scoped_refptr<ResourceItem> item;
    int before, after;
  };
  ResourceGroup* group;
  std::vector<Place> places;
};

/// How much of a budget item is pooled into a cost item; 0: nothing.
struct SetPooling {
  BudgetItem* budgetItem;  ///< not owned: structure outlives every change
  scoped_refptr<ResourceItem> into;
  costing::Decimal before, after;
};

/// The terms of a bill in a cost item; null: the defaults.
struct SetTerms {
  scoped_refptr<ResourceItem> item;
  Bill* bill;
  std::shared_ptr<const LineTerms> before, after;
};

struct SetBill {
  Bill* bill;  ///< not owned: structure outlives every change
  BillData before, after;
};

struct SetFee {
  scoped_refptr<IndirectFeeItem> item;
  FeeData before, after;
};

/// An indirect fee that comes into or goes out of its group.
struct AddFee {
  scoped_refptr<IndirectFeeItem> item;
  IndirectFeeGroup* group;  ///< not owned: groups outlive every change
  int row;
};
struct RemoveFee {
  scoped_refptr<IndirectFeeItem> item;
  IndirectFeeGroup* group;
  int row;
};

/// The subcontract entry that a cost item is collected into; null: none.
struct SetCollection {
  scoped_refptr<ResourceItem> item;
  scoped_refptr<Subcontract> before, after;
};

struct SetSubcontract {
  scoped_refptr<Subcontract> entry;
  SubcontractData before, after;
};

/// A subcontract entry that comes in or goes out, together with its bills.
struct AddSubcontract {
  scoped_refptr<Subcontract> entry;
  int row;
};
struct RemoveSubcontract {
  scoped_refptr<Subcontract> entry;
  int row;
};

/// A subcontract entry with another place; both rows are its own, before and afterwards.
struct MoveSubcontract {
  scoped_refptr<Subcontract> entry;
  int from, to;
};

/// A bill that comes to or leaves a subcontract entry.
struct AssignBill {
  scoped_refptr<Subcontract> entry;
  scoped_refptr<SubcontractBill> bill;
  int row;
};
struct UnassignBill {
  scoped_refptr<Subcontract> entry;
  scoped_refptr<SubcontractBill> bill;
  int row;
};

struct SetTaxation {
  Taxation before, after;
};

using Change =
    std::variant<SetField, AddItem, RemoveItem, Reposition, SetPooling, SetTerms, SetBill, SetFee,
                 AddFee, RemoveFee, SetCollection, SetSubcontract, AddSubcontract,
                 RemoveSubcontract, MoveSubcontract, AssignBill, UnassignBill, SetTaxation>;
using ChangeSet = std::vector<Change>;

/// What an undo menu calls these changes: "修改不含税单价", "移动", ...
std::string describe(const ChangeSet& changes);

}  // namespace records
