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

/// The rows of one statement under way. The statement goes back to its database at the end.
class Rows {
public:
  Rows (Rows &&other) = default;
  Rows &operator= (Rows &&) = delete;
  ~Rows ();

  /// Steps to the next row; false behind the last one.
  /// @throws Refusal when the database cannot be used now, for example because another program holds it.
  bool next ();
  std::string text (int column) const { return statement_->getColumn (column).getString (); }
  std::int64_t number (int column) const { return statement_->getColumn (column).getInt64 (); }

  /// Gives the value of a `?`, counted from 1, before the first row.
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

/// What the server keeps: a file, or memory that is gone with the process.
///
/// When another program holds the file, a change waits for it for a second. If that was not enough, the
/// changes that follow fail at once for some seconds, so that nobody else has to wait each time.
class Database {
public:
  /// @param path a file, made when it is not there; empty: in memory. @throws Refusal
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

  /// Runs a statement that gives no rows. @throws Refusal
  template <class... Values>
  void run (const std::string &sql, const Values &...values) {
    query (sql, values...).next ();
  }

  /// A statement whose values are still to be given. @throws Refusal
  Rows prepare (const std::string &sql);

private:
  friend class Rows;
  using Clock = std::chrono::steady_clock;
  [[noreturn]] void refuse (const SQLite::Exception &fault);
  void wait_again ();

  SQLite::Database handle_;
  std::map<std::string, Rows::Pool> idle_; ///< statements that nobody uses, by their text
  Clock::time_point impatient_until_{};
  bool impatient_ = false;
};

/// Changes that are made all together or, when it ends before `finish`, not at all. It may be inside another
/// one.
class Transaction {
public:
  explicit Transaction (Database &database) : database_ (database) { database_.run ("SAVEPOINT change"); }
  Transaction (const Transaction &) = delete;
  Transaction &operator= (const Transaction &) = delete;
  ~Transaction ();

  /// @throws Refusal, and nothing is changed then.
  void finish ();

private:
  Database &database_;
  bool finished_ = false;
};

} // namespace sim
