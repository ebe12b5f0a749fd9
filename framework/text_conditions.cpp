#include "framework/text_conditions.h"

#include <algorithm>

namespace gui {
namespace {

bool holds(const domain::Operator& op, const proxy::Element* element, const std::string& key,
           const std::string& wanted) {
  if (const std::string* kept = op.peekText(element, key, domain::DisplayRole)) {
    return kept->find(wanted) != std::string::npos;
  }
  domain::Value value;
  if (!op.getValue(element, key, domain::DisplayRole, value)) return false;
  const auto* text = std::get_if<std::string>(&value);
  return text != nullptr && text->find(wanted) != std::string::npos;
}

}  // namespace

bool TextConditions::areFulfilled(const domain::Operator* op, const proxy::Element* element) const {
  const std::size_t count = std::min(texts_.size(), keys_.size());
  for (std::size_t i = 0; i < count; ++i) {
    if (texts_[i].empty()) continue;
    if (op == nullptr || !holds(*op, element, *keys_[i], texts_[i])) return false;
  }
  return true;
}

}  // namespace gui
