#pragma once

#include <QMetaObject>
#include <array>
#include <map>
#include <string>

#include <QPointer>

#include "host/abst/base_view.h"
#include "host/bwidgets/widget.h"
#include "qce_export.h"

class QAbstractItemModel;
class QStackedWidget;
class QTabWidget;

namespace bwidgets {
class TreeGridView;
}

namespace gui {

class ViewModel;

/// How many columns a grid freezes so that the identifying ones stay in place: up to and including
/// the column of `firstKey`, or of `secondKey` when the model has no such column; 0 without both.
QCE_EXPORT int frozenColumnCount(const ViewModel& model, const std::string& firstKey,
                                 const std::string& secondKey);

/// Shows `model` in `grid` with its kept column widths, its header, a search box and its leading
/// key columns in place (see frozenColumnCount). A model that is no QAbstractItemModel is logged
/// and answered with null; otherwise the answer is the model.
QCE_EXPORT QAbstractItemModel* showInGrid(bwidgets::TreeGridView* grid, abst::BaseModel* model,
                                          const std::string& firstKey,
                                          const std::string& secondKey);

/// What every page of the module has in common: one model in one grid, an active mark, and
/// sub-views as pages of a tab or stack widget.
///
/// A page tells in its constructor which of its widgets are which (setGrid, setPopup, setSubPages)
/// and overrides the slots that it wants to hear of its model with. All widgets are its children.
/// A page can be a tab of a document; its window title is the tab's.
class QCE_EXPORT BasePage : public bwidgets::Widget, public abst::SubDocTabView {
  Q_OBJECT

 public:
  explicit BasePage(QWidget* parent = nullptr);
  ~BasePage() override;

  /// Shows `model` in the grid: it must be a QAbstractItemModel too, or nothing happens. Setting
  /// another model first cuts the connections to the one before. The model is not owned.
  void setModel(abst::BaseModel* model) override;
  void activate() override;
  /// Clears the active mark, hides the pop-up, and deactivates each sub-view in page order, also
  /// those that were never shown.
  void deactivate() override;
  /// Adds a sub-view as the last page. A view that is no widget is refused, which is logged.
  void addSubView(abst::BaseView* view) override;
  /// As above, found again under `key`, which is also the text of its tab. A key that is taken is
  /// refused, which is logged.
  void addSubView(const std::string& key, abst::BaseView* view) override;
  /// As above; the tab has the view's own title.
  void addSubView(abst::SubDocTabView* view, const std::string& key = {}) override;
  void updateView() override;
  std::string tabTitle() const override;

  bool isActive() const { return active_; }
  /// The sub-view that was added under `key`, or null.
  abst::BaseView* getSubView(const std::string& key) const;

 protected:
  /// The grid of the page, and the keys of its leading key column (see frozenColumnCount).
  void setGrid(bwidgets::TreeGridView* grid, std::string firstKey, std::string secondKey);
  bwidgets::TreeGridView* grid() const { return grid_; }
  /// A widget that floats over the page and goes when the page does.
  void setPopup(QWidget* popup);
  void setSubPages(QTabWidget* pages);
  void setSubPages(QStackedWidget* pages);

  /// The model as it was set; null before.
  abst::BaseModel* abstractModel() const { return model_; }

  /// The two connections that let changes made elsewhere reach the page. By default modelReset to
  /// onModelReset and dataChanged to onDataChanged.
  virtual std::array<QMetaObject::Connection, 2> connectModel(QAbstractItemModel* model);
  virtual void onModelReset();
  virtual void onDataChanged();

 private:
  void addPage(abst::BaseView* view, const std::string& key, const QString& title);
  int pageCount() const;
  QWidget* page(int number) const;

  abst::BaseModel* model_ = nullptr;
  bwidgets::TreeGridView* grid_ = nullptr;
  std::string firstKey_;
  std::string secondKey_;
  std::array<QMetaObject::Connection, 2> connections_;
  QPointer<QWidget> popup_;
  QTabWidget* tabs_ = nullptr;
  QStackedWidget* stack_ = nullptr;
  std::map<std::string, QPointer<QWidget>> keyed_;
  bool active_ = false;
};

}  // namespace gui
