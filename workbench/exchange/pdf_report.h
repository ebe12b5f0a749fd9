#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QRectF>
#include <QString>
#include <functional>
#include <vector>

#include "host/app/spreadsheet.h"

class QPainter;

namespace exchange {

/// One part of a printed report: a table, and a picture behind it. Parts begin on a page of their
/// own.
struct ReportPart {
  app::Sheet table;  ///< header of one level; its name is the part's title
  /// Draws into `place`, which is in dots of the printer; empty: no picture.
  std::function<void(QPainter& painter, const QRectF& place)> picture;
  double pictureShape = 0.6;  ///< height of the picture ÷ its width
};

struct ReportHead {
  QString project;  ///< on every page
  /// Caption and text, at the head of each part: the first one in a line of its own, the others two
  /// in a line.
  QList<QPair<QString, QString>> facts;
  QString note;  ///< beside the page number, on every page
};

struct PrintedReport {
  QByteArray pdf;
  int pages = 0;
};

/// Prints the parts on A4: upright where the columns can be read that way, else across. The head
/// of a table stands on each of its pages, rows are indented by their level and cut into pages by
/// pageBreaks, folded ones are printed too; texts that are too long go on in a line below.
PrintedReport printReport(const ReportHead& head, const std::vector<ReportPart>& parts);

}  // namespace exchange
