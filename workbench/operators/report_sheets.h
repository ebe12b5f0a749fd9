#pragma once

#include "host/app/spreadsheet.h"
#include "workbench/records/summary.h"

namespace operators {

/// The lines of a summary as a table, named after its kind; its total is the totals row.
app::Sheet summarySheet(const records::SummaryLine& total, records::SummaryKind kind);

/// All indirect fees of a project as a table: the groups, below each its fees, and their total.
app::Sheet feeSheet(records::Project& project);

}  // namespace operators
