#pragma once

#include <map>
#include <stdexcept>

namespace gui::qce {

/// The value of a key that the map is known to have.
/// @throws std::out_of_range "invalid map<K, T> key" when it has not, which is a programming error.
template <class K, class T>
const T& mapValue(const std::map<K, T>& map, const K& key) {
  const auto found = map.find(key);
  if (found == map.end()) throw std::out_of_range("invalid map<K, T> key");
  return found->second;
}

}  // namespace gui::qce
