#include "workbench/records/fees.h"

#include <array>
#include <functional>

#include "workbench/records/project.h"

namespace records {
namespace {

using costing::Decimal;

constexpr int MaxRatePlaces = 4;
constexpr std::size_t MaxTextBytes = std::size_t(200) * 3;

std::string label(const FeeData& data) {
  return "间接费“" + data.code + (data.code.empty() ? "" : " ") + data.name + "”";
}

const StructureNode* ownerOf(const IndirectFeeGroup& group) {
  const IndirectFeeGroup* top = &group;
  while (top->parent() != nullptr) top = static_cast<const IndirectFeeGroup*>(top->parent());
  return top->unitWork;
}

Decimal baseOf(const std::string& text, const std::function<costing::Variables()>& variables) {
  const std::optional<Decimal> number = Decimal::parse(text);
  return number ? *number : costing::evaluate(text, variables());
}

}  // namespace

Decimal Project::feeTotal(const RowList& rows) const {
  Decimal total;
  forEachFee(rows, [&](const IndirectFeeItem& fee) { total += figures(fee).amount; });
  return total;
}

Decimal Project::feeBudget(const RowList& rows) const {
  Decimal total;
  forEachFee(rows, [&](const IndirectFeeItem& fee) { total += fee.amount; });
  return total;
}

// The budget is fixed, so that it is summed up once.
Decimal Project::billIncome(const StructureNode& unitWork) const {
  const auto known = billIncomes_.find(&unitWork);
  if (known != billIncomes_.end()) return known->second;
  Decimal income;
  const std::function<void(const RowList&)> add = [&](const RowList& rows) {
    for (int row = 0; row < rows.size(); ++row) {
      const auto* bill = dynamic_cast<const Bill*>(rows.at(row));
      if (bill == nullptr) {
        add(static_cast<const Branch*>(rows.at(row))->rows());
      } else if (bill->amount) {
        income += bill->amount->value();
      } else {
        for (int item = 0; item < bill->rows().size(); ++item) {
          income += static_cast<const BudgetItem*>(bill->rows().at(item))->amount.value();
        }
      }
    }
  };
  add(unitWork.rows());
  return billIncomes_[&unitWork] = income;
}

costing::Variables Project::feeVariables(const IndirectFeeGroup& group) const {
  const StructureNode* of = ownerOf(group);
  std::array<Decimal, CategoryCount> costs;
  Decimal direct;
  Decimal bills;
  for (const StructureNode* work : unitWorks_) {
    if (of != nullptr && of != work) continue;
    for (int i = 0; i < CategoryCount; ++i) {
      const Decimal cost = categoryGroup(*work, static_cast<Category>(i))->totals().excluded;
      costs[static_cast<std::size_t>(i)] += cost;
      direct += cost;
    }
    bills += billIncome(*work);
  }
  costing::Variables variables;
  for (int i = 0; i < CategoryCount; ++i) {
    variables.emplace_back(nameOf(static_cast<Category>(i)) + "费",
                           costs[static_cast<std::size_t>(i)]);
  }
  variables.emplace_back("直接费", direct);
  variables.emplace_back("分部分项工程费", bills);
  variables.emplace_back("建筑面积", facts.buildingArea);
  return variables;
}

FeeFigures Project::figures(const IndirectFeeItem& item) const {
  if (!item.cost) return {item.base, item.rate, item.amount, {}};
  const auto known = feeCache_.find(&item);
  if (known != feeCache_.end()) return known->second;
  FeeFigures figures;
  const FeeCost& cost = *item.cost;
  figures.rate = cost.rate;
  if (!cost.follows()) figures.amount = cost.amount;
  try {
    if (!cost.base.empty()) {
      const auto* group = static_cast<const IndirectFeeGroup*>(item.parent());
      figures.base = baseOf(cost.base, [&] {
        return group != nullptr ? feeVariables(*group) : costing::Variables();
      });
      if (cost.rate) figures.amount = costing::feeByRate(*figures.base, *cost.rate);
    }
  } catch (const costing::ExpressionError& error) {
    figures.problem = error.what();
  }
  return feeCache_[&item] = figures;
}

void Project::requireFee(const IndirectFeeItem& item, const IndirectFeeGroup& group,
                         const FeeData& data) const {
  const std::string place = label(data.name.empty() ? FeeData(item) : data) + "的";
  if (data.name.empty()) throw Refusal(place + "名称不能为空；请输入名称。");
  for (const std::string* text : {&data.code, &data.name, &data.basis}) {
    if (text->size() > MaxTextBytes) throw Refusal(place + "文字过长；最多 200 个汉字，请缩短。");
  }
  if (!item.isOwn() &&
      (data.code != item.code || data.name != item.name || data.basis != item.basis)) {
    throw Refusal(label(item) +
                  "来自源文件，编码、名称和计算基础不能修改；"
                  "请新增一项费用，或修改其成本基数、费率和金额。");
  }
  if (!data.cost) return;
  const FeeCost& cost = *data.cost;
  if (cost.base.size() > MaxTextBytes) {
    throw Refusal(place + "成本基数计算式过长；最多 200 个汉字，请缩短。");
  }
  if (cost.rate && (cost.rate->isNegative() || *cost.rate > Decimal(1000))) {
    throw Refusal(place + "成本费率应在 0 到 1000 之间（%）；请重新输入。");
  }
  if (cost.rate && cost.rate->rounded(MaxRatePlaces) != *cost.rate) {
    throw Refusal(place + "成本费率最多 4 位小数；请重新输入。");
  }
  if (cost.amount.rounded(costing::MoneyPlaces) != cost.amount) {
    throw Refusal(place + "成本金额最多 2 位小数；请重新输入。");
  }
  const Decimal most = Decimal(1000000000) * Decimal(1000);
  if (cost.amount > most || -cost.amount > most) {
    throw Refusal(place + "成本金额过大；应在正负 1,000,000,000,000 元之内，请重新输入。");
  }
  if (cost.base.empty()) return;
  try {
    const Decimal base = baseOf(cost.base, [&] { return feeVariables(group); });
    if (base > most || -base > most) {
      throw Refusal(place + "成本基数过大；应在正负 1,000,000,000,000 元之内，请检查计算式。");
    }
    if (cost.rate) costing::feeByRate(base, *cost.rate);
  } catch (const costing::ExpressionError& error) {
    std::string names;
    for (const auto& [name, value] : feeVariables(group))
      names += (names.empty() ? "" : "、") + name;
    throw Refusal(place + "成本基数计算式“" + cost.base + "”有误：" + error.what() +
                  "\n可以使用的变量：" + names + "。");
  }
}

void Project::setFee(IndirectFeeItem& item, const FeeData& data) {
  const FeeData before = item;
  if (before == data) return;
  requireFee(item, *static_cast<IndirectFeeGroup*>(item.parent()), data);
  record(SetFee{scoped_refptr<IndirectFeeItem>(&item), before, data});
}

IndirectFeeItem& Project::addFee(IndirectFeeGroup& group, const FeeData& data) {
  for (int row = 0; row < group.rows().size(); ++row) {
    if (dynamic_cast<IndirectFeeGroup*>(group.rows().at(row)) == nullptr) continue;
    throw Refusal("费用组“" + group.name + "”下还有费用组，不能直接新增费用项；请选择其下级组。");
  }
  const scoped_refptr<IndirectFeeItem> item(new IndirectFeeItem(newId()));
  requireFee(*item, group, data);
  static_cast<FeeData&>(*item) = data;
  record(AddFee{item, &group, group.rows().size()});
  return *item;
}

void Project::removeFee(IndirectFeeItem& item) {
  if (!item.isOwn()) {
    throw Refusal(label(item) +
                  "来自源文件，不能删除；如不发生该项费用，请清空其成本费率并把成本金额改为 0。");
  }
  record(RemoveFee{scoped_refptr<IndirectFeeItem>(&item),
                   static_cast<IndirectFeeGroup*>(item.parent()), item.row()});
}

void Project::write(IndirectFeeItem& item, const FeeData& data) {
  static_cast<FeeData&>(item) = data;
  for (Observer* observer : observers_) observer->feeChanged(item);
}

void Project::link(IndirectFeeGroup& group, int row, const scoped_refptr<IndirectFeeItem>& item) {
  for (Observer* observer : observers_) observer->aboutToInsertFee(group, row);
  group.rows().insert(row, item);
  for (Observer* observer : observers_) observer->feeInserted();
}

void Project::unlink(const scoped_refptr<IndirectFeeItem>& item) {
  auto& group = *static_cast<IndirectFeeGroup*>(item->parent());
  const int row = item->row();
  for (Observer* observer : observers_) observer->aboutToRemoveFee(group, row);
  group.rows().take(row);
  for (Observer* observer : observers_) observer->feeRemoved();
}

}  // namespace records
