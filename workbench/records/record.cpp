#include "workbench/records/record.h"

#include <algorithm>
#include <utility>

namespace records {

RowList::~RowList() {
  clear();
}

void RowList::append(scoped_refptr<Record> record) {
  insert(size(), std::move(record));
}

void RowList::insert(int row, scoped_refptr<Record> record) {
  record->parent_ = parent_;
  rows_.insert(rows_.begin() + row, std::move(record));
  renumber(row);
}

scoped_refptr<Record> RowList::take(int row) {
  scoped_refptr<Record> taken = rows_[static_cast<std::size_t>(row)];
  rows_.erase(rows_.begin() + row);
  renumber(row);
  taken->parent_ = nullptr;
  taken->row_ = 0;
  return taken;
}

void RowList::swap(int a, int b) {
  std::swap(rows_[static_cast<std::size_t>(a)], rows_[static_cast<std::size_t>(b)]);
  rows_[static_cast<std::size_t>(a)]->row_ = a;
  rows_[static_cast<std::size_t>(b)]->row_ = b;
}

void RowList::clear() {
  // Whoever still holds a record must not follow it to a parent that is gone.
  for (const scoped_refptr<Record>& record : rows_) record->parent_ = nullptr;
  rows_.clear();
}

void RowList::reorder(const proxy::ElementGroup::Less& less) {
  arrange([&less](std::vector<proxy::Element*>& siblings) {
    std::stable_sort(siblings.begin(), siblings.end(),
                     [&less](proxy::Element* a, proxy::Element* b) { return less(a, b); });
  });
}

void RowList::reorderFlat(const proxy::ElementGroup::Less& less) {
  // A copy is ordered, so that nothing has changed while (or if) less looks at the rows.
  std::vector<proxy::Element*> order;
  order.reserve(rows_.size());
  for (const scoped_refptr<Record>& record : rows_) order.push_back(record.get());
  std::stable_sort(order.begin(), order.end(),
                   [&less](proxy::Element* a, proxy::Element* b) { return less(a, b); });
  adopt(order);
}

void RowList::arrange(const proxy::ElementGroup::Arrange& arrange) {
  std::vector<proxy::Element*> order;
  order.reserve(rows_.size());
  bool leaves = true;
  for (const scoped_refptr<Record>& record : rows_) {
    order.push_back(record.get());
    leaves = leaves && record->childCount() == 0;
  }
  arrange(order);
  adopt(order);
  if (leaves) return;
  for (const scoped_refptr<Record>& record : rows_) {
    if (auto* branch = dynamic_cast<Branch*>(record.get())) branch->rows().arrange(arrange);
  }
}

void RowList::adopt(const std::vector<proxy::Element*>& order) {
  for (scoped_refptr<Record>& record : rows_) record.detach();
  for (std::size_t i = 0; i < order.size(); ++i) {
    // Takes over the reference given up above.
    rows_[i] = scoped_refptr<Record>(static_cast<Record*>(order[i]), false);
  }
  renumber(0);
}

void RowList::renumber(int from) {
  for (int row = from; row < size(); ++row) rows_[static_cast<std::size_t>(row)]->row_ = row;
}

}  // namespace records
