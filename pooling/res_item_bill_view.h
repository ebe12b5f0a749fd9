#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "framework/base_page.h"
#include "host/abst/qce/res_item_bill_filter_model.h"
#include "host/abst/qce/res_item_bill_view.h"
#include "host/proxy/element.h"
#include "qce_export.h"

class QAction;
class QCheckBox;
class QLabel;
class QMenu;
class QTimer;

namespace gui::qce {

class QCEResItemBillDelegate;

/// The pane of the bills in which a cost resource item is used or with which it is associated, with
/// content, coefficient and subcontract price of each.
///
/// Its model is an abst::qce::QCEResItemBillFilterModel that is a QAbstractItemModel too
/// (QCEResItemBillFilterModelImpl). The controller is set before the first item and not owned;
/// without one the pane has no title and pools nothing. Each command is one undo step; one that the
/// host refuses asks again with what was typed.
class QCE_EXPORT QCEResItemBillViewImpl : public gui::BasePage,
                                          public abst::qce::QCEResItemBillView {
  Q_OBJECT

 public:
  explicit QCEResItemBillViewImpl(QWidget* parent = nullptr);
  ~QCEResItemBillViewImpl() override;

  void setController(abst::qce::QCEResItemBillController* controller);

  void setModel(abst::BaseModel* model) override;
  void activate() override;
  void updateView() override;

  /// Asks for the item's rows a moment after the last call, or when the pane is shown again.
  void setBaseResItem(proxy::Element* item) override;
  /// Asks for the rows of the item again: at once, or when the pane is shown again.
  void reload();
  /// The item that was set last.
  proxy::Element* baseResItem() const { return item_.get(); }

  bwidgets::TreeGridView* getTableView() const { return grid(); }
  proxy::Element* getCurrentElemment() const;
  std::vector<proxy::Element*> getSelectedElements() const;

  /// A key that is no column of the table changes nothing. What is hidden stays so for every item.
  void hideBillViewColumn(std::string key);
  void showBillViewColumn(std::string key);

  // Each asks the user and answers whether they confirmed. What the arguments hold is what the
  // dialog starts with, where it starts with something.

  /// `multiply` is true for 乘以相同系数, false for 除以相同系数.
  bool getCoefficientToSet(double& coefficient, bool& multiply);
  /// `content` is a number or an expression; when empty, the dialog starts with `current`.
  bool getAdjustedContentToSet(double current, std::string& content);
  /// Yuan per unit of the bill.
  bool getExcludeTaxPrice(double& price) const;
  bool getExcludeTaxPriceExpr(std::string& expression) const;

  /// Whether there is something to show: the current item is a resource item.
  bool isShouldShow() const { return shouldShow_; }
  /// Whether rows are as high as their texts need.
  bool isResize() const;
  void resizeRowsToContents(bool on);
  void initDefaultWidth();

 public slots:
  /// Clears the selected cells that can be edited: content and price go back to none, coefficients
  /// to 1. Where there are none, disassociates the selected bills.
  void keyDeleteAction();
  void rightCopyCellContents();
  void rightPasteCellContents();
  void batchSetCoefficient();
  void batchSetContent();
  void batchSetPrice();
  void batchSetPriceExpression();
  void disassociate();
  void collect();
  /// Gives back what is pooled from the selected bills; they stay associated.
  void withdraw();
  void onCustomContextMenuRequested(const QPoint& position) const;

 protected:
  void onModelReset() override;
  void showEvent(QShowEvent* event) override;

 private:
  using Items = std::vector<proxy::Element*>;

  QWidget* createToolBar();
  void fillColumnMenu(QMenu* menu) const;
  /// Runs `write` on the selected bills as one undo step; false when it was refused.
  bool runOnSelected(const char* name, const std::function<bool(const Items&)>& write);
  std::string fieldText(const proxy::Element* bill, const std::string& key) const;
  void setColumnHidden(const std::string& key, bool hidden);
  void loadHiddenColumns();
  void saveHiddenColumns() const;
  void follow();
  void refreshLater();
  void refresh();

  abst::qce::QCEResItemBillController* controller_ = nullptr;
  abst::qce::QCEResItemBillFilterModel* filter_ = nullptr;
  QCEResItemBillDelegate* delegate_ = nullptr;
  scoped_refptr<proxy::Element> item_;
  bool stale_ = false;  // item_ is not what the model shows
  bool shouldShow_ = false;
  std::set<std::string> hidden_;
  std::optional<std::pair<double, bool>> refusedFactor_;  // while the user is asked again

  QAction* coefficientAction_ = nullptr;
  QAction* contentAction_ = nullptr;
  QAction* priceAction_ = nullptr;
  QAction* expressionAction_ = nullptr;
  QAction* disassociateAction_ = nullptr;
  QAction* collectAction_ = nullptr;
  QAction* withdrawAction_ = nullptr;
  QAction* resizeAction_ = nullptr;
  QCheckBox* associatedOnly_ = nullptr;
  QLabel* title_ = nullptr;
  QLabel* status_ = nullptr;
  QTimer* followTimer_ = nullptr;
  QTimer* refreshTimer_ = nullptr;
};

}  // namespace gui::qce
