#pragma once

#include <string>

#include "host/presentation/sub_engineering_view.h"
#include "qce_export.h"

namespace gui::qce {

namespace destructors {
class DesFilterView;
}

/// The page of a cost project's bills (分部分项): the generic sub-engineering page with a panel of
/// conditions beside the tree.
///
/// Its model is a QCESubEngineeringFilterModelImpl; over another filter or a plain model the
/// condition panel does nothing.
class QCE_EXPORT QCESubEngineeringViewImpl : public gui::SubEngineeringViewImpl {
  Q_OBJECT

 public:
  explicit QCESubEngineeringViewImpl(QWidget* parent = nullptr);
  ~QCESubEngineeringViewImpl() override;

  void init() override;
  /// The columns up to and including the name stay in place, here and after each new width.
  void setModel(abst::BaseModel* model) override;
  void updateColumnWidth() override;
  /// Filters by the conditions again, where they are on: texts may have changed elsewhere.
  void activate() override;
  void deactivate() override;
  void showElements(const std::vector<proxy::Element*>& elements) override;
  gui::TreeGridView* createTableGridView() override;
  gui::SubEngineeringDelegate* createSubEngineeringDelege() override;

  /// Shows the panel of conditions.
  virtual void filterByConditionView();

 public slots:
  void startFilter();
  void cancelFilter();
  void showChildren(int checkState);
  void showSibling(int checkState);

 protected:
  void fillToolBar(QToolBar* toolBar) override;
  void fillContextMenu(QMenu* menu) override;
  QString statusNote() const override;

 private:
  std::string getSECodeKey() override;
  std::string getSENameKey() override;
  std::string getSEQuantityKey() override;
  std::string getSEUnitKey() override;

  void freezeLeadingColumns();

  destructors::DesFilterView* conditions_ = nullptr;
  QAction* conditionAction_ = nullptr;
};

}  // namespace gui::qce
