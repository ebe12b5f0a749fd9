#include <functional>
#include <map>
#include <random>

#include "tests/support/rows.h"
#include "tests/workbench/project_fixture.h"
#include "tests/workbench/values.h"
#include "workbench/records/project_builder.h"
#include "workbench/records/summary.h"
#include "workbench/services/templates.h"

using costing::Decimal;
using records::Bill;
using records::BudgetItem;
using records::CostAccount;
using records::Project;
using records::ProjectBuilder;
using records::ResourceItem;
using records::StructureKind;
using records::StructureNode;
using records::SummaryKind;
using records::SummaryLine;
using Kind = SummaryLine::Kind;
using tests::dec;

namespace {

// What indirect fees are reckoned on.
constexpr char kLabourBase[] = "人工费*1.5";
constexpr char kDirectBase[] = "直接费";

constexpr SummaryKind kKinds[] = {SummaryKind::BidFees, SummaryKind::Structure,
                                  SummaryKind::Accounts};

const records::FeeTemplate& feeTemplate() {
  static const records::FeeTemplate read = services::loadFeeTemplate({});
  return read;
}

/// "name income cost share" of each line, indented by its depth.
void print(const SummaryLine& line, int depth, QStringList& out) {
  out << QString("%1%2 %3 %4 %5")
             .arg(QString(depth, '>'), QString::fromStdString(line.name),
                  QString::fromStdString(line.income.toString(2)),
                  QString::fromStdString(line.cost.toString(2)),
                  QString::fromStdString(line.share.toString(2)));
  for (const SummaryLine& below : line.lines) print(below, depth + 1, out);
}

QString printed(Project& project, SummaryKind kind) {
  QStringList lines;
  print(records::summarize(project, kind, feeTemplate()), 0, lines);
  return lines.join('\n');
}

struct Money {
  Decimal income, cost;
  void add(const Decimal& in, const Decimal& out) {
    income += in;
    cost += out;
  }
};

/// All money of a project, added up one by one by everything that a line can stand for.
struct Plain {
  Decimal rate;
  std::map<const void*, Money> of;  // bills, sections, unit works, accounts, fee groups and items
  std::map<records::Category, Money> elements;
  std::map<const StructureNode*, Decimal> taxes, linesCost;
  std::map<const StructureNode*, Money> loose;
  Decimal margin, taxable;

  explicit Plain(Project& project) : rate(project.facts.taxRate) {
    structure(project, project.structure().rows());
    for (const StructureNode* work : project.unitWorks()) {
      for (const ResourceItem* item : itemsOf(project, *work)) {
        Decimal inLines, money;
        for (const records::BillLine& line : project.linesOf(*item)) {
          const Decimal cost = costOf(line, *item);
          above(line.bill, {}, cost);
          inLines += cost;
          money += line.budgetAmount;
        }
        const auto* sums = project.bookings().sumsOf(*item);
        const Decimal own = sums != nullptr    ? sums->own
                            : item->gathered() ? Decimal()
                                               : item->quantity().value();
        const bool counts = item->linked() && item->subcontract() == nullptr;
        const Decimal byHand = counts ? (own * item->price().value()).rounded(2) : Decimal();
        linesCost[work] += inLines + byHand;
        loose[work].add(item->budgetAmount().value() - money, byHand);
        taxable += item->budgetAmount().value() - money;
        elements[item->category()].add(item->budgetAmount().value(),
                                       item->excludedAmount().value());
        account(item->account(), item->budgetAmount().value(), item->excludedAmount().value());
        const bool isLabour = item->category() == records::Category::Labour;
        for (const StructureNode* node : {work, static_cast<const StructureNode*>(nullptr)}) {
          directCost[node] += item->excludedAmount().value();
          if (isLabour) labourCost[node] += item->excludedAmount().value();
        }
      }
    }
    fees(project.feeGroups().rows(), {});
    subcontracts(project);
    for (StructureNode* work : project.unitWorks()) {
      of[work].income += loose[work].income;
      taxes[work] = (of[work].income * rate / 100).rounded(2);
    }
    for (const StructureNode* work : project.unitWorks()) {
      Money money = of[work];
      money.cost =
          feesOf[work] + project.subProject(*work)->totals().excluded + subcontracted[work];
      money.add(taxes[work], taxes[work]);
      of[work] = money;
      if (work->parent() != nullptr) of[work->parent()].add(money.income, money.cost);
    }
  }

