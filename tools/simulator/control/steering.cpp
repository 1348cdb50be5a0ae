#include "control/steering.h"

#include "clip_file.h"
#include "vocabulary.h"
#include "wire.h"

#include <algorithm>
#include <fmt/format.h>
#include <stdexcept>

namespace sim {

namespace {

[[noreturn]] void refuse (const std::string &text) {
  throw std::runtime_error (text);
}

void check_members (const Json &json, const std::vector<std::string> &known) {
  if (!json.is_object ())
    refuse ("the body is not an object");
  for (const auto &[name, value] : json.items ())
    if (std::find (known.begin (), known.end (), name) == known.end ())
      refuse (fmt::format ("there is no member \"{}\"", name));
}

template <typename Value>
Value member (const Json &json, const char *name) {
  try {
    return json.at (name).get<Value> ();
  } catch (const Json::exception &) {
    refuse (fmt::format ("the member \"{}\" is missing or holds the wrong kind of value", name));
  }
}

// A client without a connection. It keeps the messages that are sent to it.
class InnerClient : public Client {
public:
  explicit InnerClient (const World &world) : Client (-1, world.options.log_prefix + "control") {}
  void send (std::string message) override {
    size_ += message.size ();
    messages.push_back (std::move (message));
  }
  void produce (Producer producer) override {
    while (!has_too_much () && producer ())
      continue;
  }
  /// Nobody else is served meanwhile, so the length of the answers is limited.
  bool has_too_much () const { return size_ > most_bytes; }
  bool lags () const override { return false; }

