#include "workbench/store/project_rows.h"

#include <QSqlError>
#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "workbench/records/project_builder.h"
#include "workbench/store/database.h"

namespace store {
namespace {

using costing::Decimal;
using records::Category;

constexpr qint64 ReportEvery = 2000;

QVariant cell(const std::string& text) {
  // A null text would be stored as NULL.
  return text.empty() ? QVariant(QStringLiteral("")) : QVariant(QString::fromStdString(text));
}
QVariant cell(records::Text text) {
  return cell(text.str());
}
QVariant cell(const Decimal& number) {
  return QString::fromStdString(number.toString());
}
QVariant cell(costing::PackedDecimal number) {
  return cell(number.value());
}
QVariant cell(bool flag) {
  return flag ? 1 : 0;
}
QVariant cell(Category category) {
  return static_cast<int>(category);
}
QVariant cell(int number) {
  return number;
}
QVariant cell(std::int64_t number) {
  return static_cast<qlonglong>(number);
}
template <class Number>
QVariant cell(const std::optional<Number>& number) {
  return number ? cell(*number) : QVariant(QVariant::String);
}
QVariant idOf(const proxy::Element* element) {
  return element != nullptr ? cell(element->id()) : QVariant(QVariant::LongLong);
}

/// A prepared statement whose places are filled in order.
class Statement {
 public:
  Statement(Database& database, const char* sql)
      : query_(database.prepare(QString::fromLatin1(sql))) {}

  /// Runs it and answers how many rows it changed.
  int run(const std::vector<QVariant>& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) query_.bindValue(static_cast<int>(i), cells[i]);
    Database::run(query_);
    return query_.numRowsAffected();
  }

