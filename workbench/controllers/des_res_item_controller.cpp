#include "workbench/controllers/des_res_item_controller.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <utility>

#include "host/app/scoped_undo.h"
#include "host/base/number_text.h"
#include "workbench/costing/expression.h"
#include "workbench/costing/rules.h"
#include "workbench/records/labels.h"

namespace controllers {

using abst::qce::destructors::CollectionEffect;
using abst::qce::destructors::CollectionSetting;
using abst::qce::destructors::CollectionTarget;
using abst::qce::destructors::CostAccountEntry;
using abst::qce::destructors::SourceBill;
using costing::Decimal;
using records::CostAccount;
using records::ItemField;
using records::MeteringMethod;
using records::ResourceItem;
using records::Subcontract;
using records::SubcontractData;

namespace {

// The contract's button numbers are the toolkit's.
constexpr int OkButton = 0x400;    // QMessageBox::Ok
constexpr int YesButton = 0x4000;  // QMessageBox::Yes
constexpr int NoButton = 0x10000;  // QMessageBox::No

void tell(const std::string& message) {
  app::qce::GetQCEChannel()->message(message, OkButton);
}

std::string nameOf(const ResourceItem& item) {
  return "“" + item.code().str() + " " + item.name().str() + "”";
}

std::string moneyText(const Decimal& money) {
  return base::ToThousandthsString(money.toDouble(), costing::MoneyPlaces);
}

/// Where an item is collected; it must be.
std::string collectedText(const ResourceItem& item) {
  return "已归集到" + records::label(*item.subcontract());
}

std::string quantityText(const Decimal& quantity) {
  return base::ToThousandthsStringWithStripTrailingZeros(quantity.toDouble(),
                                                         costing::MaxQuantityPlaces);
}

/// Throws costing::ExpressionError where the text has no value.
Decimal priceOf(const std::string& text) {
  return costing::evaluate(text).rounded(costing::UnitPricePlaces);
}

/// What the price of an entry is for.
std::string meteringText(const SubcontractData& data, const Decimal& quantity) {
  const std::string unit = data.unit.empty() ? "单位" : data.unit.str();
  if (data.metering == MeteringMethod::LumpSum) {
    return records::nameOf(data.metering) + "：单价即总价（元，不含税）";
  }
  return records::nameOf(data.metering) + "：" + quantityText(quantity) + " " + data.unit.str() +
         "，单价为每" + unit + "的价格（元，不含税）";
}

}  // namespace

DesResItemController::DesResItemController(records::Project& project,
                                           operators::DesResItemOperator& rows,
                                           abst::qce::QCEResItemController& items)
    : project_(project), rows_(rows), items_(items) {
  project_.addObserver(this);
}

DesResItemController::~DesResItemController() {
  project_.removeObserver(this);
}

DesResItemController::ResourceItems DesResItemController::itemsOf(const Items& rows) {
  ResourceItems items;
  for (const proxy::Element* row : rows) {
    if (ResourceItem* item = operators::DesResItemOperator::itemOf(row)) items.push_back(item);
  }
  return items;
}

bool DesResItemController::write(const char* name, const std::function<void()>& change) {
  std::string refusal;
  {
    app::ScopedUndo undo(name);
    try {
      change();
    } catch (const records::Refusal& refused) {
      refusal = refused.what();
    } catch (const std::overflow_error&) {
      refusal = "金额超出可计算的范围，未作任何改动；请检查数量和单价。";
    }
    if (!refusal.empty()) undo.abandon();
  }
  if (!refusal.empty()) tell(refusal);
  return refusal.empty();
}

// ---------------------------------------------------------------------------------------------
// Commands

void DesResItemController::setCurrentItem(proxy::Element* row) {
  current_.reset(row);
}

bool DesResItemController::isClosed(proxy::Element* row) const {
  const ResourceItem* item = operators::DesResItemOperator::itemOf(row);
  return item != nullptr && item->subcontract() != nullptr;
}

std::string DesResItemController::getClosedReason(proxy::Element* row) const {
  return isClosed(row)
             ? collectedText(*operators::DesResItemOperator::itemOf(row)) + "，请先取消归集"
             : std::string();
}

void DesResItemController::linkToCost(const Items& rows) {
  setLinked(rows, true);
}

void DesResItemController::unlinkFromCost(const Items& rows) {
  setLinked(rows, false);
}

void DesResItemController::setLinked(const Items& rows, bool linked) {
  const ResourceItems items = itemsOf(rows);
  // A collected item is refused by name, whatever it was before.
  const bool any = std::any_of(items.begin(), items.end(), [linked](const ResourceItem* item) {
    return item->linked() != linked || item->subcontract() != nullptr;
  });
  if (!any) {
    tell(linked ? "选中的人材机都已关联到成本，无需关联。"
                : "选中的人材机都没有关联到成本，无需取消关联。");
    return;
  }
  write(linked ? "关联到成本" : "取消关联到成本", [&] { project_.setLinked(items, linked); });
}

std::vector<CostAccountEntry> DesResItemController::getCostAccounts() const {
  std::vector<CostAccountEntry> entries;
  for (CostAccount* account : project_.allAccounts()) {
    int level = 0;
    for (const proxy::Element* at = account->parent(); at != nullptr; at = at->parent()) ++level;
    entries.push_back({account, account->code, account->name, level});
  }
  return entries;
}

proxy::Element* DesResItemController::getCostAccount(proxy::Element* row) const {
  const ResourceItem* item = operators::DesResItemOperator::itemOf(row);
  return item != nullptr ? item->account() : nullptr;
}

void DesResItemController::setCostAccount(const Items& rows, proxy::Element* account) {
  auto* chosen = dynamic_cast<CostAccount*>(account);
  const ResourceItems items = itemsOf(local_ ? Items{current_.get()} : rows);
  write("设置成本科目", [&] {
    for (ResourceItem* item : items) project_.set(*item, ItemField::Account, chosen);
  });
}

// One unit: what is paid for is what the items add up to. Several: there is nothing to count.
SubcontractData DesResItemController::newEntry(const ResourceItems& items) const {
  SubcontractData data;
  if (items.empty()) return data;
  const ResourceItem& first = *items.front();
  Decimal quantity;
  Decimal amount;
  bool oneUnit = true;
  bool oneAccount = true;
  bool oneRate = true;
  for (const ResourceItem* item : items) {
    quantity += item->quantity().value();
    amount += project_.amountIfCounted(*item);
    oneUnit = oneUnit && item->unit() == first.unit();
    oneAccount = oneAccount && item->account() == first.account();
    oneRate = oneRate && item->taxRate() == first.taxRate();
  }
  data.account = oneAccount ? first.account() : nullptr;
  if (oneRate) data.taxRate = first.taxRate().value();
  std::string name = first.name().str();
  if (items.size() > 1) {
    name = data.account != nullptr ? data.account->name
                                   : name + "等 " + std::to_string(items.size()) + " 项";
  }
  data.name = project_.texts.intern(name);
  if (oneUnit) {
    data.unit = first.unit();
    data.metering = MeteringMethod::ByQuantity;
    data.quantity = quantity;
    data.price = quantity.isZero() ? Decimal() : costing::unitPrice(amount, quantity);
  } else {
    data.unit = project_.texts.intern("项");
    data.metering = MeteringMethod::LumpSum;
    data.price = amount;
  }
  return data;
}

std::vector<CollectionTarget> DesResItemController::getCollectionTargets(const Items& rows) const {
  std::vector<CollectionTarget> targets;
  const auto add = [&targets](proxy::Element* entry, const SubcontractData& data,
                              const Decimal& quantity) {
    targets.push_back({entry, data.name.str(), data.account, data.features.str(),
                       data.price.toString(costing::UnitPricePlaces),
                       meteringText(data, quantity)});
  };
  const SubcontractData proposal = newEntry(itemsOf(rows));
  add(nullptr, proposal, proposal.quantity);
  const records::RowList& entries = project_.subcontracts().rows();
  for (int row = 0; row < entries.size(); ++row) {
    auto* entry = static_cast<Subcontract*>(entries.at(row));
    add(entry, entry->data(), entry->quantityNow());
    if (!entry->code.empty()) {
      targets.back().name = entry->code.str() + " " + targets.back().name;
    }
  }
  return targets;
}

bool DesResItemController::canCollect(const Items& rows) const {
  for (const ResourceItem* item : itemsOf(rows)) {
    if (item->subcontract() == nullptr) continue;
    tell(nameOf(*item) + collectedText(*item) +
         "，未作任何改动；请先取消归集，或取消选择该项后重试。");
    return false;
  }
  return true;
}

CollectionEffect DesResItemController::getCollectionEffect(const Items& rows,
                                                           const CollectionSetting& setting) const {
  const ResourceItems items = itemsOf(rows);
  Decimal leaves;
  for (const ResourceItem* item : items) leaves += item->excludedAmount().value();
  CollectionEffect effect{moneyText(leaves), {}};
  try {
    if (const auto* entry = dynamic_cast<const Subcontract*>(setting.entry)) {
      effect.pays = moneyText(entry->amount());
    } else if (const Decimal price = priceOf(setting.price); !price.isNegative()) {
      const SubcontractData data = newEntry(items);
      const Decimal one = 1;
      effect.pays = moneyText(costing::excludedTaxAmount(
          data.metering == MeteringMethod::LumpSum ? one : data.quantity, price));
    }
  } catch (const costing::ExpressionError&) {
    // It is being typed.
  } catch (const std::overflow_error&) {
    // Refused when it is confirmed.
  }
  return effect;
}

bool DesResItemController::setCollection(const Items& rows, const CollectionSetting& setting) {
  const ResourceItems items = itemsOf(rows);
  if (items.empty() || !canCollect(rows)) return false;
  auto* entry = dynamic_cast<Subcontract*>(setting.entry);
  SubcontractData data;
  if (entry == nullptr) {
    data = newEntry(items);
    data.account = dynamic_cast<CostAccount*>(setting.account);
    data.features = project_.texts.intern(setting.features);
    try {
      data.price = priceOf(setting.price);
    } catch (const costing::ExpressionError& error) {
      tell("劳务、专业分包单价“" + setting.price + "”无法计算：" + error.what() +
           "请输入数字或计算式，例如 120*0.95。");
      return false;
    }
    if (data.price.isNegative()) {
      tell("劳务、专业分包单价“" + setting.price + "”小于 0，请输入不小于 0 的单价。");
      return false;
    }
  }
  return write("设置归集", [&] {
    Subcontract& into = entry != nullptr ? *entry : project_.addSubcontract(data);
    for (ResourceItem* item : items) project_.collect(*item, into);
  });
}

void DesResItemController::cancelCollection(const Items& rows) {
  const ResourceItems items = itemsOf(rows);
  const bool any = std::any_of(items.begin(), items.end(),
                               [](ResourceItem* item) { return item->subcontract() != nullptr; });
  if (!any) {
    tell("选中的人材机都没有归集，无需取消。");
    return;
  }
  auto emptied = emptiedBy(items);
  if (!emptied.empty()) {
    std::string names;
    Decimal amount;
    for (const auto& entry : emptied) {
      names += (names.empty() ? "" : "、") + records::label(*entry);
      amount += entry->amount();
    }
    const int answer =
        app::qce::GetQCEChannel()->message("取消归集后，" + names + "不再有人材机和清单，但合价 " +
                                               moneyText(amount) + " 元仍计入成本。是否同时删除？",
                                           YesButton | NoButton);
    if (answer != YesButton) emptied.clear();
  }
  write("取消归集", [&] {
    for (ResourceItem* item : items) {
      if (item->subcontract() != nullptr) project_.uncollect(*item);
    }
    for (const auto& entry : emptied) project_.removeSubcontract(*entry);
  });
}

std::vector<scoped_refptr<Subcontract>> DesResItemController::emptiedBy(
    const ResourceItems& items) const {
  std::map<Subcontract*, std::size_t> given;
  for (const ResourceItem* item : items) {
    if (item->subcontract() != nullptr) ++given[item->subcontract()];
  }
  std::vector<scoped_refptr<Subcontract>> emptied;
  for (const auto& [entry, count] : given) {
    if (entry->rows().size() > 0 || project_.collectedItems(*entry).size() > count) continue;
    emptied.emplace_back(entry);
  }
  std::sort(emptied.begin(), emptied.end(),
            [](const auto& a, const auto& b) { return a->row() < b->row(); });
  return emptied;
}

std::vector<SourceBill> DesResItemController::getSourceBills(proxy::Element* row) const {
  std::vector<SourceBill> bills;
  const ResourceItem* item = operators::DesResItemOperator::itemOf(row);
  if (item == nullptr) return bills;
  for (const records::BillLine& line : project_.linesOf(*item)) {
    records::Bill& bill = *line.bill;
    bills.push_back({&bill, bill.code.str(), bill.name.str(), bill.features.str(), bill.unit.str(),
                     quantityText(bill.quantityForCost())});
  }
  return bills;
}

void DesResItemController::findSource(proxy::Element* row) {
  const ResourceItem* item = operators::DesResItemOperator::itemOf(row);
  if (item == nullptr) return;
  std::vector<proxy::Element*> bills;
  for (const records::BillLine& line : project_.linesOf(*item)) bills.push_back(line.bill);
  if (bills.empty()) {
    tell(nameOf(*item) + "没有来源清单：它不是从清单归集的，也没有关联清单。");
  } else if (!follow_ || !follow_(bills)) {
    tell(nameOf(*item) + "的来源清单无法显示。");
  }
}

void DesResItemController::showItemPage(proxy::Element* current) {
  if (followItem_) followItem_(operators::DesResItemOperator::itemOf(current));
}

void DesResItemController::insertItem(proxy::Element* current) {
  ResourceItem* beside = operators::DesResItemOperator::itemOf(current);
  if (beside == nullptr) {
    tell("请先选择一项人材机，新的人材机加入它所在的工程和类别。");
    return;
  }
  items_.insertItem(beside, records::nameOf(beside->category()));
}

void DesResItemController::deleteItems(const Items& rows) {
  const ResourceItems items = itemsOf(rows);
  items_.deleteItems({items.begin(), items.end()});
}

// ---------------------------------------------------------------------------------------------
// Changed records

void DesResItemController::itemChanged(ResourceItem& item) {
  edited_.emplace_back(&item);
}

void DesResItemController::bookingChanged(ResourceItem& item) {
  edited_.emplace_back(&item);
  bills_ = true;
}

void DesResItemController::billChanged(records::Bill& /*bill*/) {
  bills_ = true;
}

void DesResItemController::subcontractChanged(Subcontract& entry) {
  entries_.insert(&entry);
}

void DesResItemController::aboutToInsert(records::ResourceGroup& /*parent*/, int /*row*/) {
  rebuild_ = true;
}

void DesResItemController::aboutToRemove(records::ResourceGroup& /*parent*/, int /*row*/) {
  rebuild_ = true;
}

void DesResItemController::aboutToSwap(records::ResourceGroup& /*group*/, int /*upper*/) {
  rebuild_ = true;
}

void DesResItemController::rearranged(records::ResourceGroup& /*group*/) {
  rebuild_ = true;
}

void DesResItemController::stepFinished() {
  // Handlers may edit in their turn, so that the lists are taken first.
  auto edited = std::exchange(edited_, {});
  // The name of an entry stands in the rows of its items. An entry that is gone has none.
  for (const Subcontract* entry : std::exchange(entries_, {})) {
    for (ResourceItem* item : project_.collectedItems(*entry)) edited.emplace_back(item);
  }
  Changes changes;
  changes.rebuild = std::exchange(rebuild_, false);
  changes.bills = std::exchange(bills_, false);
  for (const auto& item : edited) {
    rows_.forget(*item);
    if (proxy::Element* row = rows_.rowOf(*item)) changes.rows.push_back(row);
  }
  std::sort(changes.rows.begin(), changes.rows.end());
  changes.rows.erase(std::unique(changes.rows.begin(), changes.rows.end()), changes.rows.end());
  if (changed_ && (changes.rebuild || changes.bills || !changes.rows.empty())) changed_(changes);
}

}  // namespace controllers
