#include "workbench/store/check.h"

#include <QHash>
#include <QPair>
#include <QSet>
#include <QStringList>
#include <QVector>
#include <array>
#include <optional>
#include <stdexcept>

#include "workbench/costing/expression.h"
#include "workbench/records/taxation.h"
#include "workbench/store/database.h"
#include "workbench/store/project_file.h"

namespace store {
namespace {

using costing::Decimal;
using costing::Totals;

/// Reads the rows as they lie in the file, apart from the way in which the program reads them, so
/// that the two cannot be wrong together.
class Checker {
 public:
  Checker(Database& database, CheckReport& report) : database_(database), report_(report) {}

  void run() {
    integrity();
    costQuantities();
    terms();
    poolings();
    budgetItems();
    resourceItems();
    totals();
    fees();
    subcontracts();
    money();
  }

 private:
  void find(const QString& text) { report_.findings.append(text); }

  Decimal number(const QVariant& value, const QString& where) {
    const std::optional<Decimal> decimal = Decimal::parse(value.toString().toStdString());
    if (!decimal) find(QStringLiteral("%1：“%2”不是数值").arg(where, value.toString()));
    return decimal.value_or(Decimal());
  }

  void compare(const QString& what, const Decimal& stored, const Decimal& computed) {
    if (stored == computed) return;
    find(QStringLiteral("%1：保存的是 %2，重新计算为 %3")
             .arg(what, QString::fromStdString(stored.toString()),
                  QString::fromStdString(computed.toString())));
  }

  QSqlQuery rows(const QString& sql) {
    QSqlQuery query = database_.prepare(sql);
    Database::run(query);
    return query;
  }

  void integrity() {
    for (QSqlQuery query = rows(QStringLiteral("PRAGMA integrity_check")); query.next();) {
      const QString text = query.value(0).toString();
      if (text != QStringLiteral("ok"))
        find(QStringLiteral("数据库结构不一致（技术信息：%1）").arg(text));
    }
    for (QSqlQuery query = rows(QStringLiteral("PRAGMA foreign_key_check")); query.next();) {
      find(QStringLiteral("数据表 %1 第 %2 行引用的 %3 记录不存在")
               .arg(query.value(0).toString(), query.value(1).toString(),
                    query.value(2).toString()));
    }
  }

  // A cost quantity is the sum of its calculations.
  void costQuantities() {
    Decimal area;
    for (QSqlQuery query =
             rows(QStringLiteral("SELECT value FROM project_fact WHERE name = 'building_area'"));
         query.next();) {
      area = number(query.value(0), QStringLiteral("建筑面积"));
    }
    QHash<qint64, QStringList> calculations;
    for (QSqlQuery query = rows(QStringLiteral(
             "SELECT id, expression FROM bill WHERE expression <> '' UNION ALL"
             " SELECT bill_id, expression FROM quantity_line WHERE expression <> ''"));
         query.next();) {
      calculations[query.value(0).toLongLong()].append(query.value(1).toString());
    }
    QSqlQuery query =
        rows(QStringLiteral("SELECT id, code, name, unit, quantity, cost_quantity FROM bill"));
    while (query.next()) {
      const QStringList terms = calculations.value(query.value(0).toLongLong());
      if (terms.isEmpty() && query.isNull(5)) continue;
      const QString where = QStringLiteral("清单 %1 %2 的成本工程量")
                                .arg(query.value(1).toString(), query.value(2).toString());
      if (terms.isEmpty() || query.isNull(5)) {
        find(where + QStringLiteral("与其计算式不符"));
        continue;
      }
      const costing::Variables variables = {{"工程量", number(query.value(4), where)},
                                            {"建筑面积", area}};
      Decimal sum;
      try {
        for (const QString& term : terms) sum += costing::evaluate(term.toStdString(), variables);
      } catch (const costing::ExpressionError& error) {
        find(where + QStringLiteral("的计算式有误：") + QString::fromUtf8(error.what()));
        continue;
      }
      scaled_[query.value(0).toLongLong()] = {number(query.value(5), where),
                                              number(query.value(4), where)};
      compare(where, number(query.value(5), where),
              costing::storedQuantity(sum, query.value(3).toString().toStdString()));
    }
  }

