#include "engineering/view.h"

#include <QAction>
#include <QCheckBox>
#include <QMenu>
#include <QPushButton>
#include <QSplitter>
#include <QToolBar>
#include <vector>

#include "engineering/delegate.h"
#include "engineering/filter_model.h"
#include "framework/commands.h"
#include "framework/des_filter_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"

namespace gui::qce {
namespace {

QCESubEngineeringFilterModelImpl* filterOf(const gui::TreeGridView& grid) {
  return dynamic_cast<QCESubEngineeringFilterModelImpl*>(grid.model());
}

}  // namespace

QCESubEngineeringViewImpl::QCESubEngineeringViewImpl(QWidget* parent)
    : gui::SubEngineeringViewImpl(parent) {
  setWindowTitle("分部分项");
  QCESubEngineeringViewImpl::init();
}

QCESubEngineeringViewImpl::~QCESubEngineeringViewImpl() = default;

std::string QCESubEngineeringViewImpl::getSECodeKey() {
  return domain::keys::SECode;
}
std::string QCESubEngineeringViewImpl::getSENameKey() {
  return domain::keys::SEName;
}
std::string QCESubEngineeringViewImpl::getSEQuantityKey() {
  return domain::keys::SEQuantity;
}
std::string QCESubEngineeringViewImpl::getSEUnitKey() {
  return domain::keys::SEUnit;
}

// ---------------------------------------------------------------------------------------------
// Widgets

void QCESubEngineeringViewImpl::init() {
  if (conditions_ != nullptr) return;  // built already
  gui::SubEngineeringViewImpl::init();
  conditions_ = new destructors::DesFilterView(destructors::DesFilterView::SubEngineering, this);
  conditions_->setSwitch(conditionAction_, treeGrid());
  connect(conditions_->startButton(), &QPushButton::clicked, this,
          &QCESubEngineeringViewImpl::startFilter);
  connect(conditions_->cancelButton(), &QPushButton::clicked, this,
          &QCESubEngineeringViewImpl::cancelFilter);
  connect(conditions_->showChildrenBox(), &QCheckBox::stateChanged, this,
          &QCESubEngineeringViewImpl::showChildren);
  connect(conditions_->showSiblingBox(), &QCheckBox::stateChanged, this,
          &QCESubEngineeringViewImpl::showSibling);
  splitter()->addWidget(conditions_);
  splitter()->setStretchFactor(1, 0);
}

gui::TreeGridView* QCESubEngineeringViewImpl::createTableGridView() {
  auto* grid = new gui::TreeGridView(this);
  grid->setObjectName("SubEngineering_grid");
  return grid;
}

gui::SubEngineeringDelegate* QCESubEngineeringViewImpl::createSubEngineeringDelege() {
  return new gui::QCESubEngineeringDelegate(nullptr);
}

void QCESubEngineeringViewImpl::fillToolBar(QToolBar* toolBar) {
  conditionAction_ = gui::addCommand(
      this, "条件过滤", "显示或隐藏条件面板，按成本科目、编码、名称、项目特征、单位过滤",
      {QKeySequence("Ctrl+Shift+F")});
  toolBar->addAction(conditionAction_);
}

void QCESubEngineeringViewImpl::fillContextMenu(QMenu* menu) {
  gui::SubEngineeringViewImpl::fillContextMenu(menu);
  menu->addSeparator();
  menu->addAction(conditionAction_);
}

QString QCESubEngineeringViewImpl::statusNote() const {
  return conditions_->isOn() ? QString("（条件过滤中）") : QString();
}

// ---------------------------------------------------------------------------------------------
// Life cycle

void QCESubEngineeringViewImpl::setModel(abst::BaseModel* model) {
  gui::SubEngineeringViewImpl::setModel(model);
  freezeLeadingColumns();
}

void QCESubEngineeringViewImpl::updateColumnWidth() {
  freezeLeadingColumns();
  gui::SubEngineeringViewImpl::updateColumnWidth();
}

void QCESubEngineeringViewImpl::freezeLeadingColumns() {
  const QAbstractItemModel* model = treeGrid()->model();
  const auto* columns = dynamic_cast<const gui::ViewModel*>(model);
  if (columns == nullptr || dynamic_cast<const abst::SubEngineeringBase*>(model) == nullptr) return;
  treeGrid()->setFrozenColumnCount(columns->getColumnIndex(getSENameKey()) + 1);
}

void QCESubEngineeringViewImpl::activate() {
  gui::SubEngineeringViewImpl::activate();
  auto* filter = filterOf(*treeGrid());
  if (filter == nullptr || !filter->isFilterByCondition()) return;
  filter->setIsFilterByCondition(true);
  rowsChanged();
}

void QCESubEngineeringViewImpl::deactivate() {
  gui::SubEngineeringViewImpl::deactivate();
}

// ---------------------------------------------------------------------------------------------
// Conditions

void QCESubEngineeringViewImpl::filterByConditionView() {
  conditionAction_->setChecked(true);
}

void QCESubEngineeringViewImpl::startFilter() {
  auto* filter = filterOf(*treeGrid());
  if (filter == nullptr) return;
  conditions_->apply(*filter, true);
  expandAll();
  rowsChanged();
}

void QCESubEngineeringViewImpl::cancelFilter() {
  auto* filter = filterOf(*treeGrid());
  if (filter == nullptr) return;
  conditions_->apply(*filter, false);
  expandAll();
  treeGrid()->scrollTo(treeGrid()->currentIndex());
  rowsChanged();
}

void QCESubEngineeringViewImpl::showElements(const std::vector<proxy::Element*>& elements) {
  if (conditions_->isOn()) cancelFilter();
  SubEngineeringViewImpl::showElements(elements);
}

void QCESubEngineeringViewImpl::showChildren(int checkState) {
  auto* filter = filterOf(*treeGrid());
  if (filter == nullptr) return;
  filter->setShowChildren(checkState != Qt::Unchecked);
  expandAll();
  rowsChanged();
}

void QCESubEngineeringViewImpl::showSibling(int checkState) {
  auto* filter = filterOf(*treeGrid());
  if (filter == nullptr) return;
  filter->setShowSibling(checkState != Qt::Unchecked);
  expandAll();
  rowsChanged();
}

}  // namespace gui::qce