 private:
  QSqlQuery query_;
};

std::vector<QVariant> itemCells(const records::Project& project, const records::ResourceItem& item,
                                const records::StructureNode& unitWork) {
  return {cell(unitWork.id()),
          cell(item.category()),
          cell(item.position()),
          idOf(item.account()),
          cell(item.code()),
          cell(item.name()),
          cell(item.spec()),
          cell(item.unit()),
          cell(item.quantity()),
          cell(project.bookings().ownQuantity(item)),
          cell(item.price()),
          cell(item.taxRate()),
          cell(item.budgetAmount()),
          cell(item.excludedAmount()),
          cell(item.includedAmount()),
          cell(item.ownerSupplied()),
          cell(item.provisional()),
          cell(item.priceAdjustable()),
          cell(item.associated()),
          cell(item.annotation()),
          cell(item.linked()),
          idOf(item.subcontract()),
          cell(item.id())};
}

constexpr char InsertItem[] =
    "INSERT INTO resource_item (unit_work_id, category, position, account_id, code, name, spec,"
    " unit, quantity, own_quantity, price, tax_rate, budget_amount, excluded_amount,"
    " included_amount, owner_supplied, provisional, price_adjustable, associated, annotation,"
    " linked, subcontract_id, id)"
    " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
constexpr char InsertPooling[] =
    "INSERT INTO pooling (quantity, budget_item_id, resource_item_id) VALUES (?, ?, ?)";
constexpr char InsertLine[] =
    "INSERT INTO bill_line (associated, summary, summary_unit, coefficient, content, price,"
    " price_expression, resource_item_id, bill_id) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)";

std::vector<QVariant> poolingCells(const records::BudgetItem& budgetItem,
                                   const records::ResourceItem& into, const Decimal& quantity) {
  return {cell(quantity), cell(budgetItem.id()), cell(into.id())};
}

std::vector<QVariant> lineCells(const records::ResourceItem& item, const records::Bill& bill,
                                const records::LineTerms& terms) {
  return {cell(terms.associated),      cell(terms.summary), cell(terms.summaryUnit),
          cell(terms.coefficient),     cell(terms.content), cell(terms.price),
          cell(terms.priceExpression), cell(item.id()),     cell(bill.id())};
}

constexpr char UpdateBill[] =
    "UPDATE bill SET code = ?, name = ?, features = ?, unit = ?, type = ?, remark = ?,"
    " account_id = ?, expression = ?, cost_quantity = ? WHERE id = ?";
constexpr char InsertQuantityLine[] =
    "INSERT INTO quantity_line (bill_id, position, remark, expression) VALUES (?, ?, ?, ?)";

// What can be edited of a bill.
std::vector<QVariant> billCells(const records::Bill& bill) {
  return {cell(bill.code),         cell(bill.name),   cell(bill.features), cell(bill.unit),
          cell(bill.type),         cell(bill.remark), idOf(bill.account),  cell(bill.expression),
          cell(bill.costQuantity), cell(bill.id())};
}

void insertQuantityLines(Statement& insert, const records::Bill& bill) {
  int position = 0;
  for (const records::QuantityLine& line : bill.quantityLines) {
    insert.run({cell(bill.id()), cell(position++), cell(line.remark), cell(line.expression)});
  }
}

constexpr char InsertFee[] =
    "INSERT INTO fee_item (group_id, position, source_id, code, name, basis, account_id, base, "
    "rate,"
    " amount, cost_base, cost_rate, cost_amount, id) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?,"
    " ?)";
constexpr char UpdateFee[] =
    "UPDATE fee_item SET group_id = ?, position = ?, source_id = ?, code = ?, name = ?, basis = ?,"
    " account_id = ?, base = ?, rate = ?, amount = ?, cost_base = ?, cost_rate = ?, cost_amount = ?"
    " WHERE id = ?";

std::vector<QVariant> feeCells(const records::IndirectFeeItem& fee) {
  const QVariant none(QVariant::String);
  return {idOf(fee.parent()),
          cell(fee.row()),
          cell(fee.sourceId),
          cell(fee.code),
          cell(fee.name),
          cell(fee.basis),
          idOf(fee.account),
          cell(fee.base),
          cell(fee.rate),
          cell(fee.amount),
          fee.cost ? cell(fee.cost->base) : none,
          fee.cost ? cell(fee.cost->rate) : none,
          fee.cost ? cell(fee.cost->amount) : none,
          cell(fee.id())};
}

constexpr char UpdateItem[] =
    "UPDATE resource_item SET unit_work_id = ?, category = ?, position = ?, account_id = ?,"
    " code = ?, name = ?, spec = ?, unit = ?, quantity = ?, own_quantity = ?, price = ?,"
    " tax_rate = ?, budget_amount = ?, excluded_amount = ?, included_amount = ?, owner_supplied = "
    "?,"
    " provisional = ?, price_adjustable = ?, associated = ?, annotation = ?, linked = ?,"
    " subcontract_id = ? WHERE id = ?";

constexpr char InsertFact[] = "INSERT INTO project_fact (name, value) VALUES (?, ?)";
constexpr char InsertSubcontract[] =
    "INSERT INTO subcontract (position, code, name, features, unit, contract_type, metering,"
    " attachment, content_quota, price_expiry_date, applicable_area, remark, price, tax_rate,"
    " quantity, account_id, quantity_now, excluded_amount, included_amount, id)"
    " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
constexpr char UpdateSubcontract[] =
    "UPDATE subcontract SET position = ?, code = ?, name = ?, features = ?, unit = ?,"
    " contract_type = ?, metering = ?, attachment = ?, content_quota = ?, price_expiry_date = ?,"
    " applicable_area = ?, remark = ?, price = ?, tax_rate = ?, quantity = ?, account_id = ?,"
    " quantity_now = ?, excluded_amount = ?, included_amount = ? WHERE id = ?";
constexpr char InsertSubcontractBill[] =
    "INSERT INTO subcontract_bill (id, subcontract_id, bill_id, position) VALUES (?, ?, ?, ?)";

std::vector<QVariant> subcontractCells(const records::Subcontract& entry) {
  return {cell(entry.row()),
          cell(entry.code),
          cell(entry.name),
          cell(entry.features),
          cell(entry.unit),
          cell(entry.contractType),
          cell(static_cast<int>(entry.metering)),
          cell(entry.attachment),
          cell(entry.contentQuota),
          cell(entry.priceExpiryDate),
          cell(entry.applicableArea),
          cell(entry.remark),
          cell(entry.price),
          cell(entry.taxRate),
          cell(entry.quantity),
          idOf(entry.account),
          cell(entry.quantityNow()),
          cell(entry.amount()),
          cell(entry.includedAmount()),
          cell(entry.id())};
}

void insertSubcontractBills(Statement& insert, const records::Subcontract& entry) {
  for (int row = 0; row < entry.rows().size(); ++row) {
    const records::SubcontractBill& bill = entry.billAt(row);
    insert.run({cell(bill.id()), cell(entry.id()), cell(bill.bill.id()), cell(row)});
  }
}

/// Those of the project and of these unit works: budget, excluded, included, node, category.
template <class UnitWorks>
void writeTotals(Statement& statement, const records::Project& project,
                 const UnitWorks& unitWorks) {
  const auto write = [&](const costing::Totals& totals, std::int64_t node, int category) {
    statement.run({cell(totals.budget), cell(totals.excluded), cell(totals.included), cell(node),
                   cell(category)});
  };
  write(project.totals(), 0, -1);
  for (const records::StructureNode* unitWork : unitWorks) {
    write(project.subProject(*unitWork)->totals(), unitWork->id(), -1);
    for (int i = 0; i < records::CategoryCount; ++i) {
      write(project.categoryGroup(*unitWork, static_cast<Category>(i))->totals(), unitWork->id(),
            i);
    }
  }
}

struct FactRow {
  const char* name;
  std::string records::Facts::*text;
};
constexpr FactRow TextFacts[] = {
    {"name", &records::Facts::name},
    {"cost_type", &records::Facts::costType},
    {"report_template", &records::Facts::reportTemplate},
    {"cost_plan", &records::Facts::costPlan},
    {"source_kind", &records::Facts::sourceKind},
    {"source_name", &records::Facts::sourceName},
    {"code", &records::Facts::code},
    {"builder", &records::Facts::builder},
    {"tenderer", &records::Facts::tenderer},
    {"region", &records::Facts::region},
    {"date", &records::Facts::date},
    {"pricing_basis", &records::Facts::pricingBasis},
    {"structure", &records::Facts::structure},
    {"tax_method", &records::Facts::taxMethod},
};
struct NumberRow {
  const char* name;
  Decimal records::Facts::*number;
};
constexpr NumberRow NumberFacts[] = {
    {"tax_rate", &records::Facts::taxRate},     {"building_area", &records::Facts::buildingArea},
    {"read_bills", &records::Facts::readBills}, {"read_resources", &records::Facts::readResources},
    {"read_fees", &records::Facts::readFees},
};
struct DeclaredRow {
  const char* name;
  std::optional<Decimal> records::Facts::*number;
};
constexpr DeclaredRow DeclaredFacts[] = {
    {"declared_bills", &records::Facts::declaredBills},
    {"declared_resources", &records::Facts::declaredResources},
    {"declared_fees", &records::Facts::declaredFees},
};

/// Writes a whole project, each record after those it refers to.
class Writer {
 public:
  Writer(Database& database, records::Project& project, const RowProgress& progress)
      : database_(database), project_(project), progress_(progress) {}

