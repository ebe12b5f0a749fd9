#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "host/proxy/element.h"
#include "qce_export.h"

namespace gui {

/// Remembers one answer an element. The elements are held meanwhile, so that an element that was
/// dropped by its host cannot lend its address, and with it its answer, to a new one.
class QCE_EXPORT ElementAnswers {
 public:
  std::optional<bool> find(const proxy::Element* element) const;
  /// Remembers `answer`, instead of an earlier one.
  void insert(proxy::Element* element, bool answer);
  void clear();
  std::size_t size() const { return size_; }

 private:
  struct Slot {
    scoped_refptr<proxy::Element> element;
    bool answer = false;
  };

  std::size_t slotOf(const proxy::Element* element) const;
  void grow();

  std::vector<Slot> slots_;  // open addressing, the number of slots a power of two
  std::size_t size_ = 0;
};

}  // namespace gui
