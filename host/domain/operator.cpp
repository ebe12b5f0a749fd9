#include "host/domain/operator.h"

namespace domain {

Operator::~Operator() = default;

const std::string* Operator::peekText(const proxy::Element* /*element*/, const std::string& /*key*/,
                                      int /*role*/) const {
  return nullptr;
}

void AssignText(Value& out, const std::string& text) {
  if (auto* existing = std::get_if<std::string>(&out)) {
    *existing = text;
  } else {
    out.emplace<std::string>(text);
  }
}

}  // namespace domain
