#include "workbench/operators/des_res_item_summary_operators.h"

#include <array>
#include <functional>
#include <map>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "host/domain/field_keys.h"
#include "host/domain/qce/destructors/des_res_item_keys.h"
#include "workbench/operators/columns.h"

namespace operators {

using costing::Decimal;
using domain::Value;
using records::Category;
using records::CostAccount;
using records::ResourceItem;
using records::Subcontract;

namespace keys = domain::keys;

namespace {

const std::string Several = "（多个）";

void forEachItem(records::Project& project, const std::function<void(ResourceItem&)>& visit) {
  for (const records::StructureNode* unitWork : project.unitWorks()) {
    for (int i = 0; i < records::CategoryCount; ++i) {
      records::ResourceGroup* group = project.categoryGroup(*unitWork, static_cast<Category>(i));
      for (int row = 0; group != nullptr && row < group->rows().size(); ++row) {
        visit(*static_cast<ResourceItem*>(group->rows().at(row)));
      }
    }
  }
}

struct Figures {
  int items = 0;
  Decimal market;   ///< what they would cost
  Decimal counted;  ///< what counts in cost

  void add(const records::Project& project, const ResourceItem& item) {
    ++items;
    market += project.amountIfCounted(item);
    counted += item.excludedAmount().value();
  }
};

}  // namespace

bool ItemScope::holds(const ResourceItem& item) const {
  if (everything) return true;
  if (waiting) return !item.linked() && item.subcontract() == nullptr;
  if (collected) return item.subcontract() != nullptr;
  if (category) return item.category() == *category;
  if (account) return item.account() == *account;
  return entry != nullptr && item.subcontract() == entry;
}

// ---------------------------------------------------------------------------------------------
// Guide

class DesResItemGuideOperator::Entry final : public records::Branch {
 public:
  Entry(std::int64_t id, std::string title, ItemScope of)
      : Branch(id), name(std::move(title)), scope(of) {}

