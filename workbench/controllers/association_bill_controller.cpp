#include "workbench/controllers/association_bill_controller.h"

#include <QApplication>
#include <QMessageBox>
#include <algorithm>
#include <utility>

#include "host/app/services.h"
#include "pooling/association_bill_left_model.h"
#include "pooling/association_bill_right_filter_model.h"
#include "pooling/association_bill_right_model.h"
#include "pooling/association_bill_view.h"
#include "workbench/operators/association_bill_operators.h"

namespace controllers {
namespace {

void tell(const std::string& message) {
  app::qce::GetQCEChannel()->message(message, QMessageBox::Ok);
}

}  // namespace

AssociationBillController::AssociationBillController(records::Project& project,
                                                     OpenPooling openPooling)
    : project_(project),
      openPooling_(std::move(openPooling)),
      sections_(operators::makeAssociationSectionTable()),
      bills_(operators::makeAssociationBillTable()) {}

AssociationBillController::~AssociationBillController() = default;

void AssociationBillController::openAssociation(const std::vector<proxy::Element*>& elements) {
  if (model_ != nullptr) return;
  std::vector<proxy::Element*> items;
  records::StructureNode* unitWork = nullptr;
  for (proxy::Element* element : elements) {
    if (dynamic_cast<records::ResourceItem*>(element) == nullptr) continue;
    records::StructureNode* own = project_.unitWorkOf(*element);
    if (unitWork != nullptr && own != nullptr && own != unitWork) {
      tell("选中的工料机分属“" + unitWork->name + "”和“" + own->name +
           "”等不同的单位工程，不能一起关联清单。\n请只选中同一单位工程的工料机，再关联清单。");
      return;
    }
    unitWork = own;
    items.push_back(element);
  }
  if (items.empty() || unitWork == nullptr) return;

  operators::AssociationSectionOperator sections;
  operators::AssociationBillOperator op(project_);
  gui::qce::QCEAssociationBillLeftModelImpl left;
  left.setDisplayTable(sections_.get());
  left.setOperator(&sections);
  left.setSubProject(unitWork);
  gui::qce::QCEAssociationBillRightModelImpl right;
  right.setDisplayTable(bills_.get());
  right.setOperator(&op);
  gui::qce::QCEAssociationBillRightFilterModelImpl filter(&right);
  filter.setBaseResItem(items);
  filter.setSubProject(unitWork);
  filter.resetModel();
  if (right.rowCount() == 0) {
    tell("单位工程“" + unitWork->name + "”没有清单，无法关联。");
    return;
  }

  QWidget* parent = QApplication::activeModalWidget();
  gui::qce::QCEAssociationBillViewImpl view(parent != nullptr ? parent
                                                              : QApplication::activeWindow());
  view.setController(this);
  view.setModel(&left);
  view.setRightModel(&filter);
  view.setCurrentItems(items);
  view.setUnifyFBChecked(op.isUnified());
  // Pooling is for one item at a time.
  view.setCollectedHidden(items.size() != 1 || !openPooling_);
  items_.clear();
  for (proxy::Element* item : items) {
    items_.emplace_back(static_cast<records::ResourceItem*>(item));
  }
  operator_ = &op;
  model_ = &right;
  view.show();
  model_ = nullptr;
  operator_ = nullptr;
  items_.clear();
}

bool AssociationBillController::mayAssociate() {
  if (model_ == nullptr) return false;
  std::vector<proxy::Element*> cancelled;
  model_->getCancelAssociationBills(cancelled);
  const int pooled = operator_->pooledCount(cancelled);
  if (pooled == 0) return true;
  const std::string question =
      "取消关联的清单中有 " + std::to_string(pooled) +
      " 条已归集到所选的成本工料机。\n取消关联后，归集的数量将退回原工料机。是否继续？";
  return app::qce::GetQCEChannel()->message(question, QMessageBox::Yes | QMessageBox::No) ==
         QMessageBox::Yes;
}

bool AssociationBillController::associate(bool unify) {
  return model_ != nullptr && model_->associationBill(unify);
}

void AssociationBillController::collectToCost() {
  if (items_.size() != 1 || !openPooling_) return;
  const scoped_refptr<records::ResourceItem> item = items_.front();
  const std::vector<records::Bill*> associated = project_.associatedBills(*item);
  if (associated.empty()) return;
  openPooling_(item.get(), {associated.begin(), associated.end()});
}

}  // namespace controllers
