#pragma once

#include "engineering/navigation_page.h"

namespace gui::qce {

/// A page that holds named sub-views behind a list or tree of their names. The names are the rows
/// of its model; a row that names no sub-view (a caption, say) changes nothing.
class QCE_EXPORT QCENavigationViewImpl : public NavigationPage {
  Q_OBJECT

 public:
  explicit QCENavigationViewImpl(QWidget* parent = nullptr);
  ~QCENavigationViewImpl() override;

  /// Shows `model`, which must be a QAbstractItemModel too, in the navigation tree. Not owned.
  void setModel(abst::BaseModel* model) override;
  /// The sub-view that was added under `name`, or null.
  abst::BaseView* getBaseView(const std::string& name) const { return subView(name); }
  /// Takes the sub-view out of the page, which keeps its widget as a hidden child: delete it or
  /// give it another parent. While the page is active, the sub-view is deactivated first, and what
  /// then lies on top is activated.
  void delSubView(abst::BaseView* view);

  /// The two panes, for a host that keeps their sizes.
  using NavigationPage::splitter;
  using NavigationPage::tree;

 protected:
  void showFirst(const QModelIndex& first) override;
};

}  // namespace gui::qce
