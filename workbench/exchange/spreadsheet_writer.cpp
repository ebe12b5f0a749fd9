#include "workbench/exchange/spreadsheet_writer.h"

#include <xlsxwriter.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <algorithm>
#include <climits>
#include <cmath>
#include <map>
#include <tuple>
#include <utility>

#include "workbench/exchange/file_replacement.h"
#include "workbench/exchange/spreadsheet_names.h"
#include "workbench/exchange/zip_archive.h"

namespace exchange {
namespace {

constexpr int DeepestLevel = 7;
constexpr int LongestText = 32767;  // UTF-16 units in a cell
constexpr int LongestAsText = 255;  // above it a cell of the text format shows only "#"
constexpr int MostPlaces = 15;      // more than that a double does not have
constexpr double LargestNumber = 9.99e307;
constexpr int A4 = 9;  // paper
constexpr char FontName[] = "宋体";
constexpr double FontSize = 10;  // points; 13 pixels, as in the grids
constexpr lxw_color_t HeaderColor = 0xE6EBF2;
constexpr lxw_color_t TotalsColor = 0xF3F5F8;
constexpr lxw_color_t LineColor = 0xC4CBD4;

enum class Part { Header, Body, Totals };

/// What tells one cell format from another.
struct Look {
  Part part = Part::Body;
  lxw_format_alignments alignment = LXW_ALIGN_NONE;
  bool bold = false;
  bool wrap = false;
  int indent = 0;
  lxw_color_t background = LXW_COLOR_UNSET;
  lxw_color_t foreground = LXW_COLOR_UNSET;
  std::string numberFormat;  ///< empty for the general one

  friend bool operator<(const Look& a, const Look& b) { return a.tied() < b.tied(); }

 private:
  std::tuple<Part, int, bool, bool, int, lxw_color_t, lxw_color_t, const std::string&> tied()
      const {
    return {part, alignment, bold, wrap, indent, background, foreground, numberFormat};
  }
};

lxw_color_t colorOf(const std::optional<base::Color>& color) {
  if (!color) return LXW_COLOR_UNSET;
  const auto value = static_cast<lxw_color_t>(color->r << 16 | color->g << 8 | color->b);
  return value == 0 ? static_cast<lxw_color_t>(LXW_COLOR_BLACK) : value;  // 0 means none
}

std::string numberFormat(int places, bool thousands) {
  std::string format = thousands ? "#,##0" : "0";
  if (places > 0) format += '.' + std::string(std::min(places, MostPlaces), '0');
  return format;
}

// Spreadsheet programs read "_x000D_" as the character of that number.
std::string escaped(const std::string& text) {
  QString all = QString::fromStdString(text);
  static const QRegularExpression number(QStringLiteral("_(?=x[0-9a-fA-F]{4}_)"));
  all.replace(number, QStringLiteral("_x005F_"));
  all.replace(QChar(0), QStringLiteral("_x0000_"));
  return all.toStdString();
}

bool mayHoldEscape(const std::string& text) {
  return text.find("_x") != std::string::npos || text.find('\0') != std::string::npos;
}

/// One workbook in memory on its way to a file.
class Workbook {
 public:
  Workbook(const QString& path, const QString& scratch) : scratch_(QFile::encodeName(scratch)) {
    lxw_workbook_options options = {};
    options.tmpdir = scratch_.data();
    options.use_zip64 = LXW_FALSE;
    book_ = workbook_new_opt(QFile::encodeName(path).constData(), &options);
  }
  ~Workbook() {
    if (book_ != nullptr) workbook_close(book_);
  }
  Workbook(const Workbook&) = delete;
  Workbook& operator=(const Workbook&) = delete;

  lxw_worksheet* addSheet(const QString& name) {
    return workbook_add_worksheet(book_, name.toUtf8().constData());
  }

