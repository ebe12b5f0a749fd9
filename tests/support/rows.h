#pragma once

#include <QTest>
#include <string>
#include <tuple>
#include <utility>

Q_DECLARE_METATYPE(std::string)

namespace tests {

/// Qt keeps the pointers.
constexpr const char* columnNames[] = {"0", "1", "2", "3", "4", "5"};

/// The rows of a data-driven test, a call each: after `const Rows<QString, int> row;`,
/// `row("two letters", "ab", 2);` adds one.
template <class... Values>
class Rows {
 public:
  Rows() { addColumns(std::index_sequence_for<Values...>()); }
  /// With names, for QFETCH and QTEST.
  template <class... Names, class = std::enable_if_t<sizeof...(Names) == sizeof...(Values)>>
  explicit Rows(Names... names) {
    (QTest::addColumn<Values>(names), ...);
  }
  void operator()(const char* name, const Values&... values) const {
    QTestData& row = QTest::newRow(name);
    (void)(row << ... << values);
  }

 private:
  template <std::size_t... Columns>
  static void addColumns(std::index_sequence<Columns...> /*columns*/) {
    (QTest::addColumn<Values>(columnNames[Columns]), ...);
  }
};

template <class... Values, std::size_t... Columns>
std::tuple<Values...> fetchColumns(std::index_sequence<Columns...> /*columns*/) {
  return {*static_cast<Values*>(QTest::qData(columnNames[Columns], qMetaTypeId<Values>()))...};
}

/// The values of the row that the test runs for: `const auto [text, size] = fetch<QString, int>();`
template <class... Values>
std::tuple<Values...> fetch() {
  return fetchColumns<Values...>(std::index_sequence_for<Values...>());
}

}  // namespace tests
