#include "pooling/association_bill_view.h"

#include "host/bwidgets/screen.h"
#include "host/domain/field_keys.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "pooling/association_bill_right_model.h"
#include "tests/support/test_main.h"
#include "tests/workbench/project_fixture.h"
#include "workbench/cli/driver.h"

using records::Bill;
using records::Category;
using records::ResourceItem;

/// The dialog over a real project, opened and driven as from the page.
class AssociationBillViewTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    fixture_ = std::make_unique<tests::ProjectFixture>();
    QVERIFY2(fixture_->made, qPrintable(fixture_->failure.message));
    QVERIFY(fixture_->open() != nullptr);
  }

  void cleanup() { fixture_.reset(); }

  void showsItsTexts() {
    QVERIFY(open({&item(0)}, [&] {
      QCOMPARE(dialog_->windowTitle(), QString("关联清单"));
      QCOMPARE(find<QLabel>("warning")->text(),
               QString("工料机未关联清单且消耗量不为零时，关联清单会保持消耗量不变"));
      QCOMPARE(find<QLabel>("warning")->styleSheet(), QString("color:red"));
      for (const auto& [box, text] : {std::pair("collect", "关联清单后弹出归集到成本设置"),
                                      {"unify", "汇总统计"},
                                      {"onlySelected", "仅显示选中项"}}) {
        QCOMPARE(find<QCheckBox>(box)->text(), QString(text));
      }
      QCOMPARE(
          find<QLabel>("note")->text(),
          QString("注：归集到成本表示将关联的清单下的预算收入工料机和当前成本工料机进行匹配，便于进"
                  "行收支对比\n    勾选“汇总统计后，关联的清单下会有一条汇总的专业分包项"));
      const QSize room = bwidgets::Screen::availableSize(dialog_);
      QVERIFY(dialog_->width() <= room.width() && dialog_->height() <= room.height());
      QVERIFY(tree()->isExpanded(tree()->model()->index(0, 0)));
      dialog_->setCollectedHidden(true);
      QVERIFY(!dialog_->needCollectToQCERes() && find<QCheckBox>("collect")->isHidden());
      dialog_->setCollectedHidden(false);
      QVERIFY(!find<QCheckBox>("collect")->isChecked() && !find<QCheckBox>("collect")->isHidden());
      dialog_->setUnifyFBEnable(false);
      dialog_->setUnifyFBVisible(false);
      QVERIFY(!find<QCheckBox>("unify")->isEnabled() && find<QCheckBox>("unify")->isHidden());
    }));
  }

  void confirmsByTheButtonAlone() {
    QVERIFY(open({&item(0)}, [&] {
      for (QWidget* place : std::initializer_list<QWidget*>{
               tree(), find<gui::TreeGridView>("left"), find<QLineEdit>("filter"),
               find<QCheckBox>("unify"), find<QPlainTextEdit>("features")}) {
        place->setFocus();
        for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) driver_.key(key);
        QVERIFY2(dialog_->isVisible(), qPrintable(place->objectName()));
      }
      driver_.key(Qt::Key_Escape);
    }));
    QVERIFY(open({&item(0)}, [&] {
      toggle(*bills().front());
      press("取消");
    }));
    QCOMPARE(steps().count(), 0);
    const std::function<void()> ways[] = {
        [&] {
          button("确定")->setFocus();
          driver_.key(Qt::Key_Return);
        },
        [&] { driver_.key(Qt::Key_Return, Qt::ControlModifier); }};
    for (const auto& confirm : ways) {
      QVERIFY(open({&item(0)}, [&] {
        toggle(*bills().front());
        confirm();
        QVERIFY(!dialog_->isVisible());
      }));
    }
    QCOMPARE(steps().count(), 2);
  }

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
      const auto search = [&](const QString& text) {
        edit->clear();
        driver_.click(edit);
        driver_.type(text);
        driver_.key(Qt::Key_Return);
        return shownBills();
      };
      QCOMPARE(search("010101002"), 1);
      QVERIFY(row("挖一般土方").isValid());
      QCOMPARE(search("wybtf"), 1);
      QVERIFY(row("挖一般土方").isValid());
      const int byFeature = search("三类土");
      QVERIFY(byFeature > 1 && byFeature < all);
      QCOMPARE(search("没有这样的清单"), 0);
      edit->clear();
      QCOMPARE(shownBills(), all);
    }));
  }

  void narrowsByTheLeftTreeAndToCheckedRows() {
    const std::vector<Bill*> all = bills();
    const auto shown = [&](const Bill& bill) { return row(code(bill)).isValid(); };
    QVERIFY(open({&item(0)}, [&] {
      auto* sections = find<gui::TreeGridView>("left");
      const auto section = [&](const Bill& of) {
        const auto& node = static_cast<const records::StructureNode&>(*of.parent());
        return sections->model()->match(sections->model()->index(0, 0), Qt::DisplayRole,
                                        QString::fromStdString(node.name), 1,
                                        Qt::MatchExactly | Qt::MatchRecursive)[0];
      };
      toggle(*all.front());
      driver_.clickCell(sections, section(*all.back()));
      QVERIFY(!shown(*all.front()) && shown(*all.back()));
      toggle(*all.back());
      QCOMPARE(checked(), (QList<int>{0, int(all.size()) - 1}));
      driver_.clickCell(sections, sections->model()->index(0, 0));
      click("onlySelected");
      QCOMPARE(shownBills(), 2);
      toggle(*all.back());
      QCOMPARE(shownBills(), 1);
      QTRY_VERIFY(find<QLabel>("counts")->text().contains("已勾选 1 条清单"));
      click("onlySelected");
      driver_.clickCell(sections, section(*all.back()));
    }));
    // The next time begins with everything shown.
    QVERIFY(open({&item(0)}, [&] {
      QCOMPARE(shownBills(), int(all.size()));
      QCOMPARE(checked(), QList<int>());
    }));
  }

  void checksByBoxKeysAndMenu() {
    const std::vector<Bill*> all = bills();
    QVERIFY(open({&item(0)}, [&] {
      // A click on the box itself, and several rows at once.
      const QRect cell = tree()->visualRect(row(code(*all[0])).siblingAtColumn(0));
      for (QPoint at(cell.left(), cell.center().y()); at.x() < cell.right() && checked().isEmpty();
           at.rx() += 6) {
        driver_.click(tree()->viewport(), at);
      }
      QCOMPARE(checked(), QList<int>{0});
      driver_.clickCell(tree(), row(code(*all[1])));
      driver_.clickCell(tree(), row(code(*all[2])), Qt::ShiftModifier);
      driver_.key(Qt::Key_Space);
      QCOMPARE(checked(), (QList<int>{0, 1, 2}));
      QCOMPARE(find<QPlainTextEdit>("features")->toPlainText(),
               QString::fromStdString(all[2]->features.str()));
      for (const auto& [text, count] :
           {std::pair("取消勾选选中的行", 1), {"勾选选中的行", 3}, {"取消全部勾选", 0}}) {
        emit tree()->customContextMenuRequested(QPoint(5, 5));
        const QPointer<QMenu> menu = dialog_->findChild<QMenu*>("AssociationBill_menu");
        for (QAction* action : menu->actions()) {
          if (action->text() == text) action->trigger();
        }
        menu->close();
        QTRY_VERIFY(menu == nullptr);
        QCOMPARE(checked().size(), count);
      }
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
    auto* found = find<QCheckBox>(box);
    driver_.click(found, QPoint(8, found->height() / 2));
  }
  template <class Widget>
  Widget* find(const char* name) const {
    return dialog_->findChild<Widget*>(QString("AssociationBill_") + name);
  }
  QAbstractButton* button(const QString& text) const { return tests::button(dialog_, text); }
  void press(const QString& text) { driver_.click(button(text)); }
  gui::TreeGridView* tree() const { return find<gui::TreeGridView>("right"); }
  /// The numbers of the checked bills, shown or not.
  QList<int> checked() {
    std::vector<proxy::Element*> rows;
    const auto* filter = qobject_cast<QAbstractProxyModel*>(tree()->model());
    dynamic_cast<gui::qce::QCEAssociationBillRightModelImpl&>(*filter->sourceModel())
        .getAllChoosedBills(rows);
    QList<int> numbers;
    const std::vector<Bill*> all = bills();
    for (const proxy::Element* row : rows) {
      for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i]->id() == row->id()) numbers << int(i);
      }
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
  }
  static QString code(const Bill& bill) { return QString::fromStdString(bill.code.str()); }
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
  void toggle(const Bill& bill) { toggle(code(bill)); }
  QString mark(const Bill& bill) const {
    const QModelIndex at = row(code(bill));
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

QCE_WIDGET_TEST_MAIN(AssociationBillViewTest)
#include "tst_association_bill_view.moc"
