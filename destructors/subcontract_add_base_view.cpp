#include "destructors/subcontract_add_base_view.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>

#include "framework/base_page.h"
#include "host/bwidgets/screen.h"
#include "host/bwidgets/table_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/styled_item_delegate.h"

namespace gui::qce::destructors {

DesSetSubcontractAddQCEBaseViewImpl::DesSetSubcontractAddQCEBaseViewImpl(QWidget* parent)
    : Dialog(parent) {
  setWindowTitle("从基础库添加分包");
  const auto part = [](int whole) { return qRound(whole * 0.7); };
  setMinimumSize(part(bwidgets::Screen::getNoIncludeTaskbartWidget()),
                 part(bwidgets::Screen::getNoIncludeTaskbartHeight()));

  table_ = new bwidgets::TableView(this);
  table_->setObjectName("DesSetSubcontract_base");
  table_->setItemDelegate(new gui::StyledItemDelegate(table_));
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setEmptyText("基础库没有条目");
  connect(table_, &QAbstractItemView::doubleClicked, this,
          &DesSetSubcontractAddQCEBaseViewImpl::chooseRow);
  table_->installEventFilter(this);

  buttons_ = createButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  auto* layout = new QVBoxLayout(this);
  layout->setMargin(10);
  layout->addWidget(table_, 1);
  layout->addWidget(buttons_);
}

DesSetSubcontractAddQCEBaseViewImpl::~DesSetSubcontractAddQCEBaseViewImpl() = default;

void DesSetSubcontractAddQCEBaseViewImpl::setModel(abst::BaseModel* model) {
  if (gui::showInGrid(table_, model, domain::keys::BRIName, domain::keys::BRICode) == nullptr) {
    return;
  }
  // The list keeps the order of its file.
  table_->header()->setSectionsClickable(false);
  table_->header()->setSortIndicatorShown(false);
  QPushButton* confirm = buttons_->button(QDialogButtonBox::Ok);
  confirm->setEnabled(false);
  connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, confirm,
          [this, confirm] { confirm->setEnabled(table_->selectionModel()->hasSelection()); });
}

bool DesSetSubcontractAddQCEBaseViewImpl::showAddQCEBaseDialog() {
  chosen_.clear();
  if (table_->selectionModel() != nullptr) table_->clearSelection();
  table_->setFocus();
  return exec() == 1 && !chosen_.empty();
}

void DesSetSubcontractAddQCEBaseViewImpl::accept() {
  chosen_ = table_->selectedElements();
  Dialog::accept();
}

// In a grid that is only read, Return need not lead to the next row.
bool DesSetSubcontractAddQCEBaseViewImpl::eventFilter(QObject* watched, QEvent* event) {
  const int key =
      event->type() == QEvent::KeyPress ? static_cast<QKeyEvent*>(event)->key() : Qt::Key_unknown;
  if (watched != table_ || (key != Qt::Key_Return && key != Qt::Key_Enter) ||
      table_->selectedElements().empty()) {
    return Dialog::eventFilter(watched, event);
  }
  accept();
  return true;
}

void DesSetSubcontractAddQCEBaseViewImpl::chooseRow(const QModelIndex& row) {
  table_->selectElements({table_->elementAt(row)});
  accept();
}

}  // namespace gui::qce::destructors
