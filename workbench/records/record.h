#pragma once

#include <cstdint>
#include <vector>

#include "host/proxy/element.h"

namespace records {

class Branch;
class Group;

/// A node of an element tree that knows its parent and its row. A leaf by itself.
class Record : public proxy::Element {
 public:
  explicit Record(std::int64_t id) : id_(id) {}

  proxy::Element* parent() const override { return parent_; }
  int row() const override { return row_; }
  int childCount() const override { return 0; }
  proxy::Element* child(int) const override { return nullptr; }
  std::int64_t id() const override { return id_; }

 private:
  friend class RowList;

  proxy::Element* parent_ = nullptr;
  std::int64_t id_;
  int row_ = 0;
};

/// The ordered rows below one parent, each of which knows its number. Finding a row by number and a
/// number by row takes constant time; inserting, taking and moving renumber what follows.
class RowList {
 public:
  explicit RowList(proxy::Element* parent) : parent_(parent) {}
  RowList(const RowList&) = delete;
  RowList& operator=(const RowList&) = delete;
  ~RowList();

  int size() const { return static_cast<int>(rows_.size()); }
  /// Null when there is no such row.
  Record* at(int row) const {
    return row >= 0 && row < size() ? rows_[static_cast<std::size_t>(row)].get() : nullptr;
  }
  void reserve(int count) { rows_.reserve(static_cast<std::size_t>(count)); }
  void append(scoped_refptr<Record> record);
  void insert(int row, scoped_refptr<Record> record);
  scoped_refptr<Record> take(int row);
  void swap(int a, int b);
  void clear();
  /// Orders these rows and those below each of them; see proxy::ElementGroup::reorder.
  void reorder(const proxy::ElementGroup::Less& less);
  /// See proxy::ElementGroup::arrange.
  void arrange(const proxy::ElementGroup::Arrange& arrange);
  /// As reorder, but these rows alone.
  void reorderFlat(const proxy::ElementGroup::Less& less);

 private:
  void renumber(int from);
  void adopt(const std::vector<proxy::Element*>& order);

  proxy::Element* parent_;
  std::vector<scoped_refptr<Record>> rows_;
};

/// A node with rows below it.
class Branch : public Record {
 public:
  explicit Branch(std::int64_t id) : Record(id), rows_(this) {}

  int childCount() const override { return rows_.size(); }
  proxy::Element* child(int row) const override { return rows_.at(row); }
  RowList& rows() { return rows_; }
  const RowList& rows() const { return rows_; }

 private:
  RowList rows_;
};

/// Top-level rows.
class Group : public proxy::ElementGroup {
 public:
  Group() : rows_(nullptr) {}

  int size() const override { return rows_.size(); }
  proxy::Element* member(int row) const override { return rows_.at(row); }
  void reorder(const Less& less) override { rows_.reorder(less); }
  bool arrange(const Arrange& arrange) override {
    rows_.arrange(arrange);
    return true;
  }
  RowList& rows() { return rows_; }
  const RowList& rows() const { return rows_; }

 private:
  RowList rows_;
};

}  // namespace records
