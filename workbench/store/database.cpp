#include "workbench/store/database.h"

#include <QSqlError>
#include <atomic>

namespace store {
namespace {

SqlError errorOf(const QSqlError& error) {
  return {error.text(), error.nativeErrorCode().toInt()};
}

}  // namespace

Database::Database(const QString& path) {
  static std::atomic<int> number{0};
  name_ = QStringLiteral("project-%1").arg(++number);
  connection_ = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name_);
  connection_.setDatabaseName(path);
  // A project that is open elsewhere stays so for long: waiting would only freeze the window.
  connection_.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=100"));
  if (!connection_.open()) {
    const SqlError error = errorOf(connection_.lastError());
    connection_ = {};
    QSqlDatabase::removeDatabase(name_);
    throw error;
  }
}

Database::~Database() {
  connection_.close();
  connection_ = {};
  QSqlDatabase::removeDatabase(name_);
}

void Database::run(const QString& sql) {
  QSqlQuery query(connection_);
  if (!query.exec(sql)) throw errorOf(query.lastError());
}

QVariant Database::value(const QString& sql) {
  QSqlQuery query(connection_);
  query.setForwardOnly(true);
  if (!query.exec(sql)) throw errorOf(query.lastError());
  return query.next() ? query.value(0) : QVariant();
}

QSqlQuery Database::prepare(const QString& sql) {
  QSqlQuery query(connection_);
  query.setForwardOnly(true);
  if (!query.prepare(sql)) throw errorOf(query.lastError());
  return query;
}

void Database::run(QSqlQuery& query) {
  if (!query.exec()) throw errorOf(query.lastError());
}

Transaction::Transaction(Database& database) : database_(database) {
  database_.run(QStringLiteral("BEGIN"));
}

Transaction::~Transaction() {
  if (!open_) return;
  try {
    database_.run(QStringLiteral("ROLLBACK"));
  } catch (const SqlError&) {
    // The engine has already rolled back by itself, as it does when the disk is full.
  }
}

void Transaction::commit() {
  database_.run(QStringLiteral("COMMIT"));
  open_ = false;
}

}  // namespace store
