#include "control/state.h"

#include "vocabulary.h"

#include <fmt/format.h>

namespace sim {

namespace {

std::string word (std::string_view tag, int number) {
  return std::string (word_at (tag, number));
}

double number_of (Fixed value) {
  return static_cast<double> (value) / fixed_one;
}

std::string_view source_name (Source source) {
  switch (source) {
  case Source::clip:
    return "clip";
  case Source::vclip:
    return "vclip";
  case Source::live:
    return "live";
  default:
    return "nothing";
  }
}

// `HH:MM:SS:FF`, two fields to a frame; with drop frame `;` before the frames.
std::string timecode_text (const Standard &standard, std::int64_t field, bool drop_frame) {
  const std::int64_t frames_in_second =
      std::max<std::int64_t> ((standard.fields + standard.seconds * 2 - 1) / (standard.seconds * 2), 1);
  std::int64_t frame = std::max<std::int64_t> (field, 0) / 2;
  if (drop_frame && frames_in_second == 30) {
    const std::int64_t tens = frame / 17982, rest = frame % 17982;
    frame += 18 * tens + (rest < 2 ? 0 : 2 * ((rest - 2) / 1798));
  }
  const std::int64_t second = frame / frames_in_second;
  return fmt::format ("{:02}:{:02}:{:02}{}{:02}", second / 3600 % 24, second / 60 % 60, second % 60,
                      drop_frame ? ';' : ':', frame % frames_in_second);
}

Json list_json (const std::optional<LoadedList> &list) {
  if (!list)
    return nullptr;
  Json json = {{"id", list->id}, {"items", list->items.size ()}};
  json["now"] = list->now ? Json (*list->now) : Json ();
  json["next"] = list->next ? Json (*list->next) : Json ();
  return json;
}

Json names_json (const std::vector<std::string> &names) {
  return Json (names);
}

} // namespace

Json channel_json (const World &world, int channel) {
  const Player &player = world.player (channel);
  const Content &content = player.cue.content;
  Json json = {{"channel", word ("Channel", channel)}, {"status", word ("ChannelStatus", player.status ())}};
  json["source"] = source_name (content.source);
  json["clip"] = content.name;
  json["length"] = content.length;
  json["position"] = player.position ();
  json["timecode"] =
      timecode_text (world.standard, content.first_field + player.position (), content.drop_frame);
  json["speed"] = number_of (player.speed ());
  json["in"] = player.cue.in;
  json["out"] = player.cue.out.value_or (player.last_field ());
  json["loop"] = word ("Loop", player.cue.loop);
  json["loop_in"] = player.cue.loop_in;
  json["loop_out"] = player.cue.loop_out.value_or (player.last_field ());
  json["angle"] = player.cue.angle;
  json["edit_mask"] = player.edit_mask;
  json["ee_mask"] = player.ee_mask;
  json["auto_ee"] = player.auto_ee;
  json["precued"] = Json::array ();
  for (const Precued &next : player.precued)
    json["precued"].push_back (next.cue.content.name);
  json["list"] = list_json (player.list);
  json["chase"] = list_json (player.chase);
  return json;
}

Json channels_json (const World &world) {
  Json channels = Json::array ();
  for (int channel = 0; channel < channel_count; ++channel)
    channels.push_back (channel_json (world, channel));
  return channels;
}

Json clients_json (SteeredServer &server, std::size_t most) {
  Json clients = Json::array ();
  for (const Connection &connection : server.connections ()) {
    if (clients.size () >= most)
      break;
    Json &json = clients.emplace_back (
        Json{{"client", connection.number}, {"address", connection.address}, {"unsent", connection.unsent}});
    if (!connection.client)
      continue;
    Json kinds = Json::array ();
    for (const int kind : connection.client->reports)
      kinds.push_back (word ("ReportType", kind));
    Json channel_kinds = Json::array ();
    for (const auto &[channel, kind] : connection.client->channel_reports)
      channel_kinds.push_back (word ("Channel", channel) + ' ' + word ("ChannelReportType", kind));
    json["reports"] = kinds;
    json["channel_reports"] = channel_kinds;
  }
  return clients;
}

Json time_json (const World &world) {
  return {{"field", world.field ()},
          {"milliseconds", world.clock.milliseconds ()},
          {"paused", world.clock.paused ()},
          {"rate", world.clock.rate ()}};
}

Json faults_json (const Faults &faults) {
  Json list = Json::array ();
  for (const Rule &rule : faults.rules ())
    list.push_back (Json (rule.as_json ()));
  return list;
}

Json journal_entry_json (const Journal::Entry &entry) {
  Json json = {{"mark", entry.mark}, {"milliseconds", entry.milliseconds}, {"client", entry.client}};
  const Json message = json_of_message (entry.command);
  json["xid"] = entry.xid;
  json["command"] = nullptr;
  if (message.is_object () && message.begin ().value ().is_object ())
    for (const auto &[name, value] : message.begin ().value ().items ())
      if (name != "xid" && json["command"].is_null ()) {
        json["command"] = name;
        json["arguments"] = value.is_object () ? value : Json::object ();
      }
  json["text"] = entry.command;
  json["faults"] = entry.faults;
  json["answers"] = entry.answers;
  json["left_out"] = entry.left_out;
  return json;
}

Json journal_report_json (const Journal::Report &report) {
  return {{"mark", report.mark},
          {"milliseconds", report.milliseconds},
          {"client", report.client},
          {"report", json_of_message (report.message)},
          {"text", report.message}};
}

Json lists_json (const World &world) {
  return {{"playlists", names_json (world.lists.names_after (playlists, "", -1))},
          {"chases", names_json (world.lists.names_after (chases, "", -1))}};
}

Json state_json (SteeredServer &server, std::size_t most_clients) {
  const World &world = server.world ();
  Json json = {{"address", world.options.address},
               {"name", world.options.name},
               {"standard", world.standard.name},
               {"time", time_json (world)},
               {"disk", {{"total", world.total_space ()}, {"available", world.available_space ()}}},
               {"clips", world.clips.count ()},
               {"mark", server.journal ().mark ()}};
  json["channels"] = channels_json (world);
  json["lists"] = lists_json (world);
  json["client_count"] = server.connections ().size ();
  json["clients"] = clients_json (server, most_clients);
  json["faults"] = faults_json (server.faults ());
  return json;
}

} // namespace sim
