#include "host/domain/operator.h"

namespace domain {

Operator::~Operator() = default;

void AssignText(Value& out, const std::string& text) {
  if (auto* existing = std::get_if<std::string>(&out)) {
    *existing = text;
  } else {
    out.emplace<std::string>(text);
  }
}

}  // namespace domain
