#include "pooling/notional_pooling_view.h"

#include <functional>

#include "host/bwidgets/screen.h"
#include "host/domain/field_keys.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "tests/support/test_main.h"
#include "tests/workbench/project_fixture.h"
#include "workbench/cli/driver.h"

namespace keys = domain::keys;
using records::BudgetItem;
using records::Category;

/// The dialog over a real project, opened as the resource-item page opens it.
class NotionalPoolingViewTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    fixture_ = std::make_unique<tests::ProjectFixture>();
    QVERIFY2(fixture_->made, qPrintable(fixture_->failure.message));
    load();
  }
  void cleanup() { fixture_.reset(); }

  void opensOnTheFirstBill() {
    QVERIFY(open([&] {
      const QWidget* view = current();
      QCOMPARE(view->windowTitle(), QString("选择归集到成本的预算收入工料机"));
      QCOMPARE(list()->windowTitle(), QString("关联清单"));
      QCOMPARE(grid()->windowTitle(), QString("清单预算工料机"));
      QCOMPARE(grid()->treePosition(), 1);
      QCOMPARE(list()->currentRow(), 0);
      QVERIFY(list()->isVisible() && list()->width() <= 300 && list()->width() > 200);
      QVERIFY(view->rect().contains(grid()->geometry()) && grid()->width() >= 650);
      QVERIFY(find<QPushButton>("otherBills")->isVisible());
      QVERIFY(!find<QLabel>("currentBill")->isVisible());
      const auto text = [](const records::Text& of) { return QString::fromStdString(of.str()); };
      const auto current = [&](const records::Bill& bill) {
        return "当前清单：" + text(bill.code) + "/" + text(bill.name) + "/" + text(bill.unit);
      };
      QCOMPARE(find<QLabel>("currentBill")->text(), current(*bills_[0]));
      QCOMPARE(find<QLabel>("currentItem")->text(),
               "当前成本工料机：" + text(item_->code()) + "/" + text(item_->name()));
      QVERIFY(find<QLabel>("note")->text().startsWith("注：\n 1.预算工料机中已归集"));
      QCOMPARE(grid()->model()->rowCount(), 1);
      QVERIFY(grid()->isExpanded(grid()->model()->index(0, 0)));
      QCOMPARE(view->minimumSize(), QSize(bwidgets::Screen::getNoIncludeTaskbartWidget() * 6 / 10,
                                          bwidgets::Screen::getNoIncludeTaskbartHeight() * 7 / 10));

      driver_.click(list()->viewport(), list()->visualItemRect(list()->item(1)).center());
      QCOMPARE(find<QLabel>("currentBill")->text(), current(*bills_[1]));
      QVERIFY(grid()->isExpanded(grid()->model()->index(0, 0)));
      QTest::keyClick(list(), Qt::Key_Up);
      QCOMPARE(find<QLabel>("currentBill")->text(), current(*bills_[0]));
    }));
  }

  void whatIsShownCanBePooled() {
    QVERIFY(open([&] {
      auto* model = grid()->model();
      const auto& view = dynamic_cast<const gui::ViewModel&>(*model);
      const QModelIndex bill = model->index(0, 0);
      const auto at = [&](int row, const std::string& key) {
        return model->index(row, view.getColumnIndex(key), bill);
      };
      const auto text = [](const costing::Decimal& number, const QModelIndex& shown) {
        QCOMPARE(*costing::Decimal::parse(shown.data().toString().toStdString()), number);
      };
      for (int row = 0; row < bills_[0]->childCount(); ++row) {
        const auto& line = static_cast<const BudgetItem&>(*bills_[0]->child(row));
        const QModelIndex left = at(row, keys::NPAmount);
        text(project().remaining(line).rounded(4), left);
        // Money as well without separators, by which it would sort as nothing.
        text(line.amount.value(), at(row, keys::NPExcludeTaxTotalCost));
        QCOMPARE(at(row, keys::NPCollectionAmount).data(), left.data());
        QVERIFY(model->setData(at(row, keys::NPCollectionAmount), left.data()));
        QVERIFY(!(left.flags() & Qt::ItemIsEditable));
      }
      // A bill has no quantity to pool, not 0.
      QCOMPARE(bill.siblingAtColumn(view.getColumnIndex(keys::NPAmount)).data().toString(),
               QString());
    }));
    QVERIFY(fixture_->channel.messages().empty());
  }

  void booksAllOrNothing() {
    auto& second = static_cast<BudgetItem&>(*bills_[0]->child(1));
    std::string before;
    QVERIFY(open([&] {
      check(0);
      change([&] { project().pool(second, *item_, project().quantity(second)); });
      before = project().dump();
      press("确定");
    }));
    QVERIFY(project().dump() == before);
    QCOMPARE(opened().undo().stack()->count(), 1);
    QCOMPARE(fixture_->channel.messages().size(), std::size_t(1));
  }

  // Return and Space belong to the grid and the list; only the button that has the keyboard acts.
  void confirmsByTheButtonAlone() {
    const auto pooled = [&] {
      const auto& line = static_cast<const BudgetItem&>(*bills_[0]->child(0));
      return !project().pooled(line, *item_).isZero();
    };
    QVERIFY(open([&] {
      check(0);
      for (QWidget* widget : std::initializer_list<QWidget*>{list(), grid()}) {
        widget->setFocus();
        for (const int key : {Qt::Key_Return, Qt::Key_Enter}) driver_.key(key);
      }
      list()->setFocus();
      driver_.key(Qt::Key_Space);
      QVERIFY(current() != nullptr && !pooled());
      button("确定")->setFocus();
      driver_.key(Qt::Key_Return);
    }));
    QVERIFY(pooled());
  }

  void poolsNothingUnlessConfirmed() {
    const std::string before = project().dump();
    const std::function<void()> ways[] = {
        [&] { press("取消"); }, [&] { driver_.key(Qt::Key_Escape); }, [&] { current()->close(); },
        [&] {
          check(0);
          press("确定");
        }};
    for (const auto& leave : ways) {
      QVERIFY(open([&] {
        check(0);
        leave();
        QVERIFY(current() == nullptr);
      }));
      QVERIFY(project().dump() == before);
    }
  }

  void offersTheAssociatedBillsWhileTheyHaveSomething() {
    QVERIFY(open([&] { QCOMPARE(listed(), int(bills_.size())); }));
    change([&] {
      project().associate(*item_, *bills_[2], false);
      project().associate(*item_, *bills_[0], false);
    });
    QVERIFY(open([&] {
      QCOMPARE(listed(), 2);  // in the order of the project
      QVERIFY(list()->item(0)->text().startsWith(QString::fromStdString(bills_[0]->code.str())));
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
          QVERIFY(!list()->isVisible());
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
  static QListWidget* list() { return find<QListWidget>("bills"); }
  static int listed() { return list()->count(); }
  static gui::TreeGridView* grid() { return find<gui::TreeGridView>("tree"); }
  // Clicks the check box of a top-level row.
  void check(int row) { driver_.clickCell(grid(), grid()->model()->index(row, 0)); }
  static QAbstractButton* button(const QString& text) { return tests::button(current(), text); }
  void press(const QString& text) { driver_.click(button(text)); }

  std::unique_ptr<tests::ProjectFixture> fixture_;
  std::vector<records::Bill*> bills_;
  records::ResourceItem* item_ = nullptr;
  cli::Driver driver_;
};

QCE_WIDGET_TEST_MAIN(NotionalPoolingViewTest)
#include "tst_notional_pooling_view.moc"
