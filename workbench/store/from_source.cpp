#include "workbench/store/from_source.h"

#include <tuple>
#include <unordered_map>

#include "workbench/exchange/source_document.h"
#include "workbench/records/project_builder.h"

namespace store {
namespace {

using records::Bill;
using records::BudgetItem;
using records::Category;
using records::CostAccount;
using records::Facts;
using records::IndirectFeeGroup;
using records::IndirectFeeItem;
using records::Project;
using records::ProjectBuilder;
using records::ResourceItem;
using records::ResourceItemData;
using records::StructureKind;
using records::StructureNode;

Category categoryOf(exchange::ResourceCategory category) {
  switch (category) {
    case exchange::ResourceCategory::Labour:
      return Category::Labour;
    case exchange::ResourceCategory::Material:
      return Category::Material;
    case exchange::ResourceCategory::Machinery:
      return Category::Machinery;
    case exchange::ResourceCategory::MainMaterial:
      return Category::MainMaterial;
    case exchange::ResourceCategory::Equipment:
      return Category::Equipment;
  }
  return Category::Material;
}

template <class Record, class Source>
void identify(Record& record, const Source& source) {
  record.sourceId = source.id;
  record.code = source.code;
  record.name = source.name;
}

class Filler {
 public:
  Filler(Project& project, const std::function<bool(std::size_t)>& progress)
      : project_(project), builder_(project), progress_(progress) {}

  bool fill(const exchange::SourceDocument& source) {
    facts(source);
    for (const auto& account : source.accounts) add(nullptr, account);
    for (const auto& single : source.projects) {
      StructureNode& node = builder_.addNode(nullptr, 0, StructureKind::SingleProject);
      identify(node, single);
      for (const auto& work : single.unitWorks) {
        if (!add(node, work)) return false;
      }
    }
    for (const auto& group : source.feeGroups) add(nullptr, group);
    return true;
  }

 private:
  /// What one resource item stands for, while a unit work is gathered.
  struct Gathered {
    ResourceItemData data;
    std::vector<BudgetItem*> lines;
  };

  void facts(const exchange::SourceDocument& source) {
    Facts& facts = project_.facts;
    facts.sourceKind = exchange::extensionOf(source.kind);
    facts.sourceName = source.facts.name;
    facts.code = source.facts.code;
    facts.builder = source.facts.builder;
    facts.tenderer = source.facts.tenderer;
    facts.region = source.facts.region;
    facts.date = source.facts.date;
    facts.pricingBasis = source.facts.pricingBasis;
    facts.structure = source.facts.structure;
    facts.taxMethod = exchange::nameOf(source.facts.taxMethod);
    facts.taxRate = source.facts.taxRate;
    facts.buildingArea = source.facts.buildingArea;
    facts.declaredBills = source.declared.bills;
    facts.declaredResources = source.declared.resources;
    facts.declaredFees = source.declared.fees;
    const exchange::Money read = exchange::moneyOf(source);
    facts.readBills = read.bills;
    facts.readResources = read.resources;
    facts.readFees = read.fees;
  }

  void add(CostAccount* parent, const exchange::CostAccount& source) {
    CostAccount& account = builder_.addAccount(parent, 0, source.code, source.name);
    account.sourceId = source.id;
    accounts_[source.id] = &account;
    if (source.defaultFor) {
      account.defaultFor = categoryOf(*source.defaultFor);
      defaults_[*account.defaultFor] = &account;
    }
    for (const auto& child : source.children) add(&account, child);
  }

  CostAccount* account(const std::string& sourceId) const {
    const auto found = accounts_.find(sourceId);
    return found == accounts_.end() ? nullptr : found->second;
  }

  bool add(StructureNode& parent, const exchange::UnitWork& source) {
    StructureNode& node = builder_.addNode(&parent, 0, StructureKind::UnitWork);
    identify(node, source);
    node.specialty = source.specialty;
    node.declaredBills = source.declared.bills;
    node.declaredResources = source.declared.resources;
    node.declaredFees = source.declared.fees;
    nodes_[source.id] = &node;
    numbers_.clear();
    gathered_.clear();
    for (const auto& section : source.sections) {
      if (!add(node, section)) return false;
    }
    for (Gathered& gathered : gathered_) {
      gathered.data.quantity =
          costing::storedQuantity(gathered.data.quantity, gathered.data.unit.str());
      ResourceItem& item = builder_.addItem(node, gathered.data);
      for (BudgetItem* line : gathered.lines) builder_.gather(*line, item);
    }
    return true;
  }

  bool add(StructureNode& parent, const exchange::Section& source) {
    StructureNode& node = builder_.addNode(&parent, 0, StructureKind::Section);
    identify(node, source);
    for (const auto& section : source.sections) {
      if (!add(node, section)) return false;
    }
    for (const auto& bill : source.bills) {
      if (!add(node, bill)) return false;
    }
    return true;
  }

