#pragma once

#include <string>

#include "host/abst/base_model.h"

namespace abst::qce {

/// The fee items of one group, on the right of the indirect fee page.
class QCE_CONTRACT_EXPORT QCEIndirectFeeRightModel : public BaseModel {
 public:
  ~QCEIndirectFeeRightModel() override;

  /// Shows the items of one group, an element of the left model; null shows none.
  virtual void setParentElement(proxy::Element* group) = 0;
  /// The text (UTF-8) that headers from the fifth on carry, usually the name of the group; empty
  /// for none.
  virtual void setCaption(const std::string& caption) = 0;
};

}  // namespace abst::qce
