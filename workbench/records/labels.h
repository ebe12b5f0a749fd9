#pragma once

#include <string>

#include "workbench/records/elements.h"

/// How messages to the user name a record: what it is, its code and its name.
namespace records {

std::string label(const ResourceItem& item);
std::string label(const Bill& bill);
std::string label(const SubcontractData& entry);

}  // namespace records
