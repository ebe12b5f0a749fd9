#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <stdexcept>

namespace store {

/// A statement that failed: the engine's text and its own error number.
class SqlError : public std::runtime_error {
 public:
  SqlError(const QString& text, int code) : std::runtime_error(text.toStdString()), code_(code) {}
  int code() const { return code_; }

 private:
  int code_;
};

/// A connection to one database file. Statements that fail throw SqlError.
class Database {
 public:
  explicit Database(const QString& path);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  void run(const QString& sql);
  /// The first column of the first row; null when there is none.
  QVariant value(const QString& sql);
  QSqlQuery prepare(const QString& sql);
  /// Runs a prepared statement with its bound values.
  static void run(QSqlQuery& query);

 private:
  QString name_;
  QSqlDatabase connection_;
};

/// A transaction that is rolled back unless it was committed.
class Transaction {
 public:
  explicit Transaction(Database& database);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  void commit();

 private:
  Database& database_;
  bool open_ = true;
};

}  // namespace store
