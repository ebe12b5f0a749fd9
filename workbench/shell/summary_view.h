#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "framework/view_model.h"
#include "host/abst/base_view.h"
#include "workbench/operators/fee_summary_operator.h"

class QAction;
class QSplitter;
class QTimer;

namespace gui {
class TreeGridView;
}

namespace shell {

class SummaryPlot;

/// The rows of a summary as an item model.
class SummaryModel : public gui::TViewModel<abst::BaseModel> {
  Q_OBJECT

 public:
  explicit SummaryModel(QObject* parent = nullptr);
  ~SummaryModel() override;

  operators::FeeSummaryOperator& rows() { return operator_; }
  /// Shows the lines of `total`; resets only where there are other rows than before. Answers
  /// whether it did.
  bool show(const records::SummaryLine& total);
  /// See operators::FeeSummaryOperator::setHighlighted.
  void highlight(operators::SummaryRow* row);
  operators::SummaryRow* row(const QModelIndex& index) const;

 private:
  void announce(proxy::Element* first, proxy::Element* last, const QVector<int>& roles);

  std::unique_ptr<domain::DisplayTable> table_;
  operators::FeeSummaryOperator operator_;
};

/// One summary of a project: the lines as a table, beside it (below it, where there is no room for
/// both) income and cost as bars, which can be hidden. Computed anew while it is active and the
/// project has changed; many changes in a row cost one computation.
class SummaryView : public QWidget, public abst::BaseView {
  Q_OBJECT

 public:
  /// Computes the summary.
  using Compute = std::function<records::SummaryLine()>;
  /// Leads to what stands behind a line. With `only asking`, answers whether it could.
  using Follow = std::function<bool(const records::SummaryLine& line, bool onlyAsking)>;

  SummaryView(records::SummaryKind kind, Compute compute, Follow follow);
  ~SummaryView() override;

  void setModel(abst::BaseModel* model) override;
  void activate() override;
  void deactivate() override;
  void updateView() override;

  /// Scales table and bars; per cent.
  void setZoom(int percent);

  SummaryModel& model() const { return *model_; }
  gui::TreeGridView* grid() const { return grid_; }
  SummaryPlot* plot() const { return plot_; }

 public slots:
  /// The project has changed.
  void invalidate();
  void find();
  bool exportExcel();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void createActions();
  void arrange();
  void refresh();
  void fillPlot();
  int barOf(const operators::SummaryRow* row) const;
  operators::SummaryRow* rowOfBar(int bar) const;
  operators::SummaryRow* current() const;
  void followRow(operators::SummaryRow* row);
  void showContextMenu(const QPoint& at);

  QString name_;
  Compute compute_;
  Follow follow_;
  SummaryModel* model_;
  gui::TreeGridView* grid_;
  SummaryPlot* plot_;
  QSplitter* panes_;
  int zoom_ = 100;  ///< per cent
  QTimer* timer_;
  QAction* followAction_ = nullptr;
  QAction* exportAction_ = nullptr;
  QAction* plotAction_ = nullptr;
  std::vector<operators::SummaryRow*> bars_;  // null: the rest
  bool active_ = false;
  bool stale_ = true;
};

}  // namespace shell
