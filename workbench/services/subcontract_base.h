#pragma once

#include <QString>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/costing/decimal.h"
#include "workbench/records/elements.h"

namespace services {

/// An entry of the base list of subcontracts (分包基础库): what a new subcontract starts with.
/// Texts are UTF-8.
struct SubcontractBaseEntry {
  std::string code, name, features, unit;
  std::string contractType;  ///< one of records::contractTypes(), or empty
  records::MeteringMethod metering = records::MeteringMethod::ByBills;
  std::string contentQuota, applicableArea, remark;
  std::string account;       ///< code or name of a cost account that a project may have
  costing::Decimal price;    ///< excluding tax, yuan per unit, 2 places
  costing::Decimal taxRate;  ///< per cent
};

/// A base list that cannot be used; what() is Chinese and names the place, the fault and the cure.
class SubcontractBaseError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads the JSON text (UTF-8) of a base list. docs/costing.md describes the file.
/// @throws SubcontractBaseError
std::vector<SubcontractBaseEntry> parseSubcontractBase(std::string_view json);

/// The base list: "分包基础库/分包基础库.json" in the template directory
/// (app::PathMgr::getTemplatePath), or the built-in one where there is no such file. A file that
/// cannot be used is left as it is: `problem` then says why (Chinese, with the path), and the
/// built-in one is the answer.
std::vector<SubcontractBaseEntry> loadSubcontractBase(const QString& templateDirectory,
                                                      QString* problem = nullptr);

}  // namespace services
