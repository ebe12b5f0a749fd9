#include <QLabel>
#include <QListWidget>
#include <QtTest>

#include "host/abst/base_view.h"
#include "workbench/shell/page_stack.h"

namespace {

class RecordingView : public QLabel, public abst::BaseView {
 public:
  RecordingView(const QString& name, QStringList& calls) : QLabel(name), calls_(calls) {}
  ~RecordingView() override { calls_ << "~" + text(); }
  void setModel(abst::BaseModel*) override {}
  void activate() override { calls_ << "+" + text(); }
  void deactivate() override { calls_ << "-" + text(); }
  void updateView() override {}

 private:
  QStringList& calls_;
};

}  // namespace

class PageStackTest : public QObject {
  Q_OBJECT

 private slots:
  void deactivatesTheOldPageBeforeTheNewOneIsActivated() {
    QStringList calls;
    shell::PageStack pages;
    for (const char* name : {"a", "b", "c"}) {
      auto* view = new RecordingView(name, calls);
      pages.addPage(name, name, {}, view, view);
    }
    QCOMPARE(calls, QStringList());  // adding must not activate
    pages.resize(600, 400);
    pages.show();

    QVERIFY(pages.setCurrentPage("b"));
    auto* list = pages.findChild<QListWidget*>("pageList");
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualItemRect(list->item(2)).center());
    QCOMPARE(pages.currentPage(), QString("c"));
    QVERIFY(pages.currentWidget()->isVisible());
    QTest::keyClick(list, Qt::Key_Home);
    QVERIFY(pages.setCurrentPage("a"));  // already there
    QVERIFY(!pages.setCurrentPage("x"));
    QCOMPARE(calls.join(' '), QString("+b -b +c -c +a"));
  }

  void clearDeactivatesBeforeItDestroys() {
    QStringList calls;
    {
      shell::PageStack pages;
      auto* view = new RecordingView("a", calls);
      pages.addPage("a", "a", {}, view, view);
      pages.setCurrentPage("a");
      pages.clear();
      QCOMPARE(calls.join(' '), QString("+a -a ~a"));
      QCOMPARE(pages.currentPage(), QString());

      auto* next = new RecordingView("b", calls);
      pages.addPage("b", "b", {}, next, next);
      pages.setCurrentPage("b");
    }
    QCOMPARE(calls.join(' '), QString("+a -a ~a +b -b ~b"));
  }
};

QTEST_MAIN(PageStackTest)
#include "tst_page_stack.moc"
