#include "channel_reports.h"

#include "listplay.h"
#include "world.h"

namespace sim {

namespace {

Writer started (const char *body, int channel) {
  Writer out;
  out.open (body).word ("Channel", channel);
  return out;
}

std::string status_body (const Player &player, int channel) {
  Writer out = started ("channel_status", channel);
  out.word ("ChannelStatus", player.status ());
  if (player.loaded ())
    out.text ("ClipID", player.cue.content.name);
  return out.close ("channel_status").take ();
}

std::string clipid_body (const Player &player, int channel) {
  return started ("channel_clipid", channel)
      .text ("ClipID", player.cue.content.name)
      .close ("channel_clipid")
      .take ();
}

std::string speed_body (const Player &player, int channel) {
  return started ("channel_speed", channel).fixed ("Speed", player.speed ()).close ("channel_speed").take ();
}

std::string timecode_body (const World &world, int channel) {
  Writer out = started ("channel_timecode", channel);
  out.number ("ClipPosition", world.player (channel).position ());
  write_display_timecode (out, world, channel);
  // No timecode is connected.
  out.open ("InputTimecode").boolean ("Valid", false).close ("InputTimecode");
  return out.close ("channel_timecode").take ();
}

std::string aux_audio_body (const Player &player, int channel) {
  Writer out = started ("channel_aux_audio_timecode", channel);
  return out.number ("ClipPosition", player.position ()).close ("channel_aux_audio_timecode").take ();
}

void write_loaded (Writer &out, const Player &player) {
  const Cue &cue = player.cue;
  if (cue.content.source != Source::live)
    out.number ("ClipLength", cue.content.length);
  out.word ("Interp", cue.content.interp).word ("Loop", cue.loop).number ("LoopIn", cue.loop_in);
  out.number ("LoopOut", cue.loop_out.value_or (player.last_field ())).word ("Playback", cue.playback);
  out.number ("AngleCount", static_cast<std::uint64_t> (cue.content.angles));
  out.number ("Angle", static_cast<std::uint64_t> (cue.angle));
  out.number ("AudioTrackCount", static_cast<std::uint64_t> (cue.content.audio_tracks));
}

std::string info_body (const Player &player, int channel) {
  Writer out = started ("channel_info", channel);
  out.open ("ChannelInformation").text ("ClipID", player.cue.content.name);
  if (player.loaded ())
    write_loaded (out, player);
  out.open ("EEStatus").number ("SonyEditMask", static_cast<std::uint64_t> (player.ee_mask));
  out.boolean ("AutoEE", player.auto_ee).close ("EEStatus");
  if (player.preview)
    out.word ("ProgramChannel", channel).word ("PreviewChannel", *player.preview);
  out.number ("PrecueCount", player.precued.size ()).word ("StealStatus", player.steal.status);
  out.boolean ("TransitionInProgress", player.in_transition ());
  if (player.loaded ())
    out.fixed ("NaturalSpeed", fixed_one);
  return out.close ("ChannelInformation").close ("channel_info").take ();
}

// The bodies that are compared with the last ones. Changes of the items of lists are not among them: they are
// reported when they happen.
std::vector<std::string> watched_bodies (const World &world, int channel, int kind) {
  if (kind == report_listplay)
    return air_bodies (world, channel, playlists);
  if (kind == report_chaseplay)
    return air_bodies (world, channel, chases);
  if (kind == report_timecode || kind == report_aux_audio)
    return {};
  return present_bodies (world, channel, kind);
}

} // namespace

std::vector<std::string> present_bodies (const World &world, int channel, int kind) {
  const Player &player = world.player (channel);
  switch (kind) {
  case report_status:
    return {status_body (player, channel)};
  case report_clipid:
    return {clipid_body (player, channel)};
  case report_speed:
    return {speed_body (player, channel)};
  case report_timecode:
    return {timecode_body (world, channel)};
  case report_info:
    return {info_body (player, channel)};
  case report_listplay:
    return list_bodies (world, channel, playlists);
  case report_chaseplay:
    return list_bodies (world, channel, chases);
  default:
    return {aux_audio_body (player, channel)};
  }
}

void write_timecode (Writer &out, std::string_view tag, const World &world, std::int64_t field,
                     bool drop_frame) {
  if (field != static_cast<std::int32_t> (field)) {
    out.open (tag).boolean ("Valid", false).close (tag);
    return;
  }
  out.open (tag).boolean ("Valid", true).text ("VideoStandard", world.standard.name);
  out.distance ("FieldNumber", field).text ("DropFrameFlag", drop_frame ? "df" : "ndf").close (tag);
}

void write_display_timecode (Writer &out, const World &world, int channel) {
  const Player &player = world.player (channel);
  const Content &content = player.cue.content;
  if (player.loaded ())
    write_timecode (out, "DisplayTimecode", world, content.first_field + player.position (),
                    content.drop_frame);
  else
    out.open ("DisplayTimecode").boolean ("Valid", false).close ("DisplayTimecode");
}

std::vector<std::pair<int, std::string>> ChannelReporter::news (const World &world, int channel) {
  std::vector<std::pair<int, std::string>> news;
  for (int kind = 0; kind < channel_report_count; ++kind) {
    std::vector<std::string> now = watched_bodies (world, channel, kind);
    std::vector<std::string> &last =
        reported_[static_cast<std::size_t> (channel)].bodies[static_cast<std::size_t> (kind)];
    for (std::size_t i = 0; i < now.size (); ++i)
      if (i >= last.size () || last[i] != now[i])
        news.emplace_back (kind, now[i]);
    last = std::move (now);
  }
  return news;
}

bool ChannelReporter::position_is_news (const World &world, int channel) {
  std::string now = timecode_body (world, channel);
  std::string &last = reported_[static_cast<std::size_t> (channel)].position;
  if (now == last)
    return false;
  last = std::move (now);
  return true;
}

} // namespace sim
