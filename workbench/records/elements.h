#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "workbench/costing/packed_decimal.h"
#include "workbench/costing/rules.h"
#include "workbench/records/record.h"
#include "workbench/records/text.h"

/// The records of a cost project. Texts are UTF-8, money is in yuan, rates are per cent.
namespace records {

/// 人工, 材料, 机械, 主材, 设备; the numbers are stored.
enum class Category : std::uint8_t { Labour, Material, Machinery, MainMaterial, Equipment };
constexpr int CategoryCount = 5;
const std::string& nameOf(Category category);

/// 成本科目, a tree.
class CostAccount : public Branch {
 public:
  using Branch::Branch;

  std::string sourceId, code, name;
  std::string label;  ///< "code name", as cells show it
  std::optional<Category> defaultFor;
};

/// 单项工程, 单位工程, 分部; the numbers are stored.
enum class StructureKind : std::uint8_t { SingleProject, UnitWork, Section };

class StructureNode : public Branch {
 public:
  StructureNode(std::int64_t id, StructureKind ofKind) : Branch(id), kind(ofKind) {}

  const StructureKind kind;
  std::string sourceId, code, name, specialty;
  /// Money that the source file declares for a unit work, where it does.
  std::optional<costing::Decimal> declaredBills, declaredResources, declaredFees;
};

/// One line of the calculation behind a cost quantity. Without an expression it is a comment.
struct QuantityLine {
  Text remark, expression;

  friend bool operator==(const QuantityLine& a, const QuantityLine& b) {
    return a.remark == b.remark && a.expression == b.expression;
  }
};

/// What an estimator can edit of a bill.
struct BillData {
  Text code, name, features, unit, type, remark;
  CostAccount* account = nullptr;
  /// What the cost quantity (成本工程量) is made of: one expression, or lines that are added up, or
  /// neither, and then it is the tender quantity.
  Text expression;
  std::vector<QuantityLine> quantityLines;
  /// Follows from these; empty: the tender quantity.
  std::optional<costing::PackedDecimal> costQuantity;

  friend bool operator==(const BillData& a, const BillData& b) {
    return a.code == b.code && a.name == b.name && a.features == b.features && a.unit == b.unit &&
           a.type == b.type && a.remark == b.remark && a.account == b.account &&
           a.expression == b.expression && a.quantityLines == b.quantityLines &&
           a.costQuantity == b.costQuantity;
  }
};

/// 清单. Its children are its budget items. Edited through records::Project alone.
class Bill : public Branch, public BillData {
 public:
  using Branch::Branch;

  BillData& data() { return *this; }
  const BillData& data() const { return *this; }
  /// What the cost counts: the cost quantity, else the tender quantity.
  costing::Decimal quantityForCost() const {
    return (costQuantity ? *costQuantity : quantity).value();
  }

  Text sourceId;
  costing::PackedDecimal quantity;  ///< 招标工程量: as tendered, it never changes
  std::optional<costing::PackedDecimal> unitPrice, amount;  ///< of the kinds that price bills
};

class ResourceItem;

/// A budget resource item (清单预算工料机): what one unit of a bill uses of a resource.
class BudgetItem : public Record {
 public:
  using Record::Record;

  Text sourceId, code, name, spec, unit;
  ResourceItem* resourceItem = nullptr;  ///< the resource item that it was gathered to
  costing::PackedDecimal content;        ///< per unit of the bill
  costing::PackedDecimal price;          ///< excluding tax
  costing::PackedDecimal taxRate;
  costing::PackedDecimal amount;  ///< revenue, 2 places
  Category category = Category::Material;
  bool ownerSupplied = false, provisional = false, priceAdjustable = false;
};

class ResourceGroup;
class Subcontract;

/// A cost resource item (成本工料机) of one unit work. Written through records::Project alone.
class ResourceItem final : public Record {
 public:
  using Record::Record;

  CostAccount* account() const { return account_; }  ///< may be null
  Category category() const { return category_; }
  Text code() const { return code_; }
  Text name() const { return name_; }
  Text spec() const { return spec_; }
  Text unit() const { return unit_; }
  Text annotation() const { return annotation_; }
  costing::PackedDecimal quantity() const { return quantity_; }
  costing::PackedDecimal price() const { return price_; }  ///< excluding tax
  costing::PackedDecimal taxRate() const { return taxRate_; }
  bool ownerSupplied() const { return ownerSupplied_; }
  bool provisional() const { return provisional_; }
  bool priceAdjustable() const { return priceAdjustable_; }
  /// A bill is associated with it, or a budget item is pooled into it.
  bool associated() const { return associated_; }
  /// Budget items were gathered to it: it cannot be removed.
  bool gathered() const { return gathered_; }
  /// The place in its group that is stored; a sorted view may show another.
  int position() const { return position_; }
  /// 关联到成本; true unless an estimator says otherwise.
  bool linked() const { return linked_; }
  /// The entry that it was collected into (设置归集); null: none.
  Subcontract* subcontract() const { return subcontract_; }
  /// Its amounts are part of the cost. Otherwise they are 0; the budget amount stays.
  bool counts() const { return linked_ && subcontract_ == nullptr; }

  // What follows from the fields above.
  costing::PackedDecimal budgetAmount() const { return budgetAmount_; }
  costing::PackedDecimal excludedAmount() const { return excludedAmount_; }
  costing::PackedDecimal includedAmount() const { return includedAmount_; }
  costing::Totals totals() const;

  ResourceGroup* group() const;

 private:
  friend class Project;
  friend class ProjectBuilder;

