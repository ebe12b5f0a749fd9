#include "host/domain/field_keys.h"

namespace domain::keys {

const std::string CostAccount = "QCE_CostAccount";
const std::string BRIType = "QCE_BRIType";
const std::string BRICode = "QCE_BRICode";
const std::string BRIName = "QCE_BRIName";
const std::string BRISpec = "QCE_BRISpec";
const std::string BRIUnit = "QCE_BRIUnit";
const std::string BRIAmount = "QCE_BRIAmount";
const std::string BRIBudgetTotalCost = "QCE_BRIBudgetTotalCost";
const std::string BRIExcludedTaxFee = "QCE_BRIExcludedTaxFee";
const std::string BRITaxRate = "QCE_BRITaxRate";
const std::string BRIIncludedTaxFee = "QCE_BRIIncludedTaxFee";
const std::string BRIExcludedTaxTotalCost = "QCE_BRIExcludedTaxTotalCost";
const std::string BRIIncludedTaxTotalCost = "QCE_BRIIncludedTaxTotalCost";
const std::string BRIAssociation = "QCE_BRIAssociation";
const std::string BRIIsProvidedByJia = "QCE_BRIIsProvidedByJia";
const std::string BRIProvisional = "BRIProvisional";  // an older key, without the prefix
const std::string BRIPriceAdjustable = "QCE_BRIPriceAdjustable";
const std::string BRIComment = "QCE_BRIComment";

const std::string BRIContractType = "QCE_BRIContractType";
const std::string BRIMeteringMethod = "QCE_BRIMeteringMethod";
const std::string BRIContractAttachment = "QCE_BRIContractAttachment";
const std::string BRIContentQuota = "QCE_BRIContentQuota";
const std::string BRIPriceExpiryDate = "QCE_BRIPriceExpiryDate";
const std::string BRIApplicableArea = "QCE_BRIApplicableArea";
const std::string BRICollectedItems = "QCE_BRICollectedItems";

const std::string NPChoose = "QCE_NPChoose";
const std::string NPType = "QCE_NPType";
const std::string NPCode = "QCE_NPCode";
const std::string NPName = "QCE_NPName";
const std::string NPUnit = "QCE_NPUnit";
const std::string NPAmount = "QCE_NPAmount";
const std::string NPCollectionAmount = "QCE_NPCollectionAmount";
const std::string NPExcludeTaxUnitPrice = "QCE_NPExcludeTaxUnitPrice";
const std::string NPExcludeTaxTotalCost = "QCE_NPExcludeTaxTotalCost";
const std::string NPQuantutyCoefficient = "QCE_NPQuantutyCoefficient";

const std::string IFNumber = "QCE_IFNumber";
const std::string IFCode = "QCE_IFCode";
const std::string IFName = "QCE_IFName";
const std::string IFBasis = "QCE_IFBasis";
const std::string IFBudgetBase = "QCE_IFBudgetBase";
const std::string IFBudgetRate = "QCE_IFBudgetRate";
const std::string IFBudgetAmount = "QCE_IFBudgetAmount";
const std::string IFCostExpression = "QCE_IFCostExpression";
const std::string IFCostBase = "QCE_IFCostBase";
const std::string IFCostRate = "QCE_IFCostRate";
const std::string IFCostAmount = "QCE_IFCostAmount";
const std::string IFDifference = "QCE_IFDifference";

const std::string SECode = "QCE_SECode";
const std::string SEName = "QCE_SEName";
const std::string SEProjFeatures = "SEProjFeatures";  // an older key, without the prefix
const std::string SEUnit = "QCE_SEUnit";
const std::string SEAmount = "QCE_SEAmount";

const std::string SEQuantityBillTendering = "SEQuantityBillTendering";
const std::string SECalcExpr = "SECalcExpr";
const std::string SEQuantity = "SEQuantity";
const std::string SEBudgetTotalCost = "QCE_SEBudgetTotalCost";
const std::string SECostTotalCost = "QCE_SECostTotalCost";
const std::string SEType = "SEType";
const std::string SERemark = "SERemark";
const std::string SEUnitWork = "QCE_SEUnitWork";
const std::string SESection = "QCE_SESection";
const std::string SESubcontracts = "QCE_SESubcontracts";

const std::string SEContent = "QCE_SEContent";
const std::string SEBudgetContent = "QCE_SEBudgetContent";
const std::string SECoefficient = "QCE_SECoefficient";
const std::string SEBudgetAmount = "QCE_SEBudgetAmount";
const std::string SECostAmount = "QCE_SECostAmount";
const std::string BRIBillUnitPrice = "QCE_BRIBillUnitPrice";
const std::string RIExcludedTaxFee = "QCE_RIExcludedTaxFee";
const std::string RIExcludedTaxTotalCost = "QCE_RIExcludedTaxTotalCost";

}  // namespace domain::keys
