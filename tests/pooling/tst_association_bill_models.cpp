#include <QSignalSpy>
#include <QtTest>

#include "pooling/association_bill_left_model.h"
#include "pooling/association_bill_right_filter_model.h"
#include "pooling/association_bill_right_model.h"
#include "tests/pooling/association_bill_fake.h"
#include "tests/support/chain.h"
#include "tests/support/rows.h"

using Elements = std::vector<proxy::Element*>;
using tests::FakeRightOperator;
using tests::Node;

using Model = gui::qce::QCEAssociationBillRightModelImpl;
using Filter = gui::qce::QCEAssociationBillRightFilterModelImpl;

class AssociationBillModelsTest : public QObject, tests::Chain<FakeRightOperator, Model, Filter> {
  Q_OBJECT

 private slots:
  void init() {
    make();
    show();
  }

  void parentsFollowTheirChildren() {
    QSignalSpy changes(model_.get(), &QAbstractItemModel::dataChanged);
    for (const char* name : {"a1", "a2", "a3", "a3"}) model_->clickedStat(at(name), true);
    QCOMPARE(checked(), QString("A a1 a2 a3"));
    QCOMPARE(changes.size(), 3);  // the row alone, not what follows from it; once
    QCOMPARE(changes.last().at(0).toModelIndex(), box("a3"));
    QCOMPARE(changes.last().at(2).value<QVector<int>>(), QVector<int>{Qt::CheckStateRole});
    model_->clickedStat(at("a1"), false);
    model_->clickedStat(at("B"), true);  // a section alone takes nothing along
    QCOMPARE(checked(), QString("a2 a3 B"));
    QVERIFY(!model_->isSelected(at("U"), false) && model_->isSelected(at("U"), true));
    QVERIFY(!model_->isSelected(at("C"), true));
    model_->clickedStat(nullptr, true);
    QVERIFY(!model_->isSelected(nullptr, true));
    model_->clearChecked();
    QCOMPARE(checked(), QString());
  }

  // Every way to change marks and rows, against a set of elements that follows the same rules.
  void marksMatchAPlainSet() {
    QRandomGenerator random(4711);
    std::set<const Node*> plain;
    int added = 0;
    const auto complete = [&plain](const Node* parent) {
      for (int i = 0; i < parent->childCount(); ++i) {
        if (plain.count(parent->node(i)) == 0) return false;
      }
      return true;
    };
    for (int step = 0; step < 3000; ++step) {
      const std::vector<Node*> rows = op_->tree.all();
      Node* row = rows[random.bounded(static_cast<quint32>(rows.size()))];
      auto* parent = static_cast<Node*>(row->parent());
      const int last = (parent != nullptr ? parent->childCount() : op_->tree.size()) - 1;
      switch (random.bounded(12)) {
        case 0:
          if (rows.size() > 40 || tests::isBill(row)) break;
          model_->beginAddItem(row->node(0), 1, row);
          op_->tree.insert(0, (random.bounded(3) > 0 ? "n" : "N") + std::to_string(++added), row);
          model_->endAddItem();
          break;
        case 1:
          if (parent == nullptr || rows.size() < 6) break;
          for (Node* gone : rows) {
            for (const proxy::Element* up = gone; up != nullptr; up = up->parent()) {
              if (up == row) plain.erase(gone);
            }
          }
          model_->beginDelItem(row, 1, parent);
          op_->tree.remove(row->row(), 1, parent);
          model_->endDelItem();
          break;
        case 2:
          if (row->row() == last) break;
          model_->beginMoveDownItem(row, parent);
          op_->tree.move(row->row(), row->row() + 1, parent);
          model_->endMoveDownItem();
          break;
        case 3:
          model_->reorder(
              [descending = random.bounded(2) > 0](proxy::Element* a, proxy::Element* b) {
                const bool less = static_cast<Node*>(a)->name() < static_cast<Node*>(b)->name();
                return descending ? !less && a != b : less;
              });
          break;
        default: {
          const bool on = random.bounded(3) > 0;
          model_->clickedStat(row, on);
          if (on && plain.insert(row).second) {
            if (parent != nullptr && complete(parent)) plain.insert(parent);
          } else if (!on && plain.erase(row) > 0) {
            plain.erase(parent);
          }
        }
      }
      std::size_t bills = 0;
      for (Node* node : op_->tree.all()) {
        QCOMPARE(model_->isSelected(node, false), plain.count(node) > 0);
        if (tests::isBill(node)) bills += plain.count(node);
      }
      Elements chosen;
      model_->getAllChoosedBills(chosen);
      QCOMPARE(chosen.size(), bills);
      QVERIFY(std::is_sorted(chosen.begin(), chosen.end(), [this](auto* a, auto* b) {
        return model_->makeIndex(a, 0) < model_->makeIndex(b, 0);
      }));
    }
  }

