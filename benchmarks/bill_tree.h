#pragma once

#include <cstddef>
#include <memory>

namespace bench {

/// A project's bills in the reference host's records behind the models of their page: five levels,
/// from single project to budget item.
class BillTree {
 public:
  explicit BillTree(std::size_t rows);
  ~BillTree();

  /// Filters by name and features, with what is below and beside a match, and goes through all rows
  /// that are shown then; seconds.
  double filter();
  /// Looks for the one text in the name and for the other in the features of every row, and does
  /// nothing with what it finds; seconds.
  double scan();
  /// Unfolds the filtered tree in a grid and lays it out; seconds for each thousand rows that are
  /// shown then.
  double expand();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace bench
