#include "resitem/item_figures.h"

#include <QAbstractItemModel>
#include <cmath>
#include <cstdint>

#include "framework/cell_value.h"
#include "host/domain/field_keys.h"
#include "host/domain/operator.h"
#include "host/gui/view_model.h"
#include "host/proxy/element.h"

namespace gui::qce {
namespace {

bool holdsGroups(const proxy::Element& element) {
  for (int i = 0; i < element.childCount(); ++i) {
    if (element.child(i)->childCount() > 0) return true;
  }
  return false;
}

// Rows side by side none of which holds others are all items or all groups: one answers for them.
int itemsIn(proxy::Element& element, const IsItem& isItem) {
  const int children = element.childCount();
  if (children == 0) return isItem(&element) ? 1 : 0;
  if (!holdsGroups(element)) return isItem(element.child(0)) ? children : 0;
  int count = 0;
  for (int i = 0; i < children; ++i) count += itemsIn(*element.child(i), isItem);
  return count;
}

int shownIn(const QAbstractItemModel& model, const gui::ViewModel& view, const IsItem& isItem,
            const QModelIndex& parent) {
  const int rows = model.rowCount(parent);
  const proxy::Element* above = view.getInternalData(parent);
  // Asking a proxy about the rows below an item makes it remember that there are none, item by
  // item; the elements know it for nothing.
  if (rows > 0 && above != nullptr && !holdsGroups(*above)) {
    return isItem(view.getInternalData(model.index(0, 0, parent))) ? rows : 0;
  }
  int count = 0;
  for (int row = 0; row < rows; ++row) {
    const QModelIndex index = model.index(row, 0, parent);
    proxy::Element* element = view.getInternalData(index);
    if (element == nullptr) continue;
    if (element->childCount() > 0) {
      count += shownIn(model, view, isItem, index);
    } else if (isItem(element)) {
      ++count;
    }
  }
  return count;
}

}  // namespace

int itemCount(const proxy::ElementGroup* root, const IsItem& isItem) {
  int count = 0;
  for (int i = 0; root != nullptr && i < root->size(); ++i) {
    count += itemsIn(*root->member(i), isItem);
  }
  return count;
}

int shownItemCount(const QAbstractItemModel& model, const gui::ViewModel& view,
                   const IsItem& isItem) {
  return shownIn(model, view, isItem, {});
}

double sumOfAmounts(const domain::Operator& op, const std::vector<proxy::Element*>& items) {
  std::int64_t cents = 0;
  domain::Value value;
  for (const proxy::Element* item : items) {
    if (!op.getValue(item, domain::keys::BRIExcludedTaxTotalCost, domain::EditRole, value))
      continue;
    cents += std::llround(gui::toNumber(value).value_or(0.0) * 100.0);
  }
  return static_cast<double>(cents) / 100.0;
}

}  // namespace gui::qce
