#include "workbench/exchange/pdf_report.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

#include "host/base/number_text.h"
#include "workbench/exchange/page_layout.h"

namespace exchange {
namespace {

constexpr int Resolution = 600;              // dots per inch
constexpr double Point = Resolution / 72.0;  // in dots
constexpr double Margin = 36 * Point;
constexpr double FootRoom = 22 * Point;
constexpr double RunningHead = 20 * Point;  // on pages that do not begin a part
constexpr double Padding = 3 * Point;       // beside the text of a cell
constexpr double Air = 2.2 * Point;         // above and below it
constexpr double Indent = 9 * Point;        // of a level
constexpr double TitleRoom = 30 * Point;
constexpr double FactRoom = 14 * Point;
constexpr double PictureGap = 16 * Point;
constexpr double LeastPicture = 150 * Point;  // a smaller one goes onto the next page
constexpr int LeastTreeCharacters = 12;
constexpr int LeastCharacters = 5;
constexpr double LeastNumber = 4.5;
constexpr int MostCharacters = 30;  // that a text asks for on one line

const QColor HeaderFill(0xe6, 0xeb, 0xf2);
const QColor TotalsFill(0xf3, 0xf5, 0xf8);
const QColor Line(0xb4, 0xbc, 0xc6);
const QColor Ink(0x12, 0x1a, 0x22);
const QColor Faint(0x6b, 0x77, 0x85);

QFont fontOf(double points, bool bold = false) {
  QFont font = QGuiApplication::font();
  font.setPointSizeF(points);
  font.setBold(bold);
  return font;
}

QColor colorOf(const std::optional<base::Color>& color) {
  return color ? QColor(color->r, color->g, color->b) : QColor();
}

bool isNumber(const app::SheetCell& cell) {
  return std::holds_alternative<double>(cell.value);
}

QString textOf(const app::SheetCell& cell, const app::SheetColumn& column) {
  if (const auto* number = std::get_if<double>(&cell.value)) {
    return QString::fromStdString(column.thousands ? base::ToThousandthsString(*number, cell.places)
                                                   : base::ToPlainString(*number, cell.places));
  }
  if (const auto* flag = std::get_if<bool>(&cell.value)) {
    return *flag ? QStringLiteral("√") : QString();
  }
  const auto* text = std::get_if<std::string>(&cell.value);
  return text != nullptr ? QString::fromStdString(*text) : QString();
}

/// The lines that a text takes in a column of this width; at least one.
QStringList wrapped(const QString& text, const QFont& font, const QFontMetricsF& metrics,
                    QPaintDevice* device, double width) {
  QStringList lines;
  for (const QString& paragraph : text.split(QLatin1Char('\n'))) {
    if (metrics.horizontalAdvance(paragraph) <= width) {
      lines << paragraph;
      continue;
    }
    QTextLayout layout(paragraph, font, device);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
      line.setLineWidth(std::max(width, metrics.averageCharWidth()));
      lines << paragraph.mid(line.textStart(), line.textLength()).trimmed();
    }
    layout.endLayout();
  }
  return lines;
}

struct LaidRow {
  const app::SheetRow* row = nullptr;
  bool total = false;
  std::vector<QStringList> cells;  ///< by column
};

/// A part with everything that painting it needs.
struct LaidPart {
  const ReportPart* part = nullptr;
  bool across = false;
  std::vector<double> widths;
  std::vector<QStringList> header;
  double headerHeight = 0;
  std::vector<LaidRow> rows;
  std::vector<PrintedRow> heights;
  std::vector<int> starts;
  double pictureHeight = 0;  ///< 0: none
  bool pictureApart = false;

  int pages() const { return static_cast<int>(starts.size()) + (pictureApart ? 1 : 0); }
};

class Printer {
 public:
  Printer(const ReportHead& head, const std::vector<ReportPart>& parts)
      : head_(head), parts_(parts), buffer_(&made_.pdf), writer_(&buffer_) {
    buffer_.open(QIODevice::WriteOnly);
    writer_.setResolution(Resolution);
    writer_.setTitle(head.project);
    writer_.setCreator(QGuiApplication::applicationName());
  }

  PrintedReport print() {
    std::vector<LaidPart> laid;
    laid.reserve(parts_.size());
    for (const ReportPart& part : parts_) {
      laid.push_back(layOut(part));
      made_.pages += laid.back().pages();
    }
    for (const LaidPart& part : laid) paint(part);
    painter_.end();
    buffer_.close();
    return std::move(made_);
  }

