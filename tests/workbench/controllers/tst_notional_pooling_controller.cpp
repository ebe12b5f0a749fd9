#include "workbench/controllers/notional_pooling_controller.h"

#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QUndoStack>
#include <functional>

#include "host/app/scoped_undo.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "tests/support/test_main.h"
#include "tests/workbench/project_fixture.h"
#include "workbench/cli/driver.h"

using records::BudgetItem;
using records::Category;

/// The dialog over a real project, opened as the resource-item page opens it.
class NotionalPoolingControllerTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    fixture_ = std::make_unique<tests::ProjectFixture>();
    QVERIFY2(fixture_->made, qPrintable(fixture_->failure.message));
    load();
  }
  void cleanup() { fixture_.reset(); }

  void offersTheAssociatedBillsWhileTheyHaveSomething() {
    QVERIFY(open([&] { QCOMPARE(listed(), int(bills_.size())); }));
    change([&] {
      project().associate(*item_, *bills_[2], false);
      project().associate(*item_, *bills_[0], false);
    });
    QVERIFY(open([&] {
      QCOMPARE(listed(), 2);  // in the order of the project
      QVERIFY(find<QListWidget>("bills")->item(0)->text().startsWith(
          QString::fromStdString(bills_[0]->code.str())));
    }));
    change([&] { poolAll({bills_[0]}); });
    QVERIFY(open([&] { QCOMPARE(listed(), 1); }));
    change([&] { poolAll({bills_[2]}); });
    QVERIFY(open([&] { QCOMPARE(listed(), int(bills_.size()) - 2); }));
    change([&] { poolAll(bills_); });
    QVERIFY(!open([] {}));
    QVERIFY(fixture_->message().contains("没有可归集的清单"));
  }

  void poolsOneBillWithoutTheList() {
    std::vector<proxy::Element*> changed;
    opened().resItemController().setElementChanged(
        [&](proxy::Element* element) { changed.push_back(element); });
    QVERIFY(open(
        [&] {
          QVERIFY(!find<QListWidget>("bills")->isVisible());
          QVERIFY(find<QLabel>("currentBill")
                      ->text()
                      .contains(QString::fromStdString(bills_[1]->name.str())));
          check(0);
          press("确定");
        },
        {bills_[1]}));
    for (int row = 0; row < bills_[1]->childCount(); ++row) {
      const auto& line = static_cast<const BudgetItem&>(*bills_[1]->child(row));
      QCOMPARE(project().pooled(line, *item_), project().quantity(line));
    }
    QCOMPARE(opened().undo().stack()->count(), 1);
    QVERIFY(std::count(changed.begin(), changed.end(), item_) == 1);  // the page hears of it, once
    QVERIFY(item_->associated());
    opened().resItemController().setElementChanged({});
  }

  // Nothing that the dialog kept may outlive what it was opened on.
  void opensAgainAfterUndoAndAnotherProject() {
    const auto poolFirst = [&] {
      check(0);
      press("确定");
    };
    const std::string before = project().dump();
    QVERIFY(open(poolFirst));
    QVERIFY(project().dump() != before);
    opened().undo().stack()->undo();
    QVERIFY(project().dump() == before);
    QVERIFY(open([&] { check(0); }));  // closed: nothing is pooled
    QVERIFY(project().dump() == before);
    QCOMPARE(opened().undo().stack()->count(), 1);
    QVERIFY(open([&] {
      check(0);
      // Meanwhile it opens no second time.
      opened().poolingController().openPooling(item_);
      QCOMPARE(listed(), int(bills_.size()));
      press("取消");
    }));
    QVERIFY(project().dump() == before);
    load();
    QVERIFY(open(poolFirst));
    QVERIFY(project().dump() != before);
  }

  void asksTheResourceItemPageFirst() {
    auto& page = opened().resItemController();
    QVERIFY(page.canCollectToCost(item_));
    QVERIFY(!page.canCollectToCost(item_->group()));
    QVERIFY(!page.canCollectToCost(nullptr));
    opened().poolingController().openPooling(item_->group());
    opened().poolingController().openPooling(nullptr);
    QVERIFY(fixture_->channel.messages().empty());
  }

 private:
  controllers::OpenProject& opened() { return *fixture_->opened(); }
  records::Project& project() { return opened().project(); }

  void load() {
    QVERIFY(fixture_->open() != nullptr);
    bills_ = fixture_->bills();
    QVERIFY(bills_.size() > 3);
    item_ = &fixture_->item(0, Category::Labour, 0);
  }
  template <class Change>
  void change(Change what) {
    const app::ScopedUndo undo("");
    what();
  }
  void poolAll(const std::vector<records::Bill*>& bills) {
    for (records::Bill* bill : bills) {
      for (int row = 0; row < bill->childCount(); ++row) {
        auto& line = static_cast<BudgetItem&>(*bill->child(row));
        project().pool(line, *item_, project().remaining(line));
      }
    }
  }

  // Opens the dialog, does `inside` there and closes it; false when none came up.
  bool open(const std::function<void()>& inside, const std::vector<proxy::Element*>& bills = {}) {
    const auto show = [&] {
      if (bills.empty()) return opened().resItemController().collectToCost(item_);
      opened().poolingController().openPooling(item_, bills, false);
    };
    return driver_.withPopup(show, [&](QWidget* dialog) {
      inside();
      if (current() != nullptr) dialog->close();
    });
  }
  static QWidget* current() { return QApplication::activeModalWidget(); }
  template <class Widget>
  static Widget* find(const QString& name) {
    return current()->findChild<Widget*>("NotionalPooling_" + name);
  }
  static int listed() { return find<QListWidget>("bills")->count(); }
  // Clicks the check box of a top-level row.
  void check(int row) {
    auto* grid = find<gui::TreeGridView>("tree");
    driver_.clickCell(grid, grid->model()->index(row, 0));
  }
  void press(const QString& text) {
    for (auto* button : current()->findChildren<QPushButton*>()) {
      if (button->text() == text) return driver_.click(button);
    }
    QFAIL("no such button");
  }

  std::unique_ptr<tests::ProjectFixture> fixture_;
  std::vector<records::Bill*> bills_;
  records::ResourceItem* item_ = nullptr;
  cli::Driver driver_;
};

QCE_WIDGET_TEST_MAIN(NotionalPoolingControllerTest)
#include "tst_notional_pooling_controller.moc"
