#pragma once

#include <host/domain/display_table.h>
#include <host/domain/operator.h>
#include <host/proxy/element.h>

#include <functional>
#include <string>
#include <vector>

class History;

/// One line of an estimate. Quantity in `unit`, price in yuan per unit.
class Line : public proxy::Element {
 public:
  Line(int row, std::string lineName, std::string lineUnit, double lineQuantity, double linePrice);

  proxy::Element* parent() const override { return nullptr; }
  int row() const override { return row_; }
  int childCount() const override { return 0; }
  proxy::Element* child(int /*row*/) const override { return nullptr; }
  std::int64_t id() const override { return id_; }

  std::string name;
  std::string unit;
  double quantity;
  double price;

 private:
  friend class Lines;
  int row_;
  std::int64_t id_;
};

/// The lines in their order.
class Lines : public proxy::ElementGroup {
 public:
  void add(const std::string& name, const std::string& unit, double quantity, double price);

  int size() const override { return static_cast<int>(lines_.size()); }
  proxy::Element* member(int row) const override;
  void reorder(const Less& less) override;

 private:
  std::vector<scoped_refptr<Line>> lines_;
};

/// Reads and writes the fields of a line, and computes its amount.
class LinesOperator : public domain::Operator {
 public:
  LinesOperator(Lines& lines, History& history) : lines_(lines), history_(history) {}

  /// Called after a line has changed, by an edit or by undo.
  std::function<void(proxy::Element*)> changed;

  proxy::ElementGroup* getRoot() override { return &lines_; }
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;
  bool setValue(proxy::Element* element, const std::string& key, const domain::Value& value,
                int role) override;
  bool isEditable(const proxy::Element* element, const std::string& key) const override;

 private:
  template <class Field>
  void write(Line* line, Field Line::*field, Field value);

  Lines& lines_;
  History& history_;
};

/// The columns in which a page shows lines.
void addColumns(domain::DisplayTable& table);
