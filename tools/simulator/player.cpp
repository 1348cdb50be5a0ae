#include "player.h"

#include "listplay.h"
#include "vocabulary.h"
#include "world.h"

#include <algorithm>
#include <fmt/format.h>

namespace sim {

namespace {

constexpr std::uint32_t usual_dissolve = 50; // fields

void check_place (const Cue &cue, std::optional<std::uint32_t> place) {
  const std::uint32_t last = cue.content.length == 0 ? 0 : cue.content.length - 1;
  if (place && *place > last)
    throw Refusal (fmt::format ("Position {} is beyond the end of '{}', which has {} fields", *place,
                                cue.content.name, cue.content.length));
}

int audio_tracks_of (const Clip &clip) {
  return static_cast<int> (std::count_if (clip.tracks.begin (), clip.tracks.end (),
                                          [] (const Track &track) { return track.type == track_audio; }));
}

// The timecode of the first field, from the timecode source of the clip.
std::int64_t first_field_of (const Clip &clip) {
  if (clip.timecode_source == 1 && clip.stripe_valid)
    return clip.stripe_field;
  return clip.timecode_source >= 2 && clip.frame0_valid ? clip.frame0_field : 0;
}

bool is_drop_frame (const Clip &clip) {
  const auto standard = find_standard (clip.standard);
  const bool wanted = clip.timecode_source == 1 && clip.stripe_valid   ? clip.stripe_drop != 0
                      : clip.timecode_source >= 2 && clip.frame0_valid ? clip.frame0_drop != 0
                                                                       : true;
  return standard && standard->drop_frame && wanted;
}

void go_on (World &world, int channel, int follow, bool played, Fixed speed) {
  if (follow == follow_one || (follow == follow_smart && played))
    play (world, channel, fixed_one);
  else if (follow == follow_follow && played)
    play (world, channel, speed);
}

} // namespace

Content clip_content (World &world, const std::string &name) {
  const Clip clip = world.clips.find (name);
  Content content;
  content.source = Source::clip;
  content.name = clip.id;
  content.length = clip.length ();
  content.angles = static_cast<int> (clip.angles);
  content.audio_tracks = audio_tracks_of (clip);
  content.interp = static_cast<int> (clip.interp);
  content.playback = static_cast<int> (clip.playback);
  content.loop = static_cast<int> (clip.loop);
  content.loop_in = static_cast<std::uint32_t> (clip.loop_in);
  content.loop_out = static_cast<std::uint32_t> (clip.loop_out);
  content.first_field = first_field_of (clip);
  content.drop_frame = is_drop_frame (clip);
  return content;
}

Content vclip_content (World &world, const std::string &name) {
  const VirtualClip &clip = world.vclips.find (name);
  if (clip.opened_by != 0)
    throw Refusal (fmt::format ("Virtual clip '{}' is being modified", name));
  for (const std::string &source : clip.sources ())
    if (!world.clips.exists (source))
      throw Refusal (fmt::format ("Clip '{}', which virtual clip '{}' shows, does not exist", source, name),
                     "clipnotfound");
  Content content;
  content.source = Source::vclip;
  content.name = name;
  content.length = clip.length;
  content.audio_tracks = clip.enabled.contains (track_audio) && clip.tracks.contains (track_audio) ? 1 : 0;
  content.drop_frame = world.standard.drop_frame;
  return content;
}

Cue whole_cue (const Content &content) {
  Cue cue;
  cue.content = content;
  cue.playback = content.playback;
  cue.loop = content.loop == loop_auto ? loop_off : content.loop;
  cue.loop_in = content.loop_in;
  if (content.loop_out != 0)
    cue.loop_out = content.loop_out;
  return cue;
}

void check_cue (const Cue &cue) {
  check_place (cue, cue.in);
  check_place (cue, cue.out);
  if (cue.angle >= cue.content.angles)
    throw Refusal (fmt::format ("'{}' has no angle {}", cue.content.name, cue.angle));
}

void load (World &world, int channel, const Cue &cue) {
  check_cue (cue);
  Player &player = world.player_to_change (channel);
  if (player.cue.content.source == Source::clip)
    world.clips.touch (player.cue.content.name, "unloaded_stamp");
  player.load (cue);
  close_recording (world, channel);
  if (cue.content.source == Source::clip)
    world.clips.touch (cue.content.name, "loaded_stamp");
}

void unload (World &world, int channel) {
  Player &player = world.player_to_change (channel);
  if (player.cue.content.source == Source::clip)
    world.clips.touch (player.cue.content.name, "unloaded_stamp");
  player.unload ();
  close_recording (world, channel);
}

void play (World &world, int channel, Fixed speed) {
  Player &player = world.player_to_change (channel);
  if (!player.loaded ())
    throw Refusal (fmt::format ("Nothing is loaded on channel {}", word_at ("Channel", channel)));
  check_recording (world, channel, speed);
  player.play (speed);
  if (player.cue.content.source == Source::clip)
    world.clips.touch (player.cue.content.name, "played_stamp");
}

void stop (World &world, int channel) {
  Player &player = world.player_to_change (channel);
  const bool was_playing = player.playing ();
  player.stop ();
  if (was_playing && !player.precued.empty () && player.precued.front ().condition == precue_previous_stops)
    switch_to_precued (world, channel);
}

void switch_to_precued (World &world, int channel) {
  Player &player = world.player_to_change (channel);
  if (player.precued.empty ())
    throw Refusal (fmt::format ("Nothing is precued on channel {}", word_at ("Channel", channel)));
  Cue cue = player.precued.front ().cue;
  player.precued.pop_front ();
  cue.content = clip_content (world, cue.content.name);
  const bool was_playing = player.playing ();
  const Fixed speed = player.speed_when_cued ();
  load (world, channel, cue);
  player.skip_cueing ();
  if (was_playing)
    play (world, channel, speed);
}

void reach_end (World &world, int channel) {
  Player &player = world.player_to_change (channel);
  if (end_item (world, channel))
    return;
  const int condition = player.precued.empty () ? precue_explicit : player.precued.front ().condition;
  if (condition == precue_end_of_clip || condition == precue_end_of_clip2)
    switch_to_precued (world, channel);
  else
    stop (world, channel);
}

void take (World &world, int channel, const Take &how) {
  Player &player = world.player_to_change (channel);
  const bool was_playing = player.playing ();
  const Fixed speed = player.speed_when_cued ();
  if (player.list && player.list->next)
    take_next (world, channel);
  else
    switch_to_precued (world, channel);
  if (how.follow) {
    player.stop ();
    go_on (world, channel, *how.follow, was_playing, speed);
  }
  if (how.transition.type == transition_dissolve)
    player.start_transition (how.transition.duration.value_or (usual_dissolve));
}

void check_recording (const World &world, int channel, Fixed speed) {
  const Player &player = world.player (channel);
  const Content &content = player.cue.content;
  if (player.edit_mask == 0 || content.source != Source::clip)
    return;
  if (world.clips.find (content.name).read_only_content)
    throw Refusal (fmt::format ("Clip '{}' is read-only", content.name));
  if (speed != fixed_one)
    throw Refusal ("A recording runs at normal speed only");
  if (player.unstored && player.unstored->clip != content.name)
    throw Refusal (fmt::format ("The recording of '{}' is not yet stored", player.unstored->clip));
  for (int other = 0; other < channel_count; ++other)
    if (other != channel && world.player (other).recording () &&
        world.player (other).cue.content.name == content.name)
      throw Refusal (fmt::format ("Clip '{}' is being recorded on channel {}", content.name,
                                  word_at ("Channel", other)));
  if (world.available_space () < field_size)
    throw Refusal ("The disk is full");
}

namespace {

// Stores the clip with its new length. Returns whether there still is such a clip.
bool store_recording (World &world, const Recording &done) {
  if (!world.clips.exists (done.clip))
    return false;
  Clip clip = world.clips.find (done.clip);
  clip.content_stamp = world.clips.stamp ();
  world.clips.store (clip);
  return true;
}

// The recording is stored later: this is tried again every second.
void keep_recording (World &world, int channel, std::string_view why) {
  Recording &recording = *world.player_to_change (channel).unstored;
  if (!std::exchange (recording.was_refused, true))
    world.log (fmt::format ("the recording of '{}' is stored later: {}", recording.clip, why));
}

} // namespace

void close_recording (World &world, int channel) {
  if (!world.player (channel).has_ended_recording ())
    return;
  const Recording done = *world.player (channel).unstored;
  bool exists = false;
  try {
    exists = store_recording (world, done);
  } catch (const Refusal &refusal) {
    keep_recording (world, channel, refusal.what ());
    return;
  }
  world.player_to_change (channel).unstored.reset ();
  if (!exists)
    return;
  world.renew_clip (done.clip, done.clip);
  world.report_clip ("clip_changed", done.clip);
  if (done.growth () > 0)
    world.report_disk_space ();
}

} // namespace sim