  bool add(StructureNode& section, const exchange::Bill& source) {
    Bill& bill = builder_.addBill(section, 0);
    project_.texts.intern({source.id, source.code, source.name, source.features, source.unit},
                          bill.sourceId, bill.code, bill.name, bill.features, bill.unit);
    bill.account = account(source.accountId);
    bill.quantity = source.quantity;
    if (source.unitPrice) {
      bill.unitPrice = *source.unitPrice;
      bill.amount = exchange::billAmount(source.quantity, *source.unitPrice);
    }
    bill.rows().reserve(static_cast<int>(source.resources.size()));
    read_.clear();
    for (const auto& line : source.resources) {
      read_.insert(read_.end(), {line.id, line.code, line.name, line.spec, line.unit});
    }
    texts_.resize(read_.size());
    project_.texts.intern(read_.data(), texts_.data(), read_.size());
    const records::Text* next = texts_.data();
    for (const auto& resource : source.resources) {
      BudgetItem& line = builder_.addBudgetItem(bill, 0);
      for (records::Text* text : {&line.sourceId, &line.code, &line.name, &line.spec, &line.unit}) {
        *text = *next++;
      }
      gather(line, source.quantity, resource);
      if (++done_ % 1000 == 0 && progress_ && !progress_(done_)) return false;
    }
    return true;
  }

  void gather(BudgetItem& line, const costing::Decimal& billQuantity,
              const exchange::Resource& source) {
    line.category = categoryOf(source.category);
    line.ownerSupplied = source.ownerSupplied;
    line.provisional = source.provisional;
    line.priceAdjustable = source.priceAdjustable;
    line.content = source.content;
    line.price = source.price;
    line.taxRate = source.taxRate;
    line.amount = costing::budgetAmount(billQuantity, source.content, source.price);

    CostAccount* own = account(source.accountId);
    if (own == nullptr) {
      const auto found = defaults_.find(line.category);
      if (found != defaults_.end()) own = found->second;
    }
    const std::string flags = {static_cast<char>('0' + static_cast<int>(line.category)),
                               line.ownerSupplied ? '1' : '0', line.provisional ? '1' : '0',
                               line.priceAdjustable ? '1' : '0'};
    std::string key = flags;
    for (const std::string& part :
         {source.code, source.name, source.spec, source.unit, source.price.toString(),
          source.taxRate.toString(), own != nullptr ? std::to_string(own->id()) : ""}) {
      key += '\0';
      key += part;
    }
    const auto [place, isNew] = numbers_.emplace(std::move(key), gathered_.size());
    if (isNew) {
      gathered_.emplace_back();
      ResourceItemData& data = gathered_.back().data;
      data.account = own;
      data.category = line.category;
      data.code = line.code;
      data.name = line.name;
      data.spec = line.spec;
      data.unit = line.unit;
      data.price = source.price;
      data.taxRate = source.taxRate;
      data.ownerSupplied = line.ownerSupplied;
      data.provisional = line.provisional;
      data.priceAdjustable = line.priceAdjustable;
    }
    Gathered& gathered = gathered_[place->second];
    gathered.data.quantity += costing::consumption(billQuantity, source.content);
    gathered.data.budgetAmount += line.amount.value();
    gathered.lines.push_back(&line);
  }

  void add(IndirectFeeGroup* parent, const exchange::IndirectFeeGroup& source) {
    IndirectFeeGroup& group = builder_.addFeeGroup(parent, 0);
    identify(group, source);
    const auto node = nodes_.find(source.unitWorkId);
    if (node != nodes_.end()) group.unitWork = node->second;
    for (const auto& child : source.groups) add(&group, child);
    for (const auto& fee : source.items) {
      IndirectFeeItem& item = builder_.addFeeItem(group, 0);
      identify(item, fee);
      item.basis = fee.basis;
      item.account = account(fee.accountId);
      item.base = fee.base;
      item.rate = fee.rate;
      item.amount =
          fee.base && fee.rate ? exchange::feeAmount(*fee.base, *fee.rate) : fee.declaredAmount;
    }
  }

  Project& project_;
  ProjectBuilder builder_;
  const std::function<bool(std::size_t)>& progress_;
  std::unordered_map<std::string, CostAccount*> accounts_;
  std::unordered_map<Category, CostAccount*> defaults_;
  std::unordered_map<std::string, StructureNode*> nodes_;
  std::unordered_map<std::string, std::size_t> numbers_;  // key of what is gathered → its number
  std::vector<Gathered> gathered_;
  // The texts of one bill's lines.
  std::vector<std::string_view> read_;
  std::vector<records::Text> texts_;
  std::size_t done_ = 0;
};

}  // namespace

bool fillFromSource(records::Project& project, const exchange::SourceDocument& source,
                    const std::function<bool(std::size_t done)>& progress) {
  return Filler(project, progress).fill(source);
}

}  // namespace store