  std::vector<std::string> messages;

private:
  static constexpr std::size_t most_bytes = 4u << 20;
  std::size_t size_ = 0;
};

// Carries out a command and returns the bodies of its answers.
std::vector<Element> answers_to (World &world, InnerClient &client, const Element &command) {
  Element root;
  root.name = "cmd";
  root.children = {{"xid", "1", {}}, command};
  client.messages.clear ();
  world.receive (client, canonical_text (root));
  if (client.has_too_much ())
    refuse ("the answers are too long; a client of the protocol gets answers of any length");
  std::vector<Element> bodies;
  for (const std::string &message : client.messages)
    bodies.push_back (parse_document (message).children.back ());
  return bodies;
}

Element only_command (const Json &command) {
  if (!command.is_object () || command.size () != 1)
    refuse ("a command is an object such as {\"play\": {\"Channel\": \"A\"}}");
  return command_of_json (command.begin ().key (), command.begin ().value ());
}

// Carries out a command. @throws Refusal when it is refused
void run (World &world, const Json &command) {
  InnerClient client (world);
  for (const Element &body : answers_to (world, client, only_command (command)))
    if (body.name == "error")
      throw Refusal (body.child ("ErrorMessage")->text);
}

// Whether a client that registers for this kind of report gets the present value.
bool has_present_value (const std::string &kind) {
  return kind == "temperature" || kind == "disk_space" || kind == "ltc_input" || kind == "chase_ltc_timecode";
}

std::string attribute (const std::string &name, const Json &value) {
  if (value == Json (true))
    return name;
  if (!value.is_array ())
    return name + '=' + (value.is_string () ? value.get<std::string> () : value.dump ());
  std::string words;
  for (const Json &entry : value)
    words += (words.empty () ? "" : ",") + (entry.is_string () ? entry.get<std::string> () : entry.dump ());
  return name + '=' + words;
}

std::vector<std::string> attributes_of (const Json &json) {
  if (!json.is_object ())
    refuse ("the attributes of a clip are an object");
  std::vector<std::string> attributes;
  for (const auto &[name, value] : json.items ())
    if (name == "meta" && value.is_object ())
      for (const auto &[key, text] : value.items ())
        attributes.push_back (attribute ("meta." + key, text));
    else if (value != Json (false))
      attributes.push_back (attribute (name, value));
  return attributes;
}

} // namespace

Json run_commands (World &world, const Json &commands) {
  InnerClient client (world);
  Json results = Json::array ();
  for (const Json &command : commands.is_array () ? commands : Json::array ({commands})) {
    Json answers = Json::array ();
    for (const Element &body : answers_to (world, client, only_command (command)))
      answers.push_back ({{body.name, json_of (body)}});
    results.push_back (std::move (answers));
  }
  return {{"answers", commands.is_array () ? results : results.front ()}};
}

void set_channel (World &world, int channel, const Json &wanted) {
  check_members (wanted, {"clip", "position", "speed", "play"});
  const std::string letter (word_at ("Channel", channel));
  if (wanted.contains ("clip") && wanted["clip"].is_null ())
    run (world, {{"unload", {{"Channel", letter}}}});
  else if (wanted.contains ("clip"))
    run (world, {{"cue_clip", {{"Channel", letter}, {"ClipID", member<std::string> (wanted, "clip")}}}});
  if (wanted.contains ("position"))
    run (world, {{"gotocmd",
                  {{"Channel", letter}, {"GotoPosition", whole_number (wanted, "position", UINT32_MAX)}}}});
  if (wanted.contains ("play") && !member<bool> (wanted, "play"))
    run (world, {{"stop", {{"Channel", letter}}}});
  else if (wanted.contains ("speed"))
    run (world,
         {{"play",
           {{"Channel", letter},
            {"Speed", fixed_text (static_cast<Fixed> (
                          std::clamp (member<double> (wanted, "speed"), -32767.0, 32767.0) * fixed_one))}}}});
  else if (wanted.contains ("play"))
    run (world, {{"play", {{"Channel", letter}}}});
}

void set_clip (World &world, const std::string &name, const Json &attributes) {
  const Clip clip = clip_from (world, name, attributes_of (attributes));
  world.check_unused (Source::clip, name);
  Clips::Change change (world.clips);
  const bool anew = world.clips.exists (name);
  if (anew)
    world.clips.remove (name);
  world.clips.add (clip);
  change.finish ();
  if (anew)
    world.report_clip ("clip_deleted", name);
  world.report_clip ("clip_created", name);
  world.report_disk_space ();
  world.report_news ();
}

void drop_clip (World &world, const std::string &name) {
  world.check_unused (Source::clip, name);
  world.clips.remove (name);
  world.report_clip ("clip_deleted", name);
  world.report_disk_space ();
  world.report_news ();
}

Json clip_json (World &world, const std::string &name) {
  Writer out;
  out.open ("clip");
  write_clip_info (out, world.clips.find (name));
  return json_of (parse_document (out.close ("clip").take ()).children.front ());
}

Json clip_names_json (World &world, const std::string &after, std::uint64_t most) {
  return world.clips.names_after (after, std::nullopt,
                                  static_cast<int> (std::min<std::uint64_t> (most, 10'000)));
}

void push_report (World &world, const Json &report) {
  check_members (report, {"kind", "channel", "body", "everyone"});
  const Json body = report.value ("body", Json ());
  if (!body.is_object () || body.size () != 1)
    refuse ("the member \"body\" is an object such as {\"temperature\": {\"Temperature10\": 480}}");
  const std::string text = canonical_text (element_of (body.begin ().key (), body.begin ().value ()));
  if (report.contains ("everyone") && member<bool> (report, "everyone")) {
    world.report_if ([] (const Client &) { return true; }, text);
  } else if (report.contains ("channel")) {
    const int channel = word_number ("Channel", member<std::string> (report, "channel"));
    const int kind = word_number ("ChannelReportType", member<std::string> (report, "kind"));
    if (channel < 0 || channel >= channel_count || kind < 0)
      refuse ("there is no such channel or kind of channel report");
    world.report_channel (channel, kind, text);
  } else {
    const std::string kind = member<std::string> (report, "kind");
    if (word_number ("ReportType", kind) < 0)
      refuse (fmt::format ("there is no kind of report '{}'", kind));
    if (has_present_value (kind))
      world.present_reports[kind] = text;
    world.report (kind, text);
  }
  world.report_news ();
}

void set_pace (SteeredServer &server, const Json &pace) {
  check_members (pace, {"paused", "rate"});
  Clock &clock = server.world ().clock;
  if (pace.contains ("rate")) {
    const auto rate = member<double> (pace, "rate");
    if (!(rate >= 0.001 && rate <= 1000))
      refuse ("the rate must be from 0.001 to 1000");
    clock.set_rate (rate);
  }
  if (pace.contains ("paused"))
    clock.pause (member<bool> (pace, "paused"));
  server.pace_changed ();
}

void step (SteeredServer &server, const Json &step) {
  constexpr int most = 1'000'000;
  check_members (step, {"fields"});
  const int fields = static_cast<int> (whole_number (step, "fields", most));
  if (fields == 0)
    refuse ("a step has at least one field");
  server.world ().clock.step (fields);
  server.world ().pass_fields (fields);
}

} // namespace sim
