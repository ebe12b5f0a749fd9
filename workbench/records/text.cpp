#include "workbench/records/text.h"

#include <functional>

namespace records {
namespace {

const std::string& emptyText() {
  static const std::string text;
  return text;
}

// A hint; wrong ones cost next to nothing.
void prefetch(const void* address) {
  __builtin_prefetch(address);
}

}  // namespace

Text::Text() : text_(&emptyText()) {}

Text TextPool::intern(std::string_view text) {
  Text interned;
  intern(&text, &interned, 1);
  return interned;
}

void TextPool::intern(const std::string_view* texts, Text* interned, std::size_t count) {
  while (count > MostAtOnce) {
    intern(texts, interned, MostAtOnce);
    texts += MostAtOnce;
    interned += MostAtOnce;
    count -= MostAtOnce;
  }
  reserve(count);
  const std::size_t mask = slots_.size() - 1;
  std::array<std::uint32_t, MostAtOnce> hashes{};
  // Three rounds, each of which asks the memory for what the next one looks at.
  for (std::size_t i = 0; i < count; ++i) {
    hashes[i] = static_cast<std::uint32_t>(std::hash<std::string_view>()(texts[i]));
    prefetch(&slots_[hashes[i] & mask]);
  }
  std::array<const std::string*, MostAtOnce> likely{};
  for (std::size_t i = 0; i < count; ++i) {
    const Slot& slot = slots_[hashes[i] & mask];
    if (slot.number == 0 || slot.hash != hashes[i]) continue;
    likely[i] = &textAt(slot.number);
    prefetch(likely[i]);
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (likely[i] != nullptr) prefetch(likely[i]->data());
  }
  for (std::size_t i = 0; i < count; ++i) {
    interned[i] = texts[i].empty() ? Text() : find(hashes[i], texts[i]);
  }
}

Text TextPool::find(std::uint32_t hash, std::string_view text) {
  Slot& slot = slots_[slotOf(hash, text)];
  if (slot.number == 0) {
    if ((size_ >> ChunkBits) == chunks_.size()) {
      chunks_.push_back(std::make_unique<std::string[]>(std::size_t(1) << ChunkBits));
    }
    ++size_;
    chunks_.back()[(size_ - 1) & ((1U << ChunkBits) - 1)] = text;
    slot = {hash, size_};
  }
  return Text(&textAt(slot.number));
}

// The slot that holds the text, or the free one where it belongs.
std::size_t TextPool::slotOf(std::uint32_t hash, std::string_view text) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t at = hash & mask;
  while (slots_[at].number != 0 && (slots_[at].hash != hash || textAt(slots_[at].number) != text)) {
    at = (at + 1) & mask;
  }
  return at;
}

// Room for that many texts more, with a quarter of the slots free.
void TextPool::reserve(std::size_t more) {
  if (4 * (size_ + more) <= 3 * slots_.size()) return;
  std::vector<Slot> old(slots_.empty() ? 256 : 4 * slots_.size());
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
