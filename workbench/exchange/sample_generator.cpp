#include "workbench/exchange/sample_generator.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <random>
#include <string_view>
#include <utility>

#include "workbench/exchange/sample_data.h"
#include "workbench/exchange/source_reader.h"
#include "workbench/exchange/source_writer.h"

namespace exchange {
namespace {

using costing::Decimal;

Decimal decimal(std::string_view text) {
  return Decimal::parse(text).value();
}

std::string numbered(const char* format, unsigned long long number) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), format, number);
  return text.data();
}

bool has(const char* flags, char flag) {
  return std::string_view(flags).find(flag) != std::string_view::npos;
}

std::string accountId(std::string_view code) {
  return code.empty() ? std::string() : "A" + std::string(code);
}

const sample::CatalogueRow& catalogueRow(std::string_view key) {
  static const auto index = [] {
    std::map<std::string_view, const sample::CatalogueRow*> rows;
    for (const sample::CatalogueRow& row : sample::catalogue()) rows.emplace(row.key, &row);
    return rows;
  }();
  return *index.at(key);
}

std::string_view recipeOf(std::string_view key) {
  for (const sample::RecipeRow& row : sample::recipes()) {
    if (key == row.key) return row.recipe;
  }
  return {};
}

using Ingredients = std::vector<std::pair<const sample::CatalogueRow*, Decimal>>;

/// Reads "key content, @key factor"; a resource named twice is one ingredient.
void addIngredients(std::string_view recipe, const Decimal& factor, Ingredients& ingredients) {
  while (!recipe.empty()) {
    const std::size_t comma = std::min(recipe.find(','), recipe.size());
    std::string_view entry = recipe.substr(0, comma);
    recipe.remove_prefix(std::min(comma + 1, recipe.size()));
    entry.remove_prefix(std::min(entry.find_first_not_of(' '), entry.size()));
    const std::size_t blank = entry.find(' ');
    const std::string_view key = entry.substr(0, blank);
    const Decimal content = (decimal(entry.substr(blank + 1)) * factor).rounded(6);
    if (key.front() == '@') {
      addIngredients(recipeOf(key), content, ingredients);
      continue;
    }
    const sample::CatalogueRow* row = &catalogueRow(key);
    const auto same = std::find_if(ingredients.begin(), ingredients.end(),
                                   [&](const auto& other) { return other.first == row; });
    if (same != ingredients.end()) {
      same->second += content;
    } else {
      ingredients.emplace_back(row, content);
    }
  }
}

bool isBid(SourceKind kind) {
  return rulesOf(kind).needsTenderer;
}

/// A bidder buys a little under the information price; sums of money stay what they are.
Decimal priceFor(SourceKind kind, const sample::CatalogueRow& row) {
  Decimal price = decimal(row.price);
  if (!rulesOf(kind).resourcePrices) return {};
  if (!isBid(kind) || std::string_view(row.unit) == "元") return price;
  return (price * decimal("0.97")).rounded(2);
}

Resource resourceOf(const sample::CatalogueRow& row, SourceKind kind) {
  Resource resource;
  resource.category = row.category;
  resource.code = row.code;
  resource.name = row.name;
  resource.spec = row.spec;
  resource.unit = row.unit;
  resource.accountId = accountId(row.account);
  resource.ownerSupplied = has(row.flags, 'J');
  resource.provisional = has(row.flags, 'Z');
  resource.priceAdjustable = has(row.flags, 'T');
  resource.price = priceFor(kind, row);
  resource.taxRate = decimal(row.taxRate);
  return resource;
}

/// Unit price and amount of a bill whose resources are there: their cost for one unit, with
/// overhead and profit.
void priceBill(Bill& bill, const Decimal& overheadAndProfit) {
  Decimal cost;
  for (const Resource& resource : bill.resources) cost += resource.content * resource.price;
  bill.unitPrice = (cost * (Decimal(100) + overheadAndProfit) / 100).rounded(2);
  bill.declaredAmount = billAmount(bill.quantity, *bill.unitPrice);
}

std::vector<CostAccount> accountTree() {
  std::vector<CostAccount> tree;
  for (const sample::AccountRow& row : sample::accounts()) {
    CostAccount account;
    account.code = row.code;
    account.id = accountId(row.code);
    account.name = row.name;
    account.defaultFor = categoryOfName(row.defaultFor);
    (account.code.size() == 2 ? tree : tree.back().children).push_back(std::move(account));
  }
  return tree;
}

void declare(DeclaredTotals& declared, const Money& money, SourceKind kind) {
  const KindRules rules = rulesOf(kind);
  if (rules.billPrices) declared.bills = money.bills;
  if (rules.resourcePrices) declared.resources = money.resources;
  if (rules.fees) declared.fees = money.fees;
}

