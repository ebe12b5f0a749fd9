#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "framework/view_model.h"
#include "host/abst/qce/destructors/des_set_subcontract_view.h"
#include "workbench/operators/subcontract_operators.h"

namespace controllers {

/// The host side of the page of subcontracts: its commands, and the way back from changed records
/// to the models that show them.
class SubcontractController : public abst::qce::destructors::DesSetSubcontractView,
                              private records::Observer {
 public:
  /// All must outlive the controller.
  SubcontractController(records::Project& project, operators::SubcontractOperator& entries,
                        operators::SubcontractCollectOperator& collected,
                        operators::SubcontractBillOperator& bills);
  ~SubcontractController() override;

  /// The models that hear of rows that come, go and move. Not owned.
  void setModels(abst::BaseModel* entries, abst::BaseModel* collected);
  /// Called at the end of each edit, undo and redo: figures may be other ones.
  void setFiguresChanged(std::function<void()> callback) { figuresChanged_ = std::move(callback); }

  void setCurrentSubcontract(proxy::Element* entry) override;
  std::string handleMeteringMethod(proxy::Element* entry) override;
  proxy::Element* addSubcontract(proxy::Element* after) override;
  Elements duplicateSubcontracts(const Elements& entries) override;
  bool removeSubcontracts(const Elements& entries) override;
  bool moveUp(proxy::Element* entry) override { return move(entry, -1); }
  bool moveDown(proxy::Element* entry) override { return move(entry, +1); }
  abst::BaseModel* getBaseList() override;
  Elements addFromBase(const Elements& rows, proxy::Element* after) override;
  bool associate(const Elements& bills) override;
  bool disassociate(const Elements& bills) override;
  bool applyToOtherBills() override;
  bool removeCollected(const Elements& bills) override;
  bool moveCollected(const Elements& bills, proxy::Element* entry) override;

 private:
  using Work = std::function<void()>;
  /// Runs `work` as one undo step; all of it is taken back where it is refused.
  bool run(const std::string& name, const Work& work);
  bool move(proxy::Element* entry, int distance);
  /// Puts entries below `after`, at the end for null, and answers their rows.
  Elements add(const std::string& name, const std::vector<records::SubcontractData>& made,
               proxy::Element* after);
  std::vector<records::Bill*> sameWork(const records::Subcontract& entry) const;
  records::Subcontract* requireCurrent() const;

  void subcontractChanged(records::Subcontract& entry) override;
  void aboutToInsertSubcontract(int row) override;
  void subcontractInserted() override;
  void aboutToRemoveSubcontract(int row) override;
  void subcontractRemoved() override;
  void aboutToMoveSubcontract(int from, int to) override;
  void subcontractMoved() override;
  void aboutToAssign(records::Subcontract& entry, int row) override;
  void assigned() override;
  void aboutToUnassign(records::Subcontract& entry, int row) override;
  void unassigned() override;
  void stepFinished() override;

  records::Project& project_;
  operators::SubcontractOperator& entries_;
  operators::SubcontractCollectOperator& collected_;
  operators::SubcontractBillOperator& bills_;
  abst::BaseModel* entryModel_ = nullptr;
  abst::BaseModel* collectModel_ = nullptr;
  std::unique_ptr<domain::DisplayTable> baseTable_;  // keeps the column widths
  operators::SubcontractBaseOperator baseOperator_;
  gui::TViewModel<abst::BaseModel> baseModel_;
  std::function<void()> figuresChanged_;
  std::pair<int, int> moving_;  // from and to, while an entry moves
  int row_ = -1;                // of the entry that comes in
};

}  // namespace controllers
