#include "workbench/exchange/source_document.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "workbench/costing/rules.h"

namespace exchange {
namespace {

using costing::Decimal;

struct KindEntry {
  SourceKind kind;
  const char* extension;
  const char* name;
  KindRules rules;
};

// clang-format off
constexpr std::array<KindEntry, 6> Kinds{{
    //                                                        bills  prices fees   tenderer
    {SourceKind::Tender,           "ZBQD",   "招标文件",    {false, true,  true,  false}},
    {SourceKind::Bid,              "TBQD",   "投标文件",    {true,  true,  true,  true}},
    {SourceKind::ControlPrice,     "ZGXJQD", "控制价文件",  {true,  true,  true,  false}},
    {SourceKind::ElectronicTender, "CZB",    "CZB格式文件", {false, true,  true,  false}},
    {SourceKind::ElectronicBid,    "CTB",    "CTB格式文件", {true,  true,  true,  true}},
    {SourceKind::Standard,         "GCLQD",  "标准文件",    {false, false, false, false}},
}};
// clang-format on

constexpr std::array<const char*, 5> Categories{"人工", "材料", "机械", "主材", "设备"};
constexpr std::array<const char*, 2> TaxMethods{"一般计税", "简易计税"};

const KindEntry& entryOf(SourceKind kind) {
  return Kinds[static_cast<std::size_t>(kind)];
}

char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

template <typename Enum, typename Names>
std::optional<Enum> enumOfName(const Names& names, std::string_view name) {
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) return {};
  return static_cast<Enum>(std::distance(names.begin(), found));
}

Money moneyOf(const Section& section) {
  Money money;
  for (const Section& child : section.sections) money += moneyOf(child);
  for (const Bill& bill : section.bills) money += exchange::moneyOf(bill);
  return money;
}

void count(const Section& section, Counts& counts) {
  for (const Section& child : section.sections) count(child, counts);
  counts.bills += section.bills.size();
  for (const Bill& bill : section.bills) counts.resources += bill.resources.size();
}

}  // namespace

KindRules rulesOf(SourceKind kind) {
  return entryOf(kind).rules;
}

std::string extensionOf(SourceKind kind) {
  return entryOf(kind).extension;
}

std::string nameOf(SourceKind kind) {
  return entryOf(kind).name;
}

std::optional<SourceKind> kindOfExtension(std::string_view extension) {
  std::string wanted(extension);
  std::transform(wanted.begin(), wanted.end(), wanted.begin(), upper);
  for (const KindEntry& entry : Kinds) {
    if (wanted == entry.extension) return entry.kind;
  }
  return {};
}

std::string nameOf(ResourceCategory category) {
  return Categories[static_cast<std::size_t>(category)];
}

std::optional<ResourceCategory> categoryOfName(std::string_view name) {
  return enumOfName<ResourceCategory>(Categories, name);
}

std::string nameOf(TaxMethod method) {
  return TaxMethods[static_cast<std::size_t>(method)];
}

std::optional<TaxMethod> taxMethodOfName(std::string_view name) {
  return enumOfName<TaxMethod>(TaxMethods, name);
}

Decimal billAmount(const Decimal& quantity, const Decimal& unitPrice) {
  return (quantity * unitPrice).rounded(2);
}

Decimal resourceAmount(const Decimal& billQuantity, const Decimal& content, const Decimal& price) {
  return costing::budgetAmount(billQuantity, content, price);
}

Decimal feeAmount(const Decimal& base, const Decimal& ratePercent) {
  return costing::feeByRate(base, ratePercent);
}

Money& Money::operator+=(const Money& other) {
  bills += other.bills;
  resources += other.resources;
  fees += other.fees;
  return *this;
}

Money moneyOf(const Bill& bill) {
  Money money;
  if (bill.unitPrice) money.bills = billAmount(bill.quantity, *bill.unitPrice);
  for (const Resource& resource : bill.resources) {
    money.resources += resourceAmount(bill.quantity, resource.content, resource.price);
  }
  return money;
}

Money moneyOf(const UnitWork& work) {
  Money money;
  for (const Section& section : work.sections) money += moneyOf(section);
  return money;
}

Money moneyOf(const IndirectFeeGroup& group) {
  Money money;
  for (const IndirectFeeGroup& child : group.groups) money += moneyOf(child);
  for (const IndirectFeeItem& item : group.items) {
    money.fees += item.base ? feeAmount(*item.base, *item.rate) : item.declaredAmount;
  }
  return money;
}

Money moneyOf(const SourceDocument& document) {
  Money money;
  for (const SingleProject& project : document.projects) {
    for (const UnitWork& work : project.unitWorks) money += moneyOf(work);
  }
  for (const IndirectFeeGroup& group : document.feeGroups) money += moneyOf(group);
  return money;
}

Counts countsOf(const SourceDocument& document) {
  Counts counts;
  for (const SingleProject& project : document.projects) {
    for (const UnitWork& work : project.unitWorks) {
      for (const Section& section : work.sections) count(section, counts);
    }
  }
  return counts;
}

}  // namespace exchange
