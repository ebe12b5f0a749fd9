#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/domain/field_keys.h"
#include "host/domain/qce/notional_pooling_operator.h"
#include "tests/support/test_elements.h"

namespace tests {

/// The host side of pooling in memory: a top-level row for each bill, its budget resource items
/// below it. The check box stands in the second column.
class FakePoolingOperator : public NodeHost<domain::qce::QCENotionalPoolingOperator> {
 public:
  FakePoolingOperator() {
    column(domain::keys::NPCode, "编码").width = 120;
    column(domain::keys::NPChoose, "选择", domain::BoolField).width = 60;
    column(domain::keys::NPName, "名称").width = 160;
    column(domain::keys::NPCollectionAmount, "归集数量", domain::FloatingPointField, 3).width = 100;
  }
  /// A bill and its row.
  Node* bill(const std::string& code) {
    bills.emplace_back(new Node(code));
    Node* row = tree.add(code);
    row->set(domain::keys::NPCode, code)->set(domain::keys::NPCollectionAmount, std::string());
    owners[row->id()] = bills.back().get();
    return row;
  }
  static Node* item(Node* bill, const std::string& code, double quantity) {
    return bill->add(code)
        ->set(domain::keys::NPCode, code)
        ->set(domain::keys::NPName, "材料" + code)
        ->set(domain::keys::NPCollectionAmount, quantity);
  }

  bool setValue(proxy::Element*, const std::string&, const domain::Value&, int) override {
    ++writes;
    return true;
  }
  bool isEditable(const proxy::Element* element, const std::string& key) const override {
    return element->parent() != nullptr && key == domain::keys::NPCollectionAmount;
  }
  bool isCheckable(const proxy::Element*, const std::string& key) const override {
    return key == domain::keys::NPChoose;
  }

  void setSubEngineerBills(std::vector<proxy::Element*>& given) override { set = given; }
  void setCurrentQCEGLJItem(proxy::Element* item) override { current = item; }
  std::string getCurrentQCEResItemType() const override { return "材料"; }
  double getMaxCollectionAmount(const proxy::Element* row) const override {
    const domain::Value* found =
        static_cast<const Node*>(row)->find(domain::keys::NPCollectionAmount, domain::EditRole);
    const auto* quantity = found != nullptr ? std::get_if<double>(found) : nullptr;
    return quantity != nullptr ? *quantity : 0.0;
  }
  void collectToQCEResItem(const std::map<proxy::Element*, double>& quantities) override {
    ++collected;
    for (const auto& [element, quantity] : quantities) {
      const auto* bill = static_cast<const Node*>(element->parent());
      pooled[(bill != nullptr ? bill->name() + "." : "") + static_cast<Node*>(element)->name()] =
          quantity;
    }
  }
  std::vector<proxy::Element*> getSameRowsOfOtherBills(const proxy::Element* row) const override {
    std::vector<proxy::Element*> same;
    const std::string& name = static_cast<const Node*>(row)->name();
    for (int i = 0; i < tree.size(); ++i) {
      for (int j = 0; j < tree.node(i)->childCount(); ++j) {
        Node* other = tree.node(i)->node(j);
        if (other->parent() != row->parent() && other->name() == name) same.push_back(other);
      }
    }
    return same;
  }
  const proxy::Element* getOwningBill(const proxy::Element* row) const override {
    while (row->parent() != nullptr) row = row->parent();
    const auto found = owners.find(row->id());
    return found != owners.end() ? found->second : nullptr;
  }

  std::vector<scoped_refptr<Node>> bills;
  std::map<std::int64_t, const proxy::Element*> owners;  ///< by the id of the top-level row
  std::vector<proxy::Element*> set;
  proxy::Element* current = nullptr;
  int collected = 0;
  int writes = 0;
  std::map<std::string, double> pooled;  ///< by "bill.name"
};

}  // namespace tests
