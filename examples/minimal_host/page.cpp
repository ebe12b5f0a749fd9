#include "page.h"

#include <QHeaderView>
#include <QTreeView>
#include <QVBoxLayout>

void LinesModel::announceLine(proxy::Element* line) {
  emit dataChanged(makeIndex(line, 0), makeIndex(line, columnCount() - 1),
                   {Qt::DisplayRole, Qt::EditRole});
}

LinesPage::LinesPage(QWidget* parent) : Widget(parent), grid_(new QTreeView(this)) {
  grid_->setRootIsDecorated(false);
  grid_->setUniformRowHeights(true);
  grid_->setAlternatingRowColors(true);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(grid_);
}

void LinesPage::setModel(abst::BaseModel* model) {
  // The abstract model of a page is the Qt model of its grid; one that is not shows nothing.
  auto* items = dynamic_cast<QAbstractItemModel*>(model);
  if (items == nullptr) return;
  grid_->setModel(items);
  grid_->header()->resizeSection(0, 220);
}

void LinesPage::activate() {
  grid_->setFocus();
  grid_->setCurrentIndex(grid_->model()->index(0, 0));
}

void LinesPage::deactivate() {}

void LinesPage::updateView() {
  grid_->viewport()->update();
}
