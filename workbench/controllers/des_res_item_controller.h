#pragma once

#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

#include "host/abst/qce/destructors/des_res_item_controller.h"
#include "host/abst/qce/res_item_controller.h"
#include "workbench/operators/des_res_item_operator.h"
#include "workbench/records/project.h"

namespace controllers {

/// The host side of the design-side resource-item page: its commands, and the way back from changed
/// records to the models that show them.
class DesResItemController : public abst::qce::destructors::DesResItemController,
                             private records::Observer {
 public:
  /// All must outlive the controller. `items` makes and deletes items.
  DesResItemController(records::Project& project, operators::DesResItemOperator& rows,
                       abst::qce::QCEResItemController& items);
  ~DesResItemController() override;
  DesResItemController(const DesResItemController&) = delete;
  DesResItemController& operator=(const DesResItemController&) = delete;

  /// What has changed at the end of an edit, an undo or a redo.
  struct Changes {
    bool rebuild = false;               ///< items have come or gone: the rows are to be made anew
    std::vector<proxy::Element*> rows;  ///< of items whose cells may say something else
    bool bills = false;                 ///< bills or bookings, so what items come from
  };
  void setChanged(std::function<void(const Changes&)> callback) { changed_ = std::move(callback); }
  /// What leads to bills; answers whether it could.
  void setSourceFollower(std::function<bool(const std::vector<proxy::Element*>&)> follow) {
    follow_ = std::move(follow);
  }
  /// What leads to the page where items are added, and to this item there; null for none.
  void setItemFollower(std::function<void(records::ResourceItem*)> follow) {
    followItem_ = std::move(follow);
  }

  void setCurrentItem(proxy::Element* row) override;
  bool isClosed(proxy::Element* row) const override;
  std::string getClosedReason(proxy::Element* row) const override;
  void linkToCost(const Items& rows) override;
  void unlinkFromCost(const Items& rows) override;
  std::vector<abst::qce::destructors::CostAccountEntry> getCostAccounts() const override;
  proxy::Element* getCostAccount(proxy::Element* row) const override;
  void setCostAccountToLocal(bool local) override { local_ = local; }
  void setCostAccount(const Items& rows, proxy::Element* account) override;
  std::vector<abst::qce::destructors::CollectionTarget> getCollectionTargets(
      const Items& rows) const override;
  bool canCollect(const Items& rows) const override;
  abst::qce::destructors::CollectionEffect getCollectionEffect(
      const Items& rows, const abst::qce::destructors::CollectionSetting& setting) const override;
  bool setCollection(const Items& rows,
                     const abst::qce::destructors::CollectionSetting& setting) override;
  void cancelCollection(const Items& rows) override;
  std::vector<abst::qce::destructors::SourceBill> getSourceBills(
      proxy::Element* row) const override;
  void findSource(proxy::Element* row) override;
  void showItemPage(proxy::Element* current) override;
  void insertItem(proxy::Element* current) override;
  void deleteItems(const Items& rows) override;

 private:
  using ResourceItems = std::vector<records::ResourceItem*>;

  void itemChanged(records::ResourceItem& item) override;
  void bookingChanged(records::ResourceItem& item) override;
  void billChanged(records::Bill& bill) override;
  void subcontractChanged(records::Subcontract& entry) override;
  void aboutToInsert(records::ResourceGroup& parent, int row) override;
  void aboutToRemove(records::ResourceGroup& parent, int row) override;
  void aboutToSwap(records::ResourceGroup& group, int upper) override;
  void rearranged(records::ResourceGroup& group) override;
  void stepFinished() override;

  static ResourceItems itemsOf(const Items& rows);
  /// Writes inside one undo step. A refusal takes everything back, is told to the user and answered
  /// with false.
  static bool write(const char* name, const std::function<void()>& change);
  void setLinked(const Items& rows, bool linked);
  records::SubcontractData newEntry(const ResourceItems& items) const;
  /// Entries that have neither items nor bills once these items are given back.
  std::vector<scoped_refptr<records::Subcontract>> emptiedBy(const ResourceItems& items) const;

  records::Project& project_;
  operators::DesResItemOperator& rows_;
  abst::qce::QCEResItemController& items_;
  std::function<void(const Changes&)> changed_;
  std::function<bool(const std::vector<proxy::Element*>&)> follow_;
  std::function<void(records::ResourceItem*)> followItem_;
  scoped_refptr<proxy::Element> current_;
  bool local_ = false;
  std::vector<scoped_refptr<records::ResourceItem>> edited_;
  std::unordered_set<const records::Subcontract*> entries_;
  bool rebuild_ = false;
  bool bills_ = false;
};

}  // namespace controllers
