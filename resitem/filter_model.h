#pragma once

#include <string>
#include <typeinfo>
#include <vector>

#include "framework/element_answers.h"
#include "framework/instances.h"
#include "host/domain/value.h"
#include "host/presentation/res_item_filter_model.h"
#include "qce_export.h"

namespace domain::qce {
class QCEResItemOperator;
}

namespace gui::qce {

/// Which resource items the page shows and in which order: by flag (the operator's filter type), by
/// association and by five keywords. The base's text and type filters are not consulted.
///
/// Filters and sorts only when told to: setShowAll, setShowAssociation and the operator's filter
/// type take effect at the next invalidate(), new keywords at the next setIsFilterByCondition or
/// invalidate(), for until then each element keeps the answer that it got.
///
/// A grouping row is tested like any other and stays anyway while an item below it does.
/// @throws std::bad_variant_access while filtering, when the operator answers a flag that is not a
/// bool or a text field that is not a text.
class QCE_EXPORT QCEResItemFilterModelImpl
    : public gui::ResItemFilterModelImpl<abst::qce::QCEResItemFilterModel> {
 public:
  explicit QCEResItemFilterModelImpl(abst::qce::QCEResItemModel* source);

  void setSubProject(proxy::Element* subProject) override;
  void rebuildGroup() override;
  std::string getHeadName(int column) const override;
  bool getComment(proxy::Element* item, std::string& out) const override;
  bool setComment(proxy::Element* item, const std::string& comment) override;
  void setExcludeTaxPrice(proxy::Element* item, double price) override;

  void setShowAll(bool showAll) override;
  void setShowAssociation(bool showAssociation) override;
  /// Whether rows come and go with their association mark.
  bool filtersByAssociation() const { return !showAll_; }
  void setFilterField(std::vector<std::string>& keywords) override;
  void setIsFilterByCondition(bool on) override;
  void invalidate() override;

 protected:
  using Base = gui::ResItemFilterModelImpl<abst::qce::QCEResItemFilterModel>;
  using Base::filterAcceptsRow;

  bool filterAcceptsRow(proxy::Element* item) const override;
  /// Numbers in the quantity column, the bridge's comparison elsewhere.
  bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;
  gui::SortInputs::Reader sortReader(int sourceColumn) const override;
  /// Whether the item's texts hold the keywords; asked of the operator once per item.
  bool isFilterByCondition(proxy::Element* item) const;

 private:
  const domain::qce::QCEResItemOperator* getResItemOperator() const;
  bool isQuantityColumn(int sourceColumn) const;

  bool showAll_ = true;
  bool showAssociation_ = false;
  std::vector<std::string> filterFields_;
  bool isFilterByCondition_ = false;
  mutable gui::ElementAnswers conditionCache_;
  mutable domain::Value scratch_ = std::string();  // keeps the room of the last text
  mutable const std::type_info* knownOperator_ = nullptr;
};

}  // namespace gui::qce