  static Decimal costOf(const records::BillLine& line, const ResourceItem& item) {
    if (!item.linked() || item.subcontract() != nullptr) return {};
    const Decimal tender = line.bill->quantity.value();
    const Decimal made = line.bill->costQuantity ? line.bill->costQuantity->value() : tender;
    if (line.terms.price) return (made * *line.terms.price).rounded(2);
    const Decimal quantity = line.terms.content ? made * *line.terms.content
                             : tender.isZero()  ? line.budgetQuantity
                                                : line.budgetQuantity * made / tender;
    return (quantity * line.terms.coefficient * item.price().value()).rounded(2);
  }

  /// Of a fee of `work`; null: of the project.
  Decimal costOf(const records::IndirectFeeItem& fee, const StructureNode* work) {
    if (!fee.cost) return fee.amount;
    if (fee.cost->base.empty() || !fee.cost->rate) return fee.cost->amount;
    const Decimal base = fee.cost->base == kLabourBase   ? labourCost[work] * dec("1.5")
                         : fee.cost->base == kDirectBase ? directCost[work]
                                                         : dec(fee.cost->base.c_str());
    return (base * *fee.cost->rate / 100).rounded(2);
  }

  static std::vector<ResourceItem*> itemsOf(Project& project, const StructureNode& work) {
    return tests::ProjectFixture::below<ResourceItem>(*project.subProject(work));
  }

  /// To a bill and what lies above it, up to its unit work.
  void above(const proxy::Element* bill, const Decimal& income, const Decimal& cost) {
    for (const proxy::Element* at = bill; at != nullptr; at = at->parent()) {
      of[at].add(income, cost);
      const auto* node = dynamic_cast<const StructureNode*>(at);
      if (node != nullptr && node->kind == StructureKind::UnitWork) break;
    }
  }

  void account(const CostAccount* at, const Decimal& income, const Decimal& cost) {
    direct[at].add(income, cost);
    for (const proxy::Element* up = at; up != nullptr; up = up->parent()) of[up].add(income, cost);
  }

  void structure(Project& project, const records::RowList& rows) {
    for (int row = 0; row < rows.size(); ++row) {
      if (auto* node = dynamic_cast<StructureNode*>(rows.at(row))) {
        structure(project, node->rows());
        continue;
      }
      auto* bill = static_cast<Bill*>(rows.at(row));
      Decimal resources;
      for (int i = 0; i < bill->rows().size(); ++i) {
        resources += static_cast<BudgetItem*>(bill->rows().at(i))->amount.value();
      }
      const Decimal income = bill->amount ? bill->amount->value() : resources;
      above(bill, income, {});
      incomes[bill] = income;
      margin += income - resources;
      taxable += income;
    }
  }

  void fees(const records::RowList& rows, const StructureNode* work) {
    for (int row = 0; row < rows.size(); ++row) {
      if (auto* group = dynamic_cast<records::IndirectFeeGroup*>(rows.at(row))) {
        fees(group->rows(), group->unitWork != nullptr ? group->unitWork : work);
        continue;
      }
      const auto* fee = static_cast<records::IndirectFeeItem*>(rows.at(row));
      const Decimal cost = costOf(*fee, work);
      for (const proxy::Element* at = fee; at != nullptr; at = at->parent()) {
        of[at].add(fee->amount, cost);
      }
      account(fee->account, fee->amount, cost);
      if (work != nullptr) {
        of[work].add(fee->amount, cost);
        feesOf[work] += cost;
      }
      allFees += cost;
      taxable += fee->amount;
    }
  }

