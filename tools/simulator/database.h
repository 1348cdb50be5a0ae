#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace sim {

/// The rows of one statement under way. The statement goes back to its database at the end.
class Rows {
public:
  Rows (Rows &&other) noexcept : pool_ (other.pool_), statement_ (other.statement_) {
    other.statement_ = nullptr;
  }
  Rows &operator= (Rows &&) = delete;
  ~Rows ();

  /// Steps to the next row; false behind the last one. @throws std::runtime_error
  bool next ();
  std::string text (int column) const;
  std::int64_t number (int column) const;

  /// Gives the value of a `?`, counted from 1, before the first row.
  void bind (int place, std::string_view value);
  void bind (int place, std::int64_t value);

private:
  friend class Database;
  using Pool = std::vector<sqlite3_stmt *>;
  Rows (Pool &pool, sqlite3_stmt *statement) : pool_ (&pool), statement_ (statement) {}

  Pool *pool_;
  sqlite3_stmt *statement_;
};

/// What the server keeps: a file, or memory that is gone with the process.
class Database {
public:
  /// @param path a file, made when it is not there; empty: in memory. @throws std::runtime_error
  explicit Database (const std::string &path);
  Database (const Database &) = delete;
  Database &operator= (const Database &) = delete;
  ~Database ();

  /// Starts a statement with values for its `?`. Its rows are read with `next`.
  template <class... Values>
  Rows query (const std::string &sql, const Values &...values) {
    Rows rows = prepare (sql);
    int place = 0;
    (rows.bind (++place, values), ...);
    return rows;
  }

  /// Runs a statement that gives no rows.
  template <class... Values>
  void run (const std::string &sql, const Values &...values) {
    query (sql, values...).next ();
  }

  /// A statement whose values are still to be given.
  Rows prepare (const std::string &sql);

private:
  sqlite3 *handle_ = nullptr;
  std::map<std::string, Rows::Pool> idle_; ///< statements that nobody uses, by their text
};

/// Changes that are made all together or, when it ends before `finish`, not at all. It may stand in another.
class Transaction {
public:
  explicit Transaction (Database &database) : database_ (database) { database_.run ("SAVEPOINT change"); }
  Transaction (const Transaction &) = delete;
  Transaction &operator= (const Transaction &) = delete;
  ~Transaction () {
    if (!finished_)
      database_.run ("ROLLBACK TO change");
    database_.run ("RELEASE change");
  }
  void finish () { finished_ = true; }

private:
  Database &database_;
  bool finished_ = false;
};

} // namespace sim
