#include "workbench/exchange/spreadsheet_reader.h"

#include <QDir>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include "workbench/exchange/zip_archive.h"

namespace exchange {
namespace {

constexpr int PixelsPerDigit = 7;  // widths are stored in digits of the standard font

QString attribute(const QXmlStreamReader& xml, const char* name) {
  return xml.attributes().value(QLatin1String(name)).toString();
}

bool isOn(const QXmlStreamReader& xml, const char* name) {
  const QString value = attribute(xml, name);
  return value == QLatin1String("1") || value == QLatin1String("true");
}

/// "BC12" as row 11, column 54.
QPair<int, int> place(const QString& reference) {
  int column = 0;
  int at = 0;
  for (; at < reference.size() && reference.at(at).isLetter(); ++at) {
    column = column * 26 + (reference.at(at).unicode() - 'A' + 1);
  }
  return {reference.mid(at).toInt() - 1, column - 1};
}

/// "_x000D_" stands for the character of that number.
QString unescaped(QString text) {
  static const QRegularExpression number(QStringLiteral("_x([0-9a-fA-F]{4})_"));
  for (int at = 0;;) {
    const auto match = number.match(text, at);
    if (!match.hasMatch()) return text;
    at = match.capturedStart() + 1;
    text.replace(match.capturedStart(), match.capturedLength(),
                 QString(QChar(match.captured(1).toUShort(nullptr, 16))));
  }
}

QColor colorOf(const QXmlStreamReader& xml) {
  const QString rgb = attribute(xml, "rgb");  // with opacity in front
  return rgb.isEmpty() ? QColor() : QColor(QLatin1Char('#') + rgb.right(6));
}

QString builtInFormat(int number) {
  switch (number) {
    case 0:
      return QStringLiteral("General");
    case 1:
      return QStringLiteral("0");
    case 2:
      return QStringLiteral("0.00");
    case 3:
      return QStringLiteral("#,##0");
    case 4:
      return QStringLiteral("#,##0.00");
    case 49:
      return QStringLiteral("@");
    default:
      return QStringLiteral("%1").arg(number);
  }
}

class Reader {
 public:
  explicit Reader(const QString& path) : archive_(path), path_(path) {}

  ReadWorkbook read() {
    ReadWorkbook book;
    if (!archive_.isOpen()) fail(QStringLiteral("不是电子表格文件"));
    readTexts();
    readStyles();
    const QMap<QString, QString> targets = readTargets();
    parse(QStringLiteral("xl/workbook.xml"), [&](QXmlStreamReader& xml) {
      if (xml.name() != QLatin1String("sheet")) return;
      ReadSheet sheet;
      sheet.name = attribute(xml, "name");
      book.sheets.push_back(std::move(sheet));
      parts_ << QStringLiteral("xl/") + targets.value(attribute(xml, "r:id"));
    });
    for (std::size_t i = 0; i < book.sheets.size(); ++i) {
      readSheet(parts_.at(static_cast<int>(i)), book.sheets[i]);
    }
    book.problem = problem_;
    return book;
  }

 private:
  void fail(const QString& why) {
    if (problem_.isEmpty()) {
      problem_ = QStringLiteral("不能读取“%1”：%2。").arg(QDir::toNativeSeparators(path_), why);
    }
  }

  /// Calls `start` at each start tag of a member.
  template <class Start>
  void parse(const QString& part, Start start) {
    const std::optional<QByteArray> content = archive_.read(part);
    if (!content) {
      fail(QStringLiteral("缺少或损坏的部分 %1").arg(part));
      return;
    }
    QXmlStreamReader xml(*content);
    while (!xml.atEnd()) {
      if (xml.readNext() == QXmlStreamReader::StartElement) start(xml);
    }
    if (xml.hasError()) fail(part + QStringLiteral("：") + xml.errorString());
  }

  void readTexts() {
    if (!archive_.names().contains(QStringLiteral("xl/sharedStrings.xml"))) return;
    parse(QStringLiteral("xl/sharedStrings.xml"), [this](QXmlStreamReader& xml) {
      if (xml.name() == QLatin1String("si")) texts_ << QString();
      if (xml.name() == QLatin1String("t") && !texts_.isEmpty()) {
        texts_.last() += unescaped(xml.readElementText());
      }
    });
  }

  QMap<QString, QString> readTargets() {
    QMap<QString, QString> targets;
    parse(QStringLiteral("xl/_rels/workbook.xml.rels"), [&](QXmlStreamReader& xml) {
      if (xml.name() == QLatin1String("Relationship")) {
        targets.insert(attribute(xml, "Id"), attribute(xml, "Target"));
      }
    });
    return targets;
  }