  void subcontracts(Project& project) {
    for (int i = 0; i < project.subcontracts().size(); ++i) {
      auto& entry = *static_cast<records::Subcontract*>(project.subcontracts().member(i));
      const bool byBills = entry.metering == records::MeteringMethod::ByBills;
      account(entry.account, {}, entry.amount());
      of[&entry].add({}, entry.amount());
      allSubcontracts += entry.amount();
      std::vector<std::pair<Bill*, Decimal>> parts;
      Decimal whole;
      for (int row = 0; row < entry.rows().size(); ++row) {
        Bill& bill = entry.billAt(row).bill;
        parts.emplace_back(&bill, byBills ? bill.quantityForCost() : incomes[&bill]);
        whole += parts.back().second;
      }
      if (parts.empty()) withoutBills += entry.amount();
      Decimal upTo, given;
      for (auto& [bill, part] : parts) {
        const bool even = !byBills && whole.isZero();
        upTo += even ? Decimal(1) : part;
        const Decimal most = even ? Decimal(int(parts.size())) : whole;
        const Decimal exact = byBills ? entry.price * upTo : entry.amount() * upTo / most;
        const Decimal share = exact.rounded(2) - given;
        given += share;
        above(bill, {}, share);
        subcontracted[project.unitWorkOf(*bill)] += share;
      }
    }
  }

