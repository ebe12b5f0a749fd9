#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

constexpr int TextColumns = 5;    ///< cost account, code, name, specification, unit
constexpr int NumberColumns = 5;  ///< quantity, price, amount, price with tax, amount with tax

/// The data that both sides are filled with: plausible resource items, the same for a seed.
class Rows {
 public:
  Rows(std::size_t count, std::uint32_t seed);

  std::size_t size() const { return quantity_.size(); }
  std::string text(std::size_t row, int column) const;
  /// Two decimals; the amounts follow from quantity and price.
  double number(std::size_t row, int column) const;

 private:
  std::vector<std::uint32_t> pick_;
  std::vector<double> quantity_;
  std::vector<double> price_;
};

}  // namespace bench
