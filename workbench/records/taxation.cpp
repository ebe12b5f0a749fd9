#include "workbench/records/taxation.h"

namespace records {

namespace tax_methods {
const std::string General = "一般计税";
const std::string Simplified = "简易计税";
const std::string Own = "自定税率";
}  // namespace tax_methods

namespace {
constexpr int MaxRatePlaces = 4;
}

std::string problemOf(const Taxation& taxation) {
  using namespace tax_methods;
  const std::string& method = taxation.method;
  if (!method.empty() && method != General && method != Simplified && method != Own) {
    return "没有计税方法“" + method + "”；请改为一般计税、简易计税或自定税率。";
  }
  const costing::Decimal& rate = taxation.rate;
  if (rate.isNegative() || rate > costing::Decimal(100)) {
    return "税率应在 0 到 100 之间（%），不能是 " + rate.toString() + "；请重新输入。";
  }
  if (rate.rounded(MaxRatePlaces) != rate) {
    return "税率最多 4 位小数，不能是 " + rate.toString() + "；请重新输入。";
  }
  return {};
}

}  // namespace records
