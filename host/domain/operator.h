#pragma once

#include <string>

#include "contract_export.h"
#include "host/domain/item_role.h"
#include "host/domain/value.h"
#include "host/proxy/element.h"

namespace domain {

/// What a host supplies for one model: its rows, and the reading and writing of one field of one
/// element. Owned by the host, which keeps it alive as long as a model refers to it.
///
/// A host that overrides no more than it has to gets a table that is read only: every cell enabled,
/// none editable or checkable, every write refused.
class QCE_CONTRACT_EXPORT Operator {
 public:
  Operator() = default;
  Operator(const Operator&) = delete;
  Operator& operator=(const Operator&) = delete;
  virtual ~Operator();

  /// The top-level rows; null for an empty model. Stays alive until the next reset of the model.
  virtual proxy::ElementGroup* getRoot() = 0;

  /// Answers whether there is a value for the field in this role, and then puts it into `out`.
  /// `out` may still hold the value of an earlier call: a host that assigns a text to the text in
  /// it allocates nothing. `role` is an ItemRole or another role of the toolkit.
  virtual bool getValue(const proxy::Element* element, const std::string& key, int role,
                        Value& out) const = 0;

  /// A text that the host keeps anyway and that getValue would answer for this field and role, so
  /// that it is shown without being copied first; valid until the next change. Null: ask getValue.
  virtual const std::string* peekText(const proxy::Element* element, const std::string& key,
                                      int role) const;

  /// Writes the field; std::monostate clears it. False refuses the write and changes nothing.
  virtual bool setValue(proxy::Element* element, const std::string& key, const Value& value,
                        int role);

  virtual bool isEnabled(const proxy::Element* element, const std::string& key) const;
  virtual bool isEditable(const proxy::Element* element, const std::string& key) const;
  virtual bool isCheckable(const proxy::Element* element, const std::string& key) const;
};

/// Puts a text into `out`, reusing the room of a text that is already there.
QCE_CONTRACT_EXPORT void AssignText(Value& out, const std::string& text);

}  // namespace domain
