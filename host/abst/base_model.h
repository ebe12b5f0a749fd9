#pragma once

#include "contract_export.h"

namespace domain {
class DisplayTable;
class Operator;
}  // namespace domain

namespace proxy {
class Element;
class ElementGroup;
}  // namespace proxy

namespace abst {

/// The operations that every abstract model and every abstract filter model has, in slot order.
/// A model answers them itself; a filter model passes them on to the model that it filters.
class QCE_CONTRACT_EXPORT BaseModel {
 public:
  virtual ~BaseModel();

  virtual void setDisplayTable(domain::DisplayTable* table) = 0;  ///< not owned
  virtual domain::DisplayTable* getDisplayTable() const = 0;
  /// The top-level rows; null when the model is empty.
  virtual proxy::ElementGroup* getRoot() const = 0;
  virtual domain::Operator* getOperator() const = 0;
  virtual void setOperator(domain::Operator* op) = 0;  ///< not owned
  /// Filters and sorts again; a plain model does nothing.
  virtual void invalidate() = 0;
  virtual bool canMoveUp(proxy::Element* element) const = 0;
  virtual bool canMoveDown(proxy::Element* element) const = 0;

  // Announcements around a change of the element tree. Each begin is followed by the change and by
  // its end; a null parent means the top level.

  /// `count` rows come in before `before`, or at the end when that is null.
  virtual void beginAddItem(proxy::Element* before, int count, proxy::Element* parent) = 0;
  virtual void endAddItem() = 0;
  /// `count` rows from `first` on go.
  virtual void beginDelItem(proxy::Element* first, int count, proxy::Element* parent) = 0;
  virtual void endDelItem() = 0;
  virtual void beginMoveUpItem(proxy::Element* item, proxy::Element* parent) = 0;
  virtual void endMoveUpItem() = 0;
  virtual void beginMoveDownItem(proxy::Element* item, proxy::Element* parent) = 0;
  virtual void endMoveDownItem() = 0;
};

}  // namespace abst
