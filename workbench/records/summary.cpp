#include "workbench/records/summary.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>
#include <unordered_map>
#include <utility>

#include "workbench/records/bill_costs.h"

namespace records {
namespace {

using costing::Decimal;
using Kind = SummaryLine::Kind;

struct Money {
  Decimal income, cost;

  Money& operator+=(const Money& other) {
    income += other.income;
    cost += other.cost;
    return *this;
  }
  bool isZero() const { return income.isZero() && cost.isZero(); }
};

SummaryLine makeLine(Kind kind, std::string name, Record* source, const Money& money = {}) {
  SummaryLine line;
  line.kind = kind;
  line.name = std::move(name);
  line.source = source;
  line.income = money.income;
  line.cost = money.cost;
  return line;
}

/// Puts a line below `parent`, which grows by it.
void addLine(SummaryLine& parent, SummaryLine line) {
  parent.income += line.income;
  parent.cost += line.cost;
  parent.lines.push_back(std::move(line));
}

Money totalsOf(const costing::Totals& totals) {
  return {totals.budget, totals.excluded};
}

std::string join(const std::string& code, const std::string& name) {
  return code.empty() ? name : code + " " + name;
}

template <class Visit>
void forEachBill(const RowList& rows, const Visit& visit) {
  for (int row = 0; row < rows.size(); ++row) {
    if (auto* bill = dynamic_cast<Bill*>(rows.at(row))) {
      visit(*bill);
    } else {
      forEachBill(static_cast<Branch*>(rows.at(row))->rows(), visit);
    }
  }
}

class Summarizer {
 public:
  Summarizer(Project& project, const FeeTemplate& feeTemplate)
      : project_(project),
        template_(feeTemplate),
        rate_(feeTemplate.taxRate(project.facts)),
        total_(makeLine(Kind::Total, "合计", nullptr)) {}

  SummaryLine bidFees() {
    readMargin();
    const auto subcontracts = FeeTemplate::Source::Subcontracts;
    bool missing = project_.subcontracts().size() > 0;
    for (const FeeTemplate::Line& line : template_.lines) missing &= !takes(line, subcontracts);
    for (const FeeTemplate::Line& line : template_.lines) {
      if (missing && takes(line, FeeTemplate::Source::Tax)) {
        addLine(total_, subcontractsLine("分包", false));
      }
      addLine(total_, bidLine(line));
    }
    return finish({});
  }

  SummaryLine structure() {
    costs_.emplace(project_);
    Decimal taxable, taxes;
    const auto addTax = [&](SummaryLine& parent, Record* source) {
      const Decimal tax = taxOn(parent.income);
      taxable += parent.income;
      taxes += tax;
      addLine(parent, makeLine(Kind::Tax, "税金", source, {tax, tax}));
    };
    const std::function<SummaryLine(StructureNode&)> node = [&](StructureNode& at) {
      SummaryLine line = makeLine(Kind::Structure, join(at.code, at.name), &at);
      if (at.kind == StructureKind::UnitWork) {
        line = unitWork(at);
        addTax(line, &at);
        return line;
      }
      for (int row = 0; row < at.rows().size(); ++row) {
        if (auto* below = dynamic_cast<StructureNode*>(at.rows().at(row))) {
          addLine(line, node(*below));
        }
      }
      return line;
    };
    const RowList& tops = project_.structure().rows();
    for (int row = 0; row < tops.size(); ++row) {
      addLine(total_, node(*static_cast<StructureNode*>(tops.at(row))));
    }
    SummaryLine ofProject = makeLine(Kind::Fees, "整个工程的费用", nullptr);
    addFeeGroups(ofProject, nullptr);
    if (!ofProject.lines.empty()) {
      ofProject.source = ofProject.lines.front().source;
      addTax(ofProject, nullptr);
      addLine(total_, std::move(ofProject));
    }
    SummaryLine unassigned = subcontractsLine("未分配到清单的分包", true);
    if (!unassigned.lines.empty()) addLine(total_, std::move(unassigned));
    const Decimal once = taxOn(taxable) - taxes;
    return finish({once, once});
  }

