#include "faults/rule.h"

#include "base64.h"

#include <algorithm>
#include <fmt/format.h>
#include <fstream>
#include <functional>
#include <map>
#include <stdexcept>

namespace sim {

namespace {

using nlohmann::json;

// In the order of the enumeration.
constexpr std::string_view fault_names[] = {
    "refuse",    "delay", "no_answer", "twice",  "out_of_order", "wrong_kind", "malformed",
    "oversized", "cut",   "reset",     "pieces", "stop_reading", "freeze",     "refuse_connections",
    "go_away"};

[[noreturn]] void refuse (const std::string &text) {
  throw std::runtime_error (text);
}

std::string text_of (const json &value) {
  if (!value.is_string ())
    refuse (fmt::format ("{} is not a text", value.dump ()));
  return value.get<std::string> ();
}

Fault fault_of (const json &value) {
  const auto found = std::find (std::begin (fault_names), std::end (fault_names), text_of (value));
  if (found == std::end (fault_names))
    refuse (fmt::format ("there is no fault {}", value.dump ()));
  return static_cast<Fault> (found - fault_names);
}

std::uint64_t count_of (const json &value) {
  constexpr std::uint64_t most = 1'000'000'000'000;
  if (!value.is_number_unsigned () || value.get<std::uint64_t> () > most)
    refuse (fmt::format ("{} is not a whole number from 0 to {}", value.dump (), most));
  return value.get<std::uint64_t> ();
}

bool flag_of (const json &value) {
  if (!value.is_boolean ())
    refuse (fmt::format ("{} is neither true nor false", value.dump ()));
  return value.get<bool> ();
}

double chance_of (const json &value) {
  if (!value.is_number () || !(value.get<double> () >= 0 && value.get<double> () <= 1))
    refuse (fmt::format ("{} is not a number from 0 to 1", value.dump ()));
  return value.get<double> ();
}

std::pair<std::uint64_t, std::uint64_t> bounds_of (const json &value) {
  if (!value.is_array ())
    return {count_of (value), count_of (value)};
  if (value.size () != 2)
    refuse (fmt::format ("{} does not hold two bounds", value.dump ()));
  const std::pair<std::uint64_t, std::uint64_t> bounds (count_of (value[0]), count_of (value[1]));
  if (bounds.first > bounds.second)
    refuse (fmt::format ("the bounds {} are the wrong way round", value.dump ()));
  return bounds;
}

std::string channel_of (const json &value) {
  const std::string letter = text_of (value);
  if (letter.size () != 1 || letter[0] < 'A' || letter[0] > 'L')
    refuse (fmt::format ("{} is not a channel from A to L", value.dump ()));
  return letter;
}

std::string base64_bytes (const json &value) {
  const std::optional<std::string> bytes = bytes_of_base64 (text_of (value));
  if (!bytes)
    refuse (fmt::format ("{} is not base64", value.dump ()));
  return *bytes;
}

void set_member (Rule &rule, const std::string &name, const json &value) {
  const std::map<std::string, std::function<void ()>> setters = {
      {"id", [] {}},
      {"seen", [] {}},
      {"applied", [] {}},
      {"fault", [&] { rule.fault = fault_of (value); }},
      {"command", [&] { rule.command = text_of (value); }},
      {"report", [&] { rule.report = text_of (value); }},
      {"channel", [&] { rule.channel = channel_of (value); }},
      {"client",
       [&] { rule.client.text = value.is_string () ? text_of (value) : std::to_string (count_of (value)); }},
      {"nth", [&] { rule.nth = count_of (value); }},
      {"chance", [&] { rule.chance = chance_of (value); }},
      {"times", [&] { rule.times = count_of (value); }},
      {"row", [&] { rule.row = count_of (value); }},
      {"ms", [&] { rule.ms = bounds_of (value); }},
      {"overtake", [&] { rule.overtake = flag_of (value); }},
      {"text", [&] { rule.text = text_of (value); }},
      {"code", [&] { rule.code = text_of (value); }},
      {"body", [&] { rule.body = text_of (value); }},
      {"message", [&] { rule.message = text_of (value); }},
      {"message_base64", [&] { rule.message = base64_bytes (value); }},
      {"bytes", [&] { rule.bytes = count_of (value); }},
      {"for_ms", [&] { rule.for_ms = count_of (value); }},
      {"everyone", [&] { rule.everyone = flag_of (value); }},
  };
  const auto setter = setters.find (name);
  if (setter == setters.end ())
    refuse ("there is no such member");
  setter->second ();
}

// Faults that do not need a message to apply to.
bool can_be_lasting (Fault fault) {
  return fault == Fault::reset || fault >= Fault::stop_reading;
}

void check (const Rule &rule) {
  if (!rule.command.empty () && !rule.report.empty ())
    refuse ("a rule is about a command or about a report, not about both");
  if (rule.is_lasting () && !can_be_lasting (rule.fault))
    refuse ("this fault needs a \"command\" or a \"report\" to apply to");
  if (rule.command.empty () &&
      (rule.fault == Fault::refuse || rule.fault == Fault::wrong_kind || rule.fault == Fault::out_of_order))
    refuse ("this fault is about answers and needs a \"command\"");
  constexpr std::uint64_t most_bytes = 1'000'000;
  if (rule.fault == Fault::oversized && rule.bytes > most_bytes)
    refuse (fmt::format ("an oversized message has at most {} bytes", most_bytes));
  if (rule.fault == Fault::pieces && rule.bytes == 0u)
    refuse ("a piece has at least one byte");
}

} // namespace

Rule Rule::from (const json &source) {
  if (!source.is_object ())
    refuse ("a fault is an object such as {\"fault\": \"refuse\", \"command\": \"play\"}");
  if (!source.contains ("fault"))
    refuse ("the member \"fault\" is missing");
  Rule rule;
  for (const auto &[name, value] : source.items ())
    try {
      set_member (rule, name, value);
    } catch (const std::exception &problem) {
      refuse (fmt::format ("member \"{}\": {}", name, problem.what ()));
    }
  check (rule);
  return rule;
}

std::string_view name_of (Fault fault) {
  return fault_names[static_cast<std::size_t> (fault)];
}

json Rule::as_json () const {
  nlohmann::json out = {{"id", id}, {"fault", name_of (fault)}, {"seen", seen}, {"applied", applied}};
  const auto put = [&] (const char *name, const auto &value, bool wanted) {
    if (wanted)
      out[name] = value;
  };
  put ("command", command, !command.empty ());
  put ("report", report, !report.empty ());
  put ("channel", channel, !channel.empty ());
  put ("client", client.text, !client.text.empty ());
  put ("nth", nth, nth != 0);
  put ("chance", chance, chance < 1);
  put ("times", times, times != UINT64_MAX);
  put ("row", row, row != 1);
  put ("ms", ms, fault == Fault::delay || fault == Fault::pieces);
  put ("overtake", overtake, overtake);
  put ("text", text, fault == Fault::refuse);
  put ("code", code, fault == Fault::refuse);
  put ("body", body.value_or (""), body.has_value ());
  put ("message_base64", base64_of (message.value_or ("")), message.has_value ());
  put ("bytes", bytes.value_or (0), bytes.has_value ());
  put ("for_ms", for_ms.value_or (0), for_ms.has_value ());
  put ("everyone", everyone, everyone);
  return out;
}

bool Rule::concerns (const MessageSummary &summary) const {
  const std::string &wanted = summary.root == "cmd" ? command : report;
  if (wanted.empty () || (wanted != "*" && wanted != summary.name))
    return false;
  return channel.empty () || summary.channels.contains (channel);
}

std::vector<Rule> rules_from (const json &source) {
  const json &list = source.is_object () && source.contains ("faults") ? source["faults"] : source;
  if (!list.is_array ())
    refuse ("the faults are not a list");
  std::vector<Rule> rules;
  for (const json &entry : list)
    try {
      rules.push_back (Rule::from (entry));
    } catch (const std::exception &problem) {
      refuse (fmt::format ("fault {}: {}", rules.size () + 1, problem.what ()));
    }
  return rules;
}

std::vector<Rule> read_rules (const std::string &file) {
  std::ifstream stream (file);
  if (!stream)
    refuse (file + " cannot be read");
  try {
    return rules_from (json::parse (stream));
  } catch (const std::exception &problem) {
    refuse (fmt::format ("{}: {}", file, problem.what ()));
  }
}

} // namespace sim
