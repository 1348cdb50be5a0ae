#include "commands.h"

#include "message_limits.h"

#include <fmt/format.h>

namespace sim {

namespace {

const std::string &key_of (Call &call) {
  const std::string &key = call.arguments.text ("Key");
  if (key.empty ())
    throw Refusal ("A key is empty");
  return key;
}

std::string change_body (const std::string &key, const std::string &value) {
  Writer out;
  return out.open ("userdict_change")
      .text ("Key", key)
      .text ("Value", value)
      .close ("userdict_change")
      .take ();
}

void check_owner (const Call &call, const std::string &key) {
  const auto known = call.world.dictionary.find (key);
  if (known != call.world.dictionary.end () && known->second.owner != 0 &&
      known->second.owner != call.client.number)
    throw Refusal (fmt::format ("Key '{}' belongs to another client", key));
}

void change_entry (Call &call, int owner) {
  const std::string &key = key_of (call);
  check_owner (call, key);
  check_size ("The entry", change_body (key, call.arguments.text ("Value")).size ());
  call.world.dictionary[key] = {call.arguments.text ("Value"), owner};
  report_key (call.world, key, call.arguments.text ("Value"));
}

void userdict_set (Call &call) {
  change_entry (call, 0);
}

void userdict_own (Call &call) {
  change_entry (call, call.client.number);
}

void userdict_erase (Call &call) {
  const std::string &key = key_of (call);
  check_owner (call, key);
  if (call.world.dictionary.erase (key) != 0)
    report_key (call.world, key, "");
}

void userdict_watch (Call &call) {
  const std::string &key = key_of (call);
  call.client.watched_keys.insert (key);
  call.answer (empty_body ("ok"));
  if (const auto known = call.world.dictionary.find (key); known != call.world.dictionary.end ())
    call.world.send_report (call.client, change_body (key, known->second.value));
}

void userdict_unwatch (Call &call) {
  call.client.watched_keys.erase (key_of (call));
}

} // namespace

void report_key (World &world, const std::string &key, const std::string &value) {
  world.report_if ([key] (const Client &client) { return client.watched_keys.contains (key); },
                   change_body (key, value));
}

void add_dictionary_commands (Handlers &handlers) {
  handlers["userdict_set"] = userdict_set;
  handlers["userdict_own"] = userdict_own;
  handlers["userdict_erase"] = userdict_erase;
  handlers["userdict_watch"] = userdict_watch;
  handlers["userdict_unwatch"] = userdict_unwatch;
}

} // namespace sim