  SummaryLine accounts() {
    readMargin();
    for (const StructureNode* work : project_.unitWorks()) {
      for (int i = 0; i < CategoryCount; ++i) {
        const RowList& rows = project_.categoryGroup(*work, static_cast<Category>(i))->rows();
        for (int row = 0; row < rows.size(); ++row) {
          const auto& item = *static_cast<ResourceItem*>(rows.at(row));
          byAccount_[item.account()] +=
              {item.budgetAmount().value(), item.excludedAmount().value()};
        }
      }
    }
    forEachFee(project_.feeGroups().rows(),
               [this](const IndirectFeeItem& fee) { byAccount_[fee.account] += moneyOf(fee); });
    forEachSubcontract([this](const Subcontract& entry) {
      byAccount_[entry.account] += {Decimal(), entry.amount()};
    });
    const RowList& tops = project_.accounts().rows();
    for (int row = 0; row < tops.size(); ++row) addAccount(total_, tops.at(row));
    const Money none = byAccount_[nullptr];
    if (!none.isZero()) {
      addLine(total_, makeLine(Kind::NoAccount, "未归入成本科目", nullptr, none));
    }
    addLine(total_, makeLine(Kind::Margin, "企业管理费和利润", nullptr, {margin_, {}}));
    addTaxOfProject(total_, "税金");
    return finish({});
  }

 private:
  Decimal taxOn(const Decimal& taxable) const {
    return (taxable * rate_ / 100).rounded(costing::MoneyPlaces);
  }

  /// What is taxed: bills, resource items without a bill, fees.
  Decimal taxable() const { return project_.totals().budget + margin_ + project_.feeBudget(); }

  Money moneyOf(const IndirectFeeItem& item) const {
    return {item.amount, project_.figures(item).amount};
  }

  void addTaxOfProject(SummaryLine& parent, const std::string& name) const {
    const Decimal tax = taxOn(taxable());
    addLine(parent, makeLine(Kind::Tax, name, nullptr, {tax, tax}));
  }

  /// Money of the budget items that count as resource items.
  static Decimal resourcesOf(const Bill& bill) {
    Decimal sum;
    for (int row = 0; row < bill.rows().size(); ++row) {
      const auto& item = *static_cast<const BudgetItem*>(bill.rows().at(row));
      if (item.resourceItem != nullptr) sum += item.amount.value();
    }
    return sum;
  }

  template <class Visit>
  void forEachSubcontract(const Visit& visit) const {
    const RowList& rows = project_.subcontracts().rows();
    for (int row = 0; row < rows.size(); ++row) visit(*static_cast<Subcontract*>(rows.at(row)));
  }

  SummaryLine subcontractsLine(const std::string& name, bool onlyWithoutBills) const {
    SummaryLine line = makeLine(Kind::Subcontracts, name, nullptr);
    forEachSubcontract([&](Subcontract& entry) {
      if (onlyWithoutBills && entry.rows().size() > 0) return;
      addLine(line, makeLine(Kind::Subcontract, join(entry.code.str(), entry.name.str()), &entry,
                             {{}, entry.amount()}));
    });
    return line;
  }

  void readMargin() {
    forEachBill(project_.structure().rows(), [this](const Bill& bill) {
      if (bill.amount) margin_ += bill.amount->value() - resourcesOf(bill);
    });
  }

  // --- by bid fees

  static bool takes(const FeeTemplate::Line& line, FeeTemplate::Source source) {
    return line.source == source ||
           std::any_of(line.lines.begin(), line.lines.end(),
                       [&](const FeeTemplate::Line& below) { return takes(below, source); });
  }

  SummaryLine bidLine(const FeeTemplate::Line& from) {
    if (!from.source) {
      SummaryLine line = makeLine(Kind::Heading, from.name, nullptr);
      for (const FeeTemplate::Line& below : from.lines) addLine(line, bidLine(below));
      return line;
    }
    switch (*from.source) {
      case FeeTemplate::Source::Element: {
        Money money;
        for (const StructureNode* work : project_.unitWorks()) {
          money += totalsOf(project_.categoryGroup(*work, from.category)->totals());
        }
        SummaryLine line = makeLine(Kind::Element, from.name, nullptr, money);
        line.category = from.category;
        return line;
      }
      case FeeTemplate::Source::Margin:
        return makeLine(Kind::Margin, from.name, nullptr, {margin_, {}});
      case FeeTemplate::Source::Fees:
        return feesLine(from);
      case FeeTemplate::Source::Subcontracts:
        return subcontractsLine(from.name, false);
      case FeeTemplate::Source::Tax:
        break;
    }
    SummaryLine holder;
    addTaxOfProject(holder, from.name);
    return std::move(holder.lines.front());
  }

