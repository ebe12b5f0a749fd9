#include "workbench/shell/summary_view.h"

#include <QAction>
#include <QCursor>
#include <QEvent>
#include <QFontInfo>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QSplitter>
#include <QTimer>
#include <QToolButton>
#include <QToolTip>
#include <QVBoxLayout>
#include <algorithm>
#include <stdexcept>
#include <utility>

#include "host/app/services.h"
#include "host/bwidgets/grid_sheet.h"
#include "host/bwidgets/search_box.h"
#include "host/gui/tree_grid_view.h"
#include "workbench/shell/summary_bars.h"

namespace shell {

namespace {

using operators::SummaryRow;
using records::SummaryLine;
using Kind = SummaryLine::Kind;

constexpr int kDelay = 80;  // ms that changes are gathered
// What the panes need in pixels, to stand beside each other and one below the other.
constexpr int kTableWidth = 680;
constexpr int kPlotWidth = 300;
constexpr int kPlotHeight = 240;

QString text(const std::string& utf8) {
  return QString::fromStdString(utf8);
}

}  // namespace

// ---------------------------------------------------------------------------------------------

SummaryModel::SummaryModel(QObject* parent)
    : TViewModel(parent), table_(operators::makeFeeSummaryTable()) {
  setDisplayTable(table_.get());
  setOperator(&operator_);
}

SummaryModel::~SummaryModel() = default;

bool SummaryModel::show(const SummaryLine& total) {
  const bool updated = operator_.update(total, [this](SummaryRow& first, SummaryRow& last) {
    announce(&first, &last, {Qt::DisplayRole, Qt::EditRole, Qt::ToolTipRole, Qt::ForegroundRole});
  });
  if (updated) return false;
  beginResetModel();
  operator_.replace(total);
  endResetModel();
  return true;
}

void SummaryModel::highlight(SummaryRow* row) {
  auto* before = const_cast<SummaryRow*>(operator_.highlighted());
  if (before == row) return;
  operator_.setHighlighted(row);
  for (SummaryRow* each : {before, row}) {
    if (each != nullptr) announce(each, each, {Qt::BackgroundRole});
  }
}

SummaryRow* SummaryModel::row(const QModelIndex& index) const {
  return dynamic_cast<SummaryRow*>(getInternalData(index));
}

void SummaryModel::announce(proxy::Element* first, proxy::Element* last,
                            const QVector<int>& roles) {
  emit dataChanged(makeIndex(first, 0), makeIndex(last, columnCount() - 1), roles);
}

// ---------------------------------------------------------------------------------------------

SummaryView::SummaryView(records::SummaryKind kind, Compute compute, Follow follow)
    : name_(text(records::nameOf(kind))),
      compute_(std::move(compute)),
      follow_(std::move(follow)),
      model_(new SummaryModel(this)),
      grid_(new gui::TreeGridView),
      plot_(new SummaryPlot),
      panes_(new QSplitter(Qt::Horizontal)),
      timer_(new QTimer(this)) {
  setWindowTitle(name_);
  timer_->setSingleShot(true);
  timer_->setInterval(kDelay);
  connect(timer_, &QTimer::timeout, this, [this] {
    if (active_) refresh();
  });

  grid_->setModel(model_);
  grid_->applyDefaultColumnWidths();
  grid_->initSearchBox();
  grid_->setFrozenColumnCount(1);
  grid_->setExpandsOnDoubleClick(false);
  grid_->setContextMenuPolicy(Qt::CustomContextMenu);
  grid_->setMouseTracking(true);
  grid_->viewport()->installEventFilter(this);
  connect(grid_, &QWidget::customContextMenuRequested, this, &SummaryView::showContextMenu);
  connect(grid_, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& index) {
    SummaryRow* row = model_->row(index);
    const bool leads = row != nullptr && follow_ && follow_(row->line(), true);
    // The grid folds or unfolds a row after this; one that leads elsewhere stays as it is.
    if (leads && row->childCount() > 0) {
      const QModelIndex first = model_->makeIndex(row, 0);
      grid_->setExpanded(first, !grid_->isExpanded(first));
    }
    followRow(row);
  });
  connect(grid_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          [this](const QModelIndex& index) {
            SummaryRow* row = model_->row(index);
            plot_->setCurrent(barOf(row));
            followAction_->setEnabled(row != nullptr && follow_ && follow_(row->line(), true));
          });
  connect(plot_, &SummaryPlot::barHovered, this,
          [this](int bar) { model_->highlight(rowOfBar(bar)); });
  connect(plot_, &SummaryPlot::barClicked, this, [this](int bar) {
    if (SummaryRow* row = rowOfBar(bar)) grid_->selectElements({row});
  });
  connect(plot_, &SummaryPlot::barDoubleClicked, this,
          [this](int bar) { followRow(rowOfBar(bar)); });
  createActions();

  auto* bar = new QHBoxLayout;
  bar->setContentsMargins(6, 4, 6, 4);
  bar->setSpacing(4);
  for (QAction* action : {followAction_, exportAction_, plotAction_}) {
    auto* button = new QToolButton;
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    bar->addWidget(button);
  }
  bar->addStretch();
  auto* note =
      new QLabel(QStringLiteral("除“税金”外均不含税，合计含税金；税金按收入计算，收支相同"));
  note->setObjectName(QStringLiteral("summaryNote"));
  bar->addWidget(note);
  panes_->setHandleWidth(8);
  panes_->setChildrenCollapsible(false);
  panes_->addWidget(grid_);
  panes_->addWidget(plot_);
  panes_->setStretchFactor(0, 60);
  panes_->setStretchFactor(1, 40);
  panes_->setSizes({6000, 4000});
  plot_->setMinimumSize(kPlotWidth, kPlotHeight);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addLayout(bar);
  layout->addWidget(panes_, 1);
}

