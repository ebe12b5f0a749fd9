#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/abst/qce/res_item_filter_model.h"

class QAbstractItemModel;

namespace abst::qce {
class QCEResItemController;
}

namespace gui {
class ViewModel;
}

namespace gui::qce {

/// The commands of the resource-item page. Each is one undo step, and is done for all items that it
/// is given or for none: where the host refuses one of them, what was written before is taken back
/// and the answer is a message for the user that names the item. An empty answer is success.
class ResItemCommands {
 public:
  using Items = std::vector<proxy::Element*>;

  ResItemCommands() = default;
  /// `model` is the page's filter model, a QAbstractItemModel and a gui::ViewModel too.
  explicit ResItemCommands(abst::qce::QCEResItemFilterModel* model);

  bool isValid() const { return model_ != nullptr && items_ != nullptr && view_ != nullptr; }

  /// Sets the unit price excluding tax (yuan) of each item.
  std::string setExcludeTaxPrice(const Items& items, double price) const;
  /// An empty comment takes the annotation away.
  std::string setComment(const Items& items, const std::string& comment) const;

  /// Whether the items are siblings and the shown row above or below them is free for them.
  bool canMove(const Items& items, bool up) const;
  /// Moves the items past the next shown row, whatever the filter hides between.
  std::string move(const Items& items, bool up, abst::qce::QCEResItemController& controller) const;

  /// "code name" of an item, for messages and titles.
  std::string describe(proxy::Element* item) const;

 private:
  /// Writes item by item inside one undo step. Where one is refused, takes everything back and
  /// answers what that item is called.
  std::optional<std::string> writeAll(const char* name, const Items& items,
                                      const std::function<bool(proxy::Element*)>& write) const;
  bool isAccepted(const std::function<void()>& write) const;
  proxy::Element* shownNeighbour(proxy::Element* item, bool up) const;

  abst::qce::QCEResItemFilterModel* model_ = nullptr;
  QAbstractItemModel* items_ = nullptr;
  gui::ViewModel* view_ = nullptr;
};

}  // namespace gui::qce
