#include "resitem/commands.h"

#include <QSortFilterProxyModel>
#include <algorithm>
#include <cstdlib>

#include "host/abst/qce/res_item_controller.h"
#include "host/app/scoped_undo.h"
#include "host/domain/field_keys.h"
#include "host/gui/view_model.h"
#include "host/proxy/element.h"

namespace gui::qce {

ResItemCommands::ResItemCommands(abst::qce::QCEResItemFilterModel* model)
    : model_(model),
      items_(dynamic_cast<QAbstractItemModel*>(model)),
      view_(dynamic_cast<gui::ViewModel*>(model)) {}

// A price setter answers nothing; an accepted write is one that the item model announced.
bool ResItemCommands::isAccepted(const std::function<void()>& write) const {
  const auto* filter = qobject_cast<const QSortFilterProxyModel*>(items_);
  const QAbstractItemModel* source = filter != nullptr ? filter->sourceModel() : items_;
  bool announced = false;
  const QMetaObject::Connection connection = QObject::connect(
      source, &QAbstractItemModel::dataChanged, [&announced] { announced = true; });
  write();
  QObject::disconnect(connection);
  return announced;
}

std::optional<std::string> ResItemCommands::writeAll(
    const char* name, const Items& items, const std::function<bool(proxy::Element*)>& write) const {
  app::ScopedUndo undo(name);
  for (proxy::Element* item : items) {
    if (write(item)) continue;
    std::string refused = describe(item);  // while nothing is taken back yet
    undo.abandon();
    return refused;
  }
  return std::nullopt;
}

std::string ResItemCommands::setExcludeTaxPrice(const Items& items, double price) const {
  const std::optional<std::string> refused =
      writeAll("批量设置不含税单价", items, [this, price](proxy::Element* item) {
        return isAccepted([&] { model_->setExcludeTaxPrice(item, price); });
      });
  if (!refused) return {};
  return "“" + *refused + "”的不含税单价不能修改，本次批量设置已全部取消。请取消选择该项后重试。";
}

std::string ResItemCommands::setComment(const Items& items, const std::string& comment) const {
  const std::optional<std::string> refused = writeAll(
      comment.empty() ? "删除批注" : "编辑批注", items,
      [this, &comment](proxy::Element* item) { return model_->setComment(item, comment); });
  if (!refused) return {};
  return "“" + *refused + "”的批注不能修改，批注未作任何改动。";
}

proxy::Element* ResItemCommands::shownNeighbour(proxy::Element* item, bool up) const {
  const QModelIndex at = view_->makeIndex(item, 0);
  if (!at.isValid()) return nullptr;
  const QModelIndex next = items_->index(at.row() + (up ? -1 : 1), 0, at.parent());
  return next.isValid() ? view_->getInternalData(next) : nullptr;
}

bool ResItemCommands::canMove(const Items& items, bool up) const {
  if (items.empty()) return false;
  const auto byRow = [](proxy::Element* a, proxy::Element* b) { return a->row() < b->row(); };
  const auto [first, last] = std::minmax_element(items.begin(), items.end(), byRow);
  const bool siblings = std::all_of(items.begin(), items.end(), [&](proxy::Element* item) {
    return item->parent() == items.front()->parent();
  });
  return siblings && shownNeighbour(up ? *first : *last, up) != nullptr;
}

std::string ResItemCommands::move(const Items& items, bool up,
                                  abst::qce::QCEResItemController& controller) const {
  if (!canMove(items, up)) return {};
  Items ordered = items;
  std::sort(ordered.begin(), ordered.end(), [up](proxy::Element* a, proxy::Element* b) {
    return up ? a->row() < b->row() : a->row() > b->row();
  });
  const std::optional<std::string> refused =
      writeAll(up ? "上移" : "下移", ordered, [&](proxy::Element* item) {
        const proxy::Element* next = shownNeighbour(item, up);
        if (next == nullptr) return false;
        for (int steps = std::abs(next->row() - item->row()); steps > 0; --steps) {
          if (!(up ? controller.moveUp(item) : controller.moveDown(item))) return false;
        }
        return true;
      });
  if (!refused) return {};
  return "“" + *refused + "”不能" + (up ? "上移" : "下移") + "，行的顺序未作任何改动。";
}

std::string ResItemCommands::describe(proxy::Element* item) const {
  std::string text;
  for (const std::string* key : {&domain::keys::BRICode, &domain::keys::BRIName}) {
    const int column = view_->getColumnIndex(*key);
    const QModelIndex at = column >= 0 ? view_->makeIndex(item, column) : QModelIndex();
    const std::string part = at.data().toString().toStdString();
    if (!text.empty() && !part.empty()) text += ' ';
    text += part;
  }
  return text;
}

}  // namespace gui::qce
