#pragma once

#include <vector>

#include "workbench/records/summary.h"

namespace shell {

class Session;

/// Leads to the page that shows what stands behind the line of a summary, and there to the records
/// themselves: resource items are narrowed to a unit work or a cost account, bills and fees are
/// selected. Lines without such a page, or whose page is not there, lead nowhere. With
/// `onlyAsking`, answers whether it would lead somewhere and goes nowhere.
bool followSummaryLine(Session& session, const records::SummaryLine& line, bool onlyAsking);

/// Leads to the page of bills and selects these there; false where that page is not there.
bool followBills(Session& session, const std::vector<proxy::Element*>& bills);

/// Leads to the page of resource items with all its filters off, and selects this one there; null
/// for none. False where that page is not there.
bool followItem(Session& session, records::ResourceItem* item);

}  // namespace shell
