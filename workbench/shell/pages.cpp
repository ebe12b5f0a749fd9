#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <utility>

#include "engineering/fee_summary_navigation_model.h"
#include "engineering/fee_summary_view.h"
#include "engineering/filter_model.h"
#include "engineering/model.h"
#include "engineering/view.h"
#include "host/app/services.h"
#include "host/bwidgets/grid_sheet.h"
#include "host/bwidgets/tree_grid_view.h"
#include "host/domain/qce/res_item_operator.h"
#include "pooling/res_item_bill_filter_model.h"
#include "pooling/res_item_bill_model.h"
#include "pooling/res_item_bill_view.h"
#include "resitem/filter_model.h"
#include "resitem/model.h"
#include "resitem/view.h"
#include "workbench/controllers/open_project.h"
#include "workbench/records/summary.h"
#include "workbench/services/templates.h"
#include "workbench/shell/des_res_item_page.h"
#include "workbench/shell/indirect_fee_page.h"
#include "workbench/shell/project_info.h"
#include "workbench/shell/session.h"
#include "workbench/shell/subcontract_page.h"
#include "workbench/shell/summary_sources.h"
#include "workbench/shell/summary_view.h"

namespace shell {

namespace {

/// The models of the resource-item page, bound to the project as long as they live.
class ResItemModels {
 public:
  explicit ResItemModels(controllers::OpenProject& project)
      : controller_(project.resItemController()), filter_(&items_) {
    items_.setDisplayTable(&project.resItemTable());
    items_.setOperator(&project.resItemOperator());
    controller_.setModel(&items_);
    controller_.setElementChanged([this](proxy::Element* element) { announce(element); });
  }
  ~ResItemModels() {
    controller_.setModel(nullptr);
    controller_.setElementChanged({});
    controller_.setBookingsChanged({});
  }
  ResItemModels(const ResItemModels&) = delete;
  ResItemModels& operator=(const ResItemModels&) = delete;

  gui::qce::QCEResItemFilterModelImpl& filter() { return filter_; }

 private:
  void announce(proxy::Element* element) {
    const QModelIndex first = items_.makeIndex(element, 0);
    if (!first.isValid()) return;
    const QModelIndex last = items_.makeIndex(element, items_.columnCount({}) - 1);
    emit items_.dataChanged(first, last,
                            {Qt::DisplayRole, Qt::EditRole, Qt::CheckStateRole, Qt::ToolTipRole,
                             Qt::BackgroundRole, Qt::ForegroundRole, Qt::FontRole});
  }

  controllers::ResItemController& controller_;
  gui::qce::QCEResItemModelImpl items_;
  gui::qce::QCEResItemFilterModelImpl filter_;
};

/// The models of the bills' pane below it. The pane goes before they do.
class ResItemBillModels {
 public:
  ResItemBillModels(controllers::OpenProject& project, gui::qce::QCEResItemBillViewImpl& pane)
      : controller_(project.resItemBillController()),
        operator_(project.resItemBillOperator()),
        pane_(&pane),
        filter_(&bills_) {
    bills_.setOperator(&operator_);
    bills_.setTableName(operators::ResItemBillOperator::OrdinaryTable);
    controller_.setRowsChanged([this] { refresh(); });
  }
  ~ResItemBillModels() {
    controller_.setRowsChanged({});
    bills_.cleanUpResources();
  }
  ResItemBillModels(const ResItemBillModels&) = delete;
  ResItemBillModels& operator=(const ResItemBillModels&) = delete;

  gui::qce::QCEResItemBillFilterModelImpl& filter() { return filter_; }

 private:
  void refresh() {
    if (pane_.isNull()) return;
    const int rows = bills_.rowCount();
    if (!pane_->isVisible() || !operator_.refresh()) {
      pane_->reload();
    } else if (rows > 0) {
      emit bills_.dataChanged(bills_.index(0, 0), bills_.index(rows - 1, bills_.columnCount() - 1));
    }
  }

  controllers::ResItemBillController& controller_;
  operators::ResItemBillOperator& operator_;
  QPointer<gui::qce::QCEResItemBillViewImpl> pane_;
  gui::qce::QCEResItemBillModelImpl bills_;
  gui::qce::QCEResItemBillFilterModelImpl filter_;
};

/// The models of the page of bills, bound to the project as long as they live.
class SubEngineeringModels {
 public:
  explicit SubEngineeringModels(controllers::OpenProject& project)
      : controller_(project.subEngineeringController()), filter_(&rows_) {
    rows_.setDisplayTable(&project.subEngineeringTable());
    rows_.setOperator(&project.subEngineeringOperator());
    controller_.setChanged([this](const std::vector<proxy::Element*>& bills) {
      for (proxy::Element* bill : bills) announceBelow(rows_.makeIndex(bill, 0));
      announceBelow({});
    });
  }
  ~SubEngineeringModels() { controller_.setChanged({}); }
  SubEngineeringModels(const SubEngineeringModels&) = delete;
  SubEngineeringModels& operator=(const SubEngineeringModels&) = delete;

  gui::qce::QCESubEngineeringFilterModelImpl& filter() { return filter_; }

 private:
  // Amounts may have changed in any node and bill; resource rows follow their own bill alone.
  void announceBelow(const QModelIndex& parent) {
    const int rows = rows_.rowCount(parent);
    if (rows == 0) return;
    emit rows_.dataChanged(rows_.index(0, 0, parent),
                           rows_.index(rows - 1, rows_.columnCount() - 1, parent));
    for (int row = 0; row < rows; ++row) {
      const QModelIndex index = rows_.index(row, 0, parent);
      const proxy::Element* first = rows_.getInternalData(rows_.index(0, 0, index));
      if (first != nullptr && !rows_.isResourceRow(first)) announceBelow(index);
    }
  }

