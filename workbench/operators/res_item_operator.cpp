#include "workbench/operators/res_item_operator.h"

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <typeinfo>
#include <utility>

#include "host/app/scoped_undo.h"
#include "host/base/number_text.h"
#include "host/domain/field_keys.h"
#include "host/domain/qce/res_item_marks.h"
#include "workbench/operators/cell_values.h"
#include "workbench/operators/columns.h"
#include "workbench/operators/refusal.h"

namespace operators {
namespace {

using costing::Decimal;
using costing::PackedDecimal;
using domain::Value;
using records::ItemField;
using records::ResourceGroup;
using records::ResourceItem;

constexpr int MaxPricePlaces = 6;
constexpr int MaxTaxRatePlaces = 4;
constexpr std::size_t MaxCodeBytes = std::size_t(64) * 3;
constexpr std::size_t MaxTextBytes = std::size_t(500) * 3;
constexpr std::size_t MaxAnnotationBytes = std::size_t(4000) * 3;

enum Column {
  Association,
  Account,
  Type,
  Code,
  Name,
  Spec,
  Unit,
  Amount,
  Budget,
  ExcludedPrice,
  TaxRate,
  IncludedPrice,
  ExcludedTotal,
  IncludedTotal,
  OwnerSupplied,
  Provisional,
  PriceAdjustable,
  Comment,
  ColumnCount
};

struct ColumnInfo {
  const std::string& key;
  const char* name;
  int type;
  int width;
  std::optional<ItemField> field;  ///< when it can be edited
  bool money = false;
};

// A function, since the keys must be there first.
const std::array<ColumnInfo, ColumnCount>& columns() {
  using namespace domain;
  static const std::array<ColumnInfo, ColumnCount> all = {{
      {keys::BRIAssociation, "关联", StringField, 50, {}},
      {keys::CostAccount, "成本科目", StringField, 150, ItemField::Account},
      {keys::BRIType, "类别", StringField, 60, {}},
      {keys::BRICode, "编码", StringField, 110, ItemField::Code},
      {keys::BRIName, "名称", StringField, 180, ItemField::Name},
      {keys::BRISpec, "规格型号", StringField, 140, ItemField::Spec},
      {keys::BRIUnit, "单位", StringField, 60, ItemField::Unit},
      {keys::BRIAmount, "数量", FloatingPointField, 110, ItemField::Quantity},
      {keys::BRIBudgetTotalCost, "预算合价（元）", FloatingPointField, 130, {}, true},
      {keys::BRIExcludedTaxFee, "不含税单价（元）", FloatingPointField, 130, ItemField::Price,
       true},
      {keys::BRITaxRate, "税率（%）", FloatingPointField, 80, ItemField::TaxRate},
      {keys::BRIIncludedTaxFee, "含税单价（元）", FloatingPointField, 120, {}, true},
      {keys::BRIExcludedTaxTotalCost, "不含税合价（元）", FloatingPointField, 130, {}, true},
      {keys::BRIIncludedTaxTotalCost, "含税合价（元）", FloatingPointField, 130, {}, true},
      {keys::BRIIsProvidedByJia, "甲供", BoolField, 50, ItemField::OwnerSupplied},
      {keys::BRIProvisional, "暂估", BoolField, 50, ItemField::Provisional},
      {keys::BRIPriceAdjustable, "可调价", BoolField, 60, ItemField::PriceAdjustable},
      {keys::BRIComment, "批注", StringField, 180, ItemField::Annotation},
  }};
  return all;
}

int lookedUpColumn(const std::string& key) {
  static const ColumnNumbers numbers(columns());
  return numbers.of(key);
}

// A view asks cell after cell with the keys of one display table. Where such a key stands tells
// which column it was the last time; what it says tells whether it still is.
int columnOf(const std::string& key) {
  struct Seen {
    const std::string* key = nullptr;
    int column = -1;
  };
  static std::array<Seen, 64> seen;
  Seen& slot = seen[(reinterpret_cast<std::uintptr_t>(&key) / 64) % seen.size()];
  if (slot.key == &key && columns()[static_cast<std::size_t>(slot.column)].key == key) {
    return slot.column;
  }
  const int column = lookedUpColumn(key);
  if (column >= 0) slot = {&key, column};
  return column;
}

// Nothing derives from a resource item, so its type decides without a search through bases.
const ResourceItem* itemOf(const proxy::Element* element) {
  return element != nullptr && typeid(*element) == typeid(ResourceItem)
             ? static_cast<const ResourceItem*>(element)
             : nullptr;
}

ResourceItem* itemOf(proxy::Element* element) {
  return const_cast<ResourceItem*>(itemOf(static_cast<const proxy::Element*>(element)));
}

std::string nameOf(const ResourceItem& item) {
  return "“" + item.code().str() + " " + item.name().str() + "”";
}

/// Other items of the group that have a code; null where there is none.
struct SameCode {
  const ResourceItem* twin = nullptr;   ///< gathering would have made one item of the two
  const ResourceItem* other = nullptr;  ///< the first with another name or unit
};

SameCode findSameCode(const ResourceItem& item, records::Text code) {
  SameCode found;
  const records::RowList& rows = item.group()->rows();
  for (int row = 0; row < rows.size(); ++row) {
    const auto& each = *static_cast<const ResourceItem*>(rows.at(row));
    if (&each == &item || each.code() != code) continue;
    if (each.name() != item.name() || each.unit() != item.unit()) {
      if (found.other == nullptr) found.other = &each;
    } else if (each.spec() == item.spec() && each.price() == item.price() &&
               each.taxRate() == item.taxRate() && each.account() == item.account() &&
               each.ownerSupplied() == item.ownerSupplied() &&
               each.provisional() == item.provisional() &&
               each.priceAdjustable() == item.priceAdjustable()) {
      found.twin = &each;
    }
  }
  return found;
}

std::optional<bool> readBool(const Value& value) {
  if (const auto* flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* number = std::get_if<int>(&value)) return *number != 0;
  if (std::holds_alternative<std::monostate>(value)) return false;
  return {};
}

bool flag(const ResourceItem& item, int column) {
  return column == OwnerSupplied ? item.ownerSupplied()
         : column == Provisional ? item.provisional()
                                 : item.priceAdjustable();
}

/// The text of a text column; null for the others.
const std::string* textOf(const ResourceItem& item, int column) {
  static const std::string mark = "√";
  static const std::string none;
  switch (column) {
    case Association:
      return item.associated() ? &mark : &none;
    case Account:
      return item.account() != nullptr ? &item.account()->label : &none;
    case Type:
      return &records::nameOf(item.category());
    case Code:
      return &item.code().str();
    case Name:
      return &item.name().str();
    case Spec:
      return &item.spec().str();
    case Unit:
      return &item.unit().str();
    case Comment:
      return &item.annotation().str();
    default:
      return nullptr;
  }
}

bool isFlag(int column) {
  return column == OwnerSupplied || column == Provisional || column == PriceAdjustable;
}

// Whether every item below the element is associated; true without any.
bool allAssociated(const proxy::Element& element) {
  if (const ResourceItem* item = itemOf(&element)) return item->associated();
  for (int row = 0; row < element.childCount(); ++row) {
    if (!allAssociated(*element.child(row))) return false;
  }
  return true;
}

// A filter reads one text of row after row, and shared texts lie all over the memory: while this
// row is being decided, the texts of later ones are on their way, step by step.
void fetchAhead(const ResourceItem& item, int column) {
  constexpr int Step = 8;
  const proxy::Element* parent = item.parent();
  if (parent == nullptr) return;
  const int row = item.row();
  if (const proxy::Element* far = parent->child(row + 3 * Step)) {
    __builtin_prefetch(far);
    __builtin_prefetch(reinterpret_cast<const char*>(far) + 64);
  }
  if (const ResourceItem* later = itemOf(parent->child(row + 2 * Step))) {
    if (const std::string* text = textOf(*later, column)) __builtin_prefetch(text);
  }
  if (const ResourceItem* next = itemOf(parent->child(row + Step))) {
    if (const std::string* text = textOf(*next, column)) __builtin_prefetch(text->data());
  }
}

}  // namespace

std::unique_ptr<domain::DisplayTable> makeResItemTable() {
  auto table = makeTable("QCE_ResItem", columns());
  domain::DisplayRow& header = *table->getHeader();
  header.addHeaderGroup(
      "QCE_ResItemPrice", "成本单价",
      {domain::keys::BRIExcludedTaxFee, domain::keys::BRITaxRate, domain::keys::BRIIncludedTaxFee});
  header.addHeaderGroup(
      "QCE_ResItemTotal", "成本合价",
      {domain::keys::BRIExcludedTaxTotalCost, domain::keys::BRIIncludedTaxTotalCost});
  header.addHeaderGroup("QCE_ResItemFlags", "标记",
                        {domain::keys::BRIIsProvidedByJia, domain::keys::BRIProvisional,
                         domain::keys::BRIPriceAdjustable});
  return table;
}

ResItemOperator::ResItemOperator(records::Project& project) : project_(project) {
  rebuildGroup();
}

ResItemOperator::~ResItemOperator() = default;

proxy::ElementGroup* ResItemOperator::getRoot() {
  return root_.get();
}

bool ResItemOperator::display(const ResourceItem& item, int column, Value& out) const {
  if (const std::string* text = textOf(item, column)) {
    domain::AssignText(out, *text);
    return true;
  }
  switch (column) {
    case Amount:
      out = item.quantity().toDouble();
      return true;
    case Budget:
      out = item.budgetAmount().toDouble();
      return true;
    case ExcludedPrice:
      out = item.price().toDouble();
      return true;
    case TaxRate:
      out = item.taxRate().toDouble();
      return true;
    case IncludedPrice:
      out = costing::includedTaxPriceShown(item.price(), item.taxRate());
      return true;
    case ExcludedTotal:
      out = item.excludedAmount().toDouble();
      return true;
    case IncludedTotal:
      out = item.includedAmount().toDouble();
      return true;
    case OwnerSupplied:
    case Provisional:
    case PriceAdjustable:
      out = flag(item, column);
      return true;
    default:
      return false;
  }
}

bool ResItemOperator::displayGroup(const ResourceGroup& group, int column, Value& out) const {
  switch (column) {
    case Name:
      domain::AssignText(
          out, group.category() ? records::nameOf(*group.category()) : group.unitWork().name);
      return true;
    case Code:
      if (group.category()) return false;
      domain::AssignText(out, group.unitWork().code);
      return true;
    case Amount:
    case ExcludedPrice:
    case TaxRate:
    case IncludedPrice: {
      // An empty text: a missing number would be shown as 0.
      static const std::string none;
      domain::AssignText(out, none);
      return true;
    }
    case Budget:
      out = group.totals().budget.toDouble();
      return true;
    case ExcludedTotal:
      out = group.totals().excluded.toDouble();
      return true;
    case IncludedTotal:
      out = group.totals().included.toDouble();
      return true;
    default:
      return false;
  }
}

const std::string* ResItemOperator::peekText(const proxy::Element* element, const std::string& key,
                                             int role) const {
  if (role != domain::DisplayRole && role != domain::EditRole) return nullptr;
  const ResourceItem* item = itemOf(element);
  if (item == nullptr) return nullptr;
  const int column = columnOf(key);
  // Rows are read from left to right, and shared texts lie all over the memory: while this one is
  // made visible, the next ones are on their way.
  if (column == Account) {
    for (const records::Text text : {item->code(), item->name(), item->spec()}) {
      __builtin_prefetch(&text.str());
    }
  } else if (column == Code) {
    __builtin_prefetch(item->name().str().data());
    __builtin_prefetch(item->spec().str().data());
  }
  return textOf(*item, column);
}

bool ResItemOperator::getValue(const proxy::Element* element, const std::string& key, int role,
                               Value& out) const {
  const int column = columnOf(key);
  if (column < 0) return false;
  const ResourceItem* item = itemOf(element);
  if (item == nullptr) {
    const auto* group = dynamic_cast<const ResourceGroup*>(element);
    if (group == nullptr) return false;
    switch (role) {
      case domain::DisplayRole:
        return displayGroup(*group, column, out);
      case domain::FontRole:
        out = base::Font{true, "Noto Sans CJK SC"};
        return true;
      case domain::BackgroundRole:
        out = group->category() ? base::Color{245, 248, 252} : base::Color{226, 236, 247};
        return true;
      default:
        return false;
    }
  }
  switch (role) {
    case domain::DisplayRole:
    case domain::EditRole:
      // A flag is a check box, without a text beside it.
      if (isFlag(column) && role == domain::DisplayRole) return false;
      return display(*item, column, out);
    case domain::CheckStateRole:
      if (!isFlag(column)) return false;
      out = flag(*item, column);
      return true;
    case domain::BackgroundRole:
      if (column == Name && !item->annotation().empty()) {
        out = domain::qce::marks::Annotated;
      } else if (item->ownerSupplied()) {
        out = domain::qce::marks::ProvidedByJia;
      } else {
        return false;
      }
      return true;
    case domain::ForegroundRole:
      if (item->counts() && !item->provisional()) return false;
      out = item->counts() ? domain::qce::marks::Provisional : domain::qce::marks::NotCounted;
      return true;
    case domain::ToolTipRole:
      if (!item->annotation().empty()) {
        domain::AssignText(out, item->annotation().str());
      } else if (item->subcontract() != nullptr) {
        domain::AssignText(out, "已归集到分包，费用由分包计入成本，此处成本合价为 0");
      } else if (!item->linked()) {
        domain::AssignText(out, "未关联到成本，费用不计入成本，此处成本合价为 0");
      } else {
        return false;
      }
      return true;
    default:
      return false;
  }
}

bool ResItemOperator::getField(const proxy::Element* element, const std::string& key,
                               Value& out) const {
  const int column = columnOf(key);
  if (column < 0) return false;
  if (const ResourceItem* item = itemOf(element)) {
    fetchAhead(*item, column);
    return display(*item, column, out);
  }
  const auto* group = dynamic_cast<const ResourceGroup*>(element);
  if (group == nullptr) return false;
  // Filters read flags and texts of every row, grouping rows too. A caption is no field of theirs:
  // a group is to be shown for the items below it alone.
  switch (columns()[static_cast<std::size_t>(column)].type) {
    case domain::BoolField:
      out = false;
      return true;
    case domain::StringField:
      // Associated as a whole once all below it is, so that it goes with the last one that is not.
      domain::AssignText(out, column == Association && allAssociated(*group) ? "√" : "");
      return true;
    default:
      return displayGroup(*group, column, out);
  }
}

bool ResItemOperator::setValue(proxy::Element* element, const std::string& key, const Value& value,
                               int role) {
  const int column = columnOf(key);
  ResourceItem* item = itemOf(element);
  if (column < 0 || item == nullptr) return false;
  const std::optional<ItemField> field = columns()[static_cast<std::size_t>(column)].field;
  if (!field || (role != domain::EditRole && !(role == domain::CheckStateRole && isFlag(column)))) {
    return false;
  }
  const std::string& title = records::nameOf(*field);
  const auto write = [&](const records::FieldValue& content) {
    const app::ScopedUndo undo("");
    try {
      project_.set(*item, *field, content);
    } catch (const std::overflow_error&) {
      return refuse(nameOf(*item) + "的" + title + "过大，合价超出可计算的范围，未修改。");
    } catch (const records::Refusal& refusal) {
      return refuse(refusal.what());
    }
    return true;
  };

  switch (*field) {
    case ItemField::OwnerSupplied:
    case ItemField::Provisional:
    case ItemField::PriceAdjustable: {
      const std::optional<bool> on = readBool(value);
      return on && write(*on);
    }
    case ItemField::Price:
    case ItemField::TaxRate:
    case ItemField::Quantity: {
      // A cleared price is no price: 0, as in a list that is still to be priced.
      std::optional<Decimal> number;
      if (!readDecimal(value, number)) {
        return refuse(nameOf(*item) + "的" + title + "应为数字，请重新输入。");
      }
      const Decimal content = number.value_or(Decimal());
      const bool rate = *field == ItemField::TaxRate;
      const Decimal limit = rate ? Decimal(100) : Decimal(1000000000);
      if (content.isNegative() || content > limit) {
        return refuse(nameOf(*item) + "的" + title + "应在 0 到 " +
                      (rate ? "100" : "1,000,000,000") + " 之间，请重新输入。");
      }
      const int places = rate                         ? MaxTaxRatePlaces
                         : *field == ItemField::Price ? MaxPricePlaces
                                                      : costing::MaxQuantityPlaces;
      if (content.rounded(places) != content) {
        return refuse(nameOf(*item) + "的" + title + "最多 " + std::to_string(places) +
                      " 位小数，请重新输入。");
      }
      return write(PackedDecimal(content));
    }
    default:
      break;
  }

  std::string text;
  if (const auto* typed = std::get_if<std::string>(&value)) {
    text = *field == ItemField::Annotation ? *typed : trimmed(*typed);
  } else if (!std::holds_alternative<std::monostate>(value)) {
    return false;
  }
  if (*field == ItemField::Account) {
    records::CostAccount* account = nullptr;
    if (!text.empty()) {
      account = project_.findAccount(text);
      if (account == nullptr) {
        return refuse("没有成本科目“" + text + "”，请输入已有科目的编码或名称。");
      }
    }
    return write(account);
  }
  if ((*field == ItemField::Code || *field == ItemField::Name) && text.empty()) {
    return refuse(nameOf(*item) + "的" + title + "不能为空，请重新输入。");
  }
  const std::size_t limit = *field == ItemField::Code         ? MaxCodeBytes
                            : *field == ItemField::Annotation ? MaxAnnotationBytes
                                                              : MaxTextBytes;
  if (text.size() > limit) {
    return refuse(nameOf(*item) + "的" + title + "过长，最多 " + std::to_string(limit / 3) +
                  " 个汉字，请缩短后再输入。");
  }
  const records::Text content = project_.texts.intern(text);
  if (*field != ItemField::Code || content == item->code()) return write(content);

  // A code may stand for several items of a category, as it does in source files. Two that nothing
  // tells apart are a mistake, and another name or unit most likely is one.
  const SameCode same = findSameCode(*item, content);
  const std::string& category = records::nameOf(item->category());
  const std::string old = nameOf(*item);
  if (same.twin != nullptr) {
    return refuse(old + "的编码未修改：“" + item->group()->unitWork().name + "”的" + category +
                  "中已有" + nameOf(*same.twin) +
                  "，规格型号、单位、单价、税率、成本科目和标记也都相同，两项无法区分。"
                  "请改用别的编码，或直接使用已有的那一项。");
  }
  if (!write(content)) return false;
  if (same.other != nullptr) {
    notify(old + "的编码已改为“" + text + "”，与" + category + nameOf(*same.other) +
           "的编码相同，但名称或单位不同。如系误输，请撤销（Ctrl+Z）或改用别的编码。");
  }
  return true;
}

bool ResItemOperator::isEnabled(const proxy::Element* element, const std::string& key) const {
  return element != nullptr && columnOf(key) >= 0;
}

bool ResItemOperator::isEditable(const proxy::Element* element, const std::string& key) const {
  const int column = columnOf(key);
  const ResourceItem* item = itemOf(element);
  if (column < 0 || isFlag(column) || item == nullptr) return false;
  if (column == Amount) return !project_.bookings().quantityFollows(*item);
  if (column == Unit) return !item->gathered();
  return columns()[static_cast<std::size_t>(column)].field.has_value();
}

bool ResItemOperator::isCheckable(const proxy::Element* element, const std::string& key) const {
  return isFlag(columnOf(key)) && itemOf(element) != nullptr;
}

void ResItemOperator::setSubProject(proxy::Element* subProject) {
  subProject_ = dynamic_cast<records::StructureNode*>(subProject);
  if (const auto* row = dynamic_cast<ResourceGroup*>(subProject)) subProject_ = &row->unitWork();
  rebuildGroup();
}

void ResItemOperator::rebuildGroup() {
  // The rows go back to the whole project's group first: a row stands in one group at a time.
  root_.reset();
  project_.arrange();
  if (subProject_ == nullptr) {
    root_.reset(&project_.subProjects());
    return;
  }
  root_.reset(new records::Group);
  for (const records::StructureNode* unitWork : project_.unitWorks()) {
    const proxy::Element* node = unitWork;
    while (node != nullptr && node != subProject_) node = node->parent();
    if (node == nullptr) continue;
    root_->rows().append(scoped_refptr<records::Record>(project_.subProject(*unitWork)));
  }
}

bool ResItemOperator::getComment(const proxy::Element* element, std::string& out) const {
  const ResourceItem* item = itemOf(element);
  if (item == nullptr) return false;
  out = item->annotation().str();
  return true;
}

bool ResItemOperator::setComment(proxy::Element* element, const std::string& comment) {
  return setValue(element, domain::keys::BRIComment, comment, domain::EditRole);
}

}  // namespace operators
