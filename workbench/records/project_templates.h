#pragma once

#include <string>
#include <utility>
#include <vector>

namespace records {

class Project;

/// What a project that is made from nothing starts with (工程模板): unit works and cost accounts.
/// Name (UTF-8) and key of each template, the usual one first.
std::vector<std::pair<std::string, std::string>> projectTemplates();

/// Fills an empty project from the template with this key; an unknown or empty key takes the first.
void fillFromTemplate(Project& project, const std::string& key);

}  // namespace records
