#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
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

  /// Many texts together: their visits to memory overlap, so that a loader gets those of a record,
  /// or of several, at little more than the price of one.
  void intern(const std::string_view* texts, Text* interned, std::size_t count);

  /// The texts of one record.
  template <class... Texts>
  void intern(const std::array<std::string_view, sizeof...(Texts)>& texts, Texts&... into) {
    std::array<Text, sizeof...(Texts)> interned;
    intern(texts.data(), interned.data(), texts.size());
    const Text* next = interned.data();
    ((into = *next++), ...);
  }

 private:
  static constexpr std::size_t MostAtOnce = 32;
  static constexpr std::uint32_t ChunkBits = 10;

  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t number = 0;  // of the text, from 1; 0: free
  };

  Text find(std::uint32_t hash, std::string_view text);
  std::size_t slotOf(std::uint32_t hash, std::string_view text) const;
  const std::string& textAt(std::uint32_t number) const {
    return chunks_[(number - 1) >> ChunkBits][(number - 1) & ((1U << ChunkBits) - 1)];
  }
  void reserve(std::size_t more);

  std::vector<std::unique_ptr<std::string[]>> chunks_;  // texts keep their address
  std::uint32_t size_ = 0;
  // Open addressing with small slots: a file of a million items interns four million texts, and
  // each look-up is one visit to memory far away.
  std::vector<Slot> slots_;
};

}  // namespace records
