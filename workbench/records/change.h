#pragma once

#include <string>
#include <variant>
#include <vector>

#include "workbench/records/elements.h"

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
  Associated,
  Annotation,
  Quantity,
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

using Change = std::variant<SetField, AddItem, RemoveItem, Reposition>;
using ChangeSet = std::vector<Change>;

/// What an undo menu calls these changes: "修改不含税单价", "移动", ...
std::string describe(const ChangeSet& changes);

}  // namespace records
