#pragma once

#include <functional>

#include "workbench/records/project.h"

namespace exchange {
struct SourceDocument;
}

namespace store {

/// Fills an empty project from a source file. The budget resource items of each unit work are
/// gathered to one resource item wherever category, code, name, specification, unit, price, tax
/// rate, cost account and the three flags are the same; its cost price starts at the budget price.
/// `progress` hears how many budget items are done and answers false to cancel. False when
/// cancelled; the project is then to be thrown away.
bool fillFromSource(records::Project& project, const exchange::SourceDocument& source,
                    const std::function<bool(std::size_t done)>& progress = {});

}  // namespace store
