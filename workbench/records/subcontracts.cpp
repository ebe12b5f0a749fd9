#include <algorithm>
#include <array>
#include <unordered_set>
#include <utility>

#include "workbench/records/labels.h"
#include "workbench/records/project.h"

namespace records {
namespace {

using costing::Decimal;

constexpr int MaxTaxPlaces = 4;

Decimal mostQuantity() {
  return 1000000000;
}

Decimal mostMoney() {
  return Decimal(1000000000) * Decimal(1000);
}

bool isDate(const std::string& text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return false;
  const auto number = [&text](std::size_t from, std::size_t count) {
    int value = 0;
    for (std::size_t i = from; i < from + count; ++i) {
      if (text[i] < '0' || text[i] > '9') return -1;
      value = value * 10 + (text[i] - '0');
    }
    return value;
  };
  const int year = number(0, 4);
  const int month = number(5, 2);
  const int day = number(8, 2);
  if (year < 1 || month < 1 || month > 12 || day < 1) return false;
  constexpr std::array<int, 12> days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return day <= days[static_cast<std::size_t>(month - 1)] + (leap && month == 2 ? 1 : 0);
}

void requireFields(const SubcontractData& data) {
  const std::string place = label(data) + "的";
  if (data.name.empty()) throw Refusal(place + "名称不能为空；请输入名称。");
  const std::vector<std::string>& types = contractTypes();
  if (!data.contractType.empty() &&
      std::find(types.begin(), types.end(), data.contractType.str()) == types.end()) {
    std::string list;
    for (const std::string& type : types) list += (list.empty() ? "" : "、") + type;
    throw Refusal(place + "合同类型“" + data.contractType.str() + "”不可用；请选择" + list +
                  "，或留空。");
  }
  if (!data.priceExpiryDate.empty() && !isDate(data.priceExpiryDate.str())) {
    throw Refusal(place + "价格有效期“" + data.priceExpiryDate.str() +
                  "”不是日期；请按“年-月-日”输入，例如 2026-06-30，或留空。");
  }
  if (data.price.isNegative() || data.price > mostMoney()) {
    throw Refusal(place + "不含税单价应在 0 到 1,000,000,000,000 元之间；请重新输入。");
  }
  if (data.price != data.price.rounded(costing::UnitPricePlaces)) {
    throw Refusal(place + "不含税单价最多 2 位小数；请重新输入。");
  }
  if (data.taxRate.isNegative() || data.taxRate > Decimal(100) ||
      data.taxRate != data.taxRate.rounded(MaxTaxPlaces)) {
    throw Refusal(place + "税率应在 0 到 100 之间（%），最多 4 位小数；请重新输入。");
  }
  if (data.quantity.isNegative() || data.quantity > mostQuantity()) {
    throw Refusal(place + "数量应在 0 到 1,000,000,000 之间；请重新输入。");
  }
}

/// `quantity` is what the entry is paid for.
void requireAmount(const SubcontractData& data, const Decimal& quantity) {
  const Decimal amount = costing::includedTaxAmount(quantity, data.price, data.taxRate);
  if (amount <= mostMoney() && -amount <= mostMoney()) return;
  throw Refusal(label(data) + "的合价超过 1,000,000,000,000 元；请检查其单价和数量。");
}

void requireUnit(const SubcontractData& data, const Bill& bill) {
  if (bill.unit == data.unit) return;
  throw Refusal(label(data) + "按清单工程量计量，单位为“" + data.unit.str() + "”，而" +
                label(bill) + "的单位为“" + bill.unit.str() +
                "”，工程量不能相加；请改选单位相同的清单、修改分包的单位，"
                "或把计量方式改为按实际数量或总价包干。");
}

void requireUnits(const SubcontractData& data, const Subcontract& entry) {
  if (data.metering != MeteringMethod::ByBills) return;
  for (int row = 0; row < entry.rows().size(); ++row) requireUnit(data, entry.billAt(row).bill);
}

/// What the entry would be paid for with this data.
Decimal quantityWith(const SubcontractData& data, const Subcontract& entry) {
  if (data.metering == MeteringMethod::LumpSum) return 1;
  return data.metering == MeteringMethod::ByQuantity ? data.quantity : entry.billQuantity();
}

template <class T>
void eraseFrom(std::vector<T*>& list, const T* one) {
  list.erase(std::find(list.begin(), list.end(), one));
}

}  // namespace

std::vector<Subcontract*> Project::subcontractsOf(const Bill& bill) const {
  const auto found = subcontractsOfBills_.find(&bill);
  if (found == subcontractsOfBills_.end()) return {};
  std::vector<Subcontract*> entries = found->second;
  std::sort(entries.begin(), entries.end(),
            [](const Subcontract* a, const Subcontract* b) { return a->row() < b->row(); });
  return entries;
}

bool Project::isAssigned(const Subcontract& entry, const Bill& bill) const {
  const auto found = subcontractsOfBills_.find(&bill);
  return found != subcontractsOfBills_.end() &&
         std::find(found->second.begin(), found->second.end(), &entry) != found->second.end();
}

std::vector<ResourceItem*> Project::collectedItems(const Subcontract& entry) const {
  const auto found = collected_.find(&entry);
  return found == collected_.end() ? std::vector<ResourceItem*>() : found->second;
}

costing::Totals Project::subcontractTotals() const {
  costing::Totals totals;
  for (int row = 0; row < subcontracts_->size(); ++row) {
    const auto& entry = *static_cast<const Subcontract*>(subcontracts_->rows().at(row));
    totals.excluded += entry.amount();
    totals.included += entry.includedAmount();
  }
  return totals;
}

void Project::set(Subcontract& entry, const SubcontractData& data) {
  if (data == entry.data()) return;
  if (data.metering != entry.metering) {
    throw Refusal(label(entry) + "的计量方式不能与其他内容一起修改；请单独修改计量方式。");
  }
  if (data.quantity != entry.quantity && data.metering != MeteringMethod::ByQuantity) {
    throw Refusal(label(entry) + "的计量方式为" + nameOf(data.metering) +
                  "，数量不能直接修改；请先把计量方式改为按实际数量。");
  }
  requireFields(data);
  requireUnits(data, entry);
  requireAmount(data, quantityWith(data, entry));
  record(SetSubcontract{scoped_refptr<Subcontract>(&entry), entry.data(), data});
}

void Project::setMetering(Subcontract& entry, MeteringMethod method) {
  if (method == entry.metering) return;
  SubcontractData data = entry.data();
  data.metering = method;
  requireUnits(data, entry);
  if (method == MeteringMethod::ByQuantity) data.quantity = entry.quantityNow();
  if (method == MeteringMethod::LumpSum) {
    data.price = entry.amount();
  } else if (entry.metering == MeteringMethod::LumpSum) {
    const Decimal quantity = quantityWith(data, entry);
    if (!quantity.isZero()) data.price = costing::unitPrice(entry.amount(), quantity);
  }
  requireFields(data);
  requireAmount(data, quantityWith(data, entry));
  record(SetSubcontract{scoped_refptr<Subcontract>(&entry), entry.data(), data});
}

Subcontract& Project::addSubcontract(const SubcontractData& data, int row) {
  requireFields(data);
  const scoped_refptr<Subcontract> entry(new Subcontract(newId()));
  entry->data() = data;
  requireAmount(data, entry->quantityNow());
  const int count = subcontracts_->size();
  record(AddSubcontract{entry, row < 0 || row > count ? count : row});
  return *entry;
}

void Project::removeSubcontract(Subcontract& entry) {
  const scoped_refptr<Subcontract> kept(&entry);
  ChangeSet changes;
  for (ResourceItem* item : collectedItems(entry)) {
    changes.emplace_back(SetCollection{scoped_refptr<ResourceItem>(item), kept, nullptr});
  }
  changes.emplace_back(RemoveSubcontract{kept, entry.row()});
  recordAll(std::move(changes));
}

bool Project::moveSubcontract(int from, int to) {
  auto* entry = static_cast<Subcontract*>(subcontracts_->rows().at(from));
  if (entry == nullptr || from == to || to < 0 || to >= subcontracts_->size()) return false;
  record(MoveSubcontract{scoped_refptr<Subcontract>(entry), from, to});
  return true;
}

void Project::assign(Subcontract& entry, const std::vector<Bill*>& bills) {
  const scoped_refptr<Subcontract> kept(&entry);
  ChangeSet changes;
  Decimal quantity = entry.billQuantity();
  int row = entry.rows().size();
  std::unordered_set<const Bill*> known;
  for (Bill* bill : bills) {
    if (isAssigned(entry, *bill) || !known.insert(bill).second) continue;
    if (entry.metering == MeteringMethod::ByBills) requireUnit(entry, *bill);
    quantity += bill->quantityForCost();
    changes.emplace_back(
        AssignBill{kept, scoped_refptr<SubcontractBill>(new SubcontractBill(newId(), *bill)), row});
    ++row;
  }
  if (entry.metering == MeteringMethod::ByBills) requireAmount(entry, quantity);
  recordAll(std::move(changes));
}

void Project::unassign(Subcontract& entry, const std::vector<Bill*>& bills) {
  const std::unordered_set<const Bill*> wanted(bills.begin(), bills.end());
  ChangeSet changes;
  // From below, so that each row is still right when its turn comes.
  for (int row = entry.rows().size() - 1; row >= 0; --row) {
    SubcontractBill& bill = entry.billAt(row);
    if (wanted.count(&bill.bill) == 0) continue;
    changes.emplace_back(UnassignBill{scoped_refptr<Subcontract>(&entry),
                                      scoped_refptr<SubcontractBill>(&bill), row});
  }
  recordAll(std::move(changes));
}

void Project::setLinked(const std::vector<ResourceItem*>& items, bool linked) {
  ChangeSet changes;
  for (ResourceItem* item : items) {
    if (item->subcontract() != nullptr) {
      throw Refusal(label(*item) + "已归集到" + label(*item->subcontract()) + "，不能" +
                    (linked ? "关联到成本" : "取消关联到成本") + "；请先取消归集。");
    }
    if (item->linked() == linked) continue;
    changes.emplace_back(
        SetField{scoped_refptr<ResourceItem>(item), ItemField::Linked, !linked, linked});
  }
  recordAll(std::move(changes));
}

void Project::collect(ResourceItem& item, Subcontract& into) {
  if (item.subcontract() == &into) return;
  record(SetCollection{scoped_refptr<ResourceItem>(&item),
                       scoped_refptr<Subcontract>(item.subcontract()),
                       scoped_refptr<Subcontract>(&into)});
}

void Project::uncollect(ResourceItem& item) {
  if (item.subcontract() == nullptr) return;
  record(SetCollection{scoped_refptr<ResourceItem>(&item),
                       scoped_refptr<Subcontract>(item.subcontract()), nullptr});
}

// What a bill may become while it is assigned.
void Project::requireAssignable(const Bill& bill, const BillData& data) const {
  for (const Subcontract* entry : subcontractsOf(bill)) {
    if (entry->metering != MeteringMethod::ByBills) continue;
    if (data.unit != entry->unit) {
      throw Refusal(label(bill) + "已关联到" + label(*entry) + "，后者按清单工程量计量，单位为“" +
                    entry->unit.str() + "”，清单的单位不能改为“" + data.unit.str() +
                    "”；请先取消该清单与分包的关联，或把分包的计量方式改为按实际数量或总价包干。");
    }
    const Decimal quantity = (data.costQuantity ? *data.costQuantity : bill.quantity).value();
    requireAmount(*entry, entry->billQuantity() - bill.quantityForCost() + quantity);
  }
}

void Project::write(Subcontract& entry, const SubcontractData& data) {
  entry.data() = data;
  for (Observer* observer : observers_) observer->subcontractChanged(entry);
}

void Project::link(int row, const scoped_refptr<Subcontract>& entry) {
  for (Observer* observer : observers_) observer->aboutToInsertSubcontract(row);
  subcontracts_->rows().insert(row, entry);
  for (int i = 0; i < entry->rows().size(); ++i) {
    subcontractsOfBills_[&entry->billAt(i).bill].push_back(entry.get());
  }
  for (Observer* observer : observers_) observer->subcontractInserted();
}

void Project::unlink(const scoped_refptr<Subcontract>& entry) {
  const int row = entry->row();
  for (Observer* observer : observers_) observer->aboutToRemoveSubcontract(row);
  for (int i = 0; i < entry->rows().size(); ++i) {
    eraseFrom(subcontractsOfBills_[&entry->billAt(i).bill], entry.get());
  }
  subcontracts_->rows().take(row);
  for (Observer* observer : observers_) observer->subcontractRemoved();
}

void Project::move(int from, int to) {
  for (Observer* observer : observers_) observer->aboutToMoveSubcontract(from, to);
  subcontracts_->rows().insert(to, subcontracts_->rows().take(from));
  for (Observer* observer : observers_) observer->subcontractMoved();
}

void Project::link(Subcontract& entry, int row, const scoped_refptr<SubcontractBill>& bill) {
  for (Observer* observer : observers_) observer->aboutToAssign(entry, row);
  entry.rows().insert(row, bill);
  subcontractsOfBills_[&bill->bill].push_back(&entry);
  for (Observer* observer : observers_) observer->assigned();
  for (Observer* observer : observers_) observer->subcontractChanged(entry);
}

void Project::unlink(Subcontract& entry, const scoped_refptr<SubcontractBill>& bill) {
  for (Observer* observer : observers_) observer->aboutToUnassign(entry, bill->row());
  entry.rows().take(bill->row());
  eraseFrom(subcontractsOfBills_[&bill->bill], &entry);
  for (Observer* observer : observers_) observer->unassigned();
  for (Observer* observer : observers_) observer->subcontractChanged(entry);
}

void Project::noteCollected(ResourceItem& item) {
  std::vector<ResourceItem*>& items = collected_[item.subcontract()];
  items.insert(
      std::lower_bound(items.begin(), items.end(), item.id(),
                       [](const ResourceItem* a, std::int64_t id) { return a->id() < id; }),
      &item);
}

void Project::write(ResourceItem& item, Subcontract* into) {
  const costing::Totals before = item.totals();
  Subcontract* left = item.subcontract_;
  if (left != nullptr) eraseFrom(collected_[left], &item);
  countWaiting(item, -1);
  item.subcontract_ = into;
  countWaiting(item, 1);
  if (into != nullptr) noteCollected(item);
  setAmounts(item);
  tell(item, before);
  for (Subcontract* entry : {left, into}) {
    if (entry == nullptr) continue;
    for (Observer* observer : observers_) observer->subcontractChanged(*entry);
  }
}

}  // namespace records
