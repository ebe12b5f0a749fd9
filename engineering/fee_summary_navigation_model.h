#pragma once

#include <memory>

#include "framework/instances.h"
#include "host/proxy/element.h"
#include "qce_export.h"

namespace gui::qce {

/// The navigation list of the fee summaries as an item model: one row each for "按投标费用汇总",
/// "按项目结构汇总" and "按成本科目汇总", in one column. It is complete as it is made: rows, table
/// and operator are its own, and nothing can be edited.
class QCE_EXPORT QCEFeeSummaryNavigationModelImpl
    : public gui::TViewModel<abst::qce::QCEFeeSummaryNavigationModel> {
 public:
  QCEFeeSummaryNavigationModelImpl();
  /// Lets go of the root; with the last reference to it, it is deleted.
  ~QCEFeeSummaryNavigationModelImpl() override;

 private:
  class Root;
  class Names;

  scoped_refptr<Root> root_;
  std::unique_ptr<Names> names_;
  std::unique_ptr<domain::DisplayTable> table_;
};

}  // namespace gui::qce