  bool write() {
    facts();
    accounts(project_.accounts().rows(), nullptr);
    structure(project_.structure().rows(), nullptr);
    return bills(project_.structure().rows()) && subcontracts() && items() && budgetItems() &&
           totals() && fees() && bookings();
  }

 private:
  bool counted() { return ++rows_ % ReportEvery != 0 || !progress_ || progress_(rows_); }

  void facts() {
    Statement insert(database_, InsertFact);
    const records::Facts& facts = project_.facts;
    for (const FactRow& row : TextFacts)
      insert.run({cell(std::string(row.name)), cell(facts.*row.text)});
    for (const NumberRow& row : NumberFacts) {
      insert.run({cell(std::string(row.name)), cell(facts.*row.number)});
    }
    for (const DeclaredRow& row : DeclaredFacts) {
      if (facts.*row.number) insert.run({cell(std::string(row.name)), cell(*(facts.*row.number))});
    }
  }

  void accounts(const records::RowList& rows, const proxy::Element* parent) {
    Statement insert(database_,
                     "INSERT INTO cost_account (id, parent_id, position, source_id, code, name,"
                     " default_for) VALUES (?, ?, ?, ?, ?, ?, ?)");
    for (int row = 0; row < rows.size(); ++row) {
      const auto& account = *static_cast<records::CostAccount*>(rows.at(row));
      insert.run({cell(account.id()), idOf(parent), cell(row), cell(account.sourceId),
                  cell(account.code), cell(account.name), cell(account.defaultFor)});
      accounts(account.rows(), &account);
    }
  }

  void structure(const records::RowList& rows, const proxy::Element* parent) {
    Statement insert(database_,
                     "INSERT INTO structure_node (id, parent_id, position, kind, source_id, code,"
                     " name, specialty, declared_bills, declared_resources, declared_fees)"
                     " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    for (int row = 0; row < rows.size(); ++row) {
      const auto* node = dynamic_cast<records::StructureNode*>(rows.at(row));
      if (node == nullptr) continue;
      insert.run({cell(node->id()), idOf(parent), cell(row), cell(static_cast<int>(node->kind)),
                  cell(node->sourceId), cell(node->code), cell(node->name), cell(node->specialty),
                  cell(node->declaredBills), cell(node->declaredResources),
                  cell(node->declaredFees)});
      structure(node->rows(), node);
    }
  }

