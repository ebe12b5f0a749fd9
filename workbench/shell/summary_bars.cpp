#include "workbench/shell/summary_bars.h"

#include <algorithm>

namespace shell {

namespace {

using operators::SummaryRow;
using records::SummaryLine;
using Kind = SummaryLine::Kind;

constexpr std::size_t kMostBars = 12;

/// Whether its lower lines say more than the line does by itself.
bool isOpened(const SummaryRow& row) {
  if (row.childCount() == 0) return false;
  const records::StructureNode* node = row.structure();
  return row.line().kind == Kind::Heading ||
         (row.line().kind == Kind::Structure && node != nullptr &&
          node->kind == records::StructureKind::SingleProject);
}

void collect(SummaryRow& row, std::vector<SummaryRow*>& bars) {
  if (isOpened(row)) {
    for (int i = 0; i < row.childCount(); ++i) {
      collect(*static_cast<SummaryRow*>(row.child(i)), bars);
    }
    return;
  }
  const SummaryLine& line = row.line();
  const bool empty = line.income.isZero() && line.cost.isZero();
  if (line.kind != Kind::Total && line.kind != Kind::Rounding && !empty) bars.push_back(&row);
}

costing::Decimal sizeOf(const SummaryRow& row) {
  return std::max(row.line().income, row.line().cost);
}

}  // namespace

SummaryBars summaryBars(operators::FeeSummaryOperator& summary) {
  std::vector<SummaryRow*> rows;
  proxy::ElementGroup& root = *summary.getRoot();
  for (int i = 0; i < root.size(); ++i) collect(*static_cast<SummaryRow*>(root.member(i)), rows);

  SummaryPlot::Bar rest;
  int left = 0;
  if (rows.size() > kMostBars) {
    std::vector<SummaryRow*> bySize = rows;
    std::stable_sort(bySize.begin(), bySize.end(), [](const SummaryRow* a, const SummaryRow* b) {
      return sizeOf(*b) < sizeOf(*a);
    });
    bySize.resize(kMostBars - 1);
    const auto isLeft = [&](SummaryRow* row) {
      if (std::find(bySize.begin(), bySize.end(), row) != bySize.end()) return false;
      rest.income += row->line().income.toDouble();
      rest.cost += row->line().cost.toDouble();
      ++left;
      return true;
    };
    rows.erase(std::remove_if(rows.begin(), rows.end(), isLeft), rows.end());
  }
  SummaryBars shown;
  for (const SummaryRow* row : rows) {
    shown.bars.push_back({QString::fromStdString(row->line().name), row->line().income.toDouble(),
                          row->line().cost.toDouble()});
  }
  shown.rows = std::move(rows);
  if (left > 0) {
    rest.name = QStringLiteral("其余 %1 行").arg(left);
    shown.bars.push_back(rest);
    shown.rows.push_back(nullptr);
  }
  return shown;
}

}  // namespace shell
