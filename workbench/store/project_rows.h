#pragma once

#include <QtGlobal>
#include <functional>
#include <stdexcept>

#include "workbench/records/project.h"

namespace store {

class Database;

/// Rows that do not hold together; the text (Chinese, UTF-8) names the table and the row.
class BadRows : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Hears how many rows are done; false cancels.
using RowProgress = std::function<bool(qint64 rows)>;

/// Writes a whole project into empty tables, inside the caller's transaction. False when cancelled.
bool writeProject(Database& database, records::Project& project, const RowProgress& progress);

/// Fills an empty project from the tables. Throws BadRows and SqlError; false when cancelled.
bool readProject(Database& database, records::Project& project, const RowProgress& progress);

/// Writes what the changes have left, and the totals that follow, inside the caller's transaction.
void writeChanges(Database& database, records::Project& project, const records::ChangeSet& changes);

}  // namespace store