  bool bills(const records::RowList& rows) {
    Statement insert(database_,
                     "INSERT INTO bill (code, name, features, unit, type, remark, account_id,"
                     " expression, cost_quantity, id, section_id, position, source_id, quantity,"
                     " unit_price, amount)"
                     " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    Statement insertLine(database_, InsertQuantityLine);
    const std::function<bool(const records::RowList&)> write = [&](const records::RowList& list) {
      for (int row = 0; row < list.size(); ++row) {
        if (const auto* bill = dynamic_cast<records::Bill*>(list.at(row))) {
          std::vector<QVariant> cells = billCells(*bill);
          for (const QVariant& given :
               {idOf(bill->parent()), cell(row), cell(bill->sourceId), cell(bill->quantity),
                cell(bill->unitPrice), cell(bill->amount)}) {
            cells.push_back(given);
          }
          insert.run(cells);
          insertQuantityLines(insertLine, *bill);
          allBills_.push_back(bill);
          if (!counted()) return false;
        } else if (!write(static_cast<records::Branch*>(list.at(row))->rows())) {
          return false;
        }
      }
      return true;
    };
    return write(rows);
  }

  bool subcontracts() {
    Statement insert(database_, InsertSubcontract);
    Statement insertBill(database_, InsertSubcontractBill);
    for (int row = 0; row < project_.subcontracts().size(); ++row) {
      const auto& entry = *static_cast<records::Subcontract*>(project_.subcontracts().member(row));
      insert.run(subcontractCells(entry));
      insertSubcontractBills(insertBill, entry);
    }
    return true;
  }

  bool items() {
    Statement insert(database_, InsertItem);
    for (const records::StructureNode* unitWork : project_.unitWorks()) {
      for (int i = 0; i < records::CategoryCount; ++i) {
        const auto* group = project_.categoryGroup(*unitWork, static_cast<Category>(i));
        for (int row = 0; row < group->rows().size(); ++row) {
          insert.run(itemCells(
              project_, *static_cast<records::ResourceItem*>(group->rows().at(row)), *unitWork));
          if (!counted()) return false;
        }
      }
    }
    return true;
  }

  bool budgetItems() {
    Statement insert(database_,
                     "INSERT INTO budget_item (id, bill_id, position, resource_item_id, source_id,"
                     " category, code, name, spec, unit, content, price, tax_rate, amount,"
                     " owner_supplied, provisional, price_adjustable)"
                     " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    for (const records::Bill* bill : allBills_) {
      for (int row = 0; row < bill->rows().size(); ++row) {
        const auto& item = *static_cast<records::BudgetItem*>(bill->rows().at(row));
        insert.run({cell(item.id()), cell(bill->id()), cell(row), idOf(item.resourceItem),
                    cell(item.sourceId), cell(item.category), cell(item.code), cell(item.name),
                    cell(item.spec), cell(item.unit), cell(item.content), cell(item.price),
                    cell(item.taxRate), cell(item.amount), cell(item.ownerSupplied),
                    cell(item.provisional), cell(item.priceAdjustable)});
        if (!counted()) return false;
      }
    }
    return true;
  }

  bool totals() {
    Statement insert(database_,
                     "INSERT INTO cost_total (budget, excluded, included, node_id, category)"
                     " VALUES (?, ?, ?, ?, ?)");
    writeTotals(insert, project_, project_.unitWorks());
    return true;
  }

  bool fees() {
    Statement group(database_,
                    "INSERT INTO fee_group (id, parent_id, position, unit_work_id, source_id, code,"
                    " name) VALUES (?, ?, ?, ?, ?, ?, ?)");
    Statement fee(database_, InsertFee);
    const std::function<void(const records::RowList&, const proxy::Element*)> write =
        [&](const records::RowList& rows, const proxy::Element* parent) {
          for (int row = 0; row < rows.size(); ++row) {
            if (const auto* node = dynamic_cast<records::IndirectFeeGroup*>(rows.at(row))) {
              group.run({cell(node->id()), idOf(parent), cell(row), idOf(node->unitWork),
                         cell(node->sourceId), cell(node->code), cell(node->name)});
              write(node->rows(), node);
            } else {
              fee.run(feeCells(*static_cast<records::IndirectFeeItem*>(rows.at(row))));
            }
          }
        };
    write(project_.feeGroups().rows(), nullptr);
    return true;
  }

  bool bookings() {
    const records::Bookings& bookings = project_.bookings();
    Statement insertPooling(database_, InsertPooling);
    for (const records::BudgetItem* item : bookings.pooledItems()) {
      for (const auto& pooling : bookings.poolingsOf(*item)) {
        insertPooling.run(poolingCells(*item, *pooling.into, pooling.quantity));
      }
    }
    Statement insertLine(database_, InsertLine);
    for (const records::ResourceItem* item : bookings.touchedItems()) {
      for (const records::Bill* bill : bookings.billsWithTerms(*item)) {
        insertLine.run(lineCells(*item, *bill, *bookings.termsOf(*item, *bill)));
      }
    }
    return true;
  }

  Database& database_;
  records::Project& project_;
  const RowProgress& progress_;
  std::vector<const records::Bill*> allBills_;
  qint64 rows_ = 0;
};

/// The rows of one SELECT; faults name its table and the row's id, which is its first column.
class Rows {
 public:
  Rows(Database& database, const char* table, const char* columns, const char* order,
       const char* condition = "1 = 1")
      : table_(table),
        query_(database.prepare(QStringLiteral("SELECT %1 FROM %2 WHERE %3 ORDER BY %4")
                                    .arg(QString::fromLatin1(columns), QString::fromLatin1(table),
                                         QString::fromLatin1(condition),
                                         QString::fromLatin1(order)))) {
    Database::run(query_);
  }

  bool next() {
    column_ = 0;
    if (query_.next()) return true;
    if (query_.lastError().isValid()) {
      throw SqlError(query_.lastError().text(), query_.lastError().nativeErrorCode().toInt());
    }
    return false;
  }

  std::string text() { return query_.value(column_++).toString().toStdString(); }
  std::int64_t id() { return query_.value(column_++).toLongLong(); }
  int number(int low, int high) {
    const int value = query_.value(column_++).toInt();
    if (value < low || value > high) bad("取值不正确");
    return value;
  }
  int place() { return query_.value(column_++).toInt(); }
  bool flag() { return query_.value(column_++).toInt() != 0; }
  bool isNull() const { return query_.isNull(column_); }
  void skip() { ++column_; }
  Decimal decimal() {
    const std::optional<Decimal> value = Decimal::parse(text());
    if (!value) bad("数值不正确");
    return *value;
  }
  std::optional<Decimal> optionalDecimal() {
    if (isNull()) {
      skip();
      return {};
    }
    return decimal();
  }
  /// The record that this column refers to; null when the column is.
  template <class T>
  T* reference(const std::unordered_map<std::int64_t, T*>& records) {
    if (isNull()) {
      skip();
      return nullptr;
    }
    const auto found = records.find(id());
    if (found == records.end()) bad("所引用的记录不存在");
    return found->second;
  }
  template <class T>
  T& required(const std::unordered_map<std::int64_t, T*>& records) {
    T* record = reference(records);
    if (record == nullptr) bad("所属的记录不存在");
    return *record;
  }

  [[noreturn]] void bad(const char* what) const {
    throw BadRows("数据表 " + std::string(table_) + " 中编号为 " +
                  query_.value(0).toString().toStdString() + " 的记录" + what);
  }

 private:
  const char* table_;
  QSqlQuery query_;
  int column_ = 0;
};

class Reader {
 public:
  Reader(Database& database, records::Project& project, const RowProgress& progress)
      : database_(database), project_(project), builder_(project), progress_(progress) {}

  bool read() {
    facts();
    accounts();
    structure();
    pooledIds();
    if (!bills()) return false;
    subcontracts();
    if (!items() || !budgetItems()) return false;
    fees();
    quantityLines();
    bookings();
    builder_.finishSubcontracts();
    return true;
  }

