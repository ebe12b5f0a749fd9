#pragma once

#include <string>
#include <vector>

#include "contract_export.h"

namespace proxy {
class Element;
}

namespace abst {
class BaseModel;
}

namespace abst::qce::destructors {

/// The host side of the subcontract setting page: what the page tells it, and the commands that it
/// carries out. Entries are rows of the table of entries, or top-level rows of the collection tree;
/// either will do.
///
/// Each command is one undo step, all or nothing. One that does nothing has told the user why
/// before it answers false, null or empty.
class QCE_CONTRACT_EXPORT DesSetSubcontractView {
 public:
  using Elements = std::vector<proxy::Element*>;

  virtual ~DesSetSubcontractView();

  /// The current entry of the page that is shown; null for none. The commands about bills are about
  /// this entry.
  virtual void setCurrentSubcontract(proxy::Element* entry) = 0;
  /// The metering method of the entry was edited. Called inside the undo step of the edit, maybe
  /// more than once. Answers a line (UTF-8) that tells the user what has become of the entry.
  virtual std::string handleMeteringMethod(proxy::Element* entry) = 0;

  /// Puts a new entry below `after`, at the end for null, and answers its row in the table.
  virtual proxy::Element* addSubcontract(proxy::Element* after) = 0;
  /// Puts entries like these, without their bills, below the last of them.
  virtual Elements duplicateSubcontracts(const Elements& entries) = 0;
  /// Asks the user first where an entry has bills or resource items.
  virtual bool removeSubcontracts(const Elements& entries) = 0;
  virtual bool moveUp(proxy::Element* entry) = 0;
  virtual bool moveDown(proxy::Element* entry) = 0;

  /// Reads the base list; its rows stay as they are until the next call. Null where there is none.
  virtual BaseModel* getBaseList() = 0;
  /// Makes entries of these rows of the base list, below `after`, at the end for null. Answers
  /// their rows in the table.
  virtual Elements addFromBase(const Elements& rows, proxy::Element* after) = 0;

  /// Associates bills, rows of the model of bills, with the current entry, or takes them from it.
  virtual bool associate(const Elements& bills) = 0;
  virtual bool disassociate(const Elements& bills) = 0;
  /// Associates the current entry with the bills elsewhere that are the same work as one of its
  /// own, after asking the user.
  virtual bool applyToOtherBills() = 0;
  /// Takes bills, rows of the collection tree, from the entries that they stand below, or moves
  /// them to another one.
  virtual bool removeCollected(const Elements& bills) = 0;
  virtual bool moveCollected(const Elements& bills, proxy::Element* entry) = 0;
};

}  // namespace abst::qce::destructors
