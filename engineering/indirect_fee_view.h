#pragma once

#include <set>
#include <string>
#include <vector>

#include "framework/base_page.h"
#include "qce_export.h"

class QAction;
class QSplitter;

namespace abst::qce {
class QCEIndirectFeeController;
class QCEIndirectFeeLeftModel;
class QCEIndirectFeeRightModel;
}  // namespace abst::qce
namespace bwidgets {
class TableView;
}
namespace gui {
class TreeGridView;
}
namespace proxy {
class Element;
}

namespace gui::qce {

/// The page of a project's indirect fees: a tree of fee groups on the left, the fee items of the
/// chosen group on the right.
///
/// Its model (setModel) is the right one, an abst::qce::QCEIndirectFeeRightModel that is a
/// QAbstractItemModel too; the left one comes by setLeftModel. Neither is owned. The commands of
/// the page are its actions(); those that add and remove items need a controller.
class QCE_EXPORT QCEIndirectFeeViewImpl : public gui::BasePage {
  Q_OBJECT

 public:
  explicit QCEIndirectFeeViewImpl(QWidget* parent = nullptr);
  ~QCEIndirectFeeViewImpl() override;

  void setModel(abst::BaseModel* model) override;
  void setLeftModel(abst::qce::QCEIndirectFeeLeftModel* model);
  void setController(abst::qce::QCEIndirectFeeController* controller);  ///< not owned
  /// Chooses the first group that can be chosen, unless one is.
  void activate() override;
  void updateView() override;

  /// Shows every column of the right table but those of these field keys.
  void hideColumns(const std::set<std::string>& keys);
  /// The elements of the selected rows of the right table, from top to bottom.
  std::vector<proxy::Element*> getRightTableSelectedElement() const;

  gui::TreeGridView* leftTree() const { return leftTree_; }
  bwidgets::TableView* rightTable() const { return rightTable_; }

 public slots:
  void onLeftCurrentRowChanged();
  /// Lets the host save the right table as a spreadsheet that is named after the chosen group,
  /// "间接费用" without one.
  void exportExcel();
  void addItem();
  void removeItems();

 protected:
  void onModelReset() override;
  void onDataChanged() override;
  /// A click on a group row folds it, since it cannot be chosen.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void createActions();
  void refreshActions();
  void sizeColumn(int column);
  void showContextMenu(const QPoint& at);

  gui::TreeGridView* leftTree_ = nullptr;
  bwidgets::TableView* rightTable_ = nullptr;
  QSplitter* splitter_ = nullptr;
  abst::qce::QCEIndirectFeeLeftModel* leftModel_ = nullptr;

  abst::qce::QCEIndirectFeeRightModel* rightModel_ = nullptr;
  abst::qce::QCEIndirectFeeController* controller_ = nullptr;
  QAction* addAction_ = nullptr;
  QAction* removeAction_ = nullptr;
  QAction* exportAction_ = nullptr;
};

}  // namespace gui::qce
