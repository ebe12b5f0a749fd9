#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/domain/operator.h"

namespace domain {

/// One line of the calculation behind a quantity, both UTF-8. A line without an expression is a
/// comment.
struct QuantityLine {
  std::string remark;
  std::string expression;

  friend bool operator==(const QuantityLine& a, const QuantityLine& b) {
    return a.remark == b.remark && a.expression == b.expression;
  }
};
using QuantityLines = std::vector<QuantityLine>;

/// The host side of the sub-engineering tree. What it refuses it tells the user itself, with the
/// place and the cure.
class QCE_CONTRACT_EXPORT SubEngineeringOperator : public Operator {
 public:
  ~SubEngineeringOperator() override;

  /// Whether the row is a resource of a bill.
  virtual bool isResourceRow(const proxy::Element* element) const = 0;
  /// See abst::SubEngineeringBase::getBills.
  virtual void getBills(proxy::Element* element, std::vector<proxy::Element*>& out) const = 0;

  /// The parts of the project that the tree can be narrowed to: name (UTF-8) and element, in order.
  virtual std::vector<std::pair<std::string, proxy::Element*>> getSubProjects() const;
  /// The types that a bill can have, in the order in which they are offered.
  virtual std::vector<std::string> getTypes() const;

  /// The lines whose sum is the quantity of a bill; none for a quantity that is not made of lines.
  /// False for an element that has no such quantity.
  virtual bool getQuantityDetail(const proxy::Element* element, QuantityLines& out) const;
  /// Makes the quantity the sum of these lines; without lines it goes back to what it is by itself.
  /// False when it is refused: nothing has changed then, and the user has been told why.
  virtual bool setQuantityDetail(proxy::Element* element, const QuantityLines& lines);
  /// The value of one expression for this element. False where it has none; `error` then says in
  /// Chinese what is wrong and where.
  virtual bool evaluate(const proxy::Element* element, const std::string& expression, double& value,
                        std::string& error) const;
};

}  // namespace domain
