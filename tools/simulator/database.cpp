#include "database.h"

#include <sqlite3.h>
#include <stdexcept>

namespace sim {

Rows::~Rows () {
  if (!statement_)
    return;
  sqlite3_reset (statement_);
  pool_->push_back (statement_);
}

bool Rows::next () {
  const int outcome = sqlite3_step (statement_);
  if (outcome != SQLITE_ROW && outcome != SQLITE_DONE)
    throw std::runtime_error (sqlite3_errmsg (sqlite3_db_handle (statement_)));
  return outcome == SQLITE_ROW;
}

std::string Rows::text (int column) const {
  const void *bytes = sqlite3_column_blob (statement_, column);
  const auto size = static_cast<std::size_t> (sqlite3_column_bytes (statement_, column));
  return bytes ? std::string (static_cast<const char *> (bytes), size) : std::string ();
}

std::int64_t Rows::number (int column) const {
  return sqlite3_column_int64 (statement_, column);
}

void Rows::bind (int place, std::string_view value) {
  sqlite3_bind_text64 (statement_, place, value.empty () ? "" : value.data (), value.size (),
                       SQLITE_TRANSIENT, SQLITE_UTF8);
}

void Rows::bind (int place, std::int64_t value) {
  sqlite3_bind_int64 (statement_, place, value);
}

Database::Database (const std::string &path) {
  const bool opened = sqlite3_open (path.empty () ? ":memory:" : path.c_str (), &handle_) == SQLITE_OK;
  if (!opened) {
    const std::string fault = sqlite3_errmsg (handle_);
    sqlite3_close (handle_);
    throw std::runtime_error (path + ": " + fault);
  }
  // A killed process loses nothing; only a fallen machine could, and that is not simulated.
  query ("PRAGMA journal_mode = WAL").next ();
  query ("PRAGMA synchronous = OFF").next ();
}

Database::~Database () {
  for (const auto &[sql, statements] : idle_)
    for (sqlite3_stmt *statement : statements)
      sqlite3_finalize (statement);
  sqlite3_close (handle_);
}

Rows Database::prepare (const std::string &sql) {
  Rows::Pool &pool = idle_[sql];
  if (!pool.empty ()) {
    sqlite3_stmt *statement = pool.back ();
    pool.pop_back ();
    return {pool, statement};
  }
  sqlite3_stmt *statement = nullptr;
  if (sqlite3_prepare_v2 (handle_, sql.c_str (), -1, &statement, nullptr) != SQLITE_OK)
    throw std::runtime_error (sql + ": " + sqlite3_errmsg (handle_));
  return {pool, statement};
}

} // namespace sim
