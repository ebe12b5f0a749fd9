#include "workbench/operators/indirect_fee_operators.h"

#include <array>
#include <optional>
#include <stdexcept>
#include <utility>

#include "host/app/scoped_undo.h"
#include "host/domain/field_keys.h"
#include "workbench/operators/cell_values.h"
#include "workbench/operators/columns.h"
#include "workbench/operators/refusal.h"

namespace operators {

using costing::Decimal;
using domain::Value;
using records::FeeCost;
using records::FeeData;
using records::FeeFigures;
using records::IndirectFeeGroup;
using records::IndirectFeeItem;

namespace keys = domain::keys;

namespace {

constexpr int RatePlaces = 4;
const base::Color Alarm{0xc0, 0x20, 0x20};

class GroupRow final : public records::Branch {
 public:
  explicit GroupRow(IndirectFeeGroup& of) : Branch(of.id()), group(&of) {}
  IndirectFeeGroup* group;
};

class ItemRow final : public records::Record {
 public:
  explicit ItemRow(IndirectFeeItem& of) : Record(of.id()), item(&of) {}
  scoped_refptr<IndirectFeeItem> item;
};

enum Column {
  Number,
  Code,
  Name,
  Basis,
  BudgetBase,
  BudgetRate,
  BudgetAmount,
  CostExpression,
  CostBase,
  CostRate,
  CostAmount,
  Difference,
  Account,
  ColumnCount
};

struct ColumnInfo {
  const std::string& key;
  const char* name;
  int type;
  int places = 0;
};

// A function, since the keys must be there first. The caption of the group comes behind the unit;
// a calculation has none.
const std::array<ColumnInfo, ColumnCount>& columns() {
  using namespace domain;
  constexpr int money = costing::MoneyPlaces;
  static const std::array<ColumnInfo, ColumnCount> all = {{
      {keys::IFNumber, "序号", IntegerField},
      {keys::IFCode, "编码", StringField},
      {keys::IFName, "名称", StringField},
      {keys::IFBasis, "计算基数", StringField},
      {keys::IFBudgetBase, "预算基数（元，）", FloatingPointField, money},
      {keys::IFBudgetRate, "预算费率（%，）", FloatingPointField, RatePlaces},
      {keys::IFBudgetAmount, "预算金额（元，）", FloatingPointField, money},
      {keys::IFCostExpression, "成本基数算式（）", StringField},
      {keys::IFCostBase, "成本基数（元，）", FloatingPointField, money},
      {keys::IFCostRate, "成本费率（%，）", FloatingPointField, RatePlaces},
      {keys::IFCostAmount, "成本金额（元，）", FloatingPointField, money},
      {keys::IFDifference, "预算减成本（元，）", FloatingPointField, money},
      {keys::CostAccount, "成本科目", StringField},
  }};
  return all;
}

int columnOf(const std::string& key) {
  static const ColumnNumbers numbers(columns());
  return numbers.of(key);
}

void addGroups(records::RowList& into, const records::RowList& from) {
  for (int row = 0; row < from.size(); ++row) {
    auto* group = dynamic_cast<IndirectFeeGroup*>(from.at(row));
    if (group == nullptr) continue;
    const scoped_refptr<GroupRow> made(new GroupRow(*group));
    into.append(made);
    addGroups(made->rows(), group->rows());
  }
}

std::string label(const IndirectFeeItem& item) {
  return "间接费“" + item.code + (item.code.empty() ? "" : " ") + item.name + "”";
}

bool put(Value& out, const std::optional<Decimal>& number) {
  if (number) out = number->toDouble();
  return number.has_value();
}

std::string textOf(const Value& value) {
  const auto* text = std::get_if<std::string>(&value);
  return text != nullptr ? trimmed(*text) : std::string();
}

/// The cost as it is kept: an amount that follows is not.
FeeCost kept(FeeCost cost) {
  if (cost.follows()) cost.amount = Decimal();
  return cost;
}

}  // namespace

std::unique_ptr<domain::DisplayTable> makeFeeGroupTable() {
  return makeTable("QCE_IndirectFeeGroup",
                   {{keys::IFName, "费用组", domain::StringField, 205},
                    {keys::IFCostAmount, "成本（元）", domain::FloatingPointField, 125, true}},
                   true);
}

std::unique_ptr<domain::DisplayTable> makeFeeItemTable() {
  auto table = std::make_unique<domain::DisplayTable>("QCE_IndirectFee");
  for (const ColumnInfo& info : columns()) {
    domain::DataField field =
        makeField(info.name, info.type, info.places, info.places != costing::MoneyPlaces);
    field.thousandsSeparators = info.type == domain::FloatingPointField;
    domain::ColumnDescriptor& column = table->getHeader()->addColumn(info.key, std::move(field));
    if (info.key == keys::IFNumber) column.width = 50;
    if (info.key == keys::IFCode) column.width = 90;
  }
  return table;
}

// ---------------------------------------------------------------------------------------------
// Groups

IndirectFeeLeftOperator::IndirectFeeLeftOperator(records::Project& project)
    : project_(project), root_(new records::Group) {
  addGroups(root_->rows(), project.feeGroups().rows());
}

IndirectFeeLeftOperator::~IndirectFeeLeftOperator() = default;

IndirectFeeGroup* IndirectFeeLeftOperator::groupOf(const proxy::Element* element) {
  const auto* row = dynamic_cast<const GroupRow*>(element);
  return row != nullptr ? row->group : nullptr;
}

bool IndirectFeeLeftOperator::getValue(const proxy::Element* element, const std::string& key,
                                       int role, Value& out) const {
  const IndirectFeeGroup* group = groupOf(element);
  if (group == nullptr) return false;
  if (role == domain::ToolTipRole) {
    const std::string of = group->unitWork != nullptr ? "（" + group->unitWork->name + "）" : "";
    return put(out, group->code + " " + group->name + of + "\n预算 " +
                        project_.feeBudget(*group).toString(costing::MoneyPlaces) + " 元，成本 " +
                        project_.feeTotal(*group).toString(costing::MoneyPlaces) + " 元");
  }
  if (role != domain::DisplayRole && role != domain::EditRole) return false;
  if (key == keys::IFName) return put(out, group->name);
  return key == keys::IFCostAmount && put(out, std::optional<Decimal>(project_.feeTotal(*group)));
}

// ---------------------------------------------------------------------------------------------
// Items

IndirectFeeRightOperator::IndirectFeeRightOperator(records::Project& project)
    : project_(project), root_(new records::Group) {}

IndirectFeeRightOperator::~IndirectFeeRightOperator() = default;

IndirectFeeItem* IndirectFeeRightOperator::itemOf(const proxy::Element* element) {
  const auto* row = dynamic_cast<const ItemRow*>(element);
  return row != nullptr ? row->item.get() : nullptr;
}

proxy::Element* IndirectFeeRightOperator::rowOf(const IndirectFeeItem& item) const {
  const bool shown = group_ != nullptr && item.parent() == group_;
  return shown ? root_->rows().at(item.row()) : nullptr;
}

void IndirectFeeRightOperator::setParentElement(proxy::Element* group) {
  group_ = IndirectFeeLeftOperator::groupOf(group);
  root_->rows().clear();
  if (group_ == nullptr) return;
  for (int row = 0; row < group_->rows().size(); ++row) {
    auto* item = dynamic_cast<IndirectFeeItem*>(group_->rows().at(row));
    if (item != nullptr) root_->rows().append(scoped_refptr<records::Record>(new ItemRow(*item)));
  }
}

// As the model makes the columns before: "成本金额（元，规费）".
std::string IndirectFeeRightOperator::formatHeader(const std::string& caption,
                                                   const std::string& name) const {
  const auto bracket = name.rfind("）");
  return bracket == std::string::npos ? name : std::string(name).insert(bracket, caption);
}

void IndirectFeeRightOperator::insertRow(int row) {
  auto& item = *static_cast<IndirectFeeItem*>(group_->rows().at(row));
  root_->rows().insert(row, scoped_refptr<records::Record>(new ItemRow(item)));
}

void IndirectFeeRightOperator::removeRow(int row) {
  root_->rows().take(row);
}

bool IndirectFeeRightOperator::display(const IndirectFeeItem& item, int column, int row,
                                       Value& out) const {
  switch (column) {
    case Number:
      out = row + 1;
      return true;
    case Code:
      return put(out, item.code);
    case Name:
      return put(out, item.name);
    case Basis:
      return put(out, item.basis);
    case BudgetBase:
      return put(out, item.base);
    case BudgetRate:
      return put(out, item.rate);
    case BudgetAmount:
      return put(out, std::optional<Decimal>(item.amount));
    case CostExpression:
      return put(out, item.cost ? item.cost->base : item.budget().base);
    case Account:
      return put(out, item.account != nullptr ? item.account->label : std::string());
    default:
      break;
  }
  const FeeFigures figures = project_.figures(item);
  if (column == CostBase) return put(out, figures.base);
  if (column == CostRate) return put(out, figures.rate);
  const Decimal amount = figures.amount;
  return put(out, std::optional<Decimal>(column == CostAmount ? amount : item.amount - amount));
}

bool IndirectFeeRightOperator::getValue(const proxy::Element* element, const std::string& key,
                                        int role, Value& out) const {
  const IndirectFeeItem* item = itemOf(element);
  const int column = columnOf(key);
  if (item == nullptr || column < 0) return false;
  if (role == domain::DisplayRole || role == domain::EditRole) {
    const bool shown = display(*item, column, element->row(), out);
    // What has no value shows as nothing and not as zero.
    if (!shown && role == domain::DisplayRole) out = std::string();
    return shown || role == domain::DisplayRole;
  }
  if (role != domain::ForegroundRole && role != domain::ToolTipRole) return false;
  const FeeFigures figures = project_.figures(*item);
  if (role == domain::ToolTipRole) {
    return column == CostExpression && !figures.problem.empty() && put(out, figures.problem);
  }
  const bool wrong = (column == CostExpression || column == CostAmount) && !figures.problem.empty();
  const bool loss = column == Difference && figures.amount > item->amount;
  if (wrong || loss) out = Alarm;
  return wrong || loss;
}

bool IndirectFeeRightOperator::isEditable(const proxy::Element* element,
                                          const std::string& key) const {
  const IndirectFeeItem* item = itemOf(element);
  if (item == nullptr) return false;
  switch (columnOf(key)) {
    case CostExpression:
    case CostRate:
    case CostAmount:
    case Account:
      return true;
    case Code:
    case Name:
    case Basis:
      return item->isOwn();
    default:
      return false;
  }
}

bool IndirectFeeRightOperator::setValue(proxy::Element* element, const std::string& key,
                                        const Value& value, int role) {
  IndirectFeeItem* item = itemOf(element);
  const int column = columnOf(key);
  if (item == nullptr || role != domain::EditRole || !isEditable(element, key)) return false;
  FeeData data = *item;
  const FeeCost before = item->cost.value_or(item->budget());
  FeeCost cost = before;
  switch (column) {
    case Code:
      data.code = textOf(value);
      break;
    case Name:
      data.name = textOf(value);
      break;
    case Basis:
      data.basis = textOf(value);
      break;
    case Account: {
      const std::string text = textOf(value);
      data.account = text.empty() ? nullptr : project_.findAccount(text);
      if (data.account == nullptr && !text.empty()) {
        return refuse("没有成本科目“" + text + "”，请输入已有科目的编码或名称。");
      }
      break;
    }
    case CostExpression:
      cost.base = textOf(value);
      break;
    case CostRate:
      cost.rate.reset();
      if (!readDecimal(value, cost.rate)) {
        return refuse(label(*item) + "的成本费率应为数字，请重新输入。");
      }
      break;
    default: {
      std::optional<Decimal> amount;
      if (!readDecimal(value, amount)) {
        return refuse(label(*item) + "的成本金额应为数字，请重新输入。");
      }
      if (cost.follows()) {
        return refuse(label(*item) +
                      "的成本金额由成本基数和费率计算得出，不能直接输入；"
                      "请修改成本基数或费率，或先清空费率再输入金额。");
      }
      cost.amount = amount.value_or(Decimal());
      break;
    }
  }
  // The money that was calculated stays when the calculation goes.
  if (before.follows() && !cost.follows()) cost.amount = project_.figures(*item).amount;
  if (!(cost == before)) {
    data.cost = kept(cost);
    if (!item->isOwn() && *data.cost == kept(item->budget())) data.cost.reset();
  }
  const app::ScopedUndo undo("");
  try {
    project_.setFee(*item, data);
  } catch (const records::Refusal& refusal) {
    return refuse(refusal.what());
  } catch (const std::overflow_error&) {
    return refuse(label(*item) + "的成本金额超出可计算的范围，未修改；请检查基数和费率。");
  }
  return true;
}

}  // namespace operators
