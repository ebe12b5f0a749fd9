#pragma once

#include <QPointer>
#include <map>
#include <string>

#include "host/abst/base_view.h"
#include "host/bwidgets/widget.h"
#include "qce_export.h"

class QModelIndex;
class QSplitter;
class QStackedWidget;
class QTreeView;

namespace gui::qce {

/// What the pages with named sub-views share: a navigation tree on the left, a stack on the right,
/// of which the sub-view is shown whose name is the text of the current row.
///
/// At most one sub-view is active, the one on top. Going to another one deactivates it first.
/// Sub-views must be widgets; they become children of the page.
class QCE_EXPORT NavigationPage : public bwidgets::Widget, public abst::BaseView {
  Q_OBJECT

 public:
  ~NavigationPage() override;

  /// Selects the first row when none is, and activates the sub-view on top.
  void activate() override;
  /// Deactivates the sub-view on top; the others are not active.
  void deactivate() override;
  void addSubView(abst::BaseView* view) override;
  /// A view that is no widget, and a name that is taken, is refused, which is logged.
  void addSubView(const std::string& name, abst::BaseView* view) override;
  void addSubView(abst::SubDocTabView* view, const std::string& key = {}) override;
  void updateView() override;

  bool isActive() const { return active_; }

 public slots:
  /// Goes to the sub-view that the row names; with a name that no sub-view has, everything stays.
  void navigationViewRowChanged(const QModelIndex& index);

 protected:
  NavigationPage(const QString& treeName, int treeStretch, int stackStretch, QWidget* parent);

  QTreeView* tree() const { return tree_; }
  QStackedWidget* stack() const { return stack_; }
  QSplitter* splitter() const { return splitter_; }
  /// Null when there is no sub-view of that name.
  abst::BaseView* subView(const std::string& name) const;
  /// Takes the sub-view out of stack and names; false when it is not there.
  bool removeSubView(abst::BaseView* view);
  /// Lets the tree's current row decide what is shown. To be called for each model of the tree.
  void followTree();
  /// The first row was selected because none was.
  virtual void showFirst(const QModelIndex& first) = 0;

 private:
  abst::BaseView* topView() const;

  QTreeView* tree_;
  QStackedWidget* stack_;
  QSplitter* splitter_;
  std::map<std::string, QPointer<QWidget>> views_;
  QMetaObject::Connection following_;
  bool active_ = false;
  bool choosing_ = false;  // the current row changes from within
};

}  // namespace gui::qce