  lxw_format* format(const Look& look) {
    lxw_format*& format = formats_[look];
    if (format != nullptr) return format;
    format = workbook_add_format(book_);
    format_set_font_name(format, FontName);
    format_set_font_size(format, FontSize);
    format_set_align(format, LXW_ALIGN_VERTICAL_CENTER);
    format_set_border(format, LXW_BORDER_THIN);
    format_set_border_color(format, LineColor);
    if (look.alignment != LXW_ALIGN_NONE) {
      format_set_align(format, static_cast<std::uint8_t>(look.alignment));
    }
    if (look.bold) format_set_bold(format);
    if (look.wrap) format_set_text_wrap(format);
    if (look.indent > 0) format_set_indent(format, static_cast<std::uint8_t>(look.indent));
    if (look.background != LXW_COLOR_UNSET) format_set_bg_color(format, look.background);
    if (look.foreground != LXW_COLOR_UNSET) format_set_font_color(format, look.foreground);
    if (!look.numberFormat.empty()) format_set_num_format(format, look.numberFormat.c_str());
    return format;
  }

  lxw_error close() { return workbook_close(std::exchange(book_, nullptr)); }

 private:
  QByteArray scratch_;
  lxw_workbook* book_;
  std::map<Look, lxw_format*> formats_;
};

/// Lays one table out on a sheet of a workbook.
class SheetWriter {
 public:
  SheetWriter(Workbook& book, lxw_worksheet* to, const app::Sheet& sheet)
      : book_(book), to_(to), sheet_(sheet) {}

  lxw_error write() {
    setUp();
    writeHeader();
    int foldedAt = INT_MAX;  // rows deeper than this are folded away
    for (const app::SheetRow& row : sheet_.rows) {
      if (row.level <= foldedAt) foldedAt = INT_MAX;
      const bool hidden = row.level > foldedAt;
      if (row.collapsed && !hidden) foldedAt = row.level;
      setRow(row, hidden);
      writeRow(row, Part::Body);
    }
    if (sheet_.totals) writeRow(*sheet_.totals, Part::Totals);
    return error_;
  }

  static int headerRows(const app::Sheet& sheet) { return sheet.groups.empty() ? 1 : 2; }

 private:
  void note(lxw_error error) {
    if (error_ == LXW_NO_ERROR) error_ = error;
  }

  lxw_col_t lastColumn() const { return static_cast<lxw_col_t>(sheet_.columns.size() - 1); }

  void setUp() {
    const auto header = static_cast<lxw_row_t>(headerRows(sheet_));
    for (lxw_col_t column = 0; column <= lastColumn(); ++column) {
      const int width = std::clamp(sheet_.columns[column].width, 8, 1700);
      note(worksheet_set_column_pixels(to_, column, column, static_cast<std::uint32_t>(width),
                                       nullptr));
    }
    worksheet_freeze_panes(to_, header, static_cast<lxw_col_t>(sheet_.frozenColumns));
    worksheet_outline_settings(to_, LXW_TRUE, LXW_FALSE, LXW_FALSE, LXW_FALSE);
    worksheet_ignore_errors(to_, LXW_IGNORE_NUMBER_STORED_AS_TEXT, "A1:XFD1048576");
    worksheet_set_landscape(to_);
    worksheet_set_paper(to_, A4);
    worksheet_fit_to_pages(to_, 1, 0);
    worksheet_repeat_rows(to_, 0, header - 1);
    worksheet_set_footer(to_, "&C第 &P 页，共 &N 页");
  }

  void writeHeader() {
    Look look;
    look.part = Part::Header;
    look.alignment = LXW_ALIGN_CENTER;
    look.bold = true;
    look.wrap = true;
    look.background = HeaderColor;
    lxw_format* format = book_.format(look);
    const int last = headerRows(sheet_) - 1;
    std::vector<bool> grouped(sheet_.columns.size(), false);
    for (const app::SheetGroup& group : sheet_.groups) {
      const int end = std::min(group.last, static_cast<int>(sheet_.columns.size()) - 1);
      if (group.first < 0 || group.first > end) continue;
      merge(0, group.first, 0, end, group.caption, format);
      std::fill(grouped.begin() + group.first, grouped.begin() + end + 1, true);
    }
    for (int column = 0; column <= lastColumn(); ++column) {
      const auto at = static_cast<std::size_t>(column);
      merge(grouped[at] ? last : 0, column, last, column, sheet_.columns[at].title, format);
    }
    next_ = static_cast<lxw_row_t>(last + 1);
  }

  void merge(int top, int left, int bottom, int right, const std::string& text,
             lxw_format* format) {
    const auto row = static_cast<lxw_row_t>(top);
    const auto column = static_cast<lxw_col_t>(left);
    const std::string content = mayHoldEscape(text) ? escaped(text) : text;
    note(top == bottom && left == right
             ? worksheet_write_string(to_, row, column, content.c_str(), format)
             : worksheet_merge_range(to_, row, column, static_cast<lxw_row_t>(bottom),
                                     static_cast<lxw_col_t>(right), content.c_str(), format));
  }

