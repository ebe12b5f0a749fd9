#pragma once

#include <array>
#include <unordered_map>
#include <vector>

#include "host/abst/qce/notional_pooling_controller.h"
#include "host/abst/qce/notional_pooling_filter_model.h"
#include "host/abst/qce/notional_pooling_view.h"
#include "host/bwidgets/dialog.h"
#include "host/proxy/element.h"
#include "qce_export.h"

class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace gui {
class TreeGridView;
}

namespace gui::qce {

/// The modal dialog in which the user pools budget resource items of bills into the current cost
/// resource item: the bills on the left, the resource items of the chosen one on the right, each
/// with a check box and a quantity. Confirmed, it tells its controller to pool; cancelled or
/// closed, nothing happens, whatever was checked.
///
/// Its model is an abst::qce::QCENotionalPoolingFilterModel that is a QAbstractItemModel too
/// (QCENotionalPoolingFilterModelImpl). Neither model nor controller is owned; both are set before
/// showDialog(). Return, Enter and Space never confirm unless a button has the keyboard.
class QCE_EXPORT QCENotionalPoolingViewImpl : public bwidgets::Dialog,
                                              public abst::qce::QCENotionalPoolingView {
  Q_OBJECT

 public:
  explicit QCENotionalPoolingViewImpl(QWidget* parent = nullptr);
  ~QCENotionalPoolingViewImpl() override;

  void setController(abst::qce::QCENotionalPoolingController* controller);

  void setModel(abst::BaseModel* model) override;
  void activate() override {}
  void deactivate() override {}
  void updateView() override;
  void cleanUpResources() override;

  void setAssociatedBills(std::vector<proxy::Element*>& bills) override;
  void setCurrentAssociatedBill(proxy::Element* bill) override;
  void setCurrentQCEGLJItem(proxy::Element* item) override;
  void showDialog(bool withBills) override;

 protected:
  virtual void billItemChanged(QListWidgetItem* listItem);
  virtual void useToOtherBills();
  /// The columns' widths as the model keeps them, else fitting their contents.
  virtual void initDefaultWidth();
  abst::qce::QCENotionalPoolingController* getController() const { return controller_; }
  abst::qce::QCENotionalPoolingFilterModel* getModel() const { return model_; }

  void keyPressEvent(QKeyEvent* event) override;

 private:
  abst::qce::QCENotionalPoolingController* controller_ = nullptr;
  abst::qce::QCENotionalPoolingFilterModel* model_ = nullptr;
  std::unordered_map<QListWidgetItem*, scoped_refptr<proxy::Element>> bills_;
  std::array<QMetaObject::Connection, 2> connections_;

  QListWidget* billList_ = nullptr;
  gui::TreeGridView* tree_ = nullptr;
  QLabel* currentBillLabel_ = nullptr;
  QLabel* currentItemLabel_ = nullptr;
  QPushButton* otherBillsButton_ = nullptr;
};

}  // namespace gui::qce
