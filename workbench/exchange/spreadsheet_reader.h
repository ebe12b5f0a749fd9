#pragma once

#include <QColor>
#include <QMap>
#include <QPair>
#include <QString>
#include <QStringList>
#include <vector>

namespace exchange {

/// What one cell of a workbook holds and how it is shown.
struct ReadCell {
  enum Kind { Empty, Flag, Number, Text, Formula };

  Kind kind = Empty;
  QString text;       ///< of a text; of a formula, the formula itself
  double number = 0;  ///< of a number; 0 or 1 of a flag
  QString numberFormat = QStringLiteral("General");
  QString alignment;  ///< horizontal: "left", "center", "right"; empty for none
  int indent = 0;
  bool bold = false;
  bool wrap = false;
  QColor background;  ///< invalid for none
  QColor foreground;
};

struct ReadRow {
  int level = 0;
  bool hidden = false;
  bool collapsed = false;
};

/// One sheet; rows and columns count from 0.
struct ReadSheet {
  QString name;
  QMap<QPair<int, int>, ReadCell> cells;  ///< by row and column
  QMap<int, ReadRow> rows;                ///< those with cells
  QMap<int, int> widths;                  ///< pixels, by column
  QStringList merges;                     ///< "A1:B2"
  int frozenRows = 0;
  int frozenColumns = 0;
  bool summaryAbove = false;  ///< of an outline, the row that stands for folded ones

  ReadCell cell(int row, int column) const { return cells.value({row, column}); }
  int rowCount() const { return rows.isEmpty() ? 0 : rows.lastKey() + 1; }
};

struct ReadWorkbook {
  std::vector<ReadSheet> sheets;  ///< in their order
  QString problem;                ///< why it could not be read (UTF-8, Chinese); empty when it was
};

/// Reads a workbook (".xlsx") back, with what is needed to compare it to what was to be written:
/// values, formats, merged cells, outline, frozen panes and widths.
ReadWorkbook readSpreadsheet(const QString& path);

}  // namespace exchange
