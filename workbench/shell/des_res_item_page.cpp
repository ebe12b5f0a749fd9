#include "workbench/shell/des_res_item_page.h"

#include <QTabWidget>
#include <QVBoxLayout>
#include <map>
#include <set>
#include <utility>

#include "destructors/res_item_filter_model.h"
#include "destructors/res_item_model.h"
#include "destructors/res_item_summary_models.h"
#include "destructors/res_item_summary_view.h"
#include "destructors/res_item_view.h"
#include "host/bwidgets/table_view.h"
#include "host/gui/tree_grid_view.h"
#include "workbench/controllers/des_res_item_controller.h"
#include "workbench/controllers/open_project.h"
#include "workbench/operators/des_res_item_summary_operators.h"
#include "workbench/shell/summary_sources.h"

namespace shell {

namespace {

using gui::qce::destructors::DesResItemSummaryViewImpl;
using gui::qce::destructors::DesResItemViewImpl;

/// What stands behind the page, bound to the project as long as it lives.
struct DesResItems {
  explicit DesResItems(controllers::OpenProject& open)
      : rows(open.project(), open.resItemOperator()),
        controller(open.project(), rows, open.resItemController()),
        guide(open.project()),
        summary(open.project()) {
    model.setDisplayTable(table.get());
    model.setOperator(&rows);
    guideModel.setDisplayTable(guideTable.get());
    guideModel.setOperator(&guide);
    summaryModel.setDisplayTable(summaryTable.get());
    summaryModel.setOperator(&summary);
  }

  std::unique_ptr<domain::DisplayTable> table = operators::makeDesResItemTable();
  std::unique_ptr<domain::DisplayTable> guideTable = operators::makeDesResItemGuideTable();
  std::unique_ptr<domain::DisplayTable> summaryTable = operators::makeDesResItemSummaryTable();
  operators::DesResItemOperator rows;
  controllers::DesResItemController controller;
  operators::DesResItemGuideOperator guide;
  operators::DesResItemSummaryOperator summary;
  gui::qce::destructors::DesResItemModelImpl model;
  gui::qce::destructors::DesResItemFilterModelImpl filter{&model};
  gui::qce::destructors::DesResItemSummaryGuideModelImpl guideModel;
  gui::qce::destructors::DesResItemSummaryTableModelImpl summaryModel;
  gui::qce::destructors::DesResItemSummaryTableFilterModelImpl summaryFilter{&summaryModel};
};

/// The items and their summary as two tabs, of which the one that is shown is active. The items are
/// read when the page is first opened and, while it is closed, only marked as changed.
class Tabs : public gui::BasePage {
 public:
  explicit Tabs(std::shared_ptr<DesResItems> behind)
      : behind_(std::move(behind)),
        tabs_(new QTabWidget(this)),
        items_(new DesResItemViewImpl),
        summary_(new DesResItemSummaryViewImpl) {
    setWindowTitle(QStringLiteral("人材机归集"));
    tabs_->setDocumentMode(true);
    tabs_->setTabPosition(QTabWidget::South);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(tabs_);
    setSubPages(tabs_);
    items_->setController(&behind_->controller);
    items_->setModel(&behind_->filter);
    summary_->setModel(&behind_->summaryFilter);
    summary_->setGuideModel(&behind_->guideModel);
    addSubView("明细", items_);
    addSubView("汇总", summary_);
    connect(tabs_, &QTabWidget::currentChanged, this, [this] {
      if (!isActive()) return;
      for (int i = 0; i < tabs_->count(); ++i) viewAt(i)->deactivate();
      activateCurrent();
    });
    connect(summary_->tableView()->table(), &QAbstractItemView::doubleClicked, this,
            [this] { followRow(); });
    behind_->controller.setChanged(
        [this](const controllers::DesResItemController::Changes& changes) { refresh(changes); });
  }
  ~Tabs() override { behind_->controller.setChanged({}); }

  void activate() override {
    BasePage::activate();
    activateCurrent();
  }
  void updateView() override { viewAt(tabs_->currentIndex())->updateView(); }

