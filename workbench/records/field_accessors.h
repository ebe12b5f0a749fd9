#pragma once

#include "host/proxy/qce/field_accessors.h"

namespace records {

/// What dialogs call the bills and cost resource items of a project. Bill codes carry their running
/// number, as source files give them.
proxy::qce::FieldAccessors fieldAccessors();

}  // namespace records