  void setRow(const app::SheetRow& row, bool hidden) {
    if (row.level <= 0 && !row.collapsed) return;
    lxw_row_col_options options = {};
    options.level = static_cast<std::uint8_t>(std::clamp(row.level, 0, DeepestLevel));
    options.hidden = hidden;
    options.collapsed = row.collapsed;
    note(worksheet_set_row_opt(to_, next_, LXW_DEF_ROW_HEIGHT, nullptr, &options));
  }

  void writeRow(const app::SheetRow& row, Part part) {
    static const app::SheetCell empty;
    for (lxw_col_t column = 0; column <= lastColumn(); ++column) {
      writeCell(row, column < row.cells.size() ? row.cells[column] : empty, column, part);
    }
    ++next_;
  }

  void writeCell(const app::SheetRow& row, const app::SheetCell& cell, lxw_col_t column,
                 Part part) {
    Look look;
    look.part = part;
    look.bold = cell.bold || part == Part::Totals;
    look.background = colorOf(cell.background);
    if (part == Part::Totals && !cell.background) look.background = TotalsColor;
    look.foreground = colorOf(cell.foreground);
    look.alignment = alignmentOf(cell);
    if (const auto* number = std::get_if<double>(&cell.value)) {
      if (std::fabs(*number) <= LargestNumber) {
        look.numberFormat = numberFormat(cell.places, sheet_.columns[column].thousands);
        note(worksheet_write_number(to_, next_, column, *number == 0 ? 0 : *number,
                                    book_.format(look)));
        return;
      }
    } else if (const auto* text = std::get_if<std::string>(&cell.value)) {
      look.wrap = sheet_.wrapTexts;
      const bool left = look.alignment == LXW_ALIGN_LEFT || look.alignment == LXW_ALIGN_NONE;
      if (column == sheet_.treeColumn && left) {
        look.alignment = LXW_ALIGN_LEFT;
        look.indent = std::clamp(row.level, 0, 15);
      }
      // What is typed into such a cell later stays a text, too.
      if (text->size() <= LongestAsText) look.numberFormat = "@";
      const bool escape = mayHoldEscape(*text);
      note(worksheet_write_string(
          to_, next_, column, escape ? escaped(*text).c_str() : text->c_str(), book_.format(look)));
      return;
    } else if (const auto* flag = std::get_if<bool>(&cell.value); flag != nullptr && *flag) {
      note(worksheet_write_string(to_, next_, column, "√", book_.format(look)));
      return;
    }
    note(worksheet_write_blank(to_, next_, column, book_.format(look)));
  }

  static lxw_format_alignments alignmentOf(const app::SheetCell& cell) {
    switch (cell.alignment) {
      case app::SheetAlignment::Left:
        return LXW_ALIGN_LEFT;
      case app::SheetAlignment::Center:
        return LXW_ALIGN_CENTER;
      case app::SheetAlignment::Right:
        return LXW_ALIGN_RIGHT;
      default:
        return std::holds_alternative<bool>(cell.value) ? LXW_ALIGN_CENTER : LXW_ALIGN_NONE;
    }
  }