  std::map<const CostAccount*, Money> direct;
  std::map<const StructureNode*, Decimal> feesOf, subcontracted;
  std::map<const Bill*, Decimal> incomes;
  Decimal allSubcontracts, withoutBills;
  std::map<const StructureNode*, Decimal> labourCost, directCost;  // null: of the project
  Decimal allFees;
};

/// Why the summary is wrong; empty when it is not.
QString fault(Project& project, Plain& plain, SummaryKind kind, const SummaryLine& total) {
  QStringList faults;
  std::map<const void*, int> seen;
  Decimal taxes;
  const std::function<void(const SummaryLine&)> look = [&](const SummaryLine& line) {
    const auto expect = [&](const Decimal& income, const Decimal& cost) {
      if (line.income == income && line.cost == cost) return;
      faults << QString("%1: %2/%3 instead of %4/%5")
                    .arg(QString::fromStdString(line.name),
                         QString::fromStdString(line.income.toString()),
                         QString::fromStdString(line.cost.toString()),
                         QString::fromStdString(income.toString()),
                         QString::fromStdString(cost.toString()));
    };
    Money below;
    for (const SummaryLine& each : line.lines) {
      look(each);
      below.add(each.income, each.cost);
    }
    if (!line.lines.empty()) expect(below.income, below.cost);
    if (line.kind != Kind::Rounding &&
        line.share != (line.income * 100 / total.income).rounded(2)) {
      faults << "share of " + QString::fromStdString(line.name);
    }
    const auto* node = dynamic_cast<StructureNode*>(line.source);
    switch (line.kind) {
      case Kind::Element:
        expect(plain.elements[line.category].income, plain.elements[line.category].cost);
        break;
      case Kind::Margin:
        expect(plain.margin, {});
        break;
      case Kind::Structure:
      case Kind::Bill:
      case Kind::Account:
      case Kind::FeeItem:
      case Kind::Subcontract:
        expect(plain.of[line.source].income, plain.of[line.source].cost);
        ++seen[line.source];
        break;
      case Kind::OwnAccount:
        expect(plain.direct[static_cast<CostAccount*>(line.source)].income,
               plain.direct[static_cast<CostAccount*>(line.source)].cost);
        break;
      case Kind::NoAccount:
        expect(plain.direct[nullptr].income, plain.direct[nullptr].cost);
        break;
      case Kind::Subcontracts:
        expect({}, kind == SummaryKind::BidFees ? plain.allSubcontracts : plain.withoutBills);
        break;
      case Kind::LooseItems:
        expect(plain.loose[node].income, plain.loose[node].cost);
        break;
      case Kind::Rounding:
        if (node != nullptr) {
          expect({}, project.subProject(*node)->totals().excluded - plain.linesCost[node]);
        }
        break;
      case Kind::Tax:
        taxes += line.income;
        if (node != nullptr) expect(plain.taxes[node], plain.taxes[node]);
        break;
      default:
        break;
    }
  };
  look(total);
  for (const auto& [source, times] : seen) {
    if (times != 1) faults << QString("a record has %1 lines").arg(times);
  }
  const Decimal tax = (plain.taxable * plain.rate / 100).rounded(2);
  if (kind != SummaryKind::Structure && taxes != tax) faults << "tax";
  if (total.income != plain.taxable + tax) faults << "income of the total";
  if (total.cost != project.totals().excluded + plain.allSubcontracts + plain.allFees + tax) {
    faults << "cost of the total";
  }
  Decimal shares;
  for (const SummaryLine& line : total.lines) shares += line.share;
  if (shares != Decimal(100)) faults << "shares";
  return faults.join('\n');
}

/// Fills a small project with random structure, prices, fees, accounts and items of no bill.
void fillRandomly(Project& project, std::mt19937& random) {
  const auto upTo = [&random](int last) { return static_cast<int>(random() % unsigned(last + 1)); };
  const auto number = [&](int last, int places) { return Decimal::fromDigits(upTo(last), places); };
  project.facts.taxMethod = "一般计税";
  project.facts.taxRate = number(1300, 2);
  ProjectBuilder builder(project);
  std::vector<CostAccount*> accounts{nullptr};
  for (int i = 0; i < 8; ++i) {
    const int parent = upTo(static_cast<int>(accounts.size()) - 1);
    accounts.push_back(&builder.addAccount(accounts[std::size_t(parent)], 0,
                                           std::to_string(100 + i), "科目" + std::to_string(i)));
  }
  const auto anAccount = [&] { return accounts[std::size_t(upTo(8))]; };
  StructureNode& single = builder.addNode(nullptr, 0, StructureKind::SingleProject);
  single.name = "工程";
  const bool priced = upTo(3) > 0;
  for (int w = 0; w < 3; ++w) {
    StructureNode& work = builder.addNode(&single, 0, StructureKind::UnitWork);
    work.name = "单位工程" + std::to_string(w);
    std::vector<ResourceItem*> items;
    std::vector<std::pair<BudgetItem*, std::size_t>> homes;
    std::vector<records::ResourceItemData> data(5);
    for (std::size_t i = 0; i < data.size(); ++i) {
      data[i].category = static_cast<records::Category>(upTo(4));
      data[i].account = anAccount();
      data[i].name = project.texts.intern("材料" + std::to_string(i));
      data[i].unit = project.texts.intern(upTo(1) == 0 ? "m³" : "个");
      data[i].price = number(99999, 3);
    }
    StructureNode* section = nullptr;
    for (int b = 0; b < 7; ++b) {
      if (section == nullptr || upTo(2) == 0) {
        const bool deep = section != nullptr && section->rows().size() == 0;
        section = &builder.addNode(deep ? section : &work, 0, StructureKind::Section);
        section->name = "分部";
      }
      Bill& bill = builder.addBill(*section, 0);
      bill.code = bill.name = project.texts.intern("清单" + std::to_string(b));
      bill.quantity = number(999999, 4);
      if (priced) {
        bill.unitPrice = number(99999, 2);
        bill.amount = (bill.quantity.value() * bill.unitPrice->value()).rounded(2);
      }
      for (int i = upTo(4); i > 0; --i) {
        BudgetItem& item = builder.addBudgetItem(bill, 0);
        const auto home = std::size_t(upTo(3));  // the last one stays without bills
        item.content = number(9999, 4);
        item.price = number(99999, 2);
        item.amount =
            costing::budgetAmount(bill.quantity.value(), item.content.value(), item.price.value());
        data[home].quantity += bill.quantity.value() * item.content.value();
        data[home].budgetAmount += item.amount.value();
        homes.emplace_back(&item, home);
      }
    }
    data.back().quantity = number(99999, 3);
    for (auto& each : data) {
      each.quantity = costing::storedQuantity(each.quantity, each.unit.str());
      items.push_back(&builder.addItem(work, each));
    }
    for (const auto& [line, home] : homes) builder.gather(*line, *items[home]);
    for (int g = upTo(2); g > 0; --g) {
      records::IndirectFeeGroup& group = builder.addFeeGroup(nullptr, 0);
      group.name = upTo(1) == 0 ? "规费" : "管理费";
      if (upTo(2) > 0) group.unitWork = &work;
      records::IndirectFeeGroup& below = builder.addFeeGroup(&group, 0);
      below.name = upTo(1) == 0 ? "规费组" : "其他";
      for (int i = upTo(3); i > 0; --i) {
        records::IndirectFeeItem& fee = builder.addFeeItem(below, 0);
        fee.name = "费";
        fee.account = anAccount();
        fee.amount = number(9999999, 2);
      }
    }
  }
}

/// Pools, associates and prices at random, as far as the rules allow.
void editRandomly(Project& project, std::mt19937& random) {
  const auto pick = [&random](const auto& list) { return list[random() % list.size()]; };
  const auto edit = [&] {
    std::vector<records::IndirectFeeItem*> fees;
    records::forEachFee(project.feeGroups().rows(),
                        [&fees](records::IndirectFeeItem& fee) { fees.push_back(&fee); });
    if (!fees.empty() && random() % 3 == 0) {
      records::IndirectFeeItem& fee = *pick(fees);
      records::FeeData data = fee;
      const std::string bases[] = {kLabourBase, kDirectBase, "1234.5", ""};
      records::FeeCost cost;
      cost.base = bases[random() % 4];
      if (!cost.base.empty()) {
        cost.rate = Decimal::fromDigits(static_cast<std::int64_t>(random() % 2000), 2);
      } else {
        cost.amount = Decimal::fromDigits(static_cast<std::int64_t>(random() % 99999), 2);
      }
      data.cost = cost;
      project.setFee(fee, data);
      return;
    }
    if (random() % 8 == 0) {
      const auto rate = Decimal::fromDigits(static_cast<std::int64_t>(random() % 2000), 2);
      project.setTaxation({records::tax_methods::Own, rate});
    }
    StructureNode& work = *pick(project.unitWorks());
    const auto items = Plain::itemsOf(project, work);
    if (items.empty()) return;
    ResourceItem& item = *pick(items);
    const Decimal price = Decimal::fromDigits(static_cast<std::int64_t>(random() % 99999), 2);
    if (random() % 3 == 0) {
      project.set(item, records::ItemField::Price, costing::PackedDecimal(price));
      return;
    }
    const auto bills = tests::ProjectFixture::below<Bill>(work);
    Bill& bill = *pick(bills);
    if (random() % 2 == 0) {
      records::SubcontractData data;
      data.name = project.texts.intern("分包");
      data.price = price;
      data.quantity = 7;
      data.metering = static_cast<records::MeteringMethod>(random() % 3);
      if (random() % 2 == 0) data.account = item.account();
      records::Subcontract& entry = project.addSubcontract(data);
      if (random() % 3 > 0) project.assign(entry, {&bill, pick(bills), pick(bills)});
      project.setLinked({pick(items)}, random() % 2 == 0);
      project.collect(item, entry);
      return;
    }
    if (random() % 4 == 0) {
      records::BillData data = bill.data();
      data.expression = project.texts.intern("工程量*1.35+" + price.toString());
      project.set(bill, std::move(data));
      return;
    }
    if (bill.rows().size() > 0 && random() % 2 == 0) {
      auto& line = *static_cast<BudgetItem*>(
          bill.rows().at(static_cast<int>(random() % unsigned(bill.rows().size()))));
      project.pool(line, item, (project.remaining(line) / 3).rounded(4));
    } else {
      records::LineTerms terms = project.terms(item, bill);
      terms.associated = true;
      terms.coefficient = Decimal::fromDigits(static_cast<std::int64_t>(random() % 300) + 1, 2);
      if (random() % 3 == 0) terms.price = price;
      project.setTerms(item, bill, terms);
    }
  };
  for (int i = 0; i < 12; ++i) {
    try {
      edit();
    } catch (const records::Refusal&) {
      // The rules are tested elsewhere.
    }
  }
}

}  // namespace

