#pragma once

#include <memory>
#include <vector>

#include "host/abst/qce/notional_pooling_controller.h"
#include "host/abst/qce/notional_pooling_filter_model.h"
#include "host/abst/qce/notional_pooling_view.h"
#include "host/domain/display_table.h"
#include "workbench/records/project.h"

namespace controllers {

/// The host side of the pooling dialog: opens it for a cost resource item and some bills, and
/// passes on what the user asks there.
class NotionalPoolingController : public abst::qce::QCENotionalPoolingController {
 public:
  /// The project must outlive the controller.
  explicit NotionalPoolingController(records::Project& project);
  ~NotionalPoolingController() override;

  /// Whether something can be pooled into the element at all: it is a cost resource item.
  static bool canPoolInto(const proxy::Element* item);

  /// Asks what to pool into a cost resource item, and books it. Offers the bills that are
  /// associated with the item and have something left; where there are none, all bills of its unit
  /// work that have something left. A message tells when there are none either.
  void openPooling(proxy::Element* item);
  /// As above, for these bills; those that have nothing left are not offered. Without the list of
  /// bills, all their rows are shown at once.
  void openPooling(proxy::Element* item, const std::vector<proxy::Element*>& bills, bool withBills);

  // What the dialog asks.
  void setCurrentSubEngBill(proxy::Element* bill) override;
  void usedToOtherBills(proxy::Element* bill) override;
  void collectToQCEResItem() override;

 private:
  records::Project& project_;
  std::unique_ptr<domain::DisplayTable> table_;  // keeps the column widths
  // While the dialog is open.
  abst::qce::QCENotionalPoolingView* view_ = nullptr;
  abst::qce::QCENotionalPoolingFilterModel* filter_ = nullptr;
  proxy::Element* currentBill_ = nullptr;
};

}  // namespace controllers
