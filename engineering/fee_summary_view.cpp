#include "engineering/fee_summary_view.h"

#include <QSplitter>
#include <QStackedWidget>
#include <QStandardItemModel>
#include <QTreeView>

namespace gui::qce {

QCEFeeSummaryViewImpl::QCEFeeSummaryViewImpl(QWidget* parent)
    : NavigationPage(QStringLiteral("QCEFeeSummaryTreeView"), 15, 85, parent),
      names_(new QStandardItemModel(this)) {
  setWindowTitle(QStringLiteral("费用汇总"));
  splitter()->setSizes({1000, 8000});
  tree()->setRootIsDecorated(false);
  tree()->setModel(names_);
  followTree();
}

QCEFeeSummaryViewImpl::~QCEFeeSummaryViewImpl() = default;

void QCEFeeSummaryViewImpl::setModel(abst::BaseModel* /*model*/) {}

void QCEFeeSummaryViewImpl::addSubView(const std::string& name, abst::BaseView* view) {
  const int before = stack()->count();
  NavigationPage::addSubView(name, view);
  if (stack()->count() == before) return;
  auto* item = new QStandardItem(QString::fromStdString(name));
  item->setEditable(false);
  item->setToolTip(item->text());
  names_->appendRow(item);
}

void QCEFeeSummaryViewImpl::showFirst(const QModelIndex& /*first*/) {
  stack()->setCurrentIndex(0);
}

}  // namespace gui::qce
