#pragma once

#include <SQLiteCpp/SQLiteCpp.h>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

class Database;

/// The rows of one running statement. The destructor returns the statement to its database for later use.
class Rows {
public:
  Rows (Rows &&other) = default;
  Rows &operator= (Rows &&) = delete;
  ~Rows ();

  /// Steps to the next row. @return false after the last one.
  /// @throws Refusal when the database cannot be used now, for example because another program holds it.
  bool next ();
  std::string text (int column) const { return statement_->getColumn (column).getString (); }
  std::int64_t number (int column) const { return statement_->getColumn (column).getInt64 (); }

  /// Sets the value of a `?`, counted from 1. Must be called before `next`.
  void bind (int place, std::string_view value) { statement_->bind (place, std::string (value)); }
  void bind (int place, std::int64_t value) { statement_->bind (place, value); }

private:
  friend class Database;
  using Pool = std::vector<std::unique_ptr<SQLite::Statement>>;
  Rows (Database &database, Pool &pool, std::unique_ptr<SQLite::Statement> statement)
      : database_ (&database), pool_ (&pool), statement_ (std::move (statement)) {}

  Database *database_;
  Pool *pool_;
  std::unique_ptr<SQLite::Statement> statement_;
};

/// The stored data of the server: in a file, or in the memory of the process.
///
/// When another program has locked the file, a change waits up to one second for it and then fails. For three
/// seconds after that, a change fails at once while the file is locked, so that clients do not wait each
/// time.
class Database {
public:
  /// @param path a file, which is created if necessary; empty: in memory. @throws Refusal
  explicit Database (const std::string &path);
  Database (const Database &) = delete;
  Database &operator= (const Database &) = delete;

  /// Starts a statement with values for its `?`. Its rows are read with `next`. @throws Refusal
  template <class... Values>
  Rows query (const std::string &sql, const Values &...values) {
    Rows rows = prepare (sql);
    int place = 0;
    (rows.bind (++place, values), ...);
    return rows;
  }

  /// Runs a statement that returns no rows. @throws Refusal
  template <class... Values>
  void run (const std::string &sql, const Values &...values) {
    query (sql, values...).next ();
  }

  /// A statement whose values are not set yet. @throws Refusal
  Rows prepare (const std::string &sql);

private:
  friend class Rows;
  using Clock = std::chrono::steady_clock;
  [[noreturn]] void refuse (const SQLite::Exception &fault);
  void restore_wait ();

  SQLite::Database handle_;
  std::map<std::string, Rows::Pool> idle_; ///< statements that are not in use, by their text
  Clock::time_point fail_fast_until_{};
  bool fails_fast_ = false;
};

/// Makes several changes one change: the destructor undoes them unless `finish` was called. May be nested.
class Transaction {
public:
  explicit Transaction (Database &database) : database_ (database) { database_.run ("SAVEPOINT change"); }
  Transaction (const Transaction &) = delete;
  Transaction &operator= (const Transaction &) = delete;
  ~Transaction ();

  /// @throws Refusal when this fails. Then nothing is changed.
  void finish ();

private:
  Database &database_;
  bool finished_ = false;
};

} // namespace sim
