#include "host/bwidgets/grid_clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPersistentModelIndex>
#include <algorithm>
#include <cmath>

#include "host/app/scoped_undo.h"
#include "host/app/services.h"
#include "host/bwidgets/cell_text.h"
#include "host/bwidgets/grid_rows.h"
#include "host/bwidgets/table_view.h"
#include "host/bwidgets/tree_grid_view.h"
#include "host/domain/data_field.h"
#include "host/domain/item_role.h"

namespace bwidgets {
namespace {

constexpr int NamedCells = 10;

bool isNumber(int fieldType) {
  return fieldType == domain::IntegerField || fieldType == domain::FloatingPointField;
}

bool isWritable(const QModelIndex& cell) {
  constexpr Qt::ItemFlags editable = Qt::ItemIsEditable | Qt::ItemIsEnabled;
  constexpr Qt::ItemFlags checkable = Qt::ItemIsUserCheckable | Qt::ItemIsEnabled;
  const Qt::ItemFlags flags = cell.flags();
  return (flags & editable) == editable || (flags & checkable) == checkable;
}

// One cell to write. Kept persistent: an edit may make the model sort or filter.
struct Target {
  QPersistentModelIndex cell;
  QString text;
};

// A cell that kept what it held.
struct Refusal {
  QPersistentModelIndex cell;
  QString said;    // by its model; mostly nothing
  QString reason;  // as far as the grid knows it
};
using Refused = std::vector<Refusal>;

// What a model says of the cells it refuses, while a block is written: a column of wrong values is
// one report instead of a message box a cell. Questions still reach the user.
class Hearing : public app::Channel {
 public:
  Hearing() : before_(app::InstallServices({})) {
    app::Services hearing = before_;
    hearing.channel = this;
    hearing.qceChannel = this;
    app::InstallServices(hearing);
  }
  ~Hearing() override { app::InstallServices(before_); }
  Hearing(const Hearing&) = delete;
  Hearing& operator=(const Hearing&) = delete;

  int message(const std::string& text, int buttons) override {
    if (buttons != QMessageBox::Ok) {
      app::Channel* asking = before_.channel != nullptr ? before_.channel : before_.qceChannel;
      if (asking != nullptr) return asking->message(text, buttons);
      return buttons & -buttons;
    }
    heard_ << QString::fromStdString(text).simplified();
    return buttons;
  }

  /// What has been said since it was last asked.
  QString take() {
    QString said = heard_.join(QLatin1Char(' '));
    heard_.clear();
    return said;
  }

