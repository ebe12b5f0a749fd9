#include <QtTest>
#include <nlohmann/json.hpp>

#include "workbench/services/json_file.h"
#include "workbench/shell/recent_files.h"

class RecentFilesTest : public QObject {
  Q_OBJECT

 private slots:
  void latestFirstAndOnce() {
    const QTemporaryDir dir;
    {
      shell::RecentFiles files(dir.path());
      for (const char* name : {"/p/甲.qcp", "/p/乙.qcp", "/p/甲.qcp"}) files.add(name);
      for (int i = 0; i < 20; ++i) files.add(QString("/n/%1.qcp").arg(i));
      files.remove("/n/19.qcp");
    }
    shell::RecentFiles files(dir.path());
    QCOMPARE(files.entries().size(), shell::RecentFiles::kMost - 1);
    QCOMPARE(files.entries()[0].path, QString("/n/18.qcp"));
    files.add("/n/10.qcp");
    QCOMPARE(files.entries().size(), shell::RecentFiles::kMost - 1);
    QCOMPARE(files.entries()[0].path, QString("/n/10.qcp"));
  }

  void readsWhatIsUsableAndKeepsTheRest() {
    const QTemporaryDir dir;
    const QString path = dir.filePath("recent_file.json");
    QVERIFY(services::writeJson(path, nlohmann::json::parse(R"({
    "Other": 7,
    "RecentFile": [{"path": "/a.qcp", "locale": "zh_TW"}, {"path": 3}, "x", {"locale": "zh_CN"}]
  })")));
    shell::RecentFiles files(dir.path());
    QCOMPARE(files.entries().size(), std::size_t(1));
    QCOMPARE(files.entries()[0].locale, QString("zh_TW"));
    files.add("/b.qcp");
    const nlohmann::json content = services::readJsonObject(path);
    QCOMPARE(content["Other"].get<int>(), 7);
    QCOMPARE(content["RecentFile"].dump(), std::string(R"([{"locale":"zh_CN","path":"/b.qcp"},)"
                                                       R"({"locale":"zh_TW","path":"/a.qcp"}])"));
  }
};

QTEST_GUILESS_MAIN(RecentFilesTest)
#include "tst_recent_files.moc"