  void terms() {
    QSqlQuery query =
        rows(QStringLiteral("SELECT l.resource_item_id, l.bill_id, l.associated, l.coefficient,"
                            " l.content, l.price, b.quantity, b.code, b.name, b.cost_quantity"
                            " FROM bill_line l"
                            " JOIN bill b ON b.id = l.bill_id"));
    while (query.next()) {
      const QString where =
          QStringLiteral("清单 %1 %2 在成本工料机（编号 %3）中的")
              .arg(query.value(7).toString(), query.value(8).toString(), query.value(0).toString());
      const qint64 item = query.value(0).toLongLong();
      BillLine& line = lines_[{item, query.value(1).toLongLong()}];
      line.associated = query.value(2).toInt() != 0;
      line.coefficient = number(query.value(3), where + QStringLiteral("系数"));
      if (!query.isNull(4)) line.content = number(query.value(4), where + QStringLiteral("含量"));
      if (!query.isNull(5)) line.price = number(query.value(5), where + QStringLiteral("单价"));
      line.billQuantity =
          number(query.value(query.isNull(9) ? 6 : 9), where + QStringLiteral("工程量"));
      if (line.coefficient.isZero()) find(where + QStringLiteral("系数为零"));
      if (line.price && line.price->isNegative()) find(where + QStringLiteral("分包单价为负数"));
      if (line.associated) booked_[item].associated = true;
    }
  }

  void poolings() {
    QSqlQuery query =
        rows(QStringLiteral("SELECT budget_item_id, resource_item_id, quantity FROM pooling"
                            " ORDER BY budget_item_id, resource_item_id"));
    while (query.next()) {
      const QString where = QStringLiteral("预算工料机（编号 %1）归集到成本工料机（编号 %2）的数量")
                                .arg(query.value(0).toString(), query.value(1).toString());
      const Decimal quantity = number(query.value(2), where);
      if (quantity <= Decimal(0)) {
        find(QStringLiteral("%1：保存的是 %2，应大于 0").arg(where, query.value(2).toString()));
      }
      const qint64 item = query.value(1).toLongLong();
      poolings_[query.value(0).toLongLong()].append({item, quantity});
      booked_[item].associated = true;
    }
  }

  /// Counts what a budget item brings to a cost item through its bill.
  void bring(qint64 item, qint64 bill, const Decimal& quantity, const Decimal& money) {
    Booked& booked = booked_[item];
    booked.budget += money;
    auto line = lines_.find({item, bill});
    const auto scaled = scaled_.constFind(bill);
    if (line == lines_.end() && scaled != scaled_.constEnd()) {
      line = lines_.insert({item, bill}, BillLine());
      line->coefficient = Decimal(1);
    }
    if (line == lines_.end()) {
      booked.quantity += quantity;  // without terms
    } else {
      line->budgetQuantity += quantity;
      line->used = true;
    }
  }

  void budgetItems() {
    QSqlQuery query = rows(
        QStringLiteral("SELECT i.id, i.resource_item_id, i.content, i.price, i.amount, b.quantity,"
                       " i.code, i.name, b.code, b.id FROM budget_item i"
                       " JOIN bill b ON b.id = i.bill_id"));
    while (query.next()) {
      const QString where =
          QStringLiteral("清单 %1 的预算工料机 %2 %3")
              .arg(query.value(8).toString(), query.value(6).toString(), query.value(7).toString());
      const qint64 home = query.value(1).toLongLong();
      const qint64 bill = query.value(9).toLongLong();
      const Decimal content = number(query.value(2), where);
      const Decimal price = number(query.value(3), where);
      const Decimal amount = number(query.value(4), where);
      const Decimal billQuantity = number(query.value(5), where);
      const Decimal quantity = costing::consumption(billQuantity, content);
      compare(where + QStringLiteral("的合价"), amount,
              costing::budgetAmount(billQuantity, content, price));
      gathered_.insert(home);

      Decimal pooled;
      Decimal given;
      for (const auto& [item, part] : poolings_.value(query.value(0).toLongLong())) {
        pooled += part;
        const Decimal upTo = costing::shareUpTo(amount, quantity, pooled);
        bring(item, bill, part, upTo - given);
        given = upTo;
      }
      if (!pooled.isZero() && (pooled > quantity || quantity.isNegative())) {
        find(QStringLiteral("%1：已归集 %2，超过其数量 %3")
                 .arg(where, QString::fromStdString(pooled.toString()),
                      QString::fromStdString(quantity.toString())));
      }
      if (pooled.isZero() || pooled != quantity) {
        bring(home, bill, quantity - pooled, amount - given);
      }
    }
    for (auto line = lines_.constBegin(); line != lines_.constEnd(); ++line) {
      if (!line->used && !line->associated) continue;  // not there for the time being
      Booked& booked = booked_[line.key().first];
      Decimal base = line->content ? costing::consumption(line->billQuantity, *line->content)
                                   : line->budgetQuantity;
      const auto scaled = scaled_.constFind(line.key().second);
      if (!line->content && scaled != scaled_.constEnd()) {
        base = costing::scaledQuantity(base, scaled->cost, scaled->tender);
      }
      const Decimal quantity = costing::adjustedQuantity(base, line->coefficient);
      booked.quantity += quantity;
      if (!line->price) continue;
      booked.priced += quantity;
      booked.prices.append({line->billQuantity, *line->price});
    }
  }

