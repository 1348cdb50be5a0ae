// Exports: the state of channels, notices, playlists.
#include "api/export_call.h"
#include "orva.h"

uint32_t orva_channel_clip (uint32_t connection, uint32_t channel, OrvaStringBuffer clip) {
  return on_connection (connection, OrvaConnObject::channel_clip, channel, clip);
}

uint32_t orva_channel_clip_length (uint32_t connection, uint32_t channel, uint32_t *length) {
  return on_connection (connection, OrvaConnObject::channel_clip_length, channel, length);
}

uint32_t orva_channel_position (uint32_t connection, uint32_t channel, uint32_t *position) {
  return on_connection (connection, OrvaConnObject::channel_position, channel, position);
}

uint32_t orva_channel_precue_count (uint32_t connection, uint32_t channel, uint32_t *count) {
  return on_connection (connection, OrvaConnObject::channel_precue_count, channel, count);
}

uint32_t orva_channel_status (uint32_t connection, uint32_t channel, uint32_t *status) {
  return on_connection (connection, OrvaConnObject::channel_status, channel, status);
}

uint32_t orva_channel_repeat (uint32_t connection, uint32_t channel, uint32_t *repeat) {
  return on_connection (connection, OrvaConnObject::channel_repeat, channel, repeat);
}

uint32_t orva_channel_speed (uint32_t connection, uint32_t channel, double *speed) {
  return on_connection (connection, OrvaConnObject::channel_speed, channel, speed);
}

uint32_t orva_channel_angle (uint32_t connection, uint32_t channel, uint32_t *angle, uint32_t *angle_count) {
  return on_connection (connection, OrvaConnObject::channel_angle, channel, angle, angle_count);
}

uint32_t orva_channel_ee (uint32_t connection, uint32_t channel, uint32_t *edit_bits, uint32_t *mode) {
  return on_connection (connection, OrvaConnObject::channel_ee, channel, edit_bits, mode);
}

uint32_t orva_get_notification (uint32_t connection, uint32_t timeout, uint32_t *kind, uint32_t *channel) {
  return guarded ([&] {
    ARef<OrvaConnObject> found;
    const ResultCode code = ConnectionRegistry::instance ().find (connection, found);
    if (code == ORVA_OK)
      OrvaConnObject::get_notification (found, timeout, kind, channel);
    return code;
  });
}

uint32_t orva_cmd_playlist_play_now (uint32_t connection, uint32_t channel, uint32_t index) {
  return on_connection (connection, OrvaConnObject::cmd_playlist_play_now, channel, index);
}

uint32_t orva_cmd_playlist_play_next (uint32_t connection, uint32_t channel, uint32_t index) {
  return on_connection (connection, OrvaConnObject::cmd_playlist_play_next, channel, index);
}

uint32_t orva_cmd_playlist_cue_now (uint32_t connection, uint32_t channel, uint32_t index) {
  return on_connection (connection, OrvaConnObject::cmd_playlist_cue_now, channel, index);
}

uint32_t orva_cmd_playlist_cue_next (uint32_t connection, uint32_t channel, uint32_t index) {
  return on_connection (connection, OrvaConnObject::cmd_playlist_cue_next, channel, index);
}

uint32_t orva_cmd_playlist_cue_list (uint32_t connection, uint32_t channel) {
  return on_connection (connection, OrvaConnObject::cmd_playlist_cue_list, channel);
}

uint32_t orva_playlist_status (uint32_t connection, uint32_t channel, uint32_t *loaded) {
  return on_connection (connection, OrvaConnObject::playlist_status, channel, loaded);
}

uint32_t orva_playlist_count (uint32_t connection, uint32_t channel, uint32_t *count) {
  return on_connection (connection, OrvaConnObject::playlist_count, channel, count);
}
