// Exports: transport and gang control.
#include "api/export_call.h"
#include "orva.h"

uint32_t orva_cmd_play1 (uint32_t connection, uint32_t channel) {
  return on_connection (connection, OrvaConnObject::cmd_play1, channel);
}

uint32_t orva_cmd_play2 (uint32_t connection, uint32_t channel, double speed) {
  return on_connection (connection, OrvaConnObject::cmd_play2, channel, speed);
}

uint32_t orva_cmd_play3 (uint32_t connection, uint32_t channel, double speed, uint32_t min_latency) {
  return on_connection (connection, OrvaConnObject::cmd_play3, channel, speed, min_latency);
}

uint32_t orva_cmd_gang_play1 (uint32_t connection, uint32_t mask) {
  return on_connection (connection, OrvaConnObject::cmd_gang_play1, mask);
}

uint32_t orva_cmd_gang_play2 (uint32_t connection, uint32_t mask, double speed) {
  return on_connection (connection, OrvaConnObject::cmd_gang_play2, mask, speed);
}

uint32_t orva_cmd_gang_play3 (uint32_t connection, uint32_t mask, double speed, uint32_t min_latency) {
  return on_connection (connection, OrvaConnObject::cmd_gang_play3, mask, speed, min_latency);
}

uint32_t orva_cmd_stop1 (uint32_t connection, uint32_t channel) {
  return on_connection (connection, OrvaConnObject::cmd_stop1, channel);
}

uint32_t orva_cmd_stop2 (uint32_t connection, uint32_t channel, uint32_t min_latency) {
  return on_connection (connection, OrvaConnObject::cmd_stop2, channel, min_latency);
}

uint32_t orva_cmd_gang_stop1 (uint32_t connection, uint32_t mask) {
  return on_connection (connection, OrvaConnObject::cmd_gang_stop1, mask);
}

uint32_t orva_cmd_gang_stop2 (uint32_t connection, uint32_t mask, uint32_t min_latency) {
  return on_connection (connection, OrvaConnObject::cmd_gang_stop2, mask, min_latency);
}

uint32_t orva_jog1 (uint32_t connection, uint32_t channel, int32_t distance) {
  return on_connection (connection, OrvaConnObject::jog1, channel, distance);
}

uint32_t orva_jog2 (uint32_t connection, uint32_t channel, int32_t distance, uint32_t min_latency) {
  return on_connection (connection, OrvaConnObject::jog2, channel, distance, min_latency);
}

uint32_t orva_gang_jog1 (uint32_t connection, uint32_t mask, int32_t distance) {
  return on_connection (connection, OrvaConnObject::gang_jog1, mask, distance);
}

uint32_t orva_gang_jog2 (uint32_t connection, uint32_t mask, int32_t distance, uint32_t min_latency) {
  return on_connection (connection, OrvaConnObject::gang_jog2, mask, distance, min_latency);
}

uint32_t orva_goto1 (uint32_t connection, uint32_t channel, uint32_t position) {
  return on_connection (connection, OrvaConnObject::goto1, channel, position);
}

uint32_t orva_goto2 (uint32_t connection, uint32_t channel, uint32_t position, uint32_t min_latency) {
  return on_connection (connection, OrvaConnObject::goto2, channel, position, min_latency);
}

uint32_t orva_gang_goto1 (uint32_t connection, uint32_t mask, uint32_t position) {
  return on_connection (connection, OrvaConnObject::gang_goto1, mask, position);
}

uint32_t orva_gang_goto2 (uint32_t connection, uint32_t mask, uint32_t position, uint32_t min_latency) {
  return on_connection (connection, OrvaConnObject::gang_goto2, mask, position, min_latency);
}

uint32_t orva_cmd_loadclip1 (uint32_t connection, uint32_t channel, const orva_char *clip) {
  return on_connection (connection, OrvaConnObject::cmd_loadclip1, channel, clip);
}

uint32_t orva_cmd_loadclip2 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t repeat) {
  return on_connection (connection, OrvaConnObject::cmd_loadclip2, channel, clip, repeat);
}

uint32_t orva_cmd_loadclip3 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t repeat,
                             uint32_t position) {
  return on_connection (connection, OrvaConnObject::cmd_loadclip3, channel, clip, repeat, position);
}

uint32_t orva_cmd_loadclip4 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t repeat,
                             uint32_t position, uint32_t loop_in, uint32_t clip_position) {
  return on_connection (connection, OrvaConnObject::cmd_loadclip4, channel, clip, repeat, position, loop_in,
                        clip_position);
}

uint32_t orva_cmd_loadclip5 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t angle) {
  return on_connection (connection, OrvaConnObject::cmd_loadclip5, channel, clip, angle);
}

