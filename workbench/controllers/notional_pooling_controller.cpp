#include "workbench/controllers/notional_pooling_controller.h"

#include <QApplication>
#include <QMessageBox>

#include "host/app/services.h"
#include "pooling/notional_pooling_filter_model.h"
#include "pooling/notional_pooling_model.h"
#include "pooling/notional_pooling_view.h"
#include "workbench/operators/notional_pooling_operator.h"

namespace controllers {
namespace {

void collectBills(proxy::Element& node, std::vector<proxy::Element*>& bills) {
  if (dynamic_cast<records::Bill*>(&node) != nullptr) {
    bills.push_back(&node);
    return;
  }
  for (int row = 0; row < node.childCount(); ++row) collectBills(*node.child(row), bills);
}

}  // namespace

NotionalPoolingController::NotionalPoolingController(records::Project& project)
    : project_(project), table_(operators::makeNotionalPoolingTable()) {}

NotionalPoolingController::~NotionalPoolingController() = default;

bool NotionalPoolingController::canPoolInto(const proxy::Element* item) {
  return dynamic_cast<const records::ResourceItem*>(item) != nullptr;
}

void NotionalPoolingController::openPooling(proxy::Element* element) {
  const auto* item = dynamic_cast<const records::ResourceItem*>(element);
  if (item == nullptr) return;
  std::vector<proxy::Element*> bills;
  for (records::Bill* bill : project_.associatedBills(*item)) {
    if (operators::NotionalPoolingOperator::hasRemainder(project_, *bill)) bills.push_back(bill);
  }
  if (bills.empty()) {
    if (records::StructureNode* unitWork = project_.unitWorkOf(*item)) {
      collectBills(*unitWork, bills);
    }
  }
  openPooling(element, bills, true);
}

void NotionalPoolingController::openPooling(proxy::Element* element,
                                            const std::vector<proxy::Element*>& offered,
                                            bool withBills) {
  const scoped_refptr<records::ResourceItem> item(dynamic_cast<records::ResourceItem*>(element));
  if (!item || view_ != nullptr) return;
  std::vector<proxy::Element*> bills;
  for (proxy::Element* bill : offered) {
    const auto* found = dynamic_cast<const records::Bill*>(bill);
    if (found != nullptr && operators::NotionalPoolingOperator::hasRemainder(project_, *found)) {
      bills.push_back(bill);
    }
  }
  if (bills.empty()) {
    app::qce::GetQCEChannel()->message(
        "“" + item->code().str() + " " + item->name().str() +
            "”没有可归集的清单：清单的预算工料机已全部归集到成本。如需重新归集，请先取消相应清单的"
            "关联。",
        QMessageBox::Ok);
    return;
  }

  operators::NotionalPoolingOperator op(project_);
  gui::qce::QCENotionalPoolingModelImpl model;
  model.setDisplayTable(table_.get());
  model.setOperator(&op);
  gui::qce::QCENotionalPoolingFilterModelImpl filter(&model);
  filter.setSubEngineerBills(bills);
  QWidget* parent = QApplication::activeModalWidget();
  gui::qce::QCENotionalPoolingViewImpl view(parent != nullptr ? parent
                                                              : QApplication::activeWindow());
  view.setController(this);
  view.setModel(&filter);
  view.setCurrentQCEGLJItem(item.get());
  view.setAssociatedBills(bills);
  filter_ = &filter;
  view_ = &view;
  if (!withBills && bills.size() == 1) setCurrentSubEngBill(bills.front());
  view.showDialog(withBills);
  view_ = nullptr;
  filter_ = nullptr;
  currentBill_ = nullptr;
}

void NotionalPoolingController::setCurrentSubEngBill(proxy::Element* bill) {
  if (view_ == nullptr) return;
  currentBill_ = bill;
  view_->setCurrentAssociatedBill(bill);
  filter_->setCurrentSubEngBill(bill);
}

void NotionalPoolingController::usedToOtherBills(proxy::Element* bill) {
  if (filter_ != nullptr) filter_->usedToOtherBills(bill != nullptr ? bill : currentBill_);
}

void NotionalPoolingController::collectToQCEResItem() {
  if (filter_ != nullptr) filter_->collectToQCEResItem();
}

}  // namespace controllers
