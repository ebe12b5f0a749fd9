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

// Subcontract entries, beside the keys above.
QCE_CONTRACT_EXPORT extern const std::string BRIContractType;        ///< see qce/contract_types.h
QCE_CONTRACT_EXPORT extern const std::string BRIMeteringMethod;      ///< 计量方式
QCE_CONTRACT_EXPORT extern const std::string BRIContractAttachment;  ///< 合同附件
QCE_CONTRACT_EXPORT extern const std::string BRIContentQuota;        ///< what the price contains
QCE_CONTRACT_EXPORT extern const std::string BRIPriceExpiryDate;     ///< yyyy-MM-dd
QCE_CONTRACT_EXPORT extern const std::string BRIApplicableArea;      ///< 适用地区
QCE_CONTRACT_EXPORT extern const std::string BRICollectedItems;      ///< how many resource items

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

// Items of indirect fees. What begins with Budget is as the source file had it.
QCE_CONTRACT_EXPORT extern const std::string IFNumber;  ///< running number in the group, from 1
QCE_CONTRACT_EXPORT extern const std::string IFCode;
QCE_CONTRACT_EXPORT extern const std::string IFName;
QCE_CONTRACT_EXPORT extern const std::string IFBasis;         ///< what the fee is reckoned on, text
QCE_CONTRACT_EXPORT extern const std::string IFBudgetBase;    ///< yuan
QCE_CONTRACT_EXPORT extern const std::string IFBudgetRate;    ///< per cent
QCE_CONTRACT_EXPORT extern const std::string IFBudgetAmount;  ///< yuan
QCE_CONTRACT_EXPORT extern const std::string IFCostExpression;  ///< of the cost base, text
QCE_CONTRACT_EXPORT extern const std::string IFCostBase;        ///< its value, yuan
QCE_CONTRACT_EXPORT extern const std::string IFCostRate;        ///< per cent
QCE_CONTRACT_EXPORT extern const std::string IFCostAmount;      ///< yuan
QCE_CONTRACT_EXPORT extern const std::string IFDifference;      ///< budget less cost, yuan

// Bills.
QCE_CONTRACT_EXPORT extern const std::string SECode;          ///< 清单编码
QCE_CONTRACT_EXPORT extern const std::string SEName;          ///< 清单名称
QCE_CONTRACT_EXPORT extern const std::string SEProjFeatures;  ///< 项目特征
QCE_CONTRACT_EXPORT extern const std::string SEUnit;          ///< 单位
QCE_CONTRACT_EXPORT extern const std::string SEAmount;        ///< quantity of the bill, in its unit

// The tree of bills. Older keys are without the prefix.
QCE_CONTRACT_EXPORT extern const std::string SEQuantityBillTendering;  ///< 招标工程量, as tendered
QCE_CONTRACT_EXPORT extern const std::string SECalcExpr;  ///< expression of the cost quantity
QCE_CONTRACT_EXPORT extern const std::string SEQuantity;  ///< 成本工程量, what the cost counts
QCE_CONTRACT_EXPORT extern const std::string SEBudgetTotalCost;  ///< revenue excluding tax, yuan
QCE_CONTRACT_EXPORT extern const std::string SECostTotalCost;    ///< cost excluding tax, yuan
QCE_CONTRACT_EXPORT extern const std::string SEType;             ///< 类型
QCE_CONTRACT_EXPORT extern const std::string SERemark;           ///< 备注
QCE_CONTRACT_EXPORT extern const std::string SEUnitWork;         ///< name of its unit work
QCE_CONTRACT_EXPORT extern const std::string SESection;          ///< name of its section
QCE_CONTRACT_EXPORT extern const std::string SESubcontracts;     ///< names of subcontract entries

// Bills of a resource item.
QCE_CONTRACT_EXPORT extern const std::string SEContent;         ///< actual content per unit of bill
QCE_CONTRACT_EXPORT extern const std::string SEBudgetContent;   ///< budget content per unit of bill
QCE_CONTRACT_EXPORT extern const std::string SECoefficient;     ///< factor of the cost quantity
QCE_CONTRACT_EXPORT extern const std::string SEBudgetAmount;    ///< budget quantity, in item units
QCE_CONTRACT_EXPORT extern const std::string SECostAmount;      ///< cost quantity, in item units
QCE_CONTRACT_EXPORT extern const std::string BRIBillUnitPrice;  ///< unit price of the bill, yuan
QCE_CONTRACT_EXPORT extern const std::string
    RIExcludedTaxFee;  ///< subcontract cost price per unit of bill excluding tax, yuan
QCE_CONTRACT_EXPORT extern const std::string
    RIExcludedTaxTotalCost;  ///< cost of the item in the bill excluding tax, yuan

}  // namespace domain::keys
