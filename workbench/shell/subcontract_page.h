#pragma once

#include "workbench/shell/session.h"

namespace shell {

/// The page 分包设置 of a project.
Page makeSubcontractPage(Session& session);

}  // namespace shell
