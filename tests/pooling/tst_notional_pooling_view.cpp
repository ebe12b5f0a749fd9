#include "pooling/notional_pooling_view.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QtTest>
#include <functional>

#include "host/bwidgets/screen.h"
#include "host/gui/tree_grid_view.h"
#include "pooling/notional_pooling_filter_model.h"
#include "pooling/notional_pooling_model.h"
#include "tests/support/fake_pooling_operator.h"
#include "tests/support/recording_services.h"
#include "tests/support/rows.h"
#include "tests/support/test_main.h"
#include "tests/support/tester_proxy.h"

namespace keys = domain::keys;
using Fake = tests::FakePoolingOperator;
using tests::Node;

namespace {

// As a host's: it passes on to the dialog and its filter.
class Controller : public abst::qce::QCENotionalPoolingController {
 public:
  void setCurrentSubEngBill(proxy::Element* bill) override {
    current = bill;
    ++chosen;
    view->setCurrentAssociatedBill(bill);
    filter->setCurrentSubEngBill(bill);
  }
  void usedToOtherBills(proxy::Element* bill) override {
    filter->usedToOtherBills(bill != nullptr ? bill : current);
  }
  void collectToQCEResItem() override { filter->collectToQCEResItem(); }

  gui::qce::QCENotionalPoolingViewImpl* view = nullptr;
  gui::qce::QCENotionalPoolingFilterModelImpl* filter = nullptr;
  proxy::Element* current = nullptr;
  int chosen = 0;
};

}  // namespace

