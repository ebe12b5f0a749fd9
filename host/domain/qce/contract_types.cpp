#include "host/domain/qce/contract_types.h"

namespace domain::qce {

const std::string LabourOutsourcingContract = "劳务外包合同";
const std::string LabourOnlyContract = "清包合同";
const std::string SpecialtySubcontract = "专业分包合同";
const std::string PurchaseContract = "采购合同";
const std::string LeaseContract = "租赁合同";
const std::string BlankContractType = "<空白>";

const std::vector<std::string>& contractTypes() {
  static const std::vector<std::string> all{
      LabourOutsourcingContract, LabourOnlyContract, SpecialtySubcontract,
      PurchaseContract,          LeaseContract,      BlankContractType};
  return all;
}

}  // namespace domain::qce
