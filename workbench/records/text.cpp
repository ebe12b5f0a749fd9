#include "workbench/records/text.h"

#include <functional>

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
  if (4 * (texts_.size() + 1) > 3 * slots_.size()) grow();
  const auto hash = static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
  Slot& slot = slots_[slotOf(hash, text)];
  if (slot.number == 0) {
    texts_.emplace_back(text);
    slot = {hash, static_cast<std::uint32_t>(texts_.size())};
  }
  return Text(&texts_[slot.number - 1]);
}

// The slot that holds the text, or the free one where it belongs.
std::size_t TextPool::slotOf(std::uint32_t hash, std::string_view text) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t at = hash & mask;
  while (slots_[at].number != 0 &&
         (slots_[at].hash != hash || texts_[slots_[at].number - 1] != text)) {
    at = (at + 1) & mask;
  }
  return at;
}

void TextPool::grow() {
  std::vector<Slot> old(slots_.empty() ? 256 : 2 * slots_.size());
  old.swap(slots_);
  const std::size_t mask = slots_.size() - 1;
  for (const Slot& slot : old) {
    if (slot.number == 0) continue;
    // All differ: the first free slot will do, without looking at the texts.
    std::size_t at = slot.hash & mask;
    while (slots_[at].number != 0) at = (at + 1) & mask;
    slots_[at] = slot;
  }
}

}  // namespace records
