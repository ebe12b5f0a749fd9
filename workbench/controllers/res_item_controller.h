#pragma once

#include <functional>
#include <unordered_set>
#include <vector>

#include "host/abst/qce/res_item_controller.h"
#include "host/abst/qce/res_item_model.h"
#include "workbench/records/project.h"

namespace controllers {

class AssociationBillController;
class NotionalPoolingController;

/// The host side of the resource-item page: its commands, and the way back from changed records to
/// the models that show them.
class ResItemController : public abst::qce::QCEResItemController, private records::Observer {
 public:
  /// The project must outlive the controller.
  explicit ResItemController(records::Project& project);
  ~ResItemController() override;

  /// The model that hears of inserted, removed and moved rows, and is told to rebuild its groups
  /// when more than that has changed. Not owned; null for none. Give it the *item* model, not a
  /// filter over it.
  void setModel(abst::qce::QCEResItemModel* model) { model_ = model; }
  /// Called at the end of each edit, undo and redo, once for each item and each grouping row with
  /// other values; the caller announces all cells of that row.
  void setElementChanged(std::function<void(proxy::Element*)> callback) {
    elementChanged_ = std::move(callback);
  }
  /// Called at the end of each edit, undo and redo: totals may be other ones.
  void setTotalsChanged(std::function<void()> callback) { totalsChanged_ = std::move(callback); }

  /// What opens the pooling dialog; not owned, null for none.
  void setPooling(NotionalPoolingController* pooling) { pooling_ = pooling; }
  /// What opens the bill association; not owned, null for none.
  void setAssociation(AssociationBillController* association) { association_ = association; }
  /// Called at the end of each edit, undo and redo that touched bookings, after the above: items
  /// may have got or lost their association mark.
  void setBookingsChanged(std::function<void()> callback) {
    bookingsChanged_ = std::move(callback);
  }

  std::vector<std::pair<std::string, proxy::Element*>> getSubProjects() const override;
  bool moveUp(proxy::Element* item) override;
  bool moveDown(proxy::Element* item) override;
  std::vector<std::string> getItemTypes() const override;
  /// With an account by its type and the usual tax rate, named "新增人工" and so on.
  proxy::Element* insertItem(proxy::Element* at, const std::string& type) override;
  bool canDeleteItems(const std::vector<proxy::Element*>& items) const override;
  void deleteItems(const std::vector<proxy::Element*>& items) override;
  bool canCollectToCost(proxy::Element* item) const override;
  void collectToCost(proxy::Element* item) override;
  bool canAssociateBills(const std::vector<proxy::Element*>& items) const override;
  void associateBills(const std::vector<proxy::Element*>& items) override;

 private:
  void itemChanged(records::ResourceItem& item) override;
  void bookingChanged(records::ResourceItem& item) override;
  void aboutToInsert(records::ResourceGroup& parent, int row) override;
  void inserted() override;
  void aboutToRemove(records::ResourceGroup& parent, int row) override;
  void removed() override;
  void aboutToSwap(records::ResourceGroup& group, int upper) override;
  void swapped() override;
  void rearranged(records::ResourceGroup& group) override;
  void stepFinished() override;
  records::Text freeCode(const records::StructureNode& unitWork, records::Category category);
  void note(proxy::Element* element);
  /// Whether the element is among the model's rows; those of other sub-projects may not be.
  bool isShown(const proxy::Element* element) const;

  records::Project& project_;
  abst::qce::QCEResItemModel* model_ = nullptr;
  NotionalPoolingController* pooling_ = nullptr;
  AssociationBillController* association_ = nullptr;
  std::function<void(proxy::Element*)> elementChanged_;
  std::function<void()> totalsChanged_;
  std::function<void()> bookingsChanged_;
  std::vector<scoped_refptr<proxy::Element>> changed_;
  std::unordered_set<proxy::Element*> known_;
  bool rebuild_ = false;
  bool booked_ = false;
  bool announced_ = false;  // between a begin and its end
};

}  // namespace controllers