class SummaryTest : public QObject {
  Q_OBJECT

 private slots:
  /// The example of docs/costing.md.
  void worksThroughTheExample() {
    Project project;
    project.facts.taxMethod = "一般计税";
    project.facts.taxRate = 9;
    ProjectBuilder builder(project);
    CostAccount& materials = builder.addAccount(nullptr, 0, "02", "材料费");
    CostAccount& concrete = builder.addAccount(&materials, 0, "0202", "混凝土");
    StructureNode& single = builder.addNode(nullptr, 0, StructureKind::SingleProject);
    single.name = "办公楼";
    const auto work = [&](const char* name, const char* billName, const char* quantity,
                          const char* unitPrice, const char* content, const char* price,
                          records::ResourceItemData data) -> StructureNode& {
      StructureNode& node = builder.addNode(&single, 0, StructureKind::UnitWork);
      node.name = name;
      StructureNode& section = builder.addNode(&node, 0, StructureKind::Section);
      section.name = "分部";
      Bill& bill = builder.addBill(section, 0);
      bill.name = project.texts.intern(billName);
      bill.quantity = dec(quantity);
      bill.unitPrice = dec(unitPrice);
      bill.amount = (dec(quantity) * dec(unitPrice)).rounded(2);
      BudgetItem& line = builder.addBudgetItem(bill, 0);
      line.content = dec(content);
      line.price = dec(price);
      line.amount = costing::budgetAmount(dec(quantity), dec(content), dec(price));
      data.budgetAmount = line.amount.value();
      data.quantity = costing::storedQuantity(dec(quantity) * dec(content), data.unit.str());
      builder.gather(line, builder.addItem(node, data));
      return node;
    };
    records::ResourceItemData c30;
    c30.account = &concrete;
    c30.unit = project.texts.intern("m³");
    c30.price = dec("470");
    StructureNode& building = work("建筑工程", "墙", "126.35", "560", "1.015", "485.44", c30);
    records::ResourceItemData pump;
    pump.category = records::Category::Equipment;
    pump.unit = project.texts.intern("台");
    pump.price = dec("1150");
    work("安装工程", "水泵", "3", "1333.35", "1", "1200", pump);
    const auto fee = [&](const char* name, StructureNode* of, const char* amount) {
      records::IndirectFeeGroup& group = builder.addFeeGroup(nullptr, 0);
      group.name = name;
      group.unitWork = of;
      records::IndirectFeeItem& item = builder.addFeeItem(group, 0);
      item.name = name;
      item.amount = dec(amount);
    };
    fee("现场管理费", &building, "2500.05");
    fee("规费", nullptr, "1000.05");

    QCOMPARE(printed(project, SummaryKind::BidFees),
             QString("合计 85299.20 74268.44 100.00\n"
                     ">分部分项工程费 74756.05 63725.29 87.64\n"
                     ">>人工费 0.00 0.00 0.00\n"
                     ">>材料费 62255.37 60275.29 72.98\n"
                     ">>机械费 0.00 0.00 0.00\n"
                     ">>主材费 0.00 0.00 0.00\n"
                     ">>设备费 3600.00 3450.00 4.22\n"
                     ">>企业管理费和利润 8900.68 0.00 10.43\n"
                     ">间接费 2500.05 2500.05 2.93\n"
                     ">>现场管理费（建筑工程） 2500.05 2500.05 2.93\n"
                     ">>>现场管理费 2500.05 2500.05 2.93\n"
                     ">规费 1000.05 1000.05 1.17\n"
                     ">>规费 1000.05 1000.05 1.17\n"
                     ">>>规费 1000.05 1000.05 1.17\n"
                     ">专业分包及劳务 0.00 0.00 0.00\n"
                     ">税金 7043.05 7043.05 8.26"));
    QCOMPARE(printed(project, SummaryKind::Structure),
             QString("合计 85299.20 74268.44 100.00\n"
                     ">办公楼 84209.14 73178.38 98.72\n"
                     ">>建筑工程 79849.09 69368.38 93.61\n"
                     ">>>分部 70756.00 60275.27 82.95\n"
                     ">>>>墙 70756.00 60275.27 82.95\n"
                     ">>>舍入差 0.00 0.02 0.00\n"
                     ">>>现场管理费 2500.05 2500.05 2.93\n"
                     ">>>>现场管理费 2500.05 2500.05 2.93\n"
                     ">>>税金 6593.04 6593.04 7.73\n"
                     ">>安装工程 4360.05 3810.00 5.11\n"
                     ">>>分部 4000.05 3450.00 4.69\n"
                     ">>>>水泵 4000.05 3450.00 4.69\n"
                     ">>>税金 360.00 360.00 0.42\n"
                     ">整个工程的费用 1090.05 1090.05 1.28\n"
                     ">>规费 1000.05 1000.05 1.17\n"
                     ">>>规费 1000.05 1000.05 1.17\n"
                     ">>税金 90.00 90.00 0.11\n"
                     ">舍入差 0.01 0.01 0.00"));
    QCOMPARE(printed(project, SummaryKind::Accounts),
             QString("合计 85299.20 74268.44 100.00\n"
                     ">02 材料费 62255.37 60275.29 72.98\n"
                     ">>0202 混凝土 62255.37 60275.29 72.98\n"
                     ">未归入成本科目 7100.10 6950.10 8.32\n"
                     ">企业管理费和利润 8900.68 0.00 10.43\n"
                     ">税金 7043.05 7043.05 8.26\n"
                     ">舍入差 0.00 0.00 0.01"));
  }

