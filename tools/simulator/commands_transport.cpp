#include "commands.h"

#include "vocabulary.h"

#include <fmt/format.h>
#include <utility>

namespace sim {

namespace {

constexpr std::uint32_t every_track = 0x3FF;

// Each of these commands also exists for several channels, where it acts on all of them in the same field.
using Action = void (*) (World &, int, const Arguments &);

template <Action action>
void on_one (Call &call) {
  action (call.world, channel_of (call.arguments), call.arguments);
}

template <Action action>
void on_gang (Call &call) {
  call.world.gang (channels_of (call.arguments),
                   [&] (int channel) { action (call.world, channel, call.arguments); });
}

Player &loaded_player (World &world, int channel) {
  Player &player = world.player_to_change (channel);
  if (!player.loaded ())
    throw Refusal (fmt::format ("Nothing is loaded on channel {}", word_at ("Channel", channel)));
  return player;
}

void play_one (World &world, int channel, const Arguments &arguments) {
  play (world, channel, arguments.maybe_fixed ("Speed").value_or (fixed_one));
}

void stop_one (World &world, int channel, const Arguments &) {
  stop (world, channel);
}

void jog_one (World &world, int channel, const Arguments &arguments) {
  loaded_player (world, channel).jog (arguments.distance ("JogDistance"));
}

void goto_one (World &world, int channel, const Arguments &arguments) {
  Player &player = loaded_player (world, channel);
  const std::uint32_t field = arguments.number ("GotoPosition");
  if (field > player.last_field ())
    throw Refusal (fmt::format ("Position {} is beyond the end of '{}', which has {} fields", field,
                                player.cue.content.name, player.cue.content.length));
  player.go_to (field);
}

// Without a speed, a playing channel keeps its speed, and a stopped one plays at normal speed.
void go_at_one (World &world, int channel, const Arguments &arguments) {
  const Fixed now = world.player (channel).playing () ? world.player (channel).speed_when_cued () : fixed_one;
  goto_one (world, channel, arguments);
  play (world, channel, arguments.maybe_fixed ("Speed").value_or (now));
}

int mask_of (const Arguments &arguments) {
  const std::uint32_t mask = arguments.number ("SonyEditMask");
  if (mask > every_track)
    throw Refusal (fmt::format ("Edit mask {} names tracks that do not exist", mask));
  return static_cast<int> (mask);
}

void insert_edit_one (World &world, int channel, const Arguments &arguments) {
  const int mask = mask_of (arguments);
  Player &player = world.player_to_change (channel);
  const Content &content = player.cue.content;
  if (mask != 0 && content.source == Source::vclip)
    throw Refusal (fmt::format ("Virtual clip '{}' cannot be recorded into", content.name));
  if (mask != 0 && content.source == Source::clip && world.clips.find (content.name).read_only_content)
    throw Refusal (fmt::format ("Clip '{}' is read-only", content.name));
  const int before = std::exchange (player.edit_mask, mask);
  if (!player.playing ())
    return;
  try {
    check_recording (world, channel, player.speed_when_cued ());
  } catch (const Refusal &) {
    player.edit_mask = before;
    throw;
  }
}

void ee_one (World &world, int channel, const Arguments &arguments) {
  const int mask = mask_of (arguments);
  Player &player = world.player_to_change (channel);
  player.ee_mask = mask;
  player.auto_ee = arguments.boolean ("AutoEE");
}

void precue_activate_one (World &world, int channel, const Arguments &) {
  switch_to_precued (world, channel);
}

void set_loop (World &world, int channel, const Arguments &arguments) {
  Player &player = loaded_player (world, channel);
  const int loop = arguments.word ("Loop");
  const int own = player.cue.content.loop == loop_auto ? int{loop_off} : player.cue.content.loop;
  player.cue.loop = loop == loop_auto ? own : loop;
}

std::uint32_t place_in (const Player &player, std::uint32_t place) {
  if (place > player.last_field ())
    throw Refusal (fmt::format ("Position {} is beyond the end of '{}', which has {} fields", place,
                                player.cue.content.name, player.cue.content.length));
  return place;
}

void set_loop_in (World &world, int channel, const Arguments &arguments) {
  Player &player = loaded_player (world, channel);
  player.cue.loop_in = place_in (player, arguments.number ("LoopIn"));
}

void clear_loop_in (World &world, int channel, const Arguments &) {
  loaded_player (world, channel).cue.loop_in = 0;
}

void set_loop_out (World &world, int channel, const Arguments &arguments) {
  Player &player = loaded_player (world, channel);
  player.cue.loop_out = place_in (player, arguments.number ("LoopOut"));
}

void clear_loop_out (World &world, int channel, const Arguments &) {
  loaded_player (world, channel).cue.loop_out.reset ();
}

void set_out_point (World &world, int channel, const Arguments &arguments) {
  Player &player = loaded_player (world, channel);
  player.cue.out = place_in (player, arguments.number ("ClipPosition"));
}

void clear_out_point (World &world, int channel, const Arguments &) {
  loaded_player (world, channel).cue.out.reset ();
}

void iso_angle (World &world, int channel, const Arguments &arguments) {
  Player &player = loaded_player (world, channel);
  Cue changed = player.cue;
  changed.in = 0;
  changed.angle = static_cast<int> (arguments.number ("Angle"));
  if (changed.angle >= changed.content.angles)
    throw Refusal (fmt::format ("'{}' has no angle {}", changed.content.name, changed.angle));
  player.cue.angle = changed.angle;
}

} // namespace

void add_transport_commands (Handlers &handlers) {
  handlers["play"] = on_one<play_one>;
  handlers["gang_play"] = on_gang<play_one>;
  handlers["stop"] = on_one<stop_one>;
  handlers["gang_stop"] = on_gang<stop_one>;
  handlers["jog"] = on_one<jog_one>;
  handlers["gang_jog"] = on_gang<jog_one>;
  handlers["gotocmd"] = on_one<goto_one>;
  handlers["gang_gotocmd"] = on_gang<goto_one>;
  handlers["go_at"] = on_one<go_at_one>;
  handlers["gang_go_at"] = on_gang<go_at_one>;
  handlers["insert_edit"] = on_one<insert_edit_one>;
  handlers["gang_insert_edit"] = on_gang<insert_edit_one>;
  handlers["ee"] = on_one<ee_one>;
  handlers["gang_ee"] = on_gang<ee_one>;
  handlers["precue_activate"] = on_one<precue_activate_one>;
  handlers["gang_precue_activate"] = on_gang<precue_activate_one>;
  handlers["set_loop"] = on_one<set_loop>;
  handlers["set_loop_in"] = on_one<set_loop_in>;
  handlers["clear_loop_in"] = on_one<clear_loop_in>;
  handlers["set_loop_out"] = on_one<set_loop_out>;
  handlers["clear_loop_out"] = on_one<clear_loop_out>;
  handlers["set_out_point"] = on_one<set_out_point>;
  handlers["clear_out_point"] = on_one<clear_out_point>;
  handlers["iso_angle"] = on_one<iso_angle>;
}

} // namespace sim
