#include "metadata.h"

namespace sim {

MetadataDatabases::MetadataDatabases (Database &database) : database_ (database) {
  database_.run (
      "CREATE TABLE IF NOT EXISTS metadata (name TEXT NOT NULL, key TEXT NOT NULL, value TEXT NOT NULL, "
      "PRIMARY KEY (name, key)) WITHOUT ROWID");
}

void MetadataDatabases::each_after (
    const std::string &name, const std::string &prefix, const std::string &last,
    const std::function<bool (const std::string &key, const std::string &value)> &visit) const {
  Rows rows =
      database_.query ("SELECT key, value FROM metadata WHERE name = ? AND key >= ? AND key > ? ORDER BY key",
                       name, prefix, last);
  while (rows.next ())
    if (const std::string key = rows.text (0); !key.starts_with (prefix) || !visit (key, rows.text (1)))
      return;
}

void MetadataDatabases::set (const std::string &name, const std::string &key, const std::string &value) {
  database_.run ("INSERT OR REPLACE INTO metadata VALUES (?, ?, ?)", name, key, value);
}

bool MetadataDatabases::erase (const std::string &name, const std::string &key) {
  Rows rows = database_.query ("DELETE FROM metadata WHERE name = ? AND key = ? RETURNING 1", name, key);
  const bool was_there = rows.next ();
  while (rows.next ())
    continue;
  return was_there;
}

} // namespace sim
