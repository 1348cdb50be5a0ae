#include "commands.h"

#include "vocabulary.h"

#include <algorithm>
#include <fmt/format.h>

namespace sim {

namespace {

// Sets what a cue and a precue have in common.
void set_common (Cue &cue, const Arguments &arguments) {
  cue.in = arguments.maybe_number ("GotoPosition").value_or (0);
  cue.angle = static_cast<int> (arguments.maybe_number ("Angle").value_or (0));
  cue.loop_in = arguments.maybe_number ("LoopIn").value_or (cue.loop_in);
  if (arguments.has ("LoopOut"))
    cue.loop_out = arguments.number ("LoopOut");
  const int loop = arguments.maybe_word ("Loop").value_or (loop_auto);
  if (loop != loop_auto)
    cue.loop = loop;
}

Content wanted_content (World &world, const Arguments &arguments) {
  const std::string &name = arguments.text ("ClipID");
  return arguments.maybe_word ("ClipScope").value_or (scope_clip) == scope_vclip ? vclip_content (world, name)
                                                                                 : clip_content (world, name);
}

// The last field of `length` fields. A number that is too large becomes the largest one, which is beyond the
// end of every clip.
std::uint32_t last_of (std::uint32_t first, std::uint32_t length) {
  constexpr std::uint32_t most = 0xFFFFFFFF;
  return length - 1 > most - first ? most : first + (length - 1);
}

// A `ClipPosition` of 0 means that there is no out point.
void cue_clip (Call &call) {
  const int channel = channel_of (call.arguments);
  Cue cue = whole_cue (wanted_content (call.world, call.arguments));
  set_common (cue, call.arguments);
  cue.playback = call.arguments.maybe_word ("Playback").value_or (cue.playback);
  if (const auto out = call.arguments.maybe_number ("ClipPosition"); out && *out != 0)
    cue.out = out;
  load (call.world, channel, cue);
  if (auto &list = call.world.player_to_change (channel).list)
    list->now.reset ();
  if (const auto speed = call.arguments.maybe_fixed ("Speed"))
    play (call.world, channel, *speed);
}

void precue (Call &call) {
  const int channel = channel_of (call.arguments);
  Precued precued;
  precued.condition = call.arguments.maybe_word ("PrecueCondition").value_or (precue_explicit);
  precued.cue = whole_cue (clip_content (call.world, call.arguments.text ("ClipID")));
  set_common (precued.cue, call.arguments);
  if (const auto length = call.arguments.maybe_number ("ClipLength"); length && *length != 0)
    precued.cue.out = last_of (precued.cue.in, *length);
  check_cue (precued.cue);
  std::deque<Precued> &queue = call.world.player_to_change (channel).precued;
  if (precued.condition == precue_immediate) {
    queue.push_front (precued);
    switch_to_precued (call.world, channel);
  } else {
    queue.push_back (precued);
  }
}

void precue_clear (Call &call) {
  call.world.player_to_change (channel_of (call.arguments)).precued.clear ();
}

void unload_channel (Call &call) {
  const int channel = channel_of (call.arguments);
  unload (call.world, channel);
  if (auto &list = call.world.player_to_change (channel).list)
    list->now.reset ();
}

void take_waiting (Call &call) {
  Take how;
  how.transition.type = call.arguments.maybe_word ("TransitionType").value_or (transition_cut);
  how.transition.duration = call.arguments.maybe_number ("TransitionDuration");
  how.follow = call.arguments.maybe_word ("FollowSpeed");
  take (call.world, channel_of (call.arguments), how);
}

// The live input, which is used when the command names no clip. It never ends.
Content live_content () {
  Content content;
  content.source = Source::live;
  content.length = 0xFFFFFFFF;
  content.angles = 8;
  content.audio_tracks = 2;
  return content;
}

void go_live (Call &call) {
  const int channel = channel_of (call.arguments);
  const auto clip = call.arguments.maybe_text ("ClipID");
  Cue cue = whole_cue (clip ? clip_content (call.world, *clip) : live_content ());
  const std::int64_t last = clip ? std::max<std::int64_t> (cue.content.length, 1) - 1 : call.world.field ();
  const std::int64_t delay = call.arguments.maybe_number ("TimeDelay").value_or (0);
  cue.in = static_cast<std::uint32_t> (std::max<std::int64_t> (last - delay, 0));
  cue.angle = static_cast<int> (call.arguments.maybe_number ("Angle").value_or (0));
  load (call.world, channel, cue);
  play (call.world, channel, fixed_one);
}

void steal_channel (Call &call) {
  const int channel = channel_of (call.arguments);
  Player &player = call.world.player_to_change (channel);
  if (player.steal.client != 0 && player.steal.client != call.client.number)
    throw Refusal (
        fmt::format ("Channel {} is taken by '{}'", word_at ("Channel", channel), player.steal.name));
  const bool swapped = player.steal.client != 0;
  player.steal.status = call.arguments.text ("PlayOrRecord") == "record" ? steal_import : steal_export;
  player.steal.client = call.client.number;
  player.steal.name = call.arguments.maybe_text ("StealClient").value_or ("");
  call.answer (Writer ().open ("steal_info").boolean ("StealSwapped", swapped).close ("steal_info").take ());
}

void unsteal_channel (Call &call) {
  for (int channel = 0; channel < channel_count; ++channel)
    if (call.world.player (channel).steal.client == call.client.number)
      call.world.player_to_change (channel).steal = {};
}

void get_current_timecode (Call &call) {
  const int channel = channel_of (call.arguments);
  const Player &player = call.world.player (channel);
  Writer out;
  out.open ("channel_current_timecode").word ("Channel", channel);
  write_display_timecode (out, call.world, channel);
  out.number ("ClipLength", player.cue.content.length).number ("ClipPosition", player.position ());
  call.answer (out.close ("channel_current_timecode").take ());
}

} // namespace

void add_cue_commands (Handlers &handlers) {
  handlers["cue_clip"] = cue_clip;
  handlers["precue"] = precue;
  handlers["precue_clear"] = precue_clear;
  handlers["unload"] = unload_channel;
  handlers["take"] = take_waiting;
  handlers["go_live"] = go_live;
  handlers["steal_channel"] = steal_channel;
  handlers["unsteal_channel"] = unsteal_channel;
  handlers["get_current_timecode"] = get_current_timecode;
}

} // namespace sim
