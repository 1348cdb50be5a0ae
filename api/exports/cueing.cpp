// Exports: what is loaded on a channel, what follows it, and what goes live.
#include "api/basics/typehelp.h"
#include "api/exports/export_call.h"

using namespace typehelp;

uint32_t orva_cmd_loadclip1 (uint32_t connection, uint32_t channel, const orva_char *clip) {
  return send_command (connection, [&] {
    return command::cue_clip{.Channel = channel_argument (channel), .ClipID = text_argument (clip)};
  });
}

uint32_t orva_cmd_loadclip2 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t repeat) {
  return send_command (connection, [&] {
    return command::cue_clip{.Channel = channel_argument (channel),
                             .ClipID = text_argument (clip),
                             .Loop = repeat_to_wire (repeat)};
  });
}

uint32_t orva_cmd_loadclip3 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t repeat,
                             uint32_t position) {
  return send_command (connection, [&] {
    return command::cue_clip{.Channel = channel_argument (channel),
                             .ClipID = text_argument (clip),
                             .Loop = repeat_to_wire (repeat),
                             .GotoPosition = position};
  });
}

uint32_t orva_cmd_loadclip4 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t repeat,
                             uint32_t position, uint32_t loop_in, uint32_t clip_position) {
  return send_command (connection, [&] {
    return command::cue_clip{.Channel = channel_argument (channel),
                             .ClipID = text_argument (clip),
                             .Loop = repeat_to_wire (repeat),
                             .GotoPosition = position,
                             .ClipPosition = clip_position,
                             .LoopIn = loop_in};
  });
}

uint32_t orva_cmd_loadclip5 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t angle) {
  return send_command (connection, [&] {
    return command::cue_clip{.Channel = channel_argument (channel),
                             .ClipID = text_argument (clip),
                             .Angle = angle_argument (angle)};
  });
}

uint32_t orva_cmd_loadclip6 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t angle,
                             uint32_t position) {
  return send_command (connection, [&] {
    return command::cue_clip{.Channel = channel_argument (channel),
                             .ClipID = text_argument (clip),
                             .GotoPosition = position,
                             .Angle = angle_argument (angle)};
  });
}

uint32_t orva_cmd_loadclip7 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t angle,
                             uint32_t position, uint32_t clip_position) {
  return send_command (connection, [&] {
    return command::cue_clip{.Channel = channel_argument (channel),
                             .ClipID = text_argument (clip),
                             .GotoPosition = position,
                             .ClipPosition = clip_position,
                             .Angle = angle_argument (angle)};
  });
}

uint32_t orva_precue1 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t condition) {
  return send_command (connection, [&] {
    return command::precue{.Channel = channel_argument (channel),
                           .ClipID = text_argument (clip),
                           .PrecueCondition = precue_condition_to_wire (condition)};
  });
}

uint32_t orva_precue2 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t condition,
                       uint32_t position) {
  return send_command (connection, [&] {
    return command::precue{.Channel = channel_argument (channel),
                           .ClipID = text_argument (clip),
                           .PrecueCondition = precue_condition_to_wire (condition),
                           .GotoPosition = position};
  });
}

uint32_t orva_precue3 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t condition,
                       uint32_t position, uint32_t length) {
  return send_command (connection, [&] {
    return command::precue{.Channel = channel_argument (channel),
                           .ClipID = text_argument (clip),
                           .PrecueCondition = precue_condition_to_wire (condition),
                           .GotoPosition = position,
                           .ClipLength = length};
  });
}

// C25: doc/compatibility.md
uint32_t orva_precue4 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t condition,
                       uint32_t position, uint32_t loop_in, uint32_t length) {
  return send_command (connection, [&] {
    return command::precue{.Channel = channel_argument (channel),
                           .ClipID = text_argument (clip),
                           .PrecueCondition = precue_condition_to_wire (condition),
                           .GotoPosition = position,
                           .ClipLength = length,
                           .LoopIn = loop_in,
                           .Loop = uint32_t{ORVA_REPEAT_OFF}};
  });
}

