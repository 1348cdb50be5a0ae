#include "commands.h"

#include <fmt/format.h>

namespace sim {

namespace {

// A message may not be longer than 32768 bytes; a row is closed well before.
constexpr std::size_t full_row = 16384;
constexpr std::size_t pairs_of_row = 200;

std::string prefix_of (const Arguments &arguments) {
  return arguments.maybe_text ("MetadataPrefix").value_or ("");
}

Writer started (const char *body, const std::string &name, const std::string &prefix, const char *list) {
  Writer out;
  out.open (body).text ("MetadataDatabase", name).text ("MetadataPrefix", prefix).open (list);
  return out;
}

void download_metadata (Call &call) {
  const std::string &name = call.arguments.text ("MetadataDatabase");
  const std::string prefix = prefix_of (call.arguments);
  const Pairs pairs = call.world.metadata.find (name, prefix);
  for (std::size_t next = 0; next < pairs.size ();) {
    Writer out = started ("metadata", name, prefix, "MetadataList");
    for (std::size_t in_row = 0;
         next < pairs.size () && in_row < pairs_of_row && out.result ().size () < full_row;
         ++in_row, ++next) {
      const auto &[key, value] = pairs[next];
      out.open ("Metadata")
          .text ("Key", key.substr (prefix.size ()))
          .text ("Value", value)
          .close ("Metadata");
    }
    call.row (out.close ("MetadataList").close ("metadata").take ());
  }
}

void maybe_refuse (World &world) {
  const std::uint32_t every = world.options.refuse_metadata;
  if (every != 0 && ++world.metadata_changes % every == 0)
    throw Refusal ("The change of metadata is refused, as this server was asked to do");
}

// Everyone who watches the database hears of it, the one who caused it included, but only of keys that start
// with the prefix of the watch.
struct Change {
  const char *body;
  const char *list;
  std::string name, prefix;
  std::vector<std::pair<std::string, std::string>> items; ///< full keys, and what is written for them
};

std::string written_change (const Change &change, const std::string &watched) {
  Writer out = started (change.body, change.name, change.prefix, change.list);
  bool any = false;
  for (const auto &[key, written] : change.items)
    if (key.starts_with (watched)) {
      out.raw (written);
      any = true;
    }
  return any ? out.close (change.list).close (change.body).take () : std::string ();
}

void report_change (World &world, const Change &change) {
  std::set<std::string> prefixes;
  world.each_client ([&] (const Client &client) {
    if (const auto watch = client.watched.find (change.name); watch != client.watched.end ())
      prefixes.insert (watch->second);
  });
  for (const std::string &watched : prefixes)
    if (std::string body = written_change (change, watched); !body.empty ())
      world.report_if (
          [name = change.name, watched] (const Client &client) {
            const auto watch = client.watched.find (name);
            return watch != client.watched.end () && watch->second == watched;
          },
          std::move (body));
}

void metadata_set (Call &call) {
  maybe_refuse (call.world);
  Change change = {"metadata_change",
                   "MetadataList",
                   call.arguments.text ("MetadataDatabase"),
                   prefix_of (call.arguments),
                   {}};
  for (const Element &pair : call.arguments.list ("MetadataList")) {
    const std::string &key = pair.child ("Key")->text, &value = pair.child ("Value")->text;
    if ((change.prefix + key).empty ())
      throw Refusal ("A key is empty");
    Writer out;
    out.open ("Metadata").text ("Key", key).text ("Value", value).close ("Metadata");
    change.items.emplace_back (change.prefix + key, out.take ());
  }
  Transaction transaction (call.world.database);
  for (const Element &pair : call.arguments.list ("MetadataList"))
    call.world.metadata.set (change.name, change.prefix + pair.child ("Key")->text,
                             pair.child ("Value")->text);
  transaction.finish ();
  report_change (call.world, change);
}

void metadata_erase (Call &call) {
  maybe_refuse (call.world);
  Change change = {
      "metadata_remove", "KeyList", call.arguments.text ("MetadataDatabase"), prefix_of (call.arguments), {}};
  Transaction transaction (call.world.database);
  for (const Element &key : call.arguments.list ("KeyList"))
    if (call.world.metadata.erase (change.name, change.prefix + key.text))
      change.items.emplace_back (change.prefix + key.text, Writer ().text ("Key", key.text).take ());
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
