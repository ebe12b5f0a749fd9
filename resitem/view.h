#pragma once

#include <string>
#include <vector>

#include "host/abst/qce/res_item_controller.h"
#include "host/abst/qce/res_item_filter_model.h"
#include "host/presentation/res_item_view.h"
#include "host/presentation/sub_project_box.h"
#include "host/proxy/element.h"
#include "qce_export.h"
#include "resitem/commands.h"

class QAction;
class QActionGroup;
class QLabel;
class QSplitter;
class QStackedWidget;
class QTimer;

namespace domain::qce {
class QCEResItemOperator;
}

namespace gui::qce::destructors {
class DesFilterView;
}

namespace gui::qce {

/// The page of a cost project's resource items: a grouped tree that is narrowed by sub-project,
/// flag, association and five conditions, sorted by a header click, and edited cell by cell or
/// several items at once.
///
/// Its model is an abst::qce::QCEResItemFilterModel that is a QAbstractItemModel too
/// (QCEResItemFilterModelImpl). The controller supplies the sub-projects and moves rows; it is set
/// before the first activate() and not owned. Without one the page shows the whole project and
/// moves nothing. Messages go to the module's channel.
class QCE_EXPORT QCEResItemViewImpl : public gui::ResItemViewImpl {
  Q_OBJECT

 public:
  explicit QCEResItemViewImpl(QWidget* parent = nullptr);
  ~QCEResItemViewImpl() override;

  void setController(abst::qce::QCEResItemController* controller);

  void setModel(abst::BaseModel* model) override;
  /// Reads the sub-projects again and filters again, since items may have changed elsewhere.
  void activate() override;
  /// Keeps the height of the pane below the grid among the settings.
  void deactivate() override;
  void updateView() override;
  using ResItemViewImpl::addSubView;
  /// Puts the sub-view into the pane below the grid, which the user can hide. One that is an
  /// abst::qce::QCEResItemBillView follows the current item.
  void addSubView(const std::string& key, abst::BaseView* view) override;

  /// Shows the items of `subProject` (null: of the whole project) whose cost account contains
  /// `account`, with all other filters off, and selects the rows of these elements.
  void showItems(proxy::Element* subProject, const std::string& account,
                 const std::vector<proxy::Element*>& selected);

 public slots:
  /// Makes an item of the current row's type below it, and lets its name be typed.
  void insertItem() override;
  /// Deletes the selected items.
  void deleteItem() override;
  void startFilter();
  void cancelFilter();
  /// Asks for a price and sets it as the unit price excluding tax of the selected items.
  void batchSetExcludeTaxPrice();
  void editComment();
  void deleteComment();
  void moveUp();
  void moveDown();
  /// Lets the controller ask what to pool into the current item.
  void collectToCost();
  /// Lets the controller ask which bills to associate with the selected items.
  void associateBills();
  /// As the generic page does, with a line for the amounts of the shown items.
  void exportExcel() override;
  /// Builds the grouping rows again; selection and current row stay on their items.
  void regroup();

 protected:
  bool hasTextFilter() const override { return false; }
  void fillToolBar(QBoxLayout* toolBar) override;
  QWidget* createContent(gui::TreeGridView* grid) override;
  QWidget* createFooter() override;
  void fillContextMenu(QMenu* menu) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void createActions();
  void insertItemOf(const std::string& type);
  proxy::Element* placeForItem();
  void addChoice(QBoxLayout* toolBar, const QString& label, QActionGroup* group);

  void refillSubProjects();
  void chooseSubProject();
  void setFlag(int filterType);
  void setAssociation(int choice);
  void applyFilters();
  void showPane(bool show);
  void keepPaneHeight() const;

  void move(bool up);
  void report(const std::string& refusal);

  ResItemCommands::Items selectedItems() const;
  domain::qce::QCEResItemOperator* resItemOperator() const;
  void refreshLater();
  void refreshActions();
  void refreshStatus();

  abst::qce::QCEResItemController* controller_ = nullptr;
  abst::qce::QCEResItemFilterModel* filter_ = nullptr;
  ResItemCommands commands_;

  gui::SubProjectBox* subProjectBox_ = nullptr;
  QActionGroup* flags_ = nullptr;
  QActionGroup* associations_ = nullptr;
  QAction* conditionAction_ = nullptr;
  QAction* batchPriceAction_ = nullptr;
  QAction* insertAction_ = nullptr;
  QAction* deleteAction_ = nullptr;
  QMenu* insertMenu_ = nullptr;
  QAction* editCommentAction_ = nullptr;
  QAction* deleteCommentAction_ = nullptr;
  QAction* poolingAction_ = nullptr;
  QAction* associationAction_ = nullptr;
  QAction* paneAction_ = nullptr;
  QAction* moveUpAction_ = nullptr;
  QAction* moveDownAction_ = nullptr;
  QAction* regroupAction_ = nullptr;
  destructors::DesFilterView* conditions_ = nullptr;
  QSplitter* panes_ = nullptr;  // the grid above, the sub-views below
  QStackedWidget* subViews_ = nullptr;
  QLabel* status_ = nullptr;
  QTimer* refreshTimer_ = nullptr;
};

}  // namespace gui::qce