  /// The line of the template that a fee group belongs to by its name; null: that for the rest.
  const FeeTemplate::Line* claimant(const std::vector<FeeTemplate::Line>& lines,
                                    const std::string& group) const {
    for (const FeeTemplate::Line& line : lines) {
      for (const std::string& name : line.feeNames) {
        if (group.find(name) != std::string::npos) return &line;
      }
      if (const FeeTemplate::Line* below = claimant(line.lines, group)) return below;
    }
    return nullptr;
  }

  SummaryLine feesLine(const FeeTemplate::Line& from) {
    SummaryLine line = makeLine(Kind::Fees, from.name, nullptr);
    collectFees(line, from, project_.feeGroups().rows(), nullptr);
    if (!line.lines.empty()) line.source = line.lines.front().source;
    return line;
  }

  /// Adds the groups and items that belong to `wanted`; `owner` is who has what lies above.
  void collectFees(SummaryLine& parent, const FeeTemplate::Line& wanted, const RowList& rows,
                   const FeeTemplate::Line* owner) {
    for (int row = 0; row < rows.size(); ++row) {
      if (auto* item = dynamic_cast<IndirectFeeItem*>(rows.at(row))) {
        if (isOwner(owner, wanted)) {
          addLine(parent,
                  makeLine(Kind::FeeItem, join(item->code, item->name), item, moneyOf(*item)));
        }
        continue;
      }
      auto& group = *static_cast<IndirectFeeGroup*>(rows.at(row));
      const FeeTemplate::Line* mine = claimant(template_.lines, group.name);
      if (mine == nullptr) mine = owner;
      SummaryLine line = makeLine(Kind::FeeGroup, nameOf(group), &group);
      collectFees(line, wanted, group.rows(), mine);
      if (!line.lines.empty() || isOwner(mine, wanted)) addLine(parent, std::move(line));
    }
  }

  static bool isOwner(const FeeTemplate::Line* owner, const FeeTemplate::Line& wanted) {
    return owner == nullptr ? wanted.feeNames.empty() : owner == &wanted;
  }

  static std::string nameOf(const IndirectFeeGroup& group) {
    const std::string name = join(group.code, group.name);
    return group.unitWork != nullptr ? name + "（" + group.unitWork->name + "）" : name;
  }

  // --- by structure

  /// Cost that is booked on bills, from the items that any booking has touched.
  SummaryLine unitWork(StructureNode& at) {
    SummaryLine line = makeLine(Kind::Structure, join(at.code, at.name), &at);
    OfBills bills;
    addStructure(line, at.rows(), bills);

    const costing::Totals& totals = project_.subProject(at)->totals();
    Money loose{totals.budget - bills.resources, {}};
    for (int i = 0; i < CategoryCount; ++i) {
      const RowList& rows = project_.categoryGroup(at, static_cast<Category>(i))->rows();
      for (int row = 0; row < rows.size(); ++row) {
        const auto& item = *static_cast<ResourceItem*>(rows.at(row));
        const Bookings::Sums* sums = project_.bookings().sumsOf(item);
        if (!item.counts()) continue;
        if (sums == nullptr) {
          if (!item.gathered()) loose.cost += item.excludedAmount().value();
        } else if (!sums->own.isZero()) {
          loose.cost += costing::excludedTaxAmount(sums->own, item.price().value());
        }
      }
    }
    const Decimal rounding = totals.excluded - (line.cost - bills.subcontracted) - loose.cost;
    if (!loose.isZero()) {
      addLine(line, makeLine(Kind::LooseItems, "未列入清单的人材机", &at, loose));
    }
    if (!rounding.isZero()) {
      addLine(line, makeLine(Kind::Rounding, "舍入差", &at, {{}, rounding}));
    }
    addFeeGroups(line, &at);
    return line;
  }

  /// Money of the bills below a unit work that comes from or goes elsewhere.
  struct OfBills {
    Decimal resources, subcontracted;
  };

