#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/costing/decimal.h"
#include "workbench/records/elements.h"

namespace records {

struct Facts;

/// How the fees of a bid are set out (投标费用): a tree of lines, the leaves of which take the
/// project's money from its sources, and the tax rates. docs/costing.md describes the file.
struct FeeTemplate {
  enum class Source { Element, Margin, Fees, Subcontracts, Tax };
  struct Line {
    std::string name;
    std::optional<Source> source;          ///< leaves only
    Category category = Category::Labour;  ///< of an element
    /// Of fees: texts, one of which the name of a fee group holds that belongs here; none: all the
    /// fees that no other line takes.
    std::vector<std::string> feeNames;
    std::vector<Line> lines;
  };

  std::vector<Line> lines;
  costing::Decimal generalRate, simplifiedRate;  ///< per cent
  /// These count even where the project names a rate, save one that the user has set.
  bool rateOfTemplate = false;

  /// Reads the JSON text (UTF-8) of a template file.
  /// @throws TemplateError also when a source has more than one line, or none (subcontracts can
  /// do without)
  static FeeTemplate parse(std::string_view json);

  /// Per cent. The project's rate counts where it names a method of taxation.
  costing::Decimal taxRate(const Facts& facts) const;
};

}  // namespace records
