#include <QCheckBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QUndoStack>

#include "host/app/scoped_undo.h"
#include "host/domain/field_keys.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "pooling/association_bill_view.h"
#include "tests/support/test_main.h"
#include "tests/workbench/project_fixture.h"
#include "workbench/cli/driver.h"

using records::Bill;
using records::Category;
using records::ResourceItem;

/// The dialog over a real project, opened and driven as from the page.
class AssociationBillControllerTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    fixture_ = std::make_unique<tests::ProjectFixture>();
    QVERIFY2(fixture_->made, qPrintable(fixture_->failure.message));
    QVERIFY(fixture_->open() != nullptr);
  }

  void cleanup() { fixture_.reset(); }

  void associatesInOneStep() {
    const std::string before = project().dump();
    const costing::PackedDecimal quantity = item(0).quantity();
    std::vector<Bill*> section;
    const std::vector<Bill*> all = bills();
    for (Bill* bill : all) {
      if (bill->parent() == all.front()->parent()) section.push_back(bill);
    }
    const auto& node = static_cast<const records::StructureNode&>(*all.front()->parent());
    QVERIFY(open({&item(0)}, [&] {
      toggle(QString::fromStdString(node.name));
      toggle(*section.front());  // all but the first
      press("确定");
    }));
    QCOMPARE(steps().count(), 1);
    QCOMPARE(steps().undoText(), QString("关联清单"));
    const std::vector<Bill*> wanted(section.begin() + 1, section.end());
    QVERIFY(!wanted.empty() && project().associatedBills(item(0)) == wanted);
    QVERIFY(item(0).associated());
    QCOMPARE(item(0).quantity().value().toString(), quantity.value().toString());
    const std::string after = project().dump();
    steps().undo();
    QCOMPARE(project().dump(), before);
    QVERIFY(!item(0).associated());
    QVERIFY(open({&item(0)}, [&] { QCOMPARE(mark(*wanted.front()), QString()); }));
    steps().redo();
    QCOMPARE(project().dump(), after);
    QVERIFY(open({&item(0)}, [&] {
      QCOMPARE(mark(*wanted.front()), QString("√"));
      click("onlySelected");
      QCOMPARE(shownBills(), int(wanted.size()));
      press("确定");  // nothing has changed
    }));
    QCOMPARE(steps().count(), 1);
    QVERIFY(fixture_->open() != nullptr);
    QCOMPARE(project().dump(), after);
    QVERIFY(open({&item(0)}, [&] { QCOMPARE(mark(*bills().at(1)), QString("√")); }));
    QVERIFY(fixture_->channel.messages().empty());
  }

  void associatesSeveralItems() {
    const std::vector<Bill*> all = bills();
    associate({&item(0), &item(1)}, {all[0], all[1]});
    associate({&item(1)}, {all[2], all[3]});
    QVERIFY(open({&item(0), &item(1)}, [&] {
      QCOMPARE(mark(*all[0]), QString("√"));
      QCOMPARE(mark(*all[2]), QString("部分"));
      QVERIFY(dialog_->findChild<QCheckBox*>("AssociationBill_collect")->isHidden());
      toggle(*all[1]);  // goes from both
      toggle(*all[2]);  // to both
      press("确定");
    }));
    const std::vector<Bill*> first{all[0], all[2]};
    const std::vector<Bill*> second{all[0], all[2], all[3]};  // the untouched one stays
    QVERIFY(project().associatedBills(item(0)) == first);
    QVERIFY(project().associatedBills(item(1)) == second);
    QCOMPARE(steps().count(), 3);
  }

  void asksBeforePoolingsGoBack() {
    Bill* bill = bills().front();
    auto& budget = static_cast<records::BudgetItem&>(*bill->child(0));
    {
      const app::ScopedUndo undo("归集");
      project().pool(budget, item(0), project().remaining(budget));
    }
    fixture_->channel.answerNext(QMessageBox::No);
    QVERIFY(open({&item(0)}, [&] {
      toggle(*bill);
      press("确定");
      QVERIFY(dialog_->isVisible());
      QVERIFY(!project().pooled(budget).isZero());
      fixture_->channel.answerNext(QMessageBox::Yes);
      press("确定");
      QVERIFY(!dialog_->isVisible());
    }));
    QCOMPARE(fixture_->channel.messages().size(), std::size_t(2));
    QVERIFY(fixture_->channel.messages()[0].text.find("1 条已归集") != std::string::npos);
    QVERIFY(project().pooled(budget).isZero());
    QVERIFY(project().associatedBills(item(0)).empty());
  }

  void summarises() {
    const std::vector<Bill*> all = bills();
    associate({&item(0)}, {all[0]});
    const auto summary = [&](int number) {
      return project().terms(item(0), *all[std::size_t(number)]).summary;
    };
    QVERIFY(open({&item(0)}, [&] {
      QVERIFY(!dialog_->getUnifyFBChecked());
      toggle(*all[1]);
      click("unify");
      press("确定");
    }));
    QVERIFY(summary(0) && summary(1));
    QVERIFY(open({&item(0)}, [&] {
      QVERIFY(dialog_->getUnifyFBChecked());
      toggle(*all[2]);
      press("确定");
    }));
    QVERIFY(summary(2));
    associate({&item(0)}, {all[3]});  // without
    QVERIFY(open({&item(0)}, [&] {
      QVERIFY(!dialog_->getUnifyFBChecked());
      toggle(*all[4]);
      press("确定");
    }));
    QVERIFY(summary(0) && !summary(3) && !summary(4));  // a box left alone changes none
  }

  void findsBillsByTextAndInitials() {
    QVERIFY(open({&item(0)}, [&] {
      auto* edit = dialog_->findChild<QLineEdit*>("AssociationBill_filter");
      const int all = shownBills();
      const auto find = [&](const QString& text) {
        edit->clear();
        driver_.click(edit);
        driver_.type(text);
        driver_.key(Qt::Key_Return);
        return shownBills();
      };
      QCOMPARE(find("010101002"), 1);
      QVERIFY(row("挖一般土方").isValid());
      QCOMPARE(find("wybtf"), 1);
      QVERIFY(row("挖一般土方").isValid());
      const int byFeature = find("三类土");
      QVERIFY(byFeature > 1 && byFeature < all);
      QCOMPARE(find("没有这样的清单"), 0);
      edit->clear();
      QCOMPARE(shownBills(), all);
    }));
  }

  void refusesItemsOfSeveralUnitWorks() {
    ResourceItem& other = fixture_->item(1, Category::Material, 0);
    opened().associationController().openAssociation({&item(0), &other});
    for (int i = 0; i < 2; ++i) {
      const std::string& name = project().unitWorks().at(std::size_t(i))->name;
      QVERIFY(fixture_->message().contains(QString::fromStdString(name)));
    }
    opened().associationController().openAssociation({});
    QVERIFY(!opened().resItemController().canAssociateBills({}));
    QCOMPARE(fixture_->channel.messages().size(), std::size_t(1));
  }

 private:
  using Dialog = gui::qce::QCEAssociationBillViewImpl;

  /// Opens the dialog for the items; `inside` works it.
  bool open(const std::vector<proxy::Element*>& items, const std::function<void()>& inside) {
    return driver_.withPopup([&] { opened().associationController().openAssociation(items); },
                             [&](QWidget* widget) {
                               dialog_ = qobject_cast<Dialog*>(widget);
                               if (dialog_ != nullptr) inside();
                               if (widget->isVisible()) static_cast<QDialog*>(widget)->reject();
                             });
  }
  void click(const char* box) {
    auto* found = dialog_->findChild<QCheckBox*>(QString("AssociationBill_") + box);
    driver_.click(found, QPoint(8, found->height() / 2));
  }
  void press(const QString& text) {
    for (auto* button : dialog_->findChildren<QPushButton*>()) {
      if (button->text() == text) return driver_.click(button);
    }
    QFAIL("no such button");
  }
  gui::TreeGridView* tree() const {
    return dialog_->findChild<gui::TreeGridView*>("AssociationBill_right");
  }
  /// The row with this text in column 0 or 1; invalid when it is not shown.
  QModelIndex row(const QString& text) const {
    for (QModelIndex at = tree()->model()->index(0, 0); at.isValid(); at = tree()->indexBelow(at)) {
      const QModelIndex name = at.sibling(at.row(), 1);
      if (at.data().toString() == text || name.data().toString() == text) return name;
    }
    return {};
  }
  void toggle(const QString& text) {
    driver_.clickCell(tree(), row(text));
    driver_.key(Qt::Key_Space);
  }
  void toggle(const Bill& bill) { toggle(QString::fromStdString(bill.code.str())); }
  QString mark(const Bill& bill) const {
    const QModelIndex at = row(QString::fromStdString(bill.code.str()));
    const int column = tree()->viewModel()->getColumnIndex(domain::keys::BRIAssociation);
    return at.sibling(at.row(), column).data().toString();
  }
  int shownBills() const {
    int bills = 0;
    for (QModelIndex at = tree()->model()->index(0, 0); at.isValid(); at = tree()->indexBelow(at)) {
      bills += tree()->model()->hasChildren(at) ? 0 : 1;
    }
    return bills;
  }
  controllers::OpenProject& opened() { return *fixture_->opened(); }
  records::Project& project() { return opened().project(); }
  QUndoStack& steps() { return *opened().undo().stack(); }
  ResourceItem& item(int number) { return fixture_->item(0, Category::Material, number); }
  std::vector<Bill*> bills() { return fixture_->bills(); }
  void associate(const std::vector<ResourceItem*>& items, const std::vector<Bill*>& bills) {
    const app::ScopedUndo undo("准备");
    for (ResourceItem* item : items) {
      for (Bill* bill : bills) project().associate(*item, *bill, false);
    }
  }

  std::unique_ptr<tests::ProjectFixture> fixture_;
  cli::Driver driver_;
  Dialog* dialog_ = nullptr;
};

QCE_WIDGET_TEST_MAIN(AssociationBillControllerTest)
#include "tst_association_bill_controller.moc"
