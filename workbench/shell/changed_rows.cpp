#include "workbench/shell/changed_rows.h"

#include <QItemSelectionModel>
#include <algorithm>

#include "host/bwidgets/tree_grid_view.h"
#include "host/proxy/element.h"

namespace shell {

namespace {

using bwidgets::TreeGridView;
using Ids = std::unordered_set<std::int64_t>;

// Records have codes. Guides and summaries show none, and their rows have ids of their own.
bool showsRecords(const QAbstractItemModel& model) {
  for (int column = 0; column < model.columnCount(); ++column) {
    const QString title = model.headerData(column, Qt::Horizontal).toString();
    if (title.endsWith(QStringLiteral("编码"))) return true;
  }
  return false;
}

bool isOneOf(const TreeGridView& grid, const QModelIndex& row, const Ids& ids) {
  const proxy::Element* element = grid.elementAt(row);
  return element != nullptr && ids.count(element->id()) > 0;
}

QModelIndex firstOf(const TreeGridView& grid, const QModelIndex& parent, const Ids& ids) {
  const QAbstractItemModel& model = *grid.model();
  for (int row = 0; row < model.rowCount(parent); ++row) {
    const QModelIndex index = model.index(row, 0, parent);
    if (isOneOf(grid, index, ids)) return index;
    const QModelIndex below = firstOf(grid, index, ids);
    if (below.isValid()) return below;
  }
  return {};
}

// Steps are named after what they change: "修改不含税单价" is about "不含税单价（元）".
int columnOf(const TreeGridView& grid, const QString& step) {
  const std::vector<int> columns = grid.visibleColumns();
  int column = grid.currentIndex().column();
  if (std::find(columns.begin(), columns.end(), column) == columns.end()) {
    column = columns.empty() ? 0 : columns.front();
  }
  int length = 0;
  for (const int each : columns) {
    const QString title = grid.model()->headerData(each, Qt::Horizontal).toString();
    const QString name = title.section(QStringLiteral("（"), 0, 0);
    if (name.size() <= length || !step.contains(name)) continue;
    length = name.size();
    column = each;
  }
  return column;
}

}  // namespace

ChangedRows::ChangedRows(records::Project& project) : project_(project) {
  project_.addObserver(this);
}

ChangedRows::~ChangedRows() {
  project_.removeObserver(this);
}

bool ChangedRows::show(const QWidget& page, const QString& step) const {
  if (ids_.empty()) return false;
  QList<TreeGridView*> grids = page.findChildren<TreeGridView*>();
  std::stable_partition(grids.begin(), grids.end(),
                        [](const TreeGridView* grid) { return grid->hasFocus(); });
  for (TreeGridView* grid : grids) {
    if (!grid->isVisible() || grid->model() == nullptr || !showsRecords(*grid->model())) continue;
    QModelIndex row = grid->currentIndex();
    if (!isOneOf(*grid, row, ids_)) row = firstOf(*grid, {}, ids_);
    if (!row.isValid()) continue;
    const QModelIndex cell = row.sibling(row.row(), columnOf(*grid, step));
    grid->selectionModel()->setCurrentIndex(cell, QItemSelectionModel::ClearAndSelect);
    grid->scrollTo(cell);
    return true;
  }
  return false;
}

void ChangedRows::itemChanged(records::ResourceItem& item) {
  ids_.insert(item.id());
}

void ChangedRows::billChanged(records::Bill& bill) {
  ids_.insert(bill.id());
}

void ChangedRows::aboutToSwap(records::ResourceGroup& group, int upper) {
  for (const int row : {upper, upper + 1}) ids_.insert(group.child(row)->id());
}

void ChangedRows::feeChanged(records::IndirectFeeItem& item) {
  ids_.insert(item.id());
}

void ChangedRows::aboutToInsertFee(records::IndirectFeeGroup& group, int row) {
  group_ = &group;
  row_ = row;
}

void ChangedRows::feeInserted() {
  ids_.insert(group_->child(row_)->id());
}

void ChangedRows::subcontractChanged(records::Subcontract& entry) {
  ids_.insert(entry.id());
}

void ChangedRows::aboutToInsertSubcontract(int row) {
  row_ = row;
}

void ChangedRows::subcontractInserted() {
  ids_.insert(project_.subcontracts().rows().at(row_)->id());
}

void ChangedRows::aboutToMoveSubcontract(int from, int /*to*/) {
  ids_.insert(project_.subcontracts().rows().at(from)->id());
}

}  // namespace shell