 private:
  bool counted() { return ++rows_ % ReportEvery != 0 || !progress_ || progress_(rows_); }
  template <class... Texts>
  void texts(Rows& rows, Texts&... into) {
    std::array<std::string, sizeof...(Texts)> read;
    std::generate(read.begin(), read.end(), [&rows] { return rows.text(); });
    std::array<std::string_view, sizeof...(Texts)> views;
    std::copy(read.begin(), read.end(), views.begin());
    project_.texts.intern(views, into...);
  }

  void facts() {
    std::unordered_map<std::string, std::string> values;
    Rows rows(database_, "project_fact", "name, value", "name");
    while (rows.next()) {
      std::string name = rows.text();
      values[std::move(name)] = rows.text();
    }
    const auto number = [&](const char* name) {
      const std::optional<Decimal> value = Decimal::parse(values.at(name));
      if (!value) throw BadRows(std::string("项目信息 ") + name + " 不是数值");
      return *value;
    };
    for (const char* name : {"name", "cost_type", "read_bills", "read_resources", "read_fees"}) {
      if (values.count(name) == 0) throw BadRows(std::string("缺少项目信息 ") + name);
    }
    records::Facts& facts = project_.facts;
    for (const FactRow& row : TextFacts) facts.*row.text = values[row.name];
    for (const NumberRow& row : NumberFacts) {
      if (values.count(row.name) != 0) facts.*row.number = number(row.name);
    }
    for (const DeclaredRow& row : DeclaredFacts) {
      if (values.count(row.name) != 0) facts.*row.number = number(row.name);
    }
  }

  // Parents have lower ids than what is below them, so that they come first.
  void accounts() {
    Rows rows(database_, "cost_account", "id, parent_id, source_id, code, name, default_for", "id");
    while (rows.next()) {
      const std::int64_t id = rows.id();
      records::CostAccount* parent = rows.reference(accounts_);
      std::string sourceId = rows.text();
      const std::string code = rows.text();
      const std::string name = rows.text();
      records::CostAccount& account = builder_.addAccount(parent, id, code, name);
      account.sourceId = std::move(sourceId);
      if (!rows.isNull()) {
        account.defaultFor = static_cast<Category>(rows.number(0, records::CategoryCount - 1));
      }
      accounts_[id] = &account;
    }
  }

  void structure() {
    Rows rows(database_, "structure_node",
              "id, parent_id, kind, source_id, code, name, specialty, declared_bills,"
              " declared_resources, declared_fees",
              "id");
    while (rows.next()) {
      const std::int64_t id = rows.id();
      records::StructureNode* parent = rows.reference(nodes_);
      const auto kind = static_cast<records::StructureKind>(rows.number(0, 2));
      records::StructureNode& node = builder_.addNode(parent, id, kind);
      node.sourceId = rows.text();
      node.code = rows.text();
      node.name = rows.text();
      node.specialty = rows.text();
      node.declaredBills = rows.optionalDecimal();
      node.declaredResources = rows.optionalDecimal();
      node.declaredFees = rows.optionalDecimal();
      nodes_[id] = &node;
    }
  }

  bool bills() {
    Rows rows(database_, "bill",
              "id, section_id, source_id, code, name, features, unit, account_id, quantity,"
              " unit_price, amount, type, remark, expression, cost_quantity",
              "section_id, position");
    while (rows.next()) {
      const std::int64_t id = rows.id();
      records::Bill& bill = builder_.addBill(rows.required(nodes_), id);
      texts(rows, bill.sourceId, bill.code, bill.name, bill.features, bill.unit);
      bill.account = rows.reference(accounts_);
      bill.quantity = rows.decimal();
      if (const auto price = rows.optionalDecimal()) bill.unitPrice = *price;
      if (const auto amount = rows.optionalDecimal()) bill.amount = *amount;
      texts(rows, bill.type, bill.remark, bill.expression);
      // It scales items that are still to be read.
      if (const auto quantity = rows.optionalDecimal())
        costQuantities_.emplace_back(&bill, *quantity);
      bills_[id] = &bill;
      if (!counted()) return false;
    }
    return true;
  }

  void subcontracts() {
    Rows rows(database_, "subcontract",
              "id, code, name, features, unit, contract_type, attachment, content_quota,"
              " price_expiry_date, applicable_area, remark, metering, price, tax_rate, quantity,"
              " account_id",
              "position");
    while (rows.next()) {
      const std::int64_t id = rows.id();
      records::Subcontract& entry = builder_.addSubcontract(id);
      texts(rows, entry.code, entry.name, entry.features, entry.unit, entry.contractType);
      texts(rows, entry.attachment, entry.contentQuota, entry.priceExpiryDate, entry.applicableArea,
            entry.remark);
      entry.metering =
          static_cast<records::MeteringMethod>(rows.number(0, records::MeteringMethodCount - 1));
      entry.price = rows.decimal();
      entry.taxRate = rows.decimal();
      entry.quantity = rows.decimal();
      entry.account = rows.reference(accounts_);
      subcontracts_[id] = &entry;
    }
    Rows bills(database_, "subcontract_bill", "id, subcontract_id, bill_id",
               "subcontract_id, position");
    while (bills.next()) {
      const std::int64_t id = bills.id();
      records::Subcontract& entry = bills.required(subcontracts_);
      builder_.assign(entry, bills.required(bills_), id);
    }
  }

