#pragma once

#include <string>

#include "contract_export.h"

namespace abst {

class BaseModel;
class SubDocTabView;

/// A page of the module as the host drives it: made, given its model once, switched on and off as
/// the user moves between pages, destroyed.
class QCE_CONTRACT_EXPORT BaseView {
 public:
  virtual ~BaseView();

  virtual void setModel(BaseModel* model) = 0;  ///< not owned; once, before the first activate
  virtual void activate() = 0;
  virtual void deactivate() = 0;
  /// Adds a sub-view as a page; a view without sub-views ignores it. Not owned here; the widget
  /// that the sub-view is becomes a child of this one.
  virtual void addSubView(BaseView* view);
  /// As above, under `key`.
  virtual void addSubView(const std::string& key, BaseView* view);
  /// As above, as a tab with the view's own title; under `key` unless that is empty.
  virtual void addSubView(SubDocTabView* view, const std::string& key = {});
  /// Redraws the view from its model.
  virtual void updateView() = 0;
};

/// A view that is a tab of a document.
class QCE_CONTRACT_EXPORT SubDocTabView : public BaseView {
 public:
  ~SubDocTabView() override;
  /// The text of the tab, UTF-8.
  virtual std::string tabTitle() const = 0;
};

}  // namespace abst