  void resourceItems() {
    QSqlQuery query = rows(QStringLiteral(
        "SELECT id, unit_work_id, category, code, name, unit, quantity, price, tax_rate,"
        " budget_amount, excluded_amount, included_amount, own_quantity, associated, linked,"
        " subcontract_id FROM resource_item"));
    while (query.next()) {
      ++report_.resourceItems;
      const qint64 id = query.value(0).toLongLong();
      const QString where = QStringLiteral("工料机 %1 %2（编号 %3）")
                                .arg(query.value(3).toString(), query.value(4).toString())
                                .arg(id);
      const Decimal quantity = number(query.value(6), where);
      const Decimal price = number(query.value(7), where);
      const Decimal taxRate = number(query.value(8), where);
      const Totals stored = {number(query.value(9), where), number(query.value(10), where),
                             number(query.value(11), where)};
      const Booked booked = booked_.value(id);
      const Decimal own = number(query.value(12), where);
      const std::string unit = query.value(5).toString().toStdString();
      const auto together = [&](const Decimal& lines) {
        return lines.isZero() ? own : costing::storedQuantity(own + lines, unit);
      };
      if (gathered_.contains(id)) compare(where + QStringLiteral("的自有数量"), own, Decimal());
      compare(where + QStringLiteral("的数量"), quantity, together(booked.quantity));
      compare(where + QStringLiteral("的预算合价"), stored.budget, booked.budget);
      if (booked.associated != (query.value(13).toInt() != 0)) {
        find(where + QStringLiteral("的关联标记与其关联和归集不符"));
      }
      const Decimal unpriced =
          booked.priced.isZero() ? quantity : together(booked.quantity - booked.priced);
      Totals amounts = {{},
                        costing::excludedTaxAmount(unpriced, price),
                        costing::includedTaxAmount(unpriced, price, taxRate)};
      for (const auto& [billQuantity, linePrice] : booked.prices) {
        amounts.excluded += costing::excludedTaxAmount(billQuantity, linePrice);
        amounts.included += costing::includedTaxAmount(billQuantity, linePrice, taxRate);
      }
      // Only what is linked and not collected counts in cost.
      if (query.value(14).toInt() == 0 || !query.isNull(15)) amounts = {};
      compare(where + QStringLiteral("的不含税合价"), stored.excluded, amounts.excluded);
      compare(where + QStringLiteral("的含税合价"), stored.included, amounts.included);
      computed_[{query.value(1).toLongLong(), query.value(2).toInt()}] += stored;
      computed_[{query.value(1).toLongLong(), -1}] += stored;
      computed_[{0, -1}] += stored;
    }
  }

