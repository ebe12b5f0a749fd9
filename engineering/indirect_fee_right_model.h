#pragma once

#include <string>

#include "framework/instances.h"
#include "qce_export.h"

namespace gui::qce {

/// The fee items of one group as an item model. Which group that is goes to the
/// domain::qce::QCEIndirectFeeRightOperator that the model was given; with an operator of another
/// kind there is no group to choose.
///
/// Headers carry the caption: those of sections 4 to 7 before their last Chinese character, as in
/// "金额（）" or "基数项", those of sections 8 and above in the way that the operator formats them.
class QCE_EXPORT QCEIndirectFeeRightModelImpl
    : public gui::TViewModel<abst::qce::QCEIndirectFeeRightModel> {
 public:
  QCEIndirectFeeRightModelImpl() = default;

  void setParentElement(proxy::Element* group) override;
  void setCaption(const std::string& caption) override;

  /// @throws std::out_of_range for a header of sections 4 to 7 with fewer than three bytes.
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;

 private:
  std::string caption_;
};

}  // namespace gui::qce
