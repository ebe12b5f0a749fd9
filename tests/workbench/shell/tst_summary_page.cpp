#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTreeView>
#include <QUndoStack>
#include <QtTest>

#include "framework/des_filter_view.h"
#include "host/app/scoped_undo.h"
#include "host/base/number_text.h"
#include "host/gui/tree_grid_view.h"
#include "tests/support/tester_proxy.h"
#include "workbench/cli/driver.h"
#include "workbench/cli/sheet_check.h"
#include "workbench/controllers/open_project.h"
#include "workbench/exchange/sample_generator.h"
#include "workbench/exchange/spreadsheet_reader.h"
#include "workbench/services/fee_template.h"
#include "workbench/services/install.h"
#include "workbench/shell/application.h"
#include "workbench/shell/main_window.h"
#include "workbench/shell/page_stack.h"
#include "workbench/shell/session.h"
#include "workbench/shell/summary_plot.h"
#include "workbench/shell/summary_view.h"
#include "workbench/store/project_file.h"

using operators::SummaryRow;
using shell::SummaryView;
using Kind = records::SummaryLine::Kind;

namespace {

class GivenFile : public shell::FileChooser {
 public:
  explicit GivenFile(QString path) : path_(std::move(path)) {}
  QString spreadsheetToWrite(QWidget*, const QString& suggestion) override {
    suggested = suggestion;
    return path_;
  }
  QString suggested;

 private:
  QString path_;
};

QString money(const costing::Decimal& value) {
  return QString::fromStdString(base::ToThousandthsString(value.toDouble(), 2));
}

}  // namespace

class SummaryPageTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { shell::setUpApplication(*qApp); }

  void init() {
    dir_ = std::make_unique<QTemporaryDir>();
    auto channel = std::make_unique<services::RecordingChannel>();
    channel_ = channel.get();
    services_ = services::install(std::make_unique<services::PathManager>(dir_->path()),
                                  std::move(channel));
    const auto source = exchange::SampleGenerator::officeBuilding(exchange::SourceKind::Bid);
    store::Failure failure;
    QVERIFY(store::ProjectFile::create(path(), &source, {"办公楼", "投标成本测算", {}}, failure));
    window_ = std::make_unique<shell::MainWindow>(*services_);
    window_->resize(1440, 860);
    window_->show();
    QVERIFY(QTest::qWaitForWindowActive(window_.get()));
  }

  void cleanup() {
    window_.reset();
    services_.reset();
    dir_.reset();
  }

  void showsThreeSummariesWithOneTotal() {
    openPage();
    const records::FeeTemplate fees = services::loadFeeTemplate({});
    QStringList totals;
    for (int i = 0; i < 3; ++i) {
      SummaryView& view = choose(i);
      const auto expected =
          records::summarize(project(), static_cast<records::SummaryKind>(i), fees);
      const SummaryRow& last = row(view, -1);
      QCOMPARE(last.line().kind, Kind::Total);
      totals << text(view, last, operators::summary_keys::Income) + " " +
                    text(view, last, operators::summary_keys::Cost) + " " +
                    text(view, last, operators::summary_keys::Difference);
      QCOMPARE(totals.back(), money(expected.income) + " " + money(expected.cost) + " " +
                                  money(expected.difference()));
      QCOMPARE(text(view, last, operators::summary_keys::Share), QString("100.00"));
      QCOMPARE(view.model().rowCount(), static_cast<int>(expected.lines.size()) + 1);
      QVERIFY(view.plot()->bars().size() > 3);
      if (const QByteArray pictures = qgetenv("QCE_TEST_PICTURES"); !pictures.isEmpty()) {
        window_->grab().save(QString("%1/summary-%2.png").arg(QString(pictures)).arg(i));
      }
    }
    QCOMPARE(QSet<QString>(totals.begin(), totals.end()).size(), 1);
    QCOMPARE(channel_->messages().size(), std::size_t(0));
  }

  void followsEditsAndUndoWhileItIsShown() {
    openPage();
    SummaryView& view = choose(0);
    tests::attachTester(&view.model());
    const SummaryRow& total = row(view, -1);
    const QString before = text(view, total, operators::summary_keys::Cost);
    QSignalSpy resets(&view.model(), &QAbstractItemModel::modelReset);

    setFirstPrice(4321);
    const auto expected = [this] {
      return money(records::summarize(project(), records::SummaryKind::BidFees,
                                      services::loadFeeTemplate({}))
                       .cost);
    };
    QVERIFY(expected() != before);
    QTRY_COMPARE(text(view, row(view, -1), operators::summary_keys::Cost), expected());
    QCOMPARE(view.plot()->bars().front().cost, row(view, Kind::Element).line().cost.toDouble());
    window_->session()->undoStack().undo();
    QTRY_COMPARE(text(view, row(view, -1), operators::summary_keys::Cost), before);
    window_->session()->undoStack().redo();
    QTRY_COMPARE(text(view, row(view, -1), operators::summary_keys::Cost), expected());
    QCOMPARE(resets.size(), 0);  // the rows stay, with selection and folding

    // One that is not shown catches up when it is.
    SummaryView& other = choose(2);
    QCOMPARE(text(other, row(other, -1), operators::summary_keys::Cost), expected());
    window_->session()->undoStack().undo();
    QTRY_COMPARE(text(other, row(other, -1), operators::summary_keys::Cost), before);
    QCOMPARE(text(view, row(view, -1), operators::summary_keys::Cost).isEmpty(), false);
    choose(0);
    QCOMPARE(text(view, row(view, -1), operators::summary_keys::Cost), before);
  }

  void linksTableAndBars() {
    openPage();
    SummaryView& view = choose(0);
    shell::SummaryPlot& plot = *view.plot();
    QWidget* canvas = plot.canvas();
    driver_.click(canvas, plot.centreOf(1));
    QCOMPARE(QString::fromStdString(current(view)->line().name), plot.bars()[1].name);
    QCOMPARE(plot.current(), 1);

    driver_.clickCell(view.grid(), view.model().makeIndex(&row(view, Kind::Margin), 0));
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

  void leadsToTheResourceItemsOfAnElement() {
    openPage();
    SummaryView& view = choose(0);
    driver_.doubleClickCell(view.grid(), view.model().makeIndex(&row(view, Kind::Element), 1));
    QTRY_COMPARE(window_->pages()->currentPage(), QString("resources"));
    auto* grid = window_->pages()->currentWidget()->findChild<gui::TreeGridView*>();
    const auto chosen = grid->selectedElements();
    QVERIFY(!chosen.empty());
    costing::Decimal cost;
    for (const proxy::Element* element : chosen) {
      const auto* group = dynamic_cast<const records::ResourceGroup*>(element);
      QVERIFY(group != nullptr && group->category() == records::Category::Labour);
      cost += group->totals().excluded;
    }
    QVERIFY(cost == row(view, Kind::Element).line().cost);
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
    driver_.doubleClickCell(accounts.grid(), index(accounts, *leaf));
    QTRY_COMPARE(window_->pages()->currentPage(), QString("resources"));
    QWidget* page = window_->pages()->currentWidget();
    QCOMPARE(page->findChild<gui::qce::destructors::DesFilterView*>()->getCbkm(), label);
    const auto shown = [page] {
      QSet<const records::ResourceItem*> items;
      auto* grid = page->findChild<gui::TreeGridView*>();
      grid->selectAll();
      for (const proxy::Element* element : grid->selectedElements()) {
        if (const auto* item = dynamic_cast<const records::ResourceItem*>(element)) items << item;
      }
      return items;
    };
    costing::Decimal cost;
    for (const auto* item : shown()) {
      QVERIFY(item->account() == leaf->line().source);
      cost += item->excludedAmount().value();
    }
    QVERIFY(cost == leaf->line().cost);

    openPage();
    SummaryView& structure = choose(1);
    const SummaryRow* work = nullptr;
    for (const SummaryRow* each : all(structure)) {
      if (each->structure() != nullptr && each->line().kind == Kind::Structure &&
          each->structure()->kind == records::StructureKind::UnitWork) {
        work = each;  // the last one
      }
    }
    structure.grid()->selectElements({const_cast<SummaryRow*>(work)});
    structure.grid()->setFocus();
    driver_.key(Qt::Key_Return, Qt::ControlModifier);
    QTRY_COMPARE(window_->pages()->currentPage(), QString("resources"));
    QCOMPARE(page->findChild<QComboBox*>("ResItem_subProject")->currentIndex(),
             static_cast<int>(project().unitWorks().size()));
    for (const auto* item : shown()) {
      QVERIFY(&item->group()->unitWork() == work->line().source);
    }
    QVERIFY(!shown().isEmpty());
  }

  void staysOnALineWithoutASource() {
    openPage();
    SummaryView& view = choose(0);
    driver_.doubleClickCell(view.grid(), index(view, row(view, Kind::Tax)));
    driver_.doubleClick(view.plot()->canvas(),
                        view.plot()->centreOf(int(view.plot()->bars().size()) - 1));
    QCOMPARE(window_->pages()->currentPage(), QString("summary"));
    const QModelIndex heading = index(view, row(view, 0));
    QVERIFY(view.grid()->isExpanded(heading));
    driver_.doubleClickCell(view.grid(), heading);
    QVERIFY(!view.grid()->isExpanded(heading));
  }

  void exportsTheSummaryThatIsShown() {
    openPage();
    auto chooser = std::make_unique<GivenFile>(dir_->filePath("out.xlsx"));
    const GivenFile* asked = chooser.get();
    window_->setFileChooser(std::move(chooser));
    SummaryView& view = choose(1);
    view.grid()->setFocus();
    driver_.key(Qt::Key_E, Qt::ControlModifier);
    const exchange::ReadWorkbook book = exchange::readSpreadsheet(dir_->filePath("out.xlsx"));
    QCOMPARE(book.problem, QString());
    QVERIFY2(asked->suggested.contains("按项目结构汇总"), qPrintable(asked->suggested));
    QCOMPARE(cli::sheetDifference(book.sheets.front(), *view.grid()), QString());
  }

  void showsWhatIsKnownOfTheProject() {
    openPage();
    QVERIFY(window_->pages()->setCurrentPage("info"));
    auto* tree = window_->findChild<QTreeView*>("QCENavigationTreeView");
    const auto shown = [this] {
      QStringList texts;
      for (const auto* label : window_->pages()->currentWidget()->findChildren<QLabel*>()) {
        if (label->isVisible()) texts << label->text();
      }
      return texts.join('\n');
    };
    QTRY_VERIFY(shown().contains("办公楼"));
    driver_.clickCell(tree, tree->model()->index(1, 0));
    QTRY_VERIFY(shown().contains(money(project().facts.readBills)));
    driver_.clickCell(tree, tree->model()->index(2, 0));
    QTRY_VERIFY(shown().contains("企业管理费和利润"));
    if (const QByteArray pictures = qgetenv("QCE_TEST_PICTURES"); !pictures.isEmpty()) {
      window_->grab().save(QString("%1/info.png").arg(QString(pictures)));
    }
  }

  void tellsOfATemplateThatCannotBeUsed() {
    QVERIFY(QDir(dir_->path()).mkpath("data/费用模板"));
    QFile file(dir_->filePath("data/费用模板/投标费用.json"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("{\n\n") > 0);
    file.close();
    openPage();
    QCOMPARE(channel_->messages().size(), std::size_t(1));
    QVERIFY(channel_->messages().front().text.find("第 3 行") != std::string::npos);
    QVERIFY(choose(0).model().rowCount() > 1);  // the built-in one stands in
  }

 private:
  QString path() const { return dir_->filePath("办公楼.qcp"); }
  records::Project& project() { return window_->session()->project().project(); }

  void openPage() {
    QVERIFY(window_->openProject(path()));
    QVERIFY(window_->pages()->setCurrentPage("summary"));
  }

  /// Clicks the summary in the list.
  SummaryView& choose(int number) {
    auto* tree = window_->findChild<QTreeView*>("QCEFeeSummaryTreeView");
    driver_.clickCell(tree, tree->model()->index(number, 0));
    for (auto* view : window_->findChildren<SummaryView*>()) {
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
    auto* group = static_cast<records::ResourceGroup*>(
        project().categoryGroup(*project().unitWorks().front(), records::Category::Labour));
    auto& item = *static_cast<records::ResourceItem*>(group->rows().at(0));
    const app::ScopedUndo undo("");
    project().set(item, records::ItemField::Price, costing::PackedDecimal(costing::Decimal(price)));
  }

  std::unique_ptr<QTemporaryDir> dir_;
  services::RecordingChannel* channel_ = nullptr;
  std::unique_ptr<services::Installed> services_;
  std::unique_ptr<shell::MainWindow> window_;
  cli::Driver driver_;
};

QTEST_MAIN(SummaryPageTest)
#include "tst_summary_page.moc"
