#pragma once

#include "workbench/shell/session.h"

namespace shell {

/// The page of what is known of the project as a whole: its facts, its money as the source declares
/// and as it was read, and how it is taxed, which can be changed, and summed up.
Page makeProjectInfoPage(Session& session);

}  // namespace shell
