#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/domain/display_table.h"
#include "host/domain/operator.h"
#include "workbench/records/summary.h"

namespace operators {

/// Field keys of the fee summary table.
namespace summary_keys {
extern const std::string Name, Income, Cost, Difference, Share;
}

std::unique_ptr<domain::DisplayTable> makeFeeSummaryTable();

/// One line of a summary as a row. Ids stay the same while the line stands for the same record.
class SummaryRow : public records::Branch {
 public:
  SummaryRow(std::int64_t id, const records::SummaryLine& from);

  const records::SummaryLine& line() const { return line_; }  ///< without the lines below it
  records::StructureNode* structure() const {
    return dynamic_cast<records::StructureNode*>(line_.source);
  }

 private:
  friend class FeeSummaryOperator;

  records::SummaryLine line_;
};

/// A summary as a table that is read only: the lines, and a last row with their total.
class FeeSummaryOperator : public domain::Operator {
 public:
  FeeSummaryOperator();
  ~FeeSummaryOperator() override;

  /// Puts the figures of `total` into the rows that stand. False, and nothing done, where it has
  /// other rows than these. Rows with other figures are told in runs of siblings.
  using Changed = std::function<void(SummaryRow& first, SummaryRow& last)>;
  bool update(const records::SummaryLine& total, const Changed& changed);
  /// Makes all rows anew. The model has to be reset around it.
  void replace(const records::SummaryLine& total);

  /// The row whose background tells that it is pointed at elsewhere; null for none. The caller
  /// announces both rows.
  void setHighlighted(const SummaryRow* row) { highlighted_ = row; }
  const SummaryRow* highlighted() const { return highlighted_; }

  proxy::ElementGroup* getRoot() override { return root_.get(); }
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;

 private:
  scoped_refptr<records::Group> root_;
  const SummaryRow* highlighted_ = nullptr;
};

/// What a line is made of, for a user who asks: "应税造价 × 税率" and the like (Chinese).
std::string explain(const records::SummaryLine& line);
/// Whether the line costs more than it brings, beyond what rounding makes of it.
bool isLoss(const records::SummaryLine& line);

}  // namespace operators
