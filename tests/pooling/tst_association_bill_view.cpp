#include "pooling/association_bill_view.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QtTest>
#include <functional>

#include "host/abst/qce/association_bill_controller.h"
#include "host/bwidgets/screen.h"
#include "host/gui/tree_grid_view.h"
#include "pooling/association_bill_left_model.h"
#include "pooling/association_bill_right_filter_model.h"
#include "pooling/association_bill_right_model.h"
#include "tests/pooling/association_bill_fake.h"
#include "tests/support/recording_services.h"
#include "tests/support/test_main.h"
#include "tests/support/tester_proxy.h"
#include "workbench/cli/driver.h"

namespace {

struct Controller : abst::qce::QCEAssociationBillController {
  bool mayAssociate() override {
    calls << "ask";
    return allow;
  }
  bool associate(bool unify) override {
    calls << (unify ? "associate unify" : "associate");
    return accept;
  }
  void collectToCost() override { calls << "collect"; }
  QStringList calls;
  bool allow = true;
  bool accept = true;
};

}  // namespace

class AssociationBillViewTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    controller_ = {};
    rightOperator_.associated = {"a1"};
    left_ = std::make_unique<gui::qce::QCEAssociationBillLeftModelImpl>();
    model_ = std::make_unique<gui::qce::QCEAssociationBillRightModelImpl>();
    filter_ = std::make_unique<gui::qce::QCEAssociationBillRightFilterModelImpl>(model_.get());
    for (QAbstractItemModel* model :
         std::initializer_list<QAbstractItemModel*>{left_.get(), model_.get(), filter_.get()}) {
      tests::attachTester(model);
    }
    left_->setDisplayTable(&leftOperator_.table);
    left_->setOperator(&leftOperator_);
    model_->setDisplayTable(&rightOperator_.table);
    model_->setOperator(&rightOperator_);
    model_->resetModel();
    view_ = std::make_unique<gui::qce::QCEAssociationBillViewImpl>();
    view_->setController(&controller_);
    view_->setModel(left_.get());
    view_->setRightModel(filter_.get());
  }

  void cleanup() {
    view_.reset();
    filter_.reset();
    model_.reset();
    left_.reset();
  }

  void showsItsTexts() {
    QCOMPARE(view_->windowTitle(), QString("关联清单"));
    const auto* warning = find<QLabel>("warning");
    QCOMPARE(warning->text(),
             QString("工料机未关联清单且消耗量不为零时，关联清单会保持消耗量不变"));
    QCOMPARE(warning->styleSheet(), QString("color:red"));
    for (const auto& [box, text] : {std::pair("collect", "关联清单后弹出归集到成本设置"),
                                    {"unify", "汇总统计"},
                                    {"onlySelected", "仅显示选中项"}}) {
      QCOMPARE(find<QCheckBox>(box)->text(), QString(text));
    }
    QCOMPARE(
        find<QLabel>("note")->text(),
        QString("注：归集到成本表示将关联的清单下的预算收入工料机和当前成本工料机进行匹配，便于进"
                "行收支对比\n    勾选“汇总统计后，关联的清单下会有一条汇总的专业分包项"));
    run([this] {
      const QSize room = bwidgets::Screen::availableSize(view_.get());
      QVERIFY(view_->width() <= room.width() && view_->height() <= room.height());
      QVERIFY(right()->isExpanded(filter_->index(0, 0)));
      QTRY_VERIFY(find<QLabel>("counts")->text().contains("已勾选 1 条清单"));
    });
  }

  void confirmsByTheButtonAlone() {
    const int result = run([this] {
      for (QWidget* place : std::initializer_list<QWidget*>{
               right(), find<gui::TreeGridView>("left"), find<QLineEdit>("filter"),
               find<QCheckBox>("collect"), find<QPlainTextEdit>("features")}) {
        place->setFocus();
        for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) driver_.key(key);
        QVERIFY2(view_->isVisible(), qPrintable(place->objectName()));
      }
      QVERIFY(controller_.calls.isEmpty());
      driver_.click(button("确定"));
    });
    QCOMPARE(result, 1);
    QCOMPARE(controller_.calls.value(1), QString("associate"));

    controller_.calls.clear();
    QCOMPARE(run([this] { driver_.key(Qt::Key_Escape); }), 0);
    QCOMPARE(run([this] { driver_.click(button("取消")); }), 0);
    QCOMPARE(controller_.calls, QStringList());
    find<QCheckBox>("collect")->setChecked(false);
    QCOMPARE(run([this] {
               button("确定")->setFocus();
               driver_.key(Qt::Key_Return);
             }),
             1);
    QCOMPARE(run([this] { driver_.key(Qt::Key_Return, Qt::ControlModifier); }), 1);
    QCOMPARE(controller_.calls, QStringList({"ask", "associate", "ask", "associate"}));
  }

  void staysOpenUnlessAllowed() {
    controller_.allow = controller_.accept = false;
    find<QCheckBox>("collect")->setChecked(true);
    const int result = run([this] {
      clickRow("b1");
      driver_.key(Qt::Key_Space);
      driver_.click(find<QCheckBox>("unify"), QPoint(8, find<QCheckBox>("unify")->height() / 2),
                    Qt::NoModifier, Qt::LeftButton);
      driver_.click(button("确定"));
      QVERIFY(view_->isVisible());
      QCOMPARE(checked(), QString("a1 b1"));
      controller_.allow = true;
      driver_.click(button("确定"));
      QVERIFY(!view_->isVisible());
    });
    QCOMPARE(result, 0);  // refused by associate: no hand-over to pooling
    QCOMPARE(controller_.calls, QStringList({"ask", "ask", "associate unify"}));
    view_->setController(nullptr);
    QCOMPARE(run([this] { driver_.click(button("确定")); }), 1);
  }

  void hidesAndDisablesItsOptions() {
    auto* collect = find<QCheckBox>("collect");
    collect->setChecked(true);
    run([this] { driver_.click(button("确定")); });
    QCOMPARE(controller_.calls, QStringList({"ask", "associate", "collect"}));
    view_->setCollectedHidden(true);
    QVERIFY(!view_->needCollectToQCERes() && collect->isHidden());
    view_->setCollectedHidden(false);
    QVERIFY(!collect->isChecked() && !collect->isHidden());
    auto* unify = find<QCheckBox>("unify");
    view_->setUnifyFBEnable(false);
    view_->setUnifyFBVisible(false);
    QVERIFY(!view_->getUnifyFBChecked() && !unify->isEnabled() && unify->isHidden());
  }

  void returnFiltersAndSpaceChecks() {
    run([this] {
      driver_.click(find<QLineEdit>("filter"));
      driver_.type("2");
      QCOMPARE(shown(), QString("U(A(a1 a2 a3) B(b1 C(c1 c2)))"));
      driver_.key(Qt::Key_Return);
      QCOMPARE(shown(), QString("U(A(a2) B(C(c2)))"));
      QVERIFY(right()->isExpanded(cell("C", 0)));
      clickRow("a2", 2);  // Space is for the box of the row, whichever cell is current
      driver_.key(Qt::Key_Space);
      QCOMPARE(checked(), QString("a1 a2"));
      QVERIFY(find<QPlainTextEdit>("features")->toPlainText().contains("第二行"));
      driver_.key(Qt::Key_Space);
      QCOMPARE(checked(), QString("a1"));
      clickRow("B");
      driver_.key(Qt::Key_Space);
      QCOMPARE(checked(), QString("a1 c2"));
      find<QLineEdit>("filter")->clear();
      QCOMPARE(shown(), QString("U(A(a1 a2 a3) B(b1 C(c1 c2)))"));

      // A click on the box itself, and several rows at once.
      const QRect row = right()->visualRect(cell("b1", 0));
      QPoint at(row.left(), row.center().y());
      while (at.x() < row.right() && checked() == "a1 c2") {
        driver_.click(right()->viewport(), at);
        at.rx() += 6;
      }
      QCOMPARE(checked(), QString("a1 b1 c2"));
      clickRow("a2");
      driver_.clickCell(right(), cell("a3", 1), Qt::ShiftModifier);
      driver_.key(Qt::Key_Space);
      QCOMPARE(checked(), QString("a1 a2 a3 b1 c2"));
    });
  }

  void narrowsByTheLeftTreeAndToCheckedRows() {
    auto* sections = find<gui::TreeGridView>("left");
    const auto section = [&](const std::string& name) {
      return left_->makeIndex(leftOperator_.tree.at(name), 0);
    };
    run([&] {
      QCOMPARE(view_->getLeftCurrentElemment(), leftOperator_.tree.at("U"));
      driver_.clickCell(sections, section("C"));
      QCOMPARE(shown(), QString("U(B(C(c1 c2)))"));
      clickRow("C");
      QCOMPARE(view_->getRightCurrentElemment(), rightOperator_.tree.at("C"));
      driver_.key(Qt::Key_Space);
      driver_.clickCell(sections, section("A"));
      QCOMPARE(shown(), QString("U(A(a1 a2 a3))"));
      QCOMPARE(checked(), QString("a1 c1 c2"));  // what is out of sight stays checked
      driver_.clickCell(sections, section("U"));
      auto* only = find<QCheckBox>("onlySelected");
      driver_.click(only, QPoint(8, only->height() / 2));
      QCOMPARE(shown(), QString("U(A(a1) B(C(c1 c2)))"));
      QVERIFY(right()->isExpanded(cell("C", 0)));
      clickRow("c1");
      driver_.key(Qt::Key_Space);
      QCOMPARE(shown(), QString("U(A(a1) B(C(c2)))"));
      driver_.click(only, QPoint(8, only->height() / 2));
      QCOMPARE(shown(), QString("U(A(a1 a2 a3) B(b1 C(c1 c2)))"));
      driver_.clickCell(sections, section("B"));
    });
    // The next time begins with everything shown.
    run([&] { QCOMPARE(shown(), QString("U(A(a1 a2 a3) B(b1 C(c1 c2)))")); });
  }

  void menuChecksTheSelectedRows() {
    run([this] {
      clickRow("b1");
      const auto choose = [this](const QString& text) {
        emit right()->customContextMenuRequested(QPoint(5, 5));
        const QPointer<QMenu> menu = view_->findChild<QMenu*>("AssociationBill_menu");
        for (QAction* action : menu->actions()) {
          if (action->text() == text) action->trigger();
        }
        menu->close();
        QTRY_VERIFY(menu == nullptr);
      };
      choose("勾选选中的行");
      QCOMPARE(checked(), QString("a1 b1"));
      choose("取消勾选选中的行");
      QCOMPARE(checked(), QString("a1"));
      choose("取消全部勾选");
      QCOMPARE(checked(), QString());
      QTRY_VERIFY(find<QLabel>("counts")->text().contains("取消关联 1 条"));
    });
  }

 private:
  /// Runs the dialog as a user has it before them; answers its result.
  int run(const std::function<void()>& inside) {
    const bool came = driver_.withPopup([this] { view_->show(); },
                                        [&](QWidget*) {
                                          inside();
                                          if (view_->isVisible()) view_->reject();
                                        });
    return came ? view_->result() : -1;
  }
  template <class Widget>
  Widget* find(const char* name) const {
    return view_->findChild<Widget*>(QString("AssociationBill_") + name);
  }
  gui::TreeGridView* right() const { return find<gui::TreeGridView>("right"); }
  QPushButton* button(const QString& text) const {
    for (auto* found : view_->findChildren<QPushButton*>()) {
      if (found->text() == text) return found;
    }
    return nullptr;
  }
  QModelIndex cell(const std::string& name, int column) const {
    return filter_->makeIndex(rightOperator_.tree.at(name), column);
  }
  void clickRow(const std::string& name, int column = 1) {
    driver_.clickCell(right(), cell(name, column));
  }
  QString shown() const { return QString::fromStdString(tests::treeText(*filter_)); }
  QString checked() const {
    std::vector<proxy::Element*> bills;
    model_->getAllChoosedBills(bills);
    QStringList sorted = QString::fromStdString(tests::FakeRightOperator::names(bills)).split(',');
    sorted.sort();
    return sorted.join(' ');
  }

  tests::RecordingServices services_;
  tests::FakeLeftOperator leftOperator_;
  tests::FakeRightOperator rightOperator_;
  Controller controller_;
  cli::Driver driver_;
  std::unique_ptr<gui::qce::QCEAssociationBillLeftModelImpl> left_;
  std::unique_ptr<gui::qce::QCEAssociationBillRightModelImpl> model_;
  std::unique_ptr<gui::qce::QCEAssociationBillRightFilterModelImpl> filter_;
  std::unique_ptr<gui::qce::QCEAssociationBillViewImpl> view_;
};

QCE_WIDGET_TEST_MAIN(AssociationBillViewTest)
#include "tst_association_bill_view.moc"
