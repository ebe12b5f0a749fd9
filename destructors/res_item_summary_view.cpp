#include "destructors/res_item_summary_view.h"

#include <QAbstractItemModel>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>
#include <cmath>

#include "destructors/res_item_summary_models.h"
#include "framework/delay.h"
#include "host/app/services.h"
#include "host/app/spreadsheet.h"
#include "host/base/log.h"
#include "host/base/number_text.h"
#include "host/bwidgets/grid_sheet.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/domain/qce/destructors/des_res_item_keys.h"
#include "host/domain/qce/destructors/des_res_item_operator.h"
#include "host/gui/styled_item_delegate.h"
#include "host/gui/tree_grid_view.h"

namespace gui::qce::destructors {

namespace keys = domain::keys;

namespace {

const char* const NoMatch = "没有符合条件的人材机";

}  // namespace

// ---------------------------------------------------------------------------------------------
// Guide

DesResItemSummaryGuideViewImpl::DesResItemSummaryGuideViewImpl(QWidget* parent)
    : BasePage(parent), tree_(new gui::TreeGridView(this)) {
  tree_->setObjectName("DesResItemSummary_guide");
  tree_->setItemDelegate(new gui::StyledItemDelegate(tree_));
  tree_->setSelectionBehavior(QAbstractItemView::SelectRows);
  tree_->setSelectionMode(QAbstractItemView::SingleSelection);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(tree_);
  setGrid(tree_, keys::BRIName, keys::BRIName);
}

DesResItemSummaryGuideViewImpl::~DesResItemSummaryGuideViewImpl() = default;

void DesResItemSummaryGuideViewImpl::setModel(abst::BaseModel* model) {
  BasePage::setModel(model);
  if (abstractModel() == nullptr) return;
  tree_->header()->setSectionsClickable(false);
  tree_->header()->setSortIndicatorShown(false);
  tree_->expandAll();
  wasEmpty_ = tree_->model()->rowCount() == 0;
}

void DesResItemSummaryGuideViewImpl::activate() {
  BasePage::activate();
  if (tree_->model() == nullptr || tree_->currentIndex().isValid()) return;
  tree_->setCurrentIndex(tree_->model()->index(0, 0));
}

void DesResItemSummaryGuideViewImpl::onModelReset() {
  if (wasEmpty_) tree_->expandAll();
  wasEmpty_ = tree_->model()->rowCount() == 0;
  BasePage::onModelReset();
}

// ---------------------------------------------------------------------------------------------
// Table

DesResItemSummaryTableViewImpl::DesResItemSummaryTableViewImpl(QWidget* parent)
    : BasePage(parent),
      table_(new bwidgets::TableView(this)),
      text_(new QLineEdit(this)),
      status_(new QLabel(this)),
      statusTimer_(gui::makeDelay(this, 0, &DesResItemSummaryTableViewImpl::refreshStatus)) {
  table_->setObjectName("DesResItemSummary_table");
  table_->setItemDelegate(new gui::StyledItemDelegate(table_));
  table_->setEmptyText(NoMatch);
  table_->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(table_, &QWidget::customContextMenuRequested, this,
          &DesResItemSummaryTableViewImpl::showContextMenu);
  text_->setObjectName("DesResItemSummary_text");
  text_->setPlaceholderText("输入内容");
  text_->setClearButtonEnabled(true);
  text_->setMaximumWidth(260);
  connect(text_, &QLineEdit::returnPressed, this, &DesResItemSummaryTableViewImpl::filter);
  auto* button = new QPushButton("过滤", this);
  button->setFlat(true);
  button->setFixedWidth(40);
  connect(button, &QPushButton::clicked, this, &DesResItemSummaryTableViewImpl::filter);
  status_->setObjectName("DesResItemSummary_status");
  status_->setContentsMargins(6, 3, 6, 3);

  auto* bar = new QHBoxLayout;
  bar->setContentsMargins(6, 4, 6, 4);
  bar->addWidget(text_, 1);
  bar->addWidget(button);
  bar->addStretch();
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addLayout(bar);
  layout->addWidget(table_, 1);
  layout->addWidget(status_);
  setGrid(table_, keys::BRIName, keys::BRICode);
}

DesResItemSummaryTableViewImpl::~DesResItemSummaryTableViewImpl() = default;

void DesResItemSummaryTableViewImpl::setModel(abst::BaseModel* model) {
  BasePage::setModel(model);
  if (abstractModel() == nullptr) return;
  updateView();
}

void DesResItemSummaryTableViewImpl::filter() {
  if (auto* rows = dynamic_cast<DesResItemSummaryTableFilterModelImpl*>(abstractModel())) {
    rows->setText(text_->text().toStdString());
  }
  updateView();
}

void DesResItemSummaryTableViewImpl::updateView() {
  BasePage::updateView();
  if (!statusTimer_->isActive()) statusTimer_->start();
}

void DesResItemSummaryTableViewImpl::refreshStatus() {
  const QAbstractItemModel* rows = table_->model();
  if (rows == nullptr || table_->viewModel() == nullptr) return;
  const auto* op = dynamic_cast<const domain::qce::destructors::DesResItemSummaryOperator*>(
      abstractModel()->getOperator());
  const std::string reason = op != nullptr ? op->getEmptyReason() : std::string();
  table_->setEmptyText(reason.empty() ? NoMatch : QString::fromStdString(reason));
  const auto sum = [&](const std::string& key) {
    const int column = table_->viewModel()->getColumnIndex(key);
    double cents = 0.0;
    for (int row = 0; column >= 0 && row < rows->rowCount(); ++row) {
      cents += std::round(rows->index(row, column).data(Qt::EditRole).toDouble() * 100.0);
    }
    return QString::fromStdString(base::ToThousandthsString(cents / 100.0, 2));
  };
  status_->setText(QString("共 %1 种　　不含税合价 %2 元，计入成本 %3 元")
                       .arg(rows->rowCount())
                       .arg(sum(keys::BRIMarketTotalCost), sum(keys::BRIExcludedTaxTotalCost)));
}

void DesResItemSummaryTableViewImpl::find() {
  table_->openSearchBox();
}

void DesResItemSummaryTableViewImpl::exportExcel() {
  const std::string name = "人材机归集汇总";
  app::Sheet sheet = bwidgets::makeSheet(*table_, name);
  app::AddTotals(sheet, "合计", {keys::BRIMarketTotalCost, keys::BRIExcludedTaxTotalCost});
  app::GetSpreadsheets()->save(name, {sheet});
}

void DesResItemSummaryTableViewImpl::showContextMenu(const QPoint& at) {
  QMenu menu(this);
  table_->addEditActions(&menu);
  menu.addSeparator();
  menu.addAction("查找\tCtrl+F", this, &DesResItemSummaryTableViewImpl::find);
  menu.addAction("导出Excel\tCtrl+E", this, &DesResItemSummaryTableViewImpl::exportExcel);
  menu.exec(table_->viewport()->mapToGlobal(at));
}

void DesResItemSummaryTableViewImpl::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Find)) {
    find();
  } else if (event->key() == Qt::Key_E && event->modifiers() == Qt::ControlModifier) {
    exportExcel();
  } else {
    BasePage::keyPressEvent(event);
  }
}

