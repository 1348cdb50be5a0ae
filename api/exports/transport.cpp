// Exports: playing, stopping, jogging and moving channels, one by one and in gangs; edit and E to E.
#include "api/basics/typehelp.h"
#include "api/exports/export_call.h"

using namespace typehelp;

uint32_t orva_cmd_play1 (uint32_t connection, uint32_t channel) {
  return send_command (connection, [&] { return command::play{.Channel = channel_argument (channel)}; });
}

uint32_t orva_cmd_play2 (uint32_t connection, uint32_t channel, double speed) {
  return send_command (connection, [&] {
    return command::play{.Channel = channel_argument (channel), .Speed = speed_to_wire (speed)};
  });
}

uint32_t orva_cmd_play3 (uint32_t connection, uint32_t channel, double speed, uint32_t min_latency) {
  return send_command (connection, [&] {
    return command::play{.Channel = channel_argument (channel),
                         .Speed = speed_to_wire (speed),
                         .MinLatency = min_latency_wanted (min_latency)};
  });
}

uint32_t orva_cmd_gang_play1 (uint32_t connection, uint32_t mask) {
  return send_command (connection,
                       [&] { return command::gang_play{.ChannelSet = channel_set_from_mask (mask)}; });
}

uint32_t orva_cmd_gang_play2 (uint32_t connection, uint32_t mask, double speed) {
  return send_command (connection, [&] {
    return command::gang_play{.ChannelSet = channel_set_from_mask (mask), .Speed = speed_to_wire (speed)};
  });
}

uint32_t orva_cmd_gang_play3 (uint32_t connection, uint32_t mask, double speed, uint32_t min_latency) {
  return send_command (connection, [&] {
    return command::gang_play{.ChannelSet = channel_set_from_mask (mask),
                              .Speed = speed_to_wire (speed),
                              .MinLatency = min_latency_wanted (min_latency)};
  });
}

uint32_t orva_cmd_stop1 (uint32_t connection, uint32_t channel) {
  return send_command (connection, [&] { return command::stop{.Channel = channel_argument (channel)}; });
}

uint32_t orva_cmd_stop2 (uint32_t connection, uint32_t channel, uint32_t min_latency) {
  return send_command (connection, [&] {
    return command::stop{.Channel = channel_argument (channel),
                         .MinLatency = min_latency_wanted (min_latency)};
  });
}

uint32_t orva_cmd_gang_stop1 (uint32_t connection, uint32_t mask) {
  return send_command (connection,
                       [&] { return command::gang_stop{.ChannelSet = channel_set_from_mask (mask)}; });
}

uint32_t orva_cmd_gang_stop2 (uint32_t connection, uint32_t mask, uint32_t min_latency) {
  return send_command (connection, [&] {
    return command::gang_stop{.ChannelSet = channel_set_from_mask (mask),
                              .MinLatency = min_latency_wanted (min_latency)};
  });
}

uint32_t orva_jog1 (uint32_t connection, uint32_t channel, int32_t distance) {
  return send_command (connection, [&] {
    return command::jog{.Channel = channel_argument (channel), .JogDistance = distance};
  });
}

uint32_t orva_jog2 (uint32_t connection, uint32_t channel, int32_t distance, uint32_t min_latency) {
  return send_command (connection, [&] {
    return command::jog{.Channel = channel_argument (channel),
                        .JogDistance = distance,
                        .MinLatency = min_latency_wanted (min_latency)};
  });
}

uint32_t orva_gang_jog1 (uint32_t connection, uint32_t mask, int32_t distance) {
  return send_command (connection, [&] {
    return command::gang_jog{.ChannelSet = channel_set_from_mask (mask), .JogDistance = distance};
  });
}

uint32_t orva_gang_jog2 (uint32_t connection, uint32_t mask, int32_t distance, uint32_t min_latency) {
  return send_command (connection, [&] {
    return command::gang_jog{.ChannelSet = channel_set_from_mask (mask),
                             .JogDistance = distance,
                             .MinLatency = min_latency_wanted (min_latency)};
  });
}

