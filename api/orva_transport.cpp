// Transport and gang control: each operation is one command of the protocol.
#include "api/command_flow.h"
#include "api/typehelp.h"

using namespace typehelp;

namespace {

/// The low 8 bits are the angle.
uint8_t angle_argument (uint32_t angle) {
  return static_cast<uint8_t> (angle);
}

} // namespace

ResultCode OrvaConnObject::cmd_play1 (ARef<OrvaConnObject> self, uint32_t channel) {
  return ordinary_command (self, &API::play, {.Channel = channel_argument (channel)});
}

ResultCode OrvaConnObject::cmd_play2 (ARef<OrvaConnObject> self, uint32_t channel, double speed) {
  return ordinary_command (self, &API::play,
                           {.Channel = channel_argument (channel), .Speed = speed_to_wire (speed)});
}

ResultCode OrvaConnObject::cmd_play3 (ARef<OrvaConnObject> self, uint32_t channel, double speed,
                                      uint32_t min_latency) {
  return ordinary_command (self, &API::play,
                           {.Channel = channel_argument (channel),
                            .Speed = speed_to_wire (speed),
                            .MinLatency = min_latency_wanted (min_latency)});
}

ResultCode OrvaConnObject::cmd_gang_play1 (ARef<OrvaConnObject> self, uint32_t mask) {
  return ordinary_command (self, &API::gang_play, {.ChannelSet = channel_set_from_mask (mask)});
}

ResultCode OrvaConnObject::cmd_gang_play2 (ARef<OrvaConnObject> self, uint32_t mask, double speed) {
  return ordinary_command (self, &API::gang_play,
                           {.ChannelSet = channel_set_from_mask (mask), .Speed = speed_to_wire (speed)});
}

ResultCode OrvaConnObject::cmd_gang_play3 (ARef<OrvaConnObject> self, uint32_t mask, double speed,
                                           uint32_t min_latency) {
  return ordinary_command (self, &API::gang_play,
                           {.ChannelSet = channel_set_from_mask (mask),
                            .Speed = speed_to_wire (speed),
                            .MinLatency = min_latency_wanted (min_latency)});
}

ResultCode OrvaConnObject::cmd_stop1 (ARef<OrvaConnObject> self, uint32_t channel) {
  return ordinary_command (self, &API::stop, {.Channel = channel_argument (channel)});
}

ResultCode OrvaConnObject::cmd_stop2 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t min_latency) {
  return ordinary_command (
      self, &API::stop,
      {.Channel = channel_argument (channel), .MinLatency = min_latency_wanted (min_latency)});
}

ResultCode OrvaConnObject::cmd_gang_stop1 (ARef<OrvaConnObject> self, uint32_t mask) {
  return ordinary_command (self, &API::gang_stop, {.ChannelSet = channel_set_from_mask (mask)});
}

ResultCode OrvaConnObject::cmd_gang_stop2 (ARef<OrvaConnObject> self, uint32_t mask, uint32_t min_latency) {
  return ordinary_command (
      self, &API::gang_stop,
      {.ChannelSet = channel_set_from_mask (mask), .MinLatency = min_latency_wanted (min_latency)});
}

ResultCode OrvaConnObject::jog1 (ARef<OrvaConnObject> self, uint32_t channel, int32_t distance) {
  return ordinary_command (self, &API::jog, {.Channel = channel_argument (channel), .JogDistance = distance});
}

ResultCode OrvaConnObject::jog2 (ARef<OrvaConnObject> self, uint32_t channel, int32_t distance,
                                 uint32_t min_latency) {
  return ordinary_command (self, &API::jog,
                           {.Channel = channel_argument (channel),
                            .JogDistance = distance,
                            .MinLatency = min_latency_wanted (min_latency)});
}

ResultCode OrvaConnObject::gang_jog1 (ARef<OrvaConnObject> self, uint32_t mask, int32_t distance) {
  return ordinary_command (self, &API::gang_jog,
                           {.ChannelSet = channel_set_from_mask (mask), .JogDistance = distance});
}

ResultCode OrvaConnObject::gang_jog2 (ARef<OrvaConnObject> self, uint32_t mask, int32_t distance,
                                      uint32_t min_latency) {
  return ordinary_command (self, &API::gang_jog,
                           {.ChannelSet = channel_set_from_mask (mask),
                            .JogDistance = distance,
                            .MinLatency = min_latency_wanted (min_latency)});
}

ResultCode OrvaConnObject::goto1 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t position) {
  return ordinary_command (self, &API::gotocmd,
                           {.Channel = channel_argument (channel), .GotoPosition = position});
}

ResultCode OrvaConnObject::goto2 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t position,
                                  uint32_t min_latency) {
  return ordinary_command (self, &API::gotocmd,
                           {.Channel = channel_argument (channel),
                            .GotoPosition = position,
                            .MinLatency = min_latency_wanted (min_latency)});
}

