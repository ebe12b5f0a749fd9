#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

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
  std::deque<std::string> texts_;  // keep their address
  std::unordered_map<std::string_view, const std::string*> known_;
};

}  // namespace records
