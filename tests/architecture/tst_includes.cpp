#include <QtTest>

#include "tests/support/rows.h"

// The folders are the layers of the system: what a file includes must lie below its own folder.

namespace {

/// One folder of the plan.
struct Room {
  QStringList below;    ///< folders that it may include besides itself
  QStringList exports;  ///< generated export headers that it may include
  bool qt = true;       ///< may include Qt headers
  bool sql = false;     ///< may include SQL headers
};

const QMap<QString, Room>& rooms() {
  static const QMap<QString, Room> plan = [] {
    const QString contractExport = "contract_export.h";
    const QString widgetsExport = "host_widgets_export.h";
    const QStringList contract{"host/base", "host/proxy", "host/domain", "host/abst", "host/app"};
    const QStringList widgets = contract + QStringList{"host/gui", "host/bwidgets"};
    const QStringList pages{"project", "resitem", "pooling", "engineering", "destructors"};
    const QStringList libraryExports{contractExport, widgetsExport, "qce_export.h"};

    QMap<QString, Room> made;
    made["host/base"] = {{}, {contractExport}, false};
    made["host/proxy"] = {{"host/base"}, {contractExport}, false};
    made["host/domain"] = {{"host/base", "host/proxy"}, {contractExport}, false};
    made["host/abst"] = {{"host/base", "host/proxy", "host/domain"}, {contractExport}, false};
    made["host/app"] = {{"host/base"}, {contractExport}, false};
    // One layer in two namespaces: the grids ask a gui::ViewModel, a gui::TreeGridView is a grid.
    made["host/gui"] = {widgets, {contractExport, widgetsExport}};
    made["host/bwidgets"] = {widgets, {contractExport, widgetsExport}};
    made["framework"] = {widgets, libraryExports};
    made["host/presentation"] = {widgets + QStringList{"framework"}, libraryExports};
    const QStringList belowPages = widgets + QStringList{"framework", "host/presentation"};
    for (const QString& page : pages) made[page] = {belowPages, libraryExports};

    // The reference host stands on all of that. Among its own rooms any order will do that has no
    // circle (see below), save that arithmetic and records stay free of what is around them.
    const QStringList own{"workbench/store",    "workbench/records",   "workbench/costing",
                          "workbench/exchange", "workbench/operators", "workbench/controllers",
                          "workbench/services", "workbench/shell",     "workbench/cli"};
    for (const QString& room : own) made[room] = {belowPages + pages + own, libraryExports};
    made["workbench"] = made["workbench/cli"];
    made["workbench/costing"] = {{}, {}, false};
    made["workbench/records"] = {
        {"host/base", "host/proxy", "host/domain", "workbench/costing"}, {}, false};
    made["workbench/store"].sql = true;
    return made;
  }();
  return plan;
}

/// The room that a path from the repository root lies in; empty when it lies in none.
QString roomOf(const QString& path) {
  for (QString folder = path; folder.contains('/');) {
    folder.truncate(folder.lastIndexOf('/'));
    if (rooms().contains(folder)) return folder;
  }
  return {};
}

struct Include {
  int line;
  QString target;
  bool quoted;
};

QList<Include> includesOf(const QString& text) {
  static const QRegularExpression include(R"(^[ \t]*#[ \t]*include[ \t]*(["<])([^">]+)[">])");
  QList<Include> found;
  const QStringList lines = text.split('\n');
  for (int i = 0; i < lines.size(); ++i) {
    const auto match = include.match(lines[i]);
    if (match.hasMatch()) found << Include{i + 1, match.captured(2), match.captured(1) == "\""};
  }
  return found;
}

/// Why a file in `room` must not include `include`; empty when it may.
QString offence(const QString& room, const Include& include) {
  static const QRegularExpression sql(R"(^(QtSql\b|QSql|sqlite3|libpq|sql\.h))");
  static const QRegularExpression qt(R"(^(Q[A-Za-z]|q[a-z_0-9]+\.h$))");
  static const QRegularExpression generated(R"(^(ui_\w+\.h|\w+\.moc|moc_\w+\.cpp)$)");
  const Room rules = rooms()[room];
  const QString& target = include.target;
  const QString below = roomOf(target);
  if (!below.isEmpty()) {
    if (below == room || rules.below.contains(below)) return {};
    return below + " does not lie below " + room;
  }
  if (target.endsWith("_export.h")) {
    return rules.exports.contains(target) ? QString() : "belongs to a layer above " + room;
  }
  if (sql.match(target).hasMatch()) return rules.sql ? QString() : room + " is kept free of SQL";
  if (qt.match(target).hasMatch()) return rules.qt ? QString() : room + " is kept free of Qt";
  if (!include.quoted || generated.match(target).hasMatch()) return {};
  return "names no folder of the plan; write it from the repository root";
}

/// The offences of one file, a line each.
QStringList offences(const QString& path, const QString& text) {
  const QString room = roomOf(path);
  if (room.isEmpty()) return {path + ": lies in no folder of the plan"};
  QStringList found;
  for (const Include& include : includesOf(text)) {
    const QString reason = offence(room, include);
    if (!reason.isEmpty()) {
      found << QString("%1:%2: %3: %4").arg(path).arg(include.line).arg(include.target, reason);
    }
  }
  return found;
}

/// Which rooms include which.
using Arrows = QMap<QString, QSet<QString>>;