  DesResItemViewImpl* items() const { return items_; }
  DesResItemSummaryViewImpl* summary() const { return summary_; }
  /// Selects the rows of these items. Switching makes the rows anew when items have come or gone,
  /// so they are looked up after it.
  void showItems(const std::vector<records::ResourceItem*>& items) {
    tabs_->setCurrentWidget(items_);
    std::vector<proxy::Element*> rows;
    for (const records::ResourceItem* item : items) {
      if (proxy::Element* row = behind_->rows.rowOf(*item)) rows.push_back(row);
    }
    items_->showItems(rows);
  }
  bool showsSummary() const { return tabs_->currentWidget() == summary_; }

 private:
  abst::BaseView* viewAt(int tab) const {
    return dynamic_cast<abst::BaseView*>(tabs_->widget(tab));
  }

  void activateCurrent() {
    if (!showsSummary() && std::exchange(stale_, false)) behind_->model.rebuildGroup();
    viewAt(tabs_->currentIndex())->activate();
  }

  void refresh(const controllers::DesResItemController::Changes& changes) {
    summary_->invalidate();
    stale_ = stale_ || changes.rebuild;
    if (stale_) {
      if (changes.rebuild && isActive() && !showsSummary()) activateCurrent();
      return;
    }
    announce(changes.rows);
    if (changes.bills) items_->onSubEngineeringChange();
  }

  // One word for the rows below each parent, and one for each row above them: a batch changes many.
  void announce(const std::vector<proxy::Element*>& rows) {
    std::map<proxy::Element*, std::pair<proxy::Element*, proxy::Element*>> ranges;  // by parent
    std::set<proxy::Element*> above;
    for (proxy::Element* row : rows) {
      auto& [first, last] = ranges.try_emplace(row->parent(), row, row).first->second;
      if (row->row() < first->row()) first = row;
      if (row->row() > last->row()) last = row;
      proxy::Element* at = row->parent();
      while (at != nullptr && above.insert(at).second) at = at->parent();
    }
    const auto tell = [this](proxy::Element* first, proxy::Element* last) {
      emit behind_->model.dataChanged(
          behind_->model.makeIndex(first, 0),
          behind_->model.makeIndex(last, behind_->model.columnCount() - 1));
    };
    for (const auto& [parent, range] : ranges) tell(range.first, range.second);
    for (proxy::Element* row : above) tell(row, row);
  }

  void followRow() {
    const auto* table = summary_->tableView()->table();
    const auto items = operators::DesResItemSummaryOperator::itemsOf(table->currentElement());
    // An item that has gone may be held by the summary's rows alone.
    const std::vector<scoped_refptr<records::ResourceItem>> kept(items.begin(), items.end());
    if (!items.empty()) showItems(items);
  }

  std::shared_ptr<DesResItems> behind_;
  QTabWidget* tabs_;
  DesResItemViewImpl* items_;
  DesResItemSummaryViewImpl* summary_;
  bool stale_ = true;
};

}  // namespace

Page makeDesResItemPage(Session& session) {
  auto behind = std::make_shared<DesResItems>(session.project());
  behind->controller.setSourceFollower([&session](const std::vector<proxy::Element*>& bills) {
    return followBills(session, bills);
  });
  behind->controller.setItemFollower(
      [&session](records::ResourceItem* item) { followItem(session, item); });
  auto* tabs = new Tabs(behind);

  Page page;
  page.key = QStringLiteral("design-resources");
  page.title = QStringLiteral("人材机归集");
  page.icon = QIcon(QStringLiteral(":/qce/icons/collect.svg"));
  page.widget = tabs;
  page.view = tabs;
  page.find = [tabs] {
    tabs->showsSummary() ? tabs->summary()->tableView()->find() : tabs->items()->find();
  };
  page.exportGrid = [tabs] {
    tabs->showsSummary() ? tabs->summary()->tableView()->exportExcel()
                         : tabs->items()->exportExcel();
  };
  page.setZoom = [tabs](int percent) {
    for (auto* grid : tabs->findChildren<bwidgets::TreeGridView*>()) grid->setZoom(percent);
  };
  page.behind = behind;
  return page;
}

bool followItems(Session& session, const std::vector<records::ResourceItem*>& items) {
  const Page* page = session.page(QStringLiteral("design-resources"));
  auto* tabs = page != nullptr ? dynamic_cast<Tabs*>(page->widget) : nullptr;
  if (tabs == nullptr || items.empty()) return false;
  emit session.pageWanted(page->key);
  tabs->showItems(items);
  return true;
}

}  // namespace shell
