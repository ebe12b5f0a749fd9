#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

#include "host/domain/display_table.h"
#include "workbench/costing/rules.h"

namespace operators {

/// The field of a column. `places` and `strip`, which leaves out zeros at the end, are for numbers
/// alone. These have no separators, so that what is shown is read back as a number and sorted by.
domain::DataField makeField(const char* name, int type, int places = costing::MaxQuantityPlaces,
                            bool strip = true);

/// A column of which nothing else is to be known.
struct PlainColumn {
  const std::string& key;
  const char* name;
  int type;
  int width;
  bool money = false;
};

/// A table of `columns`: each has a `key`, a `name`, a `type`, a `width`, and may hold `money`,
/// which has separators where nobody sorts by what is shown.
template <class Columns = std::initializer_list<PlainColumn>>
std::unique_ptr<domain::DisplayTable> makeTable(const std::string& name, const Columns& columns,
                                                bool separators = false) {
  auto table = std::make_unique<domain::DisplayTable>(name);
  for (const auto& column : columns) {
    const int places = column.money ? costing::MoneyPlaces : costing::MaxQuantityPlaces;
    domain::DataField field = makeField(column.name, column.type, places, !column.money);
    field.thousandsSeparators = separators && column.money;
    table->getHeader()->addColumn(column.key, std::move(field)).width = column.width;
  }
  return table;
}

/// The numbers of columns by their keys.
class ColumnNumbers {
 public:
  template <class Columns>
  explicit ColumnNumbers(const Columns& columns) {
    for (const auto& column : columns) {
      numbers_.emplace(column.key, static_cast<int>(numbers_.size()));
    }
  }
  /// -1 when there is none of that key.
  int of(const std::string& key) const {
    const auto found = numbers_.find(key);
    return found == numbers_.end() ? -1 : found->second;
  }

 private:
  std::unordered_map<std::string, int> numbers_;
};

}  // namespace operators
