#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "host/abst/qce/indirect_fee_controller.h"
#include "host/abst/qce/indirect_fee_right_model.h"
#include "workbench/operators/indirect_fee_operators.h"

namespace controllers {

/// The host side of the indirect fee page: its commands, and the way back from changed records to
/// the models that show them.
class IndirectFeeController : public abst::qce::QCEIndirectFeeController,
                              private records::Observer {
 public:
  /// Both must outlive the controller.
  IndirectFeeController(records::Project& project, operators::IndirectFeeRightOperator& items);
  ~IndirectFeeController() override;

  /// The model that hears of rows that come and go. Not owned; null for none.
  void setModel(abst::qce::QCEIndirectFeeRightModel* model) { model_ = model; }
  /// Called at the end of each edit, undo and redo: figures of groups and items may be other ones.
  void setFiguresChanged(std::function<void()> callback) { figuresChanged_ = std::move(callback); }

  bool canAddItem(proxy::Element* group) const override;
  proxy::Element* addItem(proxy::Element* group) override;
  bool canRemoveItems(const std::vector<proxy::Element*>& items) const override;
  bool removeItems(const std::vector<proxy::Element*>& items) override;

 private:
  void aboutToInsertFee(records::IndirectFeeGroup& group, int row) override;
  void feeInserted() override;
  void aboutToRemoveFee(records::IndirectFeeGroup& group, int row) override;
  void feeRemoved() override;
  void stepFinished() override;

  records::Project& project_;
  operators::IndirectFeeRightOperator& items_;
  abst::qce::QCEIndirectFeeRightModel* model_ = nullptr;
  std::function<void()> figuresChanged_;
  int row_ = -1;  // of the change that is under way, where it is shown
};

}  // namespace controllers
