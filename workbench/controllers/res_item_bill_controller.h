#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/abst/qce/res_item_bill_view.h"
#include "workbench/operators/res_item_bill_operator.h"
#include "workbench/records/project.h"

namespace controllers {

class NotionalPoolingController;

/// The host side of the bills' pane: names its item, opens pooling, and tells when the rows that
/// its operator shows have other figures.
class ResItemBillController : public abst::qce::QCEResItemBillController,
                              private records::Observer {
 public:
  /// Both must outlive the controller; so must `pooling`, which may be null.
  ResItemBillController(records::Project& project, operators::ResItemBillOperator& rows,
                        NotionalPoolingController* pooling);
  ~ResItemBillController() override;

  /// Called at the end of an edit, undo or redo that concerns the item shown.
  void setRowsChanged(std::function<void()> callback) { rowsChanged_ = std::move(callback); }

  std::string getTableName(const proxy::Element* item) const override;
  std::string getItemName(const proxy::Element* item) const override;
  void collect(proxy::Element* item, const std::vector<proxy::Element*>& bills) override;
  bool canCollect() const override { return pooling_ != nullptr; }
  void withdraw(const std::vector<proxy::Element*>& bills) override { rows_.withdraw(bills); }
  bool canWithdraw(const std::vector<proxy::Element*>& bills) const override {
    return rows_.pooledCount(rows_.billsOf(bills)) > 0;
  }

 private:
  void itemChanged(records::ResourceItem& item) override;
  void bookingChanged(records::ResourceItem& item) override;
  void stepFinished() override;

  records::Project& project_;
  operators::ResItemBillOperator& rows_;
  NotionalPoolingController* pooling_;
  std::function<void()> rowsChanged_;
  bool concerned_ = false;  // the step that is under way touches the item shown
};

}  // namespace controllers
