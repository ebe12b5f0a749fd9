#pragma once

#include "framework/base_page.h"
#include "host/abst/qce/destructors/des_res_item_summary.h"
#include "qce_export.h"

class QLabel;
class QLineEdit;
class QMenu;
class QTimer;

namespace bwidgets {
class TableView;
}
namespace gui {
class TreeGridView;
}
namespace proxy {
class Element;
}

namespace gui::qce::destructors {

/// What the items can be summed up by, as a tree beside the table.
class QCE_EXPORT DesResItemSummaryGuideViewImpl : public gui::BasePage {
  Q_OBJECT

 public:
  explicit DesResItemSummaryGuideViewImpl(QWidget* parent = nullptr);
  ~DesResItemSummaryGuideViewImpl() override;

  void setModel(abst::BaseModel* model) override;
  /// Chooses the first entry unless one is chosen.
  void activate() override;
  gui::TreeGridView* tree() const { return tree_; }

 protected:
  void onModelReset() override;

 private:
  gui::TreeGridView* tree_;
  bool wasEmpty_ = true;
};

/// The summed rows, with a line to narrow them by text. Its model is a
/// DesResItemSummaryTableFilterModelImpl.
class QCE_EXPORT DesResItemSummaryTableViewImpl : public gui::BasePage {
  Q_OBJECT

 public:
  explicit DesResItemSummaryTableViewImpl(QWidget* parent = nullptr);
  ~DesResItemSummaryTableViewImpl() override;

  void setModel(abst::BaseModel* model) override;
  void updateView() override;
  bwidgets::TableView* table() const { return table_; }

 public slots:
  void find();
  /// Lets the host save the table as a spreadsheet, with a line for the amounts.
  void exportExcel();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void filter();
  void refreshStatus();
  void showContextMenu(const QPoint& at);

  bwidgets::TableView* table_;
  QLineEdit* text_;
  QLabel* status_;
  QTimer* statusTimer_;
};

/// The summary of the design-side resource items: the guide on the left, and on the right equal
/// resources of all sub-projects as one row each, as far as they belong to the chosen entry.
///
/// Its model (setModel) is that of the table; the guide's comes by setGuideModel. Neither is owned.
class QCE_EXPORT DesResItemSummaryViewImpl : public gui::BasePage {
  Q_OBJECT

 public:
  explicit DesResItemSummaryViewImpl(QWidget* parent = nullptr);
  ~DesResItemSummaryViewImpl() override;

  void setModel(abst::BaseModel* model) override;
  void setGuideModel(abst::qce::destructors::DesResItemSummaryGuideModel* model);
  /// Reads guide and table again where the items have changed.
  void activate() override;
  void deactivate() override;
  void updateView() override;

  DesResItemSummaryGuideViewImpl* guideView() const { return guide_; }
  DesResItemSummaryTableViewImpl* tableView() const { return table_; }

 public slots:
  /// The items have changed: a page that is active reads them again once the changes are over,
  /// another one when it is activated.
  void invalidate();

 private:
  void rebuild();
  void onGuideChanged(proxy::Element* entry);
  void showEntry(proxy::Element* entry);

  DesResItemSummaryGuideViewImpl* guide_;
  DesResItemSummaryTableViewImpl* table_;
  abst::qce::destructors::DesResItemSummaryTableFilterModel* rows_ = nullptr;
  abst::qce::destructors::DesResItemSummaryGuideModel* entries_ = nullptr;
  QTimer* timer_;
  bool stale_ = true;
  bool rebuilding_ = false;
};

}  // namespace gui::qce::destructors