ResultCode OrvaConnObject::gang_goto1 (ARef<OrvaConnObject> self, uint32_t mask, uint32_t position) {
  return ordinary_command (self, &API::gang_gotocmd,
                           {.ChannelSet = channel_set_from_mask (mask), .GotoPosition = position});
}

ResultCode OrvaConnObject::gang_goto2 (ARef<OrvaConnObject> self, uint32_t mask, uint32_t position,
                                       uint32_t min_latency) {
  return ordinary_command (self, &API::gang_gotocmd,
                           {.ChannelSet = channel_set_from_mask (mask),
                            .GotoPosition = position,
                            .MinLatency = min_latency_wanted (min_latency)});
}

ResultCode OrvaConnObject::cmd_loadclip1 (ARef<OrvaConnObject> self, uint32_t channel,
                                          const orva_char *clip) {
  return ordinary_command (self, &API::cue_clip,
                           {.Channel = channel_argument (channel), .ClipID = text_argument (clip)});
}

ResultCode OrvaConnObject::cmd_loadclip2 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                          uint32_t repeat) {
  return ordinary_command (self, &API::cue_clip,
                           {.Channel = channel_argument (channel),
                            .ClipID = text_argument (clip),
                            .Loop = repeat_to_wire (repeat)});
}

ResultCode OrvaConnObject::cmd_loadclip3 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                          uint32_t repeat, uint32_t position) {
  return ordinary_command (self, &API::cue_clip,
                           {.Channel = channel_argument (channel),
                            .ClipID = text_argument (clip),
                            .Loop = repeat_to_wire (repeat),
                            .GotoPosition = position});
}

ResultCode OrvaConnObject::cmd_loadclip4 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                          uint32_t repeat, uint32_t position, uint32_t loop_in,
                                          uint32_t clip_position) {
  return ordinary_command (self, &API::cue_clip,
                           {.Channel = channel_argument (channel),
                            .ClipID = text_argument (clip),
                            .Loop = repeat_to_wire (repeat),
                            .GotoPosition = position,
                            .ClipPosition = clip_position,
                            .LoopIn = loop_in});
}

ResultCode OrvaConnObject::cmd_loadclip5 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                          uint32_t angle) {
  return ordinary_command (self, &API::cue_clip,
                           {.Channel = channel_argument (channel),
                            .ClipID = text_argument (clip),
                            .Angle = angle_argument (angle)});
}

ResultCode OrvaConnObject::cmd_loadclip6 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                          uint32_t angle, uint32_t position) {
  return ordinary_command (self, &API::cue_clip,
                           {.Channel = channel_argument (channel),
                            .ClipID = text_argument (clip),
                            .GotoPosition = position,
                            .Angle = angle_argument (angle)});
}

ResultCode OrvaConnObject::cmd_loadclip7 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                          uint32_t angle, uint32_t position, uint32_t clip_position) {
  return ordinary_command (self, &API::cue_clip,
                           {.Channel = channel_argument (channel),
                            .ClipID = text_argument (clip),
                            .GotoPosition = position,
                            .ClipPosition = clip_position,
                            .Angle = angle_argument (angle)});
}

ResultCode OrvaConnObject::precue1 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                    uint32_t condition) {
  return ordinary_command (self, &API::precue,
                           {.Channel = channel_argument (channel),
                            .ClipID = text_argument (clip),
                            .PrecueCondition = precue_condition_to_wire (condition)});
}

ResultCode OrvaConnObject::precue2 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                    uint32_t condition, uint32_t position) {
  return ordinary_command (self, &API::precue,
                           {.Channel = channel_argument (channel),
                            .ClipID = text_argument (clip),
                            .PrecueCondition = precue_condition_to_wire (condition),
                            .GotoPosition = position});
}

ResultCode OrvaConnObject::precue3 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                    uint32_t condition, uint32_t position, uint32_t length) {
  return ordinary_command (self, &API::precue,
                           {.Channel = channel_argument (channel),
                            .ClipID = text_argument (clip),
                            .PrecueCondition = precue_condition_to_wire (condition),
                            .GotoPosition = position,
                            .ClipLength = length});
}

ResultCode OrvaConnObject::precue4 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                    uint32_t condition, uint32_t position, uint32_t loop_in,
                                    uint32_t length) {
  return ordinary_command (self, &API::precue,
                           {.Channel = channel_argument (channel),
                            .ClipID = text_argument (clip),
                            .PrecueCondition = precue_condition_to_wire (condition),
                            .GotoPosition = position,
                            .ClipLength = length,
                            .LoopIn = loop_in,
                            .Loop = uint32_t{ORVA_REPEAT_OFF}});
}

