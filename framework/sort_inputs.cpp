#include "framework/sort_inputs.h"

#include <QHash>
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

// Rows with the same text, which are many in a long table, are compared once: the texts are put in
// order, then the rows by the places of their texts.
class Texts {
 public:
  explicit Texts(std::size_t rows) {
    std::size_t size = 16;
    while (size < 2 * rows) size *= 2;
    slots_.resize(size);
    rows_.reserve(rows);
  }

  void add(const QString& text) {
    const uint hash = qHash(text);
    std::size_t at = hash & (slots_.size() - 1);
    while (slots_[at].number != None &&
           (slots_[at].hash != hash || texts_[slots_[at].number] != text)) {
      at = (at + 1) & (slots_.size() - 1);
    }
    if (slots_[at].number == None) {
      slots_[at] = {hash, static_cast<std::uint32_t>(texts_.size())};
      texts_.push_back(text);
    }
    rows_.push_back(slots_[at].number);
  }

  /// The place of each row's text among all of them; texts that sort alike share one.
  std::vector<std::uint32_t> places() const;
  std::size_t count() const { return texts_.size(); }

 private:
  static constexpr std::uint32_t None = 0xffffffff;
  struct Slot {
    uint hash = 0;
    std::uint32_t number = None;
  };

  std::vector<Slot> slots_;  // at least half of them empty
  std::vector<QString> texts_;
  std::vector<std::uint32_t> rows_;  // numbers of texts
};

std::uint64_t prefixOf(const std::string& key) {
  std::uint64_t prefix = 0;
  for (std::size_t i = 0; i < sizeof prefix; ++i) {
    prefix = prefix << 8 | (i < key.size() ? static_cast<unsigned char>(key[i]) : 0U);
  }
  return prefix;
}

std::vector<std::uint32_t> Texts::places() const {
  std::vector<Keyed> order;
  order.reserve(texts_.size());
  std::vector<std::string> keys;
  keys.reserve(texts_.size());
  for (const QString& text : texts_) {
    keys.push_back(base::CollationKey(text.toStdString()));
    order.push_back({prefixOf(keys.back()), static_cast<std::uint32_t>(order.size())});
  }
  std::sort(order.begin(), order.end(), [&keys](const Keyed& a, const Keyed& b) {
    return a.prefix != b.prefix ? a.prefix < b.prefix : keys[a.at] < keys[b.at];
  });
  std::vector<std::uint32_t> placeOf(texts_.size());
  std::uint32_t place = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i > 0 && keys[order[i - 1].at] != keys[order[i].at]) ++place;
    placeOf[order[i].at] = place;
  }
  std::vector<std::uint32_t> places;
  places.reserve(rows_.size());
  for (const std::uint32_t number : rows_) places.push_back(placeOf[number]);
  return places;
}

// Stable, in time that grows with the rows alone.
void sortByPlaces(const std::vector<std::uint32_t>& places, std::size_t count,
                  std::vector<proxy::Element*>& siblings, Qt::SortOrder order) {
  const auto bucketOf = [count, order](std::uint32_t place) {
    return order == Qt::AscendingOrder ? place : count - 1 - place;
  };
  std::vector<std::size_t> next(count + 1);
  for (const std::uint32_t place : places) ++next[bucketOf(place) + 1];
  for (std::size_t i = 1; i < next.size(); ++i) next[i] += next[i - 1];
  std::vector<proxy::Element*> sorted(siblings.size());
  for (std::size_t i = 0; i < siblings.size(); ++i) {
    sorted[next[bucketOf(places[i])]++] = siblings[i];
  }
  siblings.swap(sorted);
}

}  // namespace

void sortByCells(std::vector<proxy::Element*>& siblings,
                 const std::function<QModelIndex(proxy::Element*)>& indexOf,
                 SortInputs::Reader reader, Qt::SortOrder order) {
  if (reader == readCollationKey) {
    Texts texts(siblings.size());
    for (proxy::Element* element : siblings) {
      texts.add(indexOf(element).data(Qt::DisplayRole).toString());
    }
    sortByPlaces(texts.places(), texts.count(), siblings, order);
    return;
  }
  SortInputs::Cell cell;
  std::vector<Numbered> numbers;
  numbers.reserve(siblings.size());
  for (proxy::Element* element : siblings) {
    reader(indexOf(element), cell);
    numbers.push_back({cell.number, static_cast<std::uint32_t>(numbers.size())});
  }
  if (order == Qt::AscendingOrder) {
    std::stable_sort(numbers.begin(), numbers.end(),
                     [](const Numbered& a, const Numbered& b) { return a.number < b.number; });
  } else {
    std::stable_sort(numbers.begin(), numbers.end(),
                     [](const Numbered& a, const Numbered& b) { return b.number < a.number; });
  }
  std::vector<proxy::Element*> sorted;
  sorted.reserve(siblings.size());
  for (const Numbered& number : numbers) sorted.push_back(siblings[number.at]);
  siblings.swap(sorted);
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
