#include "framework/sort_inputs.h"

#include <QVariant>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "host/base/collation.h"
#include "host/domain/data_field.h"
#include "host/proxy/element.h"

namespace gui {

void SortInputs::end() {
  running_ = false;
  current_ = Siblings();
}

const SortInputs::Cell& SortInputs::cell(const QModelIndex& index, Reader reader) {
  if (!running_) {
    Cell& cell = loose_[nextLoose_];
    nextLoose_ = 1 - nextLoose_;
    reader(index, cell);
    return cell;
  }
  // Siblings are told apart by their parent element: no index of the parent has to be made.
  const auto* element = static_cast<const proxy::Element*>(index.internalPointer());
  const void* parent = element != nullptr ? element->parent() : nullptr;
  const auto row = static_cast<std::size_t>(index.row());
  if (current_.cells.empty() || current_.parent != parent || current_.reader != reader ||
      current_.column != index.column()) {
    current_ = {parent, reader, index.column(), {}};
    Q_ASSERT(index.isValid());  // a sort asks of rows that are there
    const int rows = index.model()->rowCount(index.parent());
    current_.cells.resize(static_cast<std::size_t>(rows > index.row() ? rows : index.row() + 1));
  }
  Cell& cell = current_.cells.at(row);
  if (!cell.read) {
    reader(index, cell);
    cell.read = true;
  }
  return cell;
}

void readCollationKey(const QModelIndex& index, SortInputs::Cell& cell) {
  cell.key = base::CollationKey(index.data(Qt::DisplayRole).toString().toStdString());
}

void readDisplayedNumber(const QModelIndex& index, SortInputs::Cell& cell) {
  const double shown = index.data(Qt::DisplayRole).toDouble();
  cell.number = std::isnan(shown) ? 0.0 : shown;  // the word is no number to compare by
}

void readCheckState(const QModelIndex& index, SortInputs::Cell& cell) {
  cell.number = index.data(Qt::CheckStateRole).toBool() ? 1.0 : 0.0;
}

SortInputs::Reader readerOf(int fieldType) {
  switch (fieldType) {
    case domain::StringField:
      return readCollationKey;
    case domain::BoolField:
      return readCheckState;
    case domain::IntegerField:
    case domain::FloatingPointField:
      return readDisplayedNumber;
    default:
      return nullptr;
  }
}

namespace {

// What is sorted: small, and compared without looking at the elements, which lie all over the
// memory.
struct Numbered {
  double number;
  std::uint32_t at;
};
struct Keyed {
  std::uint64_t prefix;  // the first bytes of the key, most significant first
  std::uint32_t at;
};

std::uint64_t prefixOf(const std::string& key) {
  std::uint64_t prefix = 0;
  for (std::size_t i = 0; i < sizeof prefix; ++i) {
    prefix = prefix << 8 | (i < key.size() ? static_cast<unsigned char>(key[i]) : 0U);
  }
  return prefix;
}

template <class Entry, class Less>
void sortEntries(std::vector<Entry>& entries, std::vector<proxy::Element*>& siblings,
                 Qt::SortOrder order, const Less& less) {
  if (order == Qt::AscendingOrder) {
    std::stable_sort(entries.begin(), entries.end(), less);
  } else {
    std::stable_sort(entries.begin(), entries.end(),
                     [&less](const Entry& a, const Entry& b) { return less(b, a); });
  }
  std::vector<proxy::Element*> sorted;
  sorted.reserve(siblings.size());
  for (const Entry& entry : entries) sorted.push_back(siblings[entry.at]);
  siblings.swap(sorted);
}

}  // namespace

void sortByCells(std::vector<proxy::Element*>& siblings,
                 const std::function<QModelIndex(proxy::Element*)>& indexOf,
                 SortInputs::Reader reader, Qt::SortOrder order) {
  SortInputs::Cell cell;
  std::uint32_t at = 0;
  if (reader != readCollationKey) {
    std::vector<Numbered> entries;
    entries.reserve(siblings.size());
    for (proxy::Element* element : siblings) {
      reader(indexOf(element), cell);
      entries.push_back({cell.number, at++});
    }
    sortEntries(entries, siblings, order,
                [](const Numbered& a, const Numbered& b) { return a.number < b.number; });
    return;
  }
  std::vector<Keyed> entries;
  std::vector<std::string> keys;
  entries.reserve(siblings.size());
  keys.reserve(siblings.size());
  for (proxy::Element* element : siblings) {
    reader(indexOf(element), cell);
    entries.push_back({prefixOf(cell.key), at++});
    keys.push_back(std::move(cell.key));
  }
  sortEntries(entries, siblings, order, [&keys](const Keyed& a, const Keyed& b) {
    return a.prefix != b.prefix ? a.prefix < b.prefix : keys[a.at] < keys[b.at];
  });
}

bool cellLessThan(int fieldType, const QModelIndex& left, const QModelIndex& right,
                  SortInputs& inputs) {
  const SortInputs::Reader reader = readerOf(fieldType);
  if (reader == nullptr) return false;
  const SortInputs::Cell& a = inputs.cell(left, reader);
  const SortInputs::Cell& b = inputs.cell(right, reader);
  return fieldType == domain::StringField ? a.key < b.key : a.number < b.number;
}

}  // namespace gui