  void settingACheckStateReachesUpAndDown() {
    check("B");
    QCOMPARE(checked(), QString("B b1 C c1 c2"));
    check("a1");
    check("a2");
    check("a3");
    QCOMPARE(checked(), QString("U A a1 a2 a3 B b1 C c1 c2"));  // two floors up, too
    check("c2", false);
    QCOMPARE(checked(), QString("A a1 a2 a3 b1 c1"));
    check("U");
    check("U", false);
    QCOMPARE(checked(), QString());
    QVERIFY(!model_->setData(box("a1"), "x", Qt::EditRole));
    QVERIFY(!model_->setData(model_->makeIndex(at("a1"), 1), Qt::Checked, Qt::CheckStateRole));
    QVERIFY(!model_->setData({}, Qt::Checked, Qt::CheckStateRole));
  }

  void resetChecksWhatIsAssociated() {
    op_->associated = {"a2", "c1", "c2"};
    check("a1");
    model_->resetModel();
    QCOMPARE(checked(), QString("a2 C c1 c2"));
    proxy::Element* item = at("a1");
    model_->setBaseResItem({item});
    QVERIFY(op_->baseItems == Elements{item});
    QCOMPARE(checked(), QString());
    check("a1");
    model_->setSubProject(item);
    QCOMPARE(op_->subProject, item);
    QCOMPARE(checked(), QString());

    tests::FakeLeftOperator leftOperator;
    gui::qce::QCEAssociationBillLeftModelImpl left;
    tests::attachTester(&left);
    left.setDisplayTable(&leftOperator.table);
    left.setOperator(&leftOperator);
    left.setSubProject(item);
    QCOMPARE(leftOperator.subProject, item);
    QSignalSpy resets(&left, &QAbstractItemModel::modelReset);
    left.resetModel();
    QCOMPARE(resets.size(), 1);
    QVERIFY(!left.setData(left.index(0, 0), "x", Qt::EditRole));
    QCOMPARE(left.index(0, 0).data(Qt::ToolTipRole).toString(), QString("清单U"));
  }

  void marksGoToTheHost() {
    op_->associated = {"a2", "b1"};
    model_->resetModel();
    check("a2", false);
    check("a3");
    check("c1");
    QVERIFY(filter_->associationBill(true));
    QCOMPARE(op_->asked, std::string("+a3,c1 -a2 unify"));
    op_->accept = false;
    QVERIFY(!filter_->associationBill(false));
    check("C");
    QVERIFY(!filter_->associationGroup());
    QCOMPARE(op_->asked, std::string("+c1,c2 -"));
    op_->unified = true;  // stays so for the bills that are associated already
    filter_->associationGroup();
    QCOMPARE(op_->asked, std::string("+c1,c2 - unify"));
    QCOMPARE(checked(), QString("a3 B b1 C c1 c2"));  // a refusal leaves the marks
  }

  void showsNumbersOfBillsAlone() {
    const int amount = model_->getColumnIndex(domain::keys::SEAmount);
    QCOMPARE(model_->makeIndex(at("a1"), amount).data().toString(), QString("1.50"));
    QCOMPARE(model_->makeIndex(at("a2"), amount).data().toString(), QString("1.500"));
    QVERIFY(!model_->makeIndex(at("A"), amount).data().isValid());
    QVERIFY(!model_->makeIndex(at("a1"), 1).data(Qt::CheckStateRole).isValid());
    QVERIFY(model_->flags(box("a1")).testFlag(Qt::ItemIsUserCheckable));
    QCOMPARE(model_->getBranch(at("B")).size(), std::size_t(5));
  }