SummaryView::~SummaryView() = default;

void SummaryView::createActions() {
  followAction_ = new QAction(QStringLiteral("查看来源"), this);
  followAction_->setShortcut(QKeySequence(QStringLiteral("Ctrl+Return")));
  followAction_->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  followAction_->setToolTip(
      QStringLiteral("转到当前行金额的来源（Ctrl+Return）；也可双击该行或图中的条"));
  addAction(followAction_);
  followAction_->setEnabled(false);
  connect(followAction_, &QAction::triggered, this, [this] { followRow(current()); });
  // Without a shortcut: the window has the command under Ctrl+E for all pages.
  exportAction_ = new QAction(QStringLiteral("导出Excel"), this);
  exportAction_->setToolTip(QStringLiteral("把本表导出为电子表格（Ctrl+E）"));
  connect(exportAction_, &QAction::triggered, this, &SummaryView::exportExcel);
  plotAction_ = new QAction(QStringLiteral("显示图"), this);
  plotAction_->setCheckable(true);
  plotAction_->setChecked(true);
  plotAction_->setToolTip(QStringLiteral("显示或隐藏收入与成本的图"));
  connect(plotAction_, &QAction::toggled, plot_, &QWidget::setVisible);
}

void SummaryView::setModel(abst::BaseModel* /*model*/) {}

void SummaryView::activate() {
  active_ = true;
  if (stale_) refresh();
}

void SummaryView::deactivate() {
  active_ = false;
  timer_->stop();
  if (grid_->searchBox() != nullptr) grid_->searchBox()->hide();
}

void SummaryView::updateView() {
  grid_->viewport()->update();
}

void SummaryView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  arrange();
}

void SummaryView::arrange() {
  const int table = kTableWidth * zoom_ / 100;
  const bool wide = width() >= table + panes_->handleWidth() + kPlotWidth;
  const Qt::Orientation orientation = wide ? Qt::Horizontal : Qt::Vertical;
  if (panes_->orientation() != orientation) {
    panes_->setOrientation(orientation);
    panes_->setSizes(wide ? QList<int>{6000, 4000} : QList<int>{5000, 5000});
  }
  // A number that is cut in the middle would be read as another one.
  if (wide && plot_->isVisible() && panes_->sizes().value(0) < table) {
    panes_->setSizes({table, width() - panes_->handleWidth() - table});
  }
}

void SummaryView::setZoom(int percent) {
  zoom_ = percent;
  grid_->setZoom(percent);
  QFont scaled = font();
  scaled.setPixelSize(std::max(1, QFontInfo(scaled).pixelSize() * percent / 100));
  plot_->setFont(scaled);
  arrange();
}

void SummaryView::invalidate() {
  stale_ = true;
  if (active_ && !timer_->isActive()) timer_->start();
}

void SummaryView::refresh() {
  stale_ = false;
  const bool first = bars_.empty();
  try {
    if (model_->show(compute_()) && first) grid_->expandToDepth(0);
  } catch (const std::overflow_error&) {
    app::qce::GetQCEChannel()->message("汇总的金额超出可表示的范围，请检查数量和单价。",
                                       QMessageBox::Ok);
  }
  fillPlot();
}

void SummaryView::fillPlot() {
  SummaryBars shown = summaryBars(model_->rows());
  bars_ = std::move(shown.rows);
  plot_->setBars(std::move(shown.bars));
  plot_->setCurrent(barOf(current()));
}

SummaryRow* SummaryView::current() const {
  return model_->row(grid_->currentIndex());
}

int SummaryView::barOf(const SummaryRow* row) const {
  for (const proxy::Element* at = row; at != nullptr; at = at->parent()) {
    const auto found = std::find(bars_.begin(), bars_.end(), at);
    if (found != bars_.end()) return static_cast<int>(found - bars_.begin());
  }
  return -1;
}

SummaryRow* SummaryView::rowOfBar(int bar) const {
  return bar >= 0 && bar < static_cast<int>(bars_.size()) ? bars_[static_cast<std::size_t>(bar)]
                                                          : nullptr;
}

void SummaryView::followRow(SummaryRow* row) {
  if (row == nullptr) return;
  const SummaryLine line = row->line();  // the row may go on the way
  if (follow_ && follow_(line, true)) {
    follow_(line, false);
  } else if (row->childCount() == 0) {
    QToolTip::showText(QCursor::pos(), text(operators::explain(line)), grid_);
  }
}

void SummaryView::showContextMenu(const QPoint& at) {
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->addAction(followAction_);
  menu->addAction(QStringLiteral("复制\tCtrl+C"), grid_, &gui::TreeGridView::copySelection);
  menu->addAction(QStringLiteral("查找\tCtrl+F"), this, &SummaryView::find);
  menu->addSeparator();
  menu->addAction(QStringLiteral("全部展开"), grid_, &QTreeView::expandAll);
  menu->addAction(QStringLiteral("全部折叠"), grid_, &QTreeView::collapseAll);
  menu->addSeparator();
  menu->addAction(exportAction_);
  menu->popup(grid_->viewport()->mapToGlobal(at));
}

void SummaryView::find() {
  grid_->openSearchBox();
}

bool SummaryView::exportExcel() {
  return bwidgets::exportSheet(*grid_, name_.toStdString());
}

bool SummaryView::eventFilter(QObject* watched, QEvent* event) {
  if (watched == grid_->viewport()) {
    if (event->type() == QEvent::MouseMove) {
      const QPoint at = static_cast<QMouseEvent*>(event)->pos();
      plot_->setHovered(barOf(model_->row(grid_->indexAt(at))));
    } else if (event->type() == QEvent::Leave) {
      plot_->setHovered(-1);
    }
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace shell
