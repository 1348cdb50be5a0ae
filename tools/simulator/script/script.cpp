#include "script/script.h"

#include "control/state.h"
#include "faults/message_summary.h"

#include <fmt/format.h>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace sim {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds look_again{5};
constexpr std::uint64_t usual_patience = 5000;

[[noreturn]] void refuse (const std::string &text) {
  throw std::runtime_error (text);
}

milliseconds milliseconds_of (const Json &json, const char *name, std::uint64_t otherwise) {
  constexpr std::uint64_t most = 1'000'000'000;
  if (!json.contains (name))
    return milliseconds (otherwise);
  if (!json[name].is_number_unsigned () || json[name].get<std::uint64_t> () > most)
    refuse (fmt::format ("\"{}\" is not a whole number from 0 to {}", name, most));
  return milliseconds (json[name].get<std::uint64_t> ());
}

void check_members (const Json &json, const std::vector<std::string> &known) {
  if (!json.is_object ())
    refuse (fmt::format ("{} is not an object", json_text (json)));
  for (const auto &[name, value] : json.items ())
    if (std::find (known.begin (), known.end (), name) == known.end ())
      refuse (fmt::format ("there is no member \"{}\"", name));
}

std::string text_member (const Json &json, const char *name, const std::string &otherwise) {
  if (!json.contains (name))
    return otherwise;
  if (!json[name].is_string ())
    refuse (fmt::format ("\"{}\" is not a text", name));
  return json[name].get<std::string> ();
}

std::string file_text (const std::string &file) {
  std::ifstream stream (file);
  if (!stream)
    refuse ("it cannot be read");
  std::ostringstream text;
  text << stream.rdbuf ();
  return text.str ();
}

} // namespace

Script::Script (asio::io_context &context, ControlApi &api, const std::string &file)
    : api_ (api), timer_ (context) {
  try {
    const Json json = parse_json (file_text (file));
    const Json &steps = json.is_object () && json.contains ("steps") ? json["steps"] : json;
    if (!steps.is_array ())
      refuse ("the steps are not a list");
    for (const Json &step : steps)
      try {
        steps_.push_back (step_from (step));
      } catch (const std::exception &problem) {
        refuse (fmt::format ("step {}: {}", steps_.size () + 1, problem.what ()));
      }
  } catch (const std::exception &problem) {
    refuse (fmt::format ("{}: {}", file, problem.what ()));
  }
}

Script::Step Script::step_from (const Json &json) {
  check_members (
      json, {"after_ms", "server", "do", "faults", "commands", "expect", "within_ms", "forbid", "for_ms"});
  if (json.contains ("do") + json.contains ("faults") + json.contains ("commands") +
          json.contains ("expect") + json.contains ("forbid") !=
      1)
    refuse ("a step has one of \"do\", \"faults\", \"commands\", \"expect\" and \"forbid\"");
  Step step;
  step.after = milliseconds_of (json, "after_ms", 0);
  step.server = text_member (json, "server", "");
  if (json.contains ("do"))
    step.request = request_from (json["do"]);
  else if (json.contains ("faults"))
    step.request = {"POST", "/faults", {}, json_text (json["faults"])};
  else if (json.contains ("commands"))
    step.request = {"POST", "/commands", {}, json_text (json["commands"])};
  else if (json.contains ("expect"))
    step.kind = Step::Kind::expect;
  else
    step.kind = Step::Kind::forbid;
  if (step.kind == Step::Kind::expect)
    step.span = milliseconds_of (json, "within_ms", usual_patience);
  if (step.kind == Step::Kind::forbid)
    step.span = milliseconds_of (json, "for_ms", usual_patience);
  if (step.kind != Step::Kind::act)
    step.pattern = pattern_from (json[step.kind == Step::Kind::expect ? "expect" : "forbid"]);
  if (!step.server.empty ())
    step.request.query["server"] = step.server;
  return step;
}

ControlRequest Script::request_from (const Json &json) {
  check_members (json, {"method", "path", "body"});
  ControlRequest request;
  request.path = text_member (json, "path", "");
  if (json.contains ("body"))
    request.body = json_text (json["body"]);
  request.method = text_member (json, "method", request.body.empty () ? "GET" : "POST");
  return request;
}

Script::Pattern Script::pattern_from (const Json &json) {
  check_members (json, {"command", "channel", "client", "arguments"});
  Pattern pattern;
  pattern.command = text_member (json, "command", "*");
  pattern.channel = text_member (json, "channel", "");
  if (json.contains ("client") && !json["client"].is_number_unsigned ())
    refuse ("\"client\" is not a number");
  pattern.client = json.contains ("client") ? static_cast<int> (whole_number (json, "client", INT32_MAX)) : 0;
  pattern.arguments = json.value ("arguments", Json::object ());
  if (!pattern.arguments.is_object ())
    refuse ("\"arguments\" is not an object");
  return pattern;
}

void Script::start (std::function<void (std::string)> ended) {
  ended_ = std::move (ended);
  take_next ();
}

void Script::take_next () {
  if (now_ == steps_.size ())
    return ended_ ("");
  timer_.expires_after (steps_[now_].after);
  timer_.async_wait ([this] (const asio::error_code &error) {
    if (!error)
      begin ();
  });
}

void Script::begin () {
  const Step &step = steps_[now_];
  if (step.kind == Step::Kind::act)
    return act (step);
  until_ = asio::steady_timer::clock_type::now () + step.span;
  watch ();
}

void Script::act (const Step &step) {
  const ControlReply reply = api_.handle (step.request);
  if (reply.status != 200)
    return fail (fmt::format ("{} {} fails: {}", step.request.method, step.request.path, reply.body));
  ++now_;
  take_next ();
}

void Script::watch () {
  const Step &step = steps_[now_];
  const bool expects = step.kind == Step::Kind::expect;
  const bool found = find (step);
  const bool late = asio::steady_timer::clock_type::now () >= until_;
  if (found && !expects)
    return fail (fmt::format ("a forbidden '{}' was sent", step.pattern.command));
  if (late && !found && expects)
    return fail (fmt::format ("the expected '{}' was not sent within {} ms", step.pattern.command,
                              step.span.count ()));
  if (found || late) {
    ++now_;
    return take_next ();
  }
  timer_.expires_after (look_again);
  timer_.async_wait ([this] (const asio::error_code &error) {
    if (!error)
      watch ();
  });
}

// Whether a client has sent a matching command after the one that was found last. Remembers the one found.
bool Script::find (const Step &step) {
  std::uint64_t &mark = marks_[step.server];
  for (const Journal::Entry *entry : api_.server_of (step.server).journal ().since (mark))
    if (matches (step.pattern, *entry)) {
      mark = entry->mark;
      return true;
    }
  return false;
}

bool Script::matches (const Pattern &pattern, const Journal::Entry &entry) {
  const MessageSummary summary = summary_of (entry.command);
  if ((pattern.command != "*" && pattern.command != summary.name) ||
      (pattern.client != 0 && pattern.client != entry.client) ||
      (!pattern.channel.empty () && !summary.channels.contains (pattern.channel)))
    return false;
  if (pattern.arguments.empty ())
    return true;
  const Json arguments = journal_entry_json (entry)["arguments"];
  for (const auto &[name, value] : pattern.arguments.items ())
    if (!arguments.contains (name) || arguments[name] != value)
      return false;
  return true;
}

void Script::fail (const std::string &problem) {
  ended_ (fmt::format ("step {}: {}", now_ + 1, problem));
}

} // namespace sim