 private:
  static QSizeF paper(bool across) {
    const QSizeF upright = QPageSize(QPageSize::A4).size(QPageSize::Point) * Point;
    return across ? upright.transposed() : upright;
  }
  static double roomAcross(bool across) { return paper(across).width() - 2 * Margin; }

  // --- laying out

  QFontMetricsF metricsOf(const QFont& font) { return QFontMetricsF(font, &writer_); }

  LaidPart layOut(const ReportPart& part) {
    LaidPart laid;
    laid.part = &part;
    const app::Sheet& sheet = part.table;
    const std::vector<ColumnNeed> needs = needsOf(sheet);
    double least = 0;
    for (const ColumnNeed& need : needs) least += need.least;
    laid.across = least > roomAcross(false);
    laid.widths = columnWidths(needs, roomAcross(laid.across), std::max(0, sheet.treeColumn));

    const QFontMetricsF metrics = metricsOf(body_);
    const QFontMetricsF boldMetrics = metricsOf(bold_);
    int headerLines = 1;
    for (std::size_t column = 0; column < sheet.columns.size(); ++column) {
      QString title = QString::fromStdString(sheet.columns[column].title);
      const double width = laid.widths[column] - 2 * Padding;
      if (boldMetrics.horizontalAdvance(title) > width) {
        title.replace(QStringLiteral("（"), QStringLiteral("\n（"));
      }
      laid.header.push_back(wrapped(title, bold_, boldMetrics, &writer_, width));
      headerLines = std::max(headerLines, laid.header.back().size());
    }
    laid.headerHeight = headerLines * boldMetrics.height() + 3 * Air;

    const auto add = [&](const app::SheetRow& row, bool total) {
      LaidRow made;
      made.row = &row;
      made.total = total;
      int lines = 1;
      const std::size_t count = std::min(row.cells.size(), sheet.columns.size());
      for (std::size_t column = 0; column < count; ++column) {
        const app::SheetCell& cell = row.cells[column];
        const bool strong = cell.bold || total;
        const double width =
            laid.widths[column] - 2 * Padding - indentOf(sheet, row, static_cast<int>(column));
        made.cells.push_back(wrapped(textOf(cell, sheet.columns[column]), strong ? bold_ : body_,
                                     strong ? boldMetrics : metrics, &writer_, width));
        lines = std::max(lines, made.cells.back().size());
      }
      laid.rows.push_back(std::move(made));
      laid.heights.push_back({lines * metrics.height() + 2 * Air, row.level});
    };
    for (const app::SheetRow& row : sheet.rows) add(row, false);
    if (sheet.totals) add(*sheet.totals, true);

    const double page = paper(laid.across).height() - 2 * Margin - FootRoom - laid.headerHeight;
    laid.starts = pageBreaks(laid.heights, page - headRoom(), page - RunningHead);
    if (part.picture) placePicture(laid, page);
    return laid;
  }

  void placePicture(LaidPart& laid, double page) const {
    const auto leftOn = [&](int first, double head) {
      double left = page - head - PictureGap;
      for (auto row = static_cast<std::size_t>(first); row < laid.heights.size(); ++row) {
        left -= laid.heights[row].height;
      }
      return left;
    };
    double left = leftOn(laid.starts.back(), laid.starts.size() == 1 ? headRoom() : RunningHead);
    const double wanted = roomAcross(laid.across) * laid.part->pictureShape;
    if (left < std::min(wanted, LeastPicture)) {
      // Better below the last rows than alone.
      const double room = page - RunningHead - PictureGap - wanted;
      const int next = carryOver(laid.heights, laid.starts.back(), room);
      laid.pictureApart = next < 0;
      if (next >= 0) laid.starts.push_back(next);
      left = next < 0 ? page + laid.headerHeight - RunningHead - PictureGap
                      : leftOn(next, RunningHead);
    }
    laid.pictureHeight = std::min(wanted, left);
  }

  /// Of the title and the facts.
  double headRoom() const {
    const int lines = 1 + head_.facts.size() / 2;
    return TitleRoom + lines * FactRoom + FactRoom / 2;
  }

  static double indentOf(const app::Sheet& sheet, const app::SheetRow& row, int column) {
    return column == sheet.treeColumn ? row.level * Indent : 0;
  }

