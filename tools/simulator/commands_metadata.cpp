#include "commands.h"

#include "message_limits.h"

#include <fmt/format.h>

namespace sim {

namespace {

// A message ends well before it is too long. A pair that does not fit into a message by itself is refused.
constexpr std::size_t full_message = 16384;
constexpr std::size_t items_of_message = 200;

std::string prefix_of (const Arguments &arguments) {
  return arguments.maybe_text ("MetadataPrefix").value_or ("");
}

// A list of keys or pairs that is sent in as many messages as necessary.
struct Told {
  const char *body;
  const char *list;
  std::string name, prefix;

  Writer started () const {
    Writer out;
    out.open (body).text ("MetadataDatabase", name).text ("MetadataPrefix", prefix).open (list);
    return out;
  }

  // Whether one more item fits into a message that has this size and this number of items.
  static bool has_room (std::size_t size, std::size_t count, const std::string &item) {
    return count == 0 || (count < items_of_message && size + item.size () < full_message);
  }

  std::vector<std::string> messages (const std::vector<std::string> &items) const {
    std::vector<std::string> all;
    for (std::size_t next = 0; next < items.size ();) {
      Writer out = started ();
      for (std::size_t count = 0;
           next < items.size () && has_room (out.result ().size (), count, items[next]); ++count)
        out.raw (items[next++]);
      all.push_back (out.close (list).close (body).take ());
    }
    return all;
  }
};

std::string written_pair (const std::string &key, const std::string &value) {
  Writer out;
  out.open ("Metadata").text ("Key", key).text ("Value", value).close ("Metadata");
  return out.take ();
}

// The next pairs, as many as fit into one message.
std::vector<std::string> next_pairs (const MetadataDatabases &databases, const Told &told,
                                     std::string &last) {
  std::vector<std::string> items;
  std::size_t size = told.started ().result ().size ();
  databases.each_after (told.name, told.prefix, last, [&] (const std::string &key, const std::string &value) {
    std::string item = written_pair (key.substr (told.prefix.size ()), value);
    if (!Told::has_room (size, items.size (), item))
      return false;
    size += item.size ();
    items.push_back (std::move (item));
    last = key;
    return true;
  });
  return items;
}

void download_metadata (Call &call) {
  const Told told = {"metadata", "MetadataList", call.arguments.text ("MetadataDatabase"),
                     prefix_of (call.arguments)};
  call.rows ([told, &databases = call.world.metadata, last = std::string ()] () mutable {
    return told.messages (next_pairs (databases, told, last));
  });
}

void maybe_refuse (World &world) {
  const std::uint32_t every = world.options.refuse_metadata;
  if (every != 0 && ++world.metadata_changes % every == 0)
    throw Refusal ("The change of metadata is refused, as this server was asked to do");
}

// A change to report to each client that watches the database, also to the client that made it. A client gets
// only the keys that start with the prefix it watches.
struct Change {
  Told told;
  std::vector<std::pair<std::string, std::string>> items; ///< full keys, and their text in the report
};

std::vector<std::string> items_under (const Change &change, const std::string &watched) {
  std::vector<std::string> items;
  for (const auto &[key, written] : change.items)
    if (key.starts_with (watched))
      items.push_back (written);
  return items;
}

void report_change (World &world, const Change &change) {
  const std::string &name = change.told.name;
  std::set<std::string> prefixes;
  world.each_client ([&] (const Client &client) {
    if (const auto watch = client.watched.find (name); watch != client.watched.end ())
      prefixes.insert (watch->second);
  });
  for (const std::string &watched : prefixes)
    for (std::string &body : change.told.messages (items_under (change, watched)))
      world.report_if (
          [name, watched] (const Client &client) {
            const auto watch = client.watched.find (name);
            return watch != client.watched.end () && watch->second == watched;
          },
          std::move (body));
}

void metadata_set (Call &call) {
  maybe_refuse (call.world);
  Change change = {{"metadata_change", "MetadataList", call.arguments.text ("MetadataDatabase"),
                    prefix_of (call.arguments)},
                   {}};
  const std::string &name = change.told.name, &prefix = change.told.prefix;
  for (const Element &pair : call.arguments.list ("MetadataList")) {
    const std::string &key = pair.child ("Key")->text, &value = pair.child ("Value")->text;
    if ((prefix + key).empty ())
      throw Refusal ("A key is empty");
    change.items.emplace_back (prefix + key, written_pair (key, value));
    if (change.told.messages ({change.items.back ().second}).front ().size () > longest_body)
      throw Refusal ("A key and its value are too long for a message");
  }
  Transaction transaction (call.world.database);
  for (const Element &pair : call.arguments.list ("MetadataList"))
    call.world.metadata.set (name, prefix + pair.child ("Key")->text, pair.child ("Value")->text);
  transaction.finish ();
  report_change (call.world, change);
}

void metadata_erase (Call &call) {
  maybe_refuse (call.world);
  Change change = {
      {"metadata_remove", "KeyList", call.arguments.text ("MetadataDatabase"), prefix_of (call.arguments)},
      {}};
  const std::string &name = change.told.name, &prefix = change.told.prefix;
  Transaction transaction (call.world.database);
  for (const Element &key : call.arguments.list ("KeyList"))
    if (call.world.metadata.erase (name, prefix + key.text))
      change.items.emplace_back (prefix + key.text, Writer ().text ("Key", key.text).take ());
  transaction.finish ();
  report_change (call.world, change);
}

void watch_metadata_database (Call &call) {
  call.client.watched[call.arguments.text ("MetadataDatabase")] = prefix_of (call.arguments);
}

void unwatch_metadata_database (Call &call) {
  const std::string &name = call.arguments.text ("MetadataDatabase");
  if (call.client.watched.erase (name) == 0)
    throw Refusal (fmt::format ("Metadata database '{}' is not being watched", name));
}

} // namespace

void add_metadata_commands (Handlers &handlers) {
  handlers["download_metadata"] = download_metadata;
  handlers["metadata_set"] = metadata_set;
  handlers["metadata_erase"] = metadata_erase;
  handlers["watch_metadata_database"] = watch_metadata_database;
  handlers["unwatch_metadata_database"] = unwatch_metadata_database;
}

} // namespace sim
