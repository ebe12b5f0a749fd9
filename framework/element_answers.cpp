#include "framework/element_answers.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace gui {

// The slot that holds the element, or the free one where it belongs.
std::size_t ElementAnswers::slotOf(const proxy::Element* element) const {
  const std::size_t mask = slots_.size() - 1;
  // A tree is mostly asked about in the order in which it was made: elements that lie beside each
  // other in memory do so here, too, and each stretch of memory has a start of its own.
  const auto address = reinterpret_cast<std::uintptr_t>(element);
  const std::uint64_t hash = (address >> 6) + (address >> 24) * 0x9E3779B97F4A7C15ULL;
  std::size_t slot = static_cast<std::size_t>(hash) & mask;
  while (slots_[slot].element && slots_[slot].element.get() != element) slot = (slot + 1) & mask;
  return slot;
}

std::optional<bool> ElementAnswers::find(const proxy::Element* element) const {
  if (slots_.empty()) return std::nullopt;
  const Slot& slot = slots_[slotOf(element)];
  return slot.element ? std::optional<bool>(slot.answer) : std::nullopt;
}

void ElementAnswers::insert(proxy::Element* element, bool answer) {
  if (2 * (size_ + 1) > slots_.size()) grow();
  Slot& slot = slots_[slotOf(element)];
  if (!slot.element) ++size_;
  slot.element = element;
  slot.answer = answer;
}

void ElementAnswers::clear() {
  if (size_ == 0) return;
  // The room stays: the next filter asks about as many elements.
  std::fill(slots_.begin(), slots_.end(), Slot());
  size_ = 0;
}

void ElementAnswers::grow() {
  std::vector<Slot> old(slots_.empty() ? 64 : 2 * slots_.size());
  old.swap(slots_);
  for (Slot& slot : old) {
    if (slot.element) slots_[slotOf(slot.element.get())] = std::move(slot);
  }
}

}  // namespace gui