  bool items() {
    Rows rows(database_, "resource_item",
              "id, unit_work_id, category, position, account_id, code, name, spec, unit,"
              " quantity, price, tax_rate, budget_amount, owner_supplied, provisional,"
              " price_adjustable, annotation, linked, subcontract_id",
              "unit_work_id, category, position");
    while (rows.next()) {
      records::ResourceItemData data;
      data.id = rows.id();
      records::StructureNode& unitWork = rows.required(nodes_);
      if (unitWork.kind != records::StructureKind::UnitWork) rows.bad("不属于任何单位工程");
      data.category = static_cast<Category>(rows.number(0, records::CategoryCount - 1));
      data.position = rows.place();
      data.account = rows.reference(accounts_);
      texts(rows, data.code, data.name, data.spec, data.unit);
      data.quantity = rows.decimal();
      data.price = rows.decimal();
      data.taxRate = rows.decimal();
      data.budgetAmount = rows.decimal();
      data.ownerSupplied = rows.flag();
      data.provisional = rows.flag();
      data.priceAdjustable = rows.flag();
      texts(rows, data.annotation);
      data.linked = rows.flag();
      records::Subcontract* collected = rows.reference(subcontracts_);
      records::ResourceItem& item = builder_.addItem(unitWork, data);
      if (collected != nullptr) builder_.collect(item, *collected);
      items_[data.id] = &item;
      if (!counted()) return false;
    }
    return true;
  }

  void quantityLines() {
    Rows rows(database_, "quantity_line", "bill_id, remark, expression", "bill_id, position");
    while (rows.next()) {
      records::Bill& bill = rows.required(bills_);
      records::QuantityLine line;
      texts(rows, line.remark, line.expression);
      bill.quantityLines.push_back(line);
    }
  }

  // A project has many budget items; those of which anything is pooled are looked up later.
  void pooledIds() {
    Rows rows(database_, "pooling", "budget_item_id", "budget_item_id");
    while (rows.next()) budgetItems_.emplace(rows.id(), nullptr);
  }

  void bookings() {
    Rows own(database_, "resource_item", "id, own_quantity", "id",
             "id IN (SELECT resource_item_id FROM pooling"
             " UNION SELECT resource_item_id FROM bill_line)");
    while (own.next()) {
      records::ResourceItem& item = own.required(items_);
      const Decimal quantity = own.decimal();
      if (!item.gathered()) builder_.setOwnQuantity(item, quantity);
    }
    for (const auto& [bill, quantity] : costQuantities_) builder_.setCostQuantity(*bill, quantity);
    Rows lines(database_, "bill_line",
               "resource_item_id, bill_id, associated, summary, summary_unit, coefficient, content,"
               " price, price_expression",
               "resource_item_id, bill_id");
    while (lines.next()) {
      records::ResourceItem& item = lines.required(items_);
      records::Bill& bill = lines.required(bills_);
      requireSameUnitWork(lines, item, bill);
      records::LineTerms terms;
      terms.associated = lines.flag();
      terms.summary = lines.flag();
      texts(lines, terms.summaryUnit);
      terms.coefficient = lines.decimal();
      terms.content = lines.optionalDecimal();
      terms.price = lines.optionalDecimal();
      texts(lines, terms.priceExpression);
      builder_.setTerms(item, bill, terms);
    }
    Rows poolings(database_, "pooling", "budget_item_id, resource_item_id, quantity",
                  "budget_item_id, resource_item_id");
    while (poolings.next()) {
      records::BudgetItem& budgetItem = poolings.required(budgetItems_);
      records::ResourceItem& item = poolings.required(items_);
      requireSameUnitWork(poolings, item, budgetItem);
      builder_.setPooling(budgetItem, item, poolings.decimal());
    }
    builder_.finishBookings();
  }

  void requireSameUnitWork(const Rows& rows, const proxy::Element& item,
                           const proxy::Element& bill) const {
    if (project_.unitWorkOf(item) != project_.unitWorkOf(bill)) {
      rows.bad("所引用的清单与工料机不在同一单位工程");
    }
  }

  bool budgetItems() {
    Rows rows(database_, "budget_item",
              "id, bill_id, resource_item_id, source_id, category, code, name, spec, unit,"
              " content, price, tax_rate, amount, owner_supplied, provisional, price_adjustable",
              "bill_id, position");
    while (rows.next()) {
      const std::int64_t id = rows.id();
      records::Bill& bill = rows.required(bills_);
      records::ResourceItem& item = rows.required(items_);
      records::BudgetItem& line = builder_.addBudgetItem(bill, id);
      builder_.gather(line, item);
      texts(rows, line.sourceId);
      line.category = static_cast<Category>(rows.number(0, records::CategoryCount - 1));
      texts(rows, line.code, line.name, line.spec, line.unit);
      line.content = rows.decimal();
      line.price = rows.decimal();
      line.taxRate = rows.decimal();
      line.amount = rows.decimal();
      line.ownerSupplied = rows.flag();
      line.provisional = rows.flag();
      line.priceAdjustable = rows.flag();
      if (const auto pooled = budgetItems_.find(id); pooled != budgetItems_.end()) {
        pooled->second = &line;
      }
      if (!counted()) return false;
    }
    return true;
  }

