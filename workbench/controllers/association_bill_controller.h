#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "host/abst/qce/association_bill_controller.h"
#include "host/abst/qce/association_bill_right_model.h"
#include "host/domain/display_table.h"
#include "workbench/records/project.h"

namespace operators {
class AssociationBillOperator;
}

namespace controllers {

/// The host side of the bill association dialog: opens it for cost resource items of one unit work,
/// and hands over to pooling when the user asked for that.
class AssociationBillController : public abst::qce::QCEAssociationBillController {
 public:
  /// Opens the pooling dialog for an item and its bills.
  using OpenPooling =
      std::function<void(proxy::Element* item, const std::vector<proxy::Element*>& bills)>;

  /// The project must outlive the controller.
  AssociationBillController(records::Project& project, OpenPooling openPooling);
  ~AssociationBillController() override;

  /// Asks which bills to associate with the items, and does it. Refused with a message when they
  /// are of several unit works or there are no bills. Elements that are no item are left out.
  void openAssociation(const std::vector<proxy::Element*>& elements);

  // What the dialog asks.
  bool mayAssociate() override;
  bool associate(bool unify) override;
  void collectToCost() override;

 private:
  records::Project& project_;
  OpenPooling openPooling_;
  std::unique_ptr<domain::DisplayTable> sections_, bills_;  // keep the column widths
  // While the dialog is open.
  std::vector<scoped_refptr<records::ResourceItem>> items_;
  operators::AssociationBillOperator* operator_ = nullptr;
  abst::qce::QCEAssociationBillRightModel* model_ = nullptr;
};

}  // namespace controllers
