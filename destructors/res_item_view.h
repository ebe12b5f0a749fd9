#pragma once

#include <string>
#include <vector>

#include "host/abst/qce/destructors/des_res_item_controller.h"
#include "host/abst/qce/destructors/des_res_item_model.h"
#include "host/presentation/res_item_view.h"

class QAction;
class QCheckBox;
class QLabel;
class QPushButton;
class QTimer;

namespace gui {
class ViewModel;
}

namespace gui::qce::destructors {

class DesFilterView;

/// The page of a design-side project's resource items: filtered by category and text or by
/// the conditions of a panel beside the table; linked to and unlinked from cost, given a cost
/// account and collected into subcontracts, several at once.
///
/// Its model is a DesResItemFilterModel that is a QAbstractItemModel and a gui::ViewModel too
/// (DesResItemFilterModelImpl). What its commands do is the controller's, which is set before the
/// first activate() and not owned; without one they do nothing. Messages go to the module's
/// channel.
///
/// A page that is hidden or not active tells nobody of its current row; it does so once it is seen.
class QCE_EXPORT DesResItemViewImpl : public gui::ResItemViewImpl {
  Q_OBJECT

 public:
  using Controller = abst::qce::destructors::DesResItemController;

  /// How long a current row has to rest before what depends on it is shown, in milliseconds.
  static constexpr int RefreshDelay = 100;

  explicit DesResItemViewImpl(QWidget* parent = nullptr);
  ~DesResItemViewImpl() override;

  void setController(Controller* controller);

  void setModel(abst::BaseModel* model) override;
  void activate() override;
  void deactivate() override;
  void updateView() override;

  /// The page's model; null before it is set.
  abst::qce::destructors::DesResItemFilterModel* getDesModel() const { return model_; }
  gui::ViewModel* getViewModel() const;
  /// Whether setting a cost account concerns the current item alone.
  bool isSetCostAccountToLocal() const;
  /// The items among the selected rows, from top to bottom.
  Controller::Items selectedItems() const;
  /// Selects the rows of these elements, with all filters off.
  void showItems(const std::vector<proxy::Element*>& items);

 public slots:
  // The set of items, by way of the controller; searchRCJ searches the table.
  void insertItem() override;
  void deleteItem() override;
  void searchRCJ() override;

  void batchLinkCB();
  void unBatchLinkCB();
  void batchSetCostAccount();
  void onBtnSetContractPush();
  void onBtnCancelContractPush();
  /// Asks what the selected items shall be collected into, and does it.
  void popupSetContract();
  void onStateChanged(int state);
  void onFindSource();
  /// The bills of the project have changed: what is shown of them is read again.
  void onSubEngineeringChange();
  /// The current row has rested: shows what depends on it.
  void onTimeOut();
  void exportExcel() override;
  /// Leads to the page where items are added.
  void showItemPage();
  /// Goes back from a sorted to the stored order.
  void regroup();
  void startFilter();
  void cancelFilter();

 signals:
  /// The current row has rested for RefreshDelay, or the bills have changed; null for none.
  void refreshed(proxy::Element* current);

 protected:
  void init();
  gui::StyledItemDelegate* createDelegate() override;
  void fillToolBar(QBoxLayout* toolBar) override;
  QWidget* createContent(gui::TreeGridView* grid) override;
  QWidget* createFooter() override;
  void onCurrentRowChanged() override;
  void fillContextMenu(QMenu* menu) override;
  void onModelReset() override;
  void onDataChanged() override;
  void showEvent(QShowEvent* event) override;

 private:
  QAction* addCommand(const QString& text, const QString& toolTip, const QString& keys,
                      void (DesResItemViewImpl::*slot)());
  QPushButton* addButton(QLayout* toolBar, QAction* action, const QString& name);
  void filterByConditions(bool on);
  bool isSeen() const { return isActive() && isVisible(); }
  /// False after telling the user that nothing is selected.
  bool requireItems(const Controller::Items& items) const;
  void refreshActions();
  void setGrouped(bool grouped);
  /// A text of the item as the table shows it.
  QString textOf(const proxy::Element* item, const std::string& key) const;
  void refreshStatusLater();
  void refreshStatus();

  abst::qce::destructors::DesResItemFilterModel* model_ = nullptr;
  Controller* controller_ = nullptr;

  QAction* linkAction_ = nullptr;
  QAction* unlinkAction_ = nullptr;
  QAction* accountAction_ = nullptr;
  QAction* setContractAction_ = nullptr;
  QAction* cancelContractAction_ = nullptr;
  QAction* sourceAction_ = nullptr;
  QAction* itemPageAction_ = nullptr;
  QAction* groupedAction_ = nullptr;
  QAction* conditionAction_ = nullptr;
  QAction* regroupAction_ = nullptr;
  QCheckBox* localBox_ = nullptr;
  DesFilterView* conditions_ = nullptr;
  QLabel* currentBill_ = nullptr;
  QLabel* status_ = nullptr;
  QTimer* timer_ = nullptr;        // of the current row
  QTimer* statusTimer_ = nullptr;  // of the status line
};

}  // namespace gui::qce::destructors
