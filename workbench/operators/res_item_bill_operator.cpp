#include "workbench/operators/res_item_bill_operator.h"

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <typeinfo>
#include <unordered_map>
#include <utility>

#include "host/app/scoped_undo.h"
#include "host/app/services.h"
#include "host/domain/field_keys.h"
#include "workbench/costing/expression.h"
#include "workbench/operators/cell_values.h"
#include "workbench/operators/columns.h"
#include "workbench/operators/refusal.h"

namespace operators {

using costing::Decimal;
using domain::Value;
using records::LineTerms;

namespace keys = domain::keys;

const std::string ResItemBillOperator::OrdinaryTable = "QCE_ResItemBill";
const std::string ResItemBillOperator::SubcontractTable = "QCE_ResItemBillSubcontract";

/// A bill line with what is shown of it.
class ResItemBillOperator::Row final : public records::Record {
 public:
  explicit Row(const records::BillLine& of) : Record(of.bill->id()), line(of) {}

  records::Bill& bill() const { return *line.bill; }
  /// Per unit of the bill; nothing for a bill without a quantity.
  std::optional<Decimal> perUnit(const Decimal& total, int places) const {
    const Decimal quantity = bill().quantity.value();
    if (quantity.isZero()) return {};
    return (total / quantity).rounded(places);
  }

