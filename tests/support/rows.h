#pragma once

#include <QTest>

namespace tests {

/// The rows of a data-driven test, a call each: Rows<QString, int> row{"text", "size"} makes the
/// columns, row("two letters", "ab", 2) adds a row.
template <class... Values>
class Rows {
 public:
  template <class... Names>
  explicit Rows(Names... names) {
    static_assert(sizeof...(Names) == sizeof...(Values), "each column has its name");
    (QTest::addColumn<Values>(names), ...);
  }
  void operator()(const char* name, const Values&... values) const {
    QTestData& row = QTest::newRow(name);
    (void)(row << ... << values);
  }
};

}  // namespace tests
