#include <QComboBox>
#include <QLineEdit>
#include <QUndoStack>

#include "tests/workbench/project_fixture.h"
#include "workbench/records/summary.h"
#include "workbench/services/templates.h"
#include "workbench/shell/session.h"
#include "workbench/shell/tax_settings.h"

using costing::Decimal;
using records::Taxation;

class TaxSettingsTest : public QObject {
  Q_OBJECT

 private slots:
  void eachChoiceIsOneStoredStep() {
    tests::ProjectFixture fixture;
    services::RecordingChannel channel;
    const records::FeeTemplate fees = services::loadFeeTemplate({});
    std::string dump;
    {
      const auto session = shell::Session::open(fixture.path(), fixture.failure);
      QVERIFY(session != nullptr);
      app::Services services;
      services.undo = &session->undoService();
      services.channel = services.qceChannel = &channel;
      app::InstallServices(services);
      records::Project& project = session->project().project();
      shell::TaxSettings settings(*session, fees);
      QObject::connect(session.get(), &shell::Session::changed, &settings,
                       &shell::TaxSettings::refresh);
      settings.show();
      QVERIFY(QTest::qWaitForWindowActive(&settings));
      auto* method = settings.findChild<QComboBox*>("taxMethod");
      auto* rate = settings.findChild<QLineEdit*>("taxRate");
      QCOMPARE(method->currentText(), QString("一般计税（9 %）"));
      QCOMPARE(rate->text(), QString("9"));
      const std::string before = project.dump();
      const auto grossOf = [&](records::SummaryKind kind) {
        return records::summarize(project, kind, fees).income;
      };
      const records::SummaryLine bid =
          records::summarize(project, records::SummaryKind::BidFees, fees);
      const Decimal net = bid.income - bid.lines.back().income;
      const auto follows = [&](const Decimal& percent) {
        const Decimal gross = net + (net * percent / 100).rounded(2);
        for (const auto kind : {records::SummaryKind::BidFees, records::SummaryKind::Structure,
                                records::SummaryKind::Accounts}) {
          if (grossOf(kind) != gross) return false;
        }
        return true;
      };

      method->setFocus();
      QTest::keyClick(method, Qt::Key_Down);
      QVERIFY(project.taxation() == (Taxation{"简易计税", Decimal(3)}));
      QCOMPARE(rate->text(), QString("3"));
      QVERIFY(follows(Decimal(3)));

      const auto type = [rate](const char* text) {
        rate->setFocus();
        rate->selectAll();
        QTest::keyClicks(rate, text);
        QTest::keyClick(rate, Qt::Key_Return);
      };
      type("6.5");
      QVERIFY(project.taxation() == (Taxation{"自定税率", *Decimal::parse("6.5")}));
      QCOMPARE(method->currentText(), QString("自定税率"));
      QVERIFY(follows(*Decimal::parse("6.5")));
      QCOMPARE(session->undoStack().count(), 2);
      QCOMPARE(session->undoStack().undoText(), QString("修改计税方法"));

      for (const char* refused : {"100.1", "-1", "x", "1.23456"}) {
        channel.clear();
        type(refused);
        QCOMPARE(channel.messages().size(), std::size_t(1));
        QCOMPARE(rate->text(), QString("6.5"));
      }
      QCOMPARE(session->undoStack().count(), 2);
      session->undoStack().undo();
      session->undoStack().undo();
      QCOMPARE(project.dump(), before);
      QCOMPARE(rate->text(), QString("9"));
      session->undoStack().redo();
      session->undoStack().redo();
      dump = project.dump();
      app::InstallServices({});
    }
    QCOMPARE(fixture.open()->project().dump(), dump);
    fixture.close();
    const store::CheckReport report = store::check(fixture.path());
    QVERIFY2(report.ok(), qPrintable(report.findings.join('\n')));
  }
};

QTEST_MAIN(TaxSettingsTest)
#include "tst_tax_settings.moc"