  records::BillLine line;
};

namespace {

constexpr int YesButton = 0x4000;
constexpr int NoButton = 0x10000;

constexpr int InputPlaces = 6;  // of contents and prices
const Decimal InputLimit(1000000000);
const Decimal CoefficientLimit(1000000);
constexpr std::size_t MaxExpressionBytes = 500;
constexpr std::size_t MaxUnitBytes = std::size_t(20) * 3;

enum Column {
  Association,
  Code,
  Name,
  Features,
  Unit,
  Amount,
  BudgetContent,
  Content,
  Coefficient,
  BudgetAmount,
  CostAmount,
  BudgetPrice,
  BudgetTotal,
  BillPrice,
  CostPrice,
  CostTotal,
  ColumnCount
};

// A function, since the keys must be there first.
const std::array<PlainColumn, ColumnCount>& columns() {
  using namespace domain;
  static const std::array<PlainColumn, ColumnCount> all = {{
      {keys::BRIAssociation, "关联", StringField, 50},
      {keys::SECode, "清单编码", StringField, 115},
      {keys::SEName, "清单名称", StringField, 170},
      {keys::SEProjFeatures, "项目特征", StringField, 150},
      {keys::SEUnit, "单位", StringField, 50},
      {keys::SEAmount, "清单工程量", FloatingPointField, 95},
      {keys::SEBudgetContent, "预算含量", FloatingPointField, 80},
      {keys::SEContent, "实际含量", StringField, 80},
      {keys::SECoefficient, "系数", FloatingPointField, 60},
      {keys::SEBudgetAmount, "预算数量", FloatingPointField, 95},
      {keys::SECostAmount, "成本数量", FloatingPointField, 95},
      {keys::BRIExcludedTaxFee, "预算不含税单价（元）", FloatingPointField, 145, true},
      {keys::BRIExcludedTaxTotalCost, "预算不含税合价（元）", FloatingPointField, 145, true},
      {keys::BRIBillUnitPrice, "清单单价（元）", FloatingPointField, 135, true},
      {keys::RIExcludedTaxFee, "分包不含税成本单价（元）", FloatingPointField, 170, true},
      {keys::RIExcludedTaxTotalCost, "成本不含税合价（元）", FloatingPointField, 145, true},
  }};
  return all;
}

int columnOf(const std::string& key) {
  static const ColumnNumbers numbers(columns());
  return numbers.of(key);
}

std::unique_ptr<domain::DisplayTable> makeBillTable(const std::string& name) {
  auto table = makeTable(name, columns());
  table->getHeader()->column(keys::SEBudgetContent)->field->precision = InputPlaces;
  return table;
}

std::string nameOf(const records::Bill& bill) {
  return "清单“" + bill.code.str() + " " + bill.name.str() + "”";
}

/// "清单“…”的系数".
std::string place(const records::Bill& bill, const std::string& what) {
  return nameOf(bill) + "的" + what;
}

/// A content or a price: a number as it was typed, or the rounded value of an expression.
Decimal readInput(const std::string& text) {
  if (text.size() > MaxExpressionBytes) {
    throw records::Refusal("过长，请缩短计算式后再输入。");
  }
  const std::optional<Decimal> typed = Decimal::parse(text);
  try {
    const Decimal value = typed ? *typed : costing::evaluate(text).rounded(InputPlaces);
    if (value.rounded(InputPlaces) != value) {
      throw records::Refusal("最多 " + std::to_string(InputPlaces) + " 位小数，请重新输入。");
    }
    if (value.isNegative() || value > InputLimit) {
      throw records::Refusal("应在 0 到 1,000,000,000 之间，请重新输入。");
    }
    return value;
  } catch (const costing::ExpressionError& error) {
    throw records::Refusal("的计算式有误：" + std::string(error.what()));
  }
}

void setPriceText(records::Project& project, LineTerms& terms, const std::string& text) {
  if (text.empty()) {
    terms.price.reset();
    terms.priceExpression = {};
    return;
  }
  terms.price = readInput(text);
  // A plain number is its own expression.
  const bool plain = Decimal::parse(text).has_value();
  terms.priceExpression = plain ? records::Text() : project.texts.intern(text);
}

void setContentText(LineTerms& terms, const std::string& text) {
  terms.content = text.empty() ? std::nullopt : std::optional<Decimal>(readInput(text));
}

void setFactor(LineTerms& terms, const Decimal& factor) {
  const bool negative = factor.isNegative();
  if (factor.isZero()) throw records::Refusal("不能为零，请输入其他数字。");
  if ((negative ? -factor : factor) > CoefficientLimit) {
    throw records::Refusal("应在 -1,000,000 到 1,000,000 之间，请重新输入。");
  }
  terms.coefficient = factor;
}

/// The text of an edit; a number as its shortest decimal.
std::optional<std::string> textOf(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (std::holds_alternative<std::monostate>(value)) return std::string();
  std::optional<Decimal> number;
  if (const auto* real = std::get_if<double>(&value)) number = Decimal::fromDouble(*real);
  if (const auto* integer = std::get_if<int>(&value)) number = Decimal(*integer);
  if (!number) return {};
  return number->toString();
}

bool put(Value& out, const std::optional<Decimal>& number) {
  // An empty text: a missing number would be shown as 0.
  if (number) {
    out = number->toDouble();
  } else {
    domain::AssignText(out, {});
  }
  return true;
}

}  // namespace

ResItemBillOperator::ResItemBillOperator(records::Project& project)
    : project_(project),
      ordinary_(makeBillTable(OrdinaryTable)),
      subcontract_(makeBillTable(SubcontractTable)),
      root_(new records::Group) {}

ResItemBillOperator::~ResItemBillOperator() = default;

const ResItemBillOperator::Row* ResItemBillOperator::rowOf(const proxy::Element* element) {
  return element != nullptr && typeid(*element) == typeid(Row) ? static_cast<const Row*>(element)
                                                               : nullptr;
}

// ---------------------------------------------------------------------------------------------
// Rows

std::vector<records::BillLine> ResItemBillOperator::lines() const {
  if (!item_ || item_->group() == nullptr) return {};
  std::vector<records::BillLine> all = project_.linesOf(*item_);
  all.erase(std::remove_if(all.begin(), all.end(),
                           [this](const records::BillLine& line) { return !isShown(*line.bill); }),
            all.end());
  return all;
}

bool ResItemBillOperator::isShown(const records::Bill& bill) const {
  if (subProject_ == nullptr) return true;
  const proxy::Element* node = &bill;
  while (node != nullptr && node != subProject_) node = node->parent();
  return node != nullptr;
}

void ResItemBillOperator::rebuild() {
  subcontracted_ = item_ && isSubcontracted(*item_);
  root_.reset(new records::Group);
  for (const records::BillLine& line : lines()) {
    root_->rows().append(scoped_refptr<records::Record>(new Row(line)));
  }
}

bool ResItemBillOperator::refresh() {
  const std::vector<records::BillLine> now = lines();
  if (static_cast<int>(now.size()) != root_->size()) return false;
  if (item_ && isSubcontracted(*item_) != subcontracted_) return false;
  // A view may have sorted the rows.
  std::unordered_map<const records::Bill*, Row*> rows;
  for (int i = 0; i < root_->size(); ++i) {
    auto* row = static_cast<Row*>(root_->member(i));
    rows[row->line.bill] = row;
  }
  for (const records::BillLine& line : now) {
    if (rows.count(line.bill) == 0) return false;
  }
  for (const records::BillLine& line : now) rows[line.bill]->line = line;
  return true;
}

proxy::ElementGroup* ResItemBillOperator::getRoot() {
  return root_.get();
}

void ResItemBillOperator::setBaseResItem(proxy::Element* item) {
  item_.reset(dynamic_cast<records::ResourceItem*>(item));
  rebuild();
}

void ResItemBillOperator::setSubProject(proxy::Element* subProject) {
  subProject_ = subProject;
  if (auto* group = dynamic_cast<records::ResourceGroup*>(subProject)) {
    subProject_ = &group->unitWork();
  }
  rebuild();
}

std::vector<records::Bill*> ResItemBillOperator::billsOf(const Rows& rows) const {
  std::vector<records::Bill*> bills;
  for (const proxy::Element* element : rows) {
    if (const Row* row = rowOf(element)) bills.push_back(row->line.bill);
  }
  return bills;
}

// ---------------------------------------------------------------------------------------------
// Tables

bool ResItemBillOperator::isSubcontracted(const records::ResourceItem& item) const {
  const std::vector<records::Bill*> bills = project_.associatedBills(item);
  return std::any_of(bills.begin(), bills.end(), [&](const records::Bill* bill) {
    return project_.terms(item, *bill).summary;
  });
}

std::string ResItemBillOperator::tableNameOf(const proxy::Element* element) const {
  const auto* item = dynamic_cast<const records::ResourceItem*>(element);
  return item != nullptr && isSubcontracted(*item) ? SubcontractTable : OrdinaryTable;
}

domain::DisplayTable* ResItemBillOperator::getTable(const std::string& name) {
  if (name == OrdinaryTable) return ordinary_.get();
  return name == SubcontractTable ? subcontract_.get() : nullptr;
}

int ResItemBillOperator::getTableKind(const std::string& name) const {
  if (name == OrdinaryTable) return domain::qce::OrdinaryBillTable;
  return name == SubcontractTable ? domain::qce::SubcontractBillTable : 0;
}

// ---------------------------------------------------------------------------------------------
// Cells

bool ResItemBillOperator::isOrdinaryBill(const proxy::Element* row) const {
  const Row* found = rowOf(row);
  return found != nullptr && !found->line.terms.summary;
}

std::string ResItemBillOperator::getColorText(const proxy::Element* element) const {
  const Row* row = rowOf(element);
  if (row == nullptr || row->line.excludedAmount <= row->line.budgetAmount) return {};
  return "#FBE0DC";
}

bool ResItemBillOperator::display(const Row& row, int column, Value& out) const {
  const records::BillLine& line = row.line;
  const records::Bill& bill = row.bill();
  const bool any = !line.budgetQuantity.isZero();
  switch (column) {
    case Association:
      return put(out, line.terms.associated ? "√" : "");
    case Code:
      return put(out, bill.code.str());
    case Name:
      return put(out, bill.name.str());
    case Features:
      return put(out, bill.features.str());
    case Unit:
      return put(out, line.terms.summary && !line.terms.summaryUnit.empty()
                          ? line.terms.summaryUnit.str()
                          : bill.unit.str());
    case Amount:
      return put(out, bill.quantity.value());
    case BudgetContent:
      return put(out, row.perUnit(line.budgetQuantity, InputPlaces));
    case Content:
      return put(out, line.terms.content ? line.terms.content->toString() : std::string());
    case Coefficient:
      return put(out, line.terms.coefficient);
    case BudgetAmount:
      return put(out, line.budgetQuantity);
    case CostAmount:
      return put(out, line.costQuantity);
    case BudgetPrice:
      return put(out, any ? std::optional<Decimal>(
                                (line.budgetAmount / line.budgetQuantity).rounded(InputPlaces))
                          : std::nullopt);
    case BudgetTotal:
      return put(out, line.budgetAmount);
    case BillPrice: {
      // In the table of a subcontracted item, what the subcontractor is paid for the bill.
      if (subcontracted_) return put(out, line.terms.price);
      if (bill.unitPrice) return put(out, bill.unitPrice->value());
      Decimal total;
      for (int i = 0; i < bill.childCount(); ++i) {
        total += static_cast<const records::BudgetItem&>(*bill.child(i)).amount.value();
      }
      return put(out, row.perUnit(total, costing::MoneyPlaces));
    }
    case CostPrice:
      return put(out, line.terms.price);
    case CostTotal:
      return put(out, line.excludedAmount);
    default:
      return false;
  }
}

bool ResItemBillOperator::getValue(const proxy::Element* element, const std::string& key, int role,
                                   Value& out) const {
  const int column = columnOf(key);
  const Row* row = rowOf(element);
  if (column < 0 || row == nullptr) return false;
  const records::BillLine& line = row->line;
  switch (role) {
    case domain::EditRole:
      if ((column == CostPrice || column == BillPrice) && !line.terms.priceExpression.empty() &&
          isEditable(element, key)) {
        return put(out, line.terms.priceExpression.str());
      }
      return display(*row, column, out);
    case domain::DisplayRole:
      return display(*row, column, out);
    case domain::ToolTipRole:
      if (column == Content) {
        const std::optional<Decimal> budget = row->perUnit(line.budgetQuantity, InputPlaces);
        return budget && put(out, "预算含量 " + budget->toString());
      }
      if (column == CostPrice && !line.terms.priceExpression.empty()) {
        return put(out, "计算式：" + line.terms.priceExpression.str());
      }
      if ((column == BudgetPrice || column == BudgetTotal) && !getColorText(element).empty()) {
        return put(out,
                   "成本比预算高 " + (line.excludedAmount - line.budgetAmount).toString(2) + " 元");
      }
      return false;
    default:
      return false;
  }
}

bool ResItemBillOperator::isEnabled(const proxy::Element* element, const std::string& key) const {
  return rowOf(element) != nullptr && columnOf(key) >= 0;
}

bool ResItemBillOperator::isEditable(const proxy::Element* element, const std::string& key) const {
  if (rowOf(element) == nullptr) return false;
  switch (columnOf(key)) {
    case Content:
    case Coefficient:
    case CostPrice:
      return true;
    case BillPrice:
      return subcontracted_;
    default:
      return false;
  }
}

bool ResItemBillOperator::setValue(proxy::Element* element, const std::string& key,
                                   const Value& value, int role) {
  const std::optional<std::string> text = textOf(value);
  const int column = columnOf(key);
  const bool unit = column == Unit && rowOf(element) != nullptr && !isOrdinaryBill(element);
  if (role != domain::EditRole || !text || !(unit || isEditable(element, key))) return false;
  if (unit) {
    return change({element}, "单位", [&](LineTerms& terms) {
      if (text->size() > MaxUnitBytes) throw records::Refusal("过长，最多 20 个汉字，请缩短。");
      const bool own = *text == rowOf(element)->bill().unit.str();
      terms.summaryUnit = own ? records::Text() : project_.texts.intern(*text);
    });
  }
  if (column == Content) return setAdjustedContent({element}, *text);
  if (column != Coefficient) return setExcludeTaxPriceExpr(element, *text);
  return change({element}, "系数", [&](LineTerms& terms) {
    setFactor(terms, text->empty() ? Decimal(1) : Decimal::parse(*text).value_or(Decimal()));
  });
}

// ---------------------------------------------------------------------------------------------
// Commands

bool ResItemBillOperator::change(const Rows& rows, const std::string& what,
                                 const std::function<void(LineTerms&)>& to) {
  if (!item_ || rows.empty()) return false;
  const std::string cancelled = rows.size() > 1 ? "本次批量设置已全部取消。" : "";
  // A value that cannot be is told before anything is written.
  std::vector<std::pair<records::Bill*, LineTerms>> changes;
  for (const proxy::Element* element : rows) {
    const Row* row = rowOf(element);
    if (row == nullptr) continue;
    LineTerms terms = project_.terms(*item_, row->bill());
    try {
      to(terms);
    } catch (const records::Refusal& refused) {
      return refuse(place(row->bill(), what) + refused.what() + cancelled);
    } catch (const std::overflow_error&) {
      return refuse(place(row->bill(), what) + "超出可计算的范围，请重新输入。" + cancelled);
    }
    changes.emplace_back(&row->bill(), terms);
  }
  std::string refusal;
  {
    app::ScopedUndo undo("");
    for (const auto& [bill, terms] : changes) {
      try {
        project_.setTerms(*item_, *bill, terms);
      } catch (const records::Refusal& refused) {
        refusal = refused.what();
      } catch (const std::overflow_error&) {
        refusal = place(*bill, what) + "过大，合价超出可计算的范围，请减小后重试。";
      }
      if (!refusal.empty()) break;
    }
    if (!refusal.empty()) undo.abandon();
  }
  return refusal.empty() || refuse(refusal + cancelled);
}

bool ResItemBillOperator::setCoefficient(const Rows& rows, double coefficient, bool multiply) {
  const std::optional<Decimal> factor = Decimal::fromDouble(coefficient);
  return change(rows, "系数", [&](LineTerms& terms) {
    if (!factor || factor->isZero()) throw records::Refusal("不能为零，请输入其他数字。");
    setFactor(terms, multiply ? terms.coefficient * *factor : terms.coefficient / *factor);
  });
}

bool ResItemBillOperator::setAdjustedContent(const Rows& rows, const std::string& content) {
  return change(rows, "实际含量", [&](LineTerms& terms) { setContentText(terms, content); });
}

bool ResItemBillOperator::setExcludeTaxPrice(proxy::Element* row, double price) {
  const std::optional<Decimal> number = Decimal::fromDouble(price);
  return setExcludeTaxPriceExpr(row, number ? number->toString() : std::to_string(price));
}

bool ResItemBillOperator::setExcludeTaxPriceExpr(proxy::Element* row,
                                                 const std::string& expression) {
  return change({row}, "分包不含税成本单价",
                [&](LineTerms& terms) { setPriceText(project_, terms, expression); });
}

int ResItemBillOperator::pooledCount(const std::vector<records::Bill*>& bills) const {
  if (!item_) return 0;
  return static_cast<int>(std::count_if(bills.begin(), bills.end(), [this](records::Bill* bill) {
    for (int i = 0; i < bill->childCount(); ++i) {
      const auto& budget = static_cast<const records::BudgetItem&>(*bill->child(i));
      if (!project_.pooled(budget, *item_).isZero()) return true;
    }
    return false;
  }));
}

bool ResItemBillOperator::withdraw(const Rows& rows) {
  if (!item_) return false;
  std::string refusal;
  {
    app::ScopedUndo undo("取消归集");
    for (records::Bill* bill : billsOf(rows)) {
      try {
        for (int i = 0; i < bill->childCount(); ++i) {
          project_.withdraw(static_cast<records::BudgetItem&>(*bill->child(i)), *item_);
        }
      } catch (const std::overflow_error&) {
        refusal = nameOf(*bill) + "取消归集后合价超出可计算的范围，未取消。请先修改数量或单价。";
      }
      if (!refusal.empty()) break;
    }
    if (!refusal.empty()) undo.abandon();
  }
  return refusal.empty() || refuse(refusal);
}

bool ResItemBillOperator::disassociateBill(const Rows& rows) {
  if (!item_) return false;
  std::vector<records::Bill*> bills;
  for (records::Bill* bill : billsOf(rows)) {
    if (project_.terms(*item_, *bill).associated) bills.push_back(bill);
  }
  const int pooled = pooledCount(bills);
  if (bills.empty()) return refuse("选中的清单都没有关联到当前人材机，请选择已关联（√）的清单。");
  if (pooled > 0) {
    const std::string question = "有 " + std::to_string(pooled) +
                                 " 条清单的预算工料机已归集到当前人材机，取消关联后这些数量将退回。"
                                 "是否继续？";
    if (app::qce::GetQCEChannel()->message(question, YesButton | NoButton) != YesButton) {
      return false;
    }
  }
  std::string refusal;
  {
    app::ScopedUndo undo("取消关联");
    for (records::Bill* bill : bills) {
      try {
        project_.disassociate(*item_, *bill);
      } catch (const records::Refusal& refused) {
        refusal = refused.what();
      } catch (const std::overflow_error&) {
        refusal = nameOf(*bill) + "取消关联后合价超出可计算的范围，未取消。请先修改数量或单价。";
      }
      if (!refusal.empty()) break;
    }
    if (!refusal.empty()) undo.abandon();
  }
  return refusal.empty() || refuse(refusal);
}

}  // namespace operators