UnitWork unitWorkOf(const sample::WorkRow& row, SourceKind kind) {
  UnitWork work;
  work.id = "W" + std::string(row.code);
  work.code = row.code;
  work.name = row.name;
  work.specialty = row.specialty;
  std::map<std::string, int> sequence;  // the last one of each 9-digit code
  for (const sample::BillRow& line : row.bills) {
    if (*line.unit == '\0') {
      Section section;
      section.code = line.code;
      section.name = line.name;
      section.id = work.id + numbered("-S%llu", work.sections.size() + 1);
      work.sections.push_back(std::move(section));
      continue;
    }
    Section& section = work.sections.back();
    Bill bill;
    bill.id = section.id + numbered("-B%02llu", section.bills.size() + 1);
    bill.code = line.code + numbered("%03llu", ++sequence[line.code]);
    bill.name = line.name;
    bill.features = line.features;
    bill.unit = line.unit;
    bill.accountId = accountId(line.account);
    bill.quantity = decimal(line.quantity);
    Ingredients ingredients;
    addIngredients(line.recipe, 1, ingredients);
    for (const auto& [ingredient, content] : ingredients) {
      Resource resource = resourceOf(*ingredient, kind);
      resource.id = bill.id + numbered("-R%02llu", bill.resources.size() + 1);
      resource.content = content;
      bill.resources.push_back(std::move(resource));
    }
    if (rulesOf(kind).billPrices) priceBill(bill, decimal(row.overheadAndProfit));
    section.bills.push_back(std::move(bill));
  }
  return work;
}

Decimal labourOf(const UnitWork& work) {
  Decimal labour;
  for (const Section& section : work.sections) {
    for (const Bill& bill : section.bills) {
      for (const Resource& resource : bill.resources) {
        if (resource.category != ResourceCategory::Labour) continue;
        labour += resourceAmount(bill.quantity, resource.content, resource.price);
      }
    }
  }
  return labour;
}

IndirectFeeItem rateItem(const std::string& code, const char* name, const char* basis,
                         const Decimal& base, const Decimal& rate, const char* account) {
  IndirectFeeItem item;
  item.id = "F" + code;
  item.code = code;
  item.name = name;
  item.basis = basis;
  item.base = base;
  item.rate = rate;
  item.declaredAmount = feeAmount(base, rate);
  item.accountId = accountId(account);
  return item;
}

/// The fees of the whole project, from its labour and all its resources.
std::vector<IndirectFeeGroup> projectFees(const Decimal& labour, const Decimal& direct) {
  std::vector<IndirectFeeGroup> tree;
  for (const sample::FeeRow& row : sample::fees()) {
    const std::string code = row.code;
    const bool isItem = *row.rate != '\0' || *row.amount != '\0';
    // The group that a row hangs under: walk down while the code goes on.
    std::vector<IndirectFeeGroup>* level = &tree;
    IndirectFeeGroup* parent = nullptr;
    for (std::size_t digits = 2; digits < code.size(); digits += 2) {
      parent = &level->back();
      level = &parent->groups;
    }
    if (!isItem) {
      IndirectFeeGroup group;
      group.id = "F" + code;
      group.code = code;
      group.name = row.name;
      level->push_back(std::move(group));
      continue;
    }
    const Decimal amount = *row.amount != '\0'                       ? decimal(row.amount)
                           : std::string_view(row.basis) == "人工费" ? labour
                                                                     : direct;
    if (*row.rate != '\0') {
      parent->items.push_back(
          rateItem(code, row.name, row.basis, amount, decimal(row.rate), row.account));
      continue;
    }
    IndirectFeeItem item;
    item.id = "F" + code;
    item.code = code;
    item.name = row.name;
    item.accountId = accountId(row.account);
    item.declaredAmount = amount;
    parent->items.push_back(std::move(item));
  }
  return tree;
}

IndirectFeeGroup safetyFees(const UnitWork& work, const Decimal& direct, const Decimal& rate) {
  IndirectFeeGroup group;
  group.id = "F-" + work.id;
  group.code = "05" + work.code;
  group.name = work.name + "安全文明施工费";
  group.unitWorkId = work.id;
  group.items.push_back(
      rateItem(group.code + "01", "安全施工费", "直接费", direct, rate * decimal("0.6"), "0801"));
  group.items.push_back(rateItem(group.code + "02", "文明施工与环境保护费", "直接费", direct,
                                 rate * decimal("0.4"), "0801"));
  return group;
}