  void addStructure(SummaryLine& parent, const RowList& rows, OfBills& sums) const {
    for (int row = 0; row < rows.size(); ++row) {
      if (auto* bill = dynamic_cast<Bill*>(rows.at(row))) {
        sums.resources += resourcesOf(*bill);
        sums.subcontracted += costs_->subcontracted(*bill);
        addLine(parent, makeLine(Kind::Bill, join(bill->code.str(), bill->name.str()), bill,
                                 {incomeOf(*bill), costs_->of(*bill)}));
      } else {
        auto& section = *static_cast<StructureNode*>(rows.at(row));
        SummaryLine line = makeLine(Kind::Structure, join(section.code, section.name), &section);
        addStructure(line, section.rows(), sums);
        addLine(parent, std::move(line));
      }
    }
  }

  /// The fees of a unit work, or of the whole project (null).
  void addFeeGroups(SummaryLine& parent, const StructureNode* of) const {
    const RowList& groups = project_.feeGroups().rows();
    for (int row = 0; row < groups.size(); ++row) {
      auto& group = *static_cast<IndirectFeeGroup*>(groups.at(row));
      if (group.unitWork == of) addFees(parent, group);
    }
  }

  void addFees(SummaryLine& parent, IndirectFeeGroup& group) const {
    SummaryLine line = makeLine(Kind::FeeGroup, join(group.code, group.name), &group);
    for (int row = 0; row < group.rows().size(); ++row) {
      if (auto* item = dynamic_cast<IndirectFeeItem*>(group.rows().at(row))) {
        addLine(line, makeLine(Kind::FeeItem, join(item->code, item->name), item, moneyOf(*item)));
      } else {
        addFees(line, *static_cast<IndirectFeeGroup*>(group.rows().at(row)));
      }
    }
    addLine(parent, std::move(line));
  }

  // --- by cost account

  void addAccount(SummaryLine& parent, Record* record) {
    auto& account = *static_cast<CostAccount*>(record);
    SummaryLine line = makeLine(Kind::Account, account.label, &account);
    for (int row = 0; row < account.rows().size(); ++row) {
      addAccount(line, account.rows().at(row));
    }
    const Money own = byAccount_[&account];
    if (line.lines.empty()) {
      line.income = own.income;
      line.cost = own.cost;
    } else if (!own.isZero()) {
      addLine(line, makeLine(Kind::OwnAccount, account.name + "（本级）", &account, own));
    }
    // An account that nothing is booked on says nothing.
    if (!line.lines.empty() || !own.isZero()) addLine(parent, std::move(line));
  }

  // --- all

  void setShares(SummaryLine& line, const Decimal& whole) const {
    line.share =
        whole.isZero() ? Decimal() : (line.income * 100 / whole).rounded(costing::MoneyPlaces);
    for (SummaryLine& below : line.lines) setShares(below, whole);
  }

  SummaryLine finish(const Money& rounding) {
    SummaryLine last = makeLine(Kind::Rounding, "舍入差", nullptr, rounding);
    total_.income += rounding.income;
    total_.cost += rounding.cost;
    setShares(total_, total_.income);
    Decimal shares;
    for (const SummaryLine& line : total_.lines) shares += line.share;
    last.share = total_.share - shares;
    if (!rounding.isZero() || !last.share.isZero()) total_.lines.push_back(std::move(last));
    return std::move(total_);
  }

  Project& project_;
  const FeeTemplate& template_;
  Decimal rate_;
  Decimal margin_;
  std::optional<BillCosts> costs_;
  std::unordered_map<const CostAccount*, Money> byAccount_;
  SummaryLine total_;
};

}  // namespace

const std::string& nameOf(SummaryKind kind) {
  static const std::array<std::string, 3> names = {"按投标费用汇总", "按项目结构汇总",
                                                   "按成本科目汇总"};
  return names[static_cast<std::size_t>(kind)];
}

bool differByRounding(double income, double cost) {
  const double most = std::max(std::abs(income), std::abs(cost));
  const double apart = std::abs(income - cost);
  return apart < std::max(1.0, most * 1e-7) && apart < 0.055 + most * 1e-3;
}

SummaryLine summarize(Project& project, SummaryKind kind, const FeeTemplate& feeTemplate) {
  Summarizer summarizer(project, feeTemplate);
  switch (kind) {
    case SummaryKind::BidFees:
      return summarizer.bidFees();
    case SummaryKind::Structure:
      return summarizer.structure();
    case SummaryKind::Accounts:
      break;
  }
  return summarizer.accounts();
}

}  // namespace records
