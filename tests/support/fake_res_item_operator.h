#pragma once

#include <string>

#include "host/domain/field_keys.h"
#include "host/domain/qce/res_item_operator.h"
#include "tests/support/test_elements.h"

namespace tests {

/// The host side of the resource-item page in memory: items below grouping rows, and a table of
/// the columns that the page works with.
class FakeResItemOperator : public NodeHost<domain::qce::QCEResItemOperator> {
 public:
  FakeResItemOperator() {
    column(domain::keys::BRICode, "编码");
    column(domain::keys::BRIName, "名称");
    column(domain::keys::BRISpec, "规格型号");
    column(domain::keys::BRIUnit, "单位");
    column(domain::keys::BRIAmount, "数量", domain::FloatingPointField, 3);
    column(domain::keys::BRIExcludedTaxFee, "不含税单价", domain::FloatingPointField, 2);
    column(domain::keys::BRIExcludedTaxTotalCost, "不含税合价", domain::FloatingPointField, 2);
    column(domain::keys::CostAccount, "成本科目");
    column(domain::keys::BRIAssociation, "关联");
    column(domain::keys::BRIIsProvidedByJia, "甲供", domain::BoolField);
  }

  /// A grouping row; its caption is shown as code and name.
  Node* group(const std::string& caption) {
    using namespace domain;
    return tree.add(caption)
        ->set(keys::BRICode, DisplayRole, caption)
        ->set(keys::BRIName, DisplayRole, caption);
  }

  static Node* item(Node* group, const std::string& code, const std::string& name,
                    double amount = 1.0, double price = 1.0) {
    using namespace domain;
    return group->add(code)
        ->set(keys::BRICode, code)
        ->set(keys::BRIName, name)
        ->set(keys::BRIUnit, std::string("t"))
        ->set(keys::BRIAmount, amount)
        ->set(keys::BRIExcludedTaxFee, price)
        ->set(keys::BRIExcludedTaxTotalCost, amount * price)
        ->set(keys::BRIComment, std::string());
  }

  static bool isItem(const proxy::Element* element) {
    return static_cast<const Node*>(element)->find(domain::keys::BRIName, domain::EditRole) !=
           nullptr;
  }

  bool setValue(proxy::Element* element, const std::string& key, const domain::Value& value,
                int role) override {
    return isItem(element) && element != refused && NodeHost::setValue(element, key, value, role);
  }
  bool isEditable(const proxy::Element* element, const std::string& key) const override {
    return isItem(element) && key != domain::keys::BRIExcludedTaxTotalCost;
  }
  bool isCheckable(const proxy::Element* element, const std::string& key) const override {
    return isItem(element) && key == domain::keys::BRIIsProvidedByJia;
  }

  void setSubProject(proxy::Element* element) override { subProject = element; }
  void rebuildGroup() override { ++rebuilt; }

  bool getField(const proxy::Element* element, const std::string& key,
                domain::Value& out) const override {
    ++fieldReads;
    const domain::Value* found = static_cast<const Node*>(element)->find(key, domain::EditRole);
    const bool flag = key == domain::keys::BRIIsProvidedByJia ||
                      key == domain::keys::BRIProvisional ||
                      key == domain::keys::BRIPriceAdjustable;
    if (found != nullptr) {
      out = *found;
    } else if (flag) {
      out = false;
    } else {
      domain::AssignText(out, {});
    }
    return true;
  }

  bool getComment(const proxy::Element* element, std::string& out) const override {
    if (!isItem(element)) return false;
    out = std::get<std::string>(
        *static_cast<const Node*>(element)->find(domain::keys::BRIComment, domain::EditRole));
    return true;
  }
  bool setComment(proxy::Element* element, const std::string& comment) override {
    if (!isItem(element) || element == refused) return false;
    static_cast<Node*>(element)->set(domain::keys::BRIComment, comment);
    return true;
  }

  int getFilterType() const override { return filterType; }
  void setFilterType(int type) override { filterType = type; }

  proxy::Element* refused = nullptr;  ///< an item that takes no writes
  proxy::Element* subProject = nullptr;
  int rebuilt = 0;
  int filterType = domain::qce::FilterAll;
  mutable int fieldReads = 0;
};

}  // namespace tests