ProjectFacts officeFacts(SourceKind kind) {
  ProjectFacts facts;
  facts.id = "P1";
  facts.name = "滨河新区综合办公楼";
  facts.code = "BHXQ-2026-018";
  facts.builder = "滨河新区城市建设发展有限公司";
  if (isBid(kind)) facts.tenderer = "宏远建设工程有限公司";
  facts.region = "华东地区";
  facts.date = "2026-03-15";
  facts.pricingBasis = "建设工程工程量清单计价规范；地区消耗量定额；2026年2月信息价";
  facts.structure = "框架-剪力墙结构，地下1层，地上9层";
  facts.taxRate = 9;
  facts.buildingArea = decimal("15862.4");
  return facts;
}

/// Numbers between 0 and `below` - 1. The engine's sequence is fixed by the language standard,
/// that of its distributions is not.
class Dice {
 public:
  explicit Dice(quint64 seed) : engine_(seed) {}
  quint64 roll(quint64 below) { return engine_() % below; }
  Decimal hundredths(quint64 below) {
    const quint64 units = 1 + roll(below);
    return decimal(numbered("%llu.", units / 100) + numbered("%02llu", units % 100));
  }

 private:
  std::mt19937_64 engine_;
};

constexpr int BillsInSection = 40;
constexpr int SectionsInWork = 20;
constexpr int MostInBill = 14;
constexpr qint64 ProgressResources = 20000;

/// Streams a synthetic file: unit works of 800 bills, bills of 2 to 14 resource items.
class Synthesis {
 public:
  Synthesis(QIODevice& device, SourceKind kind, qint64 resources, quint64 seed)
      : writer_(device, kind), kind_(kind), left_(resources), dice_(seed) {}

  /// False when cancelled or when the device refuses.
  bool run(const SampleGenerator::Progress& progress);
  bool isCancelled() const { return cancelled_; }

 private:
  void writeWork();
  Bill nextBill(const std::string& sectionId);
  Resource nextResource();
  std::vector<IndirectFeeGroup> fees() const;

  SourceWriter writer_;
  const SourceKind kind_;
  qint64 left_;
  qint64 done_ = 0;
  qint64 reported_ = 0;
  qint64 works_ = 0;
  qint64 bills_ = 0;
  bool cancelled_ = false;
  Dice dice_;
  Money money_;      // of the project
  Money workMoney_;  // of the unit work being written
  const SampleGenerator::Progress* progress_ = nullptr;
};

bool Synthesis::run(const SampleGenerator::Progress& progress) {
  progress_ = &progress;
  ProjectFacts facts = officeFacts(kind_);
  facts.name = "合成工程" + numbered("（%llu条人材机）", static_cast<quint64>(left_));
  facts.code = "SYN";
  writer_.begin(facts);
  writer_.writeAccounts(accountTree());
  SingleProject project;
  project.id = "S1";
  project.code = "01";
  project.name = "合成单项工程";
  writer_.beginSingleProject(project);
  while (left_ > 0 && !cancelled_ && !writer_.hasFailed()) writeWork();
  if (cancelled_ || writer_.hasFailed()) return false;
  writer_.endSingleProject();
  const std::vector<IndirectFeeGroup> groups = fees();
  writer_.writeFees(groups);
  for (const IndirectFeeGroup& group : groups) money_ += moneyOf(group);
  DeclaredTotals declared;
  declare(declared, money_, kind_);
  return writer_.end(declared);
}

void Synthesis::writeWork() {
  const sample::WorkRow& model = sample::works()[works_ % sample::works().size()];
  UnitWork work;
  work.id = numbered("W%llu", ++works_);
  work.code = numbered("%04llu", works_);
  work.name = model.name + numbered("（%llu）", works_);
  work.specialty = model.specialty;
  writer_.beginUnitWork(work);
  workMoney_ = Money();
  for (int i = 1; i <= SectionsInWork && left_ > 0 && !cancelled_; ++i) {
    Section section;
    section.id = work.id + numbered("-%llu", i);
    section.code = numbered("%02llu", i);
    section.name = numbered("第%llu分部", i);
    writer_.beginSection(section);
    for (int j = 0; j < BillsInSection && left_ > 0; ++j) {
      const Bill bill = nextBill(section.id);
      workMoney_ += moneyOf(bill);
      writer_.writeBill(bill);
    }
    writer_.endSection();
    if (done_ - reported_ >= ProgressResources) {
      reported_ = done_;
      cancelled_ = *progress_ && !(*progress_)(done_);
    }
  }
  DeclaredTotals declared;
  declare(declared, workMoney_, kind_);
  writer_.endUnitWork(declared);
  money_ += workMoney_;
}

