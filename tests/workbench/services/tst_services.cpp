#include <QAbstractButton>
#include <QMessageBox>

#include "tests/support/files.h"
#include "tests/support/rows.h"
#include "workbench/services/channels.h"
#include "workbench/services/configuration.h"
#include "workbench/services/path_manager.h"

class ServicesTest : public QObject {
  Q_OBJECT

 private slots:
  void settingsOutliveTheProgram() {
    const QTemporaryDir dir;
    const QString path = dir.filePath("a/b/settings.json");
    {
      services::Configuration configuration(path);
      QVERIFY(!configuration.getValue("缩放"));
      configuration.setValue("缩放", "1.25");
      configuration.setValue("bytes", std::string("\xff\x00", 2));  // no valid text: must not throw
      configuration.setValue("缩放", "1.5");
    }
    const services::Configuration again(path);
    QCOMPARE(again.getValue("缩放").value_or(""), std::string("1.5"));
    QVERIFY(again.setAside().isEmpty());
  }

  void damagedSettingsAreSetAside_data() {
    const tests::Rows<QByteArray> row{"content"};
    row("cut short", "{\"a\": \"b");
    row("no object", "[1, 2]");
    row("empty", {});
    row("binary", QByteArray("\x00\xff\xfe", 3));
  }
  void damagedSettingsAreSetAside() {
    QFETCH(QByteArray, content);
    const QTemporaryDir dir;
    const QString path = dir.filePath("settings.json");
    tests::writeFile(path, content);
    services::Configuration configuration(path);
    QCOMPARE(tests::contentOf(configuration.setAside()), content);
    configuration.setValue("a", "b");
    QCOMPARE(services::Configuration(path).getValue("a").value_or(""), std::string("b"));
  }

  void recordingChannelAnswersInOrder() {
    services::RecordingChannel channel;
    channel.answerNext(QMessageBox::No);
    channel.answerNext(QMessageBox::Retry);
    QCOMPARE(channel.message("一", QMessageBox::Yes | QMessageBox::No), int(QMessageBox::No));
    // an answer that the box does not offer must not get through
    QCOMPARE(channel.message("二", QMessageBox::Ok | QMessageBox::Cancel), int(QMessageBox::Ok));
    QCOMPARE(channel.message("三", 0), int(QMessageBox::Ok));
    QCOMPARE(channel.messages().size(), std::size_t(3));
    QCOMPARE(channel.messages()[1].text, std::string("二"));
  }

  void messageBoxSpeaksChinese() {
    QWidget window;
    window.show();
    services::MessageBoxChannel channel("成本测算");
    channel.setWindow(&window);
    QStringList seen;
    QWidget* parent = nullptr;
    QTimer::singleShot(0, this, [&] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      parent = box->parentWidget();
      seen << box->windowTitle() << box->text();
      for (QAbstractButton* button : box->buttons()) seen << button->text();
      box->button(QMessageBox::No)->click();
    });
    QCOMPARE(channel.message("删除 <b>“钢筋”</b>？", QMessageBox::Yes | QMessageBox::No),
             int(QMessageBox::No));
    QCOMPARE(parent, &window);
    seen.sort();
    QStringList expected{"成本测算", "删除 <b>“钢筋”</b>？", "是", "否"};
    expected.sort();
    QCOMPARE(seen, expected);
  }

  void templatesAreInstalledOnce() {
    const QTemporaryDir dir;
    const services::PathManager paths(dir.path());
    QVERIFY(paths.installReportTemplates());
    const QDir templates(paths.reportTemplates());
    QCOMPARE(QString::fromStdString(paths.getTemplatePath()) + "/汇报表/汇报表模板",
             templates.path());
    const QStringList names = templates.entryList({"*.hbbmb"}, QDir::Files | QDir::Writable);
    QCOMPARE(names.size(), 5);

    QVERIFY(QFile::remove(templates.filePath(names[0])));
    tests::writeFile(templates.filePath(names[1]), "mine");
    QVERIFY(paths.installReportTemplates());
    QVERIFY(!QFile::exists(templates.filePath(names[0])));
    QCOMPARE(tests::contentOf(templates.filePath(names[1])), QByteArray("mine"));
  }
};

QTEST_MAIN(ServicesTest)
#include "tst_services.moc"