  void readStyles() {
    struct Font {
      bool bold = false;
      QColor color;
    };
    QMap<int, QString> numberFormats;
    std::vector<Font> fonts;
    std::vector<QColor> fills;
    QString section;
    parse(QStringLiteral("xl/styles.xml"), [&](QXmlStreamReader& xml) {
      const QString tag = xml.name().toString();
      static const QStringList sections{"numFmts", "fonts",        "fills",      "borders",
                                        "cellXfs", "cellStyleXfs", "cellStyles", "dxfs"};
      if (sections.contains(tag)) section = tag;
      if (tag == QLatin1String("numFmt")) {
        numberFormats[attribute(xml, "numFmtId").toInt()] = attribute(xml, "formatCode");
      } else if (section == QLatin1String("fonts") && tag == QLatin1String("font")) {
        fonts.emplace_back();
      } else if (section == QLatin1String("fonts") && tag == QLatin1String("b")) {
        fonts.back().bold = true;
      } else if (section == QLatin1String("fonts") && tag == QLatin1String("color")) {
        fonts.back().color = colorOf(xml);
      } else if (tag == QLatin1String("fill")) {
        fills.emplace_back();
      } else if (section == QLatin1String("fills") && tag == QLatin1String("fgColor")) {
        fills.back() = colorOf(xml);
      } else if (section == QLatin1String("cellXfs") && tag == QLatin1String("xf")) {
        ReadCell style;
        const int number = attribute(xml, "numFmtId").toInt();
        style.numberFormat = numberFormats.value(number, builtInFormat(number));
        const auto font = attribute(xml, "fontId").toUInt();
        if (font < fonts.size()) {
          style.bold = fonts[font].bold;
          style.foreground = fonts[font].color;
        }
        const auto fill = attribute(xml, "fillId").toUInt();
        if (fill < fills.size()) style.background = fills[fill];
        styles_.push_back(style);
      } else if (section == QLatin1String("cellXfs") && tag == QLatin1String("alignment")) {
        styles_.back().alignment = attribute(xml, "horizontal");
        styles_.back().indent = attribute(xml, "indent").toInt();
        styles_.back().wrap = isOn(xml, "wrapText");
      }
    });
  }

  void readSheet(const QString& part, ReadSheet& sheet) {
    parse(part, [&](QXmlStreamReader& xml) {
      const QStringRef tag = xml.name();
      if (tag == QLatin1String("outlinePr")) {
        sheet.summaryAbove = attribute(xml, "summaryBelow") == QLatin1String("0");
      } else if (tag == QLatin1String("pane")) {
        if (attribute(xml, "state") != QLatin1String("frozen")) return;
        sheet.frozenRows = attribute(xml, "ySplit").toInt();
        sheet.frozenColumns = attribute(xml, "xSplit").toInt();
      } else if (tag == QLatin1String("col")) {
        const int width = qRound(attribute(xml, "width").toDouble() * PixelsPerDigit);
        const int last = attribute(xml, "max").toInt() - 1;
        for (int c = attribute(xml, "min").toInt() - 1; c <= last; ++c) sheet.widths[c] = width;
      } else if (tag == QLatin1String("row")) {
        ReadRow& row = sheet.rows[attribute(xml, "r").toInt() - 1];
        row.level = attribute(xml, "outlineLevel").toInt();
        row.hidden = isOn(xml, "hidden");
        row.collapsed = isOn(xml, "collapsed");
      } else if (tag == QLatin1String("mergeCell")) {
        sheet.merges << attribute(xml, "ref");
      } else if (tag == QLatin1String("c")) {
        const QPair<int, int> at = place(attribute(xml, "r"));
        sheet.cells.insert(at, readCell(xml));
      }
    });
  }

  ReadCell readCell(QXmlStreamReader& xml) {
    const auto style = attribute(xml, "s").toUInt();
    ReadCell cell = style < styles_.size() ? styles_[style] : ReadCell();
    const QString type = attribute(xml, "t");
    while (xml.readNextStartElement()) {
      const QString tag = xml.name().toString();
      if (tag == QLatin1String("f")) {
        cell.kind = ReadCell::Formula;
        cell.text = xml.readElementText();
      } else if (tag == QLatin1String("v") && cell.kind != ReadCell::Formula) {
        fill(cell, type, xml.readElementText());
      } else if (tag == QLatin1String("is")) {
        cell.kind = ReadCell::Text;
        cell.text = unescaped(xml.readElementText(QXmlStreamReader::IncludeChildElements));
      } else {
        xml.skipCurrentElement();
      }
    }
    return cell;
  }

  void fill(ReadCell& cell, const QString& type, const QString& value) {
    if (type == QLatin1String("s")) {
      cell.kind = ReadCell::Text;
      cell.text = texts_.value(value.toInt());
    } else if (type == QLatin1String("str")) {
      cell.kind = ReadCell::Text;
      cell.text = unescaped(value);
    } else {
      bool valid = false;
      cell.kind = type == QLatin1String("b") ? ReadCell::Flag : ReadCell::Number;
      cell.number = value.toDouble(&valid);
      if (!valid) fail(QStringLiteral("“%1”不是数").arg(value));
    }
  }

  ZipArchive archive_;
  QString path_;
  QString problem_;
  QStringList texts_;
  QStringList parts_;
  std::vector<ReadCell> styles_;
};

}  // namespace

ReadWorkbook readSpreadsheet(const QString& path) {
  return Reader(path).read();
}

}  // namespace exchange