  int position_ = 0;  // first: it fits in beside the row number, and there are millions of items
  CostAccount* account_ = nullptr;
  Subcontract* subcontract_ = nullptr;
  Text code_, name_, spec_, unit_, annotation_;
  costing::PackedDecimal quantity_, price_, taxRate_;
  costing::PackedDecimal budgetAmount_, excludedAmount_, includedAmount_;
  Category category_ = Category::Material;
  bool ownerSupplied_ = false, provisional_ = false, priceAdjustable_ = false, associated_ = false;
  bool gathered_ = false, linked_ = true;
};

/// A grouping row of the resource items: a sub-project, or one category in it.
class ResourceGroup : public Branch {
 public:
  /// A sub-project's row.
  explicit ResourceGroup(StructureNode& unitWork);
  ResourceGroup(StructureNode& unitWork, Category category);

  StructureNode& unitWork() const { return *unitWork_; }
  std::optional<Category> category() const { return category_; }  ///< empty: the sub-project
  const costing::Totals& totals() const { return totals_; }

 private:
  friend class Project;

  StructureNode* unitWork_;
  std::optional<Category> category_;
  costing::Totals totals_;
};

/// 间接费.
class IndirectFeeGroup : public Branch {
 public:
  using Branch::Branch;

  std::string sourceId, code, name;
  StructureNode* unitWork = nullptr;  ///< top groups only; null: the whole project
};

/// What an indirect fee costs. With a base and a rate the amount follows from them, otherwise it
/// stands for itself.
struct FeeCost {
  std::string base;                      ///< a number or a calculation, yuan; empty: none
  std::optional<costing::Decimal> rate;  ///< per cent
  costing::Decimal amount;               ///< yuan, 2 places

  bool follows() const { return !base.empty() && rate.has_value(); }
  friend bool operator==(const FeeCost& a, const FeeCost& b) {
    return a.base == b.base && a.rate == b.rate && a.amount == b.amount;
  }
};

/// What an estimator can edit of an indirect fee.
struct FeeData {
  std::string code, name, basis;
  CostAccount* account = nullptr;
  std::optional<FeeCost> cost;  ///< empty: as budgeted

  friend bool operator==(const FeeData& a, const FeeData& b) {
    return a.code == b.code && a.name == b.name && a.basis == b.basis && a.account == b.account &&
           a.cost == b.cost;
  }
};

/// Edited through records::Project alone.
class IndirectFeeItem : public Record, public FeeData {
 public:
  using Record::Record;

  /// Entered by hand, as against read from a source file: it has no budget and can be removed.
  bool isOwn() const { return sourceId.empty(); }
  FeeCost budget() const { return {base ? base->toString() : std::string(), rate, amount}; }

  std::string sourceId;
  // The budget, which never changes.
  std::optional<costing::Decimal> base, rate;  ///< both or neither
  costing::Decimal amount;                     ///< 2 places
};

/// 计量方式 of a subcontract entry; the numbers are stored.
enum class MeteringMethod : std::uint8_t { ByBills, ByQuantity, LumpSum };
constexpr int MeteringMethodCount = 3;
/// 按清单工程量, 按实际数量, 总价包干.
const std::string& nameOf(MeteringMethod method);
/// What a subcontract entry can have as its contract type, besides none.
const std::vector<std::string>& contractTypes();

/// What an estimator can edit of a subcontract entry.
struct SubcontractData {
  Text code, name, features, unit;
  Text contractType;  ///< one of contractTypes(), or empty
  Text attachment, contentQuota;
  Text priceExpiryDate;  ///< yyyy-MM-dd, or empty
  Text applicableArea, remark;
  MeteringMethod metering = MeteringMethod::ByBills;
  costing::Decimal price;     ///< excluding tax, yuan per unit, 2 places; LumpSum: the sum itself
  costing::Decimal taxRate;   ///< per cent
  costing::Decimal quantity;  ///< as it was typed; counts with ByQuantity alone
  CostAccount* account = nullptr;

  friend bool operator==(const SubcontractData& a, const SubcontractData& b) {
    return a.code == b.code && a.name == b.name && a.features == b.features && a.unit == b.unit &&
           a.contractType == b.contractType && a.attachment == b.attachment &&
           a.contentQuota == b.contentQuota && a.priceExpiryDate == b.priceExpiryDate &&
           a.applicableArea == b.applicableArea && a.remark == b.remark &&
           a.metering == b.metering && a.price == b.price && a.taxRate == b.taxRate &&
           a.quantity == b.quantity && a.account == b.account;
  }
};

/// A bill that is assigned to a subcontract entry.
class SubcontractBill : public Record {
 public:
  SubcontractBill(std::int64_t id, Bill& ofBill) : Record(id), bill(ofBill) {}

  Bill& bill;
};

/// 分包. Its children are its SubcontractBills. Edited through records::Project alone.
class Subcontract : public Branch, public SubcontractData {
 public:
  using Branch::Branch;

  SubcontractData& data() { return *this; }
  const SubcontractData& data() const { return *this; }
  SubcontractBill& billAt(int row) const { return *static_cast<SubcontractBill*>(rows().at(row)); }

  // What follows from its data and its bills, computed anew each time.
  costing::Decimal billQuantity() const;    ///< cost quantities of its bills together
  costing::Decimal quantityNow() const;     ///< what is paid for
  costing::Decimal amount() const;          ///< excluding tax, 2 places
  costing::Decimal includedAmount() const;  ///< including tax, 2 places
};

}  // namespace records
