#pragma once

#include <string>

#include "contract_export.h"

/// Field keys of the design-side resource items, beside those that all resource items have; see
/// host/domain/field_keys.h.
namespace domain::keys {

QCE_CONTRACT_EXPORT extern const std::string BRIMarketTotalCost;  ///< quantity × price, yuan
QCE_CONTRACT_EXPORT extern const std::string BRILinkCB;           ///< "√" when linked to cost
QCE_CONTRACT_EXPORT extern const std::string BRIContract;   ///< subcontract entry that it is in
QCE_CONTRACT_EXPORT extern const std::string BRIBillCount;  ///< bills that it comes from, integer
QCE_CONTRACT_EXPORT extern const std::string BRIItemCount;  ///< items in a summary's row, integer

}  // namespace domain::keys
