#include "workbench/operators/sub_engineering_operator.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <typeinfo>

#include "host/app/scoped_undo.h"
#include "host/base/number_text.h"
#include "host/domain/field_keys.h"
#include "workbench/operators/cell_values.h"
#include "workbench/operators/columns.h"
#include "workbench/operators/refusal.h"

namespace operators {
namespace {

using domain::Value;
using records::Bill;
using records::BudgetItem;
using records::StructureNode;
namespace keys = domain::keys;

constexpr std::size_t MaxCodeBytes = std::size_t(64) * 3;
constexpr std::size_t MaxTextBytes = std::size_t(500) * 3;
constexpr std::size_t MaxFeaturesBytes = std::size_t(4000) * 3;

enum Column {
  Code,
  Name,
  Features,
  Unit,
  TenderQuantity,
  Expression,
  CostQuantity,
  UnitPrice,
  Budget,
  Cost,
  Type,
  Account,
  Remark,
  ColumnCount
};

struct ColumnInfo {
  const std::string& key;
  const char* name;
  int type;
  int width;
  bool editable = false;
  bool money = false;
};

// A function, since the keys must be there first.
const std::array<ColumnInfo, ColumnCount>& columns() {
  using namespace domain;
  static const std::array<ColumnInfo, ColumnCount> all = {{
      {keys::SECode, "编码", StringField, 140, true},
      {keys::SEName, "名称", StringField, 210, true},
      {keys::SEProjFeatures, "项目特征", StringField, 160, true},
      {keys::SEUnit, "单位", StringField, 55, true},
      {keys::SEQuantityBillTendering, "招标工程量", FloatingPointField, 100},
      {keys::SECalcExpr, "计算式", StringField, 120, true},
      {keys::SEQuantity, "成本工程量", FloatingPointField, 100, true},
      {keys::BRIBillUnitPrice, "单价（元）", FloatingPointField, 100, false, true},
      {keys::SEBudgetTotalCost, "预算合价（元）", FloatingPointField, 130, false, true},
      {keys::SECostTotalCost, "成本合价（元）", FloatingPointField, 130, false, true},
      {keys::SEType, "类型", StringField, 90, true},
      {keys::CostAccount, "成本科目", StringField, 150, true},
      {keys::SERemark, "备注", StringField, 160, true},
  }};
  return all;
}

int columnOf(const std::string& key) {
  // Thirteen keys of different lengths and ends: comparing them is cheaper than hashing one.
  for (int i = 0; i < ColumnCount; ++i) {
    if (columns()[static_cast<std::size_t>(i)].key == key) return i;
  }
  return -1;
}

// Nothing derives from these, so their types decide without a search through bases.
template <class Kind>
const Kind* as(const proxy::Element* element) {
  return element != nullptr && typeid(*element) == typeid(Kind) ? static_cast<const Kind*>(element)
                                                                : nullptr;
}

const std::string& types(std::size_t number) {
  static const std::array<std::string, 5> all = {"分部分项", "单价措施", "总价措施", "专业分包",
                                                 "其他"};
  return all[number];
}
constexpr std::size_t TypeCount = 5;

/// The text of a text column; null for the others, and for what is not kept as it is shown.
const std::string* textOf(const Bill& bill, int column) {
  static const std::string none;
  switch (column) {
    case Code:
      return &bill.code.str();
    case Name:
      return &bill.name.str();
    case Features:
      return &bill.features.str();
    case Unit:
      return &bill.unit.str();
    case Expression:
      return bill.quantityLines.empty() ? &bill.expression.str() : nullptr;
    case Type:
      return &bill.type.str();
    case Account:
      return bill.account != nullptr ? &bill.account->label : &none;
    case Remark:
      return &bill.remark.str();
    default:
      return nullptr;
  }
}

const std::string* textOf(const BudgetItem& item, int column) {
  static const std::string none;
  switch (column) {
    case Code:
      return &item.code.str();
    case Name:
      return &item.name.str();
    case Features:
      return &item.spec.str();
    case Unit:
      return &item.unit.str();
    case Type:
      return &records::nameOf(item.category);
    case Account: {
      const records::ResourceItem* home = item.resourceItem;
      return home != nullptr && home->account() != nullptr ? &home->account()->label : &none;
    }
    case Expression:
    case Remark:
      return &none;
    default:
      return nullptr;
  }
}

const std::string* textOf(const StructureNode& node, int column) {
  static const std::string none;
  switch (column) {
    case Code:
      return &node.code;
    case Name:
      return &node.name;
    case Features:
    case Unit:
    case Expression:
    case Type:
    case Account:
    case Remark:
      return &none;
    default:
      return nullptr;
  }
}

bool displayItem(const BudgetItem& item, int column, Value& out) {
  const Bill& bill = records::billOf(item);
  switch (column) {
    case TenderQuantity:
      out = records::quantityOf(item).toDouble();
      return true;
    case CostQuantity:
      out = costing::scaledQuantity(records::quantityOf(item), bill.quantityForCost(),
                                    bill.quantity.value())
                .toDouble();
      return true;
    case UnitPrice:
      out = item.price.toDouble();
      return true;
    case Budget:
      out = item.amount.toDouble();
      return true;
    default:
      return false;
  }
}

std::string nameOf(const Bill& bill) {
  return "清单“" + bill.code.str() + " " + bill.name.str() + "”";
}

}  // namespace

std::unique_ptr<domain::DisplayTable> makeSubEngineeringTable() {
  auto table = makeTable("QCE_SubEngineering", columns());
  domain::DisplayRow& header = *table->getHeader();
  // Nothing sorts this page, so that its money may have separators.
  for (const ColumnInfo& info : columns()) {
    header.column(info.key)->field->thousandsSeparators = info.money;
  }
  header.addHeaderGroup("QCE_SEQuantities", "工程量",
                        {keys::SEQuantityBillTendering, keys::SECalcExpr, keys::SEQuantity});
  header.addHeaderGroup("QCE_SEAmounts", "不含税金额",
                        {keys::BRIBillUnitPrice, keys::SEBudgetTotalCost, keys::SECostTotalCost});
  return table;
}

SubEngineeringOperator::SubEngineeringOperator(records::Project& project) : project_(project) {}
SubEngineeringOperator::~SubEngineeringOperator() = default;

proxy::ElementGroup* SubEngineeringOperator::getRoot() {
  return &project_.structure();
}

// ---------------------------------------------------------------------------------------------
// Reading

const std::string* SubEngineeringOperator::peekText(const proxy::Element* element,
                                                    const std::string& key, int role) const {
  if (role != domain::DisplayRole && role != domain::EditRole) return nullptr;
  const int column = columnOf(key);
  if (const auto* bill = as<Bill>(element)) return textOf(*bill, column);
  if (const auto* item = as<BudgetItem>(element)) return textOf(*item, column);
  const auto* node = as<StructureNode>(element);
  return node != nullptr ? textOf(*node, column) : nullptr;
}

void SubEngineeringOperator::forgetAmounts() {
  costs_.reset();
  amounts_.clear();
}

const SubEngineeringOperator::Amounts& SubEngineeringOperator::amountsOf(
    const records::Branch& row) const {
  const auto found = amounts_.find(&row);
  if (found != amounts_.end()) return found->second;
  if (!costs_) costs_.emplace(project_);
  Amounts sum;
  if (const auto* bill = as<Bill>(&row)) {
    for (int i = 0; i < bill->rows().size(); ++i) {
      sum.budget += static_cast<const BudgetItem*>(bill->rows().at(i))->amount.value();
    }
    sum.cost = costs_->of(*bill);
  } else {
    for (int i = 0; i < row.rows().size(); ++i) {
      const Amounts& below = amountsOf(*static_cast<const records::Branch*>(row.rows().at(i)));
      sum.budget += below.budget;
      sum.cost += below.cost;
    }
  }
  return amounts_.emplace(&row, sum).first->second;
}

bool SubEngineeringOperator::displayBill(const Bill& bill, int column, Value& out) const {
  switch (column) {
    case Expression:
      domain::AssignText(out, "明细 " + std::to_string(bill.quantityLines.size()) + " 行");
      return true;
    case TenderQuantity:
      out = bill.quantity.toDouble();
      return true;
    case CostQuantity:
      out = bill.quantityForCost().toDouble();
      return true;
    case UnitPrice:
      if (!bill.unitPrice) return false;
      out = bill.unitPrice->toDouble();
      return true;
    case Budget:
      out = amountsOf(bill).budget.toDouble();
      return true;
    case Cost:
      out = amountsOf(bill).cost.toDouble();
      return true;
    default:
      return false;
  }
}

bool SubEngineeringOperator::displayNode(const StructureNode& node, int column, Value& out) const {
  if (column != Budget && column != Cost) return false;
  const Amounts& amounts = amountsOf(node);
  out = (column == Budget ? amounts.budget : amounts.cost).toDouble();
  return true;
}

bool SubEngineeringOperator::getValue(const proxy::Element* element, const std::string& key,
                                      int role, Value& out) const {
  const int column = columnOf(key);
  if (column < 0) return false;
  const auto* bill = as<Bill>(element);
  const auto* item = as<BudgetItem>(element);
  const auto* node = as<StructureNode>(element);
  switch (role) {
    case domain::DisplayRole:
    case domain::EditRole:
      if (const std::string* text = peekText(element, key, role)) {
        domain::AssignText(out, *text);
        return true;
      }
      if (bill != nullptr) {
        if (column == Expression && role == domain::EditRole) return false;  // made of lines
        return displayBill(*bill, column, out);
      }
      if (item != nullptr) return displayItem(*item, column, out);
      return node != nullptr && displayNode(*node, column, out);
    case domain::FontRole:
      if (node == nullptr) return false;
      out = base::Font{true, "Noto Sans CJK SC"};
      return true;
    case domain::BackgroundRole:
      if (node == nullptr) return false;
      out = node->kind == records::StructureKind::Section ? base::Color{245, 248, 252}
                                                          : base::Color{226, 236, 247};
      return true;
    case domain::ForegroundRole:
      // What departs from the tender is to be seen at a glance.
      if (bill == nullptr || column != CostQuantity ||
          bill->quantityForCost() == bill->quantity.value()) {
        return false;
      }
      out = base::Color{192, 86, 0};
      return true;
    case domain::ChoicesRole: {
      if (bill == nullptr || (column != Type && column != Account)) return false;
      std::vector<std::string> choices;
      if (column == Type) {
        choices = getTypes();
      } else {
        for (const records::CostAccount* account : project_.allAccounts()) {
          choices.push_back(account->label);
        }
      }
      out = std::move(choices);
      return true;
    }
    default:
      return false;
  }
}

bool SubEngineeringOperator::isEnabled(const proxy::Element* element,
                                       const std::string& key) const {
  return element != nullptr && columnOf(key) >= 0;
}

bool SubEngineeringOperator::isEditable(const proxy::Element* element,
                                        const std::string& key) const {
  const int column = columnOf(key);
  return column >= 0 && as<Bill>(element) != nullptr &&
         columns()[static_cast<std::size_t>(column)].editable;
}

bool SubEngineeringOperator::isResourceRow(const proxy::Element* element) const {
  return as<BudgetItem>(element) != nullptr;
}

void SubEngineeringOperator::getBills(proxy::Element* element,
                                      std::vector<proxy::Element*>& out) const {
  if (element == nullptr) return;
  if (isResourceRow(element)) {
    out.push_back(element->parent());
  } else if (as<Bill>(element) != nullptr) {
    out.push_back(element);
  } else {
    for (int row = 0; row < element->childCount(); ++row) getBills(element->child(row), out);
  }
}

std::vector<std::pair<std::string, proxy::Element*>> SubEngineeringOperator::getSubProjects()
    const {
  std::vector<std::pair<std::string, proxy::Element*>> result;
  for (StructureNode* unitWork : project_.unitWorks()) {
    const auto* single = static_cast<const StructureNode*>(unitWork->parent());
    const bool several = project_.structure().size() > 1 && single != nullptr;
    result.emplace_back(several ? single->name + " / " + unitWork->name : unitWork->name, unitWork);
  }
  return result;
}

std::vector<std::string> SubEngineeringOperator::getTypes() const {
  std::vector<std::string> all;
  for (std::size_t i = 0; i < TypeCount; ++i) all.push_back(types(i));
  return all;
}

// ---------------------------------------------------------------------------------------------
// Writing

bool SubEngineeringOperator::write(Bill& bill, records::BillData data) {
  const app::ScopedUndo undo("");
  try {
    project_.set(bill, std::move(data));
  } catch (const records::Refusal& refusal) {
    return refuse(refusal.what());
  } catch (const std::overflow_error&) {
    return refuse(nameOf(bill) + "的成本工程量过大，合价超出可计算的范围，未修改。");
  }
  return true;
}

bool SubEngineeringOperator::setValue(proxy::Element* element, const std::string& key,
                                      const Value& value, int role) {
  const int column = columnOf(key);
  auto* bill = const_cast<Bill*>(as<Bill>(element));
  if (role != domain::EditRole || bill == nullptr || !isEditable(bill, key)) return false;
  std::string text;
  if (const auto* typed = std::get_if<std::string>(&value)) {
    text = trimmed(*typed);
  } else if (const auto* number = std::get_if<double>(&value)) {
    text = base::ToPlainString(*number);
  } else if (!std::holds_alternative<std::monostate>(value)) {
    return false;
  }
  const std::string title = columns()[static_cast<std::size_t>(column)].name;
  const std::size_t limit = column == Code       ? MaxCodeBytes
                            : column == Features ? MaxFeaturesBytes
                                                 : MaxTextBytes;
  if (text.size() > limit) {
    return refuse(nameOf(*bill) + "的" + title + "过长，最多 " + std::to_string(limit / 3) +
                  " 个汉字，请缩短后再输入。");
  }

  records::BillData data = bill->data();
  switch (column) {
    case Type: {
      const std::vector<std::string> known = getTypes();
      if (!text.empty() && std::find(known.begin(), known.end(), text) == known.end()) {
        return refuse("没有类型“" + text + "”，请从列表中选择。");
      }
      data.type = project_.texts.intern(text);
      break;
    }
    case Account:
      data.account = text.empty() ? nullptr : project_.findAccount(text);
      if (!text.empty() && data.account == nullptr) {
        return refuse("没有成本科目“" + text + "”，请输入已有科目的编码或名称。");
      }
      break;
    case CostQuantity:  // a number typed here is the calculation that it takes
    case Expression:
      data.expression = project_.texts.intern(text);
      data.quantityLines.clear();
      break;
    case Code:
      data.code = project_.texts.intern(text);
      break;
    case Name:
      data.name = project_.texts.intern(text);
      break;
    case Features:
      data.features = project_.texts.intern(text);
      break;
    case Unit:
      data.unit = project_.texts.intern(text);
      break;
    default:
      data.remark = project_.texts.intern(text);
  }
  return write(*bill, std::move(data));
}

// ---------------------------------------------------------------------------------------------
// Quantities by lines

bool SubEngineeringOperator::getQuantityDetail(const proxy::Element* element,
                                               domain::QuantityLines& out) const {
  const auto* bill = as<Bill>(element);
  if (bill == nullptr) return false;
  out.clear();
  for (const records::QuantityLine& line : bill->quantityLines) {
    out.push_back({line.remark.str(), line.expression.str()});
  }
  return true;
}

bool SubEngineeringOperator::setQuantityDetail(proxy::Element* element,
                                               const domain::QuantityLines& lines) {
  auto* bill = const_cast<Bill*>(as<Bill>(element));
  if (bill == nullptr) return false;
  records::BillData data = bill->data();
  data.expression = {};
  data.quantityLines.clear();
  for (const domain::QuantityLine& line : lines) {
    if (line.remark.size() > MaxTextBytes || line.expression.size() > MaxTextBytes) {
      return refuse(nameOf(*bill) + "的工程量明细第 " +
                    std::to_string(data.quantityLines.size() + 1) +
                    " 行过长，最多 500 个汉字，请缩短后再输入。");
    }
    data.quantityLines.push_back(
        {project_.texts.intern(line.remark), project_.texts.intern(line.expression)});
  }
  return write(*bill, std::move(data));
}

bool SubEngineeringOperator::evaluate(const proxy::Element* element, const std::string& expression,
                                      double& value, std::string& error) const {
  const auto* bill = as<Bill>(element);
  if (bill == nullptr) return false;
  try {
    value = costing::evaluate(expression, project_.variablesFor(*bill)).toDouble();
    return true;
  } catch (const costing::ExpressionError& wrong) {
    error = wrong.what();
    return false;
  }
}

}  // namespace operators
