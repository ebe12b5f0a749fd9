#include "workbench/services/subcontract_base.h"

#include <algorithm>
#include <optional>

#include "workbench/records/template_text.h"

namespace services {
namespace {

using costing::Decimal;
using Json = nlohmann::json;

constexpr records::TemplateText File("分包基础库");
constexpr char Entries[] = "条目";

std::string textOf(const Json& entry, const char* key, const std::string& place) {
  const auto found = entry.find(key);
  if (found == entry.end()) return {};
  if (!found->is_string()) File.fail(place + "." + key, "应为文字，请加上引号。");
  return found->get<std::string>();
}

Decimal numberOf(const Json& entry, const char* key, const std::string& place, const Decimal& most,
                 int places) {
  const auto found = entry.find(key);
  if (found == entry.end()) return {};
  const std::optional<Decimal> number = records::TemplateText::number(*found, most, places);
  if (!number) {
    File.fail(place + "." + key, "应为 0 到 " + most.toString() + " 之间、最多 " +
                                     std::to_string(places) + " 位小数的数，请改正。");
  }
  return *number;
}

records::MeteringMethod meteringOf(const std::string& text, const std::string& place) {
  std::vector<std::string> names;
  for (int i = 0; i < records::MeteringMethodCount; ++i) {
    const auto method = static_cast<records::MeteringMethod>(i);
    names.push_back(records::nameOf(method));
    if (text.empty() || names.back() == text) return method;
  }
  File.fail(place + ".计量方式", "的值“" + text + "”未知，请改为下列之一：" +
                                     records::TemplateText::listed(names) + "。");
}

SubcontractBaseEntry readEntry(const Json& object, const std::string& place) {
  if (!object.is_object()) {
    File.fail(place, "应为一个条目，例如 {\"名称\": \"钢筋工程劳务\", \"单位\": \"t\"}。");
  }
  File.requireKeys(object, place,
                   {"编码", "名称", "项目特征", "单位", "合同类型", "计量方式", "定额含量",
                    "不含税单价", "税率", "成本科目", "适用区域", "备注"});
  SubcontractBaseEntry entry;
  entry.code = textOf(object, "编码", place);
  entry.name = textOf(object, "名称", place);
  entry.features = textOf(object, "项目特征", place);
  entry.unit = textOf(object, "单位", place);
  entry.contractType = textOf(object, "合同类型", place);
  entry.metering = meteringOf(textOf(object, "计量方式", place), place);
  entry.contentQuota = textOf(object, "定额含量", place);
  entry.applicableArea = textOf(object, "适用区域", place);
  entry.remark = textOf(object, "备注", place);
  entry.account = textOf(object, "成本科目", place);
  entry.price = numberOf(object, "不含税单价", place, 1000000000, costing::UnitPricePlaces);
  entry.taxRate = numberOf(object, "税率", place, 100, 4);
  if (entry.name.empty()) File.fail(place + ".名称", "缺失，请补上分包的名称。");
  const std::vector<std::string>& types = records::contractTypes();
  if (!entry.contractType.empty() &&
      std::find(types.begin(), types.end(), entry.contractType) == types.end()) {
    File.fail(place + ".合同类型", "的值“" + entry.contractType + "”未知，请改为下列之一：" +
                                       records::TemplateText::listed(types) +
                                       "；没有合同类型时请删去这个键。");
  }
  return entry;
}

}  // namespace

std::vector<SubcontractBaseEntry> parseSubcontractBase(std::string_view json) {
  const Json root = File.parse(json);
  const auto list = root.is_object() ? root.find(Entries) : root.end();
  if (!root.is_object() || list == root.end() || !list->is_array()) {
    File.fail(Entries, "缺失或不是列表，请补上，例如 {\"条目\": [{\"名称\": \"钢筋工程劳务\"}]}。");
  }
  std::vector<SubcontractBaseEntry> entries;
  for (const Json& object : *list) {
    entries.push_back(
        readEntry(object, std::string(Entries) + "[" + std::to_string(entries.size() + 1) + "]"));
  }
  return entries;
}

}  // namespace services
