#include "host/domain/operator.h"

namespace domain {

Operator::~Operator() = default;

const std::string* Operator::peekText(const proxy::Element* /*element*/, const std::string& /*key*/,
                                      int /*role*/) const {
  return nullptr;
}

bool Operator::setValue(proxy::Element* /*element*/, const std::string& /*key*/,
                        const Value& /*value*/, int /*role*/) {
  return false;
}

bool Operator::isEnabled(const proxy::Element* element, const std::string& /*key*/) const {
  return element != nullptr;
}

bool Operator::isEditable(const proxy::Element* /*element*/, const std::string& /*key*/) const {
  return false;
}

bool Operator::isCheckable(const proxy::Element* /*element*/, const std::string& /*key*/) const {
  return false;
}

void AssignText(Value& out, const std::string& text) {
  if (auto* existing = std::get_if<std::string>(&out)) {
    *existing = text;
  } else {
    out.emplace<std::string>(text);
  }
}

}  // namespace domain
