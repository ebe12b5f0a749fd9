#include "workbench/shell/subcontract_page.h"

#include <QAction>
#include <QApplication>
#include <QFrame>
#include <QHBoxLayout>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include "destructors/subcontract_association_bill_filter_model.h"
#include "destructors/subcontract_association_bill_model.h"
#include "destructors/subcontract_association_bill_view.h"
#include "destructors/subcontract_collect_model.h"
#include "destructors/subcontract_collect_view.h"
#include "destructors/subcontract_table_model.h"
#include "destructors/subcontract_table_view.h"
#include "destructors/subcontract_view.h"
#include "host/base/number_text.h"
#include "host/bwidgets/grid_sheet.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/domain/item_role.h"
#include "host/gui/tree_grid_view.h"
#include "workbench/controllers/open_project.h"
#include "workbench/controllers/subcontract_controller.h"
#include "workbench/records/bill_costs.h"
#include "workbench/records/labels.h"
#include "workbench/shell/des_res_item_page.h"
#include "workbench/shell/elided_label.h"

namespace shell {

namespace {

using namespace gui::qce::destructors;

void announceAll(QAbstractItemModel& model, const QModelIndex& parent = {}) {
  const int rows = model.rowCount(parent);
  if (rows == 0) return;
  emit model.dataChanged(model.index(0, 0, parent),
                         model.index(rows - 1, model.columnCount() - 1, parent));
  for (int row = 0; row < rows; ++row) announceAll(model, model.index(row, 0, parent));
}

constexpr int kDelay = 80;  // ms that changes are gathered before the hint is worked out

QString money(const costing::Decimal& value) {
  return QString::fromStdString(base::ToThousandthsString(value.toDouble(), 2));
}

std::vector<const records::Bill*> billsOf(const records::Subcontract& entry) {
  std::vector<const records::Bill*> bills;
  bills.reserve(static_cast<std::size_t>(entry.childCount()));
  for (int row = 0; row < entry.childCount(); ++row) bills.push_back(&entry.billAt(row).bill);
  return bills;
}

/// A strip below the page that says what of the bills that are given away counts in the cost a
/// second time, and leads there. There is no strip where nothing does.
class HintBar : public QFrame {
 public:
  HintBar() : text_(new ElidedLabel), button_(new QPushButton(QStringLiteral("到人材机归集处理"))) {
    setObjectName(QStringLiteral("subcontractHint"));
    setStyleSheet(QStringLiteral(
        "QFrame#subcontractHint { background: #fff3cd; border-top: 1px solid #e5c365; } "
        "QFrame#subcontractHint QLabel { color: #7a4b00; background: transparent; }"));
    button_->setToolTip(
        QStringLiteral("选中这些人材机。在那里用“设置归集”把它们归入分包，或“取消关联到成本”；\n"
                       "还用于其他清单的，归集后整项都不再计入成本"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 3, 6, 3);
    layout->addWidget(text_, 1);
    layout->addWidget(button_);
    hide();
  }
  QPushButton* button() const { return button_; }
  /// `name`: of the current entry, which `current` is about.
  void tell(const QString& name, const records::CountedBesides& current,
            const records::CountedBesides& all) {
    setVisible(!all.items.empty());
    const bool own = !current.items.empty();
    QString text = QStringLiteral("%1的清单所用人材机有 %2 项仍计入成本，共 %3 元，与分包重复计算")
                       .arg(own ? name : QStringLiteral("分包"))
                       .arg((own ? current : all).items.size())
                       .arg(money((own ? current : all).amount));
    if (own && all.items.size() != current.items.size()) {
      text +=
          QStringLiteral("；全部分包 %1 项，%2 元").arg(all.items.size()).arg(money(all.amount));
    }
    text_->setText(text);
    items_.clear();
    for (records::ResourceItem* item : (own ? current : all).items) items_.emplace_back(item);
  }
  std::vector<records::ResourceItem*> items() const {
    std::vector<records::ResourceItem*> items;
    for (const auto& item : items_) items.push_back(item.get());
    return items;
  }

 private:
  ElidedLabel* text_;
  QPushButton* button_;
  std::vector<scoped_refptr<records::ResourceItem>> items_;  // one may go before the next look
};

/// What stands behind the page, bound to the project as long as it lives.
struct Subcontracts {
  explicit Subcontracts(records::Project& ofProject)
      : project(ofProject),
        entries(project),
        collected(project),
        bills(project),
        controller(project, entries, collected, bills) {
    entryModel.setDisplayTable(entryTable.get());
    entryModel.setOperator(&entries);
    collectModel.setDisplayTable(collectTable.get());
    collectModel.setOperator(&collected);
    billModel.setDisplayTable(billTable.get());
    billModel.setOperator(&bills);
    controller.setModels(&entryModel, &collectModel);
    hintTimer.setSingleShot(true);
    hintTimer.setInterval(kDelay);
    QObject::connect(&hintTimer, &QTimer::timeout, &hintTimer, [this] { showHint(); });
  }

