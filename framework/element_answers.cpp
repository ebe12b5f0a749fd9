#include "framework/element_answers.h"

namespace gui {

std::optional<bool> ElementAnswers::find(const proxy::Element* element) const {
  const std::uintptr_t place = reinterpret_cast<std::uintptr_t>(element) / PlaceBytes;
  const auto stretch = stretches_.find(place / Places);
  if (stretch == stretches_.end() || !stretch->second.known[place % Places]) return std::nullopt;
  return stretch->second.answer[place % Places];
}

void ElementAnswers::insert(proxy::Element* element, bool answer) {
  const std::uintptr_t place = reinterpret_cast<std::uintptr_t>(element) / PlaceBytes;
  Stretch& stretch = stretches_[place / Places];
  if (!stretch.known[place % Places]) {
    held_.emplace_back(element);
    stretch.known.set(place % Places);
  }
  stretch.answer.set(place % Places, answer);
}

void ElementAnswers::clear() {
  stretches_.clear();
  held_.clear();  // its room stays: the next filter asks about as many elements
}

}  // namespace gui