ResultCode OrvaConnObject::precue_clear1 (ARef<OrvaConnObject> self, uint32_t channel) {
  return ordinary_command (self, &API::precue_clear, {.Channel = channel_argument (channel)});
}

ResultCode OrvaConnObject::precue_activate1 (ARef<OrvaConnObject> self, uint32_t channel) {
  return ordinary_command (self, &API::precue_activate, {.Channel = channel_argument (channel)});
}

ResultCode OrvaConnObject::gang_precue_activate1 (ARef<OrvaConnObject> self, uint32_t mask) {
  return ordinary_command (self, &API::gang_precue_activate, {.ChannelSet = channel_set_from_mask (mask)});
}

ResultCode OrvaConnObject::take1 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t type,
                                  uint32_t duration) {
  return ordinary_command (self, &API::take,
                           {.Channel = channel_argument (channel),
                            .TransitionType = transition_type_to_wire (type),
                            .TransitionDuration = duration});
}

ResultCode OrvaConnObject::take2 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t type,
                                  uint32_t duration, uint32_t follow) {
  return ordinary_command (self, &API::take,
                           {.Channel = channel_argument (channel),
                            .TransitionType = transition_type_to_wire (type),
                            .TransitionDuration = duration,
                            .FollowSpeed = follow_speed_to_wire (follow)});
}

ResultCode OrvaConnObject::go_live1 (ARef<OrvaConnObject> self, uint32_t channel) {
  return ordinary_command (self, &API::go_live, {.Channel = channel_argument (channel), .MinLatency = true});
}

ResultCode OrvaConnObject::go_live2 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t angle) {
  return ordinary_command (
      self, &API::go_live,
      {.Channel = channel_argument (channel), .Angle = angle_argument (angle), .MinLatency = true});
}

ResultCode OrvaConnObject::go_live3 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip) {
  return ordinary_command (
      self, &API::go_live,
      {.Channel = channel_argument (channel), .ClipID = text_argument (clip), .MinLatency = true});
}

ResultCode OrvaConnObject::go_live4 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                     uint32_t angle) {
  return ordinary_command (self, &API::go_live,
                           {.Channel = channel_argument (channel),
                            .ClipID = text_argument (clip),
                            .Angle = angle_argument (angle),
                            .MinLatency = true});
}

ResultCode OrvaConnObject::angle1 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t angle) {
  return ordinary_command (self, &API::iso_angle,
                           {.Channel = channel_argument (channel), .Angle = angle_argument (angle)});
}

ResultCode OrvaConnObject::set_out1 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t position) {
  return ordinary_command (self, &API::set_out_point,
                           {.Channel = channel_argument (channel), .ClipPosition = position});
}

ResultCode OrvaConnObject::clear_out (ARef<OrvaConnObject> self, uint32_t channel) {
  return ordinary_command (self, &API::clear_out_point, {.Channel = channel_argument (channel)});
}

ResultCode OrvaConnObject::set_repeat (ARef<OrvaConnObject> self, uint32_t channel, uint32_t repeat) {
  return ordinary_command (self, &API::set_loop,
                           {.Channel = channel_argument (channel), .Loop = repeat_to_wire (repeat)});
}

ResultCode OrvaConnObject::unload_channel (ARef<OrvaConnObject> self, uint32_t channel) {
  return ordinary_command (self, &API::unload, {.Channel = channel_argument (channel)});
}

ResultCode OrvaConnObject::edit1 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t edit_bits) {
  return ordinary_command (
      self, &API::insert_edit,
      {.Channel = channel_argument (channel), .SonyEditMask = edit_mask_to_wire (edit_bits)});
}

ResultCode OrvaConnObject::gang_edit1 (ARef<OrvaConnObject> self, uint32_t mask, uint32_t edit_bits) {
  return ordinary_command (
      self, &API::gang_insert_edit,
      {.ChannelSet = channel_set_from_mask (mask), .SonyEditMask = edit_mask_to_wire (edit_bits)});
}

ResultCode OrvaConnObject::ee1 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t edit_bits,
                                uint32_t mode) {
  return ordinary_command (self, &API::ee,
                           {.Channel = channel_argument (channel),
                            .SonyEditMask = edit_mask_to_wire (edit_bits),
                            .AutoEE = auto_ee_to_wire (mode)});
}

ResultCode OrvaConnObject::gang_ee1 (ARef<OrvaConnObject> self, uint32_t mask, uint32_t edit_bits,
                                     uint32_t mode) {
  return ordinary_command (self, &API::gang_ee,
                           {.ChannelSet = channel_set_from_mask (mask),
                            .SonyEditMask = edit_mask_to_wire (edit_bits),
                            .AutoEE = auto_ee_to_wire (mode)});
}