  std::vector<ColumnNeed> needsOf(const app::Sheet& sheet) {
    const QFontMetricsF metrics = metricsOf(body_);
    const QFontMetricsF boldMetrics = metricsOf(bold_);
    const double em = metrics.horizontalAdvance(QStringLiteral("费"));
    std::vector<ColumnNeed> needs;
    for (std::size_t column = 0; column < sheet.columns.size(); ++column) {
      double number = 0;
      double text = 0;
      const auto measure = [&](const app::SheetRow& row, bool total) {
        if (column >= row.cells.size()) return;
        const app::SheetCell& cell = row.cells[column];
        const double width = (cell.bold || total ? boldMetrics : metrics)
                                 .horizontalAdvance(textOf(cell, sheet.columns[column])) +
                             indentOf(sheet, row, static_cast<int>(column));
        double& widest = isNumber(cell) ? number : text;
        widest = std::max(widest, width);
      };
      for (const app::SheetRow& row : sheet.rows) measure(row, false);
      if (sheet.totals) measure(*sheet.totals, true);
      const bool tree = static_cast<int>(column) == sheet.treeColumn;
      const double title =
          boldMetrics.horizontalAdvance(QString::fromStdString(sheet.columns[column].title));
      const double halfTitle = title / 2 + em;  // it may take two lines
      ColumnNeed need;
      if (text == 0) {
        need.least = need.natural = std::max({number, halfTitle, LeastNumber * em});
      } else {
        const double readable = (tree ? LeastTreeCharacters : LeastCharacters) * em;
        need.natural = std::max(number, std::min(std::max(text, title), MostCharacters * em));
        need.least = std::max(number, std::min(need.natural, std::max(halfTitle, readable)));
      }
      need.natural += 2 * Padding + Point;
      need.least += 2 * Padding + Point;
      needs.push_back(need);
    }
    return needs;
  }

  // --- painting

  void paint(const LaidPart& laid) {
    for (std::size_t page = 0; page < laid.starts.size(); ++page) {
      double y = beginPage(laid, page == 0);
      y = paintHeader(laid, y);
      const bool last = page + 1 == laid.starts.size();
      const auto end = last ? laid.rows.size() : static_cast<std::size_t>(laid.starts[page + 1]);
      for (auto row = static_cast<std::size_t>(laid.starts[page]); row < end; ++row) {
        paintRow(laid, row, y);
        y += laid.heights[row].height;
      }
      if (last && !laid.pictureApart) paintPicture(laid, y + PictureGap);
    }
    if (laid.pictureApart) paintPicture(laid, beginPage(laid, false) + PictureGap);
  }

  /// Answers where the table begins.
  double beginPage(const LaidPart& laid, bool first) {
    QPageLayout layout(QPageSize(QPageSize::A4),
                       laid.across ? QPageLayout::Landscape : QPageLayout::Portrait, QMarginsF());
    writer_.setPageLayout(layout);
    if (painter_.isActive()) {
      writer_.newPage();
    } else {
      painter_.begin(&writer_);
    }
    ++page_;
    const QSizeF size = paper(laid.across);
    const QRectF foot(Margin, size.height() - Margin - FootRoom / 2, size.width() - 2 * Margin,
                      FootRoom / 2);
    painter_.setFont(small_);
    painter_.setPen(Faint);
    const QString number = QStringLiteral("第 %1 页，共 %2 页").arg(page_).arg(made_.pages);
    painter_.drawText(foot, Qt::AlignCenter, number);
    painter_.drawText(foot, Qt::AlignRight | Qt::AlignVCenter, head_.note);
    const double third = foot.width() / 3;
    drawElided(QRectF(foot.topLeft(), QSizeF(third, foot.height())), head_.project, small_);

    const QString title = QString::fromStdString(laid.part->table.name);
    if (first) return paintHead(title, size.width());
    const QRectF running(Margin, Margin, size.width() - 2 * Margin, RunningHead * 0.7);
    drawElided(running, QStringLiteral("%1（续）　%2").arg(title, head_.project), small_);
    return Margin + RunningHead;
  }

