#include "engineering/indirect_fee_view.h"
#include "framework/des_filter_view.h"
#include "host/app/scoped_undo.h"
#include "host/base/number_text.h"
#include "host/gui/tree_grid_view.h"
#include "tests/support/files.h"
#include "tests/workbench/window_fixture.h"
#include "workbench/services/templates.h"
#include "workbench/shell/summary_plot.h"
#include "workbench/shell/summary_view.h"

namespace keys = operators::summary_keys;
using operators::SummaryRow;
using shell::SummaryView;
using Kind = records::SummaryLine::Kind;

namespace {

QString money(const costing::Decimal& value) {
  return QString::fromStdString(base::ToThousandthsString(value.toDouble(), 2));
}

}  // namespace

class SummaryPageTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { shell::setUpApplication(*qApp); }

  void init() { f_ = std::make_unique<tests::WindowFixture>(); }
  void cleanup() { f_.reset(); }

  void showsWhatTheRecordsSumUp() {
    openPage();
    for (int i = 0; i < 3; ++i) {
      SummaryView& view = choose(i);
      const auto expected = summarized(static_cast<records::SummaryKind>(i));
      const SummaryRow& last = row(view, -1);
      QCOMPARE(text(view, last, keys::Income), money(expected.income));
      QCOMPARE(text(view, last, keys::Difference), money(expected.difference()));
      QCOMPARE(text(view, last, keys::Share), QString("100.00"));
      QCOMPARE(view.model().rowCount(), static_cast<int>(expected.lines.size()) + 1);
      QVERIFY(view.plot()->bars().size() > 3);
    }
    QVERIFY(f_->channel->messages().empty());
  }

  void followsEditsAndUndoWhileItIsShown() {
    openPage();
    SummaryView& view = choose(0);
    tests::attachTester(&view.model());
    const SummaryRow& total = row(view, -1);
    const QString before = text(view, total, keys::Cost);
    QSignalSpy resets(&view.model(), &QAbstractItemModel::modelReset);

    setFirstPrice(4321);
    const auto expected = [this] { return money(summarized(records::SummaryKind::BidFees).cost); };
    QVERIFY(expected() != before);
    QTRY_COMPARE(text(view, row(view, -1), keys::Cost), expected());
    QCOMPARE(view.plot()->bars().front().cost, row(view, Kind::Element).line().cost.toDouble());
    f_->stack().undo();
    QTRY_COMPARE(text(view, row(view, -1), keys::Cost), before);
    f_->stack().redo();
    QTRY_COMPARE(text(view, row(view, -1), keys::Cost), expected());
    QCOMPARE(resets.size(), 0);  // the rows stay, with selection and folding

    // One that is not shown catches up when it is.
    SummaryView& other = choose(2);
    QCOMPARE(text(other, row(other, -1), keys::Cost), expected());
    f_->stack().undo();
    QTRY_COMPARE(text(other, row(other, -1), keys::Cost), before);
    QCOMPARE(text(view, row(view, -1), keys::Cost).isEmpty(), false);
    choose(0);
    QCOMPARE(text(view, row(view, -1), keys::Cost), before);
  }

  // Losses alone are red; what rounding makes is said to be that.
  void marksLossesAlone() {
    openPage();
    setFirstPrice(4321);
    SummaryView& view = choose(0);
    view.grid()->expandAll();
    const SummaryRow* total = nullptr;
    QTRY_VERIFY((total = &row(view, -1))->line().cost ==
                summarized(records::SummaryKind::BidFees).cost);
    int losses = 0;
    int rounded = 0;
    for (const SummaryRow* each : all(view)) {
      const QModelIndex cell =
          index(view, *each)
              .sibling(index(view, *each).row(), view.model().getColumnIndex(keys::Difference));
      const bool red = cell.data(Qt::ForegroundRole).value<QColor>().red() > 150;
      const QString tip = cell.data(Qt::ToolTipRole).toString();
      const double difference = each->line().difference().toDouble();
      QCOMPARE(tip.contains("成本超出收入"), red);
      if (difference >= 0 || each->line().kind == Kind::Rounding) QVERIFY(!red);
      if (difference <= -1 && each->line().kind != Kind::Rounding) QVERIFY(red);
      losses += red ? 1 : 0;
      rounded += tip.contains("舍入，不是盈亏") ? 1 : 0;
    }
    QVERIFY(losses > 0 && rounded > 2);
    QVERIFY(records::differByRounding(14882807.54, 14882807.90));
    QVERIFY(!records::differByRounding(0.40, 0.76) && !records::differByRounding(50000, 50001));
    QVERIFY(records::differByRounding(5e9, 5e9 + 400) &&
            !records::differByRounding(5e9, 5e9 + 600));
  }

  void linksTableAndBars() {
    openPage();
    SummaryView& view = choose(0);
    shell::SummaryPlot& plot = *view.plot();
    QWidget* canvas = plot.canvas();
    f_->driver.click(canvas, plot.centreOf(1));
    QCOMPARE(QString::fromStdString(current(view)->line().name), plot.bars()[1].name);
    QCOMPARE(plot.current(), 1);

    f_->driver.clickCell(view.grid(), view.model().makeIndex(&row(view, Kind::Margin), 0));
    QVERIFY(plot.current() > 1);
    QCOMPARE(plot.bars()[std::size_t(plot.current())].name, QString("企业管理费和利润"));

    // What is pointed at on one side is marked on the other.
    QTest::mouseMove(canvas, plot.centreOf(2));
    QTRY_VERIFY(view.model().rows().highlighted() != nullptr);
    QCOMPARE(QString::fromStdString(view.model().rows().highlighted()->line().name),
             plot.bars()[2].name);
    const QModelIndex first = view.model().makeIndex(&row(view, Kind::Element), 0);
    QTest::mouseMove(view.grid()->viewport(), view.grid()->visualRect(first).center());
    QTRY_COMPARE(plot.hovered(), 0);
    QTRY_VERIFY(view.model().rows().highlighted() == nullptr);
  }

  void makesRoomForTheTableInANarrowWindow() {
    openPage();
    SummaryView& view = choose(0);
    const auto isBelow = [&view] {
      return view.plot()->mapTo(&view, QPoint()).y() >= view.grid()->geometry().bottom();
    };
    f_->window->resize(1440, 860);
    QTRY_VERIFY(!isBelow());
    f_->window->resize(1024, 720);
    QTRY_VERIFY(isBelow());
    QVERIFY(!view.grid()->horizontalScrollBar()->isVisible());
    const int height = view.grid()->height();
    for (auto* button : view.findChildren<QToolButton*>()) {
      if (button->text() == "显示图") f_->driver.click(button);
    }
    QTRY_VERIFY(!view.plot()->isVisible() && view.grid()->height() > height);
  }

  void leadsToTheItemsOfAnAccountAndOfAUnitWork() {
    openPage();
    SummaryView& accounts = choose(2);
    accounts.grid()->expandAll();
    const SummaryRow* leaf = nullptr;
    for (const SummaryRow* each : all(accounts)) {
      if (each->line().kind == Kind::Account && each->childCount() == 0 && leaf == nullptr) {
        leaf = each;
      }
    }
    QVERIFY(leaf != nullptr);
    const std::string label = leaf->line().name;
    f_->driver.doubleClickCell(accounts.grid(), index(accounts, *leaf));
    QTRY_COMPARE(f_->window->pages()->currentPage(), QString("resources"));
    QWidget* page = f_->window->pages()->currentWidget();
    QCOMPARE(page->findChild<gui::qce::destructors::DesFilterView*>()->getCbkm(), label);
    costing::Decimal cost;
    auto* grid = page->findChild<gui::TreeGridView*>();
    grid->selectAll();
    for (const proxy::Element* element : grid->selectedElements()) {
      const auto* item = dynamic_cast<const records::ResourceItem*>(element);
      if (item == nullptr) continue;
      QVERIFY(item->account() == leaf->line().source);
      cost += item->excludedAmount().value();
    }
    QVERIFY(cost == leaf->line().cost);

    openPage();
    SummaryView& structure = choose(1);
    for (SummaryRow* each : all(structure)) {  // the last unit work
      if (each->structure() != nullptr && each->line().kind == Kind::Structure &&
          each->structure()->kind == records::StructureKind::UnitWork) {
        structure.grid()->selectElements({each});
      }
    }
    structure.grid()->setFocus();
    f_->driver.key(Qt::Key_Return, Qt::ControlModifier);
    QTRY_COMPARE(f_->window->pages()->currentPage(), QString("resources"));
    QCOMPARE(page->findChild<QComboBox*>("ResItem_subProject")->currentIndex(),
             static_cast<int>(project().unitWorks().size()));

    for (const int kind : {0, 1}) {  // a heading of fees leads to the first of them
      openPage();
      SummaryView& view = choose(kind);
      const SummaryRow* fees = nullptr;
      for (const SummaryRow* each : all(view)) {
        if (each->line().kind == Kind::Fees && each->line().source != nullptr) fees = each;
      }
      QVERIFY(fees != nullptr);
      f_->driver.doubleClickCell(view.grid(), index(view, *fees));
      QTRY_VERIFY(f_->window->pages()->currentPage() != "summary");
      QWidget* shown = f_->window->pages()->currentWidget();
      const auto* tree = shown->findChild<gui::qce::QCEIndirectFeeViewImpl*>()->leftTree();
      QCOMPARE(tree->currentElement()->id(), fees->line().source->id());
    }
  }

  void staysOnALineWithoutASource() {
    openPage();
    SummaryView& view = choose(0);
    f_->driver.doubleClickCell(view.grid(), index(view, row(view, Kind::Tax)));
    f_->driver.doubleClick(view.plot()->canvas(),
                           view.plot()->centreOf(int(view.plot()->bars().size()) - 1));
    QCOMPARE(f_->window->pages()->currentPage(), QString("summary"));
    const QModelIndex heading = index(view, row(view, 0));
    QVERIFY(view.grid()->isExpanded(heading));
    f_->driver.doubleClickCell(view.grid(), heading);
    QVERIFY(!view.grid()->isExpanded(heading));
  }

  void showsWhatIsKnownOfTheProject() {
    openPage();
    QVERIFY(f_->window->pages()->setCurrentPage("info"));
    auto* tree = f_->window->findChild<QTreeView*>("QCENavigationTreeView");
    const auto shown = [this] {
      QStringList texts;
      for (const auto* label : f_->window->pages()->currentWidget()->findChildren<QLabel*>()) {
        if (label->isVisible()) texts << label->text();
      }
      return texts.join('\n');
    };
    QTRY_VERIFY(shown().contains("办公楼"));
    f_->driver.clickCell(tree, tree->model()->index(1, 0));
    QTRY_VERIFY(shown().contains(money(project().facts.readBills) + " 元　　一致"));
    project().facts.readFees += 1;
    f_->driver.clickCell(tree, tree->model()->index(0, 0));
    f_->driver.clickCell(tree, tree->model()->index(1, 0));
    QTRY_VERIFY(shown().contains("不一致，相差 1.00 元"));
    QCOMPARE(shown().count("　　一致"), 2);
    f_->driver.clickCell(tree, tree->model()->index(2, 0));
    QTRY_VERIFY(shown().contains("企业管理费和利润"));
  }

  void tellsOfATemplateThatCannotBeUsed() {
    tests::writeFile(f_->path("data/费用模板/投标费用.json"), "{\n\n");
    openPage();
    QVERIFY2(f_->message().contains("第 3 行"), qPrintable(f_->message()));
    QVERIFY(choose(0).model().rowCount() > 1);  // the built-in one stands in
  }

 private:
  records::Project& project() { return f_->records(); }
  void openPage() { f_->open("summary"); }
  records::SummaryLine summarized(records::SummaryKind kind) {
    return records::summarize(project(), kind, services::loadFeeTemplate({}));
  }

  /// Clicks the summary in the list.
  SummaryView& choose(int number) {
    auto* tree = f_->window->findChild<QTreeView*>("QCEFeeSummaryTreeView");
    f_->driver.clickCell(tree, tree->model()->index(number, 0));
    for (auto* view : f_->window->findChildren<SummaryView*>()) {
      if (view->isVisible()) return *view;
    }
    qFatal("no summary is shown");
  }

  static std::vector<SummaryRow*> all(const SummaryView& view) {
    std::vector<SummaryRow*> rows;
    const std::function<void(const QModelIndex&)> collect = [&](const QModelIndex& parent) {
      for (int i = 0; i < view.model().rowCount(parent); ++i) {
        const QModelIndex at = view.model().index(i, 0, parent);
        rows.push_back(view.model().row(at));
        collect(at);
      }
    };
    collect({});
    return rows;
  }

  /// A top row by its number; -1 is the last.
  static SummaryRow& row(const SummaryView& view, int number) {
    const int count = view.model().rowCount();
    return *view.model().row(view.model().index(number < 0 ? count + number : number, 0));
  }
  /// The first of a kind.
  static SummaryRow& row(const SummaryView& view, Kind kind) {
    for (SummaryRow* each : all(view)) {
      if (each->line().kind == kind) return *each;
    }
    qFatal("no such row");
  }
  static QModelIndex index(const SummaryView& view, const SummaryRow& row) {
    return view.model().makeIndex(const_cast<SummaryRow*>(&row), 0);
  }
  static SummaryRow* current(const SummaryView& view) {
    return view.model().row(view.grid()->currentIndex());
  }
  static QString text(const SummaryView& view, const SummaryRow& row, const std::string& key) {
    const int column = view.model().getColumnIndex(key);
    return view.model().makeIndex(const_cast<SummaryRow*>(&row), column).data().toString();
  }

  void setFirstPrice(int price) {
    const auto* group =
        project().categoryGroup(*project().unitWorks().front(), records::Category::Labour);
    const app::ScopedUndo undo("");
    project().set(*static_cast<records::ResourceItem*>(group->rows().at(0)),
                  records::ItemField::Price, costing::PackedDecimal(costing::Decimal(price)));
  }

  std::unique_ptr<tests::WindowFixture> f_;
};

QTEST_MAIN(SummaryPageTest)
#include "tst_summary_page.moc"
