#pragma once

#include <vector>

#include "workbench/shell/session.h"

namespace records {
class ResourceItem;
}

namespace shell {

/// 人材机归集: what of the resource items counts in cost, and their summary.
Page makeDesResItemPage(Session& session);
/// Goes to that page and selects these items in it. False where there is none to show.
bool followItems(Session& session, const std::vector<records::ResourceItem*>& items);

}  // namespace shell
