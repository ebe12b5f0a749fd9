#include "workbench/operators/notional_pooling_operator.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <typeinfo>
#include <utility>

#include "host/app/scoped_undo.h"
#include "host/domain/field_keys.h"
#include "workbench/operators/columns.h"
#include "workbench/operators/refusal.h"

namespace operators {

using costing::Decimal;
using domain::Value;

namespace keys = domain::keys;

/// A bill with something left. Its children are ItemRows.
class NotionalPoolingOperator::BillRow final : public records::Branch {
 public:
  explicit BillRow(records::Bill& of) : Branch(of.id()), bill(of) {}

  records::Bill& bill;
};

/// A budget item with something left.
class NotionalPoolingOperator::ItemRow final : public records::Record {
 public:
  ItemRow(records::BudgetItem& of, const Decimal& left)
      : Record(of.id()), item(of), remaining(left) {}

  const BillRow& billRow() const { return *static_cast<const BillRow*>(parent()); }
  /// What the row shows, which stands for all that remains.
  Decimal shown() const { return remaining.rounded(costing::MaxQuantityPlaces); }

  records::BudgetItem& item;
  const Decimal remaining;
};

namespace {

enum Column {
  Choose,
  Type,
  Code,
  Name,
  Spec,
  Unit,
  Amount,
  CollectionAmount,
  UnitPrice,
  TotalCost,
  Coefficient,
  ColumnCount
};

const std::array<PlainColumn, ColumnCount>& columns() {
  using namespace domain;
  static const std::string spec = "QCE_NPSpec";
  static const std::array<PlainColumn, ColumnCount> all = {{
      {keys::NPChoose, "选择", BoolField, 42},
      {keys::NPType, "类别", StringField, 70},
      {keys::NPCode, "编码", StringField, 112},
      {keys::NPName, "名称", StringField, 138},
      {spec, "规格型号", StringField, 78},  // what tells items of one name apart
      {keys::NPUnit, "单位", StringField, 42},
      {keys::NPAmount, "可归集数量", FloatingPointField, 82},
      {keys::NPCollectionAmount, "归集数量", FloatingPointField, 78},
      {keys::NPExcludeTaxUnitPrice, "不含税单价（元）", FloatingPointField, 120, true},
      {keys::NPExcludeTaxTotalCost, "不含税合价（元）", FloatingPointField, 125, true},
      {keys::NPQuantutyCoefficient, "数量系数", FloatingPointField, 75},
  }};
  return all;
}

int columnOf(const std::string& key) {
  static const ColumnNumbers numbers(columns());
  return numbers.of(key);
}

// What of the budget amount counts in the home of the budget item by its remainder.
Decimal remainingAmount(const records::Project& project, const records::BudgetItem& item) {
  const Decimal amount = item.amount.value();
  return amount - costing::shareUpTo(amount, project.quantity(item), project.pooled(item));
}

const std::string* textOf(const records::Bill& bill, int column) {
  static const std::string type = "清单";
  static const std::string none;
  switch (column) {
    case Type:
      return &type;
    case Code:
      return &bill.code.str();
    case Name:
      return &bill.name.str();
    case Unit:
      return &bill.unit.str();
    case Choose:
      return nullptr;
    default:
      return &none;  // a missing number would be shown as 0
  }
}

const std::string* textOf(const records::BudgetItem& item, int column) {
  switch (column) {
    case Type:
      return &records::nameOf(item.category);
    case Code:
      return &item.code.str();
    case Name:
      return &item.name.str();
    case Spec:
      return &item.spec.str();
    case Unit:
      return &item.unit.str();
    default:
      return nullptr;
  }
}

}  // namespace

std::unique_ptr<domain::DisplayTable> makeNotionalPoolingTable() {
  return makeTable("QCE_NotionalPooling", columns());
}

NotionalPoolingOperator::NotionalPoolingOperator(records::Project& project)
    : project_(project), root_(new records::Group) {}

NotionalPoolingOperator::~NotionalPoolingOperator() = default;

const NotionalPoolingOperator::BillRow* NotionalPoolingOperator::billRow(
    const proxy::Element* element) {
  return element != nullptr && typeid(*element) == typeid(BillRow)
             ? static_cast<const BillRow*>(element)
             : nullptr;
}

const NotionalPoolingOperator::ItemRow* NotionalPoolingOperator::itemRow(
    const proxy::Element* element) {
  return element != nullptr && typeid(*element) == typeid(ItemRow)
             ? static_cast<const ItemRow*>(element)
             : nullptr;
}

// ---------------------------------------------------------------------------------------------
// Rows

bool NotionalPoolingOperator::hasRemainder(const records::Project& project,
                                           const records::Bill& bill) {
  for (int row = 0; row < bill.childCount(); ++row) {
    const auto& item = static_cast<const records::BudgetItem&>(*bill.child(row));
    if (project.remaining(item) > Decimal()) return true;
  }
  return false;
}

void NotionalPoolingOperator::setSubEngineerBills(std::vector<proxy::Element*>& bills) {
  rowsByName_.clear();
  root_.reset(new records::Group);
  root_->rows().reserve(static_cast<int>(bills.size()));
  for (proxy::Element* element : bills) {
    auto* bill = dynamic_cast<records::Bill*>(element);
    if (bill == nullptr) continue;
    scoped_refptr<BillRow> row(new BillRow(*bill));
    row->rows().reserve(bill->childCount());
    for (int i = 0; i < bill->childCount(); ++i) {
      auto& item = static_cast<records::BudgetItem&>(*bill->child(i));
      const Decimal remaining = project_.remaining(item);
      if (remaining > Decimal()) {
        row->rows().append(scoped_refptr<records::Record>(new ItemRow(item, remaining)));
      }
    }
    if (row->childCount() > 0) root_->rows().append(std::move(row));
  }
}

proxy::ElementGroup* NotionalPoolingOperator::getRoot() {
  return root_.get();
}

const proxy::Element* NotionalPoolingOperator::getOwningBill(const proxy::Element* row) const {
  if (const ItemRow* item = itemRow(row)) return &item->billRow().bill;
  const BillRow* bill = billRow(row);
  return bill != nullptr ? &bill->bill : nullptr;
}

std::vector<proxy::Element*> NotionalPoolingOperator::getSameRowsOfOtherBills(
    const proxy::Element* row) const {
  std::vector<proxy::Element*> same;
  const ItemRow* of = itemRow(row);
  if (of == nullptr) return same;
  if (rowsByName_.empty()) {
    for (int i = 0; i < root_->size(); ++i) {
      proxy::Element* bill = root_->member(i);
      for (int j = 0; j < bill->childCount(); ++j) {
        rowsByName_[itemRow(bill->child(j))->item.name.str()].push_back(bill->child(j));
      }
    }
  }
  const records::StructureNode* unitWork = project_.unitWorkOf(of->item);
  for (proxy::Element* other : rowsByName_[of->item.name.str()]) {
    const ItemRow* found = itemRow(other);
    if (&found->billRow() != &of->billRow() && project_.sameResource(of->item, found->item) &&
        project_.unitWorkOf(found->item) == unitWork) {
      same.push_back(other);
    }
  }
  return same;
}

// ---------------------------------------------------------------------------------------------
// Cells

const std::string* NotionalPoolingOperator::peekText(const proxy::Element* element,
                                                     const std::string& key, int role) const {
  if (role != domain::DisplayRole && role != domain::EditRole) return nullptr;
  const int column = columnOf(key);
  if (const ItemRow* row = itemRow(element)) return textOf(row->item, column);
  const BillRow* bill = billRow(element);
  return bill != nullptr ? textOf(bill->bill, column) : nullptr;
}

bool NotionalPoolingOperator::getValue(const proxy::Element* element, const std::string& key,
                                       int role, Value& out) const {
  const int column = columnOf(key);
  const ItemRow* row = itemRow(element);
  const BillRow* bill = billRow(element);
  if (column < 0 || (row == nullptr && bill == nullptr)) return false;
  if (row == nullptr && role == domain::FontRole) {
    out = base::Font{true, "Noto Sans CJK SC"};
    return true;
  }
  if (row == nullptr && role == domain::BackgroundRole) {
    out = base::Color{245, 248, 252};
    return true;
  }
  if (role == domain::ToolTipRole && column == Name && bill != nullptr &&
      !bill->bill.features.empty()) {
    domain::AssignText(out, bill->bill.features.str());
    return true;
  }
  if (role != domain::DisplayRole && role != domain::EditRole) return false;
  if (const std::string* text = peekText(element, key, role)) {
    domain::AssignText(out, *text);
    return true;
  }
  if (row == nullptr) return false;
  switch (column) {
    case Amount:
    case CollectionAmount:
      out = row->shown().toDouble();
      return true;
    case UnitPrice:
      out = row->item.price.toDouble();
      return true;
    case TotalCost:
      out = remainingAmount(project_, row->item).toDouble();
      return true;
    case Coefficient:
      out = item_ ? project_.terms(*item_, row->billRow().bill).coefficient.toDouble() : 1.0;
      return true;
    default:
      return false;
  }
}

bool NotionalPoolingOperator::isEnabled(const proxy::Element* element,
                                        const std::string& key) const {
  return element != nullptr && columnOf(key) >= 0;
}

bool NotionalPoolingOperator::isEditable(const proxy::Element* element,
                                         const std::string& key) const {
  return itemRow(element) != nullptr && columnOf(key) == CollectionAmount;
}

bool NotionalPoolingOperator::isCheckable(const proxy::Element* element,
                                          const std::string& key) const {
  return element != nullptr && columnOf(key) == Choose;
}

// ---------------------------------------------------------------------------------------------
// Pooling

void NotionalPoolingOperator::setCurrentQCEGLJItem(proxy::Element* item) {
  item_.reset(dynamic_cast<records::ResourceItem*>(item));
}

std::string NotionalPoolingOperator::getCurrentQCEResItemType() const {
  return item_ ? records::nameOf(item_->category()) : std::string();
}

double NotionalPoolingOperator::getMaxCollectionAmount(const proxy::Element* row) const {
  const ItemRow* item = itemRow(row);
  return item != nullptr ? std::max(item->remaining, item->shown()).toDouble() : 0.0;
}

void NotionalPoolingOperator::collectToQCEResItem(
    const std::map<proxy::Element*, double>& quantities) {
  if (!item_) return;
  std::vector<std::pair<const ItemRow*, Decimal>> pooled;
  for (const auto& [element, quantity] : quantities) {
    const ItemRow* row = itemRow(element);
    const std::optional<Decimal> typed = Decimal::fromDouble(quantity);
    if (row == nullptr || !typed || typed->isZero()) continue;
    // What is shown stands for what remains, and so does what lies between the two.
    const bool all = *typed == row->shown() || (*typed > row->remaining && *typed < row->shown());
    pooled.emplace_back(row, all ? row->remaining : *typed);
  }
  // In the order of the project, not of the memory.
  std::sort(pooled.begin(), pooled.end(),
            [](const auto& a, const auto& b) { return a.first->id() < b.first->id(); });

  app::ScopedUndo undo("归集到成本");
  std::string refusal;
  try {
    for (const auto& [row, quantity] : pooled) project_.pool(row->item, *item_, quantity);
    return;
  } catch (const records::Refusal& refused) {
    refusal = refused.what();
  } catch (const std::overflow_error&) {
    refusal = "“" + item_->code().str() + " " + item_->name().str() +
              "”归集后的合价超出可计算的范围，本次归集已全部取消。";
  }
  undo.abandon();
  refuse(refusal);
}

}  // namespace operators