  controllers::SubEngineeringController& controller_;
  gui::qce::QCESubEngineeringModelImpl rows_;
  gui::qce::QCESubEngineeringFilterModelImpl filter_;
};

Page makeResItemPage(Session& session) {
  auto models = std::make_shared<ResItemModels>(session.project());
  auto* view = new gui::qce::QCEResItemViewImpl;
  view->setController(&session.project().resItemController());
  view->setModel(&models->filter());
  session.project().resItemController().setBookingsChanged([view, &filter = models->filter()] {
    if (!filter.filtersByAssociation()) return;
    const bool empty = filter.rowCount() == 0;
    filter.invalidate();
    if (empty) view->expandAll();
    view->updateView();
  });

  auto* pane = new gui::qce::QCEResItemBillViewImpl;
  auto bills = std::make_shared<ResItemBillModels>(session.project(), *pane);
  pane->setController(&session.project().resItemBillController());
  pane->setModel(&bills->filter());
  view->addSubView("bills", pane);

  Page page;
  page.key = QStringLiteral("resources");
  page.title = QStringLiteral("人材机");
  page.icon = QIcon(QStringLiteral(":/qce/icons/resources.svg"));
  page.widget = view;
  page.view = view;
  page.find = [view, pane] {
    const bool below = pane->isAncestorOf(QApplication::focusWidget());
    below ? pane->getTableView()->openSearchBox() : view->find();
  };
  page.exportGrid = [view, pane] {
    const bool below = pane->isAncestorOf(QApplication::focusWidget());
    if (below) {
      bwidgets::exportSheet(*pane->getTableView(), "人材机所属清单");
    } else {
      view->exportExcel();
    }
  };
  page.setZoom = [view](int percent) {
    for (auto* grid : view->findChildren<bwidgets::TreeGridView*>()) grid->setZoom(percent);
  };
  page.behind = std::make_shared<std::pair<decltype(models), decltype(bills)>>(models, bills);
  return page;
}

/// What the three summaries of a project share.
struct Summaries {
  gui::qce::QCEFeeSummaryNavigationModelImpl names;
  records::FeeTemplate feeTemplate;
};

Page makeFeeSummaryPage(Session& session) {
  auto behind = std::make_shared<Summaries>();
  QString problem;
  behind->feeTemplate = services::loadFeeTemplate(
      QString::fromStdString(app::GetPathMgr()->getTemplatePath()), &problem);
  auto* view = new gui::qce::QCEFeeSummaryViewImpl;
  view->setModel(&behind->names);
  for (int i = 0; i < behind->names.rowCount(); ++i) {
    const auto kind = static_cast<records::SummaryKind>(i);
    auto* summary = new SummaryView(
        kind,
        [&session, kind, behind] {
          return records::summarize(session.project().project(), kind, behind->feeTemplate);
        },
        [&session](const records::SummaryLine& line, bool onlyAsking) {
          return followSummaryLine(session, line, onlyAsking);
        });
    QObject::connect(&session, &Session::changed, summary, &SummaryView::invalidate);
    view->addSubView(behind->names.index(i, 0).data().toString().toStdString(), summary);
  }
  if (!problem.isEmpty()) {
    app::qce::GetQCEChannel()->message(problem.toStdString(), QMessageBox::Ok);
  }

  const auto shown = [view]() -> SummaryView* {
    for (auto* each : view->findChildren<SummaryView*>()) {
      if (each->isVisible()) return each;
    }
    return nullptr;
  };
  Page page;
  page.key = QStringLiteral("summary");
  page.title = QStringLiteral("费用汇总");
  page.icon = QIcon(QStringLiteral(":/qce/icons/summary.svg"));
  page.widget = view;
  page.view = view;
  page.find = [shown] {
    if (SummaryView* summary = shown()) summary->find();
  };
  page.exportGrid = [shown] {
    if (SummaryView* summary = shown()) summary->exportExcel();
  };
  page.setZoom = [view](int percent) {
    for (auto* summary : view->findChildren<SummaryView*>()) summary->setZoom(percent);
  };
  page.behind = behind;
  return page;
}

Page makeSubEngineeringPage(Session& session) {
  auto models = std::make_shared<SubEngineeringModels>(session.project());
  auto* view = new gui::qce::QCESubEngineeringViewImpl;
  view->setModel(&models->filter());

  Page page;
  page.key = QStringLiteral("bills");
  page.title = QStringLiteral("分部分项");
  page.icon = QIcon(QStringLiteral(":/qce/icons/bills.svg"));
  page.widget = view;
  page.view = view;
  page.find = [view] { view->find(); };
  page.exportGrid = [view] { view->exportExcel(); };
  page.setZoom = [view](int percent) {
    for (auto* grid : view->findChildren<bwidgets::TreeGridView*>()) grid->setZoom(percent);
  };
  page.behind = models;
  return page;
}

}  // namespace

const std::vector<PageMaker>& pageMakers() {
  static const std::vector<PageMaker> makers{
      makeResItemPage,     makeDesResItemPage, makeSubEngineeringPage, makeSubcontractPage,
      makeIndirectFeePage, makeFeeSummaryPage, makeProjectInfoPage};
  return makers;
}

}  // namespace shell
