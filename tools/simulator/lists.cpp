#include "lists.h"

#include "message_limits.h"
#include "wire.h"

#include <fmt/format.h>

namespace sim {

Lists::Lists (Database &database) : database_ (database) {
  database_.run ("CREATE TABLE IF NOT EXISTS lists (kind INTEGER NOT NULL, id TEXT NOT NULL, "
                 "PRIMARY KEY (kind, id)) WITHOUT ROWID");
  database_.run ("CREATE TABLE IF NOT EXISTS list_items (kind INTEGER NOT NULL, id TEXT NOT NULL, "
                 "place INTEGER NOT NULL, item TEXT NOT NULL, PRIMARY KEY (kind, id, place)) WITHOUT ROWID");
}

bool Lists::exists (const ListKind &kind, const std::string &id) const {
  return database_.query ("SELECT 1 FROM lists WHERE kind = ? AND id = ?", kind.number, id).next ();
}

void Lists::check_exists (const ListKind &kind, const std::string &id) const {
  if (!exists (kind, id))
    throw Refusal (fmt::format ("{} '{}' does not exist", kind.name, id));
}

std::vector<std::string> Lists::names_after (const ListKind &kind, const std::string &last, int most) const {
  std::vector<std::string> names;
  Rows rows = database_.query ("SELECT id FROM lists WHERE kind = ? AND id > ? ORDER BY id LIMIT ?",
                               kind.number, last, std::int64_t{most});
  while (rows.next ())
    names.push_back (rows.text (0));
  return names;
}

std::vector<Item> Lists::find (const ListKind &kind, const std::string &id) const {
  return items_from (kind, id, 0, -1);
}

std::vector<Item> Lists::items_from (const ListKind &kind, const std::string &id, std::int64_t first,
                                     int most) const {
  check_exists (kind, id);
  std::vector<Item> items;
  Rows rows = database_.query (
      "SELECT item FROM list_items WHERE kind = ? AND id = ? AND place >= ? ORDER BY place LIMIT ?",
      kind.number, id, first, std::int64_t{most});
  while (rows.next ())
    items.push_back (item_of (Arguments (parse_document (rows.text (0))), kind));
  return items;
}

std::uint64_t Lists::changes (const ListKind &kind, const std::string &id) const {
  const auto found = changes_.find ({kind.number, id});
  return found == changes_.end () ? 0 : found->second;
}

void Lists::store (const ListKind &kind, const std::string &id, const std::vector<Item> &items) {
  Transaction transaction (database_);
  database_.run ("INSERT OR REPLACE INTO lists VALUES (?, ?)", kind.number, id);
  database_.run ("DELETE FROM list_items WHERE kind = ? AND id = ?", kind.number, id);
  std::int64_t place = 0;
  for (const Item &item : items) {
    Writer out;
    write_item (out, item, kind);
    database_.run ("INSERT INTO list_items VALUES (?, ?, ?, ?)", kind.number, id, place++, out.result ());
  }
  transaction.finish ();
  ++changes_[{kind.number, id}];
}

void Lists::remove (const ListKind &kind, const std::string &id) {
  check_exists (kind, id);
  Transaction transaction (database_);
  database_.run ("DELETE FROM lists WHERE kind = ? AND id = ?", kind.number, id);
  database_.run ("DELETE FROM list_items WHERE kind = ? AND id = ?", kind.number, id);
  transaction.finish ();
  ++changes_[{kind.number, id}];
}

void Lists::rename (const ListKind &kind, const std::string &from, const std::string &to) {
  const std::vector<Item> items = find (kind, from);
  if (to.empty ())
    throw Refusal (fmt::format ("A {} needs a name", kind.id));
  check_name_length (to);
  if (exists (kind, to))
    throw Refusal (fmt::format ("{} '{}' exists already", kind.name, to));
  Transaction transaction (database_);
  remove (kind, from);
  store (kind, to, items);
  transaction.finish ();
}

} // namespace sim