  void narrowsByTextSectionAndMark_data() {
    const tests::Rows<QString, std::string, bool, QString> row;
    row("all", "", "", false, "U(A(a1 a2 a3) B(b1 C(c1 c2)))");
    row("text", "1", "", false, "U(A(a1) B(b1 C(c1)))");
    row("no such text", "9", "", false, "");
    row("section", "", "C", false, "U(B(C(c1 c2)))");
    row("section above", "", "B", false, "U(B(b1 C(c1 c2)))");
    row("checked", "", "", true, "U(A(a1 a2) B(C(c2)))");
    row("checked with text", "2", "", true, "U(A(a2) B(C(c2)))");
    row("all three", "2", "A", true, "U(A(a2))");
  }
  void narrowsByTextSectionAndMark() {
    const auto [text, section, selected, rows] =
        tests::fetch<QString, std::string, bool, QString>();
    for (const char* name : {"a1", "a2", "c2"}) check(name);
    filter_->filterType(text.toStdString());
    if (!section.empty()) filter_->setSection(at(section));
    filter_->filterType(selected);
    QCOMPARE(shown(), rows);
    QCOMPARE(checked(), QString("a1 a2 c2"));
    filter_->filterType(std::string());
    filter_->setSection(nullptr);
    filter_->filterType(false);
    QCOMPARE(shown(), QString("U(A(a1 a2 a3) B(b1 C(c1 c2)))"));
  }

  void checkingASectionReachesShownBillsAlone() {
    const auto section = [this](const std::string& name) {
      return filter_->makeIndex(at(name), 0);
    };
    filter_->filterType(std::string("1"));
    QVERIFY(filter_->setData(section("U"), Qt::Checked, Qt::CheckStateRole));
    QCOMPARE(checked(), QString("a1 b1 c1"));
    filter_->filterType(std::string());
    QVERIFY(filter_->setData(section("A"), Qt::Checked, Qt::CheckStateRole));
    QVERIFY(filter_->setData(section("C"), Qt::Checked, Qt::CheckStateRole));
    QCOMPARE(checked(), QString("U A a1 a2 a3 B b1 C c1 c2"));
    filter_->filterType(std::string("2"));
    QVERIFY(filter_->setData(section("U"), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(checked(), QString("a1 a3 b1 c1"));
  }

  void rowsGoAndComeWithTheirMarks() {
    check("U");
    filter_->filterType(true);
    QVERIFY(filter_->setData(filter_->makeIndex(at("B"), 0), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(shown(), QString("U(A(a1 a2 a3))"));
    filter_->clickedStat(at("a2"), false);
    QCOMPARE(shown(), QString("U(A(a1 a3))"));
    filter_->clickedStat(at("c1"), true);
    QCOMPARE(shown(), QString("U(A(a1 a3) B(C(c1)))"));
    filter_->clearChecked();
    QCOMPARE(shown(), QString());
    filter_->resetModel();
    filter_->filterType(false);
    QCOMPARE(shown(), QString("U(A(a1 a2 a3) B(b1 C(c1 c2)))"));
  }

  void doesNothingWithoutOperatorOrSource() {
    Filter orphan(nullptr);
    Model empty;
    Filter filter(&empty);
    for (Filter* each : {&orphan, &filter}) {
      Elements out;
      each->resetModel();
      each->clickedStat(at("a1"), true);
      each->getAllChoosedBills(out);
      each->getAssociationBills(out);
      each->filterType(true);
      QVERIFY(out.empty() && !each->associationBill(true) && !each->associationGroup());
    }
  }

 private:
  Node* at(const std::string& name) const { return op_->tree.at(name); }
  QModelIndex box(const std::string& name) const { return model_->makeIndex(at(name), 0); }
  void check(const std::string& name, bool on = true) {
    QVERIFY(model_->setData(box(name), on ? Qt::Checked : Qt::Unchecked, Qt::CheckStateRole));
  }
  /// The checked rows in the order of the tree, as the check boxes show them.
  QString checked() const {
    QStringList names;
    for (Node* node : op_->tree.all()) {
      const int state = model_->makeIndex(node, 0).data(Qt::CheckStateRole).toInt();
      if (state == Qt::Checked) names << QString::fromStdString(node->name());
    }
    return names.join(' ');
  }
};

QTEST_GUILESS_MAIN(AssociationBillModelsTest)
#include "tst_association_bill_models.moc"