  void totals() {
    QHash<qint64, QString> names;
    names[0] = QStringLiteral("整个项目");
    for (QSqlQuery query =
             rows(QStringLiteral("SELECT id, name FROM structure_node WHERE kind = 1"));
         query.next();) {
      names[query.value(0).toLongLong()] = query.value(1).toString();
    }
    QHash<QPair<qint64, int>, Totals> stored;
    for (QSqlQuery query = rows(QStringLiteral(
             "SELECT node_id, category, budget, excluded, included FROM cost_total"));
         query.next();) {
      const QString where = QStringLiteral("合计表");
      stored[{query.value(0).toLongLong(), query.value(1).toInt()}] = {
          number(query.value(2), where), number(query.value(3), where),
          number(query.value(4), where)};
    }
    for (auto name = names.constBegin(); name != names.constEnd(); ++name) {
      const int last = name.key() == 0 ? -1 : records::CategoryCount - 1;
      for (int category = -1; category <= last; ++category) {
        const QPair<qint64, int> place(name.key(), category);
        QString where = name.value();
        if (category >= 0) {
          where +=
              QStringLiteral(" ") +
              QString::fromStdString(records::nameOf(static_cast<records::Category>(category)));
        }
        if (!stored.contains(place)) {
          find(where + QStringLiteral("：缺少合计"));
          continue;
        }
        const Totals computed = computed_.value(place);
        compare(where + QStringLiteral("的预算合计"), stored[place].budget, computed.budget);
        compare(where + QStringLiteral("的不含税合计"), stored[place].excluded, computed.excluded);
        compare(where + QStringLiteral("的含税合计"), stored[place].included, computed.included);
      }
    }
  }

  void fees() {
    QHash<qint64, QPair<qint64, qint64>> groups;  // group: its parent and unit work, 0 for none
    for (QSqlQuery query =
             rows(QStringLiteral("SELECT id, parent_id, unit_work_id FROM fee_group"));
         query.next();) {
      groups[query.value(0).toLongLong()] = {query.value(1).toLongLong(),
                                             query.value(2).toLongLong()};
    }
    QSqlQuery query =
        rows(QStringLiteral("SELECT code, name, base, rate, amount, group_id, cost_base, cost_rate,"
                            " cost_amount FROM fee_item"));
    while (query.next()) {
      const QString where =
          QStringLiteral("间接费 %1 %2").arg(query.value(0).toString(), query.value(1).toString());
      const Decimal amount = number(query.value(4), where);
      fees_ += amount;
      if (!query.isNull(2) && !query.isNull(3)) {
        compare(where + QStringLiteral("的金额"), amount,
                costing::feeByRate(number(query.value(2), where), number(query.value(3), where)));
      }
      if (query.isNull(8)) {
        feeCosts_ += amount;
        continue;
      }
      qint64 group = query.value(5).toLongLong();
      while (groups.value(group).first != 0) group = groups.value(group).first;
      const Decimal entered = number(query.value(8), where + QStringLiteral("的成本金额"));
      const QString base = query.value(6).toString();
      try {
        const Decimal value =
            base.isEmpty() ? Decimal()
                           : costing::evaluate(base.toStdString(), variables(groups[group].second));
        const bool follows = !base.isEmpty() && !query.isNull(7);
        feeCosts_ += follows ? costing::feeByRate(
                                   value, number(query.value(7), where + QStringLiteral("的费率")))
                             : entered;
      } catch (const costing::ExpressionError& error) {
        find(where + QStringLiteral("的成本基数计算式有误：") + QString::fromUtf8(error.what()));
      }
    }
  }

