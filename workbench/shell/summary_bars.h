#pragma once

#include <vector>

#include "workbench/operators/fee_summary_operator.h"
#include "workbench/shell/summary_plot.h"

namespace shell {

/// The lines of a summary that its plot shows, in the order of the table: as deep as the lines say
/// more than their sum does, the greatest ones where there are many, and one pair for the rest.
struct SummaryBars {
  std::vector<operators::SummaryRow*> rows;  ///< of each pair; null: the rest
  std::vector<SummaryPlot::Bar> bars;
};

SummaryBars summaryBars(operators::FeeSummaryOperator& summary);

}  // namespace shell
