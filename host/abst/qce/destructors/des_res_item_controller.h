#pragma once

#include <string>
#include <vector>

#include "contract_export.h"

namespace proxy {
class Element;
}

namespace abst::qce::destructors {

/// A cost account as a user chooses it.
struct CostAccountEntry {
  proxy::Element* account = nullptr;
  std::string code, name;  ///< UTF-8
  int level = 0;           ///< 0 at the top; each entry follows the one that it lies below
};

/// A bill that a resource item comes from, as texts (UTF-8).
struct SourceBill {
  proxy::Element* bill = nullptr;
  std::string code, name, features, unit, quantity;
};

/// What resource items can be collected into: a subcontract entry, or one that is still to be made.
struct CollectionTarget {
  proxy::Element* entry = nullptr;    ///< null: a new one
  std::string name;                   ///< UTF-8, like all texts here
  proxy::Element* account = nullptr;  ///< cost account, may be null
  std::string features;               ///< 项目特征
  std::string price;                  ///< 劳务、专业分包单价 excluding tax, yuan
  std::string metering;               ///< what the price is for: per unit of what, or for all
};

/// What the user entered to collect resource items.
struct CollectionSetting {
  proxy::Element* entry = nullptr;  ///< to collect into; null makes a new one of what follows
  proxy::Element* account = nullptr;
  std::string features;
  std::string price;  ///< a number or an expression, yuan
};

/// What a collection does to the cost, as texts in yuan excluding tax.
struct CollectionEffect {
  std::string leaves;  ///< what the items counted for so far
  std::string pays;    ///< what the entry pays afterwards; empty while the price has no value
};

/// What the page of design-side resource items asks of the host. Commands that change data are one
/// undo step each, are done for all items or for none, and have told the user why when they were
/// refused. Items are those of the page's model, without its grouping rows.
class QCE_CONTRACT_EXPORT DesResItemController {
 public:
  using Items = std::vector<proxy::Element*>;

  virtual ~DesResItemController();

  /// The page's current row is another one; null for none. It may be a grouping row.
  virtual void setCurrentItem(proxy::Element* item) = 0;
  /// Whether the item is closed to linking, unlinking and collecting.
  virtual bool isClosed(proxy::Element* item) const = 0;
  /// Why the item is closed and what opens it, in UTF-8. By default nothing is said.
  virtual std::string getClosedReason(proxy::Element* item) const;

  virtual void linkToCost(const Items& items) = 0;
  virtual void unlinkFromCost(const Items& items) = 0;

  /// In the order of the account tree.
  virtual std::vector<CostAccountEntry> getCostAccounts() const = 0;
  /// The account of an item; null when it has none.
  virtual proxy::Element* getCostAccount(proxy::Element* item) const = 0;
  /// Whether setCostAccount writes to the current item alone.
  virtual void setCostAccountToLocal(bool local) = 0;
  /// Sets the account of the items (null takes it away).
  virtual void setCostAccount(const Items& items, proxy::Element* account) = 0;

  /// What the items can be collected into; the first is the proposal for a new entry.
  virtual std::vector<CollectionTarget> getCollectionTargets(const Items& items) const = 0;
  /// False after telling the user why these items cannot be collected, before anything else is
  /// asked. By default all can.
  virtual bool canCollect(const Items& items) const;
  /// What collecting with this setting would do. By default nothing is known.
  virtual CollectionEffect getCollectionEffect(const Items& items,
                                               const CollectionSetting& setting) const;
  /// False where it was refused.
  virtual bool setCollection(const Items& items, const CollectionSetting& setting) = 0;
  virtual void cancelCollection(const Items& items) = 0;

  /// The bills that the item comes from, in the order of the project.
  virtual std::vector<SourceBill> getSourceBills(proxy::Element* item) const = 0;
  /// Leads to them.
  virtual void findSource(proxy::Element* item) = 0;

  // The set of items. By default nothing happens.
  /// Leads to the page where items are added, to the place of the current row (null for none).
  virtual void showItemPage(proxy::Element* current);
  virtual void insertItem(proxy::Element* current);
  virtual void deleteItems(const Items& items);
};

}  // namespace abst::qce::destructors