  void subcontracts() {
    struct Bills {
      Decimal quantity;
      QSet<QString> units;
    };
    QHash<qint64, Bills> bills;
    for (QSqlQuery query = rows(QStringLiteral("SELECT s.subcontract_id, b.unit, b.quantity,"
                                               " b.cost_quantity, b.code, b.name"
                                               " FROM subcontract_bill s"
                                               " JOIN bill b ON b.id = s.bill_id"));
         query.next();) {
      Bills& of = bills[query.value(0).toLongLong()];
      of.units.insert(query.value(1).toString());
      of.quantity += number(query.value(query.isNull(3) ? 2 : 3),
                            QStringLiteral("清单 %1 %2 的工程量")
                                .arg(query.value(4).toString(), query.value(5).toString()));
    }
    QSqlQuery query =
        rows(QStringLiteral("SELECT id, code, name, unit, metering, price, tax_rate, quantity,"
                            " quantity_now, excluded_amount, included_amount FROM subcontract"));
    while (query.next()) {
      const QString where =
          QStringLiteral("分包 %1 %2 的").arg(query.value(1).toString(), query.value(2).toString());
      const auto metering = static_cast<records::MeteringMethod>(query.value(4).toInt());
      const Decimal price = number(query.value(5), where + QStringLiteral("单价"));
      const Decimal taxRate = number(query.value(6), where + QStringLiteral("税率"));
      const Decimal typed = number(query.value(7), where + QStringLiteral("数量"));
      const Bills& of = bills[query.value(0).toLongLong()];
      Decimal quantity = typed;
      if (metering == records::MeteringMethod::LumpSum) quantity = 1;
      if (metering == records::MeteringMethod::ByBills) {
        quantity = of.quantity;
        QSet<QString> others = of.units;
        others.remove(query.value(3).toString());
        if (!others.isEmpty()) {
          find(where + QStringLiteral("单位“%1”与其清单的单位“%2”不同，工程量不能相加")
                           .arg(query.value(3).toString(),
                                QStringList(others.values()).join(QStringLiteral("、"))));
        }
      }
      if (query.value(2).toString().isEmpty()) find(where + QStringLiteral("名称为空"));
      if (price.isNegative()) find(where + QStringLiteral("单价为负数"));
      compare(where + QStringLiteral("计量数量"), number(query.value(8), where), quantity);
      const Decimal amount = costing::excludedTaxAmount(quantity, price);
      compare(where + QStringLiteral("不含税合价"), number(query.value(9), where), amount);
      compare(where + QStringLiteral("含税合价"), number(query.value(10), where),
              costing::includedTaxAmount(quantity, price, taxRate));
      subcontracts_ += amount;
    }
  }

  /// What the calculations of fees can name: of one unit work, or of the project (0).
  costing::Variables variables(qint64 unitWork) {
    if (billIncomes_.isEmpty()) readBillIncomes();
    QVector<Decimal> sums(records::CategoryCount);
    Decimal direct;
    for (auto total = computed_.constBegin(); total != computed_.constEnd(); ++total) {
      const auto [work, category] = total.key();
      if (work == 0 || category < 0 || (unitWork != 0 && work != unitWork)) continue;
      sums[category] += total->excluded;
      direct += total->excluded;
    }
    costing::Variables variables;
    for (int i = 0; i < records::CategoryCount; ++i) {
      variables.emplace_back(records::nameOf(static_cast<records::Category>(i)) + "费", sums[i]);
    }
    variables.emplace_back("直接费", direct);
    variables.emplace_back("分部分项工程费", billIncomes_.value(unitWork));
    variables.emplace_back("建筑面积", area_);
    return variables;
  }

  void readBillIncomes() {
    QHash<qint64, qint64> parents;
    QSet<qint64> works;
    for (QSqlQuery query = rows(QStringLiteral("SELECT id, parent_id, kind FROM structure_node"));
         query.next();) {
      parents[query.value(0).toLongLong()] = query.value(1).toLongLong();
      if (query.value(2).toInt() == 1) works.insert(query.value(0).toLongLong());
    }
    for (QSqlQuery query = rows(QStringLiteral("SELECT value FROM project_fact"
                                               " WHERE name = 'building_area'"));
         query.next();) {
      area_ = number(query.value(0), QStringLiteral("建筑面积"));
    }
    billIncomes_[0] = {};
    const auto count = [&](const QVariant& section, const QVariant& amount) {
      qint64 node = section.toLongLong();
      while (node != 0 && !works.contains(node)) node = parents.value(node);
      const Decimal money = number(amount, QStringLiteral("清单合价"));
      billIncomes_[node] += money;
      billIncomes_[0] += money;
    };
    for (QSqlQuery query =
             rows(QStringLiteral("SELECT section_id, amount FROM bill WHERE amount IS NOT NULL"));
         query.next();) {
      count(query.value(0), query.value(1));
    }
    for (QSqlQuery query =
             rows(QStringLiteral("SELECT b.section_id, i.amount FROM budget_item i"
                                 " JOIN bill b ON b.id = i.bill_id WHERE b.amount IS NULL"));
         query.next();) {
      count(query.value(0), query.value(1));
    }
  }