uint32_t orva_precue_clear1 (uint32_t connection, uint32_t channel) {
  return send_command (connection,
                       [&] { return command::precue_clear{.Channel = channel_argument (channel)}; });
}

uint32_t orva_precue_activate1 (uint32_t connection, uint32_t channel) {
  return send_command (connection,
                       [&] { return command::precue_activate{.Channel = channel_argument (channel)}; });
}

uint32_t orva_gang_precue_activate1 (uint32_t connection, uint32_t mask) {
  return send_command (
      connection, [&] { return command::gang_precue_activate{.ChannelSet = channel_set_from_mask (mask)}; });
}

uint32_t orva_take1 (uint32_t connection, uint32_t channel, uint32_t type, uint32_t duration) {
  return send_command (connection, [&] {
    return command::take{.Channel = channel_argument (channel),
                         .TransitionType = transition_type_to_wire (type),
                         .TransitionDuration = duration};
  });
}

uint32_t orva_take2 (uint32_t connection, uint32_t channel, uint32_t type, uint32_t duration,
                     uint32_t follow) {
  return send_command (connection, [&] {
    return command::take{.Channel = channel_argument (channel),
                         .TransitionType = transition_type_to_wire (type),
                         .TransitionDuration = duration,
                         .FollowSpeed = follow_speed_to_wire (follow)};
  });
}

// C24: doc/compatibility.md
uint32_t orva_go_live1 (uint32_t connection, uint32_t channel) {
  return send_command (connection, [&] {
    return command::go_live{.Channel = channel_argument (channel), .MinLatency = true};
  });
}

uint32_t orva_go_live2 (uint32_t connection, uint32_t channel, uint32_t angle) {
  return send_command (connection, [&] {
    return command::go_live{
        .Channel = channel_argument (channel), .Angle = angle_argument (angle), .MinLatency = true};
  });
}

uint32_t orva_go_live3 (uint32_t connection, uint32_t channel, const orva_char *clip) {
  return send_command (connection, [&] {
    return command::go_live{
        .Channel = channel_argument (channel), .ClipID = text_argument (clip), .MinLatency = true};
  });
}

uint32_t orva_go_live4 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t angle) {
  return send_command (connection, [&] {
    return command::go_live{.Channel = channel_argument (channel),
                            .ClipID = text_argument (clip),
                            .Angle = angle_argument (angle),
                            .MinLatency = true};
  });
}

uint32_t orva_angle1 (uint32_t connection, uint32_t channel, uint32_t angle) {
  return send_command (connection, [&] {
    return command::iso_angle{.Channel = channel_argument (channel), .Angle = angle_argument (angle)};
  });
}

uint32_t orva_set_out1 (uint32_t connection, uint32_t channel, uint32_t position) {
  return send_command (connection, [&] {
    return command::set_out_point{.Channel = channel_argument (channel), .ClipPosition = position};
  });
}

uint32_t orva_clear_out (uint32_t connection, uint32_t channel) {
  return send_command (connection,
                       [&] { return command::clear_out_point{.Channel = channel_argument (channel)}; });
}

uint32_t orva_set_repeat (uint32_t connection, uint32_t channel, uint32_t repeat) {
  return send_command (connection, [&] {
    return command::set_loop{.Channel = channel_argument (channel), .Loop = repeat_to_wire (repeat)};
  });
}

// C26: doc/compatibility.md
uint32_t orva_set_channel_repeat (uint32_t connection, uint32_t channel, uint32_t repeat) {
  return send_command (connection, [&] {
    return command::set_loop{.Channel = channel_argument (channel), .Loop = repeat_to_wire (repeat)};
  });
}

uint32_t orva_unload_channel (uint32_t connection, uint32_t channel) {
  return send_command (connection, [&] { return command::unload{.Channel = channel_argument (channel)}; });
}
