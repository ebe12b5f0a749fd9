#include "tests/support/test_elements.h"

#include <algorithm>
#include <functional>

#include "host/app/services.h"

namespace tests {

Node::Node(std::string name) : name_(std::move(name)) {
  static std::int64_t next = 1;
  id_ = next++;
}

Node* Node::node(int row) const {
  return row >= 0 && row < childCount() ? children_[static_cast<std::size_t>(row)].get() : nullptr;
}

Node* Node::add(const std::string& name) {
  scoped_refptr<Node> made(new Node(name));
  made->parent_ = this;
  made->row_ = childCount();
  children_.push_back(made);
  return made.get();
}

Node* Node::set(const std::string& key, domain::Value value) {
  set(key, domain::EditRole, value);
  return set(key, domain::DisplayRole, std::move(value));
}

Node* Node::set(const std::string& key, int role, domain::Value value) {
  values_[key][role] = std::move(value);
  return this;
}

const domain::Value* Node::find(const std::string& key, int role) const {
  const auto byKey = values_.find(key);
  if (byKey == values_.end()) return nullptr;
  const auto byRole = byKey->second.find(role);
  return byRole == byKey->second.end() ? nullptr : &byRole->second;
}

Node* Tree::node(int row) const {
  return row >= 0 && row < size() ? members_[static_cast<std::size_t>(row)].get() : nullptr;
}

void Tree::renumber(std::vector<scoped_refptr<Node>>& nodes, Node* parent) {
  int row = 0;
  for (auto& node : nodes) {
    node->row_ = row++;
    node->parent_ = parent;
  }
}

Node* Tree::insert(int row, const std::string& name, Node* parent) {
  scoped_refptr<Node> made(new Node(name));
  auto& nodes = siblings(parent);
  nodes.insert(nodes.begin() + row, made);
  renumber(nodes, parent);
  return made.get();
}

void Tree::remove(int row, int count, Node* parent) {
  auto& nodes = siblings(parent);
  nodes.erase(nodes.begin() + row, nodes.begin() + row + count);
  renumber(nodes, parent);
}

void Tree::move(int from, int to, Node* parent) {
  auto& nodes = siblings(parent);
  scoped_refptr<Node> moved = nodes[static_cast<std::size_t>(from)];
  nodes.erase(nodes.begin() + from);
  nodes.insert(nodes.begin() + to, moved);
  renumber(nodes, parent);
}

void Tree::reorder(const Less& less) {
  reorder(members_, less);
}

void Tree::reorder(std::vector<scoped_refptr<Node>>& nodes, const Less& less) {
  std::stable_sort(nodes.begin(), nodes.end(),
                   [&less](const auto& a, const auto& b) { return less(a.get(), b.get()); });
  if (!nodes.empty()) renumber(nodes, nodes.front()->parent_);
  for (auto& node : nodes) reorder(node->children_, less);
}

bool Tree::arrange(const Arrange& how) {
  arrange(members_, how);
  return true;
}

void Tree::arrange(std::vector<scoped_refptr<Node>>& nodes, const Arrange& how) {
  std::vector<proxy::Element*> order;
  order.reserve(nodes.size());
  for (auto& node : nodes) order.push_back(node.get());
  how(order);
  const auto kept = nodes;
  for (std::size_t i = 0; i < order.size(); ++i) nodes[i].reset(static_cast<Node*>(order[i]));
  if (!nodes.empty()) renumber(nodes, nodes.front()->parent_);
  for (auto& node : nodes) arrange(node->children_, how);
}

std::vector<Node*> Tree::all() const {
  std::vector<Node*> nodes;
  const std::function<void(Node*)> append = [&](Node* node) {
    nodes.push_back(node);
    for (int i = 0; i < node->childCount(); ++i) append(node->node(i));
  };
  for (int i = 0; i < size(); ++i) append(node(i));
  return nodes;
}

Node* Tree::at(const std::string& name) const {
  for (Node* node : all()) {
    if (node->name() == name) return node;
  }
  return nullptr;
}

std::string Tree::text() const {
  struct Writer {
    static std::string of(const Node& node) {
      std::string text = node.name();
      if (node.childCount() == 0) return text;
      text += '(';
      for (int i = 0; i < node.childCount(); ++i) text += (i > 0 ? " " : "") + of(*node.node(i));
      return text + ')';
    }
  };
  std::string text;
  for (int i = 0; i < size(); ++i) text += (i > 0 ? " " : "") + Writer::of(*node(i));
  return text;
}

bool NodeOperator::getValue(const proxy::Element* element, const std::string& key, int role,
                            domain::Value& out) const {
  ++reads;
  return NodeHost::getValue(element, key, role, out);
}

bool NodeOperator::setValue(proxy::Element* element, const std::string& key,
                            const domain::Value& value, int role) {
  if (refuse) {
    if (!complaint.empty()) app::qce::GetQCEChannel()->message(complaint, 0x400);  // OK
    return false;
  }
  lastWritten = value;
  lastRole = role;
  if (role == domain::EditRole) return NodeHost::setValue(element, key, value, role);
  static_cast<Node*>(element)->set(key, role, value);
  return true;
}

domain::DataField field(int type, std::optional<int> precision, bool thousands, const char* title) {
  domain::DataField made;
  made.displayName = title;
  made.type = type;
  made.precision = precision;
  made.thousandsSeparators = thousands;
  return made;
}

std::string treeText(const QAbstractItemModel& model) {
  struct Writer {
    static std::string of(const QAbstractItemModel& model, const QModelIndex& parent) {
      std::string text;
      for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        if (row > 0) text += ' ';
        text += index.data().toString().toStdString();
        if (model.hasChildren(index)) text += '(' + of(model, index) + ')';
      }
      return text;
    }
  };
  return Writer::of(model, {});
}

}  // namespace tests
