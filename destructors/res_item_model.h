#pragma once

#include "destructors/res_item_instances.h"

namespace domain::qce::destructors {
class DesResItemOperator;
}

namespace gui::qce::destructors {

/// The design-side resource items as an item model. What goes beyond a cell is answered by the
/// domain::qce::destructors::DesResItemOperator that the model was given; with an operator of
/// another kind there is nothing to answer.
class QCE_EXPORT DesResItemModelImpl
    : public gui::TViewModel<abst::qce::destructors::DesResItemModel> {
 public:
  int getItemWaitForCollectNum() const override;
  bool isItem(const proxy::Element* element) const override;
  void setGrouped(bool grouped) override;
  bool isGrouped() const override;
  void rebuildGroup() override;

 private:
  domain::qce::destructors::DesResItemOperator* getDesOperator() const;
};

}  // namespace gui::qce::destructors
