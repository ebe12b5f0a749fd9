#include "destructors/subcontract_view.h"

#include <QEvent>
#include <QLabel>
#include <QSplitter>
#include <QVBoxLayout>

#include "destructors/subcontract_association_bill_view.h"
#include "destructors/subcontract_collect_view.h"
#include "destructors/subcontract_table_view.h"
#include "host/abst/qce/destructors/des_set_subcontract_association_bill_filter_model.h"
#include "host/abst/qce/destructors/des_set_subcontract_collect_model.h"
#include "host/abst/qce/destructors/des_set_subcontract_view.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/domain/item_role.h"
#include "host/gui/view_model.h"
#include "host/proxy/element.h"

namespace gui::qce::destructors {

namespace keys = domain::keys;

namespace {

constexpr char Usage[] =
    "空格或双击清单：关联到当前分包，再按取消关联。Insert 新增分包，Ctrl+Delete 删除分包";

QSplitter* createSplitter(Qt::Orientation orientation, QWidget* parent) {
  auto* splitter = new QSplitter(orientation, parent);
  splitter->setHandleWidth(8);
  splitter->setContentsMargins(0, 0, 0, 0);
  splitter->setChildrenCollapsible(false);
  return splitter;
}

}  // namespace

DesSetSubcontractViewImpl::DesSetSubcontractViewImpl(QWidget* parent) : BasePage(parent) {
  setWindowTitle("分包设置");
  table_ = new DesSetSubcontractTableViewImpl(this);
  collect_ = new DesSetSubcontractCollectViewImpl(this);
  bills_ = new DesSetSubcontractAssociationBillViewImpl(this);
  QSplitter* below = createSplitter(Qt::Horizontal, this);
  below->addWidget(collect_);
  below->addWidget(bills_);
  below->setStretchFactor(0, 45);
  below->setStretchFactor(1, 55);
  below->setSizes({4500, 5500});
  QSplitter* all = createSplitter(Qt::Vertical, this);
  all->addWidget(table_);
  all->addWidget(below);
  all->setStretchFactor(0, 45);
  all->setStretchFactor(1, 55);
  all->setSizes({4000, 6000});
  note_ = new QLabel(Usage, this);
  note_->setObjectName("DesSetSubcontract_note");
  note_->setTextFormat(Qt::PlainText);
  note_->setContentsMargins(6, 3, 6, 3);
  note_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  auto* layout = new QVBoxLayout(this);
  layout->setMargin(0);
  layout->setSpacing(0);
  layout->addWidget(all, 1);
  layout->addWidget(note_);

  connect(collect_, &DesSetSubcontractCollectViewImpl::entryChosen, table_,
          &DesSetSubcontractTableViewImpl::setCurrentElement);
}

// An editor that is open commits while its grid goes, when there is no page left to hear of it.
DesSetSubcontractViewImpl::~DesSetSubcontractViewImpl() {
  for (const QMetaObject::Connection& connection : connections_) disconnect(connection);
}

// ---------------------------------------------------------------------------------------------
// Life cycle

void DesSetSubcontractViewImpl::setAbstractView(
    abst::qce::destructors::DesSetSubcontractView* view) {
  view_ = view;
  table_->setAbstractView(view);
  collect_->setAbstractView(view);
  bills_->setAbstractView(view);
}

void DesSetSubcontractViewImpl::setModel(abst::BaseModel* model) {
  if (dynamic_cast<QAbstractItemModel*>(model) != nullptr) {
    for (const QMetaObject::Connection& connection : connections_) disconnect(connection);
  }
  table_->setModel(model);
  const bwidgets::TableView* grid = table_->table();
  if (grid->model() == nullptr) return;
  connections_ = {connect(grid->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
                          &DesSetSubcontractViewImpl::onCurrentRowChanged),
                  connect(grid->model(), &QAbstractItemModel::dataChanged, this,
                          &DesSetSubcontractViewImpl::onDataChange)};
}

void DesSetSubcontractViewImpl::setCollectModel(
    abst::qce::destructors::DesSetSubcontractCollectModel* model) {
  collect_->setModel(model);
}

void DesSetSubcontractViewImpl::setAssociationBillModel(
    abst::qce::destructors::DesSetSubcontractAssociationBillFilterModel* model) {
  bills_->setModel(model);
}

void DesSetSubcontractViewImpl::activate() {
  BasePage::activate();
  bwidgets::TableView* grid = table_->table();
  if (grid->model() != nullptr && !grid->currentIndex().isValid()) {
    grid->setCurrentIndex(grid->model()->index(0, 0));
  }
  for (BasePage* pane : {static_cast<BasePage*>(table_), static_cast<BasePage*>(collect_),
                         static_cast<BasePage*>(bills_)}) {
    pane->activate();
  }
}

void DesSetSubcontractViewImpl::deactivate() {
  BasePage::deactivate();
  table_->deactivate();
  collect_->deactivate();
  bills_->deactivate();
}

void DesSetSubcontractViewImpl::updateView() {
  table_->updateView();
  collect_->updateView();
  bills_->updateView();
}

void DesSetSubcontractViewImpl::showEvent(QShowEvent* event) {
  BasePage::showEvent(event);
  tellCurrent(table_->table()->currentIndex());
}

void DesSetSubcontractViewImpl::changeEvent(QEvent* event) {
  // A window that is closed or minimised loses the activation, too: it has to stay so.
  const bool inUse = isVisible() && (isActiveWindow() || !isMinimized());
  const bool maximisable = isWindow() && windowFlags().testFlag(Qt::WindowMaximizeButtonHint);
  if (event->type() != QEvent::ActivationChange || !isEnabled() || !maximisable || !inUse) {
    BasePage::changeEvent(event);
    return;
  }
  isMaximized() ? showMaximized() : showNormal();
}

// ---------------------------------------------------------------------------------------------
// What the host hears

QString DesSetSubcontractViewImpl::entryName() const {
  const bwidgets::TableView* grid = table_->table();
  const QModelIndex current = grid->currentIndex();
  if (!current.isValid() || grid->viewModel() == nullptr) return {};
  QStringList name;
  for (const std::string& key : {keys::BRICode, keys::BRIName}) {
    const QModelIndex cell = current.sibling(current.row(), grid->viewModel()->getColumnIndex(key));
    const QString text = cell.data().toString();
    if (!text.isEmpty()) name << text;
  }
  return name.join(' ');
}

void DesSetSubcontractViewImpl::tellCurrent(const QModelIndex& current) {
  proxy::Element* entry = table_->table()->elementAt(current);
  if (view_ != nullptr) view_->setCurrentSubcontract(entry);
  refreshBills();
  if (entry != nullptr) collect_->showEntry(entry->id());
}

void DesSetSubcontractViewImpl::refreshBills() {
  if (!noted_) note_->setText(Usage);
  noted_ = false;
  bills_->refresh(entryName());
}

void DesSetSubcontractViewImpl::onCurrentRowChanged(const QModelIndex& current,
                                                    const QModelIndex& /*previous*/) {
  if (!isVisible()) return;
  noted_ = false;
  tellCurrent(current);
}

void DesSetSubcontractViewImpl::onDataChange(const QModelIndex& topLeft,
                                             const QModelIndex& /*bottomRight*/,
                                             const QVector<int>& /*roles*/) {
  const QString key = topLeft.data(domain::FieldKeyRole).toString();
  proxy::Element* entry = table_->table()->elementAt(topLeft);
  if (view_ == nullptr || entry == nullptr || key.toStdString() != keys::BRIMeteringMethod) return;
  note_->setText(QString::fromStdString(view_->handleMeteringMethod(entry)));
  noted_ = true;
}

}  // namespace gui::qce::destructors
