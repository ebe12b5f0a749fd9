#pragma once

#include <QString>

#include "workbench/records/fee_template.h"

namespace services {

/// The fee template of the summaries: "费用模板/投标费用.json" in the template directory
/// (app::PathMgr::getTemplatePath), or the built-in one where there is no such file. A file that
/// cannot be used is left as it is: `problem` then says why (Chinese, with the path), and the
/// built-in one is the answer.
records::FeeTemplate loadFeeTemplate(const QString& templateDirectory, QString* problem = nullptr);

}  // namespace services
