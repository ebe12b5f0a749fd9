#pragma once

#include <functional>
#include <vector>

class QAbstractItemModel;

namespace domain {
class Operator;
}

namespace proxy {
class Element;
class ElementGroup;
}  // namespace proxy

namespace gui {
class ViewModel;
}

namespace gui::qce {

// The figures below the resource-item grid. An item has no children; a group may have none, too.

/// Whether an element without children is an item rather than an empty group.
using IsItem = std::function<bool(proxy::Element*)>;

/// How many items there are below `root`; 0 without one.
int itemCount(const proxy::ElementGroup* root, const IsItem& isItem);

/// How many of them `model` shows. `view` is the same model.
int shownItemCount(const QAbstractItemModel& model, const gui::ViewModel& view,
                   const IsItem& isItem);

/// The sum of the items' amounts excluding tax in yuan, exact to the cent.
double sumOfAmounts(const domain::Operator& op, const std::vector<proxy::Element*>& items);

}  // namespace gui::qce