  /// Shows figures that may be other ones. A page that is hidden asks for its bills anew anyway.
  void refresh() {
    if (view.isNull() || !view->isVisible()) return;
    announceAll(entryModel);
    announceAll(collectModel);
    view->refreshBills();
    showTotals();
  }
  void showTotals() {
    if (totals.isNull()) return;
    const costing::Totals sums = project.subcontractTotals();
    totals->setText(QStringLiteral("共 %1 条分包，合价 %2 元（不含税），%3 元（含税）")
                        .arg(project.subcontracts().size())
                        .arg(money(sums.excluded), money(sums.included)));
    hintTimer.start();
  }
  void showHint() {
    if (hint.isNull() || view.isNull() || !view->isVisible()) return;
    std::vector<const records::Bill*> all;
    for (int row = 0; row < project.subcontracts().size(); ++row) {
      const auto given =
          billsOf(*static_cast<records::Subcontract*>(project.subcontracts().rows().at(row)));
      all.insert(all.end(), given.begin(), given.end());
    }
    const records::Subcontract* entry =
        operators::SubcontractOperator::entryOf(view->tableView()->table()->currentElement());
    if (entry == nullptr) return hint->tell({}, {}, records::countedBesides(project, all));
    hint->tell(QString::fromStdString(records::label(*entry)),
               records::countedBesides(project, billsOf(*entry)),
               records::countedBesides(project, all));
  }

  records::Project& project;
  std::unique_ptr<domain::DisplayTable> entryTable = operators::makeSubcontractTable();
  std::unique_ptr<domain::DisplayTable> collectTable = operators::makeSubcontractCollectTable();
  std::unique_ptr<domain::DisplayTable> billTable = operators::makeSubcontractBillTable();
  operators::SubcontractOperator entries;
  operators::SubcontractCollectOperator collected;
  operators::SubcontractBillOperator bills;
  controllers::SubcontractController controller;
  DesSetSubcontractTableModelImpl entryModel;
  DesSetSubcontractCollectModelImpl collectModel;
  DesSetSubcontractAssociationBillModelImpl billModel;
  DesSetSubcontractAssociationBillFilterModelImpl billFilter{&billModel};
  QPointer<DesSetSubcontractViewImpl> view;
  QPointer<ElidedLabel> totals;
  QPointer<HintBar> hint;
  QTimer hintTimer;
};

/// The page's tool bar brings its sums up to date when it is shown.
class TotalsBar : public QToolBar {
 public:
  TotalsBar(std::function<void()> update, QWidget* parent)
      : QToolBar(parent), update_(std::move(update)) {}

 protected:
  void showEvent(QShowEvent* event) override {
    QToolBar::showEvent(event);
    update_();
  }

 private:
  std::function<void()> update_;
};

}  // namespace

Page makeSubcontractPage(Session& session) {
  auto behind = std::make_shared<Subcontracts>(session.project().project());
  auto* frame = new QWidget;
  auto* view = new DesSetSubcontractViewImpl(frame);
  behind->view = view;
  view->setAbstractView(&behind->controller);
  view->setModel(&behind->entryModel);
  view->setCollectModel(&behind->collectModel);
  view->setAssociationBillModel(&behind->billFilter);
  behind->controller.setFiguresChanged([all = behind.get()] { all->refresh(); });

  auto* bar = new TotalsBar([all = behind.get()] { all->showTotals(); }, frame);
  bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
  bar->addActions(view->tableView()->actions());
  bar->addSeparator();
  behind->totals = new ElidedLabel(bar);
  bar->addWidget(behind->totals);
  auto* layout = new QVBoxLayout(frame);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(bar);
  layout->addWidget(view, 1);
  behind->hint = new HintBar;
  layout->addWidget(behind->hint);
  QObject::connect(behind->hint->button(), &QPushButton::clicked, frame,
                   [&session, hint = behind->hint] { followItems(session, hint->items()); });

  bwidgets::TreeGridView* entries = view->tableView()->table();
  bwidgets::TreeGridView* tree = view->collectView()->tree();
  bwidgets::TreeGridView* bills = view->billView()->table();
  const auto inUse = [=] {
    for (bwidgets::TreeGridView* grid : {tree, bills}) {
      if (grid->isAncestorOf(QApplication::focusWidget()) || grid->hasFocus()) return grid;
    }
    return entries;
  };
  QObject::connect(entries, &QAbstractItemView::doubleClicked, frame,
                   [entries, &session](const QModelIndex& cell) {
                     const QString key = cell.data(domain::FieldKeyRole).toString();
                     const records::Subcontract* entry =
                         operators::SubcontractOperator::entryOf(entries->elementAt(cell));
                     if (entry == nullptr || key.toStdString() != domain::keys::BRICollectedItems)
                       return;
                     followItems(session, session.project().project().collectedItems(*entry));
                   });
  QObject::connect(entries, &bwidgets::TreeGridView::currentElementChanged, frame,
                   [all = behind.get()] { all->hintTimer.start(); });
  Page page;
  page.key = QStringLiteral("subcontracts");
  page.title = QStringLiteral("分包设置");
  page.icon = QIcon(QStringLiteral(":/qce/icons/subcontracts.svg"));
  page.widget = frame;
  page.view = view;
  page.find = [inUse] { inUse()->openSearchBox(); };
  page.exportGrid = [=] {
    bwidgets::TreeGridView* grid = inUse();
    bwidgets::exportSheet(*grid, grid == tree ? "分包归集" : grid == bills ? "分包清单" : "分包");
  };
  page.setZoom = [=](int percent) {
    for (bwidgets::TreeGridView* grid : {entries, tree, bills}) grid->setZoom(percent);
  };
  page.behind = behind;
  return page;
}

}  // namespace shell
