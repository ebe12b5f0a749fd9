#include "lines.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "history.h"

Line::Line(int row, std::string lineName, std::string lineUnit, double lineQuantity,
           double linePrice)
    : name(std::move(lineName)),
      unit(std::move(lineUnit)),
      quantity(lineQuantity),
      price(linePrice),
      row_(row),
      id_(row + 1) {}

void Lines::add(const std::string& name, const std::string& unit, double quantity, double price) {
  lines_.push_back(new Line(size(), name, unit, quantity, price));
}

proxy::Element* Lines::member(int row) const {
  return row >= 0 && row < size() ? lines_[row].get() : nullptr;
}

void Lines::reorder(const Less& less) {
  std::stable_sort(lines_.begin(), lines_.end(),
                   [&](const auto& a, const auto& b) { return less(a.get(), b.get()); });
  for (int row = 0; row < size(); ++row) lines_[row]->row_ = row;
}

bool LinesOperator::getValue(const proxy::Element* element, const std::string& key, int role,
                             domain::Value& out) const {
  if (role != domain::DisplayRole && role != domain::EditRole) return false;
  const auto* line = static_cast<const Line*>(element);
  if (key == "name") {
    domain::AssignText(out, line->name);
  } else if (key == "unit") {
    domain::AssignText(out, line->unit);
  } else if (key == "quantity") {
    out = line->quantity;
  } else if (key == "price") {
    out = line->price;
  } else if (key == "amount") {
    out = line->quantity * line->price;
  } else {
    return false;
  }
  return true;
}

template <class Field>
void LinesOperator::write(Line* line, Field Line::*field, Field value) {
  history_.remember([this, kept = scoped_refptr<Line>(line), field, old = line->*field] {
    kept.get()->*field = old;
    if (changed) changed(kept.get());
  });
  line->*field = std::move(value);
  if (changed) changed(line);
}

bool LinesOperator::setValue(proxy::Element* element, const std::string& key,
                             const domain::Value& value, int role) {
  if (role != domain::EditRole || !isEditable(element, key)) return false;
  auto* line = static_cast<Line*>(element);
  if (key == "name") {
    const auto* text = std::get_if<std::string>(&value);
    if (text == nullptr || text->empty()) return false;
    write(line, &Line::name, *text);
    return true;
  }
  const auto* number = std::get_if<double>(&value);
  if (number == nullptr || !std::isfinite(*number) || *number < 0) return false;
  write(line, key == "quantity" ? &Line::quantity : &Line::price, *number);
  return true;
}

bool LinesOperator::isEditable(const proxy::Element* /*element*/, const std::string& key) const {
  return key == "name" || key == "quantity" || key == "price";
}

void addColumns(domain::DisplayTable& table) {
  domain::DataField text;
  domain::DataField money;
  money.type = domain::FloatingPointField;
  money.precision = 2;
  money.thousandsSeparators = true;
  domain::DataField quantity = money;
  quantity.precision = 3;
  const auto add = [&](const char* key, const char* title, domain::DataField field) {
    field.displayName = title;
    table.getHeader()->addColumn(key, std::move(field));
  };
  add("name", "名称", text);
  add("unit", "单位", text);
  add("quantity", "工程量", quantity);
  add("price", "单价（元）", money);
  add("amount", "合价（元）", money);
}
