#include "workbench/shell/summary_sources.h"

#include <QAbstractItemModel>
#include <QItemSelectionModel>
#include <QTreeView>
#include <functional>
#include <vector>

#include "host/gui/view_model.h"
#include "host/presentation/sub_engineering_view.h"
#include "resitem/view.h"
#include "workbench/controllers/open_project.h"
#include "workbench/shell/session.h"

namespace shell {

namespace {

using records::ResourceItem;
using records::StructureNode;
using records::SummaryLine;
using Kind = SummaryLine::Kind;
using Elements = std::vector<proxy::Element*>;

const Page* pageOf(const Session& session, const QString& title) {
  const Page* found = session.pageTitled(title);
  return found != nullptr && found->widget != nullptr ? found : nullptr;
}

/// Whether the element is `above` or lies below it.
bool isBelow(const proxy::Element* element, const proxy::Element* above) {
  while (element != nullptr && element != above) element = element->parent();
  return element != nullptr;
}

Elements itemsOf(records::Project& project, const std::function<bool(ResourceItem&)>& wanted) {
  Elements items;
  for (const StructureNode* work : project.unitWorks()) {
    for (int i = 0; i < records::CategoryCount; ++i) {
      const auto& rows = project.categoryGroup(*work, static_cast<records::Category>(i))->rows();
      for (int row = 0; row < rows.size(); ++row) {
        auto& item = *static_cast<ResourceItem*>(rows.at(row));
        if (wanted(item)) items.push_back(&item);
      }
    }
  }
  return items;
}

/// The first subcontract entry for which `wanted` holds; null when there is none.
records::Record* subcontractOf(records::Project& project,
                               const std::function<bool(const records::Subcontract&)>& wanted) {
  const records::RowList& rows = project.subcontracts().rows();
  for (int row = 0; row < rows.size(); ++row) {
    if (wanted(*static_cast<records::Subcontract*>(rows.at(row)))) return rows.at(row);
  }
  return nullptr;
}

/// The first fee for which `wanted` holds; null when there is none.
records::Record* feeOf(const records::RowList& rows,
                       const std::function<bool(const records::IndirectFeeItem&)>& wanted) {
  for (int row = 0; row < rows.size(); ++row) {
    if (auto* fee = dynamic_cast<records::IndirectFeeItem*>(rows.at(row))) {
      if (wanted(*fee)) return fee;
    } else if (auto* found = feeOf(static_cast<records::Branch*>(rows.at(row))->rows(), wanted)) {
      return found;
    }
  }
  return nullptr;
}

QModelIndex find(const QAbstractItemModel& model, const QModelIndex& parent, std::int64_t id) {
  const auto* rows = dynamic_cast<const gui::ViewModel*>(&model);
  if (rows == nullptr) return {};
  for (int row = 0; row < model.rowCount(parent); ++row) {
    const QModelIndex index = model.index(row, 0, parent);
    const proxy::Element* element = rows->getInternalData(index);
    if (element != nullptr && element->id() == id) return index;
    const QModelIndex below = find(model, index, id);
    if (below.isValid()) return below;
  }
  return {};
}

/// Makes the record's row current wherever the page has one.
void select(const Page& page, const proxy::Element& record) {
  for (auto* view : page.widget->findChildren<QTreeView*>()) {
    if (view->model() == nullptr) continue;
    const QModelIndex index = find(*view->model(), {}, record.id());
    if (!index.isValid()) continue;
    view->selectionModel()->setCurrentIndex(
        index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    view->scrollTo(index);
    view->setFocus();
  }
}

class Follower {
 public:
  Follower(Session& session, bool onlyAsking)
      : session_(session), project_(session.project().project()), onlyAsking_(onlyAsking) {}

  bool follow(const SummaryLine& line) {
    switch (line.kind) {
      case Kind::Element:
        return toResources(nullptr, {}, categoryRows(line.category));
      case Kind::Structure: {
        auto* node = static_cast<StructureNode*>(line.source);
        if (node->kind == records::StructureKind::Section) return toBill(node);
        if (node->kind == records::StructureKind::UnitWork) return toResources(node, {}, {});
        return toResources(nullptr, {}, unitWorkRows(*node));
      }
      case Kind::Bill:
        return toBill(line.source);
      case Kind::Margin:
        return toBill(nullptr);
      case Kind::LooseItems: {
        auto* work = static_cast<StructureNode*>(line.source);
        return toResources(work, {}, itemsOf(project_, [&](ResourceItem& item) {
                             return &item.group()->unitWork() == work && !item.gathered();
                           }));
      }
      case Kind::FeeGroup:
      case Kind::FeeItem:
      case Kind::Fees:
        return toFee(line.source);
      case Kind::Subcontract:
      case Kind::Subcontracts:
        return toSubcontract(line.source);
      case Kind::Account:
      case Kind::OwnAccount:
        return toAccount(*static_cast<records::CostAccount*>(line.source),
                         line.kind == Kind::OwnAccount);
      case Kind::NoAccount:
        return toBooked([](const records::CostAccount* of) { return of == nullptr; });
      case Kind::Total:
      case Kind::Heading:
      case Kind::Tax:
      case Kind::Rounding:
        return false;
    }
    return false;
  }

  bool toResources(StructureNode* work, const std::string& account, const Elements& selected) {
    const Page* page = pageOf(session_, QStringLiteral("人材机"));
    auto* view =
        page != nullptr ? qobject_cast<gui::qce::QCEResItemViewImpl*>(page->widget) : nullptr;
    if (view == nullptr) return false;
    if (onlyAsking_) return true;
    emit session_.pageWanted(page->key);
    view->showItems(work, account, selected);
    return true;
  }

 private:
  Elements categoryRows(records::Category category) {
    Elements rows;
    for (const StructureNode* work : project_.unitWorks()) {
      auto* row = project_.categoryGroup(*work, category);
      if (row->rows().size() > 0) rows.push_back(row);
    }
    return rows;
  }

  Elements unitWorkRows(const StructureNode& node) {
    Elements rows;
    for (StructureNode* work : project_.unitWorks()) {
      if (isBelow(work, &node)) rows.push_back(project_.subProject(*work));
    }
    return rows;
  }

  /// To what is booked on an account for which `isIn` holds: items, else a fee, else an entry.
  bool toBooked(const std::function<bool(const records::CostAccount*)>& isIn) {
    const Elements items =
        itemsOf(project_, [&](ResourceItem& item) { return isIn(item.account()); });
    if (!items.empty()) return toResources(nullptr, {}, items);
    records::Record* fee =
        feeOf(project_.feeGroups().rows(),
              [&](const records::IndirectFeeItem& each) { return isIn(each.account); });
    if (fee != nullptr) return toFee(fee);
    records::Record* entry = subcontractOf(
        project_, [&](const records::Subcontract& each) { return isIn(each.account); });
    return entry != nullptr && toSubcontract(entry);
  }

  bool toAccount(const records::CostAccount& account, bool alone) {
    const auto isIn = [&](const records::CostAccount* of) {
      return alone ? of == &account : isBelow(of, &account);
    };
    const auto isItem = [&](ResourceItem& item) { return isIn(item.account()); };
    // The text of an account tells it from all others, but not those below it.
    if ((alone || account.childCount() == 0) && !itemsOf(project_, isItem).empty()) {
      return toResources(nullptr, account.label, {});
    }
    return toBooked(isIn);
  }

  bool toBill(records::Record* record) { return toPage(QStringLiteral("分部分项"), record); }

  bool toFee(records::Record* record) { return toPage(QStringLiteral("间接费"), record); }

  bool toSubcontract(records::Record* record) {
    return toPage(session_.page(QStringLiteral("subcontracts")), record);
  }

  bool toPage(const QString& title, records::Record* record) {
    return toPage(pageOf(session_, title), record);
  }

  bool toPage(const Page* page, records::Record* record) {
    if (page == nullptr || page->widget == nullptr) return false;
    if (onlyAsking_) return true;
    emit session_.pageWanted(page->key);
    // A fee stands in a table that follows the group chosen beside it.
    if (auto* fee = dynamic_cast<records::IndirectFeeItem*>(record)) select(*page, *fee->parent());
    if (record != nullptr) select(*page, *record);
    return true;
  }

  Session& session_;
  records::Project& project_;
  bool onlyAsking_;
};

}  // namespace

bool followSummaryLine(Session& session, const SummaryLine& line, bool onlyAsking) {
  return Follower(session, onlyAsking).follow(line);
}

bool followBills(Session& session, const std::vector<proxy::Element*>& bills) {
  const Page* page = pageOf(session, QStringLiteral("分部分项"));
  auto* view = page != nullptr ? qobject_cast<gui::SubEngineeringViewImpl*>(page->widget) : nullptr;
  if (view == nullptr) return false;
  emit session.pageWanted(page->key);
  view->showElements(bills);
  return true;
}

bool followItem(Session& session, ResourceItem* item) {
  return Follower(session, false)
      .toResources(nullptr, {}, item != nullptr ? Elements{item} : Elements{});
}

}  // namespace shell
