#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "contract_export.h"
#include "host/base/object.h"

namespace proxy {

/// One record of the host's data model, a node of a tree. The host owns it; whoever keeps an
/// element beyond a call holds it in a scoped_refptr.
class QCE_CONTRACT_EXPORT Element : public base::Object {
 public:
  ~Element() override;

  /// The element above, or null for a top-level one.
  virtual Element* parent() const = 0;
  /// The number among the siblings, from 0. Constant time.
  virtual int row() const = 0;
  virtual int childCount() const = 0;
  /// The child at `row`, or null when there is none. Constant time.
  virtual Element* child(int row) const = 0;
  /// What identifies the record: stays the same through moves, sorts and reloads.
  virtual std::int64_t id() const = 0;
};

/// The ordered top-level elements of a model.
class QCE_CONTRACT_EXPORT ElementGroup : public base::Object {
 public:
  /// Whether the first element sorts before the second; both have the same parent.
  using Less = std::function<bool(Element*, Element*)>;

  ~ElementGroup() override;

  virtual int size() const = 0;
  /// The member at `row`, or null when there is none. Constant time.
  virtual Element* member(int row) const = 0;
  /// Orders the members and, below each, its children, stably and in place: the elements stay what
  /// they are, only their rows change. While `less` is being asked about a set of siblings, their
  /// row() still answers the row before the reorder.
  virtual void reorder(const Less& less) = 0;

  /// Gets siblings in the order of their rows and leaves them in the order that they shall have.
  using Arrange = std::function<void(std::vector<Element*>& siblings)>;
  /// As reorder, with all siblings handed over at once instead of asking about pairs; their row()
  /// still answers the row before. False when a group does not offer it: nothing has changed then.
  virtual bool arrange(const Arrange& arrange);
};

}  // namespace proxy