  void fees() {
    std::unordered_map<std::int64_t, records::IndirectFeeGroup*> groups;
    Rows groupRows(database_, "fee_group", "id, parent_id, unit_work_id, source_id, code, name",
                   "id");
    while (groupRows.next()) {
      const std::int64_t id = groupRows.id();
      records::IndirectFeeGroup& group = builder_.addFeeGroup(groupRows.reference(groups), id);
      group.unitWork = groupRows.reference(nodes_);
      group.sourceId = groupRows.text();
      group.code = groupRows.text();
      group.name = groupRows.text();
      groups[id] = &group;
    }
    Rows rows(database_, "fee_item",
              "id, group_id, source_id, code, name, basis, account_id, base, rate, amount,"
              " cost_base, cost_rate, cost_amount",
              "group_id, position");
    while (rows.next()) {
      const std::int64_t id = rows.id();
      records::IndirectFeeItem& item = builder_.addFeeItem(rows.required(groups), id);
      item.sourceId = rows.text();
      item.code = rows.text();
      item.name = rows.text();
      item.basis = rows.text();
      item.account = rows.reference(accounts_);
      item.base = rows.optionalDecimal();
      item.rate = rows.optionalDecimal();
      item.amount = rows.decimal();
      records::FeeCost cost;
      cost.base = rows.text();
      cost.rate = rows.optionalDecimal();
      if (const auto amount = rows.optionalDecimal()) {
        cost.amount = *amount;
        item.cost = std::move(cost);
      }
    }
  }