uint32_t orva_cmd_loadclip6 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t angle,
                             uint32_t position) {
  return on_connection (connection, OrvaConnObject::cmd_loadclip6, channel, clip, angle, position);
}

uint32_t orva_cmd_loadclip7 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t angle,
                             uint32_t position, uint32_t clip_position) {
  return on_connection (connection, OrvaConnObject::cmd_loadclip7, channel, clip, angle, position,
                        clip_position);
}

uint32_t orva_precue1 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t condition) {
  return on_connection (connection, OrvaConnObject::precue1, channel, clip, condition);
}

uint32_t orva_precue2 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t condition,
                       uint32_t position) {
  return on_connection (connection, OrvaConnObject::precue2, channel, clip, condition, position);
}

uint32_t orva_precue3 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t condition,
                       uint32_t position, uint32_t length) {
  return on_connection (connection, OrvaConnObject::precue3, channel, clip, condition, position, length);
}

uint32_t orva_precue4 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t condition,
                       uint32_t position, uint32_t loop_in, uint32_t length) {
  return on_connection (connection, OrvaConnObject::precue4, channel, clip, condition, position, loop_in,
                        length);
}

uint32_t orva_precue_clear1 (uint32_t connection, uint32_t channel) {
  return on_connection (connection, OrvaConnObject::precue_clear1, channel);
}

uint32_t orva_precue_activate1 (uint32_t connection, uint32_t channel) {
  return on_connection (connection, OrvaConnObject::precue_activate1, channel);
}

uint32_t orva_gang_precue_activate1 (uint32_t connection, uint32_t mask) {
  return on_connection (connection, OrvaConnObject::gang_precue_activate1, mask);
}

uint32_t orva_take1 (uint32_t connection, uint32_t channel, uint32_t type, uint32_t duration) {
  return on_connection (connection, OrvaConnObject::take1, channel, type, duration);
}

uint32_t orva_take2 (uint32_t connection, uint32_t channel, uint32_t type, uint32_t duration,
                     uint32_t follow) {
  return on_connection (connection, OrvaConnObject::take2, channel, type, duration, follow);
}

uint32_t orva_go_live1 (uint32_t connection, uint32_t channel) {
  return on_connection (connection, OrvaConnObject::go_live1, channel);
}

uint32_t orva_go_live2 (uint32_t connection, uint32_t channel, uint32_t angle) {
  return on_connection (connection, OrvaConnObject::go_live2, channel, angle);
}

uint32_t orva_go_live3 (uint32_t connection, uint32_t channel, const orva_char *clip) {
  return on_connection (connection, OrvaConnObject::go_live3, channel, clip);
}

uint32_t orva_go_live4 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t angle) {
  return on_connection (connection, OrvaConnObject::go_live4, channel, clip, angle);
}

uint32_t orva_angle1 (uint32_t connection, uint32_t channel, uint32_t angle) {
  return on_connection (connection, OrvaConnObject::angle1, channel, angle);
}

uint32_t orva_set_out1 (uint32_t connection, uint32_t channel, uint32_t position) {
  return on_connection (connection, OrvaConnObject::set_out1, channel, position);
}

uint32_t orva_clear_out (uint32_t connection, uint32_t channel) {
  return on_connection (connection, OrvaConnObject::clear_out, channel);
}

uint32_t orva_set_repeat (uint32_t connection, uint32_t channel, uint32_t repeat) {
  return on_connection (connection, OrvaConnObject::set_repeat, channel, repeat);
}

uint32_t orva_set_channel_repeat (uint32_t connection, uint32_t channel, uint32_t repeat) {
  return on_connection (connection, OrvaConnObject::set_repeat, channel, repeat);
}

uint32_t orva_unload_channel (uint32_t connection, uint32_t channel) {
  return on_connection (connection, OrvaConnObject::unload_channel, channel);
}

uint32_t orva_edit1 (uint32_t connection, uint32_t channel, uint32_t edit_bits) {
  return on_connection (connection, OrvaConnObject::edit1, channel, edit_bits);
}

uint32_t orva_gang_edit1 (uint32_t connection, uint32_t mask, uint32_t edit_bits) {
  return on_connection (connection, OrvaConnObject::gang_edit1, mask, edit_bits);
}

uint32_t orva_ee1 (uint32_t connection, uint32_t channel, uint32_t edit_bits, uint32_t mode) {
  return on_connection (connection, OrvaConnObject::ee1, channel, edit_bits, mode);
}

uint32_t orva_gang_ee1 (uint32_t connection, uint32_t mask, uint32_t edit_bits, uint32_t mode) {
  return on_connection (connection, OrvaConnObject::gang_ee1, mask, edit_bits, mode);
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
