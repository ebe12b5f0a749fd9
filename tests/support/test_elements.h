#pragma once

#include <QAbstractItemModel>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/domain/display_table.h"
#include "host/domain/operator.h"
#include "host/proxy/element.h"

namespace tests {

/// A record with free fields: a value for a key and role.
class Node : public proxy::Element {
 public:
  explicit Node(std::string name);

  proxy::Element* parent() const override { return parent_; }
  int row() const override { return row_; }
  int childCount() const override { return static_cast<int>(children_.size()); }
  proxy::Element* child(int row) const override { return node(row); }
  std::int64_t id() const override { return id_; }

  Node* node(int row) const;
  Node* add(const std::string& name);
  /// Sets the value for display and edit.
  Node* set(const std::string& key, domain::Value value);
  Node* set(const std::string& key, int role, domain::Value value);
  const domain::Value* find(const std::string& key, int role) const;
  const std::string& name() const { return name_; }

 private:
  friend class Tree;
  std::string name_;
  Node* parent_ = nullptr;
  int row_ = 0;
  std::int64_t id_;
  std::vector<scoped_refptr<Node>> children_;
  std::unordered_map<std::string, std::unordered_map<int, domain::Value>> values_;
};

/// The top level, with the structural changes that a host makes between its announcements.
class Tree : public proxy::ElementGroup {
 public:
  int size() const override { return static_cast<int>(members_.size()); }
  proxy::Element* member(int row) const override { return node(row); }
  void reorder(const Less& less) override;
  bool arrange(const Arrange& arrange) override;

  Node* node(int row) const;
  Node* add(const std::string& name) { return insert(size(), name, nullptr); }
  Node* insert(int row, const std::string& name, Node* parent);
  void remove(int row, int count, Node* parent);
  void move(int from, int to, Node* parent);
  void clear() { members_.clear(); }
  /// Every node, each before its children.
  std::vector<Node*> all() const;
  /// Null when there is none of that name.
  Node* at(const std::string& name) const;
  /// "a(b c) d": the names, children in brackets.
  std::string text() const;

 private:
  std::vector<scoped_refptr<Node>>& siblings(Node* parent) {
    return parent != nullptr ? parent->children_ : members_;
  }
  static void renumber(std::vector<scoped_refptr<Node>>& nodes, Node* parent);
  static void reorder(std::vector<scoped_refptr<Node>>& nodes, const Less& less);
  static void arrange(std::vector<scoped_refptr<Node>>& nodes, const Arrange& arrange);

  std::vector<scoped_refptr<Node>> members_;
};

domain::DataField field(int type, std::optional<int> precision = {}, bool thousands = false,
                        const char* title = "");

/// A host in memory: answers what the nodes of a tree hold and takes what is written.
template <class Base>
class NodeHost : public Base {
 public:
  proxy::ElementGroup* getRoot() override { return &tree; }
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override {
    const domain::Value* found = static_cast<const Node*>(element)->find(key, role);
    if (found != nullptr) out = *found;
    return found != nullptr;
  }
  bool setValue(proxy::Element* element, const std::string& key, const domain::Value& value,
                int /*role*/) override {
    static_cast<Node*>(element)->set(key, value);
    return true;
  }
  domain::ColumnDescriptor& column(const std::string& key, const char* title,
                                   int type = domain::StringField,
                                   std::optional<int> precision = {}) {
    return table.getHeader()->addColumn(key, field(type, precision, false, title));
  }

  Tree tree;
  domain::DisplayTable table;
};

/// An operator over a Tree: answers what the nodes hold, writes what it is not told to refuse.
/// Counts what it is asked.
class NodeOperator : public NodeHost<domain::Operator> {
 public:
  proxy::ElementGroup* getRoot() override { return hasRoot ? &tree : nullptr; }
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;
  bool setValue(proxy::Element* element, const std::string& key, const domain::Value& value,
                int role) override;
  bool isEnabled(const proxy::Element*, const std::string& key) const override {
    return disabledKey != key;
  }
  bool isEditable(const proxy::Element*, const std::string& key) const override {
    return readOnlyKey != key;
  }
  bool isCheckable(const proxy::Element*, const std::string& key) const override {
    return checkableKey == key;
  }

  bool hasRoot = true;
  bool refuse = false;
  std::string complaint;  ///< what it says when it refuses
  std::string disabledKey, readOnlyKey, checkableKey;
  mutable int reads = 0;
  domain::Value lastWritten;
  int lastRole = -1;
};

/// "a(b c) d" as a model shows it in column 0, for comparing a tree as one short text.
std::string treeText(const QAbstractItemModel& model);

}  // namespace tests
