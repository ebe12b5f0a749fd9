#pragma once

#include <string>
#include <vector>

#include "contract_export.h"

namespace domain::qce {

/// The contract types of a subcontract, in the order in which they are offered.
QCE_CONTRACT_EXPORT extern const std::string LabourOutsourcingContract;
QCE_CONTRACT_EXPORT extern const std::string LabourOnlyContract;
QCE_CONTRACT_EXPORT extern const std::string SpecialtySubcontract;
QCE_CONTRACT_EXPORT extern const std::string PurchaseContract;
QCE_CONTRACT_EXPORT extern const std::string LeaseContract;
/// What is offered for none.
QCE_CONTRACT_EXPORT extern const std::string BlankContractType;

/// All of them, the one for none at the end.
QCE_CONTRACT_EXPORT const std::vector<std::string>& contractTypes();

}  // namespace domain::qce