class TestNotionalPoolingView : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    services_ = std::make_unique<tests::RecordingServices>();
    op_ = std::make_unique<Fake>();
    model_ = std::make_unique<gui::qce::QCENotionalPoolingModelImpl>();
    filter_ = std::make_unique<gui::qce::QCENotionalPoolingFilterModelImpl>(model_.get());
    tests::attachTester(model_.get());
    tests::attachTester(filter_.get());
    Node* first = op_->bill("A", "平整场地");
    a_ = Fake::item(first, "a", 10.0);
    b_ = Fake::item(first, "b", 2.5);
    Node* second = op_->bill("B", "挖土方");
    a2_ = Fake::item(second, "a", 7.0);
    item_ = new Node("CL01");
    item_->set(keys::NPName, std::string("中砂"));
    model_->setDisplayTable(&op_->table);
    model_->setOperator(op_.get());
    view_ = std::make_unique<gui::qce::QCENotionalPoolingViewImpl>();
    controller_.view = view_.get();
    controller_.filter = filter_.get();
    controller_.chosen = 0;
    view_->setController(&controller_);
    view_->setModel(filter_.get());
    fill();
  }
  void cleanup() {
    view_.reset();
    filter_.reset();
    model_.reset();
    op_.reset();
    services_.reset();
  }

  void opensOnTheFirstBill() {
    drive(true, [this] {
      QCOMPARE(view_->windowTitle(), QString("选择归集到成本的预算收入工料机"));
      QCOMPARE(bills()->windowTitle(), QString("关联清单"));
      QCOMPARE(grid()->windowTitle(), QString("清单预算工料机"));
      QCOMPARE(grid()->treePosition(), 1);
      QCOMPARE(bills()->count(), 2);
      QCOMPARE(bills()->currentRow(), 0);
      QVERIFY(bills()->item(1)->text().contains("B-1  挖土方"));
      QVERIFY(bills()->isVisible() && bills()->width() <= 300 && bills()->width() > 200);
      QVERIFY(view_->rect().contains(grid()->geometry()) && grid()->width() >= 650);
      QVERIFY(otherBills()->isVisible());
      QVERIFY(!find<QLabel>("currentBill")->isVisible());
      QCOMPARE(find<QLabel>("currentBill")->text(), QString("当前清单：A-1/平整场地/m3"));
      QCOMPARE(find<QLabel>("currentItem")->text(), QString("当前成本工料机：CL01/中砂"));
      QVERIFY(find<QLabel>("note")->text().startsWith("注：\n 1.预算工料机中已归集"));
      QCOMPARE(shown(), QString("A(a b)"));
      QVERIFY(grid()->isExpanded(grid()->model()->index(0, 0)));
      const int width = bwidgets::Screen::getNoIncludeTaskbartWidget();
      const int height = bwidgets::Screen::getNoIncludeTaskbartHeight();
      QCOMPARE(view_->minimumSize(), QSize(width * 6 / 10, height * 7 / 10));
    });
  }

  void showsTheChosenBill() {
    drive(true, [this] {
      clickBill(1);
      QCOMPARE(shown(), QString("B(a)"));
      QVERIFY(grid()->isExpanded(grid()->model()->index(0, 0)));
      QTest::keyClick(bills(), Qt::Key_Up);
      QCOMPARE(shown(), QString("A(a b)"));
      QCOMPARE(controller_.chosen, 3);
      QTest::keyClick(bills(), Qt::Key_Up);  // nowhere to go
      QCOMPARE(controller_.chosen, 3);
      clickBill(1);
      QCOMPARE(find<QLabel>("currentBill")->text(), QString("当前清单：B-1/挖土方/m3"));
    });
  }

  void showsEverythingWithoutTheList() {
    controller_.setCurrentSubEngBill(op_->bills[0].get());
    filter_->setCurrentSubEngBill(nullptr);
    drive(false, [this] {
      QVERIFY(!bills()->isVisible() && !otherBills()->isVisible());
      QVERIFY(find<QLabel>("currentBill")->isVisible());
      QCOMPARE(shown(), QString("A(a b) B(a)"));
      QVERIFY(grid()->isExpanded(grid()->model()->index(1, 0)));
      QCOMPARE(controller_.chosen, 1);
    });
  }

  void poolsWhatIsCheckedAndTyped() {
    drive(true, [this] {
      clickCheck(a_);
      clickCheck(b_);
      type(a_, "4.5");  // with Return, which must not confirm
      QTest::mouseClick(otherBills(), Qt::LeftButton);
      clickBill(1);
      for (QWidget* widget : {static_cast<QWidget*>(bills()), static_cast<QWidget*>(grid())}) {
        widget->setFocus();
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
          if (key != Qt::Key_Space || widget == bills()) QTest::keyClick(widget, key);
          QVERIFY(view_->isVisible());
        }
      }
      QCOMPARE(op_->collected, 0);
      button("确定")->setFocus();
      QTest::keyClick(button("确定"), Qt::Key_Return);
      QVERIFY(!view_->isVisible());
    });
    QCOMPARE(op_->collected, 1);
    // The other bill's row keeps its whole quantity.
    const std::map<std::string, double> wanted = {{"A.a", 4.5}, {"A.b", 2.5}, {"B.a", 7.0}};
    QVERIFY(op_->pooled == wanted);
  }

  void poolsNothingUnlessConfirmed_data() {
    const tests::Rows<int> row{"how"};
    row("cancel", 0);
    row("escape", 1);
    row("window closed", 2);
    row("confirmed without a check", 3);
  }
  void poolsNothingUnlessConfirmed() {
    QFETCH(int, how);
    drive(true, [&] {
      if (how != 3) clickCheck(a_);
      if (how == 0) clickButton("取消");
      if (how == 1) QTest::keyClick(grid(), Qt::Key_Escape);
      if (how == 2) view_->close();
      if (how == 3) clickButton("确定");
      QVERIFY(!view_->isVisible());
    });
    QCOMPARE(op_->collected, 0);
  }

  void startsAnewWhenReused() {
    drive(true, [this] {
      clickCheck(a_);
      clickBill(1);
    });
    view_->cleanUpResources();
    std::vector<proxy::Element*> none;
    filter_->setSubEngineerBills(none);
    QCOMPARE(bills()->count(), 0);
    drive(true, [this] { QCOMPARE(shown(), QString("A(a b) B(a)")); });  // no bill to choose
    fill();
    drive(true, [this] {
      QCOMPARE(shown(), QString("A(a b)"));
      QCOMPARE(cell(a_, keys::NPChoose).data(Qt::CheckStateRole).toInt(), 0);
      clickButton("确定");
    });
    QCOMPARE(op_->collected, 0);
  }

 private:
  void fill() {
    std::vector<proxy::Element*> all;
    for (const auto& bill : op_->bills) all.push_back(bill.get());
    filter_->setSubEngineerBills(all);
    view_->setCurrentQCEGLJItem(item_.get());
    QCOMPARE(op_->current, static_cast<proxy::Element*>(item_.get()));
    view_->setAssociatedBills(all);
  }

  // Opens the dialog, does what a user would and closes it where that has not.
  void drive(bool withBills, const std::function<void()>& user) {
    bool came = false;
    QTimer poll;
    connect(&poll, &QTimer::timeout, &poll, [&] {
      if (!view_->isVisible()) return;
      poll.stop();
      came = true;
      user();
      if (view_->isVisible()) view_->reject();
    });
    poll.start(0);
    view_->showDialog(withBills);
    QVERIFY(came);
  }

  template <class Widget>
  Widget* find(const QString& name) const {
    auto* found = view_->findChild<Widget*>("NotionalPooling_" + name);
    Q_ASSERT(found != nullptr);
    return found;
  }
  QListWidget* bills() const { return find<QListWidget>("bills"); }
  gui::TreeGridView* grid() const { return find<gui::TreeGridView>("tree"); }
  QPushButton* otherBills() const { return find<QPushButton>("otherBills"); }
  QPushButton* button(const QString& text) const {
    for (auto* button : view_->findChildren<QPushButton*>()) {
      if (button->text() == text) return button;
    }
    return nullptr;
  }
  void clickButton(const QString& text) { QTest::mouseClick(button(text), Qt::LeftButton); }
  void clickBill(int row) {
    QTest::mouseClick(bills()->viewport(), Qt::LeftButton, {},
                      bills()->visualItemRect(bills()->item(row)).center());
  }
  QModelIndex cell(proxy::Element* element, const std::string& key) const {
    return filter_->makeIndex(element, filter_->getColumnIndex(key));
  }
  void clickCheck(proxy::Element* element) {
    const QModelIndex at = cell(element, keys::NPChoose);
    const int before = at.data(Qt::CheckStateRole).toInt();
    QTest::mouseClick(grid()->viewport(), Qt::LeftButton, {}, grid()->visualRect(at).center());
    QCOMPARE(at.data(Qt::CheckStateRole).toInt(), 2 - before);
  }
  void type(proxy::Element* element, const QString& text) {
    const QModelIndex at = cell(element, keys::NPCollectionAmount);
    QTest::mouseClick(grid()->viewport(), Qt::LeftButton, {}, grid()->visualRect(at).center());
    QTest::mouseDClick(grid()->viewport(), Qt::LeftButton, {}, grid()->visualRect(at).center());
    QPointer<QLineEdit> editor;
    for (auto* line : grid()->viewport()->findChildren<QLineEdit*>()) {
      if (line->isVisible()) editor = line;
    }
    QVERIFY(editor != nullptr);
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY(editor == nullptr);
  }
  QString shown() const { return QString::fromStdString(tests::treeText(*filter_)); }

  std::unique_ptr<tests::RecordingServices> services_;
  std::unique_ptr<Fake> op_;
  std::unique_ptr<gui::qce::QCENotionalPoolingModelImpl> model_;
  std::unique_ptr<gui::qce::QCENotionalPoolingFilterModelImpl> filter_;
  Controller controller_;
  scoped_refptr<Node> item_;
  std::unique_ptr<gui::qce::QCENotionalPoolingViewImpl> view_;
  Node* a_ = nullptr;
  Node* b_ = nullptr;
  Node* a2_ = nullptr;
};

QCE_WIDGET_TEST_MAIN(TestNotionalPoolingView)
#include "tst_notional_pooling_view.moc"