  void agreesWithAPlainRecomputation() {
    std::mt19937 random(20261121);
    QByteArray json = text();
    json.replace("{ \"名称\": \"专业分包及劳务\", \"来源\": \"分包\" },", "");
    const records::FeeTemplate lacking = records::FeeTemplate::parse(json.toStdString());
    QVERIFY(lacking.lines.size() < feeTemplate().lines.size());
    for (int round = 0; round < 60; ++round) {
      const records::FeeTemplate& fees = round % 2 == 0 ? feeTemplate() : lacking;
      Project project;
      fillRandomly(project, random);
      if (round % 3 > 0) editRandomly(project, random);
      Plain plain(project);
      for (const SummaryKind kind : kKinds) {
        const SummaryLine total = records::summarize(project, kind, fees);
        QVERIFY2(total.income > Decimal(0), "a project without money says nothing");
        const QString why = fault(project, plain, kind, total);
        QVERIFY2(why.isEmpty(), qPrintable(QString("round %1, %2:\n%3")
                                               .arg(round)
                                               .arg(QString::fromStdString(nameOf(kind)), why)));
      }
    }
  }

  /// On a real project: the elements are the sums of the status bar, and the bills those that the
  /// source declares.
  void agreesWithTheTotalsOfAProject() {
    tests::ProjectFixture files;
    QVERIFY(files.made && files.open() != nullptr);
    Project& project = files.opened()->project();
    files.setPrice(*files.items().front(), 321);
    Plain plain(project);
    for (const SummaryKind kind : kKinds) {
      const SummaryLine total = records::summarize(project, kind, feeTemplate());
      QCOMPARE(fault(project, plain, kind, total), QString());
      if (kind != SummaryKind::BidFees) continue;
      const SummaryLine& bills = total.lines.front();
      QVERIFY(bills.income == project.facts.readBills);
      Decimal income, cost;
      for (const SummaryLine& line : bills.lines) {
        if (line.kind != Kind::Element) continue;
        income += line.income;
        cost += line.cost;
      }
      QVERIFY(income == project.totals().budget);
      QVERIFY(cost == project.totals().excluded);
    }
  }

