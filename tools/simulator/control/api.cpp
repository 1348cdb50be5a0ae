#include "control/api.h"

#include "clip_file.h"
#include "control/state.h"
#include "control/steering.h"
#include "vocabulary.h"

#include <fmt/format.h>
#include <functional>
#include <stdexcept>

namespace sim {

namespace {

/// A request that is refused, with its HTTP status.
struct Refused : std::runtime_error {
  Refused (int http_status, const std::string &text) : std::runtime_error (text), status (http_status) {}
  int status;
};

// The arguments of a handler: the server, the part of the path after the first slash, and the request.
struct ApiCall {
  SteeredServer &server;
  std::string rest;
  const ControlRequest &request;

  Json body () const { return parse_json (request.body); }

  std::string query (const std::string &name, const std::string &otherwise) const {
    const auto found = request.query.find (name);
    return found == request.query.end () ? otherwise : found->second;
  }

  std::uint64_t number (const std::string &name, std::uint64_t otherwise) const {
    const auto found = request.query.find (name);
    if (found == request.query.end ())
      return otherwise;
    const auto value = read_unsigned (found->second, INT64_MAX);
    if (!value)
      throw Refused (400, fmt::format ("'{}' of {} is not a number", found->second, name));
    return *value;
  }

  int rest_number () const {
    const auto value = read_unsigned (rest, INT32_MAX);
    if (!value)
      throw Refused (404, fmt::format ("'{}' is not a number", rest));
    return static_cast<int> (*value);
  }
};

using Route = std::function<Json (const ApiCall &)>;

const Json done = Json::object ({{"ok", true}});

Json get_state (const ApiCall &call) {
  return state_json (call.server);
}

int channel_of_rest (const ApiCall &call) {
  const int channel = word_number ("Channel", call.rest);
  if (channel < 0 || channel >= channel_count)
    throw Refused (404, fmt::format ("there is no channel '{}'", call.rest));
  return channel;
}

Json get_channels (const ApiCall &call) {
  if (call.rest.empty ())
    return channels_json (call.server.world ());
  return channel_json (call.server.world (), channel_of_rest (call));
}

Json put_channel (const ApiCall &call) {
  const int channel = channel_of_rest (call);
  set_channel (call.server.world (), channel, call.body ());
  return channel_json (call.server.world (), channel);
}

Json get_clips (const ApiCall &call) {
  World &world = call.server.world ();
  if (!call.rest.empty ()) {
    if (!world.clips.exists (call.rest))
      throw Refused (404, fmt::format ("there is no clip '{}'", call.rest));
    return clip_json (world, call.rest);
  }
  const std::uint64_t most = call.number ("limit", 1000);
  return clip_names_json (world, call.query ("after", ""), most);
}

Json put_clip (const ApiCall &call) {
  set_clip (call.server.world (), call.rest, call.body ());
  return clip_json (call.server.world (), call.rest);
}

Json delete_clip (const ApiCall &call) {
  if (!call.server.world ().clips.exists (call.rest))
    throw Refused (404, fmt::format ("there is no clip '{}'", call.rest));
  drop_clip (call.server.world (), call.rest);
  return done;
}

Json post_commands (const ApiCall &call) {
  return run_commands (call.server.world (), call.body ());
}

Json post_reports (const ApiCall &call) {
  push_report (call.server.world (), call.body ());
  return done;
}

Json get_time (const ApiCall &call) {
  return time_json (call.server.world ());
}

Json put_time (const ApiCall &call) {
  set_pace (call.server, call.body ());
  return get_time (call);
}

Json post_step (const ApiCall &call) {
  if (call.rest != "step")
    throw Refused (404, "there is no such path");
  step (call.server, call.body ());
  return get_time (call);
}

Json post_reset (const ApiCall &call) {
  call.server.start_over ();
  return done;
}

Json get_journal (const ApiCall &call) {
  const std::uint64_t most = call.number ("limit", 1000);
  Json entries = Json::array ();
  for (const Journal::Entry *entry : call.server.journal ().since (call.number ("since", 0)))
    if (entries.size () < most)
      entries.push_back (journal_entry_json (*entry));
  return {{"mark", call.server.journal ().mark ()}, {"entries", entries}};
}

Json get_reports (const ApiCall &call) {
  const Journal &journal = call.server.journal ();
  const std::uint64_t most = call.number ("limit", 1000);
  Json entries = Json::array ();
  for (const Journal::Report *report : journal.reports_since (call.number ("since", 0)))
    if (entries.size () < most)
      entries.push_back (journal_report_json (*report));
  return {{"mark", journal.report_mark ()}, {"entries", entries}};
}

Json get_clients (const ApiCall &call) {
  return clients_json (call.server);
}

Json delete_client (const ApiCall &call) {
  if (!call.server.close_client (call.rest_number (), call.query ("how", "close") == "reset"))
    throw Refused (404, fmt::format ("there is no client {}", call.rest));
  return done;
}

// Sends the body to the client without changing it.
Json post_client (const ApiCall &call) {
  if (!call.server.send_bytes (call.rest_number (), call.request.body))
    throw Refused (404, fmt::format ("there is no client {}", call.rest));
  return done;
}

Json get_faults (const ApiCall &call) {
  return faults_json (call.server.faults ());
}

Json post_faults (const ApiCall &call) {
  constexpr std::size_t most_rules = 1000;
  const nlohmann::json body = nlohmann::json::parse (json_text (call.body ()));
  const bool one = body.is_object () && !body.contains ("faults");
  std::vector<Rule> rules = rules_from (one ? nlohmann::json::array ({body}) : body);
  if (call.server.faults ().rules ().size () + rules.size () > most_rules)
    throw Refused (409, fmt::format ("there cannot be more than {} faults", most_rules));
  Json ids = Json::array ();
  for (Rule &rule : rules)
    ids.push_back (call.server.faults ().add (std::move (rule)));
  return {{"ids", ids}};
}

Json delete_faults (const ApiCall &call) {
  if (call.rest.empty ())
    call.server.faults ().clear ();
  else if (!call.server.faults ().remove (call.rest_number ()))
    throw Refused (404, fmt::format ("there is no fault {}", call.rest));
  return done;
}

const std::map<std::string, Route> &routes () {
  static const auto &table = *new std::map<std::string, Route>{
      {"GET state", get_state},         {"GET channels", get_channels},
      {"PUT channels", put_channel},    {"GET clips", get_clips},
      {"PUT clips", put_clip},          {"DELETE clips", delete_clip},
      {"POST commands", post_commands}, {"POST reports", post_reports},
      {"GET reports", get_reports},     {"GET time", get_time},
      {"PUT time", put_time},           {"POST time", post_step},
      {"POST reset", post_reset},       {"GET journal", get_journal},
      {"GET clients", get_clients},     {"DELETE clients", delete_client},
      {"POST clients", post_client},    {"GET faults", get_faults},
      {"POST faults", post_faults},     {"DELETE faults", delete_faults},
  };
  return table;
}

ControlReply error_reply (int status, const std::string &text) {
  return {status, json_text ({{"error", text}})};
}

} // namespace

ControlReply ControlApi::handle (const ControlRequest &request) noexcept {
  try {
    return {200, json_text (carry_out (request))};
  } catch (const Refused &refused) {
    return error_reply (refused.status, refused.what ());
  } catch (const Refusal &refusal) {
    return error_reply (409, refusal.what ());
  } catch (const std::exception &problem) {
    return error_reply (400, problem.what ());
  }
}

std::string ControlApi::page_state (const std::string &server) noexcept {
  constexpr std::uint64_t most_commands = 20;
  constexpr std::size_t most_clients = 100;
  try {
    SteeredServer &chosen = server_of (server);
    Json json = state_json (chosen, most_clients);
    Json &commands = json["commands"] = Json::array ();
    const std::uint64_t mark = chosen.journal ().mark ();
    for (const Journal::Entry *entry : chosen.journal ().since (mark - std::min (mark, most_commands)))
      commands.push_back (journal_entry_json (*entry));
    return json_text (json);
  } catch (const std::exception &) {
    return "";
  }
}

Json ControlApi::carry_out (const ControlRequest &request) {
  const std::string path = request.path.substr (std::min<std::size_t> (1, request.path.size ()));
  const std::size_t slash = std::min (path.find ('/'), path.size ());
  const auto route = routes ().find (request.method + ' ' + path.substr (0, slash));
  if (route == routes ().end ())
    throw Refused (404, fmt::format ("there is no {} {}", request.method, request.path));
  const auto server = request.query.find ("server");
  SteeredServer &chosen = server_of (server == request.query.end () ? "" : server->second);
  return route->second ({chosen, path.substr (std::min (slash + 1, path.size ())), request});
}

SteeredServer &ControlApi::server_of (const std::string &address) const {
  for (SteeredServer *server : servers_)
    if (address.empty () || server->address () == address)
      return *server;
  throw Refused (404, fmt::format ("there is no server {}", address));
}

} // namespace sim
