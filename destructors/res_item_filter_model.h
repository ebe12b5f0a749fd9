#pragma once

#include "destructors/res_item_instances.h"
#include "host/presentation/res_item_filter_model.h"

namespace gui::qce::destructors {

/// Which design-side resource items are shown: by category and by a text in code, name or
/// specification. A grouping row is shown while an item below it is.
///
/// Numbers sort by their value, whatever separators their texts have; codes, names and all other
/// texts in pinyin order.
class QCE_EXPORT DesResItemFilterModelImpl
    : public gui::ResItemFilterModelImpl<abst::qce::destructors::DesResItemFilterModel> {
 public:
  explicit DesResItemFilterModelImpl(abst::qce::destructors::DesResItemModel* source);

  int getItemWaitForCollectNum() const override;
  bool isItem(const proxy::Element* element) const override;
  void setGrouped(bool grouped) override;
  bool isGrouped() const override;
  void rebuildGroup() override;

 protected:
  using ResItemFilterModelImpl::filterAcceptsRow;

  bool filterAcceptsRow(proxy::Element* element) const override;
  bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;
  gui::SortInputs::Reader sortReader(int sourceColumn) const override;
};

/// What both filters of the design-side resource items sort a source column by: numbers by their
/// value. Null for a column of another kind.
gui::SortInputs::Reader valueReader(const domain::DisplayTable* table, int sourceColumn);

}  // namespace gui::qce::destructors
