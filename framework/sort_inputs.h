#pragma once

#include <QModelIndex>
#include <functional>
#include <string>
#include <vector>

#include "qce_export.h"

namespace proxy {
class Element;
}

namespace gui {

/// What comparisons need of each cell, read once per cell while a sort runs.
///
/// Outside of a sort every question reads the cell. Between begin() and end() the answers are kept
/// by parent and row, which a reorder leaves alone until all siblings are compared.
class QCE_EXPORT SortInputs {
 public:
  struct Cell {
    std::string key;      ///< collation key of the display text
    double number = 0.0;  ///< display text as a number, or the check state
    bool read = false;
  };
  /// Reads the cell at an index into the cell it is given.
  using Reader = void (*)(const QModelIndex& index, Cell& cell);

  void begin() { running_ = true; }
  void end();

  /// The cell at `index` as `reader` reads it. The reference holds until the next question about
  /// other siblings, or for two questions outside of a sort.
  const Cell& cell(const QModelIndex& index, Reader reader);

 private:
  struct Siblings {
    const void* parent = nullptr;
    Reader reader = nullptr;
    int column = -1;
    std::vector<Cell> cells;
  };

  bool running_ = false;
  Siblings current_;
  Cell loose_[2];  // left and right of a comparison outside of a sort
  int nextLoose_ = 0;
};

// The readers of the documented comparisons.

/// The display text as base::CollationKey.
QCE_EXPORT void readCollationKey(const QModelIndex& index, SortInputs::Cell& cell);
/// The display text as a number; a text that is none, such as one with separators, counts as 0.
QCE_EXPORT void readDisplayedNumber(const QModelIndex& index, SortInputs::Cell& cell);
/// The check state, 0 or 1.
QCE_EXPORT void readCheckState(const QModelIndex& index, SortInputs::Cell& cell);

/// Which of them the bridge's comparison uses for a field type; null for an unknown one.
QCE_EXPORT SortInputs::Reader readerOf(int fieldType);

/// Orders siblings by what `reader` reads of each one's cell, once: as a stable sort with the
/// bridge's comparison would, or with its arguments swapped for a descending order.
QCE_EXPORT void sortByCells(std::vector<proxy::Element*>& siblings,
                            const std::function<QModelIndex(proxy::Element*)>& indexOf,
                            SortInputs::Reader reader, Qt::SortOrder order);

/// The bridge's comparison of two source cells of one column, by the field type that the cells
/// report. Whether the column is known at all is the caller's question.
QCE_EXPORT bool cellLessThan(int fieldType, const QModelIndex& left, const QModelIndex& right,
                             SortInputs& inputs);

}  // namespace gui
