#include "workbench/cli/sheet_check.h"

#include "host/base/number_text.h"
#include "host/bwidgets/tree_grid_view.h"

namespace cli {
namespace {

class Comparison {
 public:
  Comparison(const exchange::ReadSheet& sheet, const bwidgets::TreeGridView& grid)
      : sheet_(sheet), grid_(grid), columns_(grid.visibleColumns()), next_(sheet.frozenRows) {}

  QString run() {
    for (int i = 0; i < static_cast<int>(columns_.size()); ++i) {
      const QString title = grid_.model()->headerData(columns_[i], Qt::Horizontal).toString();
      // A title over both levels stands in the upper one.
      const QString lower = sheet_.cell(next_ - 1, i).text;
      expect(lower.isEmpty() ? sheet_.cell(0, i).text : lower, title, next_ - 1, i);
    }
    rows(grid_.rootIndex(), 0, false);
    if (difference_.isEmpty() && sheet_.rowCount() < next_) {
      difference_ = QStringLiteral("只有 %1 行，表格有 %2 行").arg(sheet_.rowCount()).arg(next_);
    }
    return difference_;
  }

 private:
  void rows(const QModelIndex& parent, int level, bool folded) {
    const QAbstractItemModel& model = *grid_.model();
    for (int row = 0; row < model.rowCount(parent) && difference_.isEmpty(); ++row) {
      if (grid_.isRowHidden(row, parent)) continue;
      const exchange::ReadRow& read = sheet_.rows.value(next_);
      if (read.level != level || read.hidden != folded) {
        difference_ = QStringLiteral("第 %1 行的大纲级别不对").arg(next_ + 1);
      }
      for (int i = 0; i < static_cast<int>(columns_.size()); ++i) {
        const QModelIndex cell = model.index(row, columns_[i], parent);
        QString shown = cell.data(Qt::DisplayRole).toString();
        if (shown.isEmpty() && cell.data(Qt::CheckStateRole).toInt() == Qt::Checked) shown = "√";
        expect(shownText(sheet_.cell(next_, i)), shown, next_, i);
      }
      ++next_;
      const QModelIndex first = model.index(row, 0, parent);
      rows(first, level + 1, folded || !grid_.isExpanded(first));
    }
  }

  void expect(const QString& read, const QString& shown, int row, int column) {
    if (read == shown || !difference_.isEmpty()) return;
    difference_ = QStringLiteral("第 %1 行第 %2 列是“%3”，表格中是“%4”")
                      .arg(row + 1)
                      .arg(column + 1)
                      .arg(read, shown);
  }

  const exchange::ReadSheet& sheet_;
  const bwidgets::TreeGridView& grid_;
  const std::vector<int> columns_;
  int next_;
  QString difference_;
};

}  // namespace

QString shownText(const exchange::ReadCell& cell) {
  if (cell.kind == exchange::ReadCell::Empty) return {};
  if (cell.kind != exchange::ReadCell::Number) return cell.text;
  const int point = cell.numberFormat.indexOf('.');
  const int places = point < 0 ? 0 : cell.numberFormat.size() - point - 1;
  return QString::fromStdString(cell.numberFormat.contains(',')
                                    ? base::ToThousandthsString(cell.number, places)
                                    : base::ToPlainString(cell.number, places));
}

QString sheetDifference(const exchange::ReadSheet& sheet, const bwidgets::TreeGridView& grid) {
  return Comparison(sheet, grid).run();
}

}  // namespace cli
