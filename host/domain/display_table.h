#pragma once

#include <deque>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "contract_export.h"
#include "host/domain/data_field.h"

namespace domain {

/// One column of a table.
struct ColumnDescriptor {
  std::string key;                     ///< field key as the operator knows it
  DataField* field = nullptr;          ///< not owned here (DisplayRow may own it); may be null
  std::optional<std::string> title;    ///< header text that replaces the field's display name
  std::optional<bool> visible;         ///< absent means visible
  std::optional<int> width;            ///< remembered width in pixels
  std::optional<bool> zeroShowsEmpty;  ///< decides over the field's setting
};

/// A group of columns below one caption of a two-level header.
struct HeaderGroup {
  std::string key;
  std::vector<std::string> columnKeys;
};

/// The header row of a table: its columns by number and by key, and its header groups.
class QCE_CONTRACT_EXPORT DisplayRow {
 public:
  /// Appends a column that shows `field`, which the row keeps.
  ColumnDescriptor& addColumn(std::string key, DataField field);
  /// Appends a column as described; a field, if any, must outlive the row.
  ColumnDescriptor& addColumn(ColumnDescriptor descriptor);

  int columnCount() const { return static_cast<int>(columns_.size()); }
  /// The descriptor of `column`, or null when there is none.
  ColumnDescriptor* column(int column);
  const ColumnDescriptor* column(int number) const {
    // Asked for every cell that is painted.
    return number >= 0 && number < columnCount() ? columns_[static_cast<std::size_t>(number)].get()
                                                 : nullptr;
  }
  /// The descriptor with this key, or null.
  ColumnDescriptor* column(const std::string& key);
  const ColumnDescriptor* column(const std::string& key) const;
  /// The number of the column with this key, or -1.
  int columnIndex(const std::string& key) const;

  void addHeaderGroup(std::string key, std::string caption, std::vector<std::string> columnKeys);
  /// Drops from each group the keys of columns that the row does not have, and empty groups.
  void prepareHeaderGroups();
  const std::list<HeaderGroup>& headerGroups() const { return groups_; }
  /// The caption of the group with this key; empty when unknown.
  std::string groupCaption(const std::string& key) const;

 private:
  std::vector<std::unique_ptr<ColumnDescriptor>> columns_;  // descriptors keep their address
  std::unordered_map<std::string, int> numbers_;
  std::deque<DataField> fields_;
  std::list<HeaderGroup> groups_;
  std::unordered_map<std::string, std::string> captions_;
};

/// The column set of one table.
class QCE_CONTRACT_EXPORT DisplayTable {
 public:
  explicit DisplayTable(std::string name = {}) : name_(std::move(name)) {}
  DisplayTable(const DisplayTable&) = delete;
  DisplayTable& operator=(const DisplayTable&) = delete;

  const std::string& name() const { return name_; }
  DisplayRow* getHeader() { return &header_; }
  const DisplayRow* getHeader() const { return &header_; }

 private:
  std::string name_;
  DisplayRow header_;
};

}  // namespace domain
