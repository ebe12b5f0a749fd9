#pragma once

#include <QModelIndex>
#include <boost/signals2/signal.hpp>
#include <list>
#include <memory>
#include <string>

#include "host/gui/grid_head_data.h"
#include "host_widgets_export.h"

namespace proxy {
class Element;
}

namespace gui {

/// What views and delegates ask of a model beyond QAbstractItemModel, in slot order. Columns and
/// indexes are those of the model itself: a proxy answers in its own.
class QCE_HOST_WIDGETS_EXPORT ViewModel {
 public:
  using LayoutSignal = boost::signals2::signal<void()>;
  using LayoutSlot = LayoutSignal::slot_type;

  virtual ~ViewModel();

  virtual QModelIndex makeIndex(proxy::Element* element, int column) const = 0;
  virtual proxy::Element* getInternalData(const QModelIndex& index) const = 0;
  /// True and the remembered width in pixels when the column has one.
  virtual bool getColumnWidth(int column, int& width) const = 0;
  virtual void setColumnWidth(int column, int width) = 0;
  /// The column of a field key; negative when there is none.
  virtual int getColumnIndex(const std::string& key) const = 0;
  /// The field key of a column; empty when there is none.
  virtual std::string getColumnName(int column) const = 0;
  /// Appends the groups of a two-level header, in order.
  virtual void getMultiHeaderData(std::list<std::shared_ptr<StGridHeadData>>& groups) const = 0;
  virtual bool isAcceptRow(proxy::Element* element) const = 0;
  virtual bool isAcceptColumn(int column) const = 0;
  /// Slots around a deferred sort; a plain model never calls them. A slot that may die first must
  /// track its owner.
  virtual void connectLayoutAboutToBeChanged(const LayoutSlot& slot) = 0;
  virtual void connectLayoutChanged(const LayoutSlot& slot) = 0;
};

}  // namespace gui
