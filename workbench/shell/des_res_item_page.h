#pragma once

#include "workbench/shell/session.h"

namespace shell {

/// 人材机归集: what of the resource items counts in cost, and their summary.
Page makeDesResItemPage(Session& session);

}  // namespace shell
