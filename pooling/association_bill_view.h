#pragma once

#include <QMetaObject>
#include <array>
#include <string>
#include <vector>

#include "host/abst/base_view.h"
#include "host/bwidgets/dialog.h"
#include "qce_export.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QTimer;

namespace abst::qce {
class QCEAssociationBillController;
class QCEAssociationBillRightFilterModel;
}  // namespace abst::qce

namespace gui {
class TreeGridView;
}

namespace proxy {
class Element;
}

namespace gui::qce {

/// The modal dialog that associates bills with cost resource items: left the sections of the
/// sub-project, right their bills with check boxes. The current section narrows the right tree, as
/// do a text and "仅显示选中项"; what is checked stays checked meanwhile.
///
/// setModel takes the left model, setRightModel an abst::qce::QCEAssociationBillRightFilterModel
/// that is a QAbstractItemModel too. Models and controller are not owned.
///
/// Return filters while the filter is typed and moves down in a tree, Space toggles the check marks
/// of the selected rows, Ctrl+Return confirms; elsewhere Return and Space do nothing but press the
/// button that has the keyboard.
class QCE_EXPORT QCEAssociationBillViewImpl : public bwidgets::Dialog, public abst::BaseView {
  Q_OBJECT

 public:
  explicit QCEAssociationBillViewImpl(QWidget* parent = nullptr);
  ~QCEAssociationBillViewImpl() override;

  void setController(abst::qce::QCEAssociationBillController* controller);
  void setModel(abst::BaseModel* model) override;
  void setRightModel(abst::BaseModel* model);
  void activate() override;
  void deactivate() override;
  void updateView() override;
  /// Names the cost resource items that are being associated.
  void setCurrentItems(const std::vector<proxy::Element*>& items);

  /// Expands both trees and runs the dialog. After it was confirmed, the controller is told to pool
  /// if the user asked for it.
  void show();

  /// Whether "汇总统计" is checked.
  bool getUnifyFBChecked() const;
  void setUnifyFBChecked(bool checked);
  void setUnifyFBEnable(bool enable);
  void setUnifyFBVisible(bool visible);
  /// Takes the mark of "关联清单后弹出归集到成本设置" off, then hides or shows it.
  void setCollectedHidden(bool hidden);
  bool needCollectToQCERes() const;

  /// No filter text, all rows shown, the first section current.
  void initFilterState();
  void initDefaultWidth();
  /// The current row of either tree; null for none.
  proxy::Element* getLeftCurrentElemment() const;
  proxy::Element* getRightCurrentElemment() const;

 public slots:
  /// Tells the controller to associate, then closes the dialog. The button 确定 comes here when the
  /// controller lets it.
  void confirm();
  /// Shows the bills that hold the text of the filter line.
  void filter();
  /// True shows checked rows alone.
  void showSelection(bool on);
  /// Shows the bills of the current section.
  void onLeftCurrentRowChanged();
  /// Shows the features of the current bill.
  void onRightCurrentRowChanged();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* createLeftPane();
  QWidget* createRightPane();
  void checkSelected(bool checked);
  void toggleSelected();
  void showContextMenu(const QPoint& position);
  void refreshCounts();
  void confirmIfAllowed();

  abst::qce::QCEAssociationBillController* controller_ = nullptr;
  abst::qce::QCEAssociationBillRightFilterModel* rightModel_ = nullptr;
  std::array<QMetaObject::Connection, 2> leftConnections_;
  std::array<QMetaObject::Connection, 3> rightConnections_;

  QLabel* itemsLabel_ = nullptr;
  gui::TreeGridView* leftTree_ = nullptr;
  gui::TreeGridView* rightTree_ = nullptr;
  QLineEdit* filterEdit_ = nullptr;
  QCheckBox* onlySelectedBox_ = nullptr;
  QPlainTextEdit* features_ = nullptr;
  QCheckBox* collectBox_ = nullptr;
  QCheckBox* unifyBox_ = nullptr;
  QLabel* counts_ = nullptr;
  QTimer* countTimer_ = nullptr;
};

}  // namespace gui::qce
