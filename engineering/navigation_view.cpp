#include "engineering/navigation_view.h"

#include <QStackedWidget>
#include <QTreeView>

#include "host/abst/base_model.h"
#include "host/base/log.h"

namespace gui::qce {

QCENavigationViewImpl::QCENavigationViewImpl(QWidget* parent)
    : NavigationPage(QStringLiteral("QCENavigationTreeView"), 20, 80, parent) {}

QCENavigationViewImpl::~QCENavigationViewImpl() = default;

void QCENavigationViewImpl::setModel(abst::BaseModel* model) {
  auto* items = dynamic_cast<QAbstractItemModel*>(model);
  if (items == nullptr) {
    base::LogError("a navigation page was given a model that it cannot show");
    return;
  }
  tree()->setModel(items);
  followTree();
}

void QCENavigationViewImpl::delSubView(abst::BaseView* view) {
  removeSubView(view);
}

void QCENavigationViewImpl::showFirst(const QModelIndex& first) {
  const std::string name = first.data(Qt::DisplayRole).toString().toStdString();
  if (auto* widget = dynamic_cast<QWidget*>(subView(name))) stack()->setCurrentWidget(widget);
}

}  // namespace gui::qce
