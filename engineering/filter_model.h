#pragma once

#include <map>
#include <string>
#include <vector>

#include "framework/element_answers.h"
#include "framework/text_conditions.h"
#include "host/presentation/sub_engineering_filter_model.h"
#include "qce_export.h"

namespace gui::qce {

/// Which rows of the sub-engineering tree the page shows: with or without resource rows, or, while
/// the condition filter is on, those whose texts hold the five conditions; on demand also what is
/// below them and what stands beside them.
///
/// With the condition filter on, each element keeps the answer that it got until one of the three
/// switches is set, to whatever value: a row that is being edited does not vanish. The answers that
/// lead to a verdict (does a row match, does one of its children, does it or something above) are
/// worked out once per row, so that one pass is linear however wide or deep the tree is.
class QCE_EXPORT QCESubEngineeringFilterModelImpl : public gui::SubEngineeringFilterModelImpl {
 public:
  explicit QCESubEngineeringFilterModelImpl(abst::SubEngineeringModel* source);

  bool filterAcceptsRow(proxy::Element* element) const override;
  /// By the filter map; while that is empty, by what the display table says.
  bool filterAcceptsColumn(int sourceColumn) const override;
  std::vector<proxy::Element*> getFilterBills(proxy::Element* element) const override;

  void setFilterMap(const std::map<std::string, bool>& visible) override;
  const std::map<std::string, bool>& getFilterMap() const override { return filterMap_; }
  void setShowRes(bool show) override;
  bool isShowRes() const override { return !hideRes_; }

  /// The texts to search for in cost account, code, name, project features and unit, in this order;
  /// an empty one asks for nothing. Takes effect at the next setIsFilterByCondition.
  virtual void setFilterField(std::vector<std::string>& conditions);
  /// On: rows are shown by the conditions alone, resource rows too. Filters at once.
  virtual void setIsFilterByCondition(bool on);
  bool isFilterByCondition() const { return isFilterByCondition_; }
  /// With the condition filter on: also shows what is below a matching row. Filters at once.
  virtual void setShowChildren(bool show);
  /// With the condition filter on: also shows what stands beside a matching row. Filters at once.
  virtual void setShowSibling(bool show);

 protected:
  using Base = gui::SubEngineeringFilterModelImpl;
  using Base::filterAcceptsColumn;
  using Base::filterAcceptsRow;
  bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

 private:
  bool isFilter(proxy::Element* element) const;
  bool isFilterByCondition(proxy::Element* element) const;
  bool isShowChildrenByCondition(proxy::Element* parent) const;
  bool isShowSiblingByCondition(proxy::Element* element) const;
  bool filterRecursiveAcceptsRow(proxy::Element* element) const;
  bool anyChildMatches(const proxy::Element* parent) const;
  void switched();
  void forgetAnswers();

  bool hideRes_ = false;
  bool showChildren_ = false;
  bool showSibling_ = false;
  bool isFilterByCondition_ = false;
  mutable gui::ElementAnswers matchCache_;
  std::map<std::string, bool> filterMap_;
  gui::TextConditions conditions_;

  // What verdicts are made of; unlike these, forgotten as soon as a text or a row changes.
  mutable gui::ElementAnswers matchAtOrAbove_;
  mutable gui::ElementAnswers matchAmongChildren_;
};

}  // namespace gui::qce
