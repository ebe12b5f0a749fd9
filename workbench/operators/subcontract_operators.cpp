#include "workbench/operators/subcontract_operators.h"

#include <QDate>
#include <QRegularExpression>
#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <stdexcept>
#include <utility>

#include "host/app/scoped_undo.h"
#include "host/app/services.h"
#include "host/domain/field_keys.h"
#include "host/domain/qce/contract_types.h"
#include "workbench/operators/cell_values.h"
#include "workbench/operators/columns.h"
#include "workbench/operators/refusal.h"
#include "workbench/records/bill_costs.h"
#include "workbench/records/labels.h"

namespace operators {
namespace {

using costing::Decimal;
using domain::Value;
using records::Bill;
using records::MeteringMethod;
using records::Subcontract;
using records::SubcontractData;
namespace keys = domain::keys;

constexpr int TaxPlaces = 4;
constexpr int NamesInToolTip = 20;
const base::Color Alarm{0xc0, 0x20, 0x20};

class EntryRow final : public records::Record {
 public:
  explicit EntryRow(Subcontract& of) : Record(of.id()), entry(&of) {}
  scoped_refptr<Subcontract> entry;
};

class BillRow final : public records::Record {
 public:
  BillRow(Bill& of, const std::string& ofWork, const std::string& ofSection)
      : Record(of.id()), bill(of), unitWork(ofWork), section(ofSection) {}
  Bill& bill;
  const std::string& unitWork;  // of the structure, which outlives the rows
  const std::string& section;
};

class BaseRow final : public records::Record {
 public:
  BaseRow(int number, services::SubcontractBaseEntry of) : Record(number), entry(std::move(of)) {}
  services::SubcontractBaseEntry entry;
};

template <class Row>
const Row* as(const proxy::Element* element) {
  return dynamic_cast<const Row*>(element);
}

enum Column {
  Code,
  Name,
  Features,
  Unit,
  ContractType,
  Metering,
  Quantity,
  Price,
  Amount,
  TaxRate,
  IncludedAmount,
  Account,
  CollectedItems,
  ContentQuota,
  Attachment,
  ExpiryDate,
  Area,
  Remark,
  ColumnCount
};

struct ColumnInfo {
  const std::string& key;
  const char* name;
  int type;
  int width;
  bool editable = true;
  bool money = false;
};

// A function, since the keys must be there first.
const std::array<ColumnInfo, ColumnCount>& columns() {
  using namespace domain;
  static const std::array<ColumnInfo, ColumnCount> all = {{
      {keys::BRICode, "编码", StringField, 70},
      {keys::BRIName, "名称", StringField, 170},
      {keys::SEProjFeatures, "项目特征", StringField, 140},
      {keys::BRIUnit, "单位", StringField, 50},
      {keys::BRIContractType, "合同类型", StringField, 100},
      {keys::BRIMeteringMethod, "计量方式", StringField, 105},
      {keys::BRIAmount, "数量", FloatingPointField, 90},
      {keys::BRIExcludedTaxFee, "不含税单价（元）", FloatingPointField, 115, true, true},
      {keys::BRIExcludedTaxTotalCost, "不含税合价（元）", FloatingPointField, 120, false, true},
      {keys::BRITaxRate, "税率（%）", FloatingPointField, 80},
      {keys::BRIIncludedTaxTotalCost, "含税合价（元）", FloatingPointField, 120, false, true},
      {keys::CostAccount, "成本科目", StringField, 140},
      {keys::BRICollectedItems, "归集人材机", IntegerField, 80, false},
      {keys::BRIContentQuota, "定额含量", StringField, 140},
      {keys::BRIContractAttachment, "合同附件", StringField, 120},
      {keys::BRIPriceExpiryDate, "价格有效期", StringField, 95},
      {keys::BRIApplicableArea, "适用区域", StringField, 100},
      {keys::SERemark, "备注", StringField, 140},
  }};
  return all;
}

int columnOf(const std::string& key) {
  for (int i = 0; i < ColumnCount; ++i) {
    if (columns()[static_cast<std::size_t>(i)].key == key) return i;
  }
  return -1;
}

QString textOf(const Value& value) {
  const auto* text = std::get_if<std::string>(&value);
  return text != nullptr ? QString::fromStdString(*text).trimmed() : QString();
}

/// Empty for a cleared cell, which is 0; nothing for what is no number.
std::optional<Decimal> numberOf(const Value& value) {
  if (std::holds_alternative<std::monostate>(value)) return Decimal();
  const auto* number = std::get_if<double>(&value);
  return number != nullptr ? Decimal::fromDouble(*number) : std::nullopt;
}

/// A date as it is kept, of what was typed: 2026/3/1, 2026.3.1, 2026年3月1日. What is no date comes
/// back as it is, to be refused.
std::string dateOf(const QString& text) {
  static const QRegularExpression parts("^(\\d{4})[-/.年](\\d{1,2})[-/.月](\\d{1,2})日?$");
  const auto match = parts.match(text);
  if (!match.hasMatch()) return text.toStdString();
  return QString("%1-%2-%3")
      .arg(match.captured(1), match.captured(2).rightJustified(2, '0'),
           match.captured(3).rightJustified(2, '0'))
      .toStdString();
}

/// The text that a column of texts shows; null for the others.
records::Text SubcontractData::*textMember(int column) {
  switch (column) {
    case Code:
      return &SubcontractData::code;
    case Name:
      return &SubcontractData::name;
    case Features:
      return &SubcontractData::features;
    case Unit:
      return &SubcontractData::unit;
    case ContractType:
      return &SubcontractData::contractType;
    case ContentQuota:
      return &SubcontractData::contentQuota;
    case Attachment:
      return &SubcontractData::attachment;
    case ExpiryDate:
      return &SubcontractData::priceExpiryDate;
    case Area:
      return &SubcontractData::applicableArea;
    case Remark:
      return &SubcontractData::remark;
    default:
      return nullptr;
  }
}

bool isExpired(const SubcontractData& entry) {
  const QDate date =
      QDate::fromString(QString::fromStdString(entry.priceExpiryDate.str()), Qt::ISODate);
  return date.isValid() && date < QDate::currentDate();
}

}  // namespace

std::unique_ptr<domain::DisplayTable> makeSubcontractTable() {
  return makeTable("QCE_Subcontract", columns(), true);
}

std::unique_ptr<domain::DisplayTable> makeSubcontractCollectTable() {
  using namespace domain;
  return makeTable("QCE_SubcontractCollect",
                   {{keys::SECode, "编码", StringField, 145},
                    {keys::SEName, "名称", StringField, 150},
                    {keys::SEUnit, "单位", StringField, 45},
                    {keys::SEAmount, "工程量", FloatingPointField, 80},
                    {keys::SECostTotalCost, "分包金额（元）", FloatingPointField, 115, true}},
                   true);
}

std::unique_ptr<domain::DisplayTable> makeSubcontractBillTable() {
  using namespace domain;
  return makeTable("QCE_SubcontractBill", {{keys::BRIAssociation, "关联", StringField, 45},
                                           {keys::SECode, "编码", StringField, 105},
                                           {keys::SEName, "名称", StringField, 150},
                                           {keys::SEProjFeatures, "项目特征", StringField, 160},
                                           {keys::SEUnit, "单位", StringField, 50},
                                           {keys::SEQuantity, "工程量", FloatingPointField, 85},
                                           {keys::SESubcontracts, "其他分包", StringField, 130},
                                           {keys::SEUnitWork, "单位工程", StringField, 130},
                                           {keys::SESection, "分部", StringField, 130}});
}

std::unique_ptr<domain::DisplayTable> makeSubcontractBaseTable() {
  std::vector<ColumnInfo> shown;
  for (const int column : {Code, Name, Features, Unit, ContractType, Metering, Price, TaxRate,
                           Account, ContentQuota, Area, Remark}) {
    shown.push_back(columns()[static_cast<std::size_t>(column)]);
  }
  return makeTable("QCE_SubcontractBase", shown, true);
}

// ---------------------------------------------------------------------------------------------
// Entries

SubcontractOperator::SubcontractOperator(records::Project& project)
    : project_(project), root_(new records::Group) {
  for (int row = 0; row < project_.subcontracts().size(); ++row) insertRow(row);
}

SubcontractOperator::~SubcontractOperator() = default;

const Subcontract* SubcontractOperator::entryOf(const proxy::Element* element) {
  const auto* row = as<EntryRow>(element);
  return row != nullptr ? row->entry.get() : as<Subcontract>(element);
}

Subcontract* SubcontractOperator::entryOf(proxy::Element* element) {
  return const_cast<Subcontract*>(entryOf(static_cast<const proxy::Element*>(element)));
}

proxy::Element* SubcontractOperator::rowOf(const Subcontract& entry) const {
  proxy::Element* row = root_->rows().at(entry.row());
  return row != nullptr && row->id() == entry.id() ? row : nullptr;
}

void SubcontractOperator::insertRow(int row) {
  auto& entry = *static_cast<Subcontract*>(project_.subcontracts().rows().at(row));
  root_->rows().insert(row, scoped_refptr<records::Record>(new EntryRow(entry)));
}

void SubcontractOperator::removeRow(int row) {
  root_->rows().take(row);
}

void SubcontractOperator::moveRow(int from, int to) {
  root_->rows().insert(to, root_->rows().take(from));
}

bool SubcontractOperator::display(const Subcontract& entry, int column, Value& out) const {
  if (const auto member = textMember(column)) return put(out, (entry.*member).str());
  switch (column) {
    case Metering:
      return put(out, records::nameOf(entry.metering));
    case Quantity:
      return put(out, entry.quantityNow());
    case Price:
      return put(out, entry.price);
    case Amount:
      return put(out, entry.amount());
    case TaxRate:
      return put(out, entry.taxRate);
    case IncludedAmount:
      return put(out, entry.includedAmount());
    case Account:
      return put(out, entry.account != nullptr ? entry.account->label : std::string());
    case CollectedItems: {
      const auto items = project_.collectedItems(entry).size();
      if (items == 0) return put(out, std::string());
      out = static_cast<int>(items);
      return true;
    }
    default:
      return false;
  }
}

bool SubcontractOperator::choices(int column, Value& out) const {
  std::vector<std::string> texts;
  if (column == ContractType) {
    texts = domain::qce::contractTypes();
  } else if (column == Metering) {
    for (int i = 0; i < records::MeteringMethodCount; ++i) {
      texts.push_back(records::nameOf(static_cast<MeteringMethod>(i)));
    }
  } else if (column == Account) {
    for (const records::CostAccount* account : project_.allAccounts()) {
      texts.push_back(account->label);
    }
  } else {
    return false;
  }
  out = std::move(texts);
  return true;
}

bool SubcontractOperator::toolTip(const Subcontract& entry, int column, Value& out) const {
  switch (column) {
    case Quantity:
      if (entry.metering == MeteringMethod::LumpSum) return put(out, "总价包干：数量为 1");
      if (entry.metering == MeteringMethod::ByQuantity) return put(out, "按实际数量：可直接输入");
      return put(out, "按清单工程量：所关联 " + std::to_string(entry.childCount()) +
                          " 条清单的成本工程量之和");
    case CollectedItems: {
      const std::vector<records::ResourceItem*> items = project_.collectedItems(entry);
      if (items.empty()) return false;
      std::string names = "归集到此分包的人材机，其成本由分包承担（双击查看）：";
      for (std::size_t i = 0; i < items.size() && i < NamesInToolTip; ++i) {
        names += "\n" + items[i]->code().str() + " " + items[i]->name().str();
      }
      if (items.size() > NamesInToolTip) names += "\n…… 共 " + std::to_string(items.size()) + " 项";
      return put(out, names);
    }
    case ExpiryDate:
      return isExpired(entry) && put(out, "价格已过有效期，请重新询价");
    default:
      return false;
  }
}

bool SubcontractOperator::getValue(const proxy::Element* element, const std::string& key, int role,
                                   Value& out) const {
  const Subcontract* entry = entryOf(element);
  const int column = columnOf(key);
  if (entry == nullptr || column < 0) return false;
  switch (role) {
    case domain::DisplayRole:
    case domain::EditRole:
      return display(*entry, column, out);
    case domain::ChoicesRole:
      return choices(column, out);
    case domain::ToolTipRole:
      return toolTip(*entry, column, out);
    case domain::ForegroundRole:
      if (column != ExpiryDate || !isExpired(*entry)) return false;
      out = Alarm;
      return true;
    default:
      return false;
  }
}

bool SubcontractOperator::isEditable(const proxy::Element* element, const std::string& key) const {
  const Subcontract* entry = entryOf(element);
  const int column = columnOf(key);
  if (entry == nullptr || column < 0) return false;
  if (column == Quantity) return entry->metering == MeteringMethod::ByQuantity;
  return columns()[static_cast<std::size_t>(column)].editable;
}

bool SubcontractOperator::setValue(proxy::Element* element, const std::string& key,
                                   const Value& value, int role) {
  Subcontract* entry = entryOf(element);
  if (entry == nullptr || role != domain::EditRole || !isEditable(element, key)) return false;
  const app::ScopedUndo undo("");
  try {
    return write(*entry, columnOf(key), value);
  } catch (const records::Refusal& refusal) {
    return refuse(refusal.what());
  } catch (const std::overflow_error&) {
    return refuse(records::label(*entry) + "的合价超出可计算的范围，未修改；请检查其单价和数量。");
  }
}

bool SubcontractOperator::write(Subcontract& entry, int column, const Value& value) {
  const QString text = textOf(value);
  const std::string title = columns()[static_cast<std::size_t>(column)].name;
  if (column == Metering) return setMetering(entry, text.toStdString());
  if (text.size() > MostSubcontractText) {
    return refuse(records::label(entry) + "的" + title + "最多 " +
                  std::to_string(MostSubcontractText) + " 个字，请缩短后重新输入。");
  }
  // Said here, where the entry still has its name.
  if (column == Name && text.isEmpty()) {
    return refuse(records::label(entry) + "的名称不能为空；请输入名称。");
  }
  SubcontractData data = entry;
  if (const auto member = textMember(column)) {
    std::string kept = text.toStdString();
    if (column == ContractType && kept == domain::qce::BlankContractType) kept.clear();
    if (column == ExpiryDate) kept = dateOf(text);
    data.*member = project_.texts.intern(kept);
  } else if (column == Account) {
    data.account = project_.findAccount(text.toStdString());
    if (data.account == nullptr && !text.isEmpty()) {
      return refuse(records::label(entry) + "的成本科目“" + text.toStdString() +
                    "”不存在；请从列表中选择，或留空。");
    }
  } else {
    const std::optional<Decimal> number = numberOf(value);
    if (!number) return refuse(records::label(entry) + "的" + title + "应为数字，请重新输入。");
    (column == Quantity ? data.quantity : column == Price ? data.price : data.taxRate) = *number;
  }
  project_.set(entry, data);
  return true;
}

bool SubcontractOperator::setMetering(Subcontract& entry, const std::string& text) {
  for (int i = 0; i < records::MeteringMethodCount; ++i) {
    const auto method = static_cast<MeteringMethod>(i);
    if (records::nameOf(method) != text) continue;
    project_.setMetering(entry, method);
    return true;
  }
  return refuse(records::label(entry) + "的计量方式“" + text +
                "”不可用；请选择按清单工程量、按实际数量或总价包干。");
}

// ---------------------------------------------------------------------------------------------
// What they gather

costing::Decimal SubcontractCollectOperator::shareOf(const Subcontract& entry, int row) const {
  const auto found = shares_.find(&entry);
  const auto& shares =
      found != shares_.end() ? found->second : shares_[&entry] = records::sharesOf(entry);
  return row < static_cast<int>(shares.size()) ? shares[static_cast<std::size_t>(row)] : Decimal();
}

bool SubcontractCollectOperator::getValue(const proxy::Element* element, const std::string& key,
                                          int role, Value& out) const {
  const auto* entry = as<Subcontract>(element);
  const auto* row = as<records::SubcontractBill>(element);
  if (role == domain::FontRole && entry != nullptr) {
    out = base::Font{true, "Noto Sans CJK SC"};
    return true;
  }
  if (role == domain::ToolTipRole && row != nullptr && key == keys::SEName) {
    return !row->bill.features.empty() && put(out, row->bill.features.str());
  }
  if (role != domain::DisplayRole && role != domain::EditRole) return false;
  if (entry != nullptr) {
    if (key == keys::SECode) return put(out, entry->code.str());
    if (key == keys::SEName) return put(out, entry->name.str());
    if (key == keys::SEUnit) return put(out, entry->unit.str());
    if (key == keys::SEAmount) return put(out, entry->quantityNow());
    return key == keys::SECostTotalCost && put(out, entry->amount());
  }
  if (row == nullptr) return false;
  const Bill& bill = row->bill;
  if (key == keys::SECode) return put(out, bill.code.str());
  if (key == keys::SEName) return put(out, bill.name.str());
  if (key == keys::SEUnit) return put(out, bill.unit.str());
  if (key == keys::SEAmount) return put(out, bill.quantityForCost());
  const auto* above = static_cast<const Subcontract*>(row->parent());
  return key == keys::SECostTotalCost && above != nullptr && put(out, shareOf(*above, row->row()));
}

// ---------------------------------------------------------------------------------------------
// Bills

SubcontractBillOperator::SubcontractBillOperator(records::Project& project)
    : project_(project), root_(new records::Group) {
  static const std::string none;
  const records::StructureNode* work = nullptr;
  const std::function<void(const records::StructureNode&)> add =
      [&](const records::StructureNode& node) {
        for (int i = 0; i < node.childCount(); ++i) {
          if (const auto* section = as<records::StructureNode>(node.child(i))) {
            add(*section);
          } else if (auto* bill = dynamic_cast<Bill*>(node.child(i))) {
            root_->rows().append(scoped_refptr<records::Record>(
                new BillRow(*bill, work->name, &node != work ? node.name : none)));
          }
        }
      };
  for (const records::StructureNode* unitWork : project_.unitWorks()) {
    work = unitWork;
    add(*unitWork);
  }
}

SubcontractBillOperator::~SubcontractBillOperator() = default;

Bill* SubcontractBillOperator::billOf(const proxy::Element* row) {
  const auto* found = as<BillRow>(row);
  return found != nullptr ? &found->bill : nullptr;
}

const std::string* SubcontractBillOperator::peekText(const proxy::Element* element,
                                                     const std::string& key, int role) const {
  const auto* row = as<BillRow>(element);
  if (row == nullptr || (role != domain::DisplayRole && role != domain::EditRole)) return nullptr;
  if (key == keys::SECode) return &row->bill.code.str();
  if (key == keys::SEName) return &row->bill.name.str();
  if (key == keys::SEProjFeatures) return &row->bill.features.str();
  if (key == keys::SEUnit) return &row->bill.unit.str();
  if (key == keys::SEUnitWork) return &row->unitWork;
  if (key == keys::SESection) return &row->section;
  return nullptr;
}

bool SubcontractBillOperator::getValue(const proxy::Element* element, const std::string& key,
                                       int role, Value& out) const {
  if (const std::string* text = peekText(element, key, role)) return put(out, *text);
  const auto* row = as<BillRow>(element);
  if (row == nullptr || (role != domain::DisplayRole && role != domain::EditRole)) return false;
  if (key == keys::SEQuantity) return put(out, row->bill.quantityForCost());
  if (key == keys::BRIAssociation) return put(out, std::string(isAssociated(row) ? "√" : ""));
  if (key != keys::SESubcontracts) return false;
  std::string names;
  for (const Subcontract* entry : project_.subcontractsOf(row->bill)) {
    if (entry == current_.get()) continue;
    names += (names.empty() ? "" : "、") + entry->name.str();
  }
  return put(out, names);
}

bool SubcontractBillOperator::isAssociated(const proxy::Element* bill) const {
  const auto* row = as<BillRow>(bill);
  return row != nullptr && current_ != nullptr && project_.isAssigned(*current_, row->bill);
}

bool SubcontractBillOperator::isExcluded(const proxy::Element* bill,
                                         const std::string& text) const {
  const auto* row = as<BillRow>(bill);
  if (text.empty() || row == nullptr) return false;
  if (text != matched_) {
    matched_ = text;
    matcher_ = bwidgets::TextMatcher(QString::fromStdString(text));
  }
  const auto holds = [this](records::Text part) {
    return matcher_.matches(QString::fromStdString(part.str()));
  };
  return !holds(row->bill.code) && !holds(row->bill.name) && !holds(row->bill.features);
}

// ---------------------------------------------------------------------------------------------
// Base list

SubcontractBaseOperator::SubcontractBaseOperator() : root_(new records::Group) {}
SubcontractBaseOperator::~SubcontractBaseOperator() = default;

void SubcontractBaseOperator::setEntries(
    const std::vector<services::SubcontractBaseEntry>& entries) {
  root_->rows().clear();
  for (const services::SubcontractBaseEntry& entry : entries) {
    root_->rows().append(scoped_refptr<records::Record>(new BaseRow(root_->size() + 1, entry)));
  }
}

const services::SubcontractBaseEntry* SubcontractBaseOperator::entryOf(const proxy::Element* row) {
  const auto* found = as<BaseRow>(row);
  return found != nullptr ? &found->entry : nullptr;
}

bool SubcontractBaseOperator::getValue(const proxy::Element* element, const std::string& key,
                                       int role, Value& out) const {
  const services::SubcontractBaseEntry* entry = entryOf(element);
  if (entry == nullptr || role != domain::DisplayRole) return false;
  switch (columnOf(key)) {
    case Code:
      return put(out, entry->code);
    case Name:
      return put(out, entry->name);
    case Features:
      return put(out, entry->features);
    case Unit:
      return put(out, entry->unit);
    case ContractType:
      return put(out, entry->contractType);
    case Metering:
      return put(out, records::nameOf(entry->metering));
    case Price:
      return put(out, entry->price);
    case TaxRate:
      return put(out, entry->taxRate);
    case Account:
      return put(out, entry->account);
    case ContentQuota:
      return put(out, entry->contentQuota);
    case Area:
      return put(out, entry->applicableArea);
    case Remark:
      return put(out, entry->remark);
    default:
      return false;
  }
}

}  // namespace operators