  void money() {
    QHash<QString, QString> facts;
    for (QSqlQuery query = rows(QStringLiteral("SELECT name, value FROM project_fact"));
         query.next();) {
      facts[query.value(0).toString()] = query.value(1).toString();
    }
    Decimal bills;
    for (QSqlQuery query =
             rows(QStringLiteral("SELECT code, name, quantity, unit_price, amount FROM bill"
                                 " WHERE unit_price IS NOT NULL"));
         query.next();) {
      const QString where =
          QStringLiteral("清单 %1 %2").arg(query.value(0).toString(), query.value(1).toString());
      const Decimal amount = number(query.value(4), where);
      compare(where + QStringLiteral("的合价"), amount,
              (number(query.value(2), where) * number(query.value(3), where))
                  .rounded(costing::MoneyPlaces));
      bills += amount;
    }
    struct Line {
      const char* key;
      const char* name;
      Decimal stored;
    };
    const std::array<Line, 3> lines = {
        {{"bills", "清单合价", bills},
         {"resources", "预算工料机合价", computed_.value({0, -1}).budget},
         {"fees", "间接费", fees_}}};
    const QString rate = facts.value(QStringLiteral("tax_rate"), QStringLiteral("0"));
    const std::string taxed =
        records::problemOf({facts.value(QStringLiteral("tax_method")).toStdString(),
                            number(rate, QStringLiteral("工程的税率"))});
    if (!taxed.empty()) find(QString::fromStdString(taxed));
    for (const Line& line : lines) {
      const QString name = QString::fromUtf8(line.name);
      const QString key = QString::fromLatin1(line.key);
      const Decimal read = number(facts.value(QStringLiteral("read_") + key), name);
      const QString declaredText = facts.value(QStringLiteral("declared_") + key);
      compare(name + QStringLiteral("（读入金额）"), line.stored, read);
      if (!declaredText.isEmpty()) {
        compare(name + QStringLiteral("（申报金额）"), line.stored, number(declaredText, name));
      }
      report_.money +=
          QStringLiteral("%1：申报 %2，读入 %3，保存 %4\n")
              .arg(name,
                   declaredText.isEmpty()
                       ? QStringLiteral("无")
                       : QString::fromStdString(number(declaredText, name).toString(2)),
                   QString::fromStdString(read.toString(2)),
                   QString::fromStdString(line.stored.toString(2)));
    }
    report_.money +=
        QStringLiteral("间接费成本：计算 %1\n").arg(QString::fromStdString(feeCosts_.toString(2)));
    if (!subcontracts_.isZero()) {
      report_.money += QStringLiteral("分包成本：计算 %1\n")
                           .arg(QString::fromStdString(subcontracts_.toString(2)));
    }
  }

  /// A bill in a cost item, where anything was said about it.
  struct BillLine {
    bool associated = false, used = false;
    Decimal coefficient, billQuantity, budgetQuantity;
    std::optional<Decimal> content, price;
  };
  struct Scaled {
    Decimal cost, tender;
  };
  /// What bookings and gathering give a cost item.
  struct Booked {
    Decimal quantity, budget;
    Decimal priced;                           // quantity of lines with a price
    QVector<QPair<Decimal, Decimal>> prices;  // of these, with the quantity of their bill
    bool associated = false;
  };

  Database& database_;
  CheckReport& report_;
  QHash<QPair<qint64, qint64>, BillLine> lines_;             // by cost item and bill
  QHash<qint64, QVector<QPair<qint64, Decimal>>> poolings_;  // of a budget item
  QHash<qint64, Booked> booked_;
  QHash<qint64, Scaled> scaled_;  // bills with a cost quantity of their own
  QSet<qint64> gathered_;
  QHash<QPair<qint64, int>, Totals> computed_;  // unit work (0: the project), category (-1: all)
  QHash<qint64, Decimal> billIncomes_;          // of a unit work; 0: the project
  Decimal area_;
  Decimal fees_, feeCosts_, subcontracts_;
};

}  // namespace

CheckReport check(const QString& path) {
  CheckReport report;
  // The same refusals as on opening; then the rows themselves, which opening does not compare.
  if (!ProjectFile::open(path, report.failure)) return report;
  try {
    Database database(path);
    database.run(QStringLiteral("PRAGMA locking_mode = EXCLUSIVE"));
    Checker(database, report).run();
  } catch (const SqlError& error) {
    report.findings.append(QStringLiteral("数据无法读取（技术信息：%1），请用备份打开")
                               .arg(QString::fromUtf8(error.what())));
  } catch (const std::overflow_error&) {
    report.findings.append(QStringLiteral("有数值超出可计算的范围"));
  }
  return report;
}

}  // namespace store