Bill Synthesis::nextBill(const std::string& sectionId) {
  const sample::WorkRow& work = sample::works()[dice_.roll(sample::works().size())];
  const sample::BillRow* row = nullptr;
  do {
    row = &work.bills[dice_.roll(work.bills.size())];
  } while (*row->unit == '\0');
  ++bills_;
  Bill bill;
  bill.id = sectionId + numbered("-%llu", bills_);
  bill.code = row->code + numbered("%03llu", 1 + bills_ % 999);
  bill.name = row->name;
  bill.features = row->features;
  bill.unit = row->unit;
  bill.accountId = accountId(row->account);
  bill.quantity = dice_.hundredths(200000);
  const qint64 count = std::min<qint64>(left_, 2 + static_cast<qint64>(dice_.roll(MostInBill - 1)));
  bill.resources.reserve(static_cast<std::size_t>(count));
  for (qint64 i = 0; i < count; ++i) bill.resources.push_back(nextResource());
  left_ -= count;
  if (rulesOf(kind_).billPrices) priceBill(bill, decimal(work.overheadAndProfit));
  return bill;
}

Resource Synthesis::nextResource() {
  const auto number = static_cast<quint64>(++done_);
  Resource resource =
      resourceOf(sample::catalogue()[dice_.roll(sample::catalogue().size())], kind_);
  resource.id = numbered("R%llu", number);
  resource.content = decimal("0.0001") * Decimal(static_cast<int>(1 + dice_.roll(30000)));
  // One in ten is a plain resource of the catalogue, which recurs; the others are their own.
  if (dice_.roll(10) != 0) {
    resource.code += numbered("-%07llu", number);
    resource.spec += (resource.spec.empty() ? "型号" : " 型号") + numbered("%llu", number % 9973);
    if (rulesOf(kind_).resourcePrices) {
      resource.price = (resource.price * (decimal("0.8") + dice_.hundredths(40))).rounded(2);
    }
  }
  return resource;
}

std::vector<IndirectFeeGroup> Synthesis::fees() const {
  if (!rulesOf(kind_).fees) return {};
  return projectFees((money_.resources * decimal("0.18")).rounded(2), money_.resources);
}

}  // namespace

SourceDocument SampleGenerator::officeBuilding(SourceKind kind) {
  SourceDocument document;
  document.kind = kind;
  document.facts = officeFacts(kind);
  document.accounts = accountTree();
  SingleProject project;
  project.id = "S1";
  project.code = "01";
  project.name = "综合办公楼";
  const bool hasFees = rulesOf(kind).fees;
  Money total;
  Decimal labour;
  std::vector<IndirectFeeGroup> safety;
  for (const sample::WorkRow& row : sample::works()) {
    UnitWork work = unitWorkOf(row, kind);
    Money money = moneyOf(work);
    labour += labourOf(work);
    if (hasFees) {
      safety.push_back(safetyFees(work, money.resources, decimal(row.safetyRate)));
      money += moneyOf(safety.back());
    }
    declare(work.declared, money, kind);
    total += money;
    project.unitWorks.push_back(std::move(work));
  }
  document.projects.push_back(std::move(project));
  if (hasFees) {
    document.feeGroups = projectFees(labour, total.resources);
    for (const IndirectFeeGroup& group : document.feeGroups) total += moneyOf(group);
    std::move(safety.begin(), safety.end(), std::back_inserter(document.feeGroups));
  }
  declare(document.declared, total, kind);
  return document;
}

QString SampleGenerator::writeOfficeBuilding(const QString& folder) {
  for (const SourceKind kind :
       {SourceKind::Tender, SourceKind::Bid, SourceKind::ControlPrice, SourceKind::ElectronicTender,
        SourceKind::ElectronicBid, SourceKind::Standard}) {
    const QString name = QStringLiteral("办公楼.%1").arg(QString::fromStdString(extensionOf(kind)));
    QString fault = SourceWriter::writeFile(officeBuilding(kind), QDir(folder).filePath(name));
    if (!fault.isEmpty()) return fault;
  }
  return {};
}

QString SampleGenerator::generate(qint64 resources, quint64 seed, const QString& path,
                                  const Progress& progress) {
  if (resources < 1 || resources > MostResources) {
    return QStringLiteral("人材机数量 %1 超出范围：必须在 1 到 %2 之间")
        .arg(resources)
        .arg(MostResources);
  }
  const QString suffix = QFileInfo(path).suffix();
  const std::optional<SourceKind> kind = kindOfExtension(suffix.toStdString());
  if (!kind) {
    return QStringLiteral("扩展名“%1”不可识别：只能是 ZBQD、TBQD、ZGXJQD、CZB、CTB 或 GCLQD")
        .arg(suffix);
  }
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return SourceWriter::writeFault(file);
  Synthesis synthesis(file, *kind, resources, seed);
  const bool written = synthesis.run(progress);
  if (synthesis.isCancelled()) return QStringLiteral("已取消生成，没有写出文件");
  if (!written || !file.commit()) return SourceWriter::writeFault(file);
  return {};
}

}  // namespace exchange
