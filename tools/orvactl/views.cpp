#include "views.h"

#include <cstdio>

namespace orvactl {

Json json_of (orva::Position position, const orva::Timebase &base) {
  return {{"fields", position.fields ()}, {"frames", position.frames ()}, {"timecode", position.text (base)}};
}

Json json_of (const orva::ChannelState &state, orva::Channel channel, const orva::Timebase &base) {
  return {{"channel", std::string (1, channel.letter ())},
          {"clip", state.clip},
          {"status", word_for (status_words, state.status)},
          {"position", json_of (state.position, base)},
          {"length", json_of (state.length, base)},
          {"remaining", json_of (state.remaining, base)},
          {"speed", state.speed},
          {"repeat", word_for (repeat_words, state.repeat)},
          {"angle", state.angle},
          {"angles", state.angle_count},
          {"input", set_text (edit_track_words, state.input.tracks)},
          {"input_mode", state.input.mode == orva::InputMode::manual ? "manual" : "automatic"},
          {"precued", state.precued}};
}

Json json_of (const orva::Metadata &pairs) {
  Json object = Json::object ();
  for (const auto &[key, value] : pairs)
    object[key] = value;
  return object;
}

namespace {

Json start_json (const orva::TimecodeStart &start, const orva::Timebase &base) {
  const orva::Timebase counted (base.rate (), start.counting == orva::Counting::drop_frame, base.certain ());
  Json json = json_of (start.start, counted);
  json["counting"] = word_for (counting_words, start.counting);
  return json;
}

} // namespace

Json json_of (const orva::ClipInfo &info, const std::string &name, const orva::Timebase &base) {
  return {{"name", name},
          {"title", info.title},
          {"creator", info.creator},
          {"project", info.project},
          {"standard", word_for (standard_words, info.standard)},
          {"tracks", set_text (track_words, info.tracks)},
          {"length", json_of (info.length, base)},
          {"playback", word_for (playback_words, info.playback)},
          {"repeat", word_for (repeat_words, info.repeat)},
          {"loop_in", json_of (info.loop_in, base)},
          {"loop_out", json_of (info.loop_out, base)},
          {"trim_start", json_of (info.trim_start, base)},
          {"trim_end", json_of (info.trim_end, base)},
          {"read_only", info.read_only},
          {"timecode_source", word_for (source_words, info.timecode_source)},
          {"timecode", start_json (info.timecode, base)},
          {"recorded_timecode", start_json (info.recorded_timecode, base)},
          {"uuid", info.uuid},
          {"parent_uuid", info.parent_uuid},
          {"last_loaded", info.last_loaded},
          {"last_unloaded", info.last_unloaded},
          {"last_played", info.last_played},
          {"metadata_last_edited", info.metadata_last_edited},
          {"content_last_edited", info.content_last_edited},
          {"metadata", json_of (info.metadata)}};
}

std::string speed_text (double speed) {
  char text[32];
  std::snprintf (text, sizeof text, "%.4g", speed);
  return text;
}

std::string name_text (const std::string &name) {
  return name.empty () ? "-" : shown (name);
}

std::string input_text (orva::Input input) {
  const std::string tracks = set_text (edit_track_words, input.tracks);
  return (tracks == "none" ? "off" : tracks) + (input.mode == orva::InputMode::manual ? " manual" : "");
}

std::vector<std::string> channel_heading (bool servers) {
  std::vector<std::string> all = {"CH",        "CLIP",  "STATUS", "POSITION", "FRAME", "LENGTH", "FRAMES",
                                  "REMAINING", "SPEED", "REPEAT", "ANGLE",    "INPUT", "PRECUED"};
  if (servers)
    all.insert (all.begin (), "SERVER");
  return all;
}

namespace {

const char *colour_of (orva::Status status) {
  return status == orva::Status::playing     ? green
         : status == orva::Status::recording ? red
         : status == orva::Status::cueing    ? yellow
                                             : "";
}

} // namespace

std::vector<Cell> channel_row (const orva::ChannelState &state, orva::Channel channel,
                               const orva::Timebase &base) {
  const std::string angle = std::to_string (state.angle) + "/" + std::to_string (state.angle_count);
  return {{std::string (1, channel.letter ())},
          {name_text (state.clip)},
          {word_for (status_words, state.status), colour_of (state.status)},
          {state.position.text (base), "", true},
          {std::to_string (state.position.frames ()), "", true},
          {state.length.text (base), "", true},
          {std::to_string (state.length.frames ()), "", true},
          {state.remaining.text (base), "", true},
          {speed_text (state.speed), "", true},
          {word_for (repeat_words, state.repeat)},
          {angle, "", true},
          {input_text (state.input)},
          {std::to_string (state.precued), "", true}};
}

std::vector<std::pair<orva::Channel, orva::ChannelState>> states_of (Link &link, orva::Channels channels) {
  std::vector<std::pair<orva::Channel, orva::ChannelState>> states;
  for (const orva::Channel channel : channels)
    states.emplace_back (channel, link.ask ().channel (channel).state ());
  return states;
}

} // namespace orvactl
