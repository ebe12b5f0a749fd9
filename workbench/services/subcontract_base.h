#pragma once

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

/// Reads the JSON text (UTF-8) of a base list. docs/costing.md describes the file.
/// @throws records::TemplateError
std::vector<SubcontractBaseEntry> parseSubcontractBase(std::string_view json);

}  // namespace services
