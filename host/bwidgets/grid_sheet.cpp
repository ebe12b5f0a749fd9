#include "host/bwidgets/grid_sheet.h"

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QGuiApplication>
#include <algorithm>
#include <cmath>

#include "host/abst/base_model.h"
#include "host/app/services.h"
#include "host/bwidgets/cell_text.h"
#include "host/bwidgets/grid_header.h"
#include "host/bwidgets/tree_grid_view.h"
#include "host/domain/display_table.h"
#include "host/domain/item_role.h"
#include "host/gui/view_model.h"
#include "host/proxy/element.h"

namespace bwidgets {
namespace {

bool isNumber(const QVariant& value) {
  const int type = value.userType();
  return type == QMetaType::Double || type == QMetaType::Float || type == QMetaType::Int ||
         type == QMetaType::UInt || type == QMetaType::LongLong || type == QMetaType::ULongLong;
}

bool isNumberField(int type) {
  return type == domain::IntegerField || type == domain::FloatingPointField;
}

int placesIn(const QString& number) {
  const int point = number.indexOf(QLatin1Char('.'));
  return point < 0 ? 0 : number.size() - point - 1;
}

app::SheetAlignment alignmentOf(const QVariant& wanted) {
  const int alignment = wanted.toInt();
  if (alignment & Qt::AlignRight) return app::SheetAlignment::Right;
  if (alignment & Qt::AlignHCenter) return app::SheetAlignment::Center;
  if (alignment & Qt::AlignLeft) return app::SheetAlignment::Left;
  return app::SheetAlignment::Automatic;
}

// Models answer a brush or a plain colour.
std::optional<base::Color> colorOf(const QVariant& wanted) {
  QColor color;
  if (wanted.userType() == QMetaType::QBrush) {
    const auto brush = wanted.value<QBrush>();
    if (brush.style() != Qt::NoBrush) color = brush.color();
  } else {
    color = wanted.value<QColor>();
  }
  if (!color.isValid()) return {};
  return base::Color{static_cast<std::uint8_t>(color.red()),
                     static_cast<std::uint8_t>(color.green()),
                     static_cast<std::uint8_t>(color.blue())};
}

// What is shown decides what kind of cell it is; the value for editing is exact.
void readValue(const QModelIndex& index, app::SheetCell& cell) {
  const QVariant display = index.data(Qt::DisplayRole);
  const QString shown = display.toString();
  const bool flag = display.userType() == QMetaType::Bool;
  if (shown.isEmpty() || flag) {
    const QVariant check = index.data(Qt::CheckStateRole);
    if (check.isValid()) {
      cell.value = check.toInt() == Qt::Checked;
    } else if (flag) {
      cell.value = display.toBool();
    }
    return;
  }
  if (isNumber(display) || isNumberField(index.data(domain::FieldTypeRole).toInt())) {
    if (const std::optional<QString> plain = plainNumber(shown)) {
      const QVariant exact = index.data(Qt::EditRole);
      const double value = isNumber(exact) ? exact.toDouble() : plain->toDouble();
      if (std::isfinite(value)) {
        cell.value = value;
        cell.places = placesIn(*plain);
        return;
      }
    }
  }
  cell.value = shown.toStdString();
}

app::SheetCell readCell(const QModelIndex& index) {
  app::SheetCell cell;
  readValue(index, cell);
  cell.alignment = alignmentOf(index.data(Qt::TextAlignmentRole));
  const QVariant font = index.data(Qt::FontRole);
  cell.bold = font.isValid() && font.value<QFont>().bold();
  cell.background = colorOf(index.data(Qt::BackgroundRole));
  cell.foreground = colorOf(index.data(Qt::ForegroundRole));
  return cell;
}

/// Tells the user that it takes a moment.
struct WaitCursor {
  WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
  ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
};

class SheetMaker {
 public:
  SheetMaker(const TreeGridView& grid, const QAbstractItemModel& model, app::Sheet& sheet)
      : grid_(grid), model_(model), columns_(grid.visibleColumns()), sheet_(sheet) {}

  void readColumns() {
    const GridHeader& header = *grid_.gridHeader();
    const auto* abstract = dynamic_cast<const abst::BaseModel*>(grid_.viewModel());
    const domain::DisplayTable* table = abstract != nullptr ? abstract->getDisplayTable() : nullptr;
    std::vector<HeaderColumn> visible;
    for (const int column : columns_) {
      app::SheetColumn made;
      if (grid_.viewModel() != nullptr) made.key = grid_.viewModel()->getColumnName(column);
      made.title = model_.headerData(column, Qt::Horizontal).toString().toStdString();
      made.width = qRound(header.sectionSize(column) * 100.0 / grid_.zoom());
      const domain::ColumnDescriptor* known =
          table != nullptr ? table->getHeader()->column(made.key) : nullptr;
      made.thousands =
          known != nullptr && known->field != nullptr && known->field->thousandsSeparators;
      sheet_.columns.push_back(std::move(made));
      visible.push_back({1, header.groupOf(column)});
      if (header.visualIndex(column) < grid_.frozenColumnCount()) ++sheet_.frozenColumns;
    }
    for (const HeaderSpan& span : headerSpans(visible, sheet_.frozenColumns)) {
      sheet_.groups.push_back(
          {header.groupCaption(span.group).toStdString(), span.first, span.last});
    }
    const auto tree = std::find(columns_.begin(), columns_.end(), grid_.treePosition());
    if (tree != columns_.end()) sheet_.treeColumn = static_cast<int>(tree - columns_.begin());
    sheet_.wrapTexts = grid_.rowsResizedToContents();
  }

  void readRows(const QModelIndex& parent, int level) {
    const int count = model_.rowCount(parent);
    for (int row = 0; row < count; ++row) {
      if (grid_.isRowHidden(row, parent)) continue;
      const QModelIndex first = model_.index(row, 0, parent);
      app::SheetRow made;
      made.level = level;
      made.cells.reserve(columns_.size());
      for (const int column : columns_) {
        made.cells.push_back(readCell(model_.index(row, column, parent)));
      }
      const bool below = hasRowsBelow(first);
      made.collapsed = below && !grid_.isExpanded(first);
      sheet_.rows.push_back(std::move(made));
      if (below) readRows(first, level + 1);
    }
  }

 private:
  // Asking a proxy about the rows below an item makes it remember that there are none, item by
  // item; the elements know it for nothing.
  bool hasRowsBelow(const QModelIndex& first) const {
    const proxy::Element* element = grid_.elementAt(first);
    if (element != nullptr && element->childCount() == 0) return false;
    return model_.hasChildren(first);
  }

  const TreeGridView& grid_;
  const QAbstractItemModel& model_;
  const std::vector<int> columns_;
  app::Sheet& sheet_;
};

}  // namespace

app::Sheet makeSheet(const TreeGridView& grid, const std::string& name) {
  app::Sheet sheet;
  sheet.name = name;
  const QAbstractItemModel* model = grid.model();
  if (model == nullptr) return sheet;
  const WaitCursor wait;
  SheetMaker maker(grid, *model, sheet);
  maker.readColumns();
  maker.readRows(grid.rootIndex(), 0);
  return sheet;
}

bool exportSheet(const TreeGridView& grid, const std::string& name) {
  return app::GetSpreadsheets()->save(name, {makeSheet(grid, name)});
}

}  // namespace bwidgets