  Workbook& book_;
  lxw_worksheet* to_;
  const app::Sheet& sheet_;
  lxw_row_t next_ = 0;
  lxw_error error_ = LXW_NO_ERROR;
};

/// Why the table does not fit a sheet, or an empty text.
QString contentProblem(const app::Sheet& sheet) {
  const QString name = QString::fromStdString(sheet.name);
  if (sheet.columns.empty()) {
    return QStringLiteral("“%1”没有显示任何列，没有内容可以导出。\n请先显示要导出的列。").arg(name);
  }
  if (sheet.columns.size() > LXW_COL_MAX) {
    return QStringLiteral("“%1”有 %2 列，一张工作表最多 %3 列。\n请先隐藏一些列，再导出。")
        .arg(name)
        .arg(sheet.columns.size())
        .arg(LXW_COL_MAX);
  }
  const std::size_t room = LXW_ROW_MAX - SheetWriter::headerRows(sheet) - (sheet.totals ? 1 : 0);
  if (sheet.rows.size() > room) {
    return QStringLiteral(
               "“%1”有 %2 行，一张工作表最多放 %3 行。\n请先用过滤缩小范围，再分次导出。")
        .arg(name)
        .arg(sheet.rows.size())
        .arg(room);
  }
  for (std::size_t row = 0; row < sheet.rows.size(); ++row) {
    const std::vector<app::SheetCell>& cells = sheet.rows[row].cells;
    for (std::size_t column = 0; column < std::min(cells.size(), sheet.columns.size()); ++column) {
      const auto* text = std::get_if<std::string>(&cells[column].value);
      if (text == nullptr || text->size() <= LongestText) continue;
      const int length = QString::fromStdString(*text).size();
      if (length <= LongestText) continue;
      return QStringLiteral(
                 "“%1”第 %2 行“%3”的文字有 %4 个字，一个单元格最多放 %5 个字。"
                 "\n请缩短文字，再导出。")
          .arg(name)
          .arg(row + 1)
          .arg(QString::fromStdString(sheet.columns[column].title))
          .arg(length)
          .arg(LongestText);
    }
  }
  return {};
}

/// Whether each member of the workbook is there to its last tag. The library does not look at what
/// becomes of its temporary files; on a full disk they end early.
bool isWhole(const QString& path) {
  const ZipArchive archive(path);
  const QStringList names = archive.names();
  if (!names.contains(QStringLiteral("[Content_Types].xml"))) return false;
  static const QRegularExpression root(QStringLiteral("^(?:<\\?[^>]*\\?>\\s*)?<([^\\s/>]+)"));
  return std::all_of(names.begin(), names.end(), [&archive](const QString& name) {
    const std::optional<QByteArray> content = archive.read(name);
    if (!content) return false;
    const QString tag = root.match(QString::fromUtf8(content->left(1000))).captured(1);
    const QByteArray end = content->right(tag.toUtf8().size() + 20).trimmed();
    return end.endsWith("</" + tag.toUtf8() + ">") ||
           (content->size() < 1000 && end.endsWith("/>"));
  });
}

QString scratchFailed(const QString& folder, const QString& why) {
  return QStringLiteral(
             "不能在临时文件夹“%1”中写完文件，磁盘可能已满（技术信息：%2）。"
             "\n请清理磁盘后重试。")
      .arg(QDir::toNativeSeparators(folder), why);
}

}  // namespace

QString writeSpreadsheet(const std::vector<app::Sheet>& sheets, const QString& path) {
  if (QFileInfo(path).suffix().compare(QLatin1String("xlsx"), Qt::CaseInsensitive) != 0) {
    return QStringLiteral("电子表格文件的扩展名必须是 .xlsx：“%1”。\n请修改文件名。")
        .arg(QFileInfo(path).fileName());
  }
  QString problem = replacementProblem(path);
  if (!problem.isEmpty()) return problem;
  QStringList names;
  for (const app::Sheet& sheet : sheets) {
    problem = contentProblem(sheet);
    if (!problem.isEmpty()) return problem;
    names << QString::fromStdString(sheet.name);
  }
  if (sheets.empty()) return QStringLiteral("没有可以导出的表格。\n请先选择要导出的内容。");
  names = sheetNames(names);

  const QTemporaryDir scratch;
  if (!scratch.isValid()) return scratchFailed(QDir::tempPath(), scratch.errorString());
  const QString finished = scratch.filePath(QStringLiteral("workbook.xlsx"));
  Workbook book(finished, scratch.path());
  lxw_error error = LXW_NO_ERROR;
  for (std::size_t i = 0; i < sheets.size() && error == LXW_NO_ERROR; ++i) {
    error = SheetWriter(book, book.addSheet(names.at(static_cast<int>(i))), sheets[i]).write();
  }
  const lxw_error closed = book.close();
  if (error == LXW_NO_ERROR) error = closed;
  if (error != LXW_NO_ERROR) {
    return scratchFailed(scratch.path(), QString::fromUtf8(lxw_strerror(error)));
  }
  if (!isWhole(finished)) {
    return scratchFailed(scratch.path(), QStringLiteral("incomplete workbook"));
  }
  QFile content(finished);
  if (!content.open(QIODevice::ReadOnly)) {
    return scratchFailed(scratch.path(), content.errorString());
  }
  return replaceFile(content, path);
}

}  // namespace exchange
