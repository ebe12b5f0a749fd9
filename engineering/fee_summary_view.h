#pragma once

#include "engineering/navigation_page.h"

class QStandardItemModel;

namespace gui::qce {

/// The page of the fee summaries: the kinds of summary on the left, the summary that is selected
/// there on the right. What each shows is the host's: it adds a sub-view for each kind, under the
/// names that QCEFeeSummaryNavigationModelImpl lists.
class QCE_EXPORT QCEFeeSummaryViewImpl : public NavigationPage {
  Q_OBJECT

 public:
  explicit QCEFeeSummaryViewImpl(QWidget* parent = nullptr);
  ~QCEFeeSummaryViewImpl() override;

  /// The list on the left is made of the sub-views; the page keeps no other model.
  void setModel(abst::BaseModel* model) override;
  using NavigationPage::addSubView;
  /// Appends `name` to the list, too.
  void addSubView(const std::string& name, abst::BaseView* view) override;

 protected:
  void showFirst(const QModelIndex& first) override;

 private:
  QStandardItemModel* names_;
};

}  // namespace gui::qce