  const std::string name;
  const ItemScope scope;
  Figures figures;
};

std::unique_ptr<domain::DisplayTable> makeDesResItemGuideTable() {
  return makeTable(
      "QCE_DesResItemGuide",
      {{keys::BRIName, "汇总范围", domain::StringField, 206},
       {keys::BRIItemCount, "项数", domain::IntegerField, 50},
       {keys::BRIMarketTotalCost, "合价（元）", domain::FloatingPointField, 112, true}},
      true);
}

DesResItemGuideOperator::DesResItemGuideOperator(records::Project& project)
    : project_(project), root_(new records::Group) {}

DesResItemGuideOperator::~DesResItemGuideOperator() = default;

ItemScope DesResItemGuideOperator::scopeOf(const proxy::Element* element) {
  const auto* entry = dynamic_cast<const Entry*>(element);
  return entry != nullptr ? entry->scope : ItemScope();
}

void DesResItemGuideOperator::rebuild() {
  Figures all;
  Figures waiting;
  Figures collected;
  std::array<Figures, records::CategoryCount> categories;
  std::unordered_map<const CostAccount*, Figures> accounts;
  std::unordered_map<const Subcontract*, Figures> entries;
  const ItemScope waits{false, true, false, {}, {}, nullptr};
  forEachItem(project_, [&](ResourceItem& item) {
    all.add(project_, item);
    if (waits.holds(item)) waiting.add(project_, item);
    categories.at(static_cast<std::size_t>(item.category())).add(project_, item);
    accounts[item.account()].add(project_, item);
    if (item.subcontract() != nullptr) {
      entries[item.subcontract()].add(project_, item);
      collected.add(project_, item);
    }
  });

  // Ids below zero are the guide's own; an account or entry lends its id.
  std::int64_t nextId = 0;
  root_.reset(new records::Group);
  const auto add = [&](records::RowList& into, std::int64_t id, const std::string& name,
                       const ItemScope& scope, const Figures& figures) {
    scoped_refptr<Entry> entry(new Entry(id != 0 ? id : --nextId, name, scope));
    entry->figures = figures;
    into.append(entry);
    return entry.get();
  };
  add(root_->rows(), 0, "全部", {}, all);
  add(root_->rows(), 0, "待归集", waits, waiting);
  Entry* byCategory = add(root_->rows(), 0, "按类别", {}, all);
  for (int i = 0; i < records::CategoryCount; ++i) {
    const auto category = static_cast<Category>(i);
    const Figures& figures = categories.at(static_cast<std::size_t>(i));
    ItemScope scope{false, false, false, category, {}, nullptr};
    --nextId;  // the same id for a category, whether others have items or not
    if (figures.items == 0) continue;
    add(byCategory->rows(), nextId, records::nameOf(category), scope, figures);
  }
  Entry* byAccount = add(root_->rows(), 0, "按成本科目", {}, all);
  std::vector<CostAccount*> order(project_.allAccounts());
  order.push_back(nullptr);
  --nextId;
  for (CostAccount* account : order) {
    const auto found = accounts.find(account);
    if (found == accounts.end()) continue;
    ItemScope scope{false, false, false, {}, account, nullptr};
    add(byAccount->rows(), account != nullptr ? account->id() : nextId,
        account != nullptr ? account->label : "（无成本科目）", scope, found->second);
  }
  const ItemScope collects{false, false, true, {}, {}, nullptr};
  Entry* byEntry = add(root_->rows(), 0, "按分包", collects, collected);
  const records::RowList& subcontracts = project_.subcontracts().rows();
  for (int row = 0; row < subcontracts.size(); ++row) {
    const auto* entry = static_cast<const Subcontract*>(subcontracts.at(row));
    const auto found = entries.find(entry);
    if (found == entries.end()) continue;
    ItemScope scope{false, false, false, {}, {}, entry};
    add(byEntry->rows(), entry->id(), entry->name.str(), scope, found->second);
  }
}

bool DesResItemGuideOperator::getValue(const proxy::Element* element, const std::string& key,
                                       int role, Value& out) const {
  const auto* entry = dynamic_cast<const Entry*>(element);
  if (entry == nullptr) return false;
  if (role == domain::FontRole && entry->parent() == nullptr) {
    out = base::Font{true, "Noto Sans CJK SC"};
    return true;
  }
  if (role != domain::DisplayRole && role != domain::EditRole) return false;
  if (key == keys::BRIName) {
    domain::AssignText(out, entry->name);
  } else if (key == keys::BRIItemCount) {
    out = entry->figures.items;
  } else if (key == keys::BRIMarketTotalCost) {
    out = entry->figures.market.toDouble();
  } else {
    return false;
  }
  return true;
}

// ---------------------------------------------------------------------------------------------
// Table

class DesResItemSummaryOperator::Row final : public records::Record {
 public:
  explicit Row(const ResourceItem& of) : Record(of.id()) {}

