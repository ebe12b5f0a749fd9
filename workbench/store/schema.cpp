#include "workbench/store/schema.h"

#include <QStringList>
#include <vector>

#include "workbench/store/database.h"

namespace store {
namespace {

// Statements keep to what every SQL server has. Decimals are text, since no engine's own number
// type is exact; flags are 0 and 1.
QStringList toVersion1() {
  return {
      QStringLiteral("CREATE TABLE project_fact ("
                     " name text NOT NULL PRIMARY KEY, value text NOT NULL)"),
      QStringLiteral("CREATE TABLE cost_account ("
                     " id integer NOT NULL PRIMARY KEY,"
                     " parent_id integer REFERENCES cost_account (id),"
                     " position integer NOT NULL, source_id text NOT NULL, code text NOT NULL,"
                     " name text NOT NULL, default_for integer)"),
      QStringLiteral("CREATE TABLE structure_node ("
                     " id integer NOT NULL PRIMARY KEY,"
                     " parent_id integer REFERENCES structure_node (id),"
                     " position integer NOT NULL, kind integer NOT NULL, source_id text NOT NULL,"
                     " code text NOT NULL, name text NOT NULL, specialty text NOT NULL,"
                     " declared_bills text, declared_resources text, declared_fees text)"),
      QStringLiteral("CREATE TABLE bill ("
                     " id integer NOT NULL PRIMARY KEY,"
                     " section_id integer NOT NULL REFERENCES structure_node (id),"
                     " position integer NOT NULL, source_id text NOT NULL, code text NOT NULL,"
                     " name text NOT NULL, features text NOT NULL, unit text NOT NULL,"
                     " account_id integer REFERENCES cost_account (id), quantity text NOT NULL,"
                     " unit_price text, amount text)"),
      QStringLiteral("CREATE TABLE resource_item ("
                     " id integer NOT NULL PRIMARY KEY,"
                     " unit_work_id integer NOT NULL REFERENCES structure_node (id),"
                     " category integer NOT NULL, position integer NOT NULL,"
                     " account_id integer REFERENCES cost_account (id), code text NOT NULL,"
                     " name text NOT NULL, spec text NOT NULL, unit text NOT NULL,"
                     " quantity text NOT NULL, price text NOT NULL, tax_rate text NOT NULL,"
                     " budget_amount text NOT NULL, excluded_amount text NOT NULL,"
                     " included_amount text NOT NULL, owner_supplied integer NOT NULL,"
                     " provisional integer NOT NULL, price_adjustable integer NOT NULL,"
                     " associated integer NOT NULL, annotation text NOT NULL)"),
      QStringLiteral("CREATE TABLE budget_item ("
                     " id integer NOT NULL PRIMARY KEY,"
                     " bill_id integer NOT NULL REFERENCES bill (id),"
                     " position integer NOT NULL,"
                     " resource_item_id integer NOT NULL REFERENCES resource_item (id),"
                     " source_id text NOT NULL, category integer NOT NULL, code text NOT NULL,"
                     " name text NOT NULL, spec text NOT NULL, unit text NOT NULL,"
                     " content text NOT NULL, price text NOT NULL, tax_rate text NOT NULL,"
                     " amount text NOT NULL, owner_supplied integer NOT NULL,"
                     " provisional integer NOT NULL, price_adjustable integer NOT NULL)"),
      // Foreign keys are looked up backwards when a resource item goes.
      QStringLiteral("CREATE INDEX budget_item_resource ON budget_item (resource_item_id)"),
      // One row for each category of each unit work; category -1 is the unit work itself, and node
      // 0 with category -1 the project.
      QStringLiteral("CREATE TABLE cost_total ("
                     " node_id integer NOT NULL, category integer NOT NULL,"
                     " budget text NOT NULL, excluded text NOT NULL, included text NOT NULL,"
                     " PRIMARY KEY (node_id, category))"),
      QStringLiteral("CREATE TABLE fee_group ("
                     " id integer NOT NULL PRIMARY KEY,"
                     " parent_id integer REFERENCES fee_group (id), position integer NOT NULL,"
                     " unit_work_id integer REFERENCES structure_node (id),"
                     " source_id text NOT NULL, code text NOT NULL, name text NOT NULL)"),
      QStringLiteral("CREATE TABLE fee_item ("
                     " id integer NOT NULL PRIMARY KEY,"
                     " group_id integer NOT NULL REFERENCES fee_group (id),"
                     " position integer NOT NULL, source_id text NOT NULL, code text NOT NULL,"
                     " name text NOT NULL, basis text NOT NULL,"
                     " account_id integer REFERENCES cost_account (id), base text, rate text,"
                     " amount text NOT NULL)"),
  };
}

// Bookings. What was entered by hand is kept apart from what follows from bill lines: up to here an
// item had either the one or the other. Marks follow from bookings, of which there were none.
QStringList toVersion2() {
  return {
      QStringLiteral("ALTER TABLE resource_item ADD COLUMN own_quantity text NOT NULL DEFAULT '0'"),
      QStringLiteral("UPDATE resource_item SET own_quantity = quantity"
                     " WHERE id NOT IN (SELECT resource_item_id FROM budget_item)"),
      QStringLiteral("UPDATE resource_item SET associated = 0 WHERE associated <> 0"),
      QStringLiteral("CREATE TABLE pooling ("
                     " budget_item_id integer NOT NULL REFERENCES budget_item (id),"
                     " resource_item_id integer NOT NULL REFERENCES resource_item (id),"
                     " quantity text NOT NULL,"
                     " PRIMARY KEY (budget_item_id, resource_item_id))"),
      QStringLiteral("CREATE INDEX pooling_resource ON pooling (resource_item_id)"),
      QStringLiteral("CREATE TABLE bill_line ("
                     " resource_item_id integer NOT NULL REFERENCES resource_item (id),"
                     " bill_id integer NOT NULL REFERENCES bill (id),"
                     " associated integer NOT NULL, summary integer NOT NULL,"
                     " summary_unit text NOT NULL, coefficient text NOT NULL,"
                     " content text, price text, price_expression text NOT NULL,"
                     " PRIMARY KEY (resource_item_id, bill_id))"),
  };
}

// What an estimator says about a bill. Without it the cost counts the tender quantity, as before.
QStringList toVersion3() {
  return {
      QStringLiteral("ALTER TABLE bill ADD COLUMN type text NOT NULL DEFAULT ''"),
      QStringLiteral("ALTER TABLE bill ADD COLUMN remark text NOT NULL DEFAULT ''"),
      QStringLiteral("ALTER TABLE bill ADD COLUMN expression text NOT NULL DEFAULT ''"),
      QStringLiteral("ALTER TABLE bill ADD COLUMN cost_quantity text"),
      QStringLiteral("CREATE TABLE quantity_line ("
                     " bill_id integer NOT NULL REFERENCES bill (id), position integer NOT NULL,"
                     " remark text NOT NULL, expression text NOT NULL,"
                     " PRIMARY KEY (bill_id, position))"),
  };
}

// What an indirect fee costs, where that departs from the budget: no amount, no departure.
QStringList toVersion4() {
  return {
      QStringLiteral("ALTER TABLE fee_item ADD COLUMN cost_base text"),
      QStringLiteral("ALTER TABLE fee_item ADD COLUMN cost_rate text"),
      QStringLiteral("ALTER TABLE fee_item ADD COLUMN cost_amount text"),
  };
}

// Subcontracts. Until now every item counted in cost.
QStringList toVersion5() {
  return {
      // What follows (quantity_now and the amounts) is stored like the amounts of items.
      QStringLiteral("CREATE TABLE subcontract ("
                     " id integer NOT NULL PRIMARY KEY, position integer NOT NULL,"
                     " code text NOT NULL, name text NOT NULL, features text NOT NULL,"
                     " unit text NOT NULL, contract_type text NOT NULL, metering integer NOT NULL,"
                     " attachment text NOT NULL, content_quota text NOT NULL,"
                     " price_expiry_date text NOT NULL, applicable_area text NOT NULL,"
                     " remark text NOT NULL, price text NOT NULL, tax_rate text NOT NULL,"
                     " quantity text NOT NULL, account_id integer REFERENCES cost_account (id),"
                     " quantity_now text NOT NULL, excluded_amount text NOT NULL,"
                     " included_amount text NOT NULL)"),
      QStringLiteral("CREATE TABLE subcontract_bill ("
                     " id integer NOT NULL PRIMARY KEY,"
                     " subcontract_id integer NOT NULL REFERENCES subcontract (id),"
                     " bill_id integer NOT NULL REFERENCES bill (id), position integer NOT NULL,"
                     " UNIQUE (subcontract_id, bill_id))"),
      QStringLiteral("ALTER TABLE resource_item ADD COLUMN linked integer NOT NULL DEFAULT 1"),
      QStringLiteral("ALTER TABLE resource_item ADD COLUMN subcontract_id integer"
                     " REFERENCES subcontract (id)"),
      // Looked up when an entry goes.
      QStringLiteral("CREATE INDEX resource_item_subcontract ON resource_item (subcontract_id)"
                     " WHERE subcontract_id IS NOT NULL"),
  };
}

}  // namespace

void migrate(Database& database, int version) {
  const std::vector<QStringList> steps = {toVersion1(), toVersion2(), toVersion3(), toVersion4(),
                                          toVersion5()};
  static_assert(SchemaVersion == 5, "each version has its step above");
  for (std::size_t step = static_cast<std::size_t>(version); step < steps.size(); ++step) {
    for (const QString& statement : steps[step]) database.run(statement);
  }
  database.run(QStringLiteral("PRAGMA user_version = %1").arg(SchemaVersion));
}

}  // namespace store
