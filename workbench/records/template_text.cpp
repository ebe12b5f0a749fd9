#include "workbench/records/template_text.h"

#include <algorithm>

namespace records {

using costing::Decimal;
using Json = nlohmann::json;

Json TemplateText::parse(std::string_view text) const {
  try {
    return Json::parse(text);
  } catch (const Json::parse_error& error) {
    const std::size_t end = std::min(error.byte > 0 ? error.byte - 1 : 0, text.size());
    const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<long>(end), '\n');
    throw TemplateError(kind_ + ("第 " + std::to_string(line)) +
                        " 行不是正确的 JSON，请检查引号、逗号和括号。");
  }
}

void TemplateText::requireKeys(const Json& object, const std::string& place,
                               const std::vector<std::string>& known) const {
  for (const auto& [key, value] : object.items()) {
    if (std::find(known.begin(), known.end(), key) != known.end()) continue;
    std::string at = place;
    if (!at.empty()) at += '.';
    at += key;
    fail(at, "不是可用的键，请改为下列之一：" + listed(known) + "。");
  }
}

void TemplateText::fail(const std::string& place, const std::string& what) const {
  throw TemplateError(kind_ + ("的“" + place) + "”" + what);
}

std::optional<Decimal> TemplateText::number(const Json& value, const Decimal& most, int places) {
  std::optional<Decimal> number;
  if (value.is_number()) number = Decimal::fromDouble(value.get<double>());
  if (value.is_string()) number = Decimal::parse(value.get<std::string>());
  if (!number || number->isNegative() || *number > most || *number != number->rounded(places)) {
    return {};
  }
  return number;
}

std::string TemplateText::listed(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : "、") + name;
  return list;
}

}  // namespace records