  std::vector<scoped_refptr<ResourceItem>> items;  // not empty
  Figures figures;
  Decimal quantity;
  std::string code, account, entry;
  int works = 0;
  const records::StructureNode* lastWork = nullptr;
};

std::unique_ptr<domain::DisplayTable> makeDesResItemSummaryTable() {
  using namespace domain;
  return makeTable(
      "QCE_DesResItemSummary",
      {{keys::BRIType, "类别", StringField, 50},
       {keys::BRICode, "编码", StringField, 84},
       {keys::BRIName, "名称", StringField, 140},
       {keys::BRISpec, "规格型号", StringField, 100},
       {keys::BRIUnit, "单位", StringField, 50},
       {keys::BRIAmount, "数量", FloatingPointField, 86},
       {keys::BRIExcludedTaxFee, "不含税单价（元）", FloatingPointField, 118, true},
       {keys::BRIMarketTotalCost, "不含税合价（元）", FloatingPointField, 116, true},
       {keys::BRIExcludedTaxTotalCost, "计入成本（元）", FloatingPointField, 110, true},
       {keys::CostAccount, "成本科目", StringField, 130},
       {keys::BRIContract, "归集到", StringField, 130},
       {keys::BRIItemCount, "工程数", IntegerField, 60}},
      true);
}

DesResItemSummaryOperator::DesResItemSummaryOperator(records::Project& project)
    : project_(project), root_(new records::Group) {}

DesResItemSummaryOperator::~DesResItemSummaryOperator() = default;

std::vector<ResourceItem*> DesResItemSummaryOperator::itemsOf(const proxy::Element* element) {
  std::vector<ResourceItem*> items;
  if (const auto* row = dynamic_cast<const Row*>(element)) {
    for (const auto& item : row->items) items.push_back(item.get());
  }
  return items;
}

void DesResItemSummaryOperator::setGuideEntry(proxy::Element* entry) {
  scope_ = DesResItemGuideOperator::scopeOf(entry);
  rebuild();
}

void DesResItemSummaryOperator::rebuild() {
  root_.reset(new records::Group);
  // Two texts of a project are equal exactly when they are the same object.
  using Key = std::tuple<Category, Decimal, std::array<const std::string*, 3>>;
  std::map<Key, Row*> rows;
  std::array<std::vector<scoped_refptr<Row>>, records::CategoryCount> byCategory;
  const auto join = [](std::string& text, const std::string& more) {
    if (text != more) text = Several;
  };
  forEachItem(project_, [&](ResourceItem& item) {
    if (!scope_.holds(item)) return;
    const std::string account = item.account() != nullptr ? item.account()->label : std::string();
    const std::string entry =
        item.subcontract() != nullptr ? item.subcontract()->name.str() : std::string();
    Row*& row = rows[{item.category(),
                      item.price().value(),
                      {&item.name().str(), &item.spec().str(), &item.unit().str()}}];
    if (row == nullptr) {
      row = new Row(item);
      byCategory.at(static_cast<std::size_t>(item.category())).emplace_back(row);
      row->code = item.code().str();
      row->account = account;
      row->entry = entry;
    } else {
      join(row->code, item.code().str());
      join(row->account, account);
      join(row->entry, entry);
    }
    row->items.emplace_back(&item);
    row->figures.add(project_, item);
    row->quantity += item.quantity().value();
    const records::StructureNode* work = &item.group()->unitWork();
    if (row->lastWork != work) ++row->works;
    row->lastWork = work;
  });
  for (const auto& members : byCategory) {
    for (const auto& row : members) root_->rows().append(row);
  }
}

std::string DesResItemSummaryOperator::getEmptyReason() const {
  if (root_->size() > 0) return {};
  if (scope_.waiting) return "没有待归集的人材机：每一项都已关联到成本或归集到分包。";
  if (scope_.collected) {
    return "还没有归集到分包的人材机。请在“明细”中选择人材机，再点“设置归集”。";
  }
  return scope_.everything ? "项目中还没有人材机。请在人材机页添加。" : "";
}

bool DesResItemSummaryOperator::getValue(const proxy::Element* element, const std::string& key,
                                         int role, Value& out) const {
  const auto* row = dynamic_cast<const Row*>(element);
  if (row == nullptr || (role != domain::DisplayRole && role != domain::EditRole)) return false;
  const ResourceItem& item = *row->items.front();  // what all of them have in common
  const std::pair<const std::string*, const std::string*> texts[] = {
      {&keys::BRIType, &records::nameOf(item.category())},
      {&keys::BRICode, &row->code},
      {&keys::BRIName, &item.name().str()},
      {&keys::BRISpec, &item.spec().str()},
      {&keys::BRIUnit, &item.unit().str()},
      {&keys::CostAccount, &row->account},
      {&keys::BRIContract, &row->entry}};
  for (const auto& [textKey, text] : texts) {
    if (key != *textKey) continue;
    domain::AssignText(out, *text);
    return true;
  }
  if (key == keys::BRIAmount) {
    out = row->quantity.toDouble();
  } else if (key == keys::BRIExcludedTaxFee) {
    out = item.price().toDouble();
  } else if (key == keys::BRIMarketTotalCost) {
    out = row->figures.market.toDouble();
  } else if (key == keys::BRIExcludedTaxTotalCost) {
    out = row->figures.counted.toDouble();
  } else if (key == keys::BRIItemCount) {
    out = row->works;
  } else {
    return false;
  }
  return true;
}

}  // namespace operators
