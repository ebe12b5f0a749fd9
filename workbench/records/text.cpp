#include "workbench/records/text.h"

namespace records {
namespace {

const std::string& emptyText() {
  static const std::string text;
  return text;
}

}  // namespace

Text::Text() : text_(&emptyText()) {}

Text TextPool::intern(std::string_view text) {
  if (text.empty()) return {};
  if (const auto found = known_.find(text); found != known_.end()) return Text(found->second);
  const std::string& kept = texts_.emplace_back(text);
  known_.emplace(kept, &kept);
  return Text(&kept);
}

}  // namespace records
