#pragma once

#include "workbench/shell/session.h"

namespace shell {

/// The page 间接费 of a project.
Page makeIndirectFeePage(Session& session);

}  // namespace shell
