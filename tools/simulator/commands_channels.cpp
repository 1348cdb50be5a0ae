#include "commands.h"

namespace sim {

namespace {

void play_channel (Channel &channel, std::optional<Fixed> speed) {
  channel.playing = true;
  channel.speed = speed.value_or (fixed_one);
}

void play (Call &call) {
  play_channel (call.world.channels.at (channel_of (call.arguments)), call.arguments.maybe_fixed ("Speed"));
}

void gang_play (Call &call) {
  for (const int channel : channels_of (call.arguments))
    play_channel (call.world.channels.at (channel), call.arguments.maybe_fixed ("Speed"));
}

void stop (Call &call) {
  call.world.channels.at (channel_of (call.arguments)).playing = false;
}

void gang_stop (Call &call) {
  for (const int channel : channels_of (call.arguments))
    call.world.channels.at (channel).playing = false;
}

} // namespace

void add_channel_commands (Handlers &handlers) {
  handlers["play"] = play;
  handlers["gang_play"] = gang_play;
  handlers["stop"] = stop;
  handlers["gang_stop"] = gang_stop;
}

} // namespace sim
