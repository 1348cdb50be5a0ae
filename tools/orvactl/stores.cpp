// kv: key-value stores that a server keeps.
#include "files.h"
#include "views.h"

namespace orvactl {

namespace {

using Pairs = std::map<std::string, std::string>;

/// An open store. It is closed when all has been done. After a failure it is left open, because closing waits
/// for the server, and the process ends soon.
class Store {
public:
  using Control = orva::StoreControl<orva::throwing>;

  Store (Session &session, const Arguments &arguments, orva::StoreMode mode)
      : session_ (session), control_ (new Control (session.ask ().store (arguments.text ("FOLDER"), mode,
                                                                         arguments.text_or ("PREFIX", "")))) {
  }

  /// The store, within what is left of the time limit.
  Control ask () const { return control_->within (session_.clock ().left ()); }

  /// All that is in it, once it has been downloaded.
  Pairs pairs () const {
    ask ().wait_loaded ();
    Pairs all;
    while (auto change = control_->within (orva::Limit (0)).next_change ())
      if (change->value)
        all[change->key] = *change->value;
      else
        all.erase (change->key);
    return all;
  }

  /// Waits until the server has accepted everything, and closes the store.
  void finish () {
    ask ().flush ();
    close ();
  }
  void close () {
    control_->close ();
    delete control_;
    control_ = nullptr;
  }

private:
  Session &session_;
  Control *control_;
};

Exit get (Session &session, const Arguments &arguments) {
  Store store (session, arguments, orva::StoreMode::read);
  const Pairs pairs = store.pairs ();
  store.close ();
  const auto found = pairs.find (arguments.text ("KEY"));
  if (found == pairs.end ())
    throw Problem (Exit::not_found, "There is no key \"" + arguments.text ("KEY") + "\".");
  session.out ().one (found->second, shown (found->second));
  return Exit::done;
}

Exit set (Session &session, const Arguments &arguments) {
  Store store (session, arguments, orva::StoreMode::write);
  store.ask ().set (arguments.text ("KEY"), arguments.text ("VALUE"));
  store.finish ();
  session.out ().done ();
  return Exit::done;
}

Exit erase (Session &session, const Arguments &arguments) {
  Store store (session, arguments, orva::StoreMode::write);
  store.ask ().erase (arguments.text ("KEY"));
  store.finish ();
  session.out ().done ();
  return Exit::done;
}

Exit watch (Session &session, const Arguments &arguments) {
  Store store (session, arguments, orva::StoreMode::read);
  store.ask ().wait_loaded ();
  const auto time = arguments.time_if ("--for");
  const auto end = std::chrono::steady_clock::now () + time.value_or (orva::Limit (0));
  for (;;) {
    const auto left = end - std::chrono::steady_clock::now ();
    const auto change = store.ask ()
                            .within (time ? std::max (orva::Limit (0), orva::Limit (left)) : orva::no_limit)
                            .next_change ();
    if (!change)
      break;
    Json json = {{"event", change->value ? "set" : "erase"}, {"key", change->key}};
    if (change->value)
      json["value"] = *change->value;
    session.out ().event (json, change->value ? "set " + shown (change->key) + "=" + shown (*change->value)
                                              : "erase " + shown (change->key));
  }
  store.close ();
  return Exit::done;
}

std::string text_of (const Pairs &pairs) {
  return Json (pairs).dump (2, ' ', true) + "\n";
}

Exit dump (Session &session, const Arguments &arguments) {
  Store store (session, arguments, orva::StoreMode::read);
  const Pairs pairs = store.pairs ();
  store.close ();
  if (arguments.has ("--file")) {
    write_file (arguments.text ("--file"), text_of (pairs));
    session.out ().done ();
  } else if (session.out ().json ()) {
    session.out ().object (pairs);
  } else {
    for (const auto &[key, value] : pairs)
      session.out ().line (shown (key) + "=" + shown (value));
  }
  return Exit::done;
}

/// Waits until the server has accepted everything, as long as it goes on accepting.
void finish (Session &session, Store &store) {
  session.clock ().restart ();
  store.finish ();
}

Exit load (Session &session, const Arguments &arguments) {
  const Pairs pairs = read_pairs (arguments.text ("FILE"));
  Store store (session, arguments, orva::StoreMode::write);
  for (const auto &[key, value] : pairs)
    store.ask ().set (key, value);
  finish (session, store);
  if (session.out ().json ())
    session.out ().object ({{"set", pairs.size ()}});
  return Exit::done;
}

Exit sync (Session &session, const Arguments &arguments) {
  const Pairs wanted = read_pairs (arguments.text ("FILE"));
  const bool dry = arguments.has ("--dry-run");
  Store store (session, arguments, dry ? orva::StoreMode::read : orva::StoreMode::read_write);
  const Pairs present = store.pairs ();
  List list (session.out ());
  for (const auto &[key, value] : wanted) {
    const auto old = present.find (key);
    if (old != present.end () && old->second == value)
      continue;
    if (!dry)
      store.ask ().set (key, value);
    list.add ({{"event", "set"}, {"key", key}, {"value", value}}, "set " + shown (key) + "=" + shown (value));
  }
  for (const auto &[key, value] : present) {
    if (wanted.contains (key))
      continue;
    if (!dry)
      store.ask ().erase (key);
    list.add ({{"event", "erase"}, {"key", key}}, "erase " + shown (key));
  }
  if (dry)
    store.close ();
  else
    finish (session, store);
  list.end ();
  return Exit::done;
}

} // namespace

Family store_commands () {
  const Parameter folder = {"FOLDER", Takes::text, "the database of the server that the store is in"};
  const Parameter prefix = {"PREFIX", Takes::text, "of the keys; part of no key here", Need::optional};
  const Parameter key = {"KEY", Takes::text, "the key"};
  const Parameter file = {"FILE", Takes::file, "a JSON object of texts; - is the standard input"};
  return {{"kv get", "print the value of a key", {folder, key}, "orvactl kv get studio tally/A", get},
          {"kv set",
           "set the value of a key",
           {folder, key, {"VALUE", Takes::text, "its value"}},
           "orvactl kv set studio tally/A red",
           set},
          {"kv erase", "erase a key", {folder, key}, "orvactl kv erase studio tally/A", erase},
          {"kv watch",
           "print all pairs and then each change",
           {folder, prefix, {"--for", Takes::time, "end after this time"}},
           "orvactl kv watch studio tally/",
           watch},
          {"kv dump",
           "print all pairs",
           {folder, prefix, {"--file", Takes::file, "write them to this file, as a JSON object"}},
           "orvactl kv dump studio --file studio.json",
           dump},
          {"kv load",
           "set all pairs of a JSON file",
           {folder, file, prefix},
           "orvactl kv load studio studio.json",
           load},
          {"kv sync",
           "make a store like a JSON file: set what differs, erase what is not in it",
           {folder, file, prefix, {"--dry-run", Takes::nothing, "only say what would be done"}},
           "orvactl kv sync studio studio.json --dry-run",
           sync}};
}

} // namespace orvactl
