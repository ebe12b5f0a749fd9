#pragma once

#include <string>
#include <vector>

#include "workbench/records/fee_template.h"
#include "workbench/records/project.h"

namespace records {

/// One line of a summary. A line with lines below it is their sum.
struct SummaryLine {
  /// What stands behind the line; the comment says which `source` it has.
  enum class Kind {
    Total,         ///< the whole project; null
    Heading,       ///< a line of the fee template with lines below it; null
    Element,       ///< the resource items of `category`; null
    Margin,        ///< bills less their resources: overhead and profit; null
    Structure,     ///< single project, unit work or section; the StructureNode
    Bill,          ///< the Bill
    LooseItems,    ///< resource items of a unit work that no bill stands behind; the StructureNode
    Fees,          ///< indirect fees below a heading of their own; the first of them
    FeeGroup,      ///< the IndirectFeeGroup
    FeeItem,       ///< the IndirectFeeItem
    Subcontracts,  ///< subcontract entries; null
    Subcontract,   ///< the Subcontract
    Account,       ///< the CostAccount, with what lies below it
    OwnAccount,    ///< what an account with others below it has itself; the CostAccount
    NoAccount,     ///< what has no cost account; null
    Tax,           ///< the StructureNode of a unit work; null for the project
    Rounding,      ///< what rounding at each line makes up against rounding once; as for Tax
  };

  Kind kind = Kind::Total;
  std::string name;
  Record* source = nullptr;  ///< not owned
  Category category = Category::Labour;
  /// Revenue and cost, in yuan with 2 places, excluding tax. Tax stands in lines of its own; it is
  /// passed on, so that its cost is its income.
  costing::Decimal income, cost;
  costing::Decimal share;  ///< of the total's income, per cent with 2 places
  std::vector<SummaryLine> lines;

  costing::Decimal difference() const { return income - cost; }
};

/// Whether income and cost (yuan) are the same but for the rounding of quantities and amounts: less
/// than a yuan apart (of large sums a ten-millionth), and little of what they are. So small a
/// difference is neither a loss nor a gain.
bool differByRounding(double income, double cost);

enum class SummaryKind { BidFees, Structure, Accounts };
/// "按投标费用汇总", "按项目结构汇总", "按成本科目汇总".
const std::string& nameOf(SummaryKind kind);

/// The whole project as one tree; the answer is its total. The totals of the three kinds are the
/// same, to the cent. A line of kind Rounding is there only when it is not 0.
/// @throws std::overflow_error
SummaryLine summarize(Project& project, SummaryKind kind, const FeeTemplate& feeTemplate);

}  // namespace records