uint32_t orva_goto1 (uint32_t connection, uint32_t channel, uint32_t position) {
  return send_command (connection, [&] {
    return command::gotocmd{.Channel = channel_argument (channel), .GotoPosition = position};
  });
}

uint32_t orva_goto2 (uint32_t connection, uint32_t channel, uint32_t position, uint32_t min_latency) {
  return send_command (connection, [&] {
    return command::gotocmd{.Channel = channel_argument (channel),
                            .GotoPosition = position,
                            .MinLatency = min_latency_wanted (min_latency)};
  });
}

uint32_t orva_gang_goto1 (uint32_t connection, uint32_t mask, uint32_t position) {
  return send_command (connection, [&] {
    return command::gang_gotocmd{.ChannelSet = channel_set_from_mask (mask), .GotoPosition = position};
  });
}

uint32_t orva_gang_goto2 (uint32_t connection, uint32_t mask, uint32_t position, uint32_t min_latency) {
  return send_command (connection, [&] {
    return command::gang_gotocmd{.ChannelSet = channel_set_from_mask (mask),
                                 .GotoPosition = position,
                                 .MinLatency = min_latency_wanted (min_latency)};
  });
}

uint32_t orva_edit1 (uint32_t connection, uint32_t channel, uint32_t edit_bits) {
  return send_command (connection, [&] {
    return command::insert_edit{.Channel = channel_argument (channel),
                                .SonyEditMask = edit_mask_to_wire (edit_bits)};
  });
}

uint32_t orva_gang_edit1 (uint32_t connection, uint32_t mask, uint32_t edit_bits) {
  return send_command (connection, [&] {
    return command::gang_insert_edit{.ChannelSet = channel_set_from_mask (mask),
                                     .SonyEditMask = edit_mask_to_wire (edit_bits)};
  });
}

uint32_t orva_ee1 (uint32_t connection, uint32_t channel, uint32_t edit_bits, uint32_t mode) {
  return send_command (connection, [&] {
    return command::ee{.Channel = channel_argument (channel),
                       .SonyEditMask = edit_mask_to_wire (edit_bits),
                       .AutoEE = auto_ee_to_wire (mode)};
  });
}

uint32_t orva_gang_ee1 (uint32_t connection, uint32_t mask, uint32_t edit_bits, uint32_t mode) {
  return send_command (connection, [&] {
    return command::gang_ee{.ChannelSet = channel_set_from_mask (mask),
                            .SonyEditMask = edit_mask_to_wire (edit_bits),
                            .AutoEE = auto_ee_to_wire (mode)};
  });
}

uint32_t orva_edit_all_on (uint32_t connection, uint32_t channel) {
  return orva_edit1 (connection, channel, 7);
}

uint32_t orva_edit_all_off (uint32_t connection, uint32_t channel) {
  return orva_edit1 (connection, channel, 0);
}

uint32_t orva_gang_edit_all_on (uint32_t connection, uint32_t mask) {
  return orva_gang_edit1 (connection, mask, 7);
}

uint32_t orva_gang_edit_all_off (uint32_t connection, uint32_t mask) {
  return orva_gang_edit1 (connection, mask, 0);
}

uint32_t orva_ee_all_on (uint32_t connection, uint32_t channel) {
  return orva_ee1 (connection, channel, 7, 0);
}

uint32_t orva_ee_all_off (uint32_t connection, uint32_t channel) {
  return orva_ee1 (connection, channel, 0, 0);
}

uint32_t orva_gang_ee_all_on (uint32_t connection, uint32_t mask) {
  return orva_gang_ee1 (connection, mask, 7, 0);
}

uint32_t orva_gang_ee_all_off (uint32_t connection, uint32_t mask) {
  return orva_gang_ee1 (connection, mask, 0, 0);
}
