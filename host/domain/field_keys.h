#pragma once

#include <string>

#include "contract_export.h"

/// Field keys: UTF-8 texts that name a column's field, built once at start-up and compared byte for
/// byte. The spelling is part of the contract with the host.
namespace domain::keys {

// Resource items.
QCE_CONTRACT_EXPORT extern const std::string CostAccount;  ///< 成本科目
QCE_CONTRACT_EXPORT extern const std::string BRIType;      ///< category (人工, 材料, ...)
QCE_CONTRACT_EXPORT extern const std::string BRICode;      ///< 编码
QCE_CONTRACT_EXPORT extern const std::string BRIName;      ///< 名称
QCE_CONTRACT_EXPORT extern const std::string BRISpec;      ///< 规格型号
QCE_CONTRACT_EXPORT extern const std::string BRIUnit;      ///< 单位
QCE_CONTRACT_EXPORT extern const std::string BRIAmount;    ///< quantity, in the item's unit
QCE_CONTRACT_EXPORT extern const std::string BRIBudgetTotalCost;  ///< budget amount, yuan
QCE_CONTRACT_EXPORT extern const std::string BRIExcludedTaxFee;  ///< unit price excluding tax, yuan
QCE_CONTRACT_EXPORT extern const std::string BRITaxRate;         ///< tax rate, per cent
QCE_CONTRACT_EXPORT extern const std::string BRIIncludedTaxFee;  ///< unit price including tax, yuan
QCE_CONTRACT_EXPORT extern const std::string
    BRIExcludedTaxTotalCost;  ///< amount excluding tax, yuan
QCE_CONTRACT_EXPORT extern const std::string
    BRIIncludedTaxTotalCost;                                      ///< amount including tax, yuan
QCE_CONTRACT_EXPORT extern const std::string BRIAssociation;      ///< "√" when associated
QCE_CONTRACT_EXPORT extern const std::string BRIIsProvidedByJia;  ///< bool: supplied by the owner
QCE_CONTRACT_EXPORT extern const std::string BRIProvisional;      ///< bool: provisional price
QCE_CONTRACT_EXPORT extern const std::string BRIPriceAdjustable;  ///< bool: price adjustable
QCE_CONTRACT_EXPORT extern const std::string BRIComment;          ///< annotation (批注)

// Pooling (归集) of budget resource items.
QCE_CONTRACT_EXPORT extern const std::string NPChoose;  ///< check box; the model holds its state
QCE_CONTRACT_EXPORT extern const std::string NPType;    ///< category (人工, 材料, ...)
QCE_CONTRACT_EXPORT extern const std::string NPCode;
QCE_CONTRACT_EXPORT extern const std::string NPName;
QCE_CONTRACT_EXPORT extern const std::string NPUnit;
QCE_CONTRACT_EXPORT extern const std::string NPAmount;  ///< what is left to pool, in the row's unit
QCE_CONTRACT_EXPORT extern const std::string NPCollectionAmount;     ///< quantity to pool
QCE_CONTRACT_EXPORT extern const std::string NPExcludeTaxUnitPrice;  ///< yuan
QCE_CONTRACT_EXPORT extern const std::string NPExcludeTaxTotalCost;  ///< of what is left, yuan
QCE_CONTRACT_EXPORT extern const std::string NPQuantutyCoefficient;

}  // namespace domain::keys
