#pragma once

#include "destructors/res_item_instances.h"
#include "framework/text_conditions.h"
#include "host/presentation/res_item_filter_model.h"

namespace gui::qce::destructors {

/// Which design-side resource items are shown: by category, by a text in code, name or
/// specification, and by the five conditions of the panel. A grouping row is shown while an item
/// below it is.
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
  void setFilterField(std::vector<std::string>& conditions) override;
  void setIsFilterByCondition(bool on) override;

 protected:
  using ResItemFilterModelImpl::filterAcceptsRow;

  bool filterAcceptsRow(proxy::Element* element) const override;
  bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;
  gui::SortInputs::Reader sortReader(int sourceColumn) const override;

 private:
  gui::TextConditions conditions_;
  bool isFilterByCondition_ = false;
};

/// What both filters of the design-side resource items sort a source column by: numbers by their
/// value. Null for a column of another kind.
gui::SortInputs::Reader valueReader(const domain::DisplayTable* table, int sourceColumn);

}  // namespace gui::qce::destructors
