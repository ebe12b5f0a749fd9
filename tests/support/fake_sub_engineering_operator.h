#pragma once

#include <string>
#include <vector>

#include "host/domain/field_keys.h"
#include "host/domain/sub_engineering_operator.h"
#include "tests/support/test_elements.h"

namespace tests {

/// The host side of the sub-engineering page in memory: nodes, bills and resource rows.
class FakeSubEngineeringOperator : public NodeHost<domain::SubEngineeringOperator> {
 public:
  FakeSubEngineeringOperator() {
    column(domain::keys::SECode, "编码");
    column(domain::keys::SEName, "名称");
    column(domain::keys::SEProjFeatures, "项目特征");
    column(domain::keys::SEUnit, "单位");
    column(domain::keys::SECalcExpr, "计算式");
    column(domain::keys::SEQuantity, "成本工程量", domain::FloatingPointField, 2);
    column(domain::keys::SEType, "类型");
    column(domain::keys::CostAccount, "成本科目");
    column(domain::keys::SERemark, "备注").visible = false;
  }

  /// A row shows its code and has its name in column 0 of no table: the code names it in texts.
  static Node* fill(Node* row, const std::string& name) {
    return row->set(domain::keys::SECode, row->name())->set(domain::keys::SEName, name);
  }
  Node* node(const std::string& code, const std::string& name) {
    return fill(tree.add(code), name);
  }
  static Node* bill(Node* above, const std::string& code, const std::string& name) {
    return fill(above->add(code), name)
        ->set("bill", true)
        ->set(domain::keys::SEUnit, std::string("m3"));
  }
  static Node* resource(Node* bill, const std::string& code, const std::string& name) {
    return fill(bill->add(code), name)->set("resource", true);
  }
  static bool has(const proxy::Element* element, const char* mark) {
    return static_cast<const Node*>(element)->find(mark, domain::EditRole) != nullptr;
  }

  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override {
    const bool found = NodeHost::getValue(element, key, role, out);
    reads += found ? 1 : 0;
    return found;
  }
  bool setValue(proxy::Element* element, const std::string& key, const domain::Value& value,
                int role) override {
    return has(element, "bill") && NodeHost::setValue(element, key, value, role);
  }
  bool isEditable(const proxy::Element* element, const std::string& key) const override {
    return has(element, "bill") && key != domain::keys::SEQuantity;
  }

  bool isResourceRow(const proxy::Element* element) const override {
    return has(element, "resource");
  }
  void getBills(proxy::Element* element, std::vector<proxy::Element*>& out) const override {
    if (has(element, "bill")) {
      out.push_back(element);
    } else if (has(element, "resource")) {
      out.push_back(element->parent());
    } else {
      for (int i = 0; i < element->childCount(); ++i) getBills(element->child(i), out);
    }
  }
  std::vector<std::pair<std::string, proxy::Element*>> getSubProjects() const override {
    return {};
  }
  std::vector<std::string> getTypes() const override { return {}; }
  bool getQuantityDetail(const proxy::Element*, domain::QuantityLines&) const override {
    return false;
  }
  bool setQuantityDetail(proxy::Element*, const domain::QuantityLines&) override { return false; }
  bool evaluate(const proxy::Element*, const std::string&, double&, std::string&) const override {
    return false;
  }

  mutable int reads = 0;
};

}  // namespace tests
