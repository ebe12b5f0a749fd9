#pragma once

#include <framework/view_model.h>
#include <host/abst/base_view.h>
#include <host/bwidgets/widget.h>

class QTreeView;

/// The abstract model of the page and the Qt model of its grid in one object.
class LinesModel : public gui::TViewModel<abst::BaseModel> {
  Q_OBJECT

 public:
  using TViewModel::TViewModel;

  /// A change that no edit in a grid has announced: undo, or an amount that followed a quantity.
  void announceLine(proxy::Element* line);
};

/// The one page of this host.
class LinesPage : public bwidgets::Widget, public abst::BaseView {
  Q_OBJECT

 public:
  explicit LinesPage(QWidget* parent = nullptr);

  void setModel(abst::BaseModel* model) override;
  void activate() override;
  void deactivate() override;
  void updateView() override;

  QTreeView* grid() const { return grid_; }

 private:
  QTreeView* grid_;
};
