#pragma once

#include <set>
#include <string>
#include <vector>

#include "host/domain/field_keys.h"
#include "host/domain/qce/association_bill_left_operator.h"
#include "host/domain/qce/association_bill_right_operator.h"
#include "tests/support/test_elements.h"

namespace tests {

inline bool isBill(const proxy::Element* element) {
  return element != nullptr && std::islower(static_cast<const Node*>(element)->name()[0]) != 0;
}

/// Sections and bills, the same for both sides: U(A(a1 a2 a3) B(b1 C(c1 c2))). What starts with a
/// small letter is a bill.
inline void fillAssociationTree(Tree& tree) {
  tree.clear();
  const auto row = [&tree](const std::string& name, Node* parent) {
    Node* made = tree.insert(parent != nullptr ? parent->childCount() : 0, name, parent);
    made->set(domain::keys::SECode, name)->set(domain::keys::SEName, "清单" + name);
    if (isBill(made)) {
      made->set(domain::keys::SEProjFeatures, "特征 " + name + "\n第二行")
          ->set(domain::keys::SEAmount, 1.5);
    }
    return made;
  };
  Node* unit = row("U", nullptr);
  Node* a = row("A", unit);
  for (const char* name : {"a1", "a2", "a3"}) row(name, a);
  Node* b = row("B", unit);
  row("b1", b);
  Node* c = row("C", b);
  for (const char* name : {"c1", "c2"}) row(name, c);
}

/// Answers for either side.
template <class Base>
class AssociationOperator : public NodeHost<Base> {
 public:
  AssociationOperator() { fillAssociationTree(this->tree); }
  bool isCheckable(const proxy::Element*, const std::string& key) const override {
    return key == domain::keys::SECode;
  }
  void setSubProject(proxy::Element* element) override { subProject = element; }
  void reload() override { fillAssociationTree(this->tree); }

  proxy::Element* subProject = nullptr;
};

class FakeLeftOperator : public AssociationOperator<domain::qce::QCEAssociationBillLeftOperator> {
 public:
  FakeLeftOperator() { column(domain::keys::SEName, "分部"); }
};

class FakeRightOperator : public AssociationOperator<domain::qce::QCEAssociationBillRightOperator> {
 public:
  FakeRightOperator() {
    column(domain::keys::SECode, "编码").width = 150;
    column(domain::keys::SEName, "名称").width = 150;
    column(domain::keys::SEProjFeatures, "特征");
    column(domain::keys::SEAmount, "工程量", domain::FloatingPointField, 2);
  }
  void setBaseResItem(const Elements& items) override { baseItems = items; }
  bool isBill(const proxy::Element* row) const override { return tests::isBill(row); }
  bool isAssociated(const proxy::Element* bill) const override {
    return associated.count(static_cast<const Node*>(bill)->name()) > 0;
  }
  bool isUnified() const override { return unified; }
  bool isExcluded(const proxy::Element* row, const std::string& text) const override {
    return !text.empty() &&
           (!isBill(row) || static_cast<const Node*>(row)->name().find(text) == std::string::npos);
  }
  bool isInSection(const proxy::Element* row, const proxy::Element* section) const override {
    // By name, as the two sides have rows of their own.
    const std::string& wanted = static_cast<const Node*>(section)->name();
    while (row != nullptr && static_cast<const Node*>(row)->name() != wanted) row = row->parent();
    return row != nullptr;
  }
  std::optional<int> getPrecision(const proxy::Element* row, const std::string&) const override {
    return static_cast<const Node*>(row)->name() == "a2" ? std::optional<int>(3) : std::nullopt;
  }
  bool associate(const Elements& bills, const Elements& cancelled, bool unify) override {
    ++calls;
    asked = "+" + names(bills) + " -" + names(cancelled) + (unify ? " unify" : "");
    return accept;
  }

  static std::string names(const Elements& rows) {
    std::string text;
    for (proxy::Element* row : rows) {
      text += (text.empty() ? "" : ",") + static_cast<Node*>(row)->name();
    }
    return text;
  }

  std::set<std::string> associated;  ///< names of bills
  Elements baseItems;
  bool unified = false;
  bool accept = true;
  int calls = 0;
  std::string asked;
};

}  // namespace tests