 private:
  app::Services before_;
  QStringList heard_;
};

// The number of a shown row, from 1.
int shownRowNumber(const TreeGridView& grid, const QModelIndex& cell) {
  int number = 1;
  for (QModelIndex at = grid.indexAbove(cell.sibling(cell.row(), 0)); at.isValid();
       at = grid.indexAbove(at)) {
    ++number;
  }
  return number;
}

QString titleOf(const TreeGridView& grid, int column) {
  return grid.model()->headerData(column, Qt::Horizontal).toString().simplified();
}

// What a user knows the row by: its code and name, else its text in the column of the tree, else
// the first that it shows besides the cell's own; empty without any.
QString rowWords(const TreeGridView& grid, const QModelIndex& cell) {
  std::vector<int> columns = grid.visibleColumns();
  const auto textIn = [&cell](int column) {
    return cell.sibling(cell.row(), column).data().toString().simplified();
  };
  QStringList words;
  for (const QString& title : {QString::fromUtf8("编码"), QString::fromUtf8("名称")}) {
    const auto named = std::find_if(columns.begin(), columns.end(), [&](int column) {
      return titleOf(grid, column).endsWith(title);
    });
    if (named != columns.end() && !textIn(*named).isEmpty()) words << textIn(*named);
  }
  columns.insert(columns.begin(), std::max(grid.treePosition(), 0));
  for (const int column : columns) {
    if (!words.isEmpty()) break;
    if (column != cell.column() && !textIn(column).isEmpty()) words << textIn(column);
  }
  constexpr int most = 40;
  const QString all = words.join(QLatin1Char(' '));
  return all.size() > most ? all.left(most) + QString::fromUtf8("…") : all;
}

// The row's number, where the user sees numbers or nothing else that names it.
QString rowNumber(const TreeGridView& grid, const QModelIndex& cell, const QString& words) {
  const auto* table = qobject_cast<const TableView*>(&grid);
  if (!words.isEmpty() && (table == nullptr || !table->rowNumbersShown())) return {};
  return QString::fromUtf8("第 %1 行").arg(shownRowNumber(grid, cell));
}

QString reasonFor(const Target& target) {
  if (!isWritable(target.cell)) return QString::fromUtf8("：不可编辑");
  const bool number = isNumber(target.cell.data(domain::FieldTypeRole).toInt());
  return number && !plainNumber(target.text) ? QString::fromUtf8("：应为数字") : QString();
}

QString lineFor(const TreeGridView& grid, const Refusal& refusal) {
  const QString words = rowWords(grid, refusal.cell);
  const QString number = rowNumber(grid, refusal.cell, words);
  const QString row = words.isEmpty() ? number : QString::fromUtf8("%1“%2”").arg(number, words);
  if (refusal.said.isEmpty()) {
    return QString::fromUtf8("%1的%2%3")
        .arg(row, titleOf(grid, refusal.cell.column()), refusal.reason);
  }
  const bool named = !words.isEmpty() && refusal.said.contains(words);
  const QString prefix = named ? number : row;
  return prefix.isEmpty() ? refusal.said : QString::fromUtf8("%1：%2").arg(prefix, refusal.said);
}

// Writes the cells as one undo step and answers those that refused. What is said of cells that took
// their text goes into `notes`.
template <class Skip>
Refused write(const std::vector<Target>& targets, const char* step, QStringList& notes, Skip skip) {
  Refused refused;
  const app::ScopedUndo undo(step);
  Hearing hearing;
  for (const Target& target : targets) {
    if (skip(target)) continue;
    const bool taken = writeCell(target.cell, target.text);
    const QString said = hearing.take();
    if (!taken) {
      refused.push_back({target.cell, said, reasonFor(target)});
    } else if (!said.isEmpty()) {
      notes << said;
    }
  }
  return refused;
}

void report(const TreeGridView& grid, const QString& headline, const Refused& refused,
            const QStringList& notes) {
  if (refused.empty() && notes.isEmpty()) return;
  QStringList lines;
  if (!refused.empty()) {
    lines << headline.arg(refused.size());
    const std::size_t named = std::min<std::size_t>(refused.size(), NamedCells);
    for (std::size_t i = 0; i < named; ++i) {
      if (refused[i].cell.isValid()) lines << lineFor(grid, refused[i]);
    }
    if (refused.size() > named) {
      lines << QString::fromUtf8("……另有 %1 个单元格").arg(refused.size() - named);
    }
  }
  lines << notes.mid(0, NamedCells);
  if (notes.size() > NamedCells) {
    lines << QString::fromUtf8("……另有 %1 条提示").arg(notes.size() - NamedCells);
  }
  app::GetChannel()->message(lines.join(QLatin1Char('\n')).toStdString(), QMessageBox::Ok);
}

}  // namespace

QString clipboardText(const QModelIndex& cell) {
  QString text = cell.data(Qt::DisplayRole).toString();
  if (text.isEmpty()) {
    const QVariant check = cell.data(Qt::CheckStateRole);
    return check.isValid() && check.toInt() == Qt::Checked ? QString::fromUtf8("√") : QString();
  }
  if (isNumber(cell.data(domain::FieldTypeRole).toInt()) && text.contains(QLatin1Char(','))) {
    return plainNumber(text).value_or(text);
  }
  return text;
}

bool writeCell(const QModelIndex& cell, const QString& text) {
  if (!cell.isValid() || !isWritable(cell)) return false;
  auto* model = const_cast<QAbstractItemModel*>(cell.model());
  const Qt::ItemFlags flags = cell.flags();
  const int type = cell.data(domain::FieldTypeRole).toInt();
  if (!(flags & Qt::ItemIsEditable) || type == domain::BoolField) {
    const std::optional<bool> checked = yesOrNo(text);
    if (!checked) return false;
    if (flags & Qt::ItemIsUserCheckable) {
      return model->setData(cell, *checked ? Qt::Checked : Qt::Unchecked, Qt::CheckStateRole);
    }
    return model->setData(cell, *checked, Qt::EditRole);
  }
  if (!isNumber(type) || text.trimmed().isEmpty()) {
    return model->setData(cell, isNumber(type) ? QString() : text, Qt::EditRole);
  }
  std::optional<QString> number = plainNumber(text);
  if (!number) return false;
  if (type == domain::IntegerField) {
    // "3.00", as spreadsheets write it, is 3; 3.5 is refused rather than cut.
    const double value = number->toDouble();
    if (value != std::floor(value) || std::fabs(value) > 2147483647.0) return false;
    number = QString::number(static_cast<int>(value));
  }
  return model->setData(cell, *number, Qt::EditRole);
}

void copyToClipboard(const TreeGridView& grid) {
  const std::vector<GridRow> rows = selectedRows(grid);
  std::vector<int> columns;
  for (const int column : grid.visibleColumns()) {
    if (std::any_of(rows.begin(), rows.end(),
                    [column](const GridRow& row) { return row.isSelected(column); })) {
      columns.push_back(column);
    }
  }
  if (columns.empty()) return;
  std::vector<QStringList> block;
  block.reserve(rows.size());
  for (const GridRow& row : rows) {
    QStringList cells;
    bool any = false;
    for (const int column : columns) {
      const bool selected = row.isSelected(column);
      any = any || selected;
      cells << (selected ? clipboardText(row.index.sibling(row.index.row(), column)) : QString());
    }
    if (any) block.push_back(cells);
  }
  QGuiApplication::clipboard()->setText(formatBlock(block));
}

void pasteFromClipboard(TreeGridView& grid) {
  const std::vector<QStringList> block = parseBlock(QGuiApplication::clipboard()->text());
  if (block.empty() || grid.model() == nullptr) return;
  const QModelIndexList selected = grid.selectedCells();
  const std::vector<int> columns = grid.visibleColumns();
  std::vector<Target> targets;
  QStringList notes;

  if (block.size() == 1 && block.front().size() == 1 && selected.size() > 1) {
    for (const QModelIndex& cell : selected) targets.push_back({cell, block.front().front()});
  } else {
    // A selected block takes the paste at its top left corner, wherever its current cell is.
    QModelIndex start = grid.currentIndex();
    if (selected.size() > 1 && selected.contains(start)) {
      const QModelIndex top = selected.front();
      for (const int column : columns) {
        const auto in = [column](const QModelIndex& cell) { return cell.column() == column; };
        if (std::any_of(selected.begin(), selected.end(), in)) {
          start = top.sibling(top.row(), column);
          break;
        }
      }
    }
    const auto first = std::find(columns.begin(), columns.end(), start.column());
    if (!start.isValid() || first == columns.end()) return;
    const auto room = static_cast<int>(columns.end() - first);
    int missingRows = 0;
    int missingColumns = 0;
    QModelIndex row = start.sibling(start.row(), 0);
    for (const QStringList& cells : block) {
      if (!row.isValid()) {
        ++missingRows;
        continue;
      }
      missingColumns = std::max(missingColumns, cells.size() - room);
      for (int i = 0; i < std::min(room, cells.size()); ++i) {
        const QModelIndex cell = row.sibling(row.row(), *(first + i));
        targets.push_back({cell, cells.at(i)});
      }
      row = grid.indexBelow(row);
    }
    if (missingRows > 0) {
      notes << QString::fromUtf8("有 %1 行超出表格末尾，未粘贴。").arg(missingRows);
    }
    if (missingColumns > 0) {
      notes << QString::fromUtf8("有 %1 列超出表格右侧，未粘贴。").arg(missingColumns);
    }
  }

  const Refused refused = write(targets, "粘贴", notes, [](const Target& target) {
    // What already stands there needs no writing: digits that are not shown stay, and copied
    // rows can be pasted back over columns that cannot be edited.
    if (target.cell.isValid() && clipboardText(target.cell) == target.text) return true;
    // Nothing for a cell that cannot be edited is no loss to tell of.
    return target.text.isEmpty() && target.cell.isValid() && !isWritable(target.cell);
  });
  report(grid, QString::fromUtf8("以下 %1 个单元格未粘贴，保持原值："), refused, notes);
}

void clearCells(TreeGridView& grid) {
  std::vector<Target> targets;
  for (const QModelIndex& cell : grid.selectedCells()) {
    constexpr Qt::ItemFlags editable = Qt::ItemIsEditable | Qt::ItemIsEnabled;
    if ((cell.flags() & editable) != editable) continue;
    if (cell.data(domain::FieldTypeRole).toInt() == domain::BoolField) continue;
    if (clipboardText(cell).isEmpty()) continue;
    targets.push_back({cell, QString()});
  }
  if (targets.empty()) return;
  QStringList notes;
  const Refused refused = write(targets, "清除内容", notes, [](const Target&) { return false; });
  report(grid, QString::fromUtf8("以下 %1 个单元格的内容不能清除："), refused, notes);
}

}  // namespace bwidgets
