#pragma once

#include <QString>
#include <vector>

#include "workbench/records/fee_template.h"
#include "workbench/services/subcontract_base.h"

namespace services {

// What the user can replace by a file in the template directory (app::PathMgr::getTemplatePath).
// Without such a file the built-in one is the answer; so it is where a file cannot be used, which
// is left as it is: `problem` then says why (Chinese, with the path).

/// The fee template of the summaries: "费用模板/投标费用.json".
records::FeeTemplate loadFeeTemplate(const QString& templateDirectory, QString* problem = nullptr);

/// The base list: "分包基础库/分包基础库.json".
std::vector<SubcontractBaseEntry> loadSubcontractBase(const QString& templateDirectory,
                                                      QString* problem = nullptr);

}  // namespace services
