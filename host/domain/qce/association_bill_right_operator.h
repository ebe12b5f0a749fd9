#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/domain/operator.h"

namespace domain::qce {

/// The host side of the right tree of the bill association: the sections of a sub-project with
/// their bills, and what is associated with a set of cost resource items.
///
/// The rows are the host's: a bill's row need not be the element that the host knows the bill by
/// elsewhere, but it has the same id. Below a bill there are no rows.
class QCE_CONTRACT_EXPORT QCEAssociationBillRightOperator : public Operator {
 public:
  using Elements = std::vector<proxy::Element*>;

  ~QCEAssociationBillRightOperator() override;

  /// The cost resource items that the operations below are about.
  virtual void setBaseResItem(const Elements& items) = 0;
  /// Leads to the bills of one sub-project; null to none. Changes the rows: the caller resets its
  /// model around the call.
  virtual void setSubProject(proxy::Element* subProject) = 0;
  /// Reads the rows and what is associated again. Changes the rows, as setSubProject does.
  virtual void reload() = 0;

  /// A bill, as against a section.
  virtual bool isBill(const proxy::Element* row) const = 0;
  /// Whether the bill is associated with all of the items; false without items.
  virtual bool isAssociated(const proxy::Element* bill) const = 0;
  /// Whether the bills that are associated are summarised (汇总统计); false by default.
  virtual bool isUnified() const;
  /// Whether the filter text (UTF-8) leaves the row out. An empty text leaves out none; any other
  /// leaves out sections, which are shown for the bills below them.
  virtual bool isExcluded(const proxy::Element* row, const std::string& text) const = 0;
  /// Whether the row lies in the section, a row of the left tree, or is that section.
  virtual bool isInSection(const proxy::Element* row, const proxy::Element* section) const = 0;
  /// Digits after the point of this row's number; empty, the default, for those of the field.
  virtual std::optional<int> getPrecision(const proxy::Element* row, const std::string& key) const;

  /// Associates `bills` with all of the items and disassociates `cancelled` from all of them, in
  /// one undo step, all or nothing. `unify` (汇总统计): the association counts as one summarised
  /// subcontract entry. False when that is refused; the user has been told why.
  virtual bool associate(const Elements& bills, const Elements& cancelled, bool unify) = 0;
};

}  // namespace domain::qce