void addArrows(Arrows& arrows, const QString& path, const QString& text) {
  const auto layerOf = [](const QString& file) {
    const QString room = roomOf(file);
    return room == "host/gui" ? QString("host/bwidgets") : room;
  };
  const QString room = layerOf(path);
  for (const Include& include : includesOf(text)) {
    const QString below = layerOf(include.target);
    if (!below.isEmpty() && below != room) arrows[room].insert(below);
  }
}

/// The rooms that the arrows lead back to. What is left when rooms that include no room that is
/// left are taken away, again and again, then the same from above.
QStringList circle(Arrows arrows) {
  for (bool again = true; again;) {
    again = false;
    QSet<QString> targets;
    for (const auto& below : qAsConst(arrows)) targets |= below;
    for (const QString& room : arrows.keys()) {
      arrows[room] &= QSet<QString>(arrows.keyBegin(), arrows.keyEnd());
      if (arrows[room].isEmpty() || !targets.contains(room)) {
        arrows.remove(room);
        again = true;
      }
    }
  }
  return arrows.keys();
}

}  // namespace

class TestIncludes : public QObject {
  Q_OBJECT

 private slots:
  void pointsDownEverywhere() {
    const QDir root(QCE_SOURCE_DIR);
    QStringList found;
    QSet<QString> seen;
    Arrows arrows;
    int includes = 0;
    for (const auto* top : {"host", "framework", "project", "resitem", "pooling", "engineering",
                            "destructors", "workbench"}) {
      QDirIterator files(root.filePath(top), {"*.h", "*.cpp"}, QDir::Files,
                         QDirIterator::Subdirectories);
      while (files.hasNext()) {
        QFile file(files.next());
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
        const QString path = root.relativeFilePath(file.fileName());
        const QString text = QString::fromUtf8(file.readAll());
        found << offences(path, text);
        addArrows(arrows, path, text);
        includes += includesOf(text).size();
        seen << roomOf(path);
      }
    }
    // A test that read nothing would pass as well.
    for (const auto* room :
         {"host/base", "host/abst", "framework", "project", "workbench/costing"}) {
      QVERIFY2(seen.contains(room), room);
    }
    QVERIFY2(includes > 200, qPrintable(QString::number(includes)));
    QVERIFY2(found.isEmpty(), qPrintable("\n" + found.join('\n')));
    const QStringList rounds = circle(arrows);
    QVERIFY2(rounds.isEmpty(),
             qPrintable("these folders include each other: " + rounds.join(", ")));
  }

  void findsAPlantedOffence_data() {
    const tests::Rows<QString, QString, QString> row;
    const auto offends = [&row](const char* name, const QString& path, const QString& target,
                                const char* why) {
      const bool quoted = target.contains('/') && target.endsWith(".h");
      row(name, path, QString(quoted ? "\n # include \"%1\"" : "\n#include <%1>").arg(target),
          QString("%1:2: %2: %3").arg(path, target, why));
    };
    offends("up", "host/base/log.h", "host/domain/value.h",
            "host/domain does not lie below host/base");
    offends("into the workbench", "project/a.cpp", "workbench/shell/session.h",
            "workbench/shell does not lie below project");
    offends("sideways", "engineering/a.h", "pooling/dialog.h",
            "pooling does not lie below engineering");
    offends("Qt in the contract", "host/abst/qce/a.h", "QString", "host/abst is kept free of Qt");
    offends("Qt by file", "workbench/records/a.h", "qglobal.h",
            "workbench/records is kept free of Qt");
    offends("SQL in a page", "resitem/a.cpp", "QSqlQuery", "resitem is kept free of SQL");
    offends("arithmetic on the contract", "workbench/costing/a.h", "host/base/log.h",
            "host/base does not lie below workbench/costing");
    offends("export header from above", "host/gui/a.h", "qce_export.h",
            "belongs to a layer above host/gui");
    offends("relative", "resitem/a.h", "../pooling/dialog.h",
            "names no folder of the plan; write it from the repository root");
    row("up, in angle brackets", "framework/a.h", "#include <resitem/model.h>",
        "framework/a.h:1: resitem/model.h: resitem does not lie below framework");
    row("unknown folder", "helpers/a.h", "", "helpers/a.h: lies in no folder of the plan");
    row("down", "resitem/page.cpp",
        "#include <QTimer>\n#include <vector>\n#include \"resitem/page.h\"\n"
        "#include \"host/presentation/a.h\"\n#include \"qce_export.h\"",
        "");
    row("SQL in the store", "workbench/store/a.cpp", "#include <QSqlQuery>", "");
    row("not an include", "host/base/a.h", "// see #include <QString>\n#define QString", "");
  }
  void findsAPlantedOffence() {
    const auto [path, text, expected] = tests::fetch<QString, QString, QString>();
    QCOMPARE(offences(path, text).join('\n'), expected);
  }

  void findsAPlantedCircle() {
    Arrows arrows;
    addArrows(arrows, "workbench/cli/a.h", "#include \"workbench/shell/b.h\"");
    addArrows(arrows, "workbench/shell/b.h", "#include \"workbench/operators/c.h\"");
    addArrows(arrows, "workbench/operators/c.h", "#include \"workbench/store/d.h\"");
    addArrows(arrows, "workbench/store/d.h", "#include \"workbench/costing/e.h\"");
    QCOMPARE(circle(arrows), QStringList());
    addArrows(arrows, "workbench/store/d.h", "#include \"workbench/shell/b.h\"");
    QCOMPARE(circle(arrows),
             (QStringList{"workbench/operators", "workbench/shell", "workbench/store"}));
  }
};

QTEST_APPLESS_MAIN(TestIncludes)
#include "tst_includes.moc"
