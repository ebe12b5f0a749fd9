#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace records {

/// A text that is shared by all records that carry it. Two texts of one pool are equal exactly when
/// they are the same object. Lives as long as its pool.
class Text {
 public:
  Text();  ///< the empty text, of every pool

  const std::string& str() const { return *text_; }
  bool empty() const { return text_->empty(); }
  friend bool operator==(Text a, Text b) { return a.text_ == b.text_; }
  friend bool operator!=(Text a, Text b) { return a.text_ != b.text_; }

 private:
  friend class TextPool;
  explicit Text(const std::string* text) : text_(text) {}

  const std::string* text_;
};

/// Keeps each distinct text once.
class TextPool {
 public:
  TextPool() = default;
  TextPool(const TextPool&) = delete;
  TextPool& operator=(const TextPool&) = delete;

  Text intern(std::string_view text);

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t number = 0;  // of the text, from 1; 0: free
  };
  std::size_t slotOf(std::uint32_t hash, std::string_view text) const;
  void grow();

  std::deque<std::string> texts_;  // keep their address
  // Open addressing with small slots: a file of a million items interns four million texts, and
  // each look-up is one visit to memory far away.
  std::vector<Slot> slots_;
};

}  // namespace records
