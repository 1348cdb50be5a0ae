#include "database.h"

#include "values.h"

#include <fmt/format.h>
#include <sqlite3.h>

namespace sim {

namespace {

constexpr int patience = 1000; // milliseconds
constexpr std::chrono::seconds impatience{3};

} // namespace

Rows::~Rows () {
  if (!statement_)
    return;
  statement_->tryReset ();
  pool_->push_back (std::move (statement_));
}

bool Rows::next () {
  try {
    return !statement_->isDone () && statement_->executeStep ();
  } catch (const SQLite::Exception &fault) {
    statement_->tryReset ();
    database_->refuse (fault);
  }
}

Database::Database (const std::string &path) try
    : handle_ (path.empty () ? ":memory:" : path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE, patience) {
  // Without synchronous writes, nothing is lost when the process is killed. Only a crash of the machine can
  // lose changes, which is acceptable for a simulator.
  query ("PRAGMA journal_mode = WAL").next ();
  query ("PRAGMA synchronous = OFF").next ();
} catch (const std::exception &fault) {
  throw Refusal (fmt::format ("{}: {}", path, fault.what ()));
}

Rows Database::prepare (const std::string &sql) {
  if (fails_fast_ && Clock::now () > fail_fast_until_)
    restore_wait ();
  Rows::Pool &pool = idle_[sql];
  if (pool.empty ()) {
    try {
      pool.push_back (std::make_unique<SQLite::Statement> (handle_, sql));
    } catch (const SQLite::Exception &fault) {
      refuse (fault);
    }
  }
  std::unique_ptr<SQLite::Statement> statement = std::move (pool.back ());
  pool.pop_back ();
  return {*this, pool, std::move (statement)};
}

void Database::restore_wait () {
  fails_fast_ = false;
  sqlite3_busy_timeout (handle_.getHandle (), patience);
}

void Database::refuse (const SQLite::Exception &fault) {
  if (fault.getErrorCode () == SQLITE_BUSY) {
    fails_fast_ = true;
    fail_fast_until_ = Clock::now () + impatience;
    sqlite3_busy_timeout (handle_.getHandle (), 0);
  }
  throw Refusal (fmt::format ("The database cannot be used now: {}", fault.what ()));
}

Transaction::~Transaction () {
  if (finished_)
    return;
  try {
    database_.run ("ROLLBACK TO change");
    database_.run ("RELEASE change");
  } catch (const Refusal &) {
    // The database has already undone everything itself, as it does when the disk is full.
  }
}

void Transaction::finish () {
  database_.run ("RELEASE change");
  finished_ = true;
}

} // namespace sim
