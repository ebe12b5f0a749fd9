#include "workbench/operators/cell_values.h"

#include "host/domain/operator.h"

namespace operators {

using costing::Decimal;
using domain::Value;

bool put(Value& out, const std::string& text) {
  domain::AssignText(out, text);
  return true;
}

bool put(Value& out, const Decimal& number) {
  out = number.toDouble();
  return true;
}

bool readDecimal(const Value& value, std::optional<Decimal>& out) {
  if (std::holds_alternative<std::monostate>(value)) return true;
  if (const auto* number = std::get_if<double>(&value)) {
    out = Decimal::fromDouble(*number);
  } else if (const auto* integer = std::get_if<int>(&value)) {
    out = Decimal(*integer);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    if (text->empty()) return true;
    out = Decimal::parse(*text);
  }
  return out.has_value();
}

std::string trimmed(const std::string& text) {
  constexpr char Blanks[] = " \t\r\n";
  const auto first = text.find_first_not_of(Blanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

}  // namespace operators
