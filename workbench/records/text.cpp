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
  return Text(&*texts_.emplace(text).first);
}

}  // namespace records
