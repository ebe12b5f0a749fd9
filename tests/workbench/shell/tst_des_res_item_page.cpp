#include <map>
#include <tuple>

#include "destructors/res_item_summary_models.h"
#include "destructors/res_item_summary_view.h"
#include "destructors/res_item_view.h"
#include "host/base/number_text.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/domain/qce/destructors/des_res_item_keys.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "tests/workbench/project_fixture.h"
#include "tests/workbench/window_fixture.h"
#include "workbench/controllers/des_res_item_controller.h"
#include "workbench/records/bill_costs.h"

namespace keys = domain::keys;
using costing::Decimal;
using gui::qce::destructors::DesResItemViewImpl;
using operators::DesResItemOperator;
using records::ResourceItem;

// What the commands do to the project and to other pages; the tour works them with the mouse.
class TestDesResItemPage : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    f_ = std::make_unique<tests::WindowFixture>();
    window_ = f_->window.get();
    window_->resize(1440, 700);
    f_->open("design-resources");
    page_ = window_->session()->page("design-resources")->widget;
    view_ = page_->findChild<DesResItemViewImpl*>();
    grid_ = view_->findChild<gui::TreeGridView*>();
    tests::attachTester(grid_->model());
    rows_ = std::make_unique<DesResItemOperator>(project(), openProject().resItemOperator());
    rows_->rebuildGroup();
    controller_ = std::make_unique<controllers::DesResItemController>(
        project(), *rows_, openProject().resItemController());
  }

  void cleanup() {
    controller_.reset();
    rows_.reset();
    f_.reset();
  }

  void collectsIntoANewEntryOrOneThatIsThere() {
    const std::string before = project().dump();
    const Decimal cost = project().totals().excluded;
    const auto labour = itemsOf(records::Category::Labour);
    const auto material = itemsOf(records::Category::Material);
    const Rows pair{row(labour[0]), row(labour[1])};
    const auto proposal = controller_->getCollectionTargets(pair);
    QCOMPARE(proposal.size(), std::size_t(1));
    QVERIFY(proposal[0].metering.find("按实际数量") == 0);

    for (const char* price : {"", "12*(", "-3", "abc"}) {
      QVERIFY(!controller_->setCollection(pair, {nullptr, nullptr, "特征", price}));
      QVERIFY2(message().contains("劳务、专业分包单价"), qPrintable(message()));
    }
    QVERIFY(project().dump() == before);
    records::CostAccount* account = project().allAccounts().back();
    QVERIFY(controller_->setCollection(pair, {nullptr, account, "特征", "100/3"}));
    auto& entry = *static_cast<records::Subcontract*>(project().subcontracts().rows().at(0));
    const Decimal quantity = labour[0]->quantity().value() + labour[1]->quantity().value();
    QCOMPARE(entry.amount().toString(),
             (quantity * *Decimal::parse("33.33")).rounded(2).toString());
    QVERIFY(entry.account == account && entry.features.str() == "特征");
    QVERIFY(entry.taxRate == labour[0]->taxRate().value() && !entry.taxRate.isZero());
    QCOMPARE(controller_->getClosedReason(pair[0]),
             "已归集到分包“" + entry.name.str() + "”，请先取消归集");
    QVERIFY(controller_->isClosed(pair[0]) && !controller_->isClosed(row(labour[2])));

    // One that is collected already is named, and no other one is touched.
    QVERIFY(!controller_->setCollection({row(labour[2]), pair[1]}, {&entry, nullptr, "", ""}));
    QVERIFY2(message().contains(QString::fromStdString(labour[1]->code().str())),
             qPrintable(message()));
    QVERIFY(labour[2]->subcontract() == nullptr);
    controller_->unlinkFromCost(pair);
    QVERIFY(message().contains("取消归集"));

    // Units that differ make a lump sum of what the items cost.
    const auto effect = controller_->getCollectionEffect(pair, {&entry, nullptr, "", ""});
    QCOMPARE(effect.leaves + " " + effect.pays,
             "0.00 " + base::ToThousandthsString(entry.amount().toDouble(), 2));
    const Rows mixed{row(labour[2]), row(material[0])};
    const auto offers = controller_->getCollectionTargets(mixed);
    QCOMPARE(offers.size(), std::size_t(2));
    QVERIFY(offers[0].metering.find("总价包干") == 0);
    QVERIFY(controller_->setCollection(mixed, {nullptr, nullptr, "", offers[0].price}));
    QCOMPARE(project().subcontracts().size(), 2);
    QVERIFY(controller_->setCollection({row(material[1])}, {&entry, nullptr, "", "不算"}));
    QVERIFY(material[1]->subcontract() == &entry);

    Decimal out;
    for (const ResourceItem* item : {labour[0], labour[1], labour[2], material[0], material[1]}) {
      out += project().amountIfCounted(*item);
    }
    QVERIFY(project().totals().excluded == cost - out);
    // What the entries pay is offered to go with their last items, and stays where that is refused.
    const auto total = [this] {
      return project().totals().excluded + project().subcontractTotals().excluded;
    };
    const Decimal collected = total();
    const Decimal lump =
        static_cast<const records::Subcontract*>(project().subcontracts().rows().at(1))->amount();
    QUndoStack& undo = f_->stack();
    const Rows all{pair[0], pair[1], mixed[0], mixed[1], row(material[1])};
    f_->channel->clear();
    controller_->cancelCollection(pair);  // one is left in the entry
    QVERIFY(f_->channel->messages().empty());
    undo.undo();
    f_->channel->answerNext(QMessageBox::No);
    controller_->cancelCollection(mixed);
    QVERIFY2(message().contains("是否同时删除"), qPrintable(message()));
    QCOMPARE(project().subcontracts().size(), 2);
    QVERIFY(total() == collected + lump);
    undo.undo();
    const int step = undo.index();
    f_->channel->answerNext(QMessageBox::Yes);
    controller_->cancelCollection(all);
    QCOMPARE(undo.index(), step + 1);
    QCOMPARE(project().subcontracts().size(), 0);
    QVERIFY(total() == cost);
    undo.undo();
    QVERIFY(total() == collected && project().subcontracts().size() == 2);
    undo.redo();
    controller_->cancelCollection(pair);
    QVERIFY(message().contains("没有归集"));
    controller_->linkToCost(pair);
    QVERIFY(message().contains("无需关联"));
    while (f_->stack().canUndo()) f_->stack().undo();
    QVERIFY(project().dump() == before);
  }

  // What is given to a subcontract and still costs its own money is said until it is collected.
  void leadsFromASubcontractToWhatCountsTwice() {
    QVERIFY(window_->pages()->setCurrentPage("subcontracts"));
    auto* hint = window_->findChild<QWidget*>("subcontractHint");
    QVERIFY(!hint->isVisible());
    std::vector<records::Bill*> bills;
    for (const ResourceItem* item : itemsOf(records::Category::Labour)) {
      for (const records::BillLine& line : project().linesOf(*item)) {
        if (bills.size() < 3 && (bills.empty() || bills.back() != line.bill)) {
          bills.push_back(line.bill);
        }
      }
    }
    records::SubcontractData data;
    data.name = project().texts.intern("劳务");
    data.metering = records::MeteringMethod::LumpSum;
    data.price = 1000;
    records::Subcontract* entry = nullptr;
    {
      const app::ScopedUndo undo("");
      entry = &project().addSubcontract(data);
      project().assign(*entry, bills);
    }
    const auto twice = [&] {
      const records::BillCosts costs(project());
      Decimal sum;
      for (const records::Bill* bill : bills) sum += costs.of(*bill) - costs.subcontracted(*bill);
      return QString::fromStdString(base::ToThousandthsString(sum.toDouble(), 2)) + " 元";
    };
    const auto says = [hint](const QString& what) {
      return hint->isVisible() && hint->findChild<QLabel*>()->text().contains(what);
    };
    QTRY_VERIFY(says(twice()));
    ResourceItem& first = *project().bookings().itemsOf(*bills[0]).front();
    const QString before = twice();
    {
      const app::ScopedUndo undo("");
      project().set(first, records::ItemField::Price, costing::PackedDecimal(Decimal(777)));
      project().associate(first, *bills[1], false);  // booked items count as well
    }
    QVERIFY(twice() != before);
    QTRY_VERIFY(says(twice()));

    QTest::mouseClick(hint->findChild<QPushButton*>(), Qt::LeftButton);
    QCOMPARE(window_->pages()->currentPage(), QString("design-resources"));
    const Rows selected = view_->selectedItems();
    QVERIFY(selected.size() > 1);
    QVERIFY(controller_->setCollection(selected, {entry, nullptr, "", ""}));
    QVERIFY(window_->pages()->setCurrentPage("subcontracts"));
    QTRY_VERIFY(!hint->isVisible());
    f_->stack().undo();
    QTRY_VERIFY(says(twice()) && says(QString(" %1 项").arg(selected.size())));
    f_->stack().redo();
    QTRY_VERIFY(!hint->isVisible());
  }

  void summaryAddsUpEqualResources() {
    // The same resource at another price in one sub-project, and one that waits.
    const auto labour = itemsOf(records::Category::Labour);
    controller_->unlinkFromCost({row(labour[0])});
    controller_->setCollection({row(labour[1])}, {nullptr, nullptr, "", "1"});
    auto* tabs = page_->findChild<QTabBar*>();
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
    auto* summary = page_->findChild<gui::qce::destructors::DesResItemSummaryViewImpl*>();
    QAbstractItemModel& table = *summary->tableView()->table()->model();
    gui::TreeGridView& guide = *summary->guideView()->tree();
    tests::attachTester(&table);
    tests::attachTester(guide.model());

    using Key = std::tuple<std::string, std::string, std::string, std::string, double>;
    std::map<Key, double> quantities;
    for (const ResourceItem* item : tests::ProjectFixture::itemsOf(project())) {
      quantities[{records::nameOf(item->category()), item->name().str(), item->spec().str(),
                  item->unit().str(), item->price().toDouble()}] += item->quantity().toDouble();
    }
    QCOMPARE(table.rowCount(), int(quantities.size()));
    QVERIFY(quantities.size() < tests::ProjectFixture::itemsOf(project()).size());
    const auto cell = [&](int at, const std::string& key) {
      return table.index(at, summary->tableView()->table()->viewModel()->getColumnIndex(key))
          .data(Qt::EditRole);
    };
    for (int at = 0; at < table.rowCount(); ++at) {
      const auto text = [&](const std::string& key) {
        return cell(at, key).toString().toStdString();
      };
      const Key key{text(keys::BRIType), text(keys::BRIName), text(keys::BRISpec),
                    text(keys::BRIUnit), cell(at, keys::BRIExcludedTaxFee).toDouble()};
      QVERIFY(std::fabs(quantities.at(key) - cell(at, keys::BRIAmount).toDouble()) < 1e-6);
    }

    // What an entry of the guide says is what its rows add up to.
    int entries = 0;
    const std::function<void(const QModelIndex&)> visit = [&](const QModelIndex& parent) {
      for (int at = 0; at < guide.model()->rowCount(parent); ++at) {
        const QModelIndex entry = guide.model()->index(at, 0, parent);
        guide.setCurrentIndex(entry);
        visit(entry);
        guide.setCurrentIndex(entry);
        if (guide.model()->rowCount(entry) > 0) continue;
        double sum = 0;
        for (int i = 0; i < table.rowCount(); ++i) {
          sum += cell(i, keys::BRIMarketTotalCost).toDouble();
        }
        QVERIFY(std::fabs(sum - entry.sibling(at, 2).data(Qt::EditRole).toDouble()) < 0.005);
        ++entries;
      }
    };
    visit({});
    QVERIFY(entries > 8);
    const QModelIndex given = guide.model()->index(4, 0);  // to any subcontract
    guide.setCurrentIndex(given);
    QCOMPARE(table.rowCount(), 1);
    QCOMPARE(cell(0, keys::BRIMarketTotalCost), given.sibling(4, 2).data(Qt::EditRole));
    auto* text = summary->findChild<QLineEdit*>("DesResItemSummary_text");
    text->setText("没有这样的人材机");
    QTest::keyClick(text, Qt::Key_Return);
    QCOMPARE(table.rowCount(), 0);
    text->clear();
    QTest::keyClick(text, Qt::Key_Return);
    guide.setCurrentIndex(guide.model()->index(1, 0));  // what waits
    QCOMPARE(table.rowCount(), 1);
    QCOMPARE(cell(0, keys::BRIName).toString().toStdString(), labour[0]->name().str());
    f_->stack().undo();
    f_->stack().undo();
    QTRY_COMPARE(table.rowCount(), 0);
  }

  void hearsOfOtherPagesAndKeepsItsOrderToItself() {
    ResourceItem& item = *itemsOf(records::Category::Labour).front();
    const std::string before = project().dump();
    const auto rowOrder = [&] {
      std::vector<std::int64_t> ids;
      for (const ResourceItem* each : tests::ProjectFixture::itemsOf(project()))
        ids.push_back(each->id());
      return ids;
    };
    const auto order = rowOrder();
    const auto* view = grid_->viewModel();
    const auto topItem = [this] {
      const QModelIndex category = grid_->model()->index(0, 0, grid_->model()->index(0, 0));
      return grid_->elementAt(grid_->model()->index(0, 0, category));
    };
    const proxy::Element* top = topItem();
    grid_->sortByColumn(view->getColumnIndex(keys::BRIMarketTotalCost), Qt::DescendingOrder);
    QTRY_VERIFY(topItem() != top);
    QVERIFY(rowOrder() == order && project().dump() == before);

    QVERIFY(window_->pages()->setCurrentPage("resources"));
    {
      const app::ScopedUndo undo("");
      project().set(item, records::ItemField::Price, costing::PackedDecimal(Decimal(777)));
    }
    open();
    const auto shown = [&](const ResourceItem& of) {
      const QModelIndexList found = grid_->model()->match(
          grid_->model()->index(0, view->getColumnIndex(keys::BRICode)), Qt::DisplayRole,
          QString::fromStdString(of.code().str()), 1, Qt::MatchExactly | Qt::MatchRecursive);
      return found.value(0);
    };
    QCOMPARE(shown(item)
                 .sibling(shown(item).row(), view->getColumnIndex(keys::BRIExcludedTaxFee))
                 .data()
                 .toString(),
             QString("777.00"));

    // An item of one's own comes in, has no source, and goes.
    controller_->insertItem(row(&item));
    const auto labour = itemsOf(records::Category::Labour);
    const auto& own = *std::find_if(labour.begin(), labour.end(), [](const ResourceItem* each) {
      return each->code().str() == "补充人工001";
    });
    QVERIFY(shown(*own).isValid());
    view_->showItems({grid_->elementAt(shown(*own))});
    view_->onFindSource();
    QVERIFY2(message().contains("没有来源清单"), qPrintable(message()));
    const auto count = project().itemCount();
    view_->deleteItem();
    QCOMPARE(project().itemCount(), count - 1);
    QCOMPARE(grid_->model()
                 ->match(grid_->model()->index(0, 1), Qt::DisplayRole, "补充人工001", 1,
                         Qt::MatchRecursive)
                 .size(),
             0);
  }

  void findsTheItemsOfASummaryRowAfterItemsHaveCome() {
    auto* tabs = page_->findChild<QTabBar*>();
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
    auto* table = page_->findChild<bwidgets::TableView*>("DesResItemSummary_table");
    const auto follow = [&](int at) {
      const QPoint place = table->visualRect(table->model()->index(at, 2)).center();
      QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, place);
      QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, place);
    };
    const int kinds = table->model()->rowCount();
    controller_->insertItem(row(itemsOf(records::Category::Labour).front()));
    QTRY_COMPARE(table->model()->rowCount(), kinds + 1);
    int own = 0;
    while (own < kinds && !table->model()->index(own, 1).data().toString().contains("补充")) ++own;
    table->scrollTo(table->model()->index(own, 2));
    follow(own);
    QVERIFY(view_->isVisible());
    QCOMPARE(view_->selectedItems().size(), std::size_t(1));
    const ResourceItem* item = DesResItemOperator::itemOf(view_->selectedItems().front());
    QCOMPARE(item->code().str(), std::string("补充人工001"));

    view_->showItemPage();
    QCOMPARE(window_->pages()->currentPage(), QString("resources"));
  }

  void closesWithARefreshPending() {
    grid_->selectElements(
        {grid_->elementAt(grid_->model()->index(0, 0, grid_->model()->index(0, 0)))});
    controller_.reset();
    rows_.reset();
    bool later = false;
    QTimer::singleShot(2 * DesResItemViewImpl::RefreshDelay, this, [&later] { later = true; });
    window_->closeProject();
    QTRY_VERIFY(later);
    QVERIFY(window_->session() == nullptr);
  }

 private:
  using Rows = std::vector<proxy::Element*>;

  controllers::OpenProject& openProject() { return window_->session()->project(); }
  records::Project& project() { return openProject().project(); }
  void open() { QVERIFY(window_->pages()->setCurrentPage("design-resources")); }
  proxy::Element* row(const ResourceItem* item) const { return rows_->rowOf(*item); }
  QString message() const { return f_->message(); }
  /// Of the first unit work.
  std::vector<ResourceItem*> itemsOf(records::Category category) {
    return tests::ProjectFixture::below<ResourceItem>(
        *project().categoryGroup(*project().unitWorks().front(), category));
  }

  std::unique_ptr<tests::WindowFixture> f_;
  shell::MainWindow* window_ = nullptr;
  std::unique_ptr<DesResItemOperator> rows_;
  std::unique_ptr<controllers::DesResItemController> controller_;
  QWidget* page_ = nullptr;
  DesResItemViewImpl* view_ = nullptr;
  gui::TreeGridView* grid_ = nullptr;
};

QTEST_MAIN(TestDesResItemPage)
#include "tst_des_res_item_page.moc"