  Database& database_;
  records::Project& project_;
  records::ProjectBuilder builder_;
  const RowProgress& progress_;
  std::unordered_map<std::int64_t, records::CostAccount*> accounts_;
  std::unordered_map<std::int64_t, records::StructureNode*> nodes_;
  std::unordered_map<std::int64_t, records::Bill*> bills_;
  std::vector<std::pair<records::Bill*, Decimal>> costQuantities_;
  std::unordered_map<std::int64_t, records::ResourceItem*> items_;
  std::unordered_map<std::int64_t, records::Subcontract*> subcontracts_;
  std::unordered_map<std::int64_t, records::BudgetItem*> budgetItems_;  // those that are pooled
  qint64 rows_ = 0;
};

}  // namespace

bool writeProject(Database& database, records::Project& project, const RowProgress& progress) {
  return Writer(database, project, progress).write();
}

bool readProject(Database& database, records::Project& project, const RowProgress& progress) {
  return Reader(database, project, progress).read();
}

void writeChanges(Database& database, records::Project& project,
                  const records::ChangeSet& changes) {
  // What was touched, in the order in which it first was, each once.
  std::vector<records::ResourceItem*> items;
  std::unordered_set<records::ResourceItem*> known;
  std::unordered_set<records::StructureNode*> unitWorks;
  std::set<std::pair<const records::BudgetItem*, records::ResourceItem*>> poolings;
  std::set<std::pair<records::ResourceItem*, const records::Bill*>> lines;
  std::set<const records::Bill*> bills;
  std::set<const records::Subcontract*> entries;
  std::set<const records::Subcontract*> assignments;  // entries with other bills than before
  bool entriesMoved = false;
  bool taxed = false;
  std::set<const records::IndirectFeeItem*> fees;
  std::set<const records::IndirectFeeGroup*> feeGroups;  // with other rows than before
  const records::Bookings& bookings = project.bookings();
  const auto touch = [&](records::ResourceItem* item) {
    if (known.insert(item).second) items.push_back(item);
    if (item->group() != nullptr) unitWorks.insert(&item->group()->unitWork());
  };
  for (const records::Change& change : changes) {
    if (const auto* set = std::get_if<records::SetField>(&change)) {
      touch(set->item.get());
    } else if (const auto* added = std::get_if<records::AddItem>(&change)) {
      touch(added->item.get());
      unitWorks.insert(added->unitWork);
    } else if (const auto* removed = std::get_if<records::RemoveItem>(&change)) {
      touch(removed->item.get());
      unitWorks.insert(removed->unitWork);
    } else if (const auto* pooling = std::get_if<records::SetPooling>(&change)) {
      if (!poolings.emplace(pooling->budgetItem, pooling->into.get()).second) continue;
      touch(pooling->into.get());
      for (const auto& share : bookings.sharesOf(*pooling->budgetItem)) touch(share.item);
    } else if (const auto* terms = std::get_if<records::SetTerms>(&change)) {
      touch(terms->item.get());
      lines.emplace(terms->item.get(), terms->bill);
    } else if (const auto* edit = std::get_if<records::SetBill>(&change)) {
      bills.insert(edit->bill);
      if (edit->before.costQuantity == edit->after.costQuantity) continue;
      for (records::ResourceItem* item : bookings.itemsOf(*edit->bill)) touch(item);
      for (const records::Subcontract* entry : project.subcontractsOf(*edit->bill)) {
        entries.insert(entry);
      }
    } else if (const auto* fee = std::get_if<records::SetFee>(&change)) {
      fees.insert(fee->item.get());
    } else if (const auto* addedFee = std::get_if<records::AddFee>(&change)) {
      fees.insert(addedFee->item.get());
      feeGroups.insert(addedFee->group);
    } else if (const auto* removedFee = std::get_if<records::RemoveFee>(&change)) {
      fees.insert(removedFee->item.get());
      feeGroups.insert(removedFee->group);
    } else if (const auto* collection = std::get_if<records::SetCollection>(&change)) {
      touch(collection->item.get());
    } else if (const auto* entry = std::get_if<records::SetSubcontract>(&change)) {
      entries.insert(entry->entry.get());
    } else if (const auto* addedEntry = std::get_if<records::AddSubcontract>(&change)) {
      entries.insert(addedEntry->entry.get());
      assignments.insert(addedEntry->entry.get());
      entriesMoved = true;
    } else if (const auto* removedEntry = std::get_if<records::RemoveSubcontract>(&change)) {
      entries.insert(removedEntry->entry.get());
      assignments.insert(removedEntry->entry.get());
      entriesMoved = true;
    } else if (std::holds_alternative<records::MoveSubcontract>(change)) {
      entriesMoved = true;
    } else if (const auto* assigned = std::get_if<records::AssignBill>(&change)) {
      entries.insert(assigned->entry.get());
      assignments.insert(assigned->entry.get());
    } else if (const auto* unassigned = std::get_if<records::UnassignBill>(&change)) {
      entries.insert(unassigned->entry.get());
      assignments.insert(unassigned->entry.get());
    } else if (std::holds_alternative<records::SetTaxation>(change)) {
      taxed = true;
    } else {
      for (const auto& place : std::get<records::Reposition>(change).places) {
        touch(place.item.get());
      }
    }
  }

  // Each row after those it refers to; what goes, before them.
  const auto isThere = [&project](const records::Subcontract* entry) {
    return project.subcontracts().member(entry->row()) == entry;
  };
  if (entriesMoved) {
    for (int row = 0; row < project.subcontracts().size(); ++row) {
      entries.insert(static_cast<records::Subcontract*>(project.subcontracts().member(row)));
    }
  }
  Statement updateEntry(database, UpdateSubcontract);
  Statement insertEntry(database, InsertSubcontract);
  for (const records::Subcontract* entry : entries) {
    if (!isThere(entry)) continue;
    const std::vector<QVariant> cells = subcontractCells(*entry);
    if (updateEntry.run(cells) == 0) insertEntry.run(cells);
  }
  Statement removeAssignments(database, "DELETE FROM subcontract_bill WHERE subcontract_id = ?");
  Statement insertAssignment(database, InsertSubcontractBill);
  for (const records::Subcontract* entry : assignments) {
    removeAssignments.run({cell(entry->id())});
    if (isThere(entry)) insertSubcontractBills(insertAssignment, *entry);
  }
  const auto isGone = [](const records::ResourceItem* item) { return item->group() == nullptr; };
  Statement update(database, UpdateItem);
  Statement insert(database, InsertItem);
  for (const records::ResourceItem* item : items) {
    if (isGone(item)) continue;
    const std::vector<QVariant> cells = itemCells(project, *item, item->group()->unitWork());
    if (update.run(cells) == 0) insert.run(cells);
  }
  Statement updateBill(database, UpdateBill);
  Statement removeQuantityLines(database, "DELETE FROM quantity_line WHERE bill_id = ?");
  Statement insertQuantityLine(database, InsertQuantityLine);
  for (const records::Bill* bill : bills) {
    updateBill.run(billCells(*bill));
    removeQuantityLines.run({cell(bill->id())});
    insertQuantityLines(insertQuantityLine, *bill);
  }
  Statement removePooling(database,
                          "DELETE FROM pooling WHERE budget_item_id = ? AND resource_item_id = ?");
  Statement insertPooling(database, InsertPooling);
  for (const auto& [budgetItem, into] : poolings) {
    removePooling.run({cell(budgetItem->id()), cell(into->id())});
    const Decimal quantity = bookings.pooled(*budgetItem, *into);
    if (!quantity.isZero()) insertPooling.run(poolingCells(*budgetItem, *into, quantity));
  }
  Statement removeLine(database,
                       "DELETE FROM bill_line WHERE resource_item_id = ? AND bill_id = ?");
  Statement insertLine(database, InsertLine);
  for (const auto& [item, bill] : lines) {
    removeLine.run({cell(item->id()), cell(bill->id())});
    const records::Bookings::Terms terms = bookings.termsOf(*item, *bill);
    if (terms) insertLine.run(lineCells(*item, *bill, *terms));
  }
  Statement remove(database, "DELETE FROM resource_item WHERE id = ?");
  for (const records::ResourceItem* item : items) {
    if (isGone(item)) remove.run({cell(item->id())});
  }
  Statement removeEntry(database, "DELETE FROM subcontract WHERE id = ?");
  for (const records::Subcontract* entry : entries) {
    if (!isThere(entry)) removeEntry.run({cell(entry->id())});
  }

  for (const records::IndirectFeeGroup* group : feeGroups) {
    for (int row = 0; row < group->rows().size(); ++row) {
      fees.insert(static_cast<records::IndirectFeeItem*>(group->rows().at(row)));
    }
  }
  Statement updateFee(database, UpdateFee);
  Statement insertFee(database, InsertFee);
  Statement removeFee(database, "DELETE FROM fee_item WHERE id = ?");
  for (const records::IndirectFeeItem* fee : fees) {
    if (fee->parent() == nullptr) {
      removeFee.run({cell(fee->id())});
      continue;
    }
    const std::vector<QVariant> cells = feeCells(*fee);
    if (updateFee.run(cells) == 0) insertFee.run(cells);
  }

  if (taxed) {
    Statement removeFact(database, "DELETE FROM project_fact WHERE name = ?");
    Statement insertFact(database, InsertFact);
    const auto writeFact = [&](const std::string& name, const QVariant& value) {
      removeFact.run({cell(name)});
      insertFact.run({cell(name), value});
    };
    writeFact("tax_method", cell(project.facts.taxMethod));
    writeFact("tax_rate", cell(project.facts.taxRate));
  }

  Statement total(database,
                  "UPDATE cost_total SET budget = ?, excluded = ?, included = ?"
                  " WHERE node_id = ? AND category = ?");
  writeTotals(total, project, unitWorks);
}

}  // namespace store