  double paintHead(const QString& title, double width) {
    painter_.setPen(Ink);
    painter_.setFont(title_);
    painter_.drawText(QRectF(Margin, Margin, width - 2 * Margin, TitleRoom), Qt::AlignCenter,
                      title);
    const double half = (width - 2 * Margin) / 2;
    for (int i = 0; i < head_.facts.size(); ++i) {
      const bool right = i > 0 && i % 2 == 0;
      const int line = (i + 1) / 2;
      const QRectF place(Margin + (right ? half : 0), Margin + TitleRoom + line * FactRoom,
                         (i == 0 ? 2 * half : half) - Padding, FactRoom);
      drawElided(place, head_.facts[i].first + QStringLiteral("：") + head_.facts[i].second, body_);
    }
    return Margin + headRoom();
  }

  void drawElided(const QRectF& place, const QString& text, const QFont& font) {
    painter_.setFont(font);
    painter_.drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                      metricsOf(font).elidedText(text, Qt::ElideRight, place.width()));
  }

  void paintCell(const QRectF& cell, const QStringList& lines, const QFont& font,
                 const QColor& fill, const QColor& ink, Qt::Alignment alignment, double indent) {
    painter_.setPen(QPen(Line, 0.5 * Point));
    painter_.setBrush(fill.isValid() ? QBrush(fill) : QBrush(Qt::NoBrush));
    painter_.drawRect(cell);
    if (lines.size() == 1 && lines.front().isEmpty()) return;
    painter_.setFont(font);
    painter_.setPen(ink);
    const double height = metricsOf(font).height();
    QRectF at = cell.adjusted(Padding + indent, 0, -Padding, 0);
    at.setTop(cell.center().y() - lines.size() * height / 2);
    at.setHeight(height);
    for (const QString& line : lines) {
      painter_.drawText(at, int(alignment) | Qt::TextDontClip, line);
      at.translate(0, height);
    }
  }

  double paintHeader(const LaidPart& laid, double y) {
    double x = Margin;
    for (std::size_t column = 0; column < laid.widths.size(); ++column) {
      paintCell({x, y, laid.widths[column], laid.headerHeight}, laid.header[column], bold_,
                HeaderFill, Ink, Qt::AlignCenter, 0);
      x += laid.widths[column];
    }
    return y + laid.headerHeight;
  }

  void paintRow(const LaidPart& laid, std::size_t number, double y) {
    static const app::SheetCell empty;
    const LaidRow& laidRow = laid.rows[number];
    const app::SheetRow& row = *laidRow.row;
    double x = Margin;
    for (std::size_t column = 0; column < laid.widths.size(); ++column) {
      const bool there = column < laidRow.cells.size();
      const app::SheetCell& cell = there ? row.cells[column] : empty;
      QColor fill = colorOf(cell.background);
      if (laidRow.total && !fill.isValid()) fill = TotalsFill;
      const QColor ink = cell.foreground ? colorOf(cell.foreground) : Ink;
      paintCell({x, y, laid.widths[column], laid.heights[number].height},
                there ? laidRow.cells[column] : QStringList{QString()},
                cell.bold || laidRow.total ? bold_ : body_, fill, ink, alignmentOf(cell),
                indentOf(laid.part->table, row, static_cast<int>(column)));
      x += laid.widths[column];
    }
  }

  static Qt::Alignment alignmentOf(const app::SheetCell& cell) {
    switch (cell.alignment) {
      case app::SheetAlignment::Left:
        return Qt::AlignLeft | Qt::AlignVCenter;
      case app::SheetAlignment::Center:
        return Qt::AlignCenter;
      case app::SheetAlignment::Right:
        return Qt::AlignRight | Qt::AlignVCenter;
      default:
        break;
    }
    if (std::holds_alternative<bool>(cell.value)) return Qt::AlignCenter;
    return (isNumber(cell) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
  }

  void paintPicture(const LaidPart& laid, double y) {
    if (laid.pictureHeight <= 0) return;
    const QRectF place(Margin, y, roomAcross(laid.across), laid.pictureHeight);
    painter_.save();
    laid.part->picture(painter_, place);
    painter_.restore();
  }

  const ReportHead& head_;
  const std::vector<ReportPart>& parts_;
  PrintedReport made_;
  QBuffer buffer_;
  QPdfWriter writer_;
  QPainter painter_;
  int page_ = 0;
  const QFont body_ = fontOf(8.5);
  const QFont bold_ = fontOf(8.5, true);
  const QFont small_ = fontOf(7.5);
  const QFont title_ = fontOf(16, true);
};

}  // namespace

PrintedReport printReport(const ReportHead& head, const std::vector<ReportPart>& parts) {
  return Printer(head, parts).print();
}

}  // namespace exchange
