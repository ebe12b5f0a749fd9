#include "workbench/store/check.h"

#include <QHash>
#include <QStringList>
#include <array>
#include <optional>
#include <stdexcept>

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
    budgetItems();
    resourceItems();
    totals();
    fees();
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

  void budgetItems() {
    QSqlQuery query = rows(QStringLiteral(
        "SELECT i.id, i.resource_item_id, i.content, i.price, i.amount, b.quantity, r.unit,"
        " i.code, i.name, b.code FROM budget_item i JOIN bill b ON b.id = i.bill_id"
        " JOIN resource_item r ON r.id = i.resource_item_id"));
    while (query.next()) {
      const QString where =
          QStringLiteral("清单 %1 的预算工料机 %2 %3")
              .arg(query.value(9).toString(), query.value(7).toString(), query.value(8).toString());
      const Decimal content = number(query.value(2), where);
      const Decimal price = number(query.value(3), where);
      const Decimal amount = number(query.value(4), where);
      const Decimal quantity = number(query.value(5), where);
      compare(where + QStringLiteral("的合价"), amount,
              costing::budgetAmount(quantity, content, price));
      Gathered& gathered = gathered_[query.value(1).toLongLong()];
      gathered.amount += amount;
      gathered.quantity += costing::consumption(quantity, content);
    }
  }

  void resourceItems() {
    QSqlQuery query = rows(QStringLiteral(
        "SELECT id, unit_work_id, category, code, name, unit, quantity, price, tax_rate,"
        " budget_amount, excluded_amount, included_amount FROM resource_item"));
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
      compare(where + QStringLiteral("的不含税合价"), stored.excluded,
              costing::excludedTaxAmount(quantity, price));
      compare(where + QStringLiteral("的含税合价"), stored.included,
              costing::includedTaxAmount(quantity, price, taxRate));
      const auto gathered = gathered_.constFind(id);
      if (gathered != gathered_.constEnd()) {
        compare(where + QStringLiteral("的预算合价"), stored.budget, gathered->amount);
        compare(
            where + QStringLiteral("的数量"), quantity,
            costing::storedQuantity(gathered->quantity, query.value(5).toString().toStdString()));
      }
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
    QSqlQuery query = rows(QStringLiteral("SELECT code, name, base, rate, amount FROM fee_item"));
    while (query.next()) {
      const QString where =
          QStringLiteral("间接费 %1 %2").arg(query.value(0).toString(), query.value(1).toString());
      const Decimal amount = number(query.value(4), where);
      fees_ += amount;
      if (query.isNull(2) || query.isNull(3)) continue;
      compare(where + QStringLiteral("的金额"), amount,
              (number(query.value(2), where) * number(query.value(3), where) / 100)
                  .rounded(costing::MoneyPlaces));
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
  }

  struct Gathered {
    Decimal amount, quantity;
  };

  Database& database_;
  CheckReport& report_;
  QHash<qint64, Gathered> gathered_;
  QHash<QPair<qint64, int>, Totals> computed_;  // unit work (0: the project), category (-1: all)
  Decimal fees_;
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
