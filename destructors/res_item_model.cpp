#include "destructors/res_item_model.h"

#include "host/domain/qce/destructors/des_res_item_operator.h"

namespace gui::qce::destructors {

domain::qce::destructors::DesResItemOperator* DesResItemModelImpl::getDesOperator() const {
  return dynamic_cast<domain::qce::destructors::DesResItemOperator*>(getOperator());
}

int DesResItemModelImpl::getItemWaitForCollectNum() const {
  const auto* op = getDesOperator();
  return op != nullptr ? op->getItemWaitForCollectNum() : 0;
}

bool DesResItemModelImpl::isItem(const proxy::Element* element) const {
  const auto* op = getDesOperator();
  return op != nullptr && element != nullptr && op->isItem(element);
}

void DesResItemModelImpl::setGrouped(bool grouped) {
  if (grouped == isGrouped()) return;
  beginResetModel();
  if (auto* op = getDesOperator()) op->setGrouped(grouped);
  endResetModel();
}

bool DesResItemModelImpl::isGrouped() const {
  const auto* op = getDesOperator();
  return op != nullptr && op->isGrouped();
}

void DesResItemModelImpl::rebuildGroup() {
  beginResetModel();
  if (auto* op = getDesOperator()) op->rebuildGroup();
  endResetModel();
}

}  // namespace gui::qce::destructors