  void anEmptyProjectHasNothing() {
    Project project;
    for (const SummaryKind kind : kKinds) {
      const SummaryLine total = records::summarize(project, kind, feeTemplate());
      QVERIFY(total.income.isZero() && total.cost.isZero() && total.share.isZero());
    }
  }

  void taxesByTheProjectOrByTheTemplate_data() {
    const tests::Rows<QString, QString, QString, QString> row;
    row("of the project", "一般计税", "6", "工程", "6");
    row("a project from nothing", "", "0", "工程", "9");
    row("general", "一般计税", "6", "模板", "9");
    row("simplified", "简易计税", "6", "模板", "3");
    row("set by the user", "自定税率", "6", "模板", "6");
  }
  void taxesByTheProjectOrByTheTemplate() {
    const auto [method, rate, from, expected] = tests::fetch<QString, QString, QString, QString>();
    QByteArray json = text();
    json.replace("\"取值\": \"工程\"", "\"取值\": \"" + from.toUtf8() + "\"");
    records::Facts facts;
    facts.taxMethod = method.toStdString();
    facts.taxRate = dec(qPrintable(rate));
    QVERIFY(records::FeeTemplate::parse(json.toStdString()).taxRate(facts) ==
            dec(qPrintable(expected)));
  }

  void namesWhatIsWrongWithATemplate_data() {
    const tests::Rows<QString, QString, QString> row;
    row("JSON", "\"简易计税\": 3,", "\"简易计税\": 3", "第 6 行");
    row("rate", ": 9,", ": 109,", "“税率.一般计税”应为 0 到 100 之间");
    row("rate missing", "\"简易计税\": 3,", "", "“税率.简易计税”缺失");
    row("misspelt key", "\"来源\": \"人工\"", "\"来原\": \"人工\"",
        "“行[1].行[1].来原”不是可用的键，请改为下列之一：名称、来源、费用组、行");
    row("unknown source", "\"来源\": \"税金\"", "\"来源\": \"增值税\"",
        "“行[5].来源”的值“增值税”未知");
    row("taken twice", "\"来源\": \"材料\"", "\"来源\": \"人工\"", "“人工”已经被前面的行使用");
    row("left out", "{ \"名称\": \"间接费\", \"来源\": \"间接费\" },", "",
        "间接费（不带“费用组”）");
    row("no name", "\"名称\": \"税金\", ", "", "“行[5].名称”缺失");
    row("groups elsewhere", "\"来源\": \"税金\"", "\"来源\": \"税金\", \"费用组\": [\"a\"]",
        "只能用在来源为“间接费”的行上");
  }
  void namesWhatIsWrongWithATemplate() {
    const auto [before, after, expected] = tests::fetch<QString, QString, QString>();
    QTemporaryDir directory;
    QVERIFY(QDir(directory.path()).mkpath("费用模板"));
    QString problem;
    const auto write = [&](const QByteArray& content) {
      QFile file(directory.filePath("费用模板/投标费用.json"));
      return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    };
    QByteArray renamed = text();
    renamed.replace("\"税金\", \"来源\"", "\"增值税\", \"来源\"");
    QVERIFY(write(renamed));
    QCOMPARE(services::loadFeeTemplate(directory.path(), &problem).lines.back().name,
             std::string("增值税"));
    QCOMPARE(problem, QString());

    QByteArray wrong = text();
    QVERIFY(wrong.contains(before.toUtf8()));
    wrong.replace(before.toUtf8(), after.toUtf8());
    QVERIFY(write(wrong));
    // The built-in one stands in.
    QCOMPARE(services::loadFeeTemplate(directory.path(), &problem).lines.back().name,
             std::string("税金"));
    QVERIFY2(problem.contains(expected), qPrintable(problem));
    QVERIFY2(problem.contains("投标费用.json"), qPrintable(problem));
  }

 private:
  static QByteArray text() {
    QFile file(":/qce/fees/投标费用.json");
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
};

QTEST_MAIN(SummaryTest)
#include "tst_summary.moc"