// ---------------------------------------------------------------------------------------------
// Summary

DesResItemSummaryViewImpl::DesResItemSummaryViewImpl(QWidget* parent)
    : BasePage(parent),
      guide_(new DesResItemSummaryGuideViewImpl(this)),
      table_(new DesResItemSummaryTableViewImpl(this)),
      timer_(gui::makeDelay(this, 80, &DesResItemSummaryViewImpl::rebuild)) {
  setWindowTitle("汇总");
  auto* splitter = new QSplitter(this);
  splitter->setHandleWidth(8);
  splitter->setChildrenCollapsible(false);
  splitter->addWidget(guide_);
  splitter->addWidget(table_);
  splitter->setStretchFactor(0, 20);
  splitter->setStretchFactor(1, 80);
  splitter->setSizes({400, 800});  // the guide's amounts are to be seen, beside their names
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(splitter);
  connect(guide_->tree(), &gui::TreeGridView::currentElementChanged, this,
          &DesResItemSummaryViewImpl::onGuideChanged);
}

DesResItemSummaryViewImpl::~DesResItemSummaryViewImpl() = default;

void DesResItemSummaryViewImpl::setModel(abst::BaseModel* model) {
  rows_ = dynamic_cast<abst::qce::destructors::DesResItemSummaryTableFilterModel*>(model);
  if (rows_ == nullptr) {
    base::LogError("the summary of resource items was given a model that it cannot show");
    return;
  }
  table_->setModel(model);
}

void DesResItemSummaryViewImpl::setGuideModel(
    abst::qce::destructors::DesResItemSummaryGuideModel* model) {
  entries_ = model;
  guide_->setModel(model);
}

void DesResItemSummaryViewImpl::activate() {
  BasePage::activate();
  if (stale_) rebuild();
  guide_->activate();
  table_->activate();
}

void DesResItemSummaryViewImpl::deactivate() {
  if (timer_->isActive()) {
    timer_->stop();
    stale_ = true;
  }
  guide_->deactivate();
  table_->deactivate();
  BasePage::deactivate();
}

void DesResItemSummaryViewImpl::updateView() {
  guide_->updateView();
  table_->updateView();
}

void DesResItemSummaryViewImpl::invalidate() {
  stale_ = true;
  if (isActive() && !timer_->isActive()) timer_->start();
}

void DesResItemSummaryViewImpl::rebuild() {
  if (rows_ == nullptr || entries_ == nullptr) return;
  stale_ = false;
  rebuilding_ = true;  // the grid puts its current entry back
  entries_->rebuild();
  rebuilding_ = false;
  if (proxy::Element* entry = guide_->tree()->currentElement()) {
    showEntry(entry);
  } else {
    guide_->activate();  // chooses the first
  }
}

void DesResItemSummaryViewImpl::onGuideChanged(proxy::Element* entry) {
  if (rows_ == nullptr || rebuilding_) return;
  showEntry(entry);
  table_->table()->scrollToTop();
}

// A reset takes the sort mark off, but a user who goes from entry to entry goes on comparing.
void DesResItemSummaryViewImpl::showEntry(proxy::Element* entry) {
  QHeaderView* header = table_->table()->header();
  const int section = header->sortIndicatorSection();
  const Qt::SortOrder order = header->sortIndicatorOrder();
  rows_->setGuideEntry(entry);
  if (section >= 0) header->setSortIndicator(section, order);
}

}  // namespace gui::qce::destructors
