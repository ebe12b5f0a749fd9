#include "workbench/records/fee_template.h"

#include <algorithm>
#include <array>

#include "workbench/records/project.h"
#include "workbench/records/template_text.h"

namespace records {
namespace {

using Json = nlohmann::json;
using Line = FeeTemplate::Line;
using Source = FeeTemplate::Source;

constexpr TemplateText File("费用模板");
constexpr int MaxDepth = 8;
constexpr char MarginName[] = "企业管理费和利润";
constexpr char FeesName[] = "间接费";
constexpr char SubcontractsName[] = "分包";
constexpr char TaxName[] = "税金";

std::string textOf(const Json& object, const char* key, const std::string& place) {
  const std::string at = place.empty() ? key : place + "." + key;
  const auto found = object.find(key);
  if (found == object.end()) File.fail(at, "缺失，请补上一段文字。");
  if (!found->is_string() || found->get_ref<const std::string&>().empty()) {
    File.fail(at, "应为非空的文字，例如 \"人工费\"。");
  }
  return found->get<std::string>();
}

costing::Decimal rateOf(const Json& rates, const char* key) {
  const std::string place = std::string("税率.") + key;
  const auto found = rates.find(key);
  if (found == rates.end()) File.fail(place, "缺失，请补上税率（%），例如 9。");
  const std::optional<costing::Decimal> rate = TemplateText::number(*found, 100, 4);
  if (!rate) File.fail(place, "应为 0 到 100 之间、最多 4 位小数的数，单位是 %。");
  return *rate;
}

struct Reader {
  std::array<bool, CategoryCount> elements{};
  bool margin = false, fees = false, subcontracts = false, tax = false;

  void take(bool& taken, const std::string& place, const std::string& source) {
    if (taken) File.fail(place, "的来源“" + source + "”已经被前面的行使用，请删去其中一行。");
    taken = true;
  }

  void readSource(const Json& object, const std::string& place, Line& line) {
    const std::string at = place + ".来源";
    const std::string source = textOf(object, "来源", place);
    const auto groups = object.find("费用组");
    if (groups != object.end() && source != FeesName) {
      File.fail(place + ".费用组", "只能用在来源为“间接费”的行上，请删去。");
    }
    for (int i = 0; i < CategoryCount; ++i) {
      const auto category = static_cast<Category>(i);
      if (source != nameOf(category)) continue;
      take(elements[static_cast<std::size_t>(i)], at, source);
      line.source = Source::Element;
      line.category = category;
      return;
    }
    if (source == MarginName) {
      take(margin, at, source);
      line.source = Source::Margin;
    } else if (source == SubcontractsName) {
      take(subcontracts, at, source);
      line.source = Source::Subcontracts;
    } else if (source == TaxName) {
      take(tax, at, source);
      line.source = Source::Tax;
    } else if (source == FeesName) {
      line.source = Source::Fees;
      if (groups == object.end()) {
        take(fees, at, source);
        return;
      }
      if (!groups->is_array() || groups->empty()) {
        File.fail(place + ".费用组", "应为费用组名称的列表，例如 [\"规费\"]。");
      }
      for (const Json& name : *groups) {
        if (!name.is_string() || name.get_ref<const std::string&>().empty()) {
          File.fail(place + ".费用组", "的每一项应为非空的文字。");
        }
        line.feeNames.push_back(name.get<std::string>());
      }
    } else {
      File.fail(
          at, "的值“" + source +
                  "”未知，请改为下列之一：人工、材料、机械、主材、设备、企业管理费和利润、间接费、"
                  "分包、税金。");
    }
  }

  std::vector<Line> readLines(const Json& list, const std::string& place, int depth) {
    if (!list.is_array() || list.empty()) File.fail(place, "应为至少有一行的列表。");
    if (depth > MaxDepth) File.fail(place, "嵌套过深，最多 8 层。");
    std::vector<Line> lines;
    for (std::size_t i = 0; i < list.size(); ++i) {
      const std::string at = place + "[" + std::to_string(i + 1) + "]";
      const Json& object = list[i];
      if (!object.is_object())
        File.fail(at, "应为一行费用，例如 {\"名称\": \"人工费\", \"来源\": \"人工\"}。");
      File.requireKeys(object, at, {"名称", "来源", "费用组", "行"});
      Line& line = lines.emplace_back();
      line.name = textOf(object, "名称", at);
      const auto below = object.find("行");
      if (below != object.end()) {
        if (object.contains("来源") || object.contains("费用组")) {
          File.fail(at, "既有“行”又有“来源”，请只保留一个：有下级的行等于下级之和。");
        }
        line.lines = readLines(*below, at + ".行", depth + 1);
      } else {
        readSource(object, at, line);
      }
    }
    return lines;
  }

  /// A source without a line would be money that the total lacks.
  void requireAll() const {
    std::string missing;
    const auto need = [&](bool there, const std::string& source) {
      if (!there) missing += (missing.empty() ? "" : "、") + source;
    };
    for (int i = 0; i < CategoryCount; ++i) {
      need(elements[static_cast<std::size_t>(i)], nameOf(static_cast<Category>(i)));
    }
    need(margin, MarginName);
    need(fees, "间接费（不带“费用组”）");
    need(tax, TaxName);
    if (!missing.empty()) {
      File.fail("行", "缺少下列来源，合计会不完整，请各补上一行：" + missing + "。");
    }
  }
};

}  // namespace

FeeTemplate FeeTemplate::parse(std::string_view json) {
  const Json root = File.parse(json);
  if (!root.is_object()) {
    throw TemplateError("费用模板的最外层应为一对花括号，其中有“税率”和“行”。");
  }
  File.requireKeys(root, "", {"说明", "税率", "行"});
  const auto rates = root.find("税率");
  if (rates == root.end() || !rates->is_object()) {
    File.fail("税率", "缺失或不是一组税率，请补上“一般计税”和“简易计税”。");
  }
  File.requireKeys(*rates, "税率", {"一般计税", "简易计税", "取值"});

  FeeTemplate result;
  result.generalRate = rateOf(*rates, "一般计税");
  result.simplifiedRate = rateOf(*rates, "简易计税");
  if (rates->contains("取值")) {
    const std::string from = textOf(*rates, "取值", "税率");
    if (from != "工程" && from != "模板") File.fail("税率.取值", "应为“工程”或“模板”。");
    result.rateOfTemplate = from == "模板";
  }
  Reader reader;
  const auto lines = root.find("行");
  if (lines == root.end()) File.fail("行", "缺失，请补上费用的各行。");
  result.lines = reader.readLines(*lines, "行", 1);
  reader.requireAll();
  return result;
}

costing::Decimal FeeTemplate::taxRate(const Facts& facts) const {
  const bool own = facts.taxMethod == tax_methods::Own;
  if (own || (!rateOfTemplate && !facts.taxMethod.empty())) return facts.taxRate;
  return facts.taxMethod == tax_methods::Simplified ? simplifiedRate : generalRate;
}

}  // namespace records
