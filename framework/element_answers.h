#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "host/proxy/element.h"
#include "qce_export.h"

namespace gui {

/// Remembers one answer an element. The elements are held meanwhile, so that an element that was
/// dropped by its host cannot lend its address, and with it its answer, to a new one.
///
/// A tree is mostly asked about in the order in which it was made. So the answers stand by
/// stretches of memory, two bits an element: those of elements that lie beside each other are found
/// together.
class QCE_EXPORT ElementAnswers {
 public:
  std::optional<bool> find(const proxy::Element* element) const;
  /// Remembers `answer`, instead of an earlier one.
  void insert(proxy::Element* element, bool answer);
  void clear();
  std::size_t size() const { return held_.size(); }

 private:
  // No two elements begin within 16 bytes: each has at least a table of functions and a count.
  static constexpr std::size_t PlaceBytes = sizeof(proxy::Element);
  static constexpr std::size_t Places = 256;
  static_assert(PlaceBytes == 16, "the answers of a stretch fill a line of the processor's cache");

  struct Stretch {
    std::bitset<Places> known;
    std::bitset<Places> answer;
  };

  std::unordered_map<std::uintptr_t, Stretch> stretches_;  // by address / (PlaceBytes * Places)
  std::vector<scoped_refptr<proxy::Element>> held_;
};

}  // namespace gui
